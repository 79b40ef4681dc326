#include <gtest/gtest.h>

#include <utility>

#include "ktManipulator/ktManipulator.h"
#include "support/KtLogCapture.h"

namespace {

using Active = KtManipulatorActiveState;

KtPositionState positions(KtU32 joints, double value) {
  KtPositionState state;
  state.setJointPositions({joints, value});
  return state;
}

KtVelocityState velocities(KtU32 joints, double value) {
  KtVelocityState state;
  state.setJointVelocities(KtVelocityState::JointVector(joints, value));
  return state;
}

KtAccelerationState accelerations(KtU32 joints) {
  KtAccelerationState state;
  state.resize(joints);
  return state;
}

// With an entry of each kind for link 1.
Active filledState() {
  Active active;
  active.setPositionState(positions(3, 0.5));
  active.setVelocityState(velocities(3, 1.0));
  active.setAccelerationState(accelerations(3));
  active.activePositionState().setDhTransform(1, {});
  active.activeVelocityState().setLinkDhVelocityInLocal(1, {});
  active.activeMassState().setCrbi(1, KtRigidBodyMassProperties::defaultObject());
  active.activeAccelerationState().setLinkDhAccelerationInLocal(1, {});
  active.activeForceState().setLinkDhForceInLocal(1, {});
  active.activeArticulationState().setSupplementalJointAcceleration(1, 1.0);
  return active;
}

// A letter for each part whose entry holds: position, velocity, mass, acceleration, force,
// articulated dynamics.
std::string validParts(const Active& active) {
  const bool valid[] = {active.activePositionState().linkPositionStates()[1].dhTransformValid(),
                        active.activeVelocityState().linkVelocityStates()[1].localDhValid(),
                        active.activeMassState().linkMassStates()[1].crbiValid(),
                        active.activeAccelerationState().linkAccelerationStates()[1].localDhValid(),
                        active.activeForceState().linkForceStates()[1].localDhValid(),
                        active.activeArticulationState()
                            .linkArticulationStates()[1]
                            .supplementalJointAccelerationValid()};
  std::string letters = "PVMAFD";
  for (std::size_t i = 0; i < letters.size(); ++i) letters[i] = valid[i] ? letters[i] : '-';
  return letters;
}

// That nothing stays which does depend on them is for the caches' tests.
TEST(ActiveState, SettersKeepWhatDoesNotDependOnThem) {
  const Active filled = filledState();
  KtPositionState moved = filled.positionState();
  moved.setCoordSysXForm(KtVector(0.0, 0.0, 1e-300));
  Active active = filled;
  EXPECT_FALSE(active.setPositionState(positions(3, 0.5)));
  EXPECT_FALSE(active.setVelocityState(velocities(3, 1.0)));
  EXPECT_EQ(validParts(active), "PVMAFD") << "nothing has changed";
  active.setAccelerationState(KtAccelerationState(active.accelerationState()));
  EXPECT_EQ(validParts(active), "PVM---") << "an input that is always stored";
  active = filled;
  EXPECT_TRUE(active.setVelocityState(velocities(3, 2.0)));
  EXPECT_EQ(validParts(active), "P-M---");
  active = filled;
  active.actuatorState().motorPositions()[0] = 3.5;
  EXPECT_TRUE(active.setPositionState(moved));
  EXPECT_EQ(validParts(active), "------");
  EXPECT_EQ(active.actuatorState().motorPositions()[0], 3.5);
}

TEST(ActiveState, OnlyInputsMayBeMoreOrFewerThanThePositions) {
  Active active;
  active.setPositionState(positions(2, 0.5));
  active.setVelocityState(velocities(3, 1.0));
  EXPECT_EQ(active.activeVelocityState().linkVelocityStates().size(), 3U);
  EXPECT_EQ(active.activeMassState().linkMassStates().size(), 2U);
  active.setAccelerationState(accelerations(7));
  EXPECT_EQ(active.activeAccelerationState().size(), 2U);
}

// A large state that nobody filled since is not walked over: what is made valid through an old
// reference, against the rule, stays.
TEST(ActiveState, CleanPartsAreNotWalkedOver) {
  Active active = filledState();
  auto& a = active.activeAccelerationState();
  auto& f = active.activeForceState();
  active.setVelocityState(velocities(3, 2.0));
  a.setLinkDhAccelerationInLocal(1, {});
  f.setLinkDhForceInLocal(1, {});
  EXPECT_EQ(&std::as_const(active).activeForceState(), &f) << "looking is not writing";
  active.setVelocityState(velocities(3, 3.0));
  active.setPositionState(positions(3, 0.25));
  EXPECT_TRUE(a.linkAccelerationStates()[1].localDhValid());
  EXPECT_TRUE(f.linkForceStates()[1].localDhValid());
  active.activeForceState();
  active.setAccelerationState(accelerations(3));
  EXPECT_FALSE(a.linkAccelerationStates()[1].localDhValid()) << "an input is always stored";
  EXPECT_FALSE(f.linkForceStates()[1].localDhValid());
}

// Whoever keeps the list or the base of the velocities, which never count as clean, may fill them
// at any time.
TEST(ActiveState, AListThatIsKeptIsAlwaysWalkedOver) {
  Active active = filledState();
  auto& links = active.activeVelocityState().linkVelocityStates();
  auto& base = active.activeVelocityState().baseVelocityState();
  for (const double rate : {2.0, 3.0, 4.0, 5.0}) {
    active.setVelocityState(velocities(3, rate));
    EXPECT_FALSE(links[1].localDhValid() || base.localComValid());
    links[1].setDhFrameVelocityInLocal({});
    base.setComVelocityInLocal({});
    if (rate == 3.0) active.setActiveVelocityState(Active(active).activeVelocityState());
  }
}

TEST(ActiveState, DescriptionsBeyondTheEndAreReported) {
  KtManipulatorActiveForceState forces;
  forces.resize(2);
  KtExternalForceDescription description;
  description.setValid(true);
  const KtLogCapture log;
  forces.setExternalForceDescription(2, description);
  EXPECT_EQ(&forces.externalForceDescription(0xFFFFFFFFU),
            &KtManipulatorActiveForceState::m_theZeroForceDescription);
  ASSERT_EQ(log.messages().size(), 2U);
  EXPECT_EQ(log.messages()[0],
            (KtLogCapture::Message{Kt::Print::kError,
                                   "KtManipulatorActiveForceState::setExternalForceDescription(): "
                                   "index 2 out of range 2.\n"}));
  EXPECT_FALSE(KtManipulatorActiveForceState::m_theZeroForceDescription.valid());
  forces.setExternalForceDescription(ktBaseIndex, description);
  EXPECT_TRUE(forces.externalForceDescription(ktBaseIndex).valid());
  EXPECT_EQ(log.messages().size(), 2U);
}

}  // namespace
