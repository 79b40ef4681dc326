/// @file
/// What the caches of an active state are made of.
#pragma once

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/core/KtCacheFlag.h"
#include "ktManipulator/foundation/core/KtTypes.h"

namespace Kt::detail {

/// The cached values of one kind: an entry for each link by its index, and one for the base.
///
/// Nobody walks over entries to make them invalid that were not handed out for writing since that
/// was done last. A reference that is written through must not be older than that.
template <class Entry>
class LinkEntries {
 public:
  /// The entries of the links.
  const KtXmlVectorType<Entry>& links() const noexcept { return links_; }
  /// The same, to be changed.
  KtXmlVectorType<Entry>& links() noexcept {
    allInvalid_ = false;
    return links_;
  }
  /// The entry of the base.
  const Entry& base() const noexcept { return base_; }
  /// The same, to be changed.
  Entry& base() noexcept {
    allInvalid_ = false;
    return base_;
  }
  /// The entry of a link, or of the base for `ktBaseIndex`; unguarded.
  const Entry& operator[](KtU32 index) const noexcept {
    return index == ktBaseIndex ? base_ : links_[index];
  }
  /// The same, to be changed.
  Entry& operator[](KtU32 index) noexcept {
    allInvalid_ = false;
    return index == ktBaseIndex ? base_ : links_[index];
  }
  /// Notes that entries may become valid by other ways.
  void handOut() noexcept { allInvalid_ = false; }
  /// How many entries there are beside that of the base.
  KtU32 count() const noexcept { return static_cast<KtU32>(links_.elements().size()); }
  /// Gives the list a size; new entries are invalid.
  void resize(KtU32 count) { links_.resize(count); }
  /// Makes all entries invalid.
  void invalidateAll() {
    if (allInvalid_) return;
    for (Entry& entry : links_.elements()) entry.invalidateAll();
    base_.invalidateAll();
    allInvalid_ = true;
  }

  /// Exact equality of what files hold.
  bool operator==(const LinkEntries&) const = default;

 private:
  KtXmlVectorType<Entry> links_;
  Entry base_;
  KtCacheFlag allInvalid_;
};

}  // namespace Kt::detail
