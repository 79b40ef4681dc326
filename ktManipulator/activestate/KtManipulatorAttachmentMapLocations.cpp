#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/model/KtManipulatorAttachmentMap.h"

bool KtManipulatorAttachmentMap::calculateBaseLocations(
    KtU32 parentIndex, const KtXmlVectorType<KtIndividualManipulator>& manipulators,
    KtManipulatorActivePositionState& positionState, std::vector<KtU32>& dependents,
    KtXmlVectorType<KtCoordinateSystemTransformation>& locations) const {
  if (parentIndex >= manipulators.size()) return false;
  dependents = dependentManipulators(parentIndex);
  if (dependents.empty()) return false;
  locations.resize(static_cast<KtU32>(dependents.size()));
  KtU32 parent = 0;
  KtString label;
  KtCoordinateSystemTransformation offset;
  for (KtU32 k = 0; k < locations.size(); ++k) {
    const KtU32 dependent = dependents[k];
    if (!getDependentManipulatorInfo(dependent, parent, label, offset)) continue;
    if (dependent >= manipulators.size()) return false;
    const KtManipulatorLink* const link = manipulators[parentIndex].linkByIdentifier(label);
    if (link == nullptr) return false;
    locations[k] = link->primaryFrameInSystem(positionState) * offset *
                   manipulators[dependent].coordSysXForm().inverse();
  }
  return true;
}
