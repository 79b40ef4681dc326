#include "ktManipulator/actuation/KtMechanicalActuatorComponentContainer.h"

#include "ktManipulator/foundation/tokens/KtManipTokens.h"

template class KtXmlVariableElementType<KtMechanicalActuatorComponent>;

const KtToken& KtMechanicalActuatorComponentContainer::classToken() {
  return KtManip::KtMechanicalActuatorComponentContainerToken;
}

void KtMechanicalActuatorComponentContainer::registerComponentCreators() {
  registerComponentCreator(KtMechanicalActuatorComponent::classToken(),
                           KtMechanicalActuatorComponent::creator);
}

double KtMechanicalActuatorComponentContainer::outputTorque(
    double command, double load, KtManipulatorActiveState& active) const {
  return element() != nullptr ? element()->outputTorque(command, load, active) : command;
}

double KtMechanicalActuatorComponentContainer::linearTorque(
    KtManipulatorActiveState& active) const {
  return element() != nullptr ? element()->linearTorque(active) : 0.0;
}
