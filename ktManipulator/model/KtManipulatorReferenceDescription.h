#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// Whether a manipulator uses the whole link tree of another manipulator of its system, and of
/// which one. The label is resolved when the system maps its manipulators.
class KT_EXPORT KtManipulatorReferenceDescription
    : public KtXmlPersistent<KtManipulatorReferenceDescription, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// Whether the links are those of another manipulator; false by default.
  virtual bool isManipulatorReferenced() const { return isManipulatorReferenced_; }
  virtual void setIsManipulatorReferenced(bool value) { isManipulatorReferenced_ = value; }
  /// Label of that manipulator; empty by default.
  virtual const KtString& referencedManipulatorLabel() const {
    return referencedManipulatorLabel_.value();
  }
  virtual void setReferencedManipulatorLabel(const KtString& label) {
    referencedManipulatorLabel_ = label;
  }

  bool operator==(const KtManipulatorReferenceDescription&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorReferenceDescriptionToken; }

 private:
  KtXmlBasicType<bool> isManipulatorReferenced_;
  KtXmlBasicType<KtString> referencedManipulatorLabel_;
};
