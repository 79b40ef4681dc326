#include "support/Testing.h"

namespace {

KtVelocityState velocities(double value) {
  KtVelocityState state;
  state.setJointVelocities(KtVelocityState::JointVector(3, value));
  return state;
}

// With an entry of each kind for link 1.
Active filledState() {
  Active active;
  KtPositionState positions;
  positions.setJointPositions({3, 0.5});
  active.setPositionState(positions);
  active.setVelocityState(velocities(1.0));
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
  EXPECT_FALSE(active.setPositionState(filled.positionState()));
  EXPECT_FALSE(active.setVelocityState(velocities(1.0)));
  EXPECT_EQ(validParts(active), "PVMAFD") << "nothing has changed";
  active.setAccelerationState(KtAccelerationState(active.accelerationState()));
  EXPECT_EQ(validParts(active), "PVM---") << "an input that is always stored";
  active = filled;
  EXPECT_TRUE(active.setVelocityState(velocities(2.0)));
  EXPECT_EQ(validParts(active), "P-M---");
  active = filled;
  active.actuatorState().motorPositions()[0] = 3.5;
  EXPECT_TRUE(active.setPositionState(moved));
  EXPECT_EQ(validParts(active), "------");
  EXPECT_EQ(active.actuatorState().motorPositions()[0], 3.5);
  // The velocities may be more than the positions, and so may the accelerations.
  moved.jointPositions().resize(2);
  active.setPositionState(moved);
  active.setVelocityState(velocities(3.0));
  EXPECT_EQ(active.activeVelocityState().linkVelocityStates().size(), 3U);
  EXPECT_EQ(active.activeMassState().linkMassStates().size(), 2U);
  active.setAccelerationState(KtAccelerationState::zeroCompatibleState(velocities(3.0)));
  EXPECT_EQ(active.activeAccelerationState().size(), 2U);
}

// Whoever keeps the list or the base of the velocities, which never count as clean, may fill them
// at any time.
TEST(ActiveState, AListThatIsKeptIsAlwaysWalkedOver) {
  Active active = filledState();
  auto& links = active.activeVelocityState().linkVelocityStates();
  auto& base = active.activeVelocityState().baseVelocityState();
  for (const double rate : {2.0, 3.0, 4.0, 5.0}) {
    active.setVelocityState(velocities(rate));
    EXPECT_FALSE(links[1].localDhValid() || base.localComValid());
    links[1].setDhFrameVelocityInLocal({});
    base.setComVelocityInLocal({});
    if (rate == 3.0) active.setActiveVelocityState(Active(active).activeVelocityState());
  }
}

}  // namespace
