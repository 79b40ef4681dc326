#pragma once

#include "ktManipulator/actuation/KtBaseJointActuator.h"
#include "ktManipulator/actuation/KtJointMechanics.h"

extern template class KtJointMechanicsParameters<KtBaseJointActuator>;

/// The joint actuator of older files, in one class: a motor's torque limits and the mechanics of a
/// `KtMechanicalActuatorComponent` without an efficiency. A link that reads one converts it with
/// `KtJointActuator::setFromOldJointActuator`.
///
/// `outputTorque` differs in what loads the dry friction: here the linear torque is taken off too.
class KT_EXPORT KtOldJointActuator
    : public KtXmlPersistent<
          KtOldJointActuator,
          KtJointMechanics<KtOldJointActuator, KtJointMechanicsParameters<KtBaseJointActuator>>> {
 public:
  /// All parameters at their defaults.
  KtOldJointActuator() = default;
  /// The first eleven parameters in the order of a file; the others at their defaults.
  KtOldJointActuator(double inertia, double frictionCoefficient, double gearRatio,
                     double lowerLimit, double upperLimit, double maxOutputRate, double stopperZone,
                     double minTorque, double maxTorque, double stopperSpringCoefficient,
                     double stopperDampingCoefficient);

  void registerComponents() override;
  double maxOutputTorque() const override { return maxTorque_ * gearRatio(); }
  double minOutputTorque() const override { return minTorque_ * gearRatio(); }
  double maxTorque() const override { return maxTorque_; }
  void setMaxTorque(double value) override { maxTorque_ = value; }
  double minTorque() const override { return minTorque_; }
  void setMinTorque(double value) override { minTorque_ = value; }
  /// Scales the mechanics, and the torque limits with the cube of the length scale.
  void scaleBy(double lengthScale, double limitScale) override;

  /// Exact equality; the link takes no part.
  bool operator==(const KtOldJointActuator&) const = default;
  static const KtToken& classToken();

  /// How messages name the class.
  static constexpr const char* kClassName = "KtOldJointActuator";
  /// The dry friction is loaded by what the linear torque leaves of drive and load.
  static constexpr bool kFrictionSeesLinearTorque = true;

 private:
  KtXmlBasicType<double> minTorque_{-1e+300};
  KtXmlBasicType<double> maxTorque_{1e+300};
};

extern template class KtJointMechanics<KtOldJointActuator,
                                       KtJointMechanicsParameters<KtBaseJointActuator>>;
