#include "ktManipulator/actuation/KtMechanicalActuatorComponent.h"

#include "ktManipulator/foundation/tokens/KtManipTokens.h"

const KtToken& KtMechanicalActuatorComponent::classToken() {
  return KtManip::KtMechanicalActuatorComponentToken;
}

KtMechanicalActuatorComponent KtMechanicalActuatorComponent::defaultObject() {
  KtMechanicalActuatorComponent component(0.004, 0.001, 40.0, -150.0, 150.0, 1000.0, 0.08, 4900.0,
                                          0.0);
  component.setStaticCoulombDamperCoefficient(140.0);
  return component;
}

void KtMechanicalActuatorComponent::registerComponents() {
  KtActuatorPart::registerComponents();
  registerDriveParameters();
  registerContactParameters();
  registerEfficiency();
}
