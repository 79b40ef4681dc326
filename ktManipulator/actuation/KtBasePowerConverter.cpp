#include "ktManipulator/actuation/KtBasePowerConverter.h"

#include <cmath>

#include "ktManipulator/foundation/tokens/KtManipTokens.h"

void KtBasePowerConverter::registerComponents() {
  KtActuatorPart::registerComponents();
  registerComponent(KtManip::KtMinTorqueToken, &minTorque_);
  registerComponent(KtManip::KtMaxTorqueToken, &maxTorque_);
}

void KtBasePowerConverter::scaleBy(double lengthScale, double /*limitScale*/) {
  const double factor = std::pow(lengthScale, 3.0);
  minTorque_ = minTorque_ * factor;
  maxTorque_ = maxTorque_ * factor;
}

void KtBasePowerConverter::limitOutputTorque(double& torque) const {
  if (torque > maxTorque_) {
    torque = maxTorque_;
  } else if (torque < minTorque_) {
    torque = minTorque_;
  }
}

bool KtBasePowerConverter::hasStateEntries(const KtActuatorState& state) const {
  const KtU32 i = linkIndex();
  return i < state.powerConverterStates().size() && i < state.motorPositions().size() &&
         i < state.motorVelocities().size();
}
