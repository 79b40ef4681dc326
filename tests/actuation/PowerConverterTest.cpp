#include <gtest/gtest.h>

#include <cmath>

#include "support/Actuation.h"
#include "support/KtLogCapture.h"
#include "support/Random.h"

namespace {

using Derivatives = KtBasePowerConverter::Derivatives;
constexpr KtU32 kJoint = DrivenElbow::kElbow;

KtXmlVectorType<KtXmlBasicType<double>> reals(std::initializer_list<double> values) {
  KtXmlVectorType<KtXmlBasicType<double>> list;
  for (const double value : values) list.pushBack(value);
  return list;
}

class PowerConverter : public sampling::Seeded {
 protected:
  // The derivatives for state variables and a command; the motor's state is set before.
  Derivatives rates(const KtBasePowerConverter& converter, double command,
                    std::initializer_list<double> variables) {
    state.powerConverterStates()[kJoint] = reals(variables);
    Derivatives derivatives;
    converter.computeStateDerivatives(command, state, derivatives);
    return derivatives;
  }

  DrivenElbow driven;
  KtActuatorState& state = driven.active.actuatorState();
};

TEST_F(PowerConverter, PassThroughGivesTheCommandWithinItsLimits) {
  KtPassThroughPowerConverter converter;
  EXPECT_EQ(converter.outputTorque(1e200, state), 1e200);
  converter.setMinTorque(-1.0);
  converter.setMaxTorque(2.0);
  for (const auto& [command, torque] : {std::pair{5.0, 2.0}, {-5.0, -1.0}, {0.5, 0.5}}) {
    EXPECT_EQ(converter.outputTorque(command, state), torque);
  }
  EXPECT_EQ(rates(converter, 1.0, {3.0}).size(), 0U);
  converter.scaleBy(2.0, 7.0);
  EXPECT_EQ(converter.minTorque(), -8.0);
  EXPECT_EQ(converter.maxTorque(), 16.0);
}

// What the source gives is heat, the magnetic field's gain and shaft work.
TEST_F(PowerConverter, MotorKeepsTheBalanceOfPower) {
  KtDcElectricMotor motor;
  motor.setManipulatorLink(driven.elbow());
  motor.setArmatureInductance(0.02);
  motor.setArmatureResistance(1.5);
  motor.setTorqueConstant(0.3);
  for (int trial = 0; trial < 20; ++trial) {
    const double u = sampling::uniform(-24, 24), i = sampling::uniform(-5, 5);
    const double omega = sampling::uniform(-100, 100);
    driven.setMotor(0.0, omega);
    const double gain = 0.02 * i * rates(motor, u, {i})[0];
    EXPECT_NEAR(u * i, 1.5 * i * i + gain + motor.outputTorque(u, state) * omega, 1e-11);
  }
}

KtHydraulicCylinder cylinder() {
  KtHydraulicCylinder c;
  c.setFluidBulkModulus(1000.0);
  c.setFluidDensity(2.0);
  c.setSupplyPressure(30.0);
  c.setDrainPressure(1.0);
  c.setDischargeCoefficient(0.5);
  c.setFlowAreaGradient(4.0);
  c.setMaximumValveOpening(0.25);
  c.setEffectiveArea1(2.0);
  c.setEffectiveArea2(1.5);
  c.setFluidVolume1(3.0);
  c.setFluidVolume2(5.0);
  c.setMaximumFluidLength(0.8);
  return c;
}

// Closed valve: the fluid is compressed by the moving piston, dp = -B dV / V.
TEST_F(PowerConverter, CylinderWithClosedValveIsASpring) {
  KtHydraulicCylinder c = cylinder();
  c.setManipulatorLink(driven.elbow());
  const auto pressure1 = [](double y) { return 10.0 - 1000.0 * std::log((2.0 * y + 3.0) / 3.0); };
  const auto pressure2 = [](double y) {
    return 10.0 - 1000.0 * std::log((1.5 * (0.8 - y) + 5.0) / 5.0);
  };
  for (const double y : {-0.2, 0.1, 0.75}) {
    for (const double v : {-0.3, 0.0, 2.0}) {
      driven.setMotor(y, v);
      const Derivatives d = rates(c, 0.0, {pressure1(y), pressure2(y)});
      EXPECT_NEAR(d[0], slope(pressure1, y, 1e-6) * v, 1e-5);
      EXPECT_NEAR(d[1], slope(pressure2, y, 1e-6) * v, 1e-5);
      EXPECT_NEAR(c.outputTorque(0.0, state), 2.0 * pressure1(y) - 1.5 * pressure2(y), 1e-9);
    }
  }
  // Beyond the stroke chamber 2 keeps its least volume.
  driven.setMotor(7.0, 0.1);
  EXPECT_NEAR(rates(c, 0.0, {1.0, 1.0})[1], 1000.0 / 5.0 * 1.5 * 0.1, 1e-12);
}

// Piston at rest at y = 0: volumes 3 and 1.5 * 0.8 + 5 = 6.2, speeds sqrt(2 dp / 2) = sqrt(dp), so
// that an opening of 0.25 lets 0.5 sqrt(dp) through.
TEST_F(PowerConverter, CylinderFlowsFollowThePressures) {
  KtHydraulicCylinder c = cylinder();
  c.setManipulatorLink(driven.elbow());
  struct Row {
    const char* name;
    double command, p1, p2, into1, outOf2;
  };
  for (const Row& row :
       {Row{"out", 0.25, 5.0, 10.0, 2.5, 1.5}, Row{"half open", 0.125, 5.0, 10.0, 1.25, 0.75},
        Row{"saturated", 9.0, 5.0, 10.0, 2.5, 1.5}, Row{"in", -0.25, 10.0, 5.0, -1.5, -2.5},
        Row{"in, saturated", -9.0, 10.0, 5.0, -1.5, -2.5},
        Row{"above supply", 0.25, 34.0, 10.0, -1.0, 1.5},
        Row{"below drain", 0.25, 5.0, 0.0, 2.5, -0.5},
        Row{"in, above supply", -0.25, 0.0, 34.0, 0.5, 1.0}}) {
    SCOPED_TRACE(row.name);
    const Derivatives d = rates(c, row.command, {row.p1, row.p2});
    ASSERT_EQ(d.size(), 2U);
    EXPECT_NEAR(d[0], 1000.0 / 3.0 * row.into1, 1e-9);
    EXPECT_NEAR(d[1], -1000.0 / 6.2 * row.outOf2, 1e-9);
  }
}

// A guard leaves the derivatives as they were, and says why.
TEST_F(PowerConverter, GuardsReportAndLeaveTheDerivatives) {
  KtDcElectricMotor motor;
  motor.setArmatureInductance(1.0);
  motor.setMinTorque(0.5);
  KtDcElectricMotor noInductance = motor, negative = motor;
  noInductance.setArmatureInductance(0.0);
  negative.setManipulatorLink(driven.elbow());
  negative.setArmatureInductance(-1.0);
  KtHydraulicCylinder noVolume = cylinder(), far = cylinder(), bound = cylinder();
  noVolume.setFluidVolume2(0.0);
  bound.setManipulatorLink(driven.elbow());
  struct Row {
    const KtBasePowerConverter& converter;
    std::string message;
    KtU32 size;
  };
  const std::string dc = "KtDcElectricMotor::", hydraulic = "KtHydraulicCylinder::";
  const std::string rate = "computeStateDerivatives - ", index = "index out of range\n";
  for (const Row& row :
       {Row{noInductance, dc + rate + "divided by zeroo\n", 3}, Row{motor, dc + rate + index, 3},
        Row{negative, "", 1}, Row{noVolume, hydraulic + rate + "potentially divided by zeroo\n", 3},
        Row{far, hydraulic + rate + index, 3}, Row{bound, "", 3}}) {
    SCOPED_TRACE(row.message);
    state.powerConverterStates()[kJoint] = reals({1.0});
    Derivatives derivatives = reals({7.0, 8.0, 9.0});
    const KtLogCapture log;
    row.converter.computeStateDerivatives(1.0, state, derivatives);
    EXPECT_EQ(log.text(), row.message);
    for (const auto& message : log.messages()) EXPECT_EQ(message.type, Kt::Print::kError);
    EXPECT_EQ(derivatives.size(), row.size);
    EXPECT_EQ(derivatives[0], 7.0);
  }
  // A motor that lacks its entry gives 0, one that lacks the current 0 within the limits.
  const KtLogCapture log;
  EXPECT_EQ(motor.outputTorque(1.0, state), 0.0);
  EXPECT_EQ(far.outputTorque(1.0, state), 0.0);
  EXPECT_EQ(bound.outputTorque(1.0, state), 0.0);  // one pressure is none
  motor.setManipulatorLink(driven.elbow());
  state.powerConverterStates()[kJoint].clear();
  EXPECT_EQ(motor.outputTorque(1.0, state), 0.5);
  Derivatives derivatives = reals({7.0, 8.0});
  motor.computeStateDerivatives(1.0, state, derivatives);
  EXPECT_EQ(derivatives.size(), 2U);
  EXPECT_EQ(log.text(), dc + "outputTorque - " + index + hydraulic + "outputTorque - " + index);
  motor.setMaxEfficiency(0.25);
  for (const double wrong : {1.5, -0.1, std::nan("")}) motor.setMaxEfficiency(wrong);
  EXPECT_EQ(motor.maxEfficiency(), 0.25);
}

TEST_F(PowerConverter, HolderHandsOn) {
  KtPowerConverterContainer holder;
  state.powerConverterStates()[kJoint] = reals({5.0, 10.0});
  const auto expect = [&](KtU32 variables, double torque) {
    Derivatives derivatives(7);
    holder.computeStateDerivatives(0.0, state, derivatives);
    EXPECT_EQ(derivatives.size(), variables);
    EXPECT_EQ(holder.numStateVariables(), variables);
    EXPECT_EQ(holder.outputTorque(5.0, state), torque);
  };
  expect(0, 0.0);
  KtHydraulicCylinder c = cylinder();
  c.setManipulatorLink(driven.elbow());
  holder.setElement(c);
  expect(2, -5.0);
}

}  // namespace
