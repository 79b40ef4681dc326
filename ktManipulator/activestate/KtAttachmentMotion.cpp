// Poses and motions of attached manipulators.
#include <algorithm>

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/model/KtLinkAttachment.h"
#include "ktManipulator/model/KtManipulatorAttachmentMap.h"

namespace {

void store(const KtGeneralMotion& motion, std::vector<double>& reals, std::size_t start) {
  for (unsigned i = 0; i < 6; ++i) reals[start + i] = motion[i];
}

}  // namespace

void KtLinkAttachment::calculatePlacement(const KtIndividualManipulator& manipulator,
                                          KtManipulatorActiveState& activeState,
                                          KtCoordinateSystemTransformation& placement) const {
  const KtManipulatorLink* const link = manipulator.linkByIdentifier(linkIdentifier());
  if (link == nullptr) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtAttachment::calculateFramePlacement():  bad label on link attachment: %s.\n",
        linkIdentifier().c_str());
    return;
  }
  placement = link->primaryFrameInSystem(activeState.activePositionState()) * frame_;
}

void KtLinkAttachment::calculateVelocity(const KtIndividualManipulator& manipulator,
                                         KtManipulatorActiveState& activeState,
                                         std::vector<double>& velocity, KtU32 startIndex) const {
  KtGeneralMotion motion;
  const KtManipulatorLink* const link = manipulator.linkByIdentifier(linkIdentifier());
  if (link != nullptr) {
    const KtVector arm =
        link->primaryFrameInSystem(activeState.activePositionState()).orientation() *
        frame_.translation();
    motion = link->primaryFrameVelocityInSystem(activeState);
    motion.setLinear(motion.linear() + motion.angular().cross(arm));
  }
  const std::size_t start = startIndex;
  velocity.resize(start + 6);
  store(motion, velocity, start);
}

void KtLinkAttachment::calculateAcceleration(const KtIndividualManipulator& manipulator,
                                             KtManipulatorActiveState& activeState,
                                             std::vector<double>& acceleration,
                                             KtU32 startIndex) const {
  KtGeneralMotion motion;
  const KtManipulatorLink* const link = manipulator.linkByIdentifier(linkIdentifier());
  if (link != nullptr) {
    const KtCoordinateSystemTransformation inDh = link->primaryFrame() * frame_;
    const KtCoordinateSystemTransformation inSystem =
        link->dhFrameInSystem(activeState.activePositionState()) * inDh;
    const KtVector w = link->dhFrameVelocityInLocal(activeState).angular();
    const KtVector centripetal = w.cross(w.cross(inDh.translation()));
    motion = inDh.inverse() * link->dhFrameAccelerationInLocal(activeState);
    motion.setLinear(motion.linear() + inDh.orientation().inverse() * centripetal);
    motion.transformBy(inSystem.orientation());
  }
  const std::size_t start = startIndex;
  acceleration.resize(std::max(acceleration.size(), start + 6));
  store(motion, acceleration, start);
}

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
