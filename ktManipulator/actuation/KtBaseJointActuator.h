#pragma once

#include "ktManipulator/actuation/KtActuatorPart.h"

class KtManipulatorActiveState;

/// What a joint actuator of older files answers; the present form is `KtJointActuator`, which is
/// none of these. Arguments and results are on the joint side unless said otherwise.
class KT_EXPORT KtBaseJointActuator : public KtActuatorPart {
 public:
  /// Registers nothing.
  void registerComponents() override {}

  /// The joint's lower limit.
  virtual double lowerLimit() const = 0;
  virtual void setLowerLimit(double value) = 0;
  /// The joint's upper limit.
  virtual double upperLimit() const = 0;
  virtual void setUpperLimit(double value) = 0;
  /// The joint's greatest rate.
  virtual double maxOutputRate() const = 0;
  virtual void setMaxOutputRate(double value) = 0;
  /// The greatest torque on the joint side: `maxTorque()` times `gearRatio()`.
  virtual double maxOutputTorque() const = 0;
  /// The least torque on the joint side: `minTorque()` times `gearRatio()`.
  virtual double minOutputTorque() const = 0;
  /// The greatest torque on the motor side.
  virtual double maxTorque() const = 0;
  virtual void setMaxTorque(double value) = 0;
  /// The least torque on the motor side.
  virtual double minTorque() const = 0;
  virtual void setMinTorque(double value) = 0;
  /// The rotor's inertia.
  virtual double inertia() const = 0;
  virtual void setInertia(double value) = 0;
  /// The viscous friction per rate of the motor.
  virtual double frictionCoefficient() const = 0;
  virtual void setFrictionCoefficient(double value) = 0;
  /// Motor side by joint side.
  virtual double gearRatio() const = 0;
  /// Whether motor and joint move in step.
  virtual bool isRigid() const = 0;
  /// The torque that reaches the joint.
  ///
  /// @param command  torque of the motor, before the gear
  /// @param load     torque that the joint must carry otherwise
  virtual double outputTorque(double command, double load,
                              KtManipulatorActiveState& active) const = 0;
  /// The torque of stoppers and viscous friction.
  virtual double linearTorque(KtManipulatorActiveState& active) const = 0;
  /// Sets the acceleration of the motor.
  ///
  /// @param command  torque of the motor, before the gear
  virtual void acceleration(double command, KtManipulatorActiveState& active) const = 0;
  /// The rotor's inertia as the joint feels it.
  virtual double effectiveInertia(double position) const = 0;
  /// Scales the actuator to a mechanism of other size, by a factor of all lengths and one of the
  /// joint's limits.
  virtual void scaleBy(double lengthScale, double limitScale) = 0;
  /// Sets the joint's entries of the actuator state from those of the joint.
  virtual void initializeActuatorStates(KtManipulatorActiveState& active) const = 0;

  /// Exact equality; the link takes no part.
  bool operator==(const KtBaseJointActuator&) const = default;
};
