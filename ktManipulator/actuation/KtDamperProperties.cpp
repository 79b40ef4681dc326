#include "ktManipulator/actuation/KtDamperProperties.h"

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/actuation/KtWeightedJoints.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

const KtToken& KtDamperProperties::classToken() {
  return KtManip::KtDamperPropertiesToken;
}

void KtDamperProperties::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtDamperConstantToken, &damperConstant_);
  registerComponent(KtManip::KtWeightingFactorsToken, &weightingFactors_);
  registerComponent(KtManip::KtAssociatedJointsToken, &associatedJoints_);
}

double KtDamperProperties::torque(const KtIndividualManipulator& manipulator,
                                  const KtVelocityState& state) const {
  if (associatedJoints_.size() != weightingFactors_.size()) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtDamperProperties::torque:: damper data size mismatch.\n");
    return 0.0;
  }
  return Kt::detail::weightedJointSum("KtDamperProperties", manipulator, associatedJoints_,
                                      weightingFactors_, state.jointVelocities(), nullptr) *
         damperConstant_;
}

double KtDamperProperties::torque(const KtIndividualManipulator& manipulator,
                                  const KtManipulatorActiveState& active) const {
  return torque(manipulator, active.velocityState());
}
