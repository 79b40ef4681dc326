#include <boost/algorithm/string/replace.hpp>

#include "support/Actuation.h"
#include "support/Testing.h"

namespace {

using J = KtJointActuator;

// A file may hold parts that nobody knows: their holders are empty then, which is no error.
TEST(JointActuator, EmptyHoldersAnswerLikeParts) {
  const J full(0.1, 0.2, 40.0, -1.0, 1.5, 3.0, 0.1, -2.0, 2.5, 100.0, 5.0), fresh;
  std::string text = KtXmlWriter::writeString(full);
  boost::replace_all(text, "ktMechanicalActuatorComponent>", "futureComponent>");
  boost::replace_all(text, "passThroughPowerConverter>", "futureConverter>");
  J actuator, changed = full;
  KtLogCapture log;
  KtXmlReader::readString(text, actuator);
  EXPECT_TRUE(log.contains("futureConverter\" tag not registered"));
  log.clear();
  ASSERT_EQ(actuator.mechanicalComponentContainer().element(), nullptr);
  ASSERT_EQ(actuator.powerConverterContainer().element(), nullptr);

  DrivenElbow driven;
  KtManipulatorActiveState active = driven.active;
  const J empty = actuator;
  actuator.setManipulatorLink(driven.elbow());
  actuator.initializeActuatorStates(active);
  EXPECT_EQ(active, driven.active);
  actuator.scaleBy(2.0, 2.0);
  struct Row {
    double (J::*get)() const;
    void (J::*set)(double);
    double value, given;
  };
  for (const Row& row : {Row{&J::lowerLimit, &J::setLowerLimit, -1e300, -1.0},
                         Row{&J::upperLimit, &J::setUpperLimit, 1e300, 1.5},
                         Row{&J::maxOutputRate, &J::setMaxOutputRate, 1e300, 3.0},
                         Row{&J::inertia, &J::setInertia, 0.0, 0.1},
                         Row{&J::frictionCoefficient, &J::setFrictionCoefficient, 0.0, 0.2},
                         Row{&J::gearRatio, &J::setGearRatio, 1.0, 40.0},
                         Row{&J::minTorque, &J::setMinTorque, -1e300, -2.0},
                         Row{&J::maxTorque, &J::setMaxTorque, 1e300, 2.5}}) {
    for (J* each : {&changed, &actuator}) (each->*row.set)(7.0);
    EXPECT_EQ((changed.*row.get)(), 7.0);
    EXPECT_EQ((actuator.*row.get)(), row.value);
    EXPECT_EQ((fresh.*row.get)(), row.value) << "a default part does nothing either";
    EXPECT_EQ((full.*row.get)(), row.given);
  }
  actuator.setIsRigid(false);
  EXPECT_TRUE(actuator.isRigid());
  EXPECT_EQ(actuator.effectiveInertia(0.0), 0.0);
  EXPECT_EQ(actuator.mechanicalComponentContainer().outputTorque(3.5, 1.0, active), 3.5);
  EXPECT_EQ(actuator.mechanicalComponentContainer().linearTorque(active), 0.0);
  EXPECT_EQ(actuator, empty);
  EXPECT_EQ(log.text(), "");
  // The converter's limits are the motor's, the output limits the joint's.
  EXPECT_EQ(full.maxOutputTorque(), 100.0);
  EXPECT_EQ(full.minOutputTorque(), -80.0);
}

TEST(JointActuator, DefaultObjectIsASmallGearedMotor) {
  J actuator = J::defaultObject();
  KtMechanicalActuatorComponent expected(0.004, 0.001, 40, -150, 150, 1000, 0.08, 4900, 0);
  expected.setStaticCoulombDamperCoefficient(140.0);
  EXPECT_EQ(*actuator.mechanicalComponentContainer().element(), expected);
  actuator.setMaxTorque(3.0);
  actuator.scaleBy(2.0, 0.5);
  expected.scaleBy(2.0, 0.5);
  EXPECT_EQ(*actuator.mechanicalComponentContainer().element(), expected);
  EXPECT_EQ(actuator.maxTorque(), 24.0);
}

// However a part comes in, it answers for the actuator's joint; so do those of copies.
TEST(JointActuator, PartsKnowTheJoint) {
  DrivenElbow driven;
  KtActuatorState& state = driven.active.actuatorState();
  driven.setMotor(0.0, 2.0);
  state.powerConverterStates()[DrivenElbow::kElbow].pushBack(4.0);
  KtMechanicalActuatorComponent component;
  component.setFrictionCoefficient(3.0);
  KtDcElectricMotor motor;
  motor.setTorqueConstant(0.5);
  J late, parts;
  late.setMechanicalComponent(component);
  late.setPowerConverter(motor);
  J holders = parts;
  holders.setManipulatorLink(driven.elbow());
  parts = holders;
  parts.setMechanicalComponent(component);
  parts.setPowerConverter(motor);
  parts.setPowerConverter(*parts.powerConverterContainer().element());
  holders.setMechanicalPartContainer(late.mechanicalComponentContainer());
  holders.setPowerConverterContainer(late.powerConverterContainer());
  late.setManipulatorLink(driven.elbow());
  const KtLogCapture log;
  for (const J& actuator : {parts, holders, late}) {
    EXPECT_EQ(actuator.mechanicalComponentContainer().linearTorque(driven.active), 6.0);
    EXPECT_EQ(actuator.powerConverterContainer().outputTorque(0.0, state), 2.0);
    EXPECT_EQ(actuator, parts);
  }
  EXPECT_EQ(log.text(), "");
}

}  // namespace
