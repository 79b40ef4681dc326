#include "ktManipulator/actuation/KtActuatorState.h"

#include "ktManipulator/foundation/tokens/KtManipTokens.h"

const KtToken& KtActuatorState::classToken() {
  return KtManip::KtActuatorStateToken;
}

void KtActuatorState::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtActuatorOutputTorquesToken, &outputTorques_);
  registerComponent(KtManip::KtMotorPositionsToken, &motorPositions_);
  registerComponent(KtManip::KtMotorVelocitiesToken, &motorVelocities_);
  registerComponent(KtManip::KtMotorAccelerationsToken, &motorAccelerations_);
  registerComponent(KtManip::KtNonRigidActuatorFlagsToken, &nonRigidActuatorFlags_);
  registerComponent(KtManip::KtActuatorSpringDamperCentersToken, &springDamperCenters_);
  registerComponent(KtManip::KtActuatorStaticFrictionModesToken, &staticFrictionModes_);
  registerComponent(KtManip::KtActuatorLastVelocitiesToken, &lastVelocities_);
  registerComponent(KtManip::KtActuatorReverseMotionPositionsToken, &reverseMotionPositions_);
  registerComponent(KtManip::KtPowerConverterStatesToken, &powerConverterStates_);
}

void KtActuatorState::resize(KtU32 n) {
  outputTorques_.resize(n);
  motorPositions_.resize(n);
  motorVelocities_.resize(n);
  motorAccelerations_.resize(n);
  nonRigidActuatorFlags_.resize(n);
  springDamperCenters_.resize(n);
  staticFrictionModes_.resize(n);
  lastVelocities_.resize(n);
  reverseMotionPositions_.resize(n);
  powerConverterStates_.resize(n);
}
