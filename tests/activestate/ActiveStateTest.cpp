#include <gtest/gtest.h>

#include <functional>

#include "ktManipulator/ktManipulator.h"
#include "support/Allocations.h"
#include "support/KtLogCapture.h"
#include "support/Random.h"

namespace {

using Active = KtManipulatorActiveState;
using sampling::randomMotion;

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

// The entries of a state of `links` links, that of the base among them.
std::vector<KtU32> entries(KtU32 links) {
  std::vector<KtU32> indices(links + 1, ktBaseIndex);
  for (KtU32 i = 0; i < links; ++i) indices[i] = i;
  return indices;
}

// Sets each value of each entry, the way that queries do it.
void fill(Active& active, KtU32 links) {
  KtExternalForceDescription description;
  description.setValid(true);
  for (KtU32 k = 0; k <= links; ++k) {
    const KtU32 i = k < links ? k : ktBaseIndex;
    KtManipulatorActivePositionState& p = active.activePositionState();
    p.setDhTransform(i, {});
    if (i == ktBaseIndex) {
      p.setBaseLinkPositionState({}, {});
    } else {
      p.setLinkPositionState(i, {}, {});
    }
    KtManipulatorActiveVelocityState& v = active.activeVelocityState();
    v.setLinkDhVelocityInLocal(i, {});
    v.setLinkDhVelocityInSystem(i, {});
    v.setLinkPrimaryVelocityInSystem(i, {});
    v.setLinkComVelocityInLocal(i, {});
    v.setLinkMomentumInLocal(i, {});
    v.setLinkCompositeMomentumInLocal(i, {});
    KtManipulatorActiveAccelerationState& a = active.activeAccelerationState();
    a.setLinkDhAccelerationInLocal(i, {});
    a.setLinkDhAccelerationInSystem(i, {});
    a.setLinkPrimaryAccelerationInSystem(i, {});
    a.setLinkComAccelerationInLocal(i, {});
    a.setLinkMomentumRateInLocal(i, {});
    a.setLinkCompositeMomentumRateInLocal(i, {});
    active.activeForceState().setLinkDhForceInLocal(i, {});
    active.activeForceState().setExternalForceDescription(i, description);
    active.activeMassState().setCrbi(i, KtRigidBodyMassProperties::defaultObject());
    KtManipulatorActiveArticulationState& d = active.activeArticulationState();
    d.setArbd(i, {});
    d.setSupplementalDhAcceleration(i, {});
    d.setSupplementalJointAcceleration(i, 1.0);
  }
}

// One letter for each part: P position, V velocity, M mass, A acceleration, F force, D articulated
// dynamics where all flags are set, - where none is, ? where some are.
std::string validParts(const Active& active) {
  std::string result;
  const auto judge = [&result](char letter, const auto& links, const auto& base, auto... flags) {
    std::size_t set = 0;
    for (const auto& entry : links.vectorContainer()) set += (std::size_t{(entry.*flags)()} + ...);
    set += (std::size_t{(base.*flags)()} + ...);
    const std::size_t all = (links.vectorContainer().size() + 1) * sizeof...(flags);
    result += set == all ? letter : set == 0 ? '-' : '?';
  };
  using P = KtLinkPositionState;
  judge('P', active.activePositionState().linkPositionStates(),
        active.activePositionState().basePositionState(), &P::locationInSystemValid,
        &P::dhTransformValid);
  using V = KtLinkVelocityState;
  judge('V', active.activeVelocityState().linkVelocityStates(),
        active.activeVelocityState().baseVelocityState(), &V::localDhValid, &V::systemDhValid,
        &V::systemPrimaryValid, &V::localComValid, &V::localMomentumValid,
        &V::compositeMomentumValid);
  judge('M', active.activeMassState().linkMassStates(), active.activeMassState().baseMassState(),
        &KtLinkMassState::crbiValid);
  using A = KtLinkAccelerationState;
  judge('A', active.activeAccelerationState().linkAccelerationStates(),
        active.activeAccelerationState().baseAccelerationState(), &A::localDhValid,
        &A::systemDhValid, &A::systemPrimaryValid, &A::localComValid, &A::localMomentumRateValid,
        &A::compositeMomentumRateValid);
  const auto& forces = active.activeForceState();
  judge('F', forces.linkForceStates(), forces.baseForceState(), &KtLinkForceState::localDhValid);
  for (const KtU32 i : entries(forces.size())) {
    if (forces.externalForceDescription(i).valid() != (result.back() == 'F')) result.back() = '?';
  }
  using D = KtLinkArticulationState;
  judge('D', active.activeArticulationState().linkArticulationStates(),
        active.activeArticulationState().baseArticulationState(), &D::arbdValid,
        &D::supplementalDhAccelerationValid, &D::supplementalJointAccelerationValid);
  return result;
}

Active filledState() {
  Active active;
  active.setPositionState(positions(3, 0.5));
  active.setVelocityState(velocities(3, 1.0));
  active.setAccelerationState(accelerations(3));
  fill(active, 3);
  return active;
}

TEST(ActiveState, SettersMakeInvalidWhatDependsOnThem) {
  struct Row {
    const char* name;
    std::function<bool(Active&)> set;
    bool answer;
    const char* valid;
  };
  const Row rows[] = {
      {"same position", [](Active& a) { return a.setPositionState(positions(3, 0.5)); }, false,
       "PVMAFD"},
      {"position", [](Active& a) { return a.setPositionState(positions(3, 0.25)); }, true,
       "------"},
      {"place of the base",
       [](Active& a) {
         KtPositionState state = a.positionState();
         state.setCoordSysXForm(KtVector(0.0, 0.0, 1e-300));
         return a.setPositionState(state);
       },
       true, "------"},
      {"more joints", [](Active& a) { return a.setPositionState(positions(5, 0.5)); }, true,
       "------"},
      {"fewer joints", [](Active& a) { return a.setPositionState(positions(1, 0.5)); }, true,
       "------"},
      {"same velocity", [](Active& a) { return a.setVelocityState(velocities(3, 1.0)); }, false,
       "PVMAFD"},
      {"velocity", [](Active& a) { return a.setVelocityState(velocities(3, 2.0)); }, true,
       "P-M---"},
      {"same acceleration",
       [](Active& a) {
         a.setAccelerationState(KtAccelerationState(a.accelerationState()));
         return true;
       },
       true, "PVM---"},
      {"all",
       [](Active& a) {
         a.invalidateAll();
         return true;
       },
       true, "------"}};
  // However the state came to its valid entries: the acceleration and force states may have counted
  // as clean before.
  const Active filled = filledState();
  const std::pair<const char*, std::function<Active()>> origins[] = {
      {"new", filledState},
      {"copied", [&] { return filled; }},
      {"cleaned",
       [&] {
         Active active = filled;
         active.invalidateAll();
         fill(active, 3);
         return active;
       }},
      {"set part by part", [&] {
         Active active = filled;
         active.invalidateAll();
         fill(active, 3);
         active.setVelocityState(velocities(3, 7.0));
         active.setActiveAccelerationState(filled.activeAccelerationState());
         active.setActiveForceState(filled.activeForceState());
         active.setActiveVelocityState(filled.activeVelocityState());
         active.setActiveArticulationState(filled.activeArticulationState());
         return active;
       }}};
  for (const auto& [origin, make] : origins) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(origin) + ", " + row.name);
      Active active = make();
      active.actuatorState().motorPositions()[0] = 3.5;
      ASSERT_EQ(validParts(active), "PVMAFD");
      EXPECT_EQ(row.set(active), row.answer);
      EXPECT_EQ(validParts(active), row.valid);
      EXPECT_EQ(active.actuatorState().motorPositions()[0], 3.5);
    }
  }
}

