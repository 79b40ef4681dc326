#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using Active = KtSystemActiveState;

// Of manipulators of 2, 1 and 3 joints.
KtManipulatorSystemState stateOf(std::size_t manipulators, double position, double velocity) {
  constexpr KtU32 joints[] = {2, 1, 3};
  KtManipulatorSystemState state;
  for (std::size_t i = 0; i < manipulators; ++i) {
    KtPositionState p;
    p.setJointPositions({joints[i], position});
    state.positionStates().pushBack(p);
    KtVelocityState v;
    v.setJointVelocities(KtVelocityState::JointVector(joints[i], velocity));
    state.velocityStates().pushBack(v);
  }
  return state;
}

constexpr KtLinkKey kLink0{0, 0};
constexpr KtLinkKey kLink1{1, 0};
constexpr KtLinkKey kLink2{2, 1};

// An active state with everything valid that hangs on the system.
Active filledState() {
  const KtManipulatorSystem system = trees::randomSystem({3, 2, 4});
  Active active;
  active.setNonredundantState(stateOf(3, 0.5, 1.0));
  auto& proximity = active.manipulatorLinkProximityStateVector();
  for (KtU32 i = 0; i < 3; ++i) EXPECT_TRUE(proximity[i].initialize(i, system));
  EXPECT_TRUE(proximity[0].setDistance(kLink0, kLink1, 0.25));
  EXPECT_TRUE(proximity[0].setDistance(kLink0, kLink2, 0.5));
  EXPECT_TRUE(proximity[1].setDistance(kLink1, kLink2, 0.75));
  auto& cache = active.systemShapeCollisionCache();
  cache.setValid(cache.getCollisionData({0, 0, 0}, {1, 0, 0}));
  active.generalForceVector().resize(3);
  active.setGeneralForceValid(true);
  return active;
}

// What holds: F forces, C collision records, 01, 02 and 12 the distances.
std::string validParts(Active& active) {
  std::string result;
  if (active.generalForceValid()) result += "F ";
  active.systemShapeCollisionCache().resetNextCollisionData();
  if (active.systemShapeCollisionCache().nextCollisionData() != nullptr) result += "C ";
  const auto& proximity = active.manipulatorLinkProximityStateVector();
  if (!proximity.empty()) {
    if (proximity[0].isValid(kLink0, kLink1)) result += "01 ";
    if (proximity[0].isValid(kLink0, kLink2)) result += "02 ";
  }
  if (proximity.size() > 1 && proximity[1].isValid(kLink1, kLink2)) result += "12 ";
  return result;
}

TEST(SystemActiveStates, SettersMakeInvalidWhatHangsOnTheSystem) {
  struct Row {
    const char* name;
    std::function<void(Active&)> set;
    const char* valid;
    std::size_t tables;
    KtU32 manipulators;
  };
  const auto moved = [](KtU32 index) {
    KtManipulatorSystemState state = stateOf(3, 0.5, 2.0);
    state.positionStates()[index].jointPositions()[0] = 0.75;
    return state;
  };
  Active others;
  others.setNonredundantState(moved(0));
  KtManipulatorSystemState slow = stateOf(3, 0.5, 1.0);
  slow.velocityStates().clear();
  const std::string text = KtXmlWriter::writeString(others);
  const auto one = [](double position, double velocity) {
    KtManipulatorActiveState state;
    state.setPositionState(stateOf(2, position, 0.0).positionStates()[1]);
    state.setVelocityState(stateOf(2, 0.0, velocity).velocityStates()[1]);
    return state;
  };
  const auto placeOne = [&](Active& a, double position) {
    a.setManipulatorNonredundantPositionState(one(position, 0.0).positionState(), 1);
  };
  const char* const all = "F C 01 02 12 ";
  const Row rows[] = {
      {"same", [](Active& a) { a.setNonredundantState(stateOf(3, 0.5, 1.0)); }, all, 3, 3},
      {"velocities", [](Active& a) { a.setNonredundantState(stateOf(3, 0.5, 2.0)); }, all, 3, 3},
      {"one position", [&](Active& a) { a.setNonredundantState(moved(2)); }, "01 ", 3, 3},
      {"fewer", [](Active& a) { a.setNonredundantState(stateOf(2, 0.5, 1.0)); }, "", 2, 2},
      {"no velocities", [&](Active& a) { a.setNonredundantState(slow); }, all, 3, 3},
      {"active states",
       [&](Active& a) {
         a.setNonredundantStateFromActiveStateVector(others.manipulatorActiveStateVector());
       },
       "12 ", 3, 3},
      {"state of one", [&](Active& a) { a.setManipulatorNonredundantState(one(0.75, 7.0), 1); },
       "02 ", 2, 3},
      {"state of none", [&](Active& a) { a.setManipulatorNonredundantState(one(0.75, 7.0), 3); },
       all, 3, 3},
      {"position of one", [&](Active& a) { placeOne(a, 0.75); }, "02 ", 2, 3},
      {"system level", [](Active& a) { a.invalidateSystemLevel(); }, "01 02 12 ", 3, 3},
      {"all", [](Active& a) { a.invalidateAll(); }, "", 3, 3},
      {"read", [&](Active& a) { ASSERT_TRUE(KtXmlReader::readString(text, a)); }, "", 3, 3}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Active active = filledState();
    ASSERT_EQ(validParts(active), all);
    row.set(active);
    EXPECT_EQ(validParts(active), row.valid);
    EXPECT_EQ(active.manipulatorLinkProximityStateVector().size(), row.tables);
    EXPECT_EQ(active.manipulatorActiveStateVector().size(), row.manipulators);
  }
}

TEST(SystemActiveStates, AChangedSystemDropsEverything) {
  Active active = filledState();
  active.systemActiveBoundingBoxState().setIsInitialized(true);
  active.modifiedShapeKeyVec().emplace_back(0U, 0U, 0U);
  active.resetForSystemChange();
  EXPECT_EQ(active.manipulatorActiveStateVector().size(), 0U);
  EXPECT_FALSE(active.systemActiveBoundingBoxState().isInitialized());
  EXPECT_EQ(active.generalForceVector().size(), 0U);
  EXPECT_TRUE(active.modifiedShapeKeyVec().empty());
  EXPECT_TRUE(active.manipulatorLinkProximityStateVector().empty());
  active.setNonredundantState(stateOf(3, 0.5, 1.0));
  EXPECT_EQ(validParts(active), "");
  EXPECT_FALSE(active.manipulatorLinkProximityStateVector()[0].isInitialized());
}

}  // namespace
