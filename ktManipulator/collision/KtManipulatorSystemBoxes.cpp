#include "ktManipulator/model/KtManipulatorSystem.h"

void KtManipulatorSystem::buildBoundingBoxTreeFromEnvironment(
    KtXmlVectorType<KtManipulatorActiveState>& /*activeStates*/) {}

void KtManipulatorSystem::computeCollisionDetectionPrecisionLevel() {
  collisionDetectionPrecisionLevel_ = 0;
}
