#include <gtest/gtest.h>

#include <boost/algorithm/string/replace.hpp>

#include "support/Actuation.h"
#include "support/KtLogCapture.h"

namespace {

// A file may hold parts that nobody knows: their holders are empty then, which is no error.
TEST(JointActuator, EmptyHoldersAnswerLikeParts) {
  const KtJointActuator full(0.1, 0.2, 40.0, -1.0, 1.5, 3.0, 0.1, -2.0, 2.5, 100.0, 5.0);
  std::string text = KtXmlWriter::writeString(full);
  boost::replace_all(text, "ktMechanicalActuatorComponent>", "futureComponent>");
  boost::replace_all(text, "passThroughPowerConverter>", "futureConverter>");
  KtJointActuator actuator;
  KtLogCapture log;
  KtXmlReader::readString(text, actuator);
  EXPECT_TRUE(log.contains("futureConverter\" tag not registered"));
  log.clear();
  ASSERT_EQ(actuator.mechanicalComponentContainer().element(), nullptr);
  ASSERT_EQ(actuator.powerConverterContainer().element(), nullptr);

  DrivenElbow driven;
  KtManipulatorActiveState active = driven.active;
  const KtJointActuator fresh, empty = actuator;
  actuator.setManipulatorLink(driven.elbow());
  actuator.initializeActuatorStates(active);
  EXPECT_EQ(active, driven.active);
  actuator.scaleBy(2.0, 2.0);
  struct Row {
    double (KtJointActuator::*get)() const;
    void (KtJointActuator::*set)(double);
    double value, given;
  };
  using J = KtJointActuator;
  for (const Row& row : {Row{&J::lowerLimit, &J::setLowerLimit, -1e300, -1.0},
                         Row{&J::upperLimit, &J::setUpperLimit, 1e300, 1.5},
                         Row{&J::maxOutputRate, &J::setMaxOutputRate, 1e300, 3.0},
                         Row{&J::inertia, &J::setInertia, 0.0, 0.1},
                         Row{&J::frictionCoefficient, &J::setFrictionCoefficient, 0.0, 0.2},
                         Row{&J::gearRatio, &J::setGearRatio, 1.0, 40.0},
                         Row{&J::minTorque, &J::setMinTorque, -1e300, -2.0},
                         Row{&J::maxTorque, &J::setMaxTorque, 1e300, 2.5}}) {
    KtJointActuator changed = full;
    for (KtJointActuator* each : {&changed, &actuator}) (each->*row.set)(7.0);
    EXPECT_EQ((changed.*row.get)(), 7.0);
    EXPECT_EQ((actuator.*row.get)(), row.value);
    EXPECT_EQ((fresh.*row.get)(), row.value) << "a default part does nothing either";
    EXPECT_EQ((full.*row.get)(), row.given);
  }
  actuator.setIsRigid(false);
  EXPECT_TRUE(actuator.isRigid());
  EXPECT_EQ(actuator.effectiveInertia(0.0), 0.0);
  EXPECT_EQ(actuator.maxOutputTorque(), 1e300);
  EXPECT_EQ(actuator.mechanicalComponentContainer().outputTorque(3.5, 1.0, active), 3.5);
  EXPECT_EQ(actuator.mechanicalComponentContainer().linearTorque(active), 0.0);
  EXPECT_EQ(actuator, empty);
  EXPECT_EQ(log.text(), "");

  // The converter's limits are the motor's, the output limits the joint's.
  EXPECT_EQ(full.maxOutputTorque(), 100.0);
  EXPECT_EQ(full.minOutputTorque(), -80.0);
}

TEST(JointActuator, DefaultObjectIsASmallGearedMotor) {
  KtJointActuator actuator = KtJointActuator::defaultObject();
  KtMechanicalActuatorComponent expected(0.004, 0.001, 40.0, -150.0, 150.0, 1000.0, 0.08, 4900.0,
                                         0.0);
  expected.setStaticCoulombDamperCoefficient(140.0);
  EXPECT_EQ(*actuator.mechanicalComponentContainer().element(), expected);
  actuator.setMaxTorque(3.0);
  actuator.scaleBy(2.0, 0.5);
  expected.scaleBy(2.0, 0.5);
  EXPECT_EQ(*actuator.mechanicalComponentContainer().element(), expected);
  EXPECT_EQ(actuator.maxTorque(), 24.0);
}

// However a part comes in, it answers for the actuator's joint.
TEST(JointActuator, PartsKnowTheJoint) {
  DrivenElbow driven;
  KtActuatorState& state = driven.active.actuatorState();
  driven.setMotor(0.0, 2.0);
  state.powerConverterStates()[DrivenElbow::kElbow].pushBack(4.0);
  KtMechanicalActuatorComponent component;
  component.setFrictionCoefficient(3.0);
  KtDcElectricMotor motor;
  motor.setTorqueConstant(0.5);
  KtMechanicalActuatorComponentContainer components;
  components.setElement(component);
  KtPowerConverterContainer converters;
  converters.setElement(motor);

  KtJointActuator late, first, parts;
  late.setMechanicalComponent(component);
  late.setPowerConverter(motor);
  late.setManipulatorLink(driven.elbow());
  first.setManipulatorLink(driven.elbow());
  parts = first;
  parts.setMechanicalComponent(component);
  parts.setPowerConverter(motor);
  parts.setPowerConverter(*parts.powerConverterContainer().element());
  KtJointActuator holders = parts, otherHolders = parts;
  holders.setMechanicalPartContainer(components);
  otherHolders.setPowerConverterContainer(converters);
  const KtLogCapture log;
  for (const KtJointActuator& actuator : {parts, holders, otherHolders, late}) {  // copies of them
    EXPECT_EQ(actuator.mechanicalComponentContainer().linearTorque(driven.active), 6.0);
    EXPECT_EQ(actuator.powerConverterContainer().outputTorque(0.0, state), 2.0);
    EXPECT_EQ(actuator, parts);
  }
  EXPECT_EQ(log.text(), "");
}

// The active state keeps the actuators' lists as long as the joints; what is there stays.
TEST(JointActuator, StateFollowsTheNumberOfJoints) {
  DrivenElbow driven;
  driven.setMotor(1.25, 2.0);
  KtPositionState three = driven.active.positionState();
  three.jointPositions().resize(3);
  EXPECT_TRUE(driven.active.setPositionState(three));
  KtActuatorState& state = driven.active.actuatorState();
  EXPECT_EQ(state.motorPositions()[DrivenElbow::kElbow], 1.25);
  EXPECT_EQ(state.outputTorques().size(), 3U);
  EXPECT_EQ(state.powerConverterStates().size(), 3U);
}

}  // namespace
