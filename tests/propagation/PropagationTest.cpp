#include <gtest/gtest.h>

#include <cmath>

#include "ktManipulator/ktManipulator.h"
#include "support/Allocations.h"
#include "support/KtLogCapture.h"
#include "support/Trees.h"

namespace {

using namespace sampling;
using Results = KtStatedSystem::ResultVector;
using Propagation = Seeded;

// Arms of so many joints, one beside the other, at random states well inside of their limits.
KtStatedSystem sceneOf(std::initializer_list<int> joints) {
  KtStatedSystem scene;
  for (const int count : joints) {
    KtIndividualManipulator arm = trees::randomMechanismArm(
        count, false, {.pivotedSliders = false, .fixedSliders = false, .screws = false});
    arm.setLabel("arm " + std::to_string(count));
    for (KtU32 i = 0; i < arm.jointDof(); ++i) {
      KtJointActuator actuator;
      actuator.setLowerLimit(-2.0);
      actuator.setUpperLimit(2.0);
      actuator.setMaxOutputRate(100.0);
      const_cast<KtManipulatorLink*>(arm.linkByIndex(i))->setJointActuator(actuator);
    }
    KtPositionState position;
    position.setCoordSysXForm(randomTransformation());
    KtVelocityState velocity;
    velocity.setGeneralVelocity(randomMotion());
    for (int i = 0; i < count; ++i) {
      position.jointPositions().pushBack(uniform());
      velocity.jointVelocities().pushBack(uniform());
    }
    scene.addManipulator(arm, position, velocity);
  }
  return scene;
}

KtSystemActiveState acceleratedAlike(const KtStatedSystem& scene) {
  KtSystemActiveState active;
  active.setNonredundantState(scene.state());
  for (auto& state : active.manipulatorActiveStateVector().vectorContainer()) {
    KtAccelerationState acceleration =
        KtAccelerationState::zeroCompatibleState(state.velocityState());
    for (auto& a : acceleration.jointAccelerations().vectorContainer()) a = uniform() * 10.0;
    acceleration.setGeneralAcceleration(randomMotion());
    state.setAccelerationState(acceleration);
  }
  return active;
}

TEST_F(Propagation, PositionsFollowTheNewVelocities) {
  for (const double dt : {0.01, -0.01, 0.0}) {
    const KtStatedSystem scene = sceneOf({5, 3});
    KtSystemActiveState active = acceleratedAlike(scene);
    KtManipulatorSystemState state = scene.state();
    Results results;
    EXPECT_TRUE(scene.propagateTo(state.time() + dt, state, results, active));
    EXPECT_EQ(results.size(), 2U);
    for (KtU32 m = 0; m < 2; ++m) {
      const auto& acceleration = active.manipulatorActiveStateVector()[m].accelerationState();
      const KtPositionState& p0 = scene.state().positionStates()[m];
      const KtVelocityState& v0 = scene.state().velocityStates()[m];
      const KtPositionState& p = state.positionStates()[m];
      const KtVelocityState& v = state.velocityStates()[m];
      for (KtU32 i = 0; i < v.jointVelocities().size(); ++i) {
        EXPECT_NEAR(v.jointVelocities()[i],
                    v0.jointVelocities()[i] + dt * acceleration.jointAccelerations()[i], 1e-15);
        EXPECT_NEAR(p.jointPositions()[i],
                    p0.jointPositions()[i] + dt * v.jointVelocities()[i].value(), 1e-15);
      }
      EXPECT_TRUE(v.generalVelocity().approxEq(
          v0.generalVelocity() + dt * acceleration.generalAcceleration(), 1e-14));
      EXPECT_TRUE(p.coordSysXForm().translation().approxEq(
          p0.coordSysXForm().translation() + v.generalVelocity().linear() * dt, 1e-14));
      EXPECT_FALSE(results[m].hitJointLimit());
    }
    EXPECT_EQ(state.time(), scene.state().time() + dt);
  }
}

TEST_F(Propagation, JointsStopAtTheirLimitsAndKeepTheirRates) {
  const KtStatedSystem scene = sceneOf({4});
  KtManipulatorSystemState state = scene.state();
  state.positionStates()[0].jointPositions()[1] = 1.999;
  state.velocityStates()[0].jointVelocities()[1] = 3.0;
  state.positionStates()[0].jointPositions()[2] = -5.0;
  state.velocityStates()[0].jointVelocities()[3] = 1000.0;
  KtSystemActiveState active;
  active.setNonredundantState(state);
  active.manipulatorActiveStateVector()[0].setAccelerationState(
      KtAccelerationState::zeroCompatibleState(state.velocityStates()[0]));
  Results results;
  scene.propagateTo(state.time() + 0.001, state, results, active);
  const auto& q = state.positionStates()[0].jointPositions();
  EXPECT_EQ(q[1], 2.0);
  EXPECT_EQ(q[2], -2.0);
  EXPECT_EQ(state.velocityStates()[0].jointVelocities()[1], 3.0);
  EXPECT_EQ(state.velocityStates()[0].jointVelocities()[3], 100.0);  // cut in silence
  EXPECT_TRUE(results[0].hitJointLimit());
  EXPECT_EQ(results[0].linkIndexAtJointLimit(), 2U);  // the last of them
  // What an earlier step found stays in a vector that is used again.
  state.positionStates()[0].jointPositions().assign(4, 0.0);
  state.velocityStates()[0].jointVelocities().assign(4, 0.0);
  scene.propagateTo(state.time() + 0.001, state, results, active);
  EXPECT_TRUE(results[0].hitJointLimit());
}

TEST_F(Propagation, AttachedManipulatorsFollowInTheOrderOfTheirIndices) {
  KtStatedSystem scene = sceneOf({4, 2, 3});
  KtManipulatorSystem system = scene.system();
  KtManipulatorAttachmentMap map;
  const KtCoordinateSystemTransformation toFirst = randomTransformation();
  const KtCoordinateSystemTransformation toSecond = randomTransformation();
  const std::string link = system.manipulators()[0].linkByIndex(2)->label();
  const std::string tip = system.manipulators()[1].linkByIndex(1)->label();
  map.attachManipulator(1, 0, link, toFirst);
  map.attachManipulator(2, 1, tip, toSecond);
  system.setManipulatorAttachmentMap(map);
  const KtManipulatorSystemState before = scene.state();
  scene.setSystem(system);
  scene.setState(before);

  KtManipulatorSystemState state = before;
  KtSystemActiveState active;
  Results results;
  scene.propagateTo(state.time() + 0.01, state, results, active);
  active.setNonredundantState(state);
  const auto& arms = scene.system().manipulators();
  auto& states = active.manipulatorActiveStateVector();
  const auto expectAttached = [&](KtU32 parent, const std::string& label, KtU32 dependent,
                                  const KtCoordinateSystemTransformation& offset) {
    const KtManipulatorLink& carrier = *arms[parent].linkByIdentifier(label);
    EXPECT_TRUE(
        arms[dependent]
            .dhFrameInSystem(states[dependent].activePositionState())
            .approxEq(carrier.primaryFrameInSystem(states[parent].activePositionState()) * offset,
                      1e-12));
    KtGeneralMotion motion = carrier.primaryFrameVelocityInSystem(states[parent]);
    motion.transformBy(-offset.translation());
    motion.transformBy(arms[dependent].coordSysXForm().orientation());
    EXPECT_TRUE(state.velocityStates()[dependent].generalVelocity().approxEq(motion, 1e-12));
  };
  expectAttached(0, link, 1, toFirst);
  expectAttached(1, tip, 2, toSecond);
}

// Reports collisions of given manipulators, check by check.
class Colliding : public KtStatedSystem {
 public:
  using KtStatedSystem::KtStatedSystem;
  explicit Colliding(const KtStatedSystem& scene) : KtStatedSystem(scene) {}
  bool checkForCollisions(KtSystemActiveState&, const KtReal& factor, const KtU32& level,
                          const KtReal& tolerance, ResultVector& results) const override {
    EXPECT_EQ(factor, 1.0);
    EXPECT_EQ(level, 2U);
    EXPECT_EQ(tolerance, 0.25);
    for (auto& result : results.vectorContainer()) result.setCollisionOccurred(false);
    const auto& hit = script[std::min<std::size_t>(checks++, script.size() - 1)];
    for (const KtU32 i : hit) {
      results[i].setCollisionOccurred(true);
      results[i].setCollidedManipulator(i);
      results[i].setCollidedLink(10 + i);
      results[i].setOtherCollidedLink(20 + i);
      results[i].setOtherCollidedManipulator(30 + i);
    }
    return !hit.empty();
  }
  std::vector<std::vector<KtU32>> script;
  mutable std::size_t checks = 0;
};

TEST_F(Propagation, CollidedManipulatorsGoBack) {
  const KtStatedSystem scene = sceneOf({2, 3, 4});
  struct Case {
    KtU32 mode;
    std::vector<std::vector<KtU32>> script;
    std::vector<KtU32> back;    // in the state
    std::vector<KtU32> marked;  // in the results
    std::size_t checks;
  };
  const std::vector<Case> cases{
      {0, {{0, 1}}, {}, {}, 0},
      {7, {{0, 1}}, {}, {}, 0},
      {1, {{}}, {}, {}, 1},
      {1, {{1}}, {0, 1, 2}, {0, 1, 2}, 1},
      {2, {{}}, {}, {}, 1},
      {2, {{0, 1}, {}}, {0, 1}, {0, 1}, 2},
      {2, {{0}, {2}, {}}, {0, 2}, {0, 2}, 3},
      {2, {{0, 1, 2}}, {}, {0, 1, 2}, 1},  // all at once: the state stays propagated
      {2, {{0}}, {}, {0}, 3},              // no end found: the same
  };
  for (const Case& c : cases) {
    SCOPED_TRACE("mode " + std::to_string(c.mode));
    Colliding system(scene);
    system.script = c.script;
    KtManipulatorSystemState state = scene.state();
    KtSystemActiveState active;
    Results results;
    system.propagateTo(state.time() + 0.01, state, results, active, c.mode, 1.0, 2, 0.25);
    EXPECT_EQ(system.checks, c.checks);
    for (KtU32 i = 0; i < 3; ++i) {
      EXPECT_EQ(state.positionStates()[i] == scene.state().positionStates()[i],
                std::ranges::count(c.back, i) > 0)
          << i;
      const bool marked = std::ranges::count(c.marked, i) > 0;
      EXPECT_EQ(results[i].collisionOccurred(), marked) << i;
      if (marked && c.mode == 2) {
        EXPECT_EQ(results[i].otherCollidedManipulator(), 30 + i);
        EXPECT_TRUE(active.manipulatorActiveStateVector()[i].positionState() ==
                    scene.state().positionStates()[i]);
      }
    }
    EXPECT_EQ(state.time(), scene.state().time() + 0.01);
  }
}

class HighJoint : public KtXmlPersistent<HighJoint, KtBaseStoppingCriterion> {
 public:
  const KtString& descriptiveText() const override { return text; }
  bool stop(KtSystemActiveState&, const KtStatedSystem&, const KtReal& time, KtU32 index,
            KtPropagationResultData& result) const override {
    EXPECT_EQ(index, 1U);
    EXPECT_GT(time, 0.0);
    result.registerGenericStoppingCriterion(text);
    return true;
  }
  bool operator==(const HighJoint&) const = default;
  static const KtToken& classToken() {
    static const KtToken token("highJoint");
    return token;
  }
  KtString text = "high";
};

TEST_F(Propagation, EveryCriterionIsAskedAndTakesPositionsBack) {
  KtStatedSystem scene = sceneOf({2, 3});
  KtIndividualManipulator arm = scene.system().manipulators()[1];
  KtStoppingCriterionVector criteria;
  criteria.pushBack(HighJoint());
  criteria.pushBack(HighJoint());
  arm.setStoppingCriteria(criteria);
  const KtManipulatorSystemState before = scene.state();
  scene.exchangeManipulator(1, arm, before.positionStates()[1], before.velocityStates()[1]);
  KtManipulatorSystemState state = before;
  KtSystemActiveState active = acceleratedAlike(scene);
  Results results;
  scene.propagateTo(state.time() + 0.01, state, results, active);
  EXPECT_EQ(results[1].satisfiedGeneralStoppingCriteriaDescription(), "high; high");
  EXPECT_TRUE(state.positionStates()[1] == before.positionStates()[1]);
  EXPECT_FALSE(state.velocityStates()[1] == before.velocityStates()[1]);
  EXPECT_FALSE(state.positionStates()[0] == before.positionStates()[0]);
}

TEST_F(Propagation, AnEmptySystemTakesTheTimeOnly) {
  const KtStatedSystem scene;
  KtManipulatorSystemState state;
  Results results;
  KtSystemActiveState active;
  for (const KtU32 mode : {0U, 1U, 2U}) {
    scene.propagateTo(mode + 1.0, state, results, active, mode, 1.0, 1, 0.0);
    EXPECT_EQ(state.time(), mode + 1.0);
  }
}

// The whole step of a simulation, beside that of the same state with a kept active state.
TEST_F(Propagation, StepsAskForNoMemoryAndAreReproducible) {
  KtStatedSystem scene = sceneOf({6, 8});
  KtSystemEnvironment environment;
  environment.setUpGravityVector(KtVector(0.0, 0.0, 9.81));
  scene.setEnvironment(environment);
  const auto run = [&scene](int steps, std::size_t* allocations) {
    KtManipulatorSystemState state = scene.state();
    KtSystemActiveState active;
    Results results;
    std::vector<KtArbiAccelerationTool> tools(2);
    std::vector<KtManipulatorTorque> torques(2);
    std::vector<KtManipulatorExternalForce> forces(2);
    std::vector<KtAccelerationState> accelerations(2);
    active.setNonredundantState(state);
    const auto step = [&] {
      for (KtU32 m = 0; m < 2; ++m) {
        const KtIndividualManipulator& arm = scene.system().manipulators()[m];
        forces[m].resize(arm.jointDof());
        torques[m].jointTorques().resize(arm.jointDof());
        tools[m].acceleration(scene, arm, state.positionStates()[m], state.velocityStates()[m],
                              torques[m], forces[m], accelerations[m], nullptr, true);
        active.manipulatorActiveStateVector()[m].setAccelerationState(accelerations[m]);
      }
      scene.propagateTo(state.time() + 1e-3, state, results, active);
    };
    step();
    step();
    const Allocations counted;
    for (int k = 2; k < steps; ++k) step();
    if (allocations != nullptr) *allocations = counted.count();
    return state;
  };
  std::size_t allocations = 1;
  const KtManipulatorSystemState once = run(100, &allocations);
  EXPECT_EQ(allocations, 0U);
  EXPECT_TRUE(run(100, nullptr) == once);
}

// A point mass on a rod of 1 m, let go horizontally: at 5 s it stands at (0.942305435044,
// -0.334754338414), by elliptic functions.
TEST(PropagationOfAPendulum, ConvergesAtFirstOrder) {
  KtManipulatorLink rod;
  KtDenavitHartenberg joint;
  joint.setJointType(KtDenavitHartenberg::kRotational);
  joint.setDhType(KtDenavitHartenberg::kCraig);
  rod.setLinkKinematics(joint);
  KtRigidBodyMassProperties mass;
  mass.set(1.0, KtVector(1.0, 0.0, 0.0), KtSecondMoment(0.0, 1.0, 1.0, 0.0, 0.0, 0.0), false);
  rod.setMassProperties(mass);
  KtIndividualManipulator pendulum;
  pendulum.addChild(rod);
  pendulum.mapManipulator();
  KtStatedSystem scene;
  KtPositionState position;
  position.jointPositions().pushBack(0.0);
  KtVelocityState velocity;
  velocity.jointVelocities().pushBack(0.0);
  scene.addManipulator(pendulum, position, velocity);
  KtSystemEnvironment environment;
  environment.setUpGravityVector(KtVector(0.0, 9.81, 0.0));
  scene.setEnvironment(environment);
  const KtIndividualManipulator& arm = scene.system().manipulators()[0];

  double errors[2] = {};
  const int counts[2] = {5000, 50000};
  for (int run = 0; run < 2; ++run) {
    KtManipulatorSystemState state = scene.state();
    KtSystemActiveState active;
    active.setNonredundantState(state);
    KtArbiAccelerationTool tool;
    KtManipulatorTorque torque;
    torque.jointTorques().resize(1);
    KtManipulatorExternalForce none;
    none.resize(1);
    KtAccelerationState acceleration;
    Results results;
    for (int k = 1; k <= counts[run]; ++k) {
      tool.acceleration(scene, arm, state.positionStates()[0], state.velocityStates()[0], torque,
                        none, acceleration, nullptr, true);
      active.manipulatorActiveStateVector()[0].setAccelerationState(acceleration);
      scene.propagateTo(5.0 * k / counts[run], state, results, active);
    }
    const double q = state.positionStates()[0].jointPositions()[0];
    errors[run] = std::hypot(std::cos(q) - 0.942305435044, std::sin(q) + 0.334754338414);
  }
  EXPECT_LT(errors[0], 0.02);
  EXPECT_NEAR(errors[0] / errors[1], 10.0, 1.5);
}

}  // namespace
