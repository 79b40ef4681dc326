#include "support/States.h"
#include "support/Testing.h"

namespace {

using System = KtManipulatorSystemState;
using states::at, states::moving, states::Joints, states::randomJoints;

System systemState(std::vector<KtU32> counts, double time) {
  return states::random(counts, counts, time);
}

// All numbers of a state but its orientations.
std::vector<double> numbersOf(const System& state) {
  std::vector<double> all;
  const auto append = [&all](const Joints& joints) {
    for (const double value : joints.vectorContainer()) all.push_back(value);
  };
  for (const auto& p : state.positionStates().vectorContainer()) {
    const KtVector& t = p.coordSysXForm().translation();
    all.insert(all.end(), {t.x, t.y, t.z});
    append(p.jointPositions());
  }
  for (const auto& v : state.velocityStates().vectorContainer()) {
    for (unsigned i = 0; i < 6; ++i) all.push_back(v.generalVelocity()[i]);
    append(v.jointVelocities());
  }
  return all;
}

// For orientations about one axis the interpolation has a closed form: the angle is linear too.
TEST(States, InterpolateLinearlyInEveryNumber) {
  const auto turn = [](double angle) {
    KtOrientation orientation;
    orientation.setFromAngleAxis(angle, {0.0, 0.6, 0.8});
    return orientation;
  };
  System a = systemState({3, 2}, 1.0);
  System b = systemState({3, 2}, 3.0);
  for (KtU32 i = 0; i < 2; ++i) {
    a.positionStates()[i].coordSysXForm().setOrientation(turn(0.0));
    b.positionStates()[i].coordSysXForm().setOrientation(turn(1.2));
  }
  const std::vector<double> from = numbersOf(a), to = numbersOf(b);
  for (const double t : {1.0, 1.5, 3.0, 4.0, -1.0}) {
    SCOPED_TRACE(t);
    const double f = (t - 1.0) / 2.0;
    System out;
    EXPECT_TRUE(out.linearInterpolation(a, b, t));
    EXPECT_EQ(out.time(), t);
    const std::vector<double> numbers = numbersOf(out);
    ASSERT_EQ(numbers.size(), from.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      EXPECT_NEAR(numbers[i], std::lerp(from[i], to[i], f), 1e-14);
    }
    for (const auto& p : out.positionStates().vectorContainer()) {
      EXPECT_TRUE(p.coordSysXForm().orientation().approxEq(turn(1.2 * f), 1e-14));
    }
  }
  b.setTime(a.time());
  System out;
  EXPECT_FALSE(out.linearInterpolation(a, b, 7.0));
  EXPECT_EQ(out.time(), 7.0);
  EXPECT_TRUE(out.approxEq(a, 1e-15, false));
  EXPECT_FALSE(out.approxEq(a, 1e-15, true));
}

TEST(States, InterpolateInPlace) {
  const System a = systemState({3}, 1.0);
  const System b = systemState({3}, 2.0);
  System expected;
  ASSERT_TRUE(expected.linearFactorInterpolation(a, b, 0.25));
  EXPECT_EQ(expected.time(), 1.25);
  System first = a;
  System second = b;
  EXPECT_TRUE(first.linearFactorInterpolation(first, b, 0.25));
  EXPECT_TRUE(second.linearFactorInterpolation(a, second, 0.25));
  EXPECT_EQ(first, expected);
  EXPECT_EQ(second, expected);
  // State 1 is assigned before state 2 is read.
  second = b;
  EXPECT_FALSE(second.linearInterpolation(a, second, 1.25));
  EXPECT_TRUE(second.approxEq(a, 1e-15, false));
  EXPECT_EQ(second.time(), 1.25);
  // The factor may lie in the state that is written.
  System other = a;
  other.positionStates()[0].jointPositions()[0] = 0.25;
  EXPECT_TRUE(other.positionStates()[0].linearInterpolation(
      a.positionStates()[0], b.positionStates()[0], other.positionStates()[0].jointPositions()[0]));
  EXPECT_EQ(other.positionStates()[0], expected.positionStates()[0]);
  // Velocity states that state 2 lacks are those of state 1.
  const System more = states::random({1, 1}, {1, 2}, 0.0);
  System few = states::random({1, 1}, {1}, 1.0);
  EXPECT_TRUE(few.linearFactorInterpolation(more, few, 0.5));
  EXPECT_TRUE(few.velocityStates()[1].approxEq(more.velocityStates()[1], 1e-15));
}

TEST(States, AreRepaired) {
  KtLogCapture log;
  System few = states::random({1, 2}, {1}, 0.0);
  System whole = few;
  whole.velocityStates().pushBack(KtVelocityState::nullObject());
  EXPECT_FALSE(few.validateTopLevelDimensions());
  EXPECT_EQ(few, whole);
  System many = few;
  many.velocityStates().pushBack(moving(randomJoints(3)));
  EXPECT_FALSE(many.validateTopLevelDimensions());
  EXPECT_EQ(many, few);
  const std::string top =
      "KtManipulatorSystemState::validateTopLevelDimensions(): number of position states does not "
      "match the velocity states--correcting.\n";
  EXPECT_EQ(log.errors(), top + top);

  log.clear();
  System wrong = states::random({2, 3, 3}, {3, 3, 1}, 0.0);
  System expected = wrong;
  expected.velocityStates()[0].jointVelocities().resize(2);
  expected.velocityStates()[2].jointVelocities().resize(3);
  EXPECT_TRUE(wrong.validateTopLevelDimensions());
  EXPECT_FALSE(wrong.validateLowLevelDimensions());
  EXPECT_EQ(wrong, expected);
  const std::string low =
      "KtManipulatorSystemState::validateLowLevelDimensions: joint positions do notmatch joint "
      "velocities--correcting.\n";
  EXPECT_EQ(log.errors(), low + low);
  log.clear();
  EXPECT_TRUE(wrong.validateLowLevelDimensions());

  // A file with a bad state is read, with the messages of the repairs.
  System back;
  EXPECT_TRUE(
      KtXmlReader::readString(KtXmlWriter::writeString(states::random({2, 1}, {3}, 0.5)), back));
  EXPECT_EQ(back.velocityStates()[0].jointVelocities().size(), 2U);
  EXPECT_EQ(back.velocityStates()[1].jointVelocities().size(), 1U);
  EXPECT_EQ(log.errors(), top + low + low);
}

TEST(States, KnowWhatFitsAndWhatIsClose) {
  const System a = systemState({2, 1}, 1.0);
  EXPECT_TRUE(a.checkCompatibleState(systemState({2, 1}, 5.0)));
  for (const System& other :
       {states::random({2}, {2, 1}, 1.0), states::random({2, 1}, {2}, 1.0),
        states::random({2, 2}, {2, 1}, 1.0), states::random({2, 1}, {2, 2}, 1.0)}) {
    EXPECT_FALSE(a.checkCompatibleState(other));
  }

  std::vector<System> others(4, a);
  others[0].positionStates()[1].jointPositions()[0].value() += 0.25;
  others[1].velocityStates()[0].jointVelocities()[1].value() -= 0.25;
  others[2].velocityStates()[1].generalVelocity() += {{0.0, 0.0, 0.25}, {}};
  KtCoordinateSystemTransformation& frame = others[3].positionStates()[0].coordSysXForm();
  frame.setTranslation(frame.translation() + KtVector(0.0, 0.25, 0.0));
  for (const System& other : others) {
    EXPECT_FALSE(a.approxEq(other, 0.2, true));
    EXPECT_TRUE(a.approxEq(other, 0.3, true));
  }
  EXPECT_FALSE(a.approxEq(systemState({}, 1.0), 9.0, false));
  // A difference of exactly the tolerance passes.
  KtAccelerationState still;
  still.resize(1);
  KtAccelerationState fast = still;
  fast.jointAccelerations()[0] = 0.5;
  EXPECT_TRUE(still.approxEq(fast, 0.5));
  EXPECT_FALSE(fast.approxEq(still, 0.4999));
  KtAccelerationState lifted = still;
  lifted.generalAcceleration().setScalarValue(4, 0.5);
  EXPECT_FALSE(still.approxEq(lifted, 0.4999));
  fast.resize(3);
  EXPECT_FALSE(fast.approxEq(still, 9.0));
  EXPECT_EQ(fast.jointAccelerations().vectorContainer(),
            (std::vector<KtXmlBasicType<double>>{0.5, 0.0, 0.0}));
  EXPECT_EQ(KtAccelerationState::zeroCompatibleState(moving(randomJoints(4))).jointAccelerations(),
            Joints(4));

  System merged = a;
  EXPECT_TRUE(merged.mergeWith(merged));
  ASSERT_EQ(merged.positionStates().size(), 4U);
  EXPECT_EQ(merged.positionStates()[3], a.positionStates()[1]);
  EXPECT_EQ(merged.velocityStates()[2], a.velocityStates()[0]);
  merged.zeroVelocityStates();
  KtVelocityState still2;
  still2.jointVelocities().resize(2);
  EXPECT_EQ(merged.velocityStates()[2], still2);
}

TEST(StateSetters, TakeTheFirstColumn) {
  KtReArray columns(2, 2);
  columns[0][0] = 1.0;
  columns[0][1] = 8.0;
  columns[1][0] = 2.0;
  Joints expected(2, 1.0);
  expected[1] = 2.0;
  KtVelocityState v;
  KtAccelerationState a;
  KtManipulatorTorque t;
  for (const KtReArray& array : {columns, KtReArray(3, 0)}) {
    v.setJointVelocities(array);
    a.setJointAccelerations(array);
    t.setJointTorques(array);
    EXPECT_EQ(v.jointVelocities(), expected);
    EXPECT_EQ(a.jointAccelerations(), expected);
    EXPECT_EQ(t.jointTorques(), expected);
  }
}

template <class T>
std::string bytes(const T& value) {
  return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}
std::string bytes(const Joints& joints) {
  std::string all = bytes(joints.size());
  for (const double q : joints.vectorContainer()) all += bytes(q);
  return all;
}
template <class State>
std::string binary(const State& state) {
  std::ostringstream stream;
  EXPECT_TRUE(state.writeBin(stream));
  return stream.str();
}

TEST(States, HaveTheirBinaryLayout) {
  const System state = states::random({2, 0}, {2, 1}, 0.75);
  std::string expected = bytes(0.75) + bytes(KtU32{2});
  for (const auto& p : state.positionStates().vectorContainer()) {
    expected += binary(p.coordSysXForm()) + bytes(p.jointPositions());
  }
  expected += bytes(KtU32{2});
  for (const auto& v : state.velocityStates().vectorContainer()) {
    expected += binary(v.generalVelocity()) + bytes(v.jointVelocities());
  }
  EXPECT_EQ(binary(state), expected);
  // Two in a row, the second with a list that passes in several pieces.
  const System large = systemState({2000}, 1.0);
  std::istringstream stream(expected + binary(large));
  for (const System& one : {state, large}) {
    System back = states::random({5, 5, 5}, {}, 9.0);
    EXPECT_TRUE(back.readBin(stream));
    EXPECT_EQ(back, one);
  }
  EXPECT_EQ(stream.peek(), std::char_traits<char>::eof());
  std::ostringstream broken;
  broken.setstate(std::ios::failbit);
  EXPECT_FALSE(state.writeBin(broken));
  EXPECT_FALSE(state.velocityStates()[0].writeBin(broken));
}

// What was complete before the cut is there, and nothing else is.
TEST(States, SurviveACutOffStream) {
  const System state = systemState({2, 1}, 0.75);
  const std::string text = binary(state);
  const std::vector<std::size_t> positionEnds = {12 + 56 + 4 + 16, 12 + 56 + 4 + 16 + 56 + 4 + 8};
  const std::size_t firstVelocityEnd = positionEnds[1] + 4 + 48 + 4 + 16;
  for (std::size_t length = 0; length < text.size(); ++length) {
    SCOPED_TRACE(length);
    System back = systemState({4}, 9.0);
    System expected = back;
    if (length >= 12) {
      expected.setTime(state.time());
      expected.setPositionStates(state.positionStates());
      expected.positionStates().resize((length >= positionEnds[0] ? 1U : 0U) +
                                       (length >= positionEnds[1] ? 1U : 0U));
    }
    if (length >= positionEnds[1]) {
      expected.setVelocityStates(state.velocityStates());
      expected.velocityStates().resize(length >= firstVelocityEnd ? 1U : 0U);
    }
    std::istringstream cut(text.substr(0, length));
    const Allocations allocations;
    EXPECT_EQ(back.readBin(cut), length >= positionEnds[1]);
    EXPECT_LT(allocations.largest(), 1024U);
    EXPECT_EQ(back, expected);
  }
}

TEST(States, AskForNoMemoryThatACountOnlyClaims) {
  std::string joints = binary(at(randomJoints(700)));
  joints.replace(56, 4, 4, '\xFF');
  std::istringstream one(joints);
  std::istringstream all(bytes(1.0) + "\xFF\xFF\xFF\xFF" + joints);
  KtPositionState position = at(randomJoints(1));
  const KtPositionState before = position;
  System state;
  const Allocations allocations;
  EXPECT_FALSE(position.readBin(one));
  EXPECT_FALSE(state.readBin(all));
  EXPECT_LT(allocations.largest(), 65536U);
  EXPECT_EQ(position, before);
  EXPECT_EQ(state.positionStates().size(), 0U);
}

TEST(States, AskForNoMemoryOnceTheyHaveTheirSize) {
  const System a = systemState({7, 3}, 1.0);
  const System b = systemState({7, 3}, 2.0);
  System out = a;
  const KtReArray column(7, 1);
  KtVelocityState v = moving(randomJoints(7));
  KtAccelerationState acceleration = KtAccelerationState::zeroCompatibleState(v);
  KtManipulatorTorque torque;
  torque.setJointTorques(column);
  KtManipulatorExternalForce force;
  force.resize(7);
  std::istringstream stream(binary(b));
  const Allocations allocations;
  out.linearInterpolation(a, b, 1.5);
  out.zeroVelocityStates();
  out.validateTopLevelDimensions();
  out.validateLowLevelDimensions();
  v.setJointVelocities(column);
  acceleration.setJointAccelerations(column);
  acceleration.resize(7);
  torque.setJointTorques(column);
  force.resize(7);
  force.setToZeros();
  EXPECT_TRUE(out.readBin(stream));
  EXPECT_EQ(allocations.count(), 0U);
  EXPECT_EQ(out, b);
}

TEST(ExternalForce, FindsTheForceOfALink) {
  const KtGeneralForce force({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
  KtManipulatorExternalForce forces;
  forces.resize(2);
  forces[1] = force;
  forces[ktBaseIndex] = force * 2.0;
  const KtManipulatorExternalForce& constant = forces;
  EXPECT_EQ(constant[1], force);
  EXPECT_EQ(forces.baseForce(), force * 2.0);
  forces.setToZeros();
  EXPECT_EQ(forces[1], KtGeneralForce());
  EXPECT_EQ(forces.baseForce(), KtGeneralForce());
}

// A pure force at a point has the moment r x F; the arrow stands on its line, nearest the origin.
TEST(States, ShowAForceOnItsLineOfAction) {
  const KtVector force = randomVector();
  const KtVector point = randomVector();
  KtExternalForceDescription description;
  description.setExternalLinkForce({force, point.cross(force)});
  EXPECT_EQ(&description.representativeForceVector(),
            &KtExternalForceDescription::m_TheNullLineSegment);
  description.setValid(true);
  const KtLineSegment& arrow = description.representativeForceVector();
  EXPECT_TRUE((arrow.endpoint1() - arrow.endpoint0()).approxEq(force, 1e-15));
  EXPECT_TRUE((arrow.endpoint0() - point).cross(force).approxEq(KtVector(), 1e-15));
  EXPECT_NEAR(arrow.endpoint0().dot(force), 0.0, 1e-15);
  description.setExternalLinkForce({force * 1e-12, KtVector()});
  EXPECT_EQ(description.representativeForceVector().endpoint1(), force * 1e-12);
  description.setExternalLinkForce({KtVector(), force});
  EXPECT_EQ(&description.representativeForceVector(),
            &KtExternalForceDescription::m_TheNullLineSegment);
}

}  // namespace
