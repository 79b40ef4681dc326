#include "ktManipulator/model/KtManipulatorAttachmentMap.h"

template class KtXmlVectorType<KtCoordinateSystemTransformation>;
template class KtXmlPairType<KtManipulatorLinkIdentifier, KtCoordinateSystemTransformation>;
template class KtXmlMapType<
    KtXmlBasicType<unsigned int>,
    KtXmlPairType<KtManipulatorLinkIdentifier, KtCoordinateSystemTransformation>>;

bool KtManipulatorAttachmentMap::attachManipulator(KtU32 dependentIndex, KtU32 parentIndex,
                                                   const KtString& linkLabel,
                                                   const KtCoordinateSystemTransformation& offset) {
  if (dependentIndex == parentIndex || lookupPointer(dependentIndex) != nullptr) return false;
  add(dependentIndex, {KtManipulatorLinkIdentifier(parentIndex, linkLabel), offset});
  return true;
}

bool KtManipulatorAttachmentMap::removeManipulatorAttachment(KtU32 dependentIndex) {
  return erase(dependentIndex);
}

bool KtManipulatorAttachmentMap::getDependentManipulatorInfo(
    KtU32 dependentIndex, KtU32& parentIndex, KtString& linkLabel,
    KtCoordinateSystemTransformation& offset) const {
  const auto* const attachment = lookupPointer(dependentIndex);
  if (attachment == nullptr) return false;
  parentIndex = attachment->first().manipulatorIndex();
  linkLabel = attachment->first().linkId();
  offset = attachment->second();
  return true;
}

std::vector<KtU32> KtManipulatorAttachmentMap::dependentManipulators(KtU32 parentIndex) const {
  std::vector<KtU32> dependents;
  for (const auto& [dependent, attachment] : mapContainer()) {
    if (attachment.first().manipulatorIndex() == parentIndex) dependents.push_back(dependent);
  }
  return dependents;
}

bool KtManipulatorAttachmentMap::getDependentManipulatorsAndOffsets(
    KtU32 parentIndex, const KtString& linkLabel, std::vector<KtU32>& dependents,
    KtXmlVectorType<KtCoordinateSystemTransformation>& offsets) const {
  dependents.clear();
  offsets.clear();
  for (const auto& [dependent, attachment] : mapContainer()) {
    const KtManipulatorLinkIdentifier& link = attachment.first();
    if (link.manipulatorIndex() != parentIndex || link.linkId() != linkLabel) continue;
    dependents.push_back(dependent);
    offsets.pushBack(attachment.second());
  }
  return !dependents.empty();
}
