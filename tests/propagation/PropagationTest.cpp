#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "ktManipulator/ktManipulator.h"
#include "support/Trees.h"

namespace {

using namespace sampling;
using Results = KtStatedSystem::ResultVector;
using Propagation = Seeded;

// Arms of so many joints, one beside the other, at random states well inside of their limits.
KtStatedSystem sceneOf(std::initializer_list<int> joints) {
  KtStatedSystem scene;
  for (const int count : joints) {
    KtIndividualManipulator arm = trees::randomManipulator(count + 1);
    arm.setLabel("arm " + std::to_string(count));
    arm.setIsFixedBase(false);
    arm.setCoordSysXForm(randomTransformation());
    KtPositionState position;
    position.setCoordSysXForm(randomTransformation());
    KtVelocityState velocity;
    velocity.setGeneralVelocity(randomMotion());
    for (KtU32 i = 0; i < arm.jointDof(); ++i) {
      KtJointActuator actuator;
      actuator.setLowerLimit(-2.0);
      actuator.setUpperLimit(2.0);
      actuator.setMaxOutputRate(100.0);
      const_cast<KtManipulatorLink*>(arm.linkByIndex(i))->setJointActuator(actuator);
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

// An actuator's part that has its own opinion of what bounds the joint.
class Halved : public KtXmlPersistent<Halved, KtMechanicalActuatorComponent> {
 public:
  double lowerLimit() const override { return 0.5 * KtMechanicalActuatorComponent::lowerLimit(); }
  double upperLimit() const override { return 0.5 * KtMechanicalActuatorComponent::upperLimit(); }
  double maxOutputRate() const override {
    return 0.5 * KtMechanicalActuatorComponent::maxOutputRate();
  }
  bool operator==(const Halved&) const = default;
  static const KtToken& classToken() {
    static const KtToken token("halved");
    return token;
  }
};

TEST_F(Propagation, JointsStopAtTheirLimitsAndKeepTheirRates) {
  const KtStatedSystem scene = sceneOf({4});
  KtManipulatorLink& halved =
      const_cast<KtManipulatorLink&>(*scene.system().manipulators()[0].linkByIndex(0));
  KtJointActuator actuator;
  actuator.setMechanicalComponent(Halved());
  actuator.setLowerLimit(-2.0);
  actuator.setUpperLimit(2.0);
  actuator.setMaxOutputRate(100.0);
  halved.setJointActuator(actuator);
  KtManipulatorSystemState state = scene.state();
  auto& q = state.positionStates()[0].jointPositions();
  auto& rates = state.velocityStates()[0].jointVelocities();
  q[0] = 0.999;
  rates[0] = 1000.0;
  q[1] = 1.999;
  rates[1] = 3.0;
  q[2] = -5.0;
  rates[2] = -1000.0;
  rates[3] = 1000.0;
  KtSystemActiveState active;
  active.setNonredundantState(state);
  active.manipulatorActiveStateVector()[0].setAccelerationState(
      KtAccelerationState::zeroCompatibleState(state.velocityStates()[0]));
  Results results;
  scene.propagateTo(state.time() + 0.001, state, results, active);
  EXPECT_EQ(q[0], 1.0);
  EXPECT_EQ(rates[0], 50.0);
  EXPECT_EQ(q[1], 2.0);
  EXPECT_EQ(q[2], -2.0);
  EXPECT_EQ(rates[1], 3.0);
  EXPECT_EQ(rates[2], -100.0);  // cut in silence
  EXPECT_EQ(rates[3], 100.0);
  EXPECT_TRUE(results[0].hitJointLimit());
  EXPECT_EQ(results[0].linkIndexAtJointLimit(), 2U);  // the last of them
  // What an earlier step found stays in a vector that is used again.
  q.assign(4, 0.0);
  rates.assign(4, 0.0);
  scene.propagateTo(state.time() + 0.001, state, results, active);
  EXPECT_TRUE(results[0].hitJointLimit());
}

TEST_F(Propagation, AttachedManipulatorsFollowInTheOrderOfTheirIndices) {
  KtStatedSystem scene = sceneOf({4, 2, 3});
  const KtManipulatorSystemState before = scene.state();
  KtManipulatorSystem system = scene.system();
  KtManipulatorAttachmentMap map;
  KtCoordinateSystemTransformation offsets[2];
  for (KtU32 parent : {0U, 1U}) {
    offsets[parent] = randomTransformation();
    const std::string label = system.manipulators()[parent].linkByIndex(1)->label();
    map.attachManipulator(parent + 1, parent, label, offsets[parent]);
  }
  system.setManipulatorAttachmentMap(map);
  scene.setSystem(system);
  scene.setState(before);

  KtManipulatorSystemState state = before;
  KtSystemActiveState active;
  Results results;
  scene.propagateTo(state.time() + 0.01, state, results, active);
  active.setNonredundantState(state);
  const auto& arms = scene.system().manipulators();
  auto& states = active.manipulatorActiveStateVector();
  for (KtU32 parent : {0U, 1U}) {
    const KtU32 own = parent + 1;
    const KtManipulatorLink& carrier = *arms[parent].linkByIndex(1);
    auto& positions = states[parent].activePositionState();
    EXPECT_TRUE(arms[own]
                    .dhFrameInSystem(states[own].activePositionState())
                    .approxEq(carrier.primaryFrameInSystem(positions) * offsets[parent], 1e-12));
    KtGeneralMotion motion = carrier.primaryFrameVelocityInSystem(states[parent]);
    motion.transformBy(-offsets[parent].translation());
    motion.transformBy(arms[own].coordSysXForm().orientation());
    EXPECT_TRUE(state.velocityStates()[own].generalVelocity().approxEq(motion, 1e-12));
  }
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
    std::set<KtU32> back;    // in the state
    std::set<KtU32> marked;  // in the results
    std::size_t checks;
  };
  for (const Case& c : std::vector<Case>{
           {0, {{0, 1}}, {}, {}, 0},
           {7, {{0, 1}}, {}, {}, 0},
           {1, {{}}, {}, {}, 1},
           {1, {{1}}, {0, 1, 2}, {0, 1, 2}, 1},
           {2, {{}}, {}, {}, 1},
           {2, {{0, 1}, {}}, {0, 1}, {0, 1}, 2},
           {2, {{0}, {2}, {}}, {0, 2}, {0, 2}, 3},
           {2, {{0, 1, 2}}, {}, {0, 1, 2}, 1},  // all at once: the state stays propagated
           {2, {{0}}, {}, {0}, 3},              // no end found: the same
       }) {
    SCOPED_TRACE("mode " + std::to_string(c.mode));
    Colliding system(scene);
    system.script = c.script;
    KtManipulatorSystemState state = scene.state();
    KtSystemActiveState active;
    Results results;
    system.propagateTo(state.time() + 0.01, state, results, active, c.mode, 1.0, 2, 0.25);
    EXPECT_EQ(system.checks, c.checks);
    for (KtU32 i = 0; i < 3; ++i) {
      SCOPED_TRACE(i);
      const KtPositionState& before = scene.state().positionStates()[i];
      EXPECT_EQ(state.positionStates()[i] == before, c.back.contains(i));
      EXPECT_EQ(results[i].collisionOccurred(), c.marked.contains(i));
      if (c.mode != 2) continue;
      const bool marked = c.marked.contains(i);
      EXPECT_TRUE(active.manipulatorActiveStateVector()[i].positionState() ==
                  (marked ? before : state.positionStates()[i]));
      EXPECT_TRUE(!marked || results[i].otherCollidedManipulator() == 30 + i);
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
  for (int i = 0; i < 2; ++i) criteria.pushBack(HighJoint());
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

}  // namespace
