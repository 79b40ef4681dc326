#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using Results = KtStatedSystem::ResultVector;

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

TEST(Propagation, PositionsFollowTheNewVelocities) {
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

TEST(Propagation, ActuatorsBoundTheirJointsAndTheLastThatStopsIsTold) {
  const KtStatedSystem scene = sceneOf({3});
  const KtIndividualManipulator& arm = scene.system().manipulators()[0];
  KtJointActuator actuator = arm.linkByIndex(1)->jointActuator();
  Halved halved;
  halved.setLowerLimit(-2.0);
  halved.setUpperLimit(2.0);
  halved.setMaxOutputRate(100.0);
  actuator.setMechanicalComponent(halved);
  const_cast<KtManipulatorLink*>(arm.linkByIndex(1))->setJointActuator(actuator);
  KtManipulatorSystemState state = scene.state();
  auto& q = state.positionStates()[0].jointPositions();
  auto& rates = state.velocityStates()[0].jointVelocities();
  rates[0] = rates[1] = rates[2] = 1000.0;
  q[0] = q[1] = 0.999, q[2] = 0.0;
  KtSystemActiveState active;
  active.setNonredundantState(state);
  active.manipulatorActiveStateVector()[0].setAccelerationState(
      KtAccelerationState::zeroCompatibleState(state.velocityStates()[0]));
  Results results;
  scene.propagateTo(state.time() + 0.001, state, results, active);
  EXPECT_NEAR(q[0], 1.099, 1e-14);
  EXPECT_EQ(q[1], 1.0);
  EXPECT_EQ(rates[1], 50.0);
  EXPECT_TRUE(results[0].hitJointLimit());
  EXPECT_EQ(results[0].linkIndexAtJointLimit(), 1U);
  q[0] = q[1] = q[2] = 1.999;
  scene.propagateTo(state.time() + 0.001, state, results, active);
  EXPECT_EQ(results[0].linkIndexAtJointLimit(), 2U);
  // What an earlier step found stays in a vector that is used again.
  q.assign(3, 0.0), rates.assign(3, 0.0);
  scene.propagateTo(state.time() + 0.001, state, results, active);
  EXPECT_TRUE(results[0].hitJointLimit());
}

// Each follows its parent as that stands then: one that hangs on a later key is a step behind.
TEST(Propagation, AttachedManipulatorsFollowInTheOrderOfTheirKeys) {
  for (const bool rising : {true, false}) {
    KtStatedSystem scene = sceneOf({4, 2, 3});
    const auto& arms = scene.system().manipulators();
    KtManipulatorAttachmentMap map;
    KtCoordinateSystemTransformation offsets[3];
    const auto parentOf = [&](KtU32 key) { return rising ? key - 1 : key + 1; };
    const auto carrierOf = [&](KtU32 key) -> auto& {
      return *arms[parentOf(key)].linkByIndex(1);
    };
    for (KtU32 key = rising ? 1 : 0; key < (rising ? 3U : 2U); ++key) {
      offsets[key] = randomTransformation();
      map.attachManipulator(key, parentOf(key), carrierOf(key).label(), offsets[key]);
    }
    KtManipulatorSystemState state = scene.state();
    Results results;
    KtSystemActiveState active, expected;
    // Without attachments all move by themselves; then one after the other is carried.
    scene.propagateTo(state.time() + 0.01, state, results, active);
    expected.setNonredundantState(state);
    scene.setManipulatorAttachmentMap(map);
    state = scene.state();
    active = {};
    scene.propagateTo(state.time() + 0.01, state, results, active);
    auto& all = expected.manipulatorActiveStateVector();
    for (const auto& [key, attachment] : map.mapContainer()) {
      const KtManipulatorLink& carrier = carrierOf(key);
      KtManipulatorActiveState& parent = all[parentOf(key)];
      const auto place =
          carrier.primaryFrameInSystem(parent.activePositionState()) * offsets[key.value()];
      KtGeneralMotion motion = carrier.primaryFrameVelocityInSystem(parent);
      motion.transformBy(-offsets[key.value()].translation());
      motion.transformBy(arms[key].coordSysXForm().orientation());
      all[key].setPositionState(state.positionStates()[key]);
      all[key].setVelocityState(state.velocityStates()[key]);
      EXPECT_TRUE(arms[key].dhFrameInSystem(all[key].activePositionState()).approxEq(place, 1e-12));
      EXPECT_TRUE(all[key].velocityState().generalVelocity().approxEq(motion, 1e-12));
    }
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

TEST(Propagation, CollidedManipulatorsGoBack) {
  const KtStatedSystem scene = sceneOf({2, 3, 4});
  struct Case {
    KtU32 mode;
    std::vector<std::vector<KtU32>> script;
    std::set<KtU32> back;    // in the state
    std::set<KtU32> marked;  // in the results
    std::size_t checks;
    bool stale = false;  // whether the second has collided in the step before
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
           {0, {{0}}, {}, {1}, 0, true},
           {1, {{}}, {}, {1}, 1, true},
           {1, {{2}}, {0, 1, 2}, {0, 1, 2}, 1, true},
           {2, {{}}, {1}, {1}, 1, true},
       }) {
    SCOPED_TRACE("mode " + std::to_string(c.mode));
    Colliding system(scene);
    system.script = c.script;
    KtManipulatorSystemState state = scene.state();
    KtSystemActiveState active = acceleratedAlike(scene);
    Results results(3);
    results[1].setCollisionOccurred(c.stale);
    system.propagateTo(state.time() + 0.01, state, results, active, c.mode, 1.0, 2, 0.25);
    EXPECT_EQ(system.checks, c.checks);
    for (KtU32 i = 0; i < 3; ++i) {
      SCOPED_TRACE(i);
      const KtPositionState& before = scene.state().positionStates()[i];
      EXPECT_EQ(state.positionStates()[i] == before, c.back.contains(i));
      EXPECT_FALSE(state.velocityStates()[i] == scene.state().velocityStates()[i]);
      EXPECT_EQ(results[i].collisionOccurred(), c.marked.contains(i));
      if (c.mode != 2 || c.stale) continue;
      const bool marked = c.marked.contains(i);
      EXPECT_TRUE(active.manipulatorActiveStateVector()[i].positionState() ==
                  (marked ? before : state.positionStates()[i]));
      EXPECT_TRUE(!marked || results[i].otherCollidedManipulator() == 30 + i);
    }
    EXPECT_EQ(state.time(), scene.state().time() + 0.01);
  }
}

// A body on one joint, from -1 to 2 and no faster than 10.
class Joint : public KtStatedSystem {
 public:
  Joint(double q, double rate) {
    KtJointActuator actuator;
    actuator.setLowerLimit(-1.0);
    actuator.setUpperLimit(2.0);
    actuator.setMaxOutputRate(10.0);
    KtManipulatorLink link;
    link.setLabel("link");
    link.setLinkKinematics(KtDenavitHartenberg());
    link.setJointActuator(actuator);
    KtIndividualManipulator arm;
    arm.addLinkToEndOfChain(link);
    KtPositionState position;
    position.jointPositions().pushBack(q);
    KtVelocityState velocity;
    velocity.jointVelocities().pushBack(rate);
    addManipulator(arm, position, velocity);
  }
};

KtSystemActiveState accelerated(const KtStatedSystem& scene, double a) {
  KtSystemActiveState active;
  active.setNonredundantState(scene.state());
  KtAccelerationState acceleration;
  acceleration.jointAccelerations().pushBack(a);
  active.manipulatorActiveStateVector()[0].setAccelerationState(acceleration);
  return active;
}

TEST(Propagation, LimitsAndRatesAreTheSameByEveryWay) {
  struct Row {
    double q, rate, acceleration, dt, newQ, newRate;
    bool hits;
  };
  const auto go = [](int way, Joint& s, double t, Results& r, KtSystemActiveState* a) {
    KtManipulatorSystemState state = s.state();
    KtPositionState& p = state.positionStates()[0];
    const KtVelocityState& v = state.velocityStates()[0];
    if (way == 0) s.propagateSelfTo(t, r, a);
    if (way == 1) s.propagateSelfTo(t, r, a, 0, 1.0, 1, 0.0);
    if (way == 2) s.propagateSelfTo(t, a);
    if (way < 3) return;
    if (way == 3) s.propagateTo(t, state, a);
    // The others move positions alone, by velocities that are not cut.
    if (way == 4) s.system().propagateStateBy(state, t);
    if (way == 5) {
      r.resize(1);
      s.propagateSingleStateBy(1, v, 9.0, p, r[0]);  // there is none
      s.propagateSingleStateBy(0, v, t, p, r[0]);
      s.propagateSingleStateBy(1, v, 9.0, p), s.propagateSingleStateBy(0, v, 0.0, p);
      s.system().propagateSingleStateBy(1, v, 9.0, p);
      state.setTime(t);
    }
    s.setState(state);
  };
  for (const Row& row : {Row{0.5, 3.0, 0.0, 0.1, 0.8, 3.0, false},
                         {5.0, 3.0, 0.0, 0.0, 2.0, 3.0, true},  // without time, too
                         {-4.0, 3.0, 0.0, 0.0, -1.0, 3.0, true},
                         {0.5, 4.0, 0.0, -0.1, 0.1, 4.0, false},
                         {0.0, 50.0, 0.0, 0.1, 1.0, 10.0, false},  // cut before it is used
                         {0.0, -50.0, 0.0, 0.1, -1.0, -10.0, false},
                         {1.5, 50.0, 0.0, 0.1, 2.0, 10.0, true},
                         {0.0, 9.0, 20.0, 0.1, 1.0, 10.0, false},
                         {0.0, 4.0, -20.0, -0.1, -0.6, 6.0, false}}) {
    for (int way = 0; way < 6; ++way) {
      for (const bool given : {true, false}) {
        // A state that is made on need has no accelerations, and joints without one keep their
        // rates.
        if ((!given || way > 3) && row.rate != row.newRate) continue;
        SCOPED_TRACE(testing::Message() << row.q << ", " << row.rate << ", way " << way);
        Joint scene(row.q, row.rate);
        KtSystemActiveState active = accelerated(scene, row.acceleration);
        Results results;
        go(way, scene, row.dt, results, given ? &active : nullptr);
        EXPECT_NEAR(scene.state().positionStates()[0].jointPositions()[0], row.newQ, 1e-15);
        EXPECT_EQ(scene.state().velocityStates()[0].jointVelocities()[0], row.newRate);
        EXPECT_EQ(scene.state().time(), row.dt);
        if (results.size() == 0) continue;
        EXPECT_EQ(results[0].hitJointLimit(), row.hits);
        EXPECT_EQ(results[0].linkIndexAtJointLimit(), row.hits ? 0U : 1000U);
      }
    }
  }
}

TEST(Propagation, AnEmptySystemTakesTheTimeOnly) {
  const KtStatedSystem scene;
  KtManipulatorSystemState state;
  Results results;
  KtSystemActiveState active;
  for (const KtU32 mode : {0U, 1U, 2U}) {
    scene.propagateTo(mode + 1.0, state, results, active, mode, 1.0, 1, 0.0);
    EXPECT_EQ(state.time(), mode + 1.0);
  }
}

TEST(PropagationRecord, DescriptionsAreJoinedAndClearedWithTheirFlag) {
  KtPropagationResultData result;
  EXPECT_EQ(result.linkIndexAtJointLimit(), 1000U);
  const KtString& text = result.satisfiedGeneralStoppingCriteriaDescription();
  result.setSatisfiedGeneralStoppingCriteriaDescription("note");
  result.reset();
  EXPECT_EQ(text, "note");
  result.registerGenericStoppingCriterion("one");
  EXPECT_EQ(text, "note; one");

  result.setHitJointLimit(true);
  result.setHitSingularity(true);
  result.setCollisionOccurred(true);
  KtPropagationResultData expected;
  for (KtPropagationResultData* each : {&result, &expected}) {
    each->setOtherCollidedLink(3);
    each->setLinkIndexAtJointLimit(5);
  }
  result.reset();
  EXPECT_TRUE(result == expected) << "indices stay";
  result.registerGenericStoppingCriterion("one");
  EXPECT_EQ(text, "one");
}

TEST(PropagationRecord, FilesHaveTheirOwnOrderAndLeaveOutTheOwnManipulator) {
  KtPropagationResultData result;
  result.setCollidedManipulator(6);
  const KtManipulatorActiveAccelerationState accelerations;
  using Names = std::vector<const char*>;
  for (const auto& [text, names] :
       {std::pair(
            KtXmlWriter::writeString(result),
            Names{"hitJointLimit", "hitSingularity", "collisionOccurred", "collidedLink",
                  "linkIndexAtJointLimit", "otherCollidedLink", "otherCollidedManipulator",
                  "hitGeneralStoppingCriterion", "satisfiedGeneralStoppingCriteriaDescription"}),
        std::pair(KtXmlWriter::writeString(accelerations),
                  Names{"accelerationState>", "accelerationStates", "baseAccelerationState"})}) {
    std::size_t before = 0;
    for (const char* name : names) {
      const std::size_t at = text.find(std::string("<") + name);
      ASSERT_NE(at, std::string::npos) << name;
      EXPECT_LT(before, at) << name;
      before = at;
    }
    EXPECT_EQ(text.find("<collidedManipulator"), std::string::npos);
  }
}

}  // namespace
