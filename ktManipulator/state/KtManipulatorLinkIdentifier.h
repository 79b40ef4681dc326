#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlMapType.h"
#include "ktManipulator/foundation/containers/KtXmlSetType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A link of a system by its manipulator's index and its own label, which stays right when the
/// manipulator's links are numbered anew. A key of maps and sets.
class KT_EXPORT KtManipulatorLinkIdentifier
    : public KtXmlPersistent<KtManipulatorLinkIdentifier, KtXmlCompoundType> {
 public:
  /// Manipulator 0 and the empty label.
  KtManipulatorLinkIdentifier() = default;
  /// From a manipulator's index and a link's label.
  KtManipulatorLinkIdentifier(KtU32 manipulatorIndex, const KtString& linkId)
      : manipulatorIndex_(manipulatorIndex), linkId_(linkId) {}

  void registerComponents() override;

  /// Position of the manipulator in its system; 0 by default.
  virtual KtU32 manipulatorIndex() const { return manipulatorIndex_; }
  virtual void setManipulatorIndex(KtU32 index) { manipulatorIndex_ = index; }
  /// Label of the link; empty by default.
  virtual const KtString& linkId() const { return linkId_.value(); }
  virtual void setLinkId(const KtString& label) { linkId_ = label; }

  bool operator==(const KtManipulatorLinkIdentifier&) const = default;
  /// Order by manipulator, then by the bytes of the labels: one that begins another comes first.
  bool operator<(const KtManipulatorLinkIdentifier& other) const noexcept {
    if (manipulatorIndex_.value() != other.manipulatorIndex_.value()) {
      return manipulatorIndex_.value() < other.manipulatorIndex_.value();
    }
    return linkId_.value() < other.linkId_.value();
  }
  static const KtToken& classToken() { return KtManip::KtManipulatorLinkIdToken; }

 private:
  KtXmlBasicType<KtU32> manipulatorIndex_;
  KtXmlBasicType<KtString> linkId_;
};

extern template class KtXmlSetType<KtManipulatorLinkIdentifier>;
extern template class KtXmlMapType<KtManipulatorLinkIdentifier,
                                   KtXmlSetType<KtXmlBasicType<unsigned int>>>;
extern template class KtXmlMapType<KtManipulatorLinkIdentifier,
                                   KtXmlSetType<KtManipulatorLinkIdentifier>>;
