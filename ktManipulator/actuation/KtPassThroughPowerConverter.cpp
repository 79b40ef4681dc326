#include "ktManipulator/actuation/KtPassThroughPowerConverter.h"

#include "ktManipulator/foundation/tokens/KtManipTokens.h"

const KtToken& KtPassThroughPowerConverter::classToken() {
  return KtManip::KtPassThroughPowerConverterToken;
}

double KtPassThroughPowerConverter::outputTorque(double input, KtActuatorState& /*state*/) const {
  limitOutputTorque(input);
  return input;
}

void KtPassThroughPowerConverter::computeStateDerivatives(double /*input*/,
                                                          KtActuatorState& /*state*/,
                                                          Derivatives& derivatives) const {
  derivatives.resize(0);
}
