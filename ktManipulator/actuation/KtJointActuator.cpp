#include "ktManipulator/actuation/KtJointActuator.h"

#include "ktManipulator/actuation/KtOldJointActuator.h"
#include "ktManipulator/actuation/KtPassThroughPowerConverter.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

template class KtXmlVectorType<KtJointActuator>;

namespace {

KtPassThroughPowerConverter passThrough(double minTorque, double maxTorque) {
  KtPassThroughPowerConverter converter;
  converter.setMinTorque(minTorque);
  converter.setMaxTorque(maxTorque);
  return converter;
}

// Puts a copy of the part into its holder, also where it is the holder's own.
template <class Holder, class Part>
void hold(Holder& holder, const Part& part, const KtManipulatorLink* link) {
  if (&part != holder.element()) holder.setElement(part);
  if (holder.element() != nullptr) holder.element()->setManipulatorLink(link);
}

}  // namespace

const KtToken& KtJointActuator::classToken() {
  return KtManip::KtCompositeJointActuatorToken;
}

KtJointActuator::KtJointActuator() {
  mechanicalComponentContainer_.setElement(KtMechanicalActuatorComponent());
  powerConverterContainer_.setElement(KtPassThroughPowerConverter());
}

KtJointActuator::KtJointActuator(double inertia, double frictionCoefficient, double gearRatio,
                                 double lowerLimit, double upperLimit, double maxOutputRate,
                                 double stopperZone, double minTorque, double maxTorque,
                                 double stopperSpringCoefficient,
                                 double stopperDampingCoefficient) {
  powerConverterContainer_.setElement(passThrough(minTorque, maxTorque));
  mechanicalComponentContainer_.setElement(KtMechanicalActuatorComponent(
      inertia, frictionCoefficient, gearRatio, lowerLimit, upperLimit, maxOutputRate, stopperZone,
      stopperSpringCoefficient, stopperDampingCoefficient));
}

KtJointActuator KtJointActuator::defaultObject() {
  KtJointActuator actuator;
  actuator.setMechanicalComponent(KtMechanicalActuatorComponent::defaultObject());
  actuator.setPowerConverter(KtPassThroughPowerConverter());
  return actuator;
}

void KtJointActuator::registerComponents() {
  KtActuatorPart::registerComponents();
  registerComponent(KtManip::KtMechanicalActuatorComponentContainerToken,
                    &mechanicalComponentContainer_);
  registerComponent(KtManip::KtPowerConverterContainerToken, &powerConverterContainer_);
  registerComponent(KtManip::KtPrimeMoverManufacturerDataToken, &primeMoveManufacturerData_);
  registerComponent(KtManip::KtGearheadManufacturerDataVectorToken,
                    &gearheadManufacturerDataVector_);
}

void KtJointActuator::setManipulatorLink(const KtManipulatorLink* link) {
  KtActuatorPart::setManipulatorLink(link);
  if (auto* part = mechanicalComponentContainer_.element()) part->setManipulatorLink(link);
  if (auto* part = powerConverterContainer_.element()) part->setManipulatorLink(link);
}

void KtJointActuator::setMechanicalPartContainer(
    const KtMechanicalActuatorComponentContainer& container) {
  mechanicalComponentContainer_ = container;
  if (manipulatorLink() != nullptr) setManipulatorLink(manipulatorLink());
}
void KtJointActuator::setMechanicalComponent(const KtMechanicalActuatorComponent& component) {
  hold(mechanicalComponentContainer_, component, manipulatorLink());
}

void KtJointActuator::setPowerConverterContainer(const KtPowerConverterContainer& container) {
  powerConverterContainer_ = container;
  if (manipulatorLink() != nullptr) setManipulatorLink(manipulatorLink());
}
void KtJointActuator::setPowerConverter(const KtBasePowerConverter& converter) {
  hold(powerConverterContainer_, converter, manipulatorLink());
}

double KtJointActuator::lowerLimit() const {
  const auto* part = mechanicalComponentContainer_.element();
  return part != nullptr ? part->lowerLimit() : -1e+300;
}
void KtJointActuator::setLowerLimit(double value) {
  if (auto* part = mechanicalComponentContainer_.element()) part->setLowerLimit(value);
}

double KtJointActuator::upperLimit() const {
  const auto* part = mechanicalComponentContainer_.element();
  return part != nullptr ? part->upperLimit() : 1e+300;
}
void KtJointActuator::setUpperLimit(double value) {
  if (auto* part = mechanicalComponentContainer_.element()) part->setUpperLimit(value);
}

