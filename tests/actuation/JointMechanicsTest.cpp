#include "support/Actuation.h"
#include "support/Testing.h"

namespace {

constexpr KtU32 kJoint = DrivenElbow::kElbow;
using M = KtMechanicalActuatorComponent;

class JointMechanics : public testing::Test {
 protected:
  JointMechanics() { m.setManipulatorLink(driven.elbow()); }

  DrivenElbow driven;
  KtManipulatorActiveState& active = driven.active;
  KtActuatorState& state = driven.active.actuatorState();
  M m;
};

// The springs have a potential, half the stiffness times the square of what they are pressed in;
// the dampers take power out, but not at the edges themselves. The zones may overlap.
TEST_F(JointMechanics, StoppersAreSpringsAndDampers) {
  for (const double zone : {0.2, 0.8}) {
    m = M(0, 0, 30.0, -0.5, 0.6, 9.0, zone, 40.0, 0.0);
    m.setManipulatorLink(driven.elbow());
    M damped = m;
    damped.setStopperDampingCoefficient(3.0);
    const double lower = -0.5 + zone, upper = 0.6 - zone;
    const auto potential = [=](double q) {
      const double low = std::max(0.0, lower - q), high = std::max(0.0, q - upper);
      return 20.0 * (low * low + high * high);
    };
    std::vector<double> positions = {lower, upper, std::nextafter(lower, -1.0),
                                     std::nextafter(upper, 1.0)};
    for (double q = -0.95; q < 1.0; q += 0.1) positions.push_back(q);
    for (const double q : positions) {
      driven.move(q, 2.0);
      const double torque = m.stopperTorque(active);
      EXPECT_NEAR(torque, slope(potential, q, 1e-6), 3e-5) << q;
      EXPECT_NEAR(damped.stopperTorque(active) - torque, ((q < lower) + (q > upper)) * 6.0, 1e-9);
    }
  }
  M unlimited;
  unlimited.setManipulatorLink(driven.elbow());
  driven.move(1e200, 5.0);
  EXPECT_EQ(unlimited.stopperTorque(active), 0.0);
}

// A rotor of inertia 0.5 behind a gear of 4 (8 on the joint side), friction 3 (12), of which half
// when it slides (6). It runs out from a rate, sticks, is pulled below and then beyond the
// friction.
TEST_F(JointMechanics, FrictionSlidesSticksAndBreaksLoose) {
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
  while (!sticks() && steps < 1000000) step(0.0), ++steps;
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
  for (const double motorRate : {0.5, -0.5}) {
    driven.setMotor(4.0 * q, motorRate);
    EXPECT_DOUBLE_EQ(m.dryFrictionTorque(-99.0, active), 12.0 * motorRate);
    EXPECT_FALSE(sticks());
  }
  // At rest it sticks anew, elsewhere, and gives way at -12.
  driven.setMotor(70.0, 0.0);
  EXPECT_DOUBLE_EQ(m.dryFrictionTorque(-12.5, active), -12.0);
  EXPECT_TRUE(sticks());
  EXPECT_EQ(center(), 70.0);
  // Without an entry for the centre the spring counts as unstretched.
  state.springDamperCenters().resize(0);
  EXPECT_DOUBLE_EQ(m.dryFrictionTorque(8.0, active), 8.0);
}

// The gap [h - b, h] lies below the motor position h in step with the joint; outside of it the
// coupling is a spring of stiffness S / G against the motor position. The damper acts outside and
// at the edges.
TEST_F(JointMechanics, BacklashIsOpenOnOneSide) {
  m.setGearRatio(10.0);
  m.setIsRigid(false);
  m.setJointFlexibilityStiffness(200.0);
  m.setJointFlexibilityDamping(3.0);
  driven.move(0.5, 0.25);
  for (const auto& [gap, motor, spring, damper] :
       std::vector<std::array<double, 4>>{{0, 5.75, 15, 3},
                                          {0, 4, -20, 3},
                                          {0.5, 5.75, 15, 3},
                                          {0.5, 4, -10, 3},
                                          {0.5, 5, 0, 3},
                                          {0.5, 4.75, 0, 0},
                                          {0.5, 4.5, 0, 3}}) {
    m.setBacklash(gap);
    driven.setMotor(motor, 2.5);  // in step: no damping
    EXPECT_NEAR(m.nonRigidOutputTorque(active), spring, 1e-12) << motor;
    driven.setMotor(motor, 12.5);
    EXPECT_NEAR(m.outputTorque(77.0, 5.0, active), spring + damper, 1e-12) << motor;
    EXPECT_EQ(state.outputTorques()[kJoint], m.nonRigidOutputTorque(active));
  }
}

// A rotor of inertia I on the coupling of a joint that is held swings with w^2 = S / (G^2 I).
TEST_F(JointMechanics, FlexibleMotorSwings) {
  m.setInertia(0.02);
  m.setGearRatio(5.0);
  m.setIsRigid(false);
  m.setJointFlexibilityStiffness(8.0);
  m.initializeActuatorStates(active);
  EXPECT_EQ(m.effectiveInertia(0.0), 0.0);
  const double command = 0.4, w = 4.0, dt = 1e-4;  // rests at command * G^2 / S = 1.25
  double p = 0.0, v = 0.0;
  const auto accelerate = [&] {
    driven.setMotor(p, v);
    m.acceleration(command, active);
    return state.motorAccelerations()[kJoint].value();
  };
  const Allocations allocations;
  for (int i = 1; i <= 10000; ++i) {
    const double half = v + 0.5 * dt * accelerate();
    p += dt * half;
    v = half + 0.5 * dt * accelerate();
    if (i % 2500 == 0) {
      EXPECT_NEAR(p, 1.25 * (1.0 - std::cos(w * i * dt)), 1e-6);
    }
  }
  EXPECT_EQ(allocations.count(), 0U);
}

// A converted older form has the same mechanics, and a converter with its limits of torque.
TEST_F(JointMechanics, OlderFormsAreConverted) {
  auto old = fullMechanics<KtOldJointActuator>();
  old.setMinTorque(-2.0);
  old.setMaxTorque(2.5);
  KtManufacturerData maker;
  maker.setManufacturer("maker");
  KtJointActuator actuator;
  actuator.setPrimeMoveManufacturerData(maker);
  actuator.setPowerConverter(KtDcElectricMotor());
  actuator.setFromOldJointActuator(old);
  m = *actuator.mechanicalComponentContainer().element();
  EXPECT_EQ(m, fullMechanics<M>());
  KtPassThroughPowerConverter converter;
  converter.setMinTorque(-2.0);
  converter.setMaxTorque(2.5);
  EXPECT_TRUE(*actuator.powerConverterContainer().element() == converter);
  EXPECT_EQ(actuator.primeMoveManufacturerData(), maker);
}

// A joint that the state has no entries for yields 0 and the operation's message; nothing is
// stored.
template <class Mechanics>
void checkMissingEntries(const std::string& name, DrivenElbow& driven) {
  Mechanics unbound;
  unbound.setInertia(1.0);
  unbound.setGearRatio(2.0);
  unbound.setStaticCoulombFriction(1.0);
  Mechanics bound = unbound;
  bound.setManipulatorLink(driven.elbow());
  const KtManipulatorActiveState empty;
  for (const auto& [part, given] :
       {std::pair{&unbound, &std::as_const(driven.active)}, {&bound, &empty}}) {
    KtManipulatorActiveState active = *given;
    KtLogCapture log;
    const auto expect = [&](double result, std::initializer_list<std::string> operations) {
      EXPECT_EQ(result, 0.0);
      std::string messages;
      for (const auto& one : operations) messages += name + "::" + one + "()->index out of range\n";
      EXPECT_EQ(log.errors(), messages);
      log.clear();
    };
    expect(part->dryFrictionTorque(1.0, active), {"dryFrictionTorque"});
    expect(part->nonRigidOutputTorque(active), {"nonRigidOutputTorque"});
    part->initializeActuatorStates(active);
    expect(0.0, {"initializeActuatorStates"});
    part->acceleration(1.0, active);
    expect(0.0, {"acceleration"});
    EXPECT_EQ(active, *given);
    expect(part->outputTorque(3.0, 1.0, active) - 6.0,
           {"stopperTorque", "viscousFrictionTorque", "dryFrictionTorque"});
    part->setIsRigid(false);
    part->acceleration(1.0, active);
    expect(0.0,
           {"stopperTorque", "viscousFrictionTorque", "nonRigidOutputTorque", "dryFrictionTorque"});
    // The list of output torques reaches up to the joint, which is joint 1, and no farther.
    EXPECT_EQ(active.actuatorState().outputTorques().size(), part == &bound ? 1U : 2U);
    active.actuatorState().outputTorques() = given->actuatorState().outputTorques();
    EXPECT_EQ(active, *given);
  }
}

TEST_F(JointMechanics, MissingEntriesAreReported) {
  checkMissingEntries<M>("KtMechanicalActuatorComponent", driven);
  checkMissingEntries<KtOldJointActuator>("KtOldJointActuator", driven);
}

TEST_F(JointMechanics, GuardedSettersIgnoreWhatMakesNoSense) {
  using Setter = void (M::*)(double);
  const auto before = fullMechanics<M>();
  m = before;
  for (const double wrong : {-1.0, std::nan("")}) {
    for (const Setter set : std::initializer_list<Setter>{
             &M::setStaticCoulombFriction, &M::setKineticCoulombFrictionPercentage,
             &M::setStaticCoulombSpringCoefficient, &M::setStaticCoulombDamperCoefficient,
             &M::setLimitingVelocityStickRegion, &M::setJointFlexibilityStiffness,
             &M::setJointFlexibilityDamping, &M::setBacklash, &M::setMaxEfficiency}) {
      (m.*set)(wrong);
    }
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

// The same sums as the plain ones over links. The root has no joint, no link is called "wrist", and
// joints beyond the state's length count as nothing.
TEST(SpringDamper, WeighJointsByTheirLinks) {
  const DrivenElbow driven;
  const std::array<std::pair<const char*, KtU32>, 4> joints = {
      {{"shoulder", 0}, {"elbow", 1}, {"base", 9}, {"wrist", 9}}};
  for (int trial = 0; trial < 200; ++trial) {
    KtSpringProperties spring;
    KtDamperProperties damper;
    KtXmlVectorType<KtXmlBasicType<std::string>> labels;
    KtSpringProperties::Reals weights, offsets, state;
    for (int i = 0; i < trial % 3; ++i) state.pushBack(uniform());
    double springSum = 0.0, damperSum = 0.0;
    std::string bad, damperBad;
    for (int i = 0; i < trial % 5; ++i) {
      const auto& [label, joint] = joints[static_cast<std::size_t>(uniform(0.0, 3.999))];
      const double weight = uniform(), offset = uniform();
      labels.pushBack(std::string(label));
      weights.pushBack(weight);
      offsets.pushBack(offset);
      if (joint < state.size()) {
        springSum += weight * (state[joint] - offset);
        damperSum += weight * state[joint];
      } else if (label == joints[3].first) {
        bad += "KtSpringProperties::torque()->bad label, wrist\n";
        damperBad += "KtDamperProperties::torque()->bad label, wrist\n";
      }
    }
    spring.setSpringConstant(8.0);
    spring.setSpringOffsets(offsets);
    damper.setDamperConstant(4.0);
    const auto set = [&](auto& part) {
      part.setWeightingFactors(weights);
      part.setAssociatedJoints(labels);
    };
    set(spring), set(damper);
    KtManipulatorActiveState active;
    active.setPositionState(states::at(state));
    active.setVelocityState(states::moving(state));
    KtLogCapture log;
    EXPECT_NEAR(spring.torque(driven.manipulator, active), 8.0 * springSum, 1e-13);
    EXPECT_NEAR(damper.torque(driven.manipulator, active), 4.0 * damperSum, 1e-13);
    EXPECT_EQ(log.errors(), bad + damperBad);

    // Lists of different lengths.
    log.clear();
    weights.pushBack(1.0);
    set(spring), set(damper);
    EXPECT_EQ(spring.torque(driven.manipulator, active), 0.0);
    EXPECT_EQ(damper.torque(driven.manipulator, active), 0.0);
    EXPECT_EQ(log.errors(),
              "KtManipulatorLink::springTorque:: spring data size mismatch."
              "KtDamperProperties::torque:: damper data size mismatch.\n");
  }
}

}  // namespace
