#include "ktManipulator/actuation/KtDcElectricMotor.h"

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

const KtToken& KtDcElectricMotor::classToken() {
  return KtManip::KtDcElectricMotorToken;
}

void KtDcElectricMotor::registerComponents() {
  KtBasePowerConverter::registerComponents();
  registerComponent(KtManip::KtArmatureInductanceToken, &armatureInductance_);
  registerComponent(KtManip::KtArmatureResistanceToken, &armatureResistance_);
  registerComponent(KtManip::KtTorqueConstantToken, &torqueConstant_);
  registerComponent(KtManip::KtMaxEfficiencyToken, &maxEfficiency_);
  registerComponent(KtManip::KtNoLoadSpeedToken, &noLoadSpeed_);
  registerComponent(KtManip::KtNoLoadCurrentToken, &noLoadCurrent_);
  registerComponent(KtManip::KtStallTorqueToken, &stallTorque_);
}

void KtDcElectricMotor::setMaxEfficiency(double value) {
  if (value >= 0.0 && value <= 1.0) maxEfficiency_ = value;
}

double KtDcElectricMotor::outputTorque(double /*input*/, KtActuatorState& state) const {
  const KtU32 i = linkIndex();
  if (i >= state.powerConverterStates().size()) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtDcElectricMotor::outputTorque - index out of range\n");
    return 0.0;
  }
  const auto& variables = state.powerConverterStates()[i].elements();
  double torque = variables.empty() ? 0.0 : torqueConstant_ * variables[0];
  limitOutputTorque(torque);
  return torque;
}

void KtDcElectricMotor::computeStateDerivatives(double input, KtActuatorState& state,
                                                Derivatives& derivatives) const {
  if (armatureInductance_ == 0.0) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtDcElectricMotor::computeStateDerivatives - divided by zeroo\n");
    return;
  }
  if (!hasStateEntries(state)) {
    Kt::Print::instance().write(
        Kt::Print::kError, "KtDcElectricMotor::computeStateDerivatives - index out of range\n");
    return;
  }
  const KtU32 i = linkIndex();
  const auto& variables = state.powerConverterStates()[i].elements();
  if (variables.empty()) return;
  // Taken before the resizing: the caller may have the derivatives written into the state.
  const double current = variables[0];
  const double rate = state.motorVelocities()[i];
  derivatives.resize(1);
  if (armatureInductance_ < 0.0) return;
  derivatives[0] =
      (input - current * armatureResistance_ - torqueConstant_ * rate) / armatureInductance_;
}
