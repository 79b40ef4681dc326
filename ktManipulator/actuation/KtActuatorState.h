#pragma once

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"

/// The dynamic quantities of a manipulator's actuators: one entry per joint in each list, at the
/// joint's link index. All lists are empty by default.
///
/// The library fills in what follows from the joint state and remembers the friction's sticking.
/// Nothing here advances motor positions, motor rates and converter states in time: that is the
/// caller's, with the derivatives that `KtPowerConverterContainer::computeStateDerivatives` and
/// `KtMechanicalActuatorComponent::acceleration` give.
class KT_EXPORT KtActuatorState : public KtXmlPersistent<KtActuatorState, KtXmlCompoundType> {
 public:
  /// One real for each joint.
  using Reals = KtXmlVectorType<KtXmlBasicType<double>>;
  /// One truth value for each joint.
  using Flags = KtXmlVectorType<KtXmlBasicType<bool>>;
  /// A list of reals for each joint.
  using RealLists = KtXmlVectorType<KtXmlVectorType<KtXmlBasicType<double>>>;

  void registerComponents() override;

  /// The torque that each actuator gave last, on the joint side.
  virtual const Reals& outputTorques() const { return outputTorques_; }
  virtual Reals& outputTorques() { return outputTorques_; }
  virtual void setOutputTorques(const Reals& values) { outputTorques_ = values; }
  /// The position of each motor: the joint's position times the gear ratio where the joint is
  /// rigid.
  virtual const Reals& motorPositions() const { return motorPositions_; }
  virtual Reals& motorPositions() { return motorPositions_; }
  virtual void setMotorPositions(const Reals& values) { motorPositions_ = values; }
  /// The rate of each motor.
  virtual const Reals& motorVelocities() const { return motorVelocities_; }
  virtual Reals& motorVelocities() { return motorVelocities_; }
  virtual void setMotorVelocities(const Reals& values) { motorVelocities_ = values; }
  /// The acceleration of each motor.
  virtual const Reals& motorAccelerations() const { return motorAccelerations_; }
  virtual Reals& motorAccelerations() { return motorAccelerations_; }
  virtual void setMotorAccelerations(const Reals& values) { motorAccelerations_ = values; }
  /// True where the mechanical part is not rigid.
  virtual const Flags& nonRigidActuatorFlags() const { return nonRigidActuatorFlags_; }
  virtual Flags& nonRigidActuatorFlags() { return nonRigidActuatorFlags_; }
  virtual void setNonRigidActuatorFlags(const Flags& values) { nonRigidActuatorFlags_ = values; }
  /// The motor position at which the spring of the static friction sits.
  virtual const Reals& springDamperCenters() const { return springDamperCenters_; }
  virtual Reals& springDamperCenters() { return springDamperCenters_; }
  virtual void setSpringDamperCenters(const Reals& values) { springDamperCenters_ = values; }
  /// True while the joint sticks.
  virtual const Flags& staticFrictionModes() const { return staticFrictionModes_; }
  virtual Flags& staticFrictionModes() { return staticFrictionModes_; }
  virtual void setStaticFrictionModes(const Flags& values) { staticFrictionModes_ = values; }
  /// A motor rate kept for comparison.
  virtual const Reals& lastVelocities() const { return lastVelocities_; }
  virtual Reals& lastVelocities() { return lastVelocities_; }
  virtual void setLastVelocities(const Reals& values) { lastVelocities_ = values; }
  /// A motor position kept for reversal.
  virtual const Reals& reverseMotionPositions() const { return reverseMotionPositions_; }
  virtual Reals& reverseMotionPositions() { return reverseMotionPositions_; }
  virtual void setReverseMotionPositions(const Reals& values) { reverseMotionPositions_ = values; }
  /// The state variables of each joint's power converter.
  virtual const RealLists& powerConverterStates() const { return powerConverterStates_; }
  virtual RealLists& powerConverterStates() { return powerConverterStates_; }
  virtual void setPowerConverterStates(const RealLists& values) { powerConverterStates_ = values; }
  /// Gives all lists the length n; entries below it stay, new ones are 0, false or empty.
  virtual void resize(KtU32 n);

  bool operator==(const KtActuatorState&) const = default;
  static const KtToken& classToken();

 private:
  Reals outputTorques_;
  Reals motorPositions_;
  Reals motorVelocities_;
  Reals motorAccelerations_;
  Flags nonRigidActuatorFlags_;
  Reals springDamperCenters_;
  Flags staticFrictionModes_;
  Reals lastVelocities_;
  Reals reverseMotionPositions_;
  RealLists powerConverterStates_;
};
