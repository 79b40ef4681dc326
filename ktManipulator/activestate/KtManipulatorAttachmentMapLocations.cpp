#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/model/KtManipulatorAttachmentMap.h"

namespace {

// Generic, so that a link that answers no frames yet leaves the location as it is.
constexpr auto locate = [](const auto& link, auto& positionState, const auto& offset,
                           const auto& dependent, auto& location) {
  if constexpr (requires {
                  link.primaryFrameInSystem(positionState);
                  dependent.coordSysXForm();
                }) {
    location =
        link.primaryFrameInSystem(positionState) * offset * dependent.coordSysXForm().inverse();
  }
};

}  // namespace

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
    locate(*link, positionState, offset, manipulators[dependent], locations[k]);
  }
  return true;
}
