#include "ktManipulator/collision/KtManipulatorSelfCollisionLinkMap.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "ktManipulator/model/KtIndividualManipulator.h"

void KtManipulatorSelfCollisionLinkMap::buildMapFromSystem(
    const KtIndividualManipulator& manipulator) {
  const KtU32 count = manipulator.jointDof();
  std::set<KtXmlBasicType<KtString>> labels;
  for (KtU32 i = 0; i < count; ++i) {
    if (const KtManipulatorLink* link = manipulator.linkByIndex(i)) labels.insert(link->label());
  }
  labels.insert(manipulator.label());
  // In the order of the maps, so that each entry's place is known: the pairs are many.
  for (auto first = labels.begin(); first != labels.end(); ++first) {
    auto& inner = mapContainer()[*first].mapContainer();
    auto place = inner.begin();
    for (auto second = first; second != labels.end(); ++second) {
      place = std::next(inner.insert_or_assign(place, *second, false));
    }
  }
}

void KtManipulatorSelfCollisionLinkMap::setLinkCollisionCanditateByIdentifier(
    const KtString& label1, const KtString& label2, bool isCandidate) {
  const auto& [smaller, larger] = std::minmax(label1, label2);
  // In place: a copy of the inner map for each pair would make a build cubic.
  mapContainer()[smaller].add(larger, isCandidate);
}

bool KtManipulatorSelfCollisionLinkMap::linkCollisionCanditateByIdentifier(
    const KtString& label1, const KtString& label2, bool& isCandidate) const {
  const auto& [smaller, larger] = std::minmax(label1, label2);
  const auto* inner = lookupPointer(smaller);
  const auto* flag = inner != nullptr ? inner->lookupPointer(larger) : nullptr;
  if (flag == nullptr) return false;
  isCandidate = flag->value();
  return true;
}

void KtManipulatorSelfCollisionLinkMap::setAllAsCollisionCandidates() {
  setAll(true);
}

void KtManipulatorSelfCollisionLinkMap::unsetAllAsCollisionCandidates() {
  setAll(false);
}

bool KtManipulatorSelfCollisionLinkMap::linkHasExclusionCandidate(const KtString& label) const {
  for (const auto& [first, inner] : mapContainer()) {
    for (const auto& [second, flag] : inner.mapContainer()) {
      if (!flag.value() && (first.value() == label || second.value() == label)) return true;
    }
  }
  return false;
}

void KtManipulatorSelfCollisionLinkMap::setAll(bool isCandidate) {
  for (auto& entry : mapContainer()) {
    for (auto& flag : entry.second.mapContainer()) flag.second = isCandidate;
  }
}
