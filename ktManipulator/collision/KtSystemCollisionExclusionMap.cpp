#include "ktManipulator/collision/KtSystemCollisionExclusionMap.h"

#include <algorithm>

template class KtXmlMapType<KtXmlBasicType<unsigned int>,
                            KtXmlSetType<KtXmlBasicType<unsigned int>>>;

namespace {

using Identifier = KtManipulatorLinkIdentifier;

template <class K, class E>
void include(KtXmlMapType<K, KtXmlSetType<E>>& map, const K& key, const E& element) {
  map.mapContainer()[key].add(element);
}

// A key goes with its last element, so that taking back an exclusion leaves no trace.
template <class K, class E>
void exclude(KtXmlMapType<K, KtXmlSetType<E>>& map, const K& key, const E& element) {
  KtXmlSetType<E>* const elements = map.lookupPointer(key);
  if (elements == nullptr) return;
  elements->erase(element);
  if (elements->size() == 0) map.erase(key);
}

template <class K, class E>
bool holds(const KtXmlMapType<K, KtXmlSetType<E>>& map, const K& key, const E& element) {
  const KtXmlSetType<E>* const elements = map.lookupPointer(key);
  return elements != nullptr && elements->find(element);
}

template <class K, class E>
bool stands(const KtXmlMapType<K, KtXmlSetType<E>>& map, const E& element) {
  return std::ranges::any_of(map.mapContainer(),
                             [&](const auto& entry) { return entry.second.find(element); });
}

}  // namespace

void KtSystemCollisionExclusionMap::registerComponents() {
  registerComponent(KtManip::KtManipulatorExclusionMapToken, &manipulatorExclusionMap_);
  registerComponent(KtManip::KtLinkManipulatorExclusionMapToken, &linkManipulatorExclusionMap_);
  registerComponent(KtManip::KtLinkLinkExclusionMapToken, &linkLinkExclusionMap_);
}

bool KtSystemCollisionExclusionMap::excludeLinkCollisionCandidate(KtU32 manipulator1,
                                                                  const KtString& label1,
                                                                  KtU32 manipulator2,
                                                                  const KtString& label2) {
  if (manipulator1 == manipulator2) return false;
  const Identifier a(manipulator1, label1);
  const Identifier b(manipulator2, label2);
  include(linkLinkExclusionMap_, std::min(a, b), std::max(a, b));
  return true;
}

bool KtSystemCollisionExclusionMap::excludeLinkCollisionCandidates(KtU32 manipulator,
                                                                   const KtString& label,
                                                                   KtU32 otherManipulator) {
  if (manipulator == otherManipulator) return false;
  include(linkManipulatorExclusionMap_, Identifier(manipulator, label), {otherManipulator});
  return true;
}

bool KtSystemCollisionExclusionMap::excludeManipulatorCollisionCandidates(KtU32 manipulator1,
                                                                          KtU32 manipulator2) {
  if (manipulator1 == manipulator2) return false;
  include(manipulatorExclusionMap_, {std::min(manipulator1, manipulator2)},
          {std::max(manipulator1, manipulator2)});
  return true;
}

bool KtSystemCollisionExclusionMap::removeLinkCollisionExclusionCandidate(KtU32 manipulator1,
                                                                          const KtString& label1,
                                                                          KtU32 manipulator2,
                                                                          const KtString& label2) {
  if (manipulator1 == manipulator2) return false;
  const Identifier a(manipulator1, label1);
  const Identifier b(manipulator2, label2);
  exclude(linkLinkExclusionMap_, std::min(a, b), std::max(a, b));
  return true;
}

bool KtSystemCollisionExclusionMap::removeLinkCollisionExclusionCandidates(KtU32 manipulator,
                                                                           const KtString& label,
                                                                           KtU32 otherManipulator) {
  if (manipulator == otherManipulator) return false;
  exclude(linkManipulatorExclusionMap_, Identifier(manipulator, label), {otherManipulator});
  return true;
}

bool KtSystemCollisionExclusionMap::removeManipulatorCollisionExclusionCandidates(
    KtU32 manipulator1, KtU32 manipulator2) {
  if (manipulator1 == manipulator2) return false;
  exclude(manipulatorExclusionMap_, {std::min(manipulator1, manipulator2)},
          {std::max(manipulator1, manipulator2)});
  return true;
}

