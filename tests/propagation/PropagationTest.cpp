#include "support/States.h"
#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using Results = KtStatedSystem::ResultVector;

struct Bounds {
  double lower, upper, rate;
};

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

template <class Mechanics>
KtJointActuator actuatorOf(const Bounds& bounds, double factor) {
  Mechanics mechanics;
  mechanics.setLowerLimit(factor * bounds.lower);
  mechanics.setUpperLimit(factor * bounds.upper);
  mechanics.setMaxOutputRate(factor * bounds.rate);
  KtJointActuator actuator;
  actuator.setMechanicalComponent(mechanics);
  return actuator;
}

// Free arms of so many joints, one beside the other, at random states within their limits and not.
struct Scene : KtStatedSystem {
  explicit Scene(std::initializer_list<int> joints) {
    for (const int count : joints) {
      Arm arm = trees::randomManipulator(count + 1, "arm " + std::to_string(count));
      arm.setIsFixedBase(false);
      arm.setCoordSysXForm(randomTransformation());
      auto& own = bounds.emplace_back();
      for (KtU32 i = 0; i < arm.jointDof(); ++i) {
        own.push_back({uniform(-1.0, 0.0), uniform(0.0, 1.0), uniform(0.5, 1.5)});
        arm.linkByIdentifier(arm.linkByIndex(i)->label())
            ->setJointActuator(i % 2 == 0
                                   ? actuatorOf<KtMechanicalActuatorComponent>(own.back(), 1.0)
                                   : actuatorOf<Halved>(own.back(), 2.0));
      }
      addManipulator(arm, states::at(states::randomJoints(arm.jointDof())),
                     states::moving(states::randomJoints(arm.jointDof())));
    }
  }
  std::vector<std::vector<Bounds>> bounds;
};

KtSystemActiveState accelerated(const KtStatedSystem& scene) {
  KtSystemActiveState active;
  active.setNonredundantState(scene.state());
  for (auto& state : active.manipulatorActiveStateVector().vectorContainer()) {
    auto acceleration = KtAccelerationState::zeroCompatibleState(state.velocityState());
    for (auto& a : acceleration.jointAccelerations().vectorContainer()) a = uniform() * 10.0;
    acceleration.setGeneralAcceleration(randomMotion());
    state.setAccelerationState(acceleration);
  }
  return active;
}

// Rates are cut before positions follow them. The last joint that stops is told; what an earlier
// step found stays where results are used again.
TEST(Propagation, RatesAndLimitsAreTheSameByEveryWay) {
  using Way = std::function<void(KtStatedSystem&, KtManipulatorSystemState&, double, Results&,
                                 KtSystemActiveState*)>;
  const std::vector<Way> ways{
      [](auto& scene, auto& state, double t, auto& results, auto* active) {
        scene.propagateTo(t, state, results, *active);
      },
      // These make themselves an active state if none is given: it has no accelerations.
      [](auto& scene, auto& state, double t, auto& results, auto* active) {
        scene.propagateSelfTo(t, results, active), state = scene.state();
      },
      [](auto& scene, auto& state, double t, auto& results, auto* active) {
        scene.propagateSelfTo(t, results, active, 0, 1.0, 1, 0.0), state = scene.state();
      },
      [](auto& scene, auto& state, double t, auto&, auto* active) {
        scene.propagateSelfTo(t, active), state = scene.state();
      },
      [](auto& scene, auto& state, double t, auto&, auto* active) {
        scene.propagateTo(t, state, active);
      },
      // These move positions alone.
      [](auto& scene, auto& state, double t, auto&, auto*) {
        scene.system().propagateStateBy(state, t - state.time());
      },
      [](auto& scene, auto& state, double t, auto& results, auto*) {
        const auto& v = state.velocityStates();
        auto& p = state.positionStates();
        for (const KtU32 i : {0U, 2U}) {  // the last of which isn't there
          scene.propagateSingleStateBy(i, v[i % 2], t - state.time(), p[i % 2], results[i % 2]);
        }
        scene.propagateSingleStateBy(1, v[1], t - state.time(), p[1]);
        scene.propagateSingleStateBy(2, v[1], t - state.time(), p[1]);
        scene.system().propagateSingleStateBy(2, v[1], t - state.time(), p[1]);
        state.setTime(t);
      }};
  int told = 0;
  for (int round = 0; round < 200; ++round) {
    const Scene scene{round % 5, 3};
    const KtSystemActiveState accelerations = accelerated(scene);
    const double dt = round % 3 == 0 ? 0.0 : 0.5 * uniform();
    const KtU32 way = static_cast<KtU32>(round) % 7;
    const bool isGiven = way == 0 || (way < 5 && uniform() < 0.5);
    SCOPED_TRACE(testing::Message() << "way " << way << " by " << dt);
    KtStatedSystem moving(scene);
    KtManipulatorSystemState state = scene.state();
    KtSystemActiveState active = accelerations;
    Results results(2);
    results[1].setHitJointLimit(true);
    ways[way](moving, state, state.time() + dt, results, isGiven ? &active : nullptr);
    EXPECT_EQ(state.time(), scene.state().time() + dt);
    ASSERT_EQ(results.size(), 2U);
    for (KtU32 m = 0; m < 2; ++m) {
      const auto& a = accelerations.manipulatorActiveStateVector()[m].accelerationState();
      const KtPositionState &p0 = scene.state().positionStates()[m], &p = state.positionStates()[m];
      const KtVelocityState &v0 = scene.state().velocityStates()[m], &v = state.velocityStates()[m];
      KtU32 last = 1000;
      for (KtU32 i = 0; i < scene.bounds[m].size(); ++i) {
        const auto& [lower, upper, most] = scene.bounds[m][i];
        double rate = v0.jointVelocities()[i];
        if (isGiven) rate = std::clamp(rate + dt * a.jointAccelerations()[i], -most, most);
        const double q = p0.jointPositions()[i] + dt * rate;
        if (q < lower || q > upper) last = i;
        EXPECT_NEAR(v.jointVelocities()[i], rate, 1e-15);
        EXPECT_NEAR(p.jointPositions()[i], std::clamp(q, lower, upper), 1e-15);
      }
      KtGeneralMotion base = v0.generalVelocity();
      if (isGiven) base += dt * a.generalAcceleration();
      EXPECT_TRUE(v.generalVelocity().approxEq(base, 1e-14));
      EXPECT_TRUE(p.coordSysXForm().translation().approxEq(
          p0.coordSysXForm().translation() + base.linear() * dt, 1e-14));
      const bool isTold = way < 3 || (way == 6 && m == 0);
      EXPECT_EQ(results[m].linkIndexAtJointLimit(), isTold ? last : 1000U);
      EXPECT_EQ(results[m].hitJointLimit(), m == 1 || (isTold && last < 1000));
      told += isTold && last < 1000;
    }
  }
  EXPECT_GT(told, 50);
}

// Each follows its parent as that stands then: one that hangs on a later key is a step behind.
TEST(Propagation, AttachedManipulatorsFollowInTheOrderOfTheirKeys) {
  for (const bool rising : {true, false}) {
    Scene scene{4, 2, 3};
    const auto& arms = scene.system().manipulators();
    KtManipulatorAttachmentMap map;
    T offsets[3];
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
      const Link& carrier = carrierOf(key);
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
  const Scene scene{2, 3, 4};
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
    KtSystemActiveState active = accelerated(scene);
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
  result.setOtherCollidedLink(3);
  KtPropagationResultData expected;
  expected.setOtherCollidedLink(3);  // indices stay
  result.reset();
  EXPECT_TRUE(result == expected);
}

}  // namespace
