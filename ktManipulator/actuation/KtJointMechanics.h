/// @file
/// What the mechanical side of a joint actuator is, said once for its present form
/// (`KtMechanicalActuatorComponent`) and for the one of older files (`KtOldJointActuator`).
#pragma once

#include "ktManipulator/actuation/KtActuatorPart.h"
#include "ktManipulator/foundation/containers/KtXmlBasicType.h"

class KtManipulatorActiveState;

// Whether an operation overrides one depends on the base.
// NOLINTBEGIN(modernize-use-override)

/// The parameters of a rotor, a gear, a joint's limits with stoppers, dry friction and a flexible
/// coupling. Quantities of the motor side are those of the joint side times the gear ratio.
///
/// A setter with a guard ignores a value outside of it, NaN included. Where the base has an
/// operation already, that of this class overrides it.
///
/// @tparam Base  the base of the class whose parameters these are; derived from `KtActuatorPart`
template <class Base>
class KT_EXPORT KtJointMechanicsParameters : public Base {
 public:
  /// All parameters at their defaults.
  KtJointMechanicsParameters() = default;
  /// The first nine parameters; the others at their defaults.
  KtJointMechanicsParameters(double inertia, double frictionCoefficient, double gearRatio,
                             double lowerLimit, double upperLimit, double maxOutputRate,
                             double stopperZone, double stopperSpringCoefficient,
                             double stopperDampingCoefficient)
      : inertia_(inertia),
        frictionCoefficient_(frictionCoefficient),
        gearRatio_(gearRatio),
        lowerLimit_(lowerLimit),
        upperLimit_(upperLimit),
        maxOutputRate_(maxOutputRate),
        stopperZone_(stopperZone),
        stopperSpringCoefficient_(stopperSpringCoefficient),
        stopperDampingCoefficient_(stopperDampingCoefficient) {}

  /// The rotor's inertia; 0 by default.
  virtual double inertia() const { return inertia_; }
  virtual void setInertia(double value) { inertia_ = value; }
  /// The viscous friction per rate of the motor; 0 by default.
  virtual double frictionCoefficient() const { return frictionCoefficient_; }
  virtual void setFrictionCoefficient(double value) { frictionCoefficient_ = value; }
  /// Motor side by joint side; 1 by default.
  virtual double gearRatio() const { return gearRatio_; }
  virtual void setGearRatio(double value) { gearRatio_ = value; }
  /// The joint's lower limit; -1e+300 by default.
  virtual double lowerLimit() const { return lowerLimit_; }
  virtual void setLowerLimit(double value) { lowerLimit_ = value; }
  /// The joint's upper limit; 1e+300 by default.
  virtual double upperLimit() const { return upperLimit_; }
  virtual void setUpperLimit(double value) { upperLimit_ = value; }
  /// The joint's greatest rate; 1e+300 by default.
  virtual double maxOutputRate() const { return maxOutputRate_; }
  virtual void setMaxOutputRate(double value) { maxOutputRate_ = value; }
  /// How far before either limit the stopper begins; 0 by default.
  virtual double stopperZone() const { return stopperZone_; }
  virtual void setStopperZone(double value) { stopperZone_ = value; }
  /// The stoppers' stiffness; 0 by default.
  virtual double stopperSpringCoefficient() const { return stopperSpringCoefficient_; }
  virtual void setStopperSpringCoefficient(double value) { stopperSpringCoefficient_ = value; }
  /// The stoppers' damping; 0 by default.
  virtual double stopperDampingCoefficient() const { return stopperDampingCoefficient_; }
  virtual void setStopperDampingCoefficient(double value) { stopperDampingCoefficient_ = value; }
  /// The greatest dry friction of a sticking joint, on the motor side; 0 by default.
  virtual double staticCoulombFriction() const { return staticCoulombFriction_; }
  /// A negative value is ignored.
  virtual void setStaticCoulombFriction(double value) {
    if (value >= 0.0) staticCoulombFriction_ = value;
  }
  /// The dry friction of a sliding joint as a fraction of the static one; 1 by default.
  virtual double kineticCoulombFrictionPercentage() const {
    return kineticCoulombFrictionPercentage_;
  }
  /// A value outside [0, 1] is ignored.
  virtual void setKineticCoulombFrictionPercentage(double value) {
    if (value >= 0.0 && value <= 1.0) kineticCoulombFrictionPercentage_ = value;
  }
  /// The stiffness of a sticking joint, on the motor side; 0 by default.
  virtual double staticCoulombSpringCoefficient() const { return staticCoulombSpringCoefficient_; }
  /// A negative value is ignored.
  virtual void setStaticCoulombSpringCoefficient(double value) {
    if (value >= 0.0) staticCoulombSpringCoefficient_ = value;
  }
  /// The damping of a sticking joint, on the motor side; 0 by default.
  virtual double staticCoulombDamperCoefficient() const { return staticCoulombDamperCoefficient_; }
  /// A negative value is ignored.
  virtual void setStaticCoulombDamperCoefficient(double value) {
    if (value >= 0.0) staticCoulombDamperCoefficient_ = value;
  }
  /// The rate of the motor below which the joint sticks; 1e+300 by default.
  virtual double limitingVelocityStickRegion() const { return limitingVelocityStickRegion_; }
  /// A value that is not positive is ignored.
  virtual void setLimitingVelocityStickRegion(double value) {
    if (value > 0.0) limitingVelocityStickRegion_ = value;
  }
  /// Whether motor and joint move in step; true by default.
  virtual bool isRigid() const { return isRigid_; }
  virtual void setIsRigid(bool value) { isRigid_ = value; }
  /// The stiffness of the coupling between motor and joint; 0 by default.
  virtual double jointFlexibilityStiffness() const { return jointFlexibilityStiffness_; }
  /// A negative value is ignored.
  virtual void setJointFlexibilityStiffness(double value) {
    if (value >= 0.0) jointFlexibilityStiffness_ = value;
  }
  /// The damping of that coupling; 0 by default.
  virtual double jointFlexibilityDamping() const { return jointFlexibilityDamping_; }
  /// A negative value is ignored.
  virtual void setJointFlexibilityDamping(double value) {
    if (value >= 0.0) jointFlexibilityDamping_ = value;
  }
  /// The width of the coupling's gap, on the motor side; 0 by default.
  virtual double backlash() const { return backlash_; }
  /// A negative value is ignored.
  virtual void setBacklash(double value) {
    if (value >= 0.0) backlash_ = value;
  }

