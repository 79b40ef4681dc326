#include <gtest/gtest.h>

#include "ktManipulator/ktManipulator.h"
#include "support/Random.h"

namespace {

using Stated = KtStatedSystem;
using Results = Stated::ResultVector;
using T = KtCoordinateSystemTransformation;
using StepRules = sampling::Seeded;

// Bodies with one joint each, from -1 to 2 and no faster than 10.
class Scene : public Stated {
 public:
  Scene(KtU32 count, double q, double rate) {
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
    for (KtU32 i = 0; i < count; ++i) addManipulator(arm, position, velocity);
  }
  bool checkForCollisions(KtSystemActiveState&, const KtReal&, const KtU32&, const KtReal&,
                          ResultVector& results) const override {
    for (auto& result : results.vectorContainer()) result.setCollisionOccurred(collides);
    return collides;
  }
  bool collides = false;
};

KtSystemActiveState accelerated(const Stated& scene, double a) {
  KtSystemActiveState active;
  active.setNonredundantState(scene.state());
  KtAccelerationState acceleration;
  acceleration.jointAccelerations().pushBack(a);
  for (auto& each : active.manipulatorActiveStateVector().vectorContainer()) {
    each.setAccelerationState(acceleration);
  }
  return active;
}

TEST_F(StepRules, LimitsAndRatesAreTheSameByEveryWay) {
  struct Row {
    double q, rate, acceleration, dt, newQ, newRate;
    bool hits;
  };
  const auto go = [](int way, Scene& s, double t, Results& r, KtSystemActiveState* a) {
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
        Scene scene(1, row.q, row.rate);
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

// Velocities never go back, and a flag of an earlier step takes back the position in mode 2.
TEST_F(StepRules, CollisionsTakeBackPositionsAlone) {
  for (const KtU32 mode : {0U, 1U, 2U}) {
    for (const bool collides : {false, true}) {
      for (const bool stale : {false, true}) {
        SCOPED_TRACE(testing::Message() << mode << collides << stale);
        Scene scene(2, 0.5, 3.0);
        scene.collides = collides;
        KtSystemActiveState active = accelerated(scene, 10.0);
        Results results(2);
        results[1].setCollisionOccurred(stale);
        scene.propagateSelfTo(0.1, results, &active, mode, 1.0, 1, 0.0);
        for (KtU32 i = 0; i < 2; ++i) {
          const bool back = mode == 1 ? collides : mode == 2 && !collides && stale && i == 1;
          EXPECT_NEAR(scene.state().positionStates()[i].jointPositions()[0], back ? 0.5 : 0.9,
                      1e-15);
          EXPECT_EQ(scene.state().velocityStates()[i].jointVelocities()[0], 4.0);
          EXPECT_EQ(results[i].collisionOccurred(), (mode != 0 && collides) || (stale && i == 1));
        }
      }
    }
  }
}

// Each follows its parent as that stands in the pass: 0 hangs on 1, which hangs on 2 and comes
// later.
TEST_F(StepRules, AttachmentsAreCarriedInTheOrderOfTheirKeys) {
  Scene scene(3, 0.5, 0.0);
  KtManipulatorAttachmentMap map;
  const KtVector offset(1.0, 2.0, 3.0);
  for (const KtU32 key : {0U, 1U}) map.attachManipulator(key, key + 1, "link", T(offset));
  scene.setManipulatorAttachmentMap(map);
  for (KtU32 i = 0; i < 3; ++i) {
    scene.setIndividualCoordinateSystemTransformation(i, sampling::randomTransformation());
  }
  const auto carrier = [&](KtU32 index) {
    KtManipulatorActivePositionState place;
    place.setPositionState(scene.state().positionStates()[index]);
    const auto& link = *scene.system().manipulators()[index].linkByIndex(0);
    return link.primaryFrameInSystem(place) * T(offset);
  };
  for (int step = 1; step < 4; ++step) {
    const T first = carrier(1);
    scene.propagateSelfTo(step, nullptr);
    const auto& states = scene.state().positionStates();
    EXPECT_TRUE(states[0].coordSysXForm().approxEq(first, 1e-14));
    EXPECT_TRUE(states[1].coordSysXForm().approxEq(carrier(2), 1e-14));
    EXPECT_EQ(states[0].coordSysXForm().approxEq(carrier(1), 1e-9), step > 1);
  }
}

}  // namespace
