#include "ktManipulator/collision/KtSystemActiveBoundingBoxState.h"

#include "ktManipulator/model/KtManipulatorSystem.h"

void KtSystemActiveBoundingBoxState::intervalIDtoShapeKeyID(const KtU32& interval,
                                                            const KtManipulatorSystem& system,
                                                            KtShapeStateCacheKey& key) const {
  const auto& manipulators = system.manipulators();
  KtU32 index = interval;
  for (KtU32 k = 0; k < manipulators.size(); ++k) {
    const KtU32 joints = manipulators[k].jointDof();
    if (index <= joints) {
      key = KtShapeStateCacheKey(k, index == joints ? ktBaseIndex : index);
      return;
    }
    index -= joints + 1;
  }
}

void KtSystemActiveBoundingBoxState::shapeKeyIDToIntervalID(KtShapeStateCacheKey key,
                                                            const KtManipulatorSystem& system,
                                                            KtU32& interval) const {
  const auto& manipulators = system.manipulators();
  const KtU32 own = key.manipulatorIndex();
  if (own >= manipulators.size()) return;
  const KtU32 joints = manipulators[own].jointDof();
  const KtU32 link = key.linkIndex() == ktBaseIndex ? joints : key.linkIndex();
  if (link > joints) return;
  KtU32 first = 0;
  for (KtU32 k = 0; k < own; ++k) first += manipulators[k].jointDof() + 1;
  interval = first + link;
}

void KtManipulatorSystem::buildBoundingBoxTreeFromEnvironment(
    KtXmlVectorType<KtManipulatorActiveState>& /*activeStates*/) {}

void KtManipulatorSystem::computeCollisionDetectionPrecisionLevel() {
  collisionDetectionPrecisionLevel_ = 0;
}
