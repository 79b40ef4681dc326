// The joint of a link: actuator, limits, spring and damper.
#include "ktManipulator/foundation/function/KtLinearMultivariableConstraint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

const KtJointActuator& KtManipulatorLink::jointActuator() const {
  return jointActuator_;
}

void KtManipulatorLink::setJointActuator(const KtJointActuator& actuator) {
  jointActuator_ = actuator;
  jointActuator_.setManipulatorLink(this);  // the assignment copied the other's pointer
  updateDefaultLimitConstraints();
}

bool KtManipulatorLink::replaceJointActuator(const std::string& label,
                                             const KtJointActuator& actuator) {
  if (label == this->label()) {
    setJointActuator(actuator);
    return false;
  }
  for (KtManipulatorLink& child : childLinks_.elements()) {
    if (child.replaceJointActuator(label, actuator)) return true;
  }
  return false;
}

bool KtManipulatorLink::setJointLimit(const std::string& label, bool lower, double value) {
  if (label == this->label()) {
    if (lower) {
      jointActuator_.setLowerLimit(value);
    } else {
      jointActuator_.setUpperLimit(value);
    }
    updateDefaultLimitConstraints();
    return true;
  }
  for (KtManipulatorLink& child : childLinks_.elements()) {
    if (child.setJointLimit(label, lower, value)) return true;
  }
  return false;
}

void KtManipulatorLink::makeLimitConstraint(LimitConstraint& limit, double constant,
                                            double coefficient) const {
  KtLinearMultivariableConstraint constraint;
  constraint.setConstant(constant);
  const KtU32 index = linkIndex();
  if (index < KtLinearMultivariableConstraint::kMostVariables) {
    constraint.setCoefficient(index, coefficient);
  }
  limit.constraint.setConstraint(constraint);
  limit.made = true;
}

const KtBaseStateConstraint& KtManipulatorLink::limitConstraint(
    const KtStateConstraintContainer& container, LimitConstraint& limit, double constant,
    double coefficient) const {
  if (container.topElement() != nullptr) return *container.topElement();
  if (!limit.made) makeLimitConstraint(limit, constant, coefficient);
  return limit.constraint;
}

const KtBaseStateConstraint& KtManipulatorLink::upperLimitConstraint() const {
  return limitConstraint(upperLimitContainer_, defaultUpperLimit_.require(),
                         jointActuator_.upperLimit(), -1.0);
}

const KtBaseStateConstraint& KtManipulatorLink::lowerLimitConstraint() const {
  return limitConstraint(lowerLimitContainer_, defaultLowerLimit_.require(),
                         -jointActuator_.lowerLimit(), 1.0);
}

void KtManipulatorLink::setUpperLimitConstraint(const KtBaseStateConstraint& constraint) {
  upperLimitContainer_.setTopElement(constraint);
}

void KtManipulatorLink::setLowerLimitConstraint(const KtBaseStateConstraint& constraint) {
  lowerLimitContainer_.setTopElement(constraint);
}

// Constraints that were never used are created on first use.
void KtManipulatorLink::updateDefaultLimitConstraints() {
  LimitConstraint* upper = defaultUpperLimit_.get();
  if (upper != nullptr && upper->made && upperLimitContainer_.topElement() == nullptr) {
    makeLimitConstraint(*upper, jointActuator_.upperLimit(), -1.0);
  }
  LimitConstraint* lower = defaultLowerLimit_.get();
  if (lower != nullptr && lower->made && lowerLimitContainer_.topElement() == nullptr) {
    makeLimitConstraint(*lower, -jointActuator_.lowerLimit(), 1.0);
  }
}

const KtSpringProperties& KtManipulatorLink::springProperties() const {
  return springProperties_;
}
void KtManipulatorLink::setSpringProperties(const KtSpringProperties& properties) {
  springProperties_ = properties;
}
const KtDamperProperties& KtManipulatorLink::damperProperties() const {
  return damperProperties_;
}
void KtManipulatorLink::setDamperProperties(const KtDamperProperties& properties) {
  damperProperties_ = properties;
}

bool KtManipulatorLink::isConstrained() const {
  return isConstrained_;
}
void KtManipulatorLink::setIsConstrained(bool value) {
  isConstrained_ = value;
}
