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
  System a = systemState({3, 2}, 1.0), b = systemState({3, 2}, 3.0), out;
  for (KtU32 i = 0; i < 2; ++i) {
    a.positionStates()[i].coordSysXForm().setOrientation(turn(0.0));
    b.positionStates()[i].coordSysXForm().setOrientation(turn(1.2));
  }
  const std::vector<double> from = numbersOf(a), to = numbersOf(b);
  for (const double t : {1.0, 1.5, 3.0, 4.0, -1.0}) {
    SCOPED_TRACE(t);
    const double f = (t - 1.0) / 2.0;
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
    // Also in place of one of the two, and by a factor that lies in the state that is written.
    System first = a, second = b;
    EXPECT_TRUE(first.linearFactorInterpolation(first, b, f));
    EXPECT_TRUE(second.linearFactorInterpolation(a, second, f));
    EXPECT_EQ(first, out);
    EXPECT_EQ(second, out);
    KtPositionState p = a.positionStates()[0];
    p.jointPositions()[0] = f;
    EXPECT_TRUE(
        p.linearInterpolation(a.positionStates()[0], b.positionStates()[0], p.jointPositions()[0]));
    EXPECT_EQ(p, out.positionStates()[0]);
  }
  // Of two at one time the first counts. In place, state 1 is assigned before state 2 is read.
  System twin = b;
  twin.setTime(a.time());
  EXPECT_FALSE(out.linearInterpolation(a, twin, 7.0));
  EXPECT_FALSE(b.linearInterpolation(a, b, 7.0));
  for (const System& each : {out, b}) {
    EXPECT_EQ(each.time(), 7.0);
    EXPECT_TRUE(each.approxEq(a, 1e-15, false));
    EXPECT_FALSE(each.approxEq(a, 1e-15, true));
  }
  // Velocity states that state 2 lacks are those of state 1.
  const System more = states::random({1, 1}, {1, 2}, 0.0);
  System few = states::random({1, 1}, {1}, 1.0);
  EXPECT_TRUE(few.linearFactorInterpolation(more, few, 0.5));
  EXPECT_TRUE(few.velocityStates()[1].approxEq(more.velocityStates()[1], 1e-15));
}

// Velocities follow the positions, whether a state is set or read from a file.
TEST(States, AreRepairedAndKnowWhatFits) {
  const std::string top =
      "KtManipulatorSystemState::validateTopLevelDimensions(): number of position states does not "
      "match the velocity states--correcting.\n";
  const std::string low =
      "KtManipulatorSystemState::validateLowLevelDimensions: joint positions do notmatch joint "
      "velocities--correcting.\n";
  System before;
  std::vector<KtU32> sizes[2];
  int fits = 0;
  for (int i = 0; i < 1000; ++i) {
    std::vector<KtU32> counts[2];
    for (auto& each : counts) {
      each.resize(1 + i / 10 % 3);
      for (KtU32& count : each) count = uniform() < 0.5 ? 1 : 2;
    }
    if (i % 5 == 0) counts[i % 2].push_back(3);
    System state = states::random(counts[0], counts[1], 0.5), whole = state, back;
    const bool isFit = std::ranges::equal(sizes, counts);
    EXPECT_EQ(before.checkCompatibleState(state), isFit);
    fits += isFit;
    before = state, std::ranges::copy(counts, sizes);

    const KtLogCapture log;
    const bool isTopGood = counts[0].size() == counts[1].size();
    std::string messages = isTopGood ? "" : top;
    counts[1].resize(counts[0].size());
    whole.velocityStates().resize(whole.positionStates().size());
    for (KtU32 k = 0; k < counts[0].size(); ++k) {
      if (counts[0][k] != counts[1][k]) messages += low;
      whole.velocityStates()[k].jointVelocities().resize(counts[0][k]);
    }
    EXPECT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(state), back));
    EXPECT_EQ(state.validateTopLevelDimensions(), isTopGood);
    EXPECT_EQ(state.validateLowLevelDimensions(), !messages.ends_with(low));
    EXPECT_TRUE(state.validateTopLevelDimensions() && state.validateLowLevelDimensions());
    EXPECT_EQ(log.errors(), messages + messages);
    EXPECT_EQ(state, whole);
    EXPECT_EQ(back, whole);
  }
  EXPECT_GT(fits, 50);
}

