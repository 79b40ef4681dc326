#include "ktManipulator/collision/KtSystemCollisionExclusionMap.h"
#include "ktManipulator/model/KtManipulatorSystem.h"

void KtSystemCollisionExclusionMap::buildMapFromSystem(const KtManipulatorSystem& system) {
  buildMapFromManipulators(system.manipulators());
}

void KtSystemCollisionExclusionMap::buildMapFromManipulators(
    const KtXmlVectorType<KtIndividualManipulator>& manipulators) {
  linkManipulatorIndexMap_.clear();
  linkLinkIndexMap_.clear();
  KtManipulatorLinkIndex key;
  for (const auto& [link, others] : linkManipulatorExclusionMap_.mapContainer()) {
    if (!convertToManipulatorLinkIndex(manipulators, link, key)) continue;
    std::set<KtU32>& indices = linkManipulatorIndexMap_[key];
    for (const auto& other : others.setContainer()) indices.insert(other.value());
  }
  std::set<KtManipulatorLinkIndex> indices;
  for (const auto& [link, others] : linkLinkExclusionMap_.mapContainer()) {
    if (!convertToManipulatorLinkIndex(manipulators, link, key)) continue;
    obtainManipulatorLinkIndices(manipulators, others, indices);
    if (!indices.empty()) linkLinkIndexMap_[key].merge(indices);
  }
}

bool KtSystemCollisionExclusionMap::convertToManipulatorLinkIndex(
    const KtXmlVectorType<KtIndividualManipulator>& manipulators,
    const KtManipulatorLinkIdentifier& identifier, KtManipulatorLinkIndex& index) const {
  const KtU32 manipulator = identifier.manipulatorIndex();
  if (manipulator >= manipulators.size()) return false;
  const KtManipulatorLink* const link =
      manipulators[manipulator].linkByIdentifier(identifier.linkId());
  if (link == nullptr) return false;
  index = {manipulator, link->linkIndex()};
  return true;
}

bool KtSystemCollisionExclusionMap::obtainManipulatorLinkIndices(
    const KtXmlVectorType<KtIndividualManipulator>& manipulators, const LinkSet& identifiers,
    std::set<KtManipulatorLinkIndex>& indices) const {
  indices.clear();
  bool all = true;
  KtManipulatorLinkIndex index;
  for (const KtManipulatorLinkIdentifier& identifier : identifiers.setContainer()) {
    if (convertToManipulatorLinkIndex(manipulators, identifier, index)) {
      indices.insert(index);
    } else {
      all = false;
    }
  }
  return all;
}