TEST(ActiveState, PositionsGiveAllPartsTheirSize) {
  Active active;
  for (const KtU32 joints : {4U, 2U, 0U}) {
    active.setPositionState(positions(joints, 0.5));
    EXPECT_EQ(active.activePositionState().linkPositionStates().size(), joints);
    EXPECT_EQ(active.activeVelocityState().linkVelocityStates().size(), joints);
    EXPECT_EQ(active.activeAccelerationState().size(), joints);
    EXPECT_EQ(active.activeForceState().size(), joints);
    EXPECT_EQ(active.activeMassState().linkMassStates().size(), joints);
    EXPECT_EQ(active.activeArticulationState().linkArticulationStates().size(), joints);
    EXPECT_EQ(active.actuatorState().lastVelocities().size(), joints);
  }
  active.setVelocityState(velocities(3, 1.0));
  EXPECT_EQ(active.activeVelocityState().linkVelocityStates().size(), 3U);
  EXPECT_EQ(active.activeMassState().linkMassStates().size(), 0U);
  active.setAccelerationState(accelerations(7));
  EXPECT_EQ(active.activeAccelerationState().size(), 0U) << "only inputs may be more or fewer";
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
  active.setVelocityState(velocities(3, 3.0));
  active.setPositionState(positions(3, 0.25));
  EXPECT_TRUE(a.linkAccelerationStates()[1].localDhValid());
  active.setAccelerationState(accelerations(3));
  EXPECT_FALSE(a.linkAccelerationStates()[1].localDhValid()) << "an input is always stored";
  EXPECT_TRUE(f.linkForceStates()[1].localDhValid());
  const Active& constant = active;
  EXPECT_EQ(&constant.activeForceState(), &f);
  active.setVelocityState(velocities(3, 4.0));
  EXPECT_TRUE(f.linkForceStates()[1].localDhValid()) << "looking is not writing";
  active.activeForceState();
  active.setVelocityState(velocities(3, 5.0));
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

// Valid entries can come from a file too.
TEST(ActiveState, AReadStateIsNotClean) {
  const std::string text = KtXmlWriter::writeString(filledState());
  Active active = filledState();
  active.invalidateAll();
  ASSERT_TRUE(KtXmlReader::readString(text, active));
  EXPECT_TRUE(active.activeAccelerationState().linkAccelerationStates()[2].localDhValid());
  active.setVelocityState(velocities(3, 2.0));
  EXPECT_EQ(validParts(active), "P-M---");
}

// What a file doesn't have is not what it was before either.
TEST(ActiveState, AReadStateHasNothingLeftOfTheOneBefore) {
  Active empty = filledState();
  empty.invalidateAll();
  Active active = filledState();
  ASSERT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(empty), active));
  EXPECT_EQ(validParts(active), "------");
}

