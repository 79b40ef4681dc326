#include "ktManipulator/actuation/KtOldJointActuator.h"

#include <cmath>

#include "ktManipulator/foundation/tokens/KtManipTokens.h"

const KtToken& KtOldJointActuator::classToken() {
  return KtManip::KtJointActuatorToken;
}

KtOldJointActuator::KtOldJointActuator(double inertia, double frictionCoefficient, double gearRatio,
                                       double lowerLimit, double upperLimit, double maxOutputRate,
                                       double stopperZone, double minTorque, double maxTorque,
                                       double stopperSpringCoefficient,
                                       double stopperDampingCoefficient)
    : KtXmlPersistent(inertia, frictionCoefficient, gearRatio, lowerLimit, upperLimit,
                      maxOutputRate, stopperZone, stopperSpringCoefficient,
                      stopperDampingCoefficient),
      minTorque_(minTorque),
      maxTorque_(maxTorque) {}

void KtOldJointActuator::registerComponents() {
  KtBaseJointActuator::registerComponents();
  registerDriveParameters();
  registerComponent(KtManip::KtMinTorqueToken, &minTorque_);
  registerComponent(KtManip::KtMaxTorqueToken, &maxTorque_);
  registerContactParameters();
}

void KtOldJointActuator::scaleBy(double lengthScale, double limitScale) {
  KtJointMechanics::scaleBy(lengthScale, limitScale);
  const double cube = std::pow(lengthScale, 3.0);
  minTorque_ = minTorque_ * cube;
  maxTorque_ = maxTorque_ * cube;
}
