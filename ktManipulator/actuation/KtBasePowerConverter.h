#pragma once

#include "ktManipulator/actuation/KtActuatorPart.h"
#include "ktManipulator/actuation/KtActuatorState.h"

/// What turns a command into a motor's torque, and may have state variables of its own.
///
/// The state variables stand in `KtActuatorState::powerConverterStates()` at the index of the
/// converter's link, which must be set. The library computes their derivatives; the caller
/// integrates them. All members and inputs are in one consistent system of units.
class KT_EXPORT KtBasePowerConverter : public KtActuatorPart {
 public:
  /// The derivatives of the state variables.
  using Derivatives = KtXmlVectorType<KtXmlBasicType<double>>;

  void registerComponents() override;

  /// The greatest torque, on the motor side; 1e+300 by default.
  virtual double maxTorque() const { return maxTorque_; }
  virtual void setMaxTorque(double value) { maxTorque_ = value; }
  /// The least torque, on the motor side; -1e+300 by default.
  virtual double minTorque() const { return minTorque_; }
  virtual void setMinTorque(double value) { minTorque_ = value; }
  /// How many state variables there are.
  virtual KtU32 numStateVariables() const = 0;
  /// Scales the converter to a mechanism of other size: both torque limits go with the cube of the
  /// length scale.
  ///
  /// @param lengthScale  factor of all lengths
  /// @param limitScale   factor of the joint's limits; not used
  virtual void scaleBy(double lengthScale, double limitScale);
  /// The torque on the motor side, after `limitOutputTorque`; 0 and a message if the state has no
  /// entry for this joint.
  ///
  /// @param input  the command
  virtual double outputTorque(double input, KtActuatorState& state) const = 0;
  /// The time derivatives of the state variables. `derivatives` gets one entry for each; where a
  /// parameter or the state doesn't allow that, it keeps what it held.
  ///
  /// @param input  the command
  virtual void computeStateDerivatives(double input, KtActuatorState& state,
                                       Derivatives& derivatives) const = 0;
  /// Replaces a torque beyond `maxTorque()` or `minTorque()` by that limit.
  virtual void limitOutputTorque(double& torque) const;

  /// Exact equality; the link takes no part.
  bool operator==(const KtBasePowerConverter&) const = default;

 protected:
  /// Whether the state has entries for this joint in all lists that the derivatives are computed
  /// from.
  bool hasStateEntries(const KtActuatorState& state) const;

 private:
  KtXmlBasicType<double> minTorque_{-1e+300};
  KtXmlBasicType<double> maxTorque_{1e+300};
};