  /// Exact equality; the link takes no part.
  bool operator==(const KtJointMechanicsParameters&) const = default;

 protected:
  /// The torque on the joint side that a command on the motor side gives without losses.
  double driveTorque(double command) const { return command * gearRatio_; }
  /// Registers the parameters from the inertia to the stopper zone.
  void registerDriveParameters();
  /// Registers those from the stopper's spring to the backlash.
  void registerContactParameters();

 private:
  template <class Cls, class Params>
  friend class KtJointMechanics;

  KtXmlBasicType<double> inertia_;
  KtXmlBasicType<double> frictionCoefficient_;
  KtXmlBasicType<double> gearRatio_{1.0};
  KtXmlBasicType<double> lowerLimit_{-1e+300};
  KtXmlBasicType<double> upperLimit_{1e+300};
  KtXmlBasicType<double> maxOutputRate_{1e+300};
  KtXmlBasicType<double> stopperZone_;
  KtXmlBasicType<double> stopperSpringCoefficient_;
  KtXmlBasicType<double> stopperDampingCoefficient_;
  KtXmlBasicType<double> staticCoulombFriction_;
  KtXmlBasicType<double> kineticCoulombFrictionPercentage_{1.0};
  KtXmlBasicType<double> staticCoulombSpringCoefficient_;
  KtXmlBasicType<double> staticCoulombDamperCoefficient_;
  KtXmlBasicType<double> limitingVelocityStickRegion_{1e+300};
  KtXmlBasicType<bool> isRigid_{true};
  KtXmlBasicType<double> jointFlexibilityStiffness_;
  KtXmlBasicType<double> jointFlexibilityDamping_;
  KtXmlBasicType<double> backlash_;
};

extern template class KtJointMechanicsParameters<KtActuatorPart>;

/// The parameters of a joint's mechanics and the efficiency of its gear.
class KT_EXPORT KtEfficientJointMechanics : public KtJointMechanicsParameters<KtActuatorPart> {
 public:
  using KtJointMechanicsParameters::KtJointMechanicsParameters;

  /// The part of the motor's torque that passes the gear; 1 by default.
  virtual double maxEfficiency() const { return maxEfficiency_; }
  /// A value outside [0, 1] is ignored.
  virtual void setMaxEfficiency(double value) {
    if (value >= 0.0 && value <= 1.0) maxEfficiency_ = value;
  }

  /// Exact equality; the link takes no part.
  bool operator==(const KtEfficientJointMechanics&) const = default;

 protected:
  /// The torque on the joint side that a command on the motor side gives, after the gear's losses.
  double driveTorque(double command) const {
    return KtJointMechanicsParameters::driveTorque(command) * maxEfficiency_;
  }
  /// Registers the efficiency.
  void registerEfficiency();

 private:
  KtXmlBasicType<double> maxEfficiency_{1.0};
};