double KtJointActuator::maxOutputRate() const {
  const auto* part = mechanicalComponentContainer_.element();
  return part != nullptr ? part->maxOutputRate() : 1e+300;
}
void KtJointActuator::setMaxOutputRate(double value) {
  if (auto* part = mechanicalComponentContainer_.element()) part->setMaxOutputRate(value);
}

double KtJointActuator::maxTorque() const {
  const auto* part = powerConverterContainer_.element();
  return part != nullptr ? part->maxTorque() : 1e+300;
}
void KtJointActuator::setMaxTorque(double value) {
  if (auto* part = powerConverterContainer_.element()) part->setMaxTorque(value);
}

double KtJointActuator::minTorque() const {
  const auto* part = powerConverterContainer_.element();
  return part != nullptr ? part->minTorque() : -1e+300;
}
void KtJointActuator::setMinTorque(double value) {
  if (auto* part = powerConverterContainer_.element()) part->setMinTorque(value);
}

double KtJointActuator::inertia() const {
  const auto* part = mechanicalComponentContainer_.element();
  return part != nullptr ? part->inertia() : 0.0;
}
void KtJointActuator::setInertia(double value) {
  if (auto* part = mechanicalComponentContainer_.element()) part->setInertia(value);
}

double KtJointActuator::frictionCoefficient() const {
  const auto* part = mechanicalComponentContainer_.element();
  return part != nullptr ? part->frictionCoefficient() : 0.0;
}
void KtJointActuator::setFrictionCoefficient(double value) {
  if (auto* part = mechanicalComponentContainer_.element()) part->setFrictionCoefficient(value);
}

double KtJointActuator::gearRatio() const {
  const auto* part = mechanicalComponentContainer_.element();
  return part != nullptr ? part->gearRatio() : 1.0;
}
void KtJointActuator::setGearRatio(double value) {
  if (auto* part = mechanicalComponentContainer_.element()) part->setGearRatio(value);
}

bool KtJointActuator::isRigid() const {
  const auto* part = mechanicalComponentContainer_.element();
  return part != nullptr ? part->isRigid() : true;
}
void KtJointActuator::setIsRigid(bool value) {
  if (auto* part = mechanicalComponentContainer_.element()) part->setIsRigid(value);
}

double KtJointActuator::effectiveInertia(double position) const {
  const auto* part = mechanicalComponentContainer_.element();
  return part != nullptr ? part->effectiveInertia(position) : 0.0;
}

void KtJointActuator::scaleBy(double lengthScale, double limitScale) {
  if (auto* part = mechanicalComponentContainer_.element()) part->scaleBy(lengthScale, limitScale);
  if (auto* part = powerConverterContainer_.element()) part->scaleBy(lengthScale, limitScale);
}

void KtJointActuator::initializeActuatorStates(KtManipulatorActiveState& active) const {
  const auto* part = mechanicalComponentContainer_.element();
  if (part != nullptr) part->initializeActuatorStates(active);
}

void KtJointActuator::setFromOldJointActuator(const KtOldJointActuator& old) {
  hold(powerConverterContainer_, passThrough(old.minTorque(), old.maxTorque()), manipulatorLink());
  KtMechanicalActuatorComponent component(old.inertia(), old.frictionCoefficient(), old.gearRatio(),
                                          old.lowerLimit(), old.upperLimit(), old.maxOutputRate(),
                                          old.stopperZone(), old.stopperSpringCoefficient(),
                                          old.stopperDampingCoefficient());
  component.setStaticCoulombFriction(old.staticCoulombFriction());
  component.setKineticCoulombFrictionPercentage(old.kineticCoulombFrictionPercentage());
  component.setStaticCoulombSpringCoefficient(old.staticCoulombSpringCoefficient());
  component.setStaticCoulombDamperCoefficient(old.staticCoulombDamperCoefficient());
  component.setLimitingVelocityStickRegion(old.limitingVelocityStickRegion());
  component.setIsRigid(old.isRigid());
  component.setJointFlexibilityStiffness(old.jointFlexibilityStiffness());
  component.setJointFlexibilityDamping(old.jointFlexibilityDamping());
  component.setBacklash(old.backlash());
  hold(mechanicalComponentContainer_, component, manipulatorLink());
}
