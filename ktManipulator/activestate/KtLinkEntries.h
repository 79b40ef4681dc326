/// @file
/// What the caches of an active state are made of.
#pragma once

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/core/KtCacheFlag.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

namespace Kt::detail {

/// The cached values of one kind: an entry for each link by its index, and one for the base.
///
/// Entries that were not handed out for writing since they were made invalid last are not walked
/// over to make them so again. A reference to an entry must not be written through later than that;
/// whoever has one to the list or to the base may do so at any time.
template <class Entry>
class LinkEntries {
 public:
  /// The entries of the links.
  const KtXmlVectorType<Entry>& links() const noexcept { return links_; }
  /// The same, to be changed. From then on all entries are walked over each time.
  KtXmlVectorType<Entry>& links() noexcept {
    handOutForGood();
    return links_;
  }
  void setLinks(const KtXmlVectorType<Entry>& links) {
    allInvalid_ = false;
    links_ = links;
  }
  /// The entry of the base.
  const Entry& base() const noexcept { return base_; }
  /// The same, to be changed. From then on all entries are walked over each time.
  Entry& base() noexcept {
    handOutForGood();
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
  /// The list as a component of the owner, for `registerComponents`.
  KtXmlObject* linksComponent() noexcept { return &links_; }
  /// The entry of the base as a component of the owner.
  KtXmlObject* baseComponent() noexcept { return &base_; }
  /// Notes that a component is about to be read.
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
    allInvalid_ = !held_.value;
  }

  /// Exact equality of what files hold.
  bool operator==(const LinkEntries&) const = default;

 private:
  // Set once somebody may hold a reference into this object. Nobody has one into a copy; those into
  // the target of an assignment stay.
  struct Held {
    bool value = false;

    Held() noexcept = default;
    Held(const Held&) noexcept {}
    Held& operator=(const Held&) noexcept { return *this; }
    bool operator==(const Held&) const noexcept { return true; }
  };

  void handOutForGood() noexcept {
    allInvalid_ = false;
    held_.value = true;
  }

  KtXmlVectorType<Entry> links_;
  Entry base_;
  KtCacheFlag allInvalid_;
  Held held_;
};

/// The value of an element of a list, or 0 beyond its end.
template <class List>
double valueOrZero(const List& list, KtU32 index) noexcept {
  const auto& elements = list.elements();
  return index < elements.size() ? elements[index].value() : 0.0;
}

/// What the caches of an active state have in common.
///
/// @tparam State  the class of the cache, which is derived from this
/// @tparam Entry  what it keeps of one link
template <class State, class Entry>
class LinkCache : public KtXmlPersistent<State, KtXmlCompoundType> {
 public:
  /// One entry for each link but the root.
  using LinkStates = KtXmlVectorType<Entry>;

  /// Reads the state, valid flags included; see `KtXmlObject::read`.
  bool read(KtXmlReader& reader) override {
    entries_.handOut();  // a file can have valid entries
    return KtXmlCompoundType::read(reader);
  }

  // For passes over many links: the members, without virtual calls.

  /// The entry of a link, or of the base. To be written before the next `invalidateAll`, or setter
  /// that calls it, not later.
  Entry& entry(KtU32 index) noexcept { return entries_[index]; }
  /// The same.
  const Entry& entry(KtU32 index) const noexcept { return entries_[index]; }
  /// How many entries there are beside that of the base.
  KtU32 linkCount() const noexcept { return entries_.count(); }

  /// Exact equality of what files hold.
  bool operator==(const LinkCache&) const = default;

 protected:
  LinkEntries<Entry> entries_;  ///< What is kept.
};

}  // namespace Kt::detail