/// The torques that follow from the parameters and the state of a joint. Arguments and results are
/// torques (or forces) on the joint side unless said otherwise; a joint that the state has no
/// entries for gives 0 and a message.
///
/// What persists between calls stands in the actuator state: whether the dry friction sticks, and
/// where. Every call of `dryFrictionTorque`, also from within another, may change it.
///
/// @tparam Cls     the concrete class: it names itself in messages by `kClassName`, and by
///                 `kFrictionSeesLinearTorque` says whether the linear torque is taken off what
///                 loads the dry friction
/// @tparam Params  `KtJointMechanicsParameters` or a class derived from it
template <class Cls, class Params>
class KT_EXPORT KtJointMechanics : public Params {
 public:
  using Params::Params;

  /// The torque that reaches the joint; it is kept in `outputTorques()` of the actuator state. A
  /// joint that is not rigid gives `nonRigidOutputTorque` whatever the command.
  ///
  /// The list of output torques grows to the joint's index if it is shorter, so that a missing
  /// entry of the joint itself stays missing: states that `initializeActuatorStates` has set up are
  /// long enough.
  ///
  /// @param command  torque of the motor, before the gear
  /// @param load     torque that the joint must carry otherwise
  virtual double outputTorque(double command, double load, KtManipulatorActiveState& active) const;
  /// The sum of `stopperTorque` and `viscousFrictionTorque`.
  virtual double linearTorque(KtManipulatorActiveState& active) const;
  /// The torque of a spring and a damper in the stopper zone before either limit, positive against
  /// the upper one. Where the zones overlap both act.
  virtual double stopperTorque(const KtManipulatorActiveState& active) const;
  /// The friction of the rotor, proportional to the motor's rate.
  virtual double viscousFrictionTorque(const KtManipulatorActiveState& active) const;
  /// The torque of stick-slip friction. Below the limiting rate the joint sticks: friction takes up
  /// the drive, with a spring and a damper about the motor position where the sticking began, and
  /// gives way beyond the static friction. Else the kinetic friction acts along the motor's rate; a
  /// rate of 0 counts as positive. A state without an entry for the centre of the spring leaves the
  /// spring unstretched.
  ///
  /// @param drive  torque that would move the joint
  virtual double dryFrictionTorque(double drive, KtManipulatorActiveState& active) const;
  /// Sets the acceleration of the motor: from the torques on the rotor where the joint is not rigid
  /// and the rotor has an inertia, else the joint's acceleration times the gear ratio. A motor
  /// without an entry in the state is left out, in the former case without a message.
  ///
  /// @param command  torque of the motor, before the gear
  virtual void acceleration(double command, KtManipulatorActiveState& active) const;
  /// The rotor's inertia as the joint feels it through the gear; 0 where the joint is not rigid.
  ///
  /// @param position  of the joint; not used
  virtual double effectiveInertia(double position) const;
  /// Scales the parameters to a mechanism of other size: the inertia with the fifth power of the
  /// length scale, the stoppers' coefficients with the third, the viscous friction with the second;
  /// limits and stopper zone go with the limits' scale. The others stay.
  ///
  /// @param lengthScale  factor of all lengths
  /// @param limitScale   factor of the joint's limits
  virtual void scaleBy(double lengthScale, double limitScale);
  /// Sets the joint's entries of the actuator state from the joint's position, rate and
  /// acceleration: the motor in step with the joint, nothing sticking. All lists take the length of
  /// the joint positions. A joint beyond the active state's lists is reported and changes nothing.
  virtual void initializeActuatorStates(KtManipulatorActiveState& active) const;
  /// The torque of the flexible coupling between motor and joint; it is kept in `outputTorques()`.
  /// The gap of the backlash, on the motor side, lies below the position that is in step with the
  /// joint; inside of it the torque is 0.
  virtual double nonRigidOutputTorque(KtManipulatorActiveState& active) const;

  /// Whether `outputTorque` depends on its load: only stick-slip friction does. Where it has no
  /// torque to give, it still tells a load from none at a gear ratio of 0, by which it divides.
  bool loadMatters() const noexcept {
    return this->isRigid_ &&
           (this->staticCoulombFriction_ != 0.0 || this->staticCoulombSpringCoefficient_ != 0.0 ||
            this->staticCoulombDamperCoefficient_ != 0.0 || this->gearRatio_ == 0.0);
  }

  /// Exact equality; the link takes no part.
  bool operator==(const KtJointMechanics&) const = default;

 private:
  // The operations without `Of` for the joint of an index.
  double stopperTorqueOf(KtU32 i, const KtManipulatorActiveState& active) const;
  double viscousFrictionTorqueOf(KtU32 i, const KtManipulatorActiveState& active) const;
  double dryFrictionTorqueOf(KtU32 i, double drive, KtManipulatorActiveState& active) const;
};

// NOLINTEND(modernize-use-override)
