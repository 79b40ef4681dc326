#pragma once

#include <map>
#include <string>
#include <vector>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// One rigid body of a mechanism, with its children inside itself: a copy of a link copies the
/// subtree below it.
class KT_EXPORT KtManipulatorLink : public KtXmlPersistent<KtManipulatorLink, KtXmlCompoundType> {
 public:
  /// The links of a manipulator by index.
  using LinkTable = std::vector<const KtManipulatorLink*>;
  /// The links of a manipulator by label.
  using LabelTable = std::map<std::string, KtManipulatorLink*>;

  KtManipulatorLink() = default;
  KtManipulatorLink(const KtManipulatorLink& other);
  KtManipulatorLink& operator=(const KtManipulatorLink& other);

  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Name of the link, unique within its manipulator by convention.
  virtual const std::string& label() const { return label_.value(); }
  /// Sets what `label()` answers. The manipulator's tables stay as they are.
  virtual void setLabel(const std::string& label) { label_ = label; }
  /// The children, in the order of all walks.
  virtual const KtXmlVectorType<KtManipulatorLink>& childLinks() const { return childLinks_; }
  /// Appends a copy of a link to the children.
  virtual void addChild(const KtManipulatorLink& link);
  /// The link that holds this one, or null.
  virtual KtManipulatorLink* parentLink() const { return parentLink_; }
  /// Sets what `parentLink()` answers.
  virtual void setParentLink(KtManipulatorLink* link) { parentLink_ = link; }
  /// Position of this link in its manipulator's link table, by which state vectors are indexed;
  /// `ktUnmappedIndex` for a link that was never mapped.
  virtual KtU32 linkIndex() const { return linkIndex_; }
  /// Numbers and registers this subtree in pre-order. Of two links of one label the later one has
  /// the entry of the label table.
  ///
  /// @return true
  virtual bool mapLinks(LinkTable& links, LabelTable& labels);

  /// Equality of labels and children.
  bool operator==(const KtManipulatorLink& other) const;
  /// Name of the class in files.
  static const KtToken& classToken() { return KtManip::KtManipulatorLinkToken; }

 protected:
  KtXmlBasicType<std::string> label_;
  KtXmlVectorType<KtManipulatorLink> childLinks_;
  KtManipulatorLink* parentLink_ = nullptr;
  KtU32 linkIndex_ = ktUnmappedIndex;

 private:
  void adoptChildren();
};

extern template class KtXmlVectorType<KtManipulatorLink>;
