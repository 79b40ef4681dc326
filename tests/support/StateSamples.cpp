#include "support/SampleKit.h"

namespace {

using namespace samplekit;

KtMultivariableJointStateConstraint limit() {
  KtLinearMultivariableConstraint linear;
  linear.setConstant(1.5);
  linear.setCoefficient(1, -1.0);
  KtMultivariableJointStateConstraint constraint;
  constraint.setConstraint(linear);
  return constraint;
}

}  // namespace

void addStateSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(tableSample<KtPositionState>("PositionState"));
  add(tableSample<KtVelocityState>("VelocityState"));
  add(tableSample<KtAccelerationState>("AccelerationState"));
  add(tableSample<KtManipulatorTorque>("ManipulatorTorque"));
  add(tableSample<KtManipulatorExternalForce>("ManipulatorExternalForce"));
  add(filled<KtManipulatorSystemState>("ManipulatorSystemState", [](auto& state) {
    // Reading cuts the lists to a common length.
    state.setPositionStates({2, fromTable<KtPositionState>()});
    state.setVelocityStates({2, fromTable<KtVelocityState>()});
    state.setTime(0.1);
  }));
  add(filled<KtXmlVectorType<KtManipulatorTorque>>("TorqueVector",
                                                   [](auto& list) { list.resize(2); }));
}

void addConstraintSamples(std::vector<Sample>& samples) {
  const auto add = [&samples](Sample one) { samples.push_back(std::move(one)); };
  add(sample<KtMultivariableJointStateConstraint>("JointStateConstraint", limit()));
  add(tableSample<KtLinearStateEqualityConstraint>("LinearStateEqualityConstraint"));
  add(filled<KtStateConstraintContainer>("StateConstraintContainer",
                                         [](auto& holder) { holder.setTopElement(limit()); }));
  add(filled<KtStateConstraintVector>("StateConstraintVector",
                                      [](auto& list) { list.pushBack(limit()); }));
  add(filled<KtStateEqualityConstraintVector>("StateEqualityConstraintVector", [](auto& list) {
    list.pushBack(fromTable<KtLinearStateEqualityConstraint>());
    list.pushBack(KtLinearStateEqualityConstraint());
  }));
}
