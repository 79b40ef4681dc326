#include "ktManipulator/actuation/KtSpringProperties.h"

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/actuation/KtWeightedJoints.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

const KtToken& KtSpringProperties::classToken() {
  return KtManip::KtSpringPropertiesToken;
}

void KtSpringProperties::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtSpringConstantToken, &springConstant_);
  registerComponent(KtManip::KtWeightingFactorsToken, &weightingFactors_);
  registerComponent(KtManip::KtSpringOffsetsToken, &springOffsets_);
  registerComponent(KtManip::KtAssociatedJointsToken, &associatedJoints_);
}

double KtSpringProperties::torque(const KtIndividualManipulator& manipulator,
                                  const KtPositionState& state) const {
  if (associatedJoints_.size() != weightingFactors_.size() ||
      associatedJoints_.size() != springOffsets_.size()) {
    // Named after the operation of the link through which springs are asked.
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtManipulatorLink::springTorque:: spring data size mismatch.");
    return 0.0;
  }
  return Kt::detail::weightedJointSum("KtSpringProperties", manipulator, associatedJoints_,
                                      weightingFactors_, state.jointPositions(), &springOffsets_) *
         springConstant_;
}

double KtSpringProperties::torque(const KtIndividualManipulator& manipulator,
                                  const KtManipulatorActiveState& active) const {
  return torque(manipulator, active.positionState());
}
