#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/Actuation.h"
#include "support/Allocations.h"
#include "support/KtLogCapture.h"
#include "support/Random.h"

namespace {

constexpr KtU32 kJoint = DrivenElbow::kElbow;

template <class Mechanics>
Mechanics randomMechanics() {
  Mechanics m;
  m.setInertia(sampling::uniform(0.1, 1.0));
  m.setFrictionCoefficient(sampling::uniform(0.0, 0.5));
  m.setGearRatio(sampling::uniform(5.0, 50.0));
  m.setLowerLimit(-0.5);
  m.setUpperLimit(0.6);
  m.setMaxOutputRate(sampling::uniform(1.0, 2.0));
  m.setStopperZone(0.2);
  m.setStopperSpringCoefficient(sampling::uniform(10.0, 100.0));
  m.setStopperDampingCoefficient(sampling::uniform(1.0, 10.0));
  m.setStaticCoulombFriction(sampling::uniform(0.0, 2.0));
  m.setKineticCoulombFrictionPercentage(sampling::uniform(0.0, 1.0));
  m.setStaticCoulombSpringCoefficient(sampling::uniform(0.0, 3.0));
  m.setStaticCoulombDamperCoefficient(sampling::uniform(0.0, 3.0));
  m.setLimitingVelocityStickRegion(sampling::uniform(1.0, 20.0));
  m.setJointFlexibilityStiffness(sampling::uniform(0.0, 200.0));
  m.setJointFlexibilityDamping(sampling::uniform(0.0, 5.0));
  m.setBacklash(sampling::uniform(0.0, 2.0));
  return m;
}

class JointMechanics : public sampling::Seeded {
 protected:
  DrivenElbow driven;
  KtManipulatorActiveState& active = driven.active;
  KtActuatorState& state = driven.active.actuatorState();
};

// The springs have a potential, half the stiffness times the square of what they are pressed in;
// the dampers take power out. The zones may overlap.
TEST_F(JointMechanics, StoppersAreSpringsAndDampers) {
  for (const double zone : {0.2, 0.8}) {
    KtMechanicalActuatorComponent m(0, 0, 30.0, -0.5, 0.6, 9.0, zone, 40.0, 0.0);
    m.setManipulatorLink(driven.elbow());
    KtMechanicalActuatorComponent damped = m;
    damped.setStopperDampingCoefficient(3.0);
    const auto pressedIn = [zone](double q) {
      return std::pair{std::max(0.0, -0.5 + zone - q), std::max(0.0, q - (0.6 - zone))};
    };
    const auto potential = [&](double q) {
      const auto [low, high] = pressedIn(q);
      return 20.0 * (low * low + high * high);
    };
    for (double q = -0.95; q < 1.0; q += 0.1) {
      const double rate = sampling::uniform(-2, 2);
      driven.move(q, rate);
      const double torque = m.stopperTorque(active);
      EXPECT_NEAR(torque, slope(potential, q, 1e-3), 1e-9) << q;
      const auto [low, high] = pressedIn(q);
      const double touching = (low > 0.0) + (high > 0.0);
      EXPECT_NEAR((damped.stopperTorque(active) - torque) * rate, touching * 3.0 * rate * rate,
                  1e-9);
    }
  }
  // The damper doesn't act at the edge itself.
  KtMechanicalActuatorComponent edge(0, 0, 1.0, -1.0, 2.0, 9.0, 0.25, 40.0, 3.0);
  edge.setManipulatorLink(driven.elbow());
  for (const auto& [q, acts] : {std::pair{-0.75, false},
                                {std::nextafter(-0.75, -1.0), true},
                                {1.75, false},
                                {std::nextafter(1.75, 2.0), true}}) {
    driven.move(q, 1.0);
    EXPECT_NEAR(edge.stopperTorque(active), acts ? 3.0 : 0.0, 1e-12) << q;
  }
  KtMechanicalActuatorComponent unlimited;
  unlimited.setManipulatorLink(driven.elbow());
  driven.move(1e200, 5.0);
  EXPECT_EQ(unlimited.stopperTorque(active), 0.0);
}

// The motor starts in step with the joint, at rest in its friction.
TEST_F(JointMechanics, StatesStartFromTheJoint) {
  KtMechanicalActuatorComponent m;
  m.setManipulatorLink(driven.elbow());
  m.setGearRatio(4.0);
  driven.move(0.25, -1.5, 3.0);
  const KtActuatorState untouched = state;
  state.staticFrictionModes()[kJoint] = true;
  for (const bool rigid : {false, true}) {
    m.setIsRigid(rigid);
    m.initializeActuatorStates(active);
    KtActuatorState expected = untouched;
    for (auto [list, value] : {std::pair{&expected.motorPositions(), 1.0},
                               {&expected.motorVelocities(), -6.0},
                               {&expected.motorAccelerations(), 12.0},
                               {&expected.springDamperCenters(), 1.0},
                               {&expected.lastVelocities(), -6.0},
                               {&expected.reverseMotionPositions(), 1.0}}) {
      (*list)[kJoint] = value;
    }
    expected.nonRigidActuatorFlags()[kJoint] = !rigid;
    EXPECT_EQ(state, expected);
  }
}

// What the friction takes from the joint is what it takes from the motor.
TEST_F(JointMechanics, ViscousFrictionTakesTheMotorsPower) {
  KtMechanicalActuatorComponent m;
  m.setManipulatorLink(driven.elbow());
  m.setFrictionCoefficient(0.02);
  m.setGearRatio(25.0);
  driven.move(0.3, -1.5);
  m.initializeActuatorStates(active);
  const double motorRate = -1.5 * 25.0;
  EXPECT_DOUBLE_EQ(m.viscousFrictionTorque(active) * -1.5, 0.02 * motorRate * motorRate);
  EXPECT_DOUBLE_EQ(m.linearTorque(active), m.viscousFrictionTorque(active));
}

// A rotor of inertia 0.5 behind a gear of 4 (8 on the joint side), friction 3 (12), of which half
// when it slides (6). It runs out from a rate, sticks, is pulled below and then beyond the
// friction.
TEST_F(JointMechanics, FrictionSlidesSticksAndBreaksLoose) {
  KtMechanicalActuatorComponent m;
  m.setManipulatorLink(driven.elbow());
  m.setInertia(0.5);
  m.setGearRatio(4.0);
  m.setStaticCoulombFriction(3.0);
  m.setKineticCoulombFrictionPercentage(0.5);
  m.setStaticCoulombSpringCoefficient(50.0);
  m.setStaticCoulombDamperCoefficient(10.0);
  m.setLimitingVelocityStickRegion(1e-3);
  double q = 0.25, rate = 1.5;
  const double dt = 1e-5;
  driven.move(q, rate);
  m.initializeActuatorStates(active);
  const auto step = [&](double drive) {
    const double torque = drive - m.dryFrictionTorque(drive, active);
    rate += dt * torque / m.effectiveInertia(q);
    q += dt * rate;
    driven.setMotor(4.0 * q, 4.0 * rate);
    return torque;
  };
  const auto sticks = [&] { return state.staticFrictionModes()[kJoint].value(); };
  const auto center = [&] { return state.springDamperCenters()[kJoint].value(); };

  // Deceleration 6 / 8: 2 s, over a way of 1.5.
  int steps = 0;
  do {
    step(0.0);
    ++steps;
  } while (!sticks() && steps < 1000000);
  EXPECT_NEAR(steps * dt, 2.0, 1e-3);
  EXPECT_NEAR(q, 0.25 + 1.5, 1e-3);
  const double where = center();
  EXPECT_NEAR(where / 4.0, q, 1e-6);

  // A drive within the friction is held, and the spring pulls back to where the sticking began.
  for (int i = 0; i < 300000; ++i) step(11.0);
  EXPECT_TRUE(sticks());
  EXPECT_EQ(center(), where);
  EXPECT_NEAR(4.0 * q, where, 1e-6);

  // Beyond it the joint is held back by the static, then by the kinetic friction.
  EXPECT_DOUBLE_EQ(step(13.0), 1.0);
  while (sticks() && q < 3.0) step(13.0);
  EXPECT_DOUBLE_EQ(step(13.0), 13.0 - 6.0);
  EXPECT_DOUBLE_EQ(m.dryFrictionTorque(-99.0, active), 6.0);
  driven.setMotor(4.0 * q, -0.5);
  EXPECT_DOUBLE_EQ(m.dryFrictionTorque(99.0, active), -6.0);
  EXPECT_FALSE(sticks());
  EXPECT_EQ(center(), where);

  // At rest it sticks anew, elsewhere, and gives way at -12.
  driven.setMotor(70.0, 0.0);
  EXPECT_DOUBLE_EQ(m.dryFrictionTorque(-12.5, active), -12.0);
  EXPECT_TRUE(sticks());
  EXPECT_EQ(center(), 70.0);
  // Without an entry for the centre the spring counts as unstretched.
  state.springDamperCenters().resize(0);
  EXPECT_DOUBLE_EQ(m.dryFrictionTorque(8.0, active), 8.0);
  EXPECT_EQ(state.springDamperCenters().size(), 0U);
}

// By default the joint always sticks, and the friction it can take up is none.
TEST_F(JointMechanics, NoFrictionByDefault) {
  KtMechanicalActuatorComponent m;
  m.setManipulatorLink(driven.elbow());
  m.setStaticCoulombDamperCoefficient(140.0);
  driven.setMotor(1.0, 1e9);
  for (const double drive : {1e-9, -5.0, 1e9}) EXPECT_EQ(m.dryFrictionTorque(drive, active), 0.0);
}

// The gap [h - b, h] lies below the motor position h in step with the joint; outside of it the
// coupling is a spring of stiffness S / G against the motor position.
TEST_F(JointMechanics, BacklashIsOpenOnOneSide) {
  KtMechanicalActuatorComponent m;
  m.setManipulatorLink(driven.elbow());
  m.setGearRatio(10.0);
  m.setIsRigid(false);
  m.setJointFlexibilityStiffness(200.0);
  m.setJointFlexibilityDamping(3.0);
  driven.move(0.5, 0.25);
  for (const double gap : {0.0, 0.5}) {
    m.setBacklash(gap);
    for (const auto& [motor, stretch] : {std::pair{5.75, 0.75}, {4.0, -1.0 + gap}}) {
      driven.setMotor(motor, 2.5);  // in step: no damping
      EXPECT_NEAR(m.nonRigidOutputTorque(active), 20.0 * stretch, 1e-12);
      EXPECT_EQ(state.outputTorques()[kJoint], m.nonRigidOutputTorque(active));
      driven.setMotor(motor, 12.5);
      EXPECT_NEAR(m.nonRigidOutputTorque(active), 20.0 * stretch + 3.0, 1e-12);
    }
  }
  // The damper acts at both edges of the gap and not inside.
  for (const auto& [motor, torque] : {std::pair{5.0, 3.0}, {4.75, 0.0}, {4.5, 3.0}}) {
    driven.setMotor(motor, 12.5);
    EXPECT_NEAR(m.nonRigidOutputTorque(active), torque, 1e-12) << motor;
    EXPECT_EQ(m.outputTorque(77.0, 5.0, active), state.outputTorques()[kJoint]);
  }
}

// A rotor of inertia I on the coupling of a joint that is held swings with w^2 = S / (G^2 I).
TEST_F(JointMechanics, FlexibleMotorSwings) {
  KtMechanicalActuatorComponent m;
  m.setManipulatorLink(driven.elbow());
  m.setInertia(0.02);
  m.setGearRatio(5.0);
  m.setIsRigid(false);
  m.setJointFlexibilityStiffness(8.0);
  driven.move(0.0, 0.0);
  m.initializeActuatorStates(active);
  EXPECT_TRUE(state.nonRigidActuatorFlags()[kJoint]);
  EXPECT_EQ(m.effectiveInertia(0.0), 0.0);
  const double command = 0.4, w = 4.0, dt = 1e-4;  // rests at command * G^2 / S = 1.25
  double p = 0.0, v = 0.0;
  const auto accelerate = [&] {
    driven.setMotor(p, v);
    m.acceleration(command, active);
    return state.motorAccelerations()[kJoint].value();
  };
  for (int i = 1; i <= 10000; ++i) {
    const double half = v + 0.5 * dt * accelerate();
    p += dt * half;
    v = half + 0.5 * dt * accelerate();
    if (i % 2500 == 0) {
      EXPECT_NEAR(p, 1.25 * (1.0 - std::cos(w * i * dt)), 1e-6);
    }
  }
  // Without inertia, or rigid, the motor follows the joint.
  driven.move(0.0, 0.0, -3.0);
  m.setInertia(0.0);
  accelerate();
  EXPECT_DOUBLE_EQ(state.motorAccelerations()[kJoint], -15.0);
}

// A joint that sticks carries its load, whatever the command; the older form carries the linear
// torque as well. The efficiency is the present form's alone.
TEST_F(JointMechanics, FormsDifferInWhatTheFrictionSees) {
  auto old = randomMechanics<KtOldJointActuator>();
  old.setStaticCoulombFriction(1e6);
  old.setStaticCoulombSpringCoefficient(0.0);
  old.setStaticCoulombDamperCoefficient(0.0);
  KtJointActuator actuator;
  actuator.setFromOldJointActuator(old);
  KtMechanicalActuatorComponent m = *actuator.mechanicalComponentContainer().element();
  old.setManipulatorLink(driven.elbow());
  m.setManipulatorLink(driven.elbow());
  driven.move(0.55, 0.01);
  old.initializeActuatorStates(active);
  const double linear = m.linearTorque(active);
  ASSERT_GT(linear, 1.0);
  for (const double efficiency : {1.0, 0.5}) {
    m.setMaxEfficiency(efficiency);
    EXPECT_NEAR(old.outputTorque(0.7, 3.0, active), 3.0, 1e-9);
    EXPECT_NEAR(m.outputTorque(0.7, 3.0, active), 3.0 - linear, 1e-9);
  }
  EXPECT_EQ(state.outputTorques()[kJoint], m.outputTorque(0.7, 3.0, active));
  // Without friction the command passes the gear, by the efficiency.
  m.setStaticCoulombFriction(0.0);
  EXPECT_NEAR(m.outputTorque(0.7, 3.0, active), 0.7 * m.gearRatio() * 0.5 - linear, 1e-9);
}

// A converted actuator gives what the old one gave, bit by bit, but for `outputTorque`.
TEST_F(JointMechanics, ConversionKeepsEveryTorque) {
  for (int trial = 0; trial < 40; ++trial) {
    auto old = randomMechanics<KtOldJointActuator>();
    old.setIsRigid(trial % 2 == 0);
    old.setManipulatorLink(driven.elbow());
    KtJointActuator actuator;
    actuator.setManipulatorLink(driven.elbow());
    actuator.setFromOldJointActuator(old);
    const KtMechanicalActuatorComponent& m = *actuator.mechanicalComponentContainer().element();
    driven.move(sampling::uniform(), sampling::uniform(), sampling::uniform());
    old.initializeActuatorStates(active);
    driven.setMotor(sampling::uniform(-20, 20), sampling::uniform(-20, 20));
    KtManipulatorActiveState other = active;
    EXPECT_EQ(m.linearTorque(other), old.linearTorque(active));
    EXPECT_EQ(m.nonRigidOutputTorque(other), old.nonRigidOutputTorque(active));
    EXPECT_EQ(m.dryFrictionTorque(5.0, other), old.dryFrictionTorque(5.0, active));
    m.acceleration(0.5, other);
    old.acceleration(0.5, active);
    EXPECT_EQ(other, active);
    EXPECT_EQ(m.effectiveInertia(0.0), old.effectiveInertia(0.0));
    EXPECT_EQ(m.maxOutputRate(), old.maxOutputRate());
    m.initializeActuatorStates(other);
    old.initializeActuatorStates(active);
    EXPECT_EQ(other, active);
  }
}

// A joint that the state has no entries for yields 0 and the operation's message; nothing is
// stored.
template <class Mechanics>
void checkMissingEntries(const std::string& name, DrivenElbow& driven) {
  const auto said = [&name](const char* operation) {
    return name + "::" + operation + "()->index out of range\n";
  };
  const std::string linear = said("stopperTorque") + said("viscousFrictionTorque");
  Mechanics m;
  m.setInertia(1.0);
  m.setGearRatio(2.0);
  m.setStaticCoulombFriction(1.0);
  Mechanics bound = m;
  bound.setManipulatorLink(driven.elbow());
  KtManipulatorActiveState full = driven.active;
  KtManipulatorActiveState empty;
  for (const auto& [part, given] : {std::pair{&m, &full}, std::pair{&bound, &empty}}) {
    KtManipulatorActiveState active = *given;
    KtLogCapture log;
    const auto expect = [&](double result, const std::string& messages) {
      EXPECT_EQ(result, 0.0);
      EXPECT_EQ(log.text(), messages);
      for (const auto& message : log.messages()) EXPECT_EQ(message.type, Kt::Print::kError);
      log.clear();
    };
    part->setIsRigid(true);
    expect(part->stopperTorque(active), said("stopperTorque"));
    expect(part->viscousFrictionTorque(active), said("viscousFrictionTorque"));
    expect(part->dryFrictionTorque(1.0, active), said("dryFrictionTorque"));
    expect(part->nonRigidOutputTorque(active), said("nonRigidOutputTorque"));
    part->initializeActuatorStates(active);
    expect(0.0, said("initializeActuatorStates"));
    part->acceleration(1.0, active);
    expect(0.0, said("acceleration"));
    EXPECT_EQ(active, *given);
    expect(part->outputTorque(3.0, 1.0, active) - 6.0, linear + said("dryFrictionTorque"));
    part->setIsRigid(false);
    part->acceleration(1.0, active);
    expect(0.0, linear + said("nonRigidOutputTorque") + said("dryFrictionTorque"));
    expect(part->outputTorque(3.0, 1.0, active), said("nonRigidOutputTorque"));
    // The list of output torques reaches up to the joint, which is joint 1, and no farther.
    EXPECT_EQ(active.actuatorState().outputTorques().size(), part == &m ? 2U : 1U);
    EXPECT_EQ(active.actuatorState().motorAccelerations(),
              given->actuatorState().motorAccelerations());
  }
}

TEST_F(JointMechanics, MissingEntriesAreReported) {
  checkMissingEntries<KtMechanicalActuatorComponent>("KtMechanicalActuatorComponent", driven);
  checkMissingEntries<KtOldJointActuator>("KtOldJointActuator", driven);
}

TEST_F(JointMechanics, GuardedSettersIgnoreWhatMakesNoSense) {
  const auto before = randomMechanics<KtMechanicalActuatorComponent>();
  auto m = before;
  for (const double wrong : {-1.0, std::nan("")}) {
    m.setStaticCoulombFriction(wrong);
    m.setKineticCoulombFrictionPercentage(wrong);
    m.setStaticCoulombSpringCoefficient(wrong);
    m.setStaticCoulombDamperCoefficient(wrong);
    m.setLimitingVelocityStickRegion(wrong);
    m.setJointFlexibilityStiffness(wrong);
    m.setJointFlexibilityDamping(wrong);
    m.setBacklash(wrong);
    m.setMaxEfficiency(wrong);
  }
  m.setKineticCoulombFrictionPercentage(1.5);
  m.setMaxEfficiency(1.5);
  m.setLimitingVelocityStickRegion(0.0);
  EXPECT_EQ(m, before);
}

// A rotor is a body of the fifth power of length; limits of a slider scale, those of a hinge don't.
TEST_F(JointMechanics, ScalingFollowsTheDimensions) {
  KtOldJointActuator old(1.0, 1.0, 3.0, -1.0, 2.0, 5.0, 0.5, -4.0, 6.0, 1.0, 2.0);
  old.scaleBy(2.0, 3.0);
  EXPECT_EQ(old, KtOldJointActuator(32.0, 4.0, 3.0, -3.0, 6.0, 5.0, 1.5, -32.0, 48.0, 8.0, 16.0));
}

TEST_F(JointMechanics, StepsAllocateNothing) {
  auto m = randomMechanics<KtMechanicalActuatorComponent>();
  m.setManipulatorLink(driven.elbow());
  m.initializeActuatorStates(active);
  const Allocations allocations;
  for (const bool rigid : {true, false}) {
    m.setIsRigid(rigid);
    m.initializeActuatorStates(active);
    m.outputTorque(1.0, 2.0, active);
    m.acceleration(1.0, active);
  }
  EXPECT_EQ(allocations.count(), 0U);
}

}  // namespace
