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

class JacobianState : public testing::Test {
 protected:
  static KtReArray randomArray(KtU32 rows, KtU32 columns) {
    KtReArray a(rows, columns);
    for (KtU32 i = 0; i < rows; ++i) {
      for (KtU32 k = 0; k < columns; ++k) a[i][k] = uniform();
    }
    return a;
  }

  // The basis has the size of the padded Jacobian; J takes its top rows.
  static void expectNullSpace(const KtReArray& j, const KtReArray& n, KtU32 nullity) {
    ASSERT_EQ(n.rows(), std::max(j.rows(), j.columns()));
    ASSERT_EQ(n.columns(), nullity);
    for (KtU32 c = 0; c < nullity; ++c) {
      for (KtU32 i = 0; i < j.rows(); ++i) {
        double sum = 0.0;
        for (KtU32 k = 0; k < j.columns(); ++k) sum += j[i][k] * n[k][c];
        EXPECT_NEAR(sum, 0.0, 1e-13);
      }
    }
  }
};

TEST_F(JacobianState, DerivesAnewFromEachJacobian) {
  KtJacobianState state;
  const KtReArray j = randomArray(3, 7);
  state.setSoftJacobian(randomArray(3, 7));
  state.setJacobian(j);
  EXPECT_TRUE(state.jacobianValid() && state.softJacobianValid());
  EXPECT_FALSE(state.nullSpaceValid());
  expectNullSpace(j, state.nullSpace(), 4);
  EXPECT_TRUE(state.nullSpaceValid());
  EXPECT_EQ(state.jacobianLU().columns(), 7U);
  EXPECT_EQ(state.indices().back(), 3U);

  // Through the reference, with everything derived from the first still at hand.
  const KtReArray other = randomArray(3, 7);
  state.jacobianReferenceToSet().copyEntriesOf(other);
  EXPECT_FALSE(state.nullSpaceValid());
  KtJacobianState fresh;
  fresh.setJacobian(other);
  // Pivots first: each accessor notices by itself.
  EXPECT_EQ(state.indices(), fresh.indices());
  EXPECT_EQ(state.nullSpace(), fresh.nullSpace());

  const KtReArray stored = randomArray(7, 2);
  state.setJacobian(j);
  state.setNullSpace(stored);
  EXPECT_EQ(state.nullSpace(), stored);
  // The factors were left to be computed, and bring the null space with them.
  EXPECT_EQ(state.jacobianLU().rows(), 7U);
  expectNullSpace(j, state.nullSpace(), 4);
}

TEST_F(JacobianState, KnownZerosAndTallJacobiansGiveTheSame) {
  KtReArray j = randomArray(4, 6);
  for (KtU32 i = 0; i < 4; ++i) {
    for (KtU32 k = 0; k < 6; ++k) {
      if (k < i || k >= i + 3) j[i][k] = 0.0;
    }
  }
  KtJacobianState dense, sparse;
  sparse.setIsSparse(true);
  sparse.sparsityIndices() = {0, 1, 2, 3};
  sparse.zeroStart() = {3, 4, 5, 6};
  dense.setJacobian(j);
  sparse.setJacobian(j);
  EXPECT_EQ(sparse.nullSpace(), dense.nullSpace());
  expectNullSpace(j, sparse.nullSpace(), 2);

  // Seven rows, three columns: again and again in one work array, once of rank 2.
  KtJacobianState tall;
  for (const KtU32 rank : {3U, 2U, 3U, 3U}) {
    KtReArray next = randomArray(7, 3);
    for (KtU32 i = 0; rank == 2 && i < 7; ++i) next[i][1] = next[i][0];
    tall.setJacobian(next);
    expectNullSpace(next, tall.nullSpace(), 7 - rank);
  }
  tall.jacobianReferenceToSet()[0][0] += 1.0;
  const Allocations allocations;
  tall.nullSpace();
  EXPECT_EQ(allocations.count(), 0U);
}

TEST_F(JacobianState, ReportsWhatIsNotThereAndAnswersTheArray) {
  const KtReArray j = randomArray(2, 3);
  KtJacobianState empty, cleared;
  cleared.setJacobian(j);
  cleared.setSoftJacobian(j);
  const KtReArray n = cleared.nullSpace(), lu = cleared.jacobianLU();
  cleared.invalidateAll();
  EXPECT_FALSE(cleared.jacobianValid() || cleared.softJacobianValid());
  const KtLogCapture log;
  for (KtJacobianState* state : {&empty, &cleared}) {
    const bool had = state == &cleared;
    EXPECT_EQ(state->jacobian(), had ? j : KtReArray());
    EXPECT_EQ(state->softJacobian(), had ? j : KtReArray());
    EXPECT_EQ(state->nullSpace(), had ? n : KtReArray());
    EXPECT_EQ(state->jacobianLU(), had ? lu : KtReArray());
    EXPECT_FALSE(state->nullSpaceValid());
  }
  const std::string each =
      "Jacobian not readySoft Jacobian not readyJacobian not available.Jacobian not available.";
  EXPECT_EQ(log.errors(), each + each);
}

}  // namespace
