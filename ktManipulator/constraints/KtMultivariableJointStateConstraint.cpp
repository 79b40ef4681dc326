#include "ktManipulator/constraints/KtMultivariableJointStateConstraint.h"

#include "ktManipulator/state/KtPositionState.h"

void KtMultivariableJointStateConstraint::registerComponents() {
  KtBaseStateConstraint::registerComponents();
  registerComponent(KtManip::KtMultivariableConstraintContainerToken, &constraint_);
}

double KtMultivariableJointStateConstraint::evaluate(const KtPositionState& position) const {
  return constraint_.evaluate(position.jointPositions());
}

const std::vector<double>& KtMultivariableJointStateConstraint::gradient(
    const KtPositionState& position, bool) const {
  return constraint_.gradient(position.jointPositions());
}
