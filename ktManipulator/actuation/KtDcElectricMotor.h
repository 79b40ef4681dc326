#pragma once

#include "ktManipulator/actuation/KtBasePowerConverter.h"

/// A direct-current motor with one state variable, the current i of its armature:
///
///     torque = K i,    di/dt = (u - R i - K omega) / L
///
/// with the voltage u as the command and the motor's rate omega. Any consistent system of units
/// serves, for instance volts, amperes, ohms, henries, newton metres and radians per second.
///
/// An inductance of 0 is reported and a negative one passed over: neither has a derivative. The
/// torque doesn't look at the command; an empty list of state variables counts as no current.
///
/// @see G. F. Franklin, J. D. Powell, A. Emami-Naeini, Feedback Control of Dynamic Systems, the
///      chapter on dynamic models, DC motors
class KT_EXPORT KtDcElectricMotor
    : public KtXmlPersistent<KtDcElectricMotor, KtBasePowerConverter> {
 public:
  void registerComponents() override;
  KtU32 numStateVariables() const override { return 1; }
  double outputTorque(double input, KtActuatorState& state) const override;
  void computeStateDerivatives(double input, KtActuatorState& state,
                               Derivatives& derivatives) const override;

  /// The inductance L of the armature; 0 by default.
  virtual double armatureInductance() const { return armatureInductance_; }
  virtual void setArmatureInductance(double value) { armatureInductance_ = value; }
  /// The resistance R of the armature; 0 by default.
  virtual double armatureResistance() const { return armatureResistance_; }
  virtual void setArmatureResistance(double value) { armatureResistance_ = value; }
  /// The constant K: torque per current and back voltage per rate; 0 by default.
  virtual double torqueConstant() const { return torqueConstant_; }
  virtual void setTorqueConstant(double value) { torqueConstant_ = value; }
  /// The best efficiency, a datum that nothing computes with; 1 by default.
  virtual double maxEfficiency() const { return maxEfficiency_; }
  /// A value outside [0, 1] is ignored.
  virtual void setMaxEfficiency(double value);
  /// The rate without load, a datum that nothing computes with; 0 by default.
  virtual double noLoadSpeed() const { return noLoadSpeed_; }
  virtual void setNoLoadSpeed(double value) { noLoadSpeed_ = value; }
  /// The current without load, a datum that nothing computes with; 0 by default.
  virtual double noLoadCurrent() const { return noLoadCurrent_; }
  virtual void setNoLoadCurrent(double value) { noLoadCurrent_ = value; }
  /// The torque at rest, a datum that nothing computes with; 0 by default.
  virtual double stallTorque() const { return stallTorque_; }
  virtual void setStallTorque(double value) { stallTorque_ = value; }

  /// Exact equality; the link takes no part.
  bool operator==(const KtDcElectricMotor&) const = default;
  static const KtToken& classToken();

 private:
  KtXmlBasicType<double> armatureInductance_;
  KtXmlBasicType<double> armatureResistance_;
  KtXmlBasicType<double> torqueConstant_;
  KtXmlBasicType<double> maxEfficiency_{1.0};
  KtXmlBasicType<double> noLoadSpeed_;
  KtXmlBasicType<double> noLoadCurrent_;
  KtXmlBasicType<double> stallTorque_;
};
