#pragma once

#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"

class KtManipulatorLink;

/// Something that belongs to a link's joint and finds its entries in the state lists by the link's
/// index. The pointer to the link goes along with a copy and an assignment; it is neither compared
/// nor persisted.
class KT_EXPORT KtActuatorPart : public KtXmlCompoundType {
 public:
  /// Sets the link whose joint this part drives; not owned, null by default. Without a link every
  /// index counts as out of range.
  virtual void setManipulatorLink(const KtManipulatorLink* link) { link_ = link; }

  /// Exact equality; the link takes no part.
  bool operator==(const KtActuatorPart&) const noexcept { return true; }

 protected:
  /// The link, or null.
  const KtManipulatorLink* manipulatorLink() const noexcept { return link_; }
  /// The link's index in the state lists; `ktUnmappedIndex` without a link.
  KtU32 linkIndex() const;

 private:
  const KtManipulatorLink* link_ = nullptr;
};
