#pragma once

#include "ktManipulator/actuation/KtBasePowerConverter.h"

/// A hydraulic cylinder behind a four-way valve, with two state variables, the pressures p1 and p2
/// of its chambers:
///
///     force = p1 A1 - p2 A2
///     dp1/dt = B / (A1 y + V1) (Q1 - A1 v),    dp2/dt = B / (A2 l + V2) (A2 v - Q2)
///
/// with the piston's position y and rate v (the motor's), and l = Lmax - y, at least 0. The command
/// is the opening of the valve: positive lets supply into chamber 1 and chamber 2 out, negative the
/// other way round, 0 closes both ways. Flows follow the orifice equation
/// Q = Cd w opening sqrt(2 |dp| / rho), in the direction of the pressure difference; the opening
/// saturates at its maximum. Any consistent system of units serves, for instance pascals, cubic
/// metres and metres.
///
/// A density or a volume of 0 is reported: there is no derivative then. The force doesn't look at
/// the command; fewer than two state variables count as no pressure. All parameters are 0 by
/// default.
///
/// @see H. E. Merritt, Hydraulic Control Systems, Wiley 1967, the chapters on flow through orifices
///      and on valve-controlled pistons
class KT_EXPORT KtHydraulicCylinder
    : public KtXmlPersistent<KtHydraulicCylinder, KtBasePowerConverter> {
 public:
  void registerComponents() override;
  KtU32 numStateVariables() const override { return 2; }
  double outputTorque(double input, KtActuatorState& state) const override;
  void computeStateDerivatives(double input, KtActuatorState& state,
                               Derivatives& derivatives) const override;

  /// The bulk modulus B of the fluid.
  virtual double fluidBulkModulus() const { return fluidBulkModulus_; }
  virtual void setFluidBulkModulus(double value) { fluidBulkModulus_ = value; }
  /// The density rho of the fluid.
  virtual double fluidDensity() const { return fluidDensity_; }
  virtual void setFluidDensity(double value) { fluidDensity_ = value; }
  /// The pressure of the supply.
  virtual double supplyPressure() const { return supplyPressure_; }
  virtual void setSupplyPressure(double value) { supplyPressure_ = value; }
  /// The pressure of the drain.
  virtual double drainPressure() const { return drainPressure_; }
  virtual void setDrainPressure(double value) { drainPressure_ = value; }
  /// The discharge coefficient Cd of the valve.
  virtual double dischargeCoefficient() const { return dischargeCoefficient_; }
  virtual void setDischargeCoefficient(double value) { dischargeCoefficient_ = value; }
  /// The flow area w that the valve gives per opening.
  virtual double flowAreaGradient() const { return flowAreaGradient_; }
  virtual void setFlowAreaGradient(double value) { flowAreaGradient_ = value; }
  /// The greatest opening of the valve, to either side.
  virtual double maximumValveOpening() const { return maximumValveOpening_; }
  virtual void setMaximumValveOpening(double value) { maximumValveOpening_ = value; }
  /// The area A1 of the piston in chamber 1.
  virtual double effectiveArea1() const { return effectiveArea1_; }
  virtual void setEffectiveArea1(double value) { effectiveArea1_ = value; }
  /// The area A2 of the piston in chamber 2.
  virtual double effectiveArea2() const { return effectiveArea2_; }
  virtual void setEffectiveArea2(double value) { effectiveArea2_ = value; }
  /// The volume V1 of chamber 1 at the position 0.
  virtual double fluidVolume1() const { return fluidVolume1_; }
  virtual void setFluidVolume1(double value) { fluidVolume1_ = value; }
  /// The volume V2 of chamber 2 at the end of the stroke.
  virtual double fluidVolume2() const { return fluidVolume2_; }
  virtual void setFluidVolume2(double value) { fluidVolume2_ = value; }
  /// The length Lmax of the stroke.
  virtual double maximumFluidLength() const { return maximumFluidLength_; }
  virtual void setMaximumFluidLength(double value) { maximumFluidLength_ = value; }

  /// Exact equality; the link takes no part.
  bool operator==(const KtHydraulicCylinder&) const = default;
  static const KtToken& classToken();

 private:
  double flowThrough(double opening, double pressureDifference) const;

  KtXmlBasicType<double> fluidBulkModulus_;
  KtXmlBasicType<double> fluidDensity_;
  KtXmlBasicType<double> supplyPressure_;
  KtXmlBasicType<double> drainPressure_;
  KtXmlBasicType<double> dischargeCoefficient_;
  KtXmlBasicType<double> flowAreaGradient_;
  KtXmlBasicType<double> maximumValveOpening_;
  KtXmlBasicType<double> effectiveArea1_;
  KtXmlBasicType<double> effectiveArea2_;
  KtXmlBasicType<double> fluidVolume1_;
  KtXmlBasicType<double> fluidVolume2_;
  KtXmlBasicType<double> maximumFluidLength_;
};
