#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// Whether a link uses the shapes of another link of its manipulator, and of which one. The label
/// is resolved when the manipulator is mapped.
class KT_EXPORT KtLinkReferenceDescription
    : public KtXmlPersistent<KtLinkReferenceDescription, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// Whether the shapes are those of another link; false by default.
  virtual bool isShapeReferenced() const { return isShapeReferenced_; }
  virtual void setIsShapeReferenced(bool value) { isShapeReferenced_ = value; }
  /// Label of that link; empty by default. Clearing the flag doesn't clear the label.
  virtual const KtString& referencedLinkLabel() const { return referencedLinkLabel_.value(); }
  virtual void setReferencedLinkLabel(const KtString& label) { referencedLinkLabel_ = label; }

  bool operator==(const KtLinkReferenceDescription&) const = default;
  static const KtToken& classToken() { return KtManip::KtLinkReferenceDescriptionToken; }

 private:
  KtXmlBasicType<bool> isShapeReferenced_;
  KtXmlBasicType<KtString> referencedLinkLabel_;
};