// A difference of exactly the tolerance passes.
TEST(States, AreCloseWhereEveryNumberIs) {
  const System a = systemState({2, 1}, 1.0);
  std::vector<System> others(4, a);
  others[0].positionStates()[1].jointPositions()[0].value() += 0.25;
  others[1].velocityStates()[0].jointVelocities()[1].value() -= 0.25;
  others[2].velocityStates()[1].generalVelocity() += {{0.0, 0.0, 0.25}, {}};
  T& frame = others[3].positionStates()[0].coordSysXForm();
  frame.setTranslation(frame.translation() + KtVector(0.0, 0.25, 0.0));
  for (const System& other : others) {
    EXPECT_FALSE(a.approxEq(other, 0.2, true));
    EXPECT_TRUE(a.approxEq(other, 0.3, true));
  }
  EXPECT_FALSE(a.approxEq(systemState({}, 1.0), 9.0, false));
  KtAccelerationState still = KtAccelerationState::zeroCompatibleState(moving(randomJoints(1)));
  KtAccelerationState fast = still;
  fast.jointAccelerations()[0] = 0.5;
  EXPECT_TRUE(still.approxEq(fast, 0.5) && !still.approxEq(fast, 0.4999));
  fast.resize(3);
  EXPECT_FALSE(fast.approxEq(still, 9.0));
  EXPECT_EQ(fast.jointAccelerations(), states::joints({0.5, 0.0, 0.0}));

  System merged = a;
  EXPECT_TRUE(merged.mergeWith(merged));
  ASSERT_EQ(merged.positionStates().size(), 4U);
  EXPECT_EQ(merged.positionStates()[3], a.positionStates()[1]);
  merged.zeroVelocityStates();
  KtVelocityState resting;
  resting.jointVelocities().resize(2);
  EXPECT_EQ(merged.velocityStates()[2], resting);
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
  // A count that only claims to be large takes no memory either.
  std::string joints = binary(at(randomJoints(700)));
  joints.replace(56, 4, 4, '\xFF');
  std::istringstream one(joints), all(bytes(1.0) + "\xFF\xFF\xFF\xFF" + joints);
  const Allocations allocations;
  EXPECT_FALSE(KtPositionState().readBin(one) || System().readBin(all));
  EXPECT_LT(allocations.largest(), 65536U);
}

// What takes a column takes the first one; an array of no columns changes nothing.
TEST(States, AskForNoMemoryOnceTheyHaveTheirSize) {
  const System a = systemState({2, 3}, 1.0), b = systemState({2, 3}, 2.0);
  System out = a;
  KtReArray columns(2, 2), none(3, 0);
  columns[0][0] = 1.0, columns[0][1] = 8.0, columns[1][0] = 2.0;
  KtVelocityState v = moving(randomJoints(2));
  KtAccelerationState acceleration = KtAccelerationState::zeroCompatibleState(v);
  KtManipulatorTorque torque;
  torque.jointTorques().resize(2);
  KtManipulatorExternalForce force;
  force.resize(2);
  const KtManipulatorExternalForce still = force, &constant = force;
  const KtGeneralForce push({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
  std::istringstream stream(binary(b));
  const Allocations allocations;
  out.linearInterpolation(a, b, 1.5);
  out.zeroVelocityStates();
  out.validateTopLevelDimensions();
  out.validateLowLevelDimensions();
  EXPECT_TRUE(out.readBin(stream));
  for (KtReArray* array : {&columns, &none}) {
    v.setJointVelocities(*array);
    acceleration.setJointAccelerations(*array);
    torque.setJointTorques(*array);
  }
  acceleration.resize(2);
  force.resize(2);
  force[1] = push, force[ktBaseIndex] = push * 2.0;
  EXPECT_TRUE(constant[1] == push && constant.baseForce() == push * 2.0);
  force.setToZeros();
  EXPECT_EQ(allocations.count(), 0U);
  EXPECT_EQ(force, still);
  EXPECT_EQ(out, b);
  for (const Joints& joints :
       {v.jointVelocities(), acceleration.jointAccelerations(), torque.jointTorques()}) {
    EXPECT_EQ(joints, states::joints({1.0, 2.0}));
  }
}

}  // namespace
