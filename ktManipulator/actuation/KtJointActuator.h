#pragma once

#include "ktManipulator/actuation/KtManufacturerData.h"
#include "ktManipulator/actuation/KtMechanicalActuatorComponentContainer.h"
#include "ktManipulator/actuation/KtPowerConverterContainer.h"

class KtOldJointActuator;

/// The actuator of a link's joint: one mechanical component and one power converter, with records
/// of their manufacturers.
///
/// Most operations hand on to one of the two parts. Where a file has left that part's holder empty,
/// a getter gives the value of a part that does nothing (limits of 1e+300 to either side, gear
/// ratio 1, rigid, else 0) and a setter does nothing.
class KT_EXPORT KtJointActuator : public KtXmlPersistent<KtJointActuator, KtActuatorPart> {
 public:
  /// Holds a default `KtMechanicalActuatorComponent` and a default `KtPassThroughPowerConverter`.
  KtJointActuator();
  /// Holds a component of these parameters and a pass-through converter of these torque limits.
  KtJointActuator(double inertia, double frictionCoefficient, double gearRatio, double lowerLimit,
                  double upperLimit, double maxOutputRate, double stopperZone, double minTorque,
                  double maxTorque, double stopperSpringCoefficient,
                  double stopperDampingCoefficient);

  void registerComponents() override;
  /// Sets the link, of the two parts too.
  void setManipulatorLink(const KtManipulatorLink* link) override;

  /// The holder of the mechanical component.
  virtual const KtMechanicalActuatorComponentContainer& mechanicalComponentContainer() const {
    return mechanicalComponentContainer_;
  }
  /// Copies the container; its component learns the link of this actuator, if there is one.
  virtual void setMechanicalPartContainer(const KtMechanicalActuatorComponentContainer& container);
  /// Replaces the mechanical component by a copy, which gets this actuator's link.
  virtual void setMechanicalComponent(const KtMechanicalActuatorComponent& component);
  /// The holder of the power converter.
  virtual const KtPowerConverterContainer& powerConverterContainer() const {
    return powerConverterContainer_;
  }
  /// Copies the container; its converter learns the link of this actuator, if there is one.
  virtual void setPowerConverterContainer(const KtPowerConverterContainer& container);
  /// Replaces the power converter by a copy, which gets this actuator's link.
  virtual void setPowerConverter(const KtBasePowerConverter& converter);
  /// The joint's lower limit.
  virtual double lowerLimit() const;
  virtual void setLowerLimit(double value);
  /// The joint's upper limit.
  virtual double upperLimit() const;
  virtual void setUpperLimit(double value);
  /// The joint's greatest rate.
  virtual double maxOutputRate() const;
  virtual void setMaxOutputRate(double value);
  /// The greatest torque on the joint side: `maxTorque()` times `gearRatio()`.
  virtual double maxOutputTorque() const { return maxTorque() * gearRatio(); }
  /// The least torque on the joint side: `minTorque()` times `gearRatio()`.
  virtual double minOutputTorque() const { return minTorque() * gearRatio(); }
  /// The power converter's greatest torque, on the motor side.
  virtual double maxTorque() const;
  virtual void setMaxTorque(double value);
  /// The power converter's least torque, on the motor side.
  virtual double minTorque() const;
  virtual void setMinTorque(double value);
  /// The rotor's inertia.
  virtual double inertia() const;
  virtual void setInertia(double value);
  /// The viscous friction per rate of the motor.
  virtual double frictionCoefficient() const;
  virtual void setFrictionCoefficient(double value);
  /// Motor side by joint side.
  virtual double gearRatio() const;
  virtual void setGearRatio(double value);
  /// Whether motor and joint move in step.
  virtual bool isRigid() const;
  virtual void setIsRigid(bool value);
  /// The record of the motor's manufacturer.
  virtual const KtManufacturerData& primeMoveManufacturerData() const {
    return primeMoveManufacturerData_;
  }
  virtual void setPrimeMoveManufacturerData(const KtManufacturerData& data) {
    primeMoveManufacturerData_ = data;
  }
  /// The records of the gearheads' manufacturers.
  virtual const KtXmlVectorType<KtManufacturerData>& gearheadManufacturerDataVector() const {
    return gearheadManufacturerDataVector_;
  }
  virtual void setGearheadManufacturerDataVector(const KtXmlVectorType<KtManufacturerData>& data) {
    gearheadManufacturerDataVector_ = data;
  }
  /// The rotor's inertia as the joint feels it, to be added on the diagonal of the mass matrix; 0
  /// without a mechanical component.
  ///
  /// @param position  of the joint
  virtual double effectiveInertia(double position) const;
  /// Scales the mechanical component, then the power converter.
  ///
  /// @param lengthScale  factor of all lengths
  /// @param limitScale   factor of the joint's limits
  virtual void scaleBy(double lengthScale, double limitScale);
  /// Sets the joint's entries of the actuator state from those of the joint; nothing without a
  /// mechanical component.
  virtual void initializeActuatorStates(KtManipulatorActiveState& active) const;
  /// Takes over what an actuator of an older file says: its torque limits in a pass-through
  /// converter, all else in a mechanical component. This actuator's link and manufacturers stay.
  virtual void setFromOldJointActuator(const KtOldJointActuator& old);

  /// Holds `KtMechanicalActuatorComponent::defaultObject()` and a default pass-through converter.
  static KtJointActuator defaultObject();

  /// Exact equality; the link takes no part.
  bool operator==(const KtJointActuator&) const = default;
  static const KtToken& classToken();

 private:
  KtMechanicalActuatorComponentContainer mechanicalComponentContainer_;
  KtPowerConverterContainer powerConverterContainer_;
  KtManufacturerData primeMoveManufacturerData_;
  KtXmlVectorType<KtManufacturerData> gearheadManufacturerDataVector_;
};

extern template class KtXmlVectorType<KtJointActuator>;
