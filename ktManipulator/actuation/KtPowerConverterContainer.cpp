#include "ktManipulator/actuation/KtPowerConverterContainer.h"

#include "ktManipulator/actuation/KtDcElectricMotor.h"
#include "ktManipulator/actuation/KtHydraulicCylinder.h"
#include "ktManipulator/actuation/KtPassThroughPowerConverter.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

template class KtXmlVariableElementType<KtBasePowerConverter>;

const KtToken& KtPowerConverterContainer::classToken() {
  return KtManip::KtPowerConverterContainerToken;
}

void KtPowerConverterContainer::registerComponentCreators() {
  registerComponentCreator(KtPassThroughPowerConverter::classToken(),
                           KtPassThroughPowerConverter::creator);
  registerComponentCreator(KtDcElectricMotor::classToken(), KtDcElectricMotor::creator);
  registerComponentCreator(KtHydraulicCylinder::classToken(), KtHydraulicCylinder::creator);
}

KtU32 KtPowerConverterContainer::numStateVariables() const {
  return element() != nullptr ? element()->numStateVariables() : 0;
}

double KtPowerConverterContainer::outputTorque(double input, KtActuatorState& state) const {
  return element() != nullptr ? element()->outputTorque(input, state) : 0.0;
}

void KtPowerConverterContainer::computeStateDerivatives(
    double input, KtActuatorState& state, KtBasePowerConverter::Derivatives& derivatives) const {
  if (element() != nullptr) {
    element()->computeStateDerivatives(input, state, derivatives);
  } else {
    derivatives.resize(0);
  }
}
