#include "ktManipulator/propagation/KtPropagationDescriptor.h"

void KtPropagationDescriptor::registerComponents() {
  registerComponent(KtManip::KtCheckForCollisionsToken, &checkForCollisions_);
  registerComponent(KtManip::KtCollisionDetectionToleranceToken, &collisionDetectionTolerance_);
  registerComponent(KtManip::KtCollisionDetectionFidelityToken, &collisionDetectionFidelity_);
}