TEST(ActiveState, SettersAskForNoMemory) {
  Active active = filledState();
  const KtPositionState p[] = {positions(3, 0.25), positions(3, 0.75)};
  const KtVelocityState v[] = {velocities(3, 0.25), velocities(3, 0.75)};
  const KtAccelerationState a = accelerations(3);
  active.setPositionState(p[1]);
  const Allocations allocations;
  for (int i = 0; i < 4; ++i) {
    active.setPositionState(p[i % 2]);
    active.setVelocityState(v[i % 2]);
    active.setAccelerationState(a);
    fill(active, 3);
  }
  EXPECT_EQ(allocations.count(), 0U);
}

// Each operation by index reaches one value of one entry, `ktBaseIndex` that of the base.
TEST(ActiveState, IndicesReachOneValueOfOneEntry) {
  using V = KtManipulatorActiveVelocityState;
  using A = KtManipulatorActiveAccelerationState;
  const auto check = [](auto state, auto accessors) {
    state.resize(2);
    std::vector<KtGeneralMotion> expected;
    for (const KtU32 i : entries(2)) {
      for (const auto& [get, set] : accessors) {
        expected.push_back(randomMotion());
        (state.*set)(i, expected.back());
      }
    }
    auto next = expected.begin();
    for (const KtU32 i : entries(2)) {
      for (const auto& [get, set] : accessors) EXPECT_EQ((state.*get)(i), *next++);
    }
    return state;
  };
  using GetV = const KtGeneralMotion& (V::*)(KtU32) const;
  using SetV = void (V::*)(KtU32, const KtGeneralMotion&);
  const V velocity =
      check(V(), std::initializer_list<std::pair<GetV, SetV>>{
                     {&V::linkDhVelocityInLocal, &V::setLinkDhVelocityInLocal},
                     {&V::linkDhVelocityInSystem, &V::setLinkDhVelocityInSystem},
                     {&V::linkPrimaryVelocityInSystem, &V::setLinkPrimaryVelocityInSystem},
                     {&V::linkComVelocityInLocal, &V::setLinkComVelocityInLocal},
                     {&V::linkMomentumInLocal, &V::setLinkMomentumInLocal},
                     {&V::linkCompositeMomentumInLocal, &V::setLinkCompositeMomentumInLocal}});
  EXPECT_EQ(velocity.baseVelocityState().primaryFrameVelocityInSystem(),
            velocity.linkPrimaryVelocityInSystem(ktBaseIndex));
  using GetA = const KtGeneralMotion& (A::*)(KtU32) const;
  using SetA = void (A::*)(KtU32, const KtGeneralMotion&);
  const A acceleration = check(
      A(), std::initializer_list<std::pair<GetA, SetA>>{
               {&A::linkDhAccelerationInLocal, &A::setLinkDhAccelerationInLocal},
               {&A::linkDhAccelerationInSystem, &A::setLinkDhAccelerationInSystem},
               {&A::linkPrimaryAccelerationInSystem, &A::setLinkPrimaryAccelerationInSystem},
               {&A::linkComAccelerationInLocal, &A::setLinkComAccelerationInLocal},
               {&A::linkMomentumRateInLocal, &A::setLinkMomentumRateInLocal},
               {&A::linkCompositeMomentumRateInLocal, &A::setLinkCompositeMomentumRateInLocal}});
  EXPECT_EQ(acceleration.baseAccelerationState().momentumRateInLocal(),
            acceleration.linkMomentumRateInLocal(ktBaseIndex));
  KtManipulatorActiveArticulationState articulation;
  articulation.setBaseSupplementalDhAcceleration(randomMotion());
  EXPECT_EQ(articulation.supplementalDhAcceleration(ktBaseIndex),
            articulation.baseSupplementalDhAcceleration());
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
  EXPECT_EQ(log.messages()[0].type, Kt::Print::kError);
  EXPECT_EQ(log.messages()[0].text,
            "KtManipulatorActiveForceState::setExternalForceDescription(): index 2 out of range "
            "2.\n");
  EXPECT_FALSE(forces.externalForceDescription(1).valid());
  EXPECT_FALSE(KtManipulatorActiveForceState::m_theZeroForceDescription.valid());
}

}  // namespace