bool KtSystemCollisionExclusionMap::isLinkCollisionCandidateExcluded(KtU32 manipulator1,
                                                                     const KtString& label1,
                                                                     KtU32 manipulator2,
                                                                     const KtString& label2) const {
  if (manipulator1 == manipulator2) return false;
  if (isManipulatorCollisionExcluded(manipulator1, manipulator2)) return true;
  if (isLinktoManipulatorCollisionExcluded(manipulator1, label1, manipulator2)) return true;
  if (isLinktoManipulatorCollisionExcluded(manipulator2, label2, manipulator1)) return true;
  if (linkLinkExclusionMap_.mapContainer().empty()) return false;
  const Identifier a(manipulator1, label1);
  const Identifier b(manipulator2, label2);
  return holds(linkLinkExclusionMap_, std::min(a, b), std::max(a, b));
}

bool KtSystemCollisionExclusionMap::isLinkCollisionCandidateExcluded(KtU32 manipulator1,
                                                                     KtU32 link1,
                                                                     KtU32 manipulator2,
                                                                     KtU32 link2) const {
  if (manipulator1 == manipulator2) return false;
  if (isManipulatorCollisionExcluded(manipulator1, manipulator2)) return true;
  const KtManipulatorLinkIndex a(manipulator1, link1);
  const KtManipulatorLinkIndex b(manipulator2, link2);
  if (isExcludedByIndex(a, manipulator2) || isExcludedByIndex(b, manipulator1)) return true;
  const auto found = linkLinkIndexMap_.find(std::min(a, b));
  return found != linkLinkIndexMap_.end() && found->second.contains(std::max(a, b));
}

bool KtSystemCollisionExclusionMap::isManipulatorCollisionExcluded(KtU32 manipulator1,
                                                                   KtU32 manipulator2) const {
  if (manipulatorExclusionMap_.mapContainer().empty()) return false;
  return holds(manipulatorExclusionMap_, {std::min(manipulator1, manipulator2)},
               {std::max(manipulator1, manipulator2)});
}

bool KtSystemCollisionExclusionMap::isLinktoManipulatorCollisionExcluded(KtU32 manipulator1,
                                                                         const KtString& label,
                                                                         KtU32 manipulator2) const {
  if (linkManipulatorExclusionMap_.mapContainer().empty()) return false;
  return holds(linkManipulatorExclusionMap_, Identifier(manipulator1, label), {manipulator2});
}

bool KtSystemCollisionExclusionMap::manipulatorHasExclusionCandidate(KtU32 manipulator) const {
  return manipulatorExclusionMap_.lookupPointer(manipulator) != nullptr ||
         stands(manipulatorExclusionMap_, {manipulator});
}

bool KtSystemCollisionExclusionMap::linkHasExclusionCandidate(KtU32 manipulator,
                                                              const KtString& label) const {
  const Identifier link(manipulator, label);
  return linkManipulatorExclusionMap_.lookupPointer(link) != nullptr ||
         linkLinkExclusionMap_.lookupPointer(link) != nullptr ||
         stands(linkLinkExclusionMap_, link);
}

void KtSystemCollisionExclusionMap::removeAllExclusionCandidates() {
  manipulatorExclusionMap_.clear();
  linkManipulatorExclusionMap_.clear();
  linkLinkExclusionMap_.clear();
  linkManipulatorIndexMap_.clear();
  linkLinkIndexMap_.clear();
}

bool KtSystemCollisionExclusionMap::operator==(const KtSystemCollisionExclusionMap& other) const {
  return KtXmlPersistent::operator==(other) &&
         manipulatorExclusionMap_ == other.manipulatorExclusionMap_ &&
         linkManipulatorExclusionMap_ == other.linkManipulatorExclusionMap_ &&
         linkLinkExclusionMap_ == other.linkLinkExclusionMap_;
}

bool KtSystemCollisionExclusionMap::isExcludedByIndex(const KtManipulatorLinkIndex& link,
                                                      KtU32 manipulator) const {
  const auto found = linkManipulatorIndexMap_.find(link);
  return found != linkManipulatorIndexMap_.end() && found->second.contains(manipulator);
}
