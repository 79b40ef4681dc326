#include <gtest/gtest.h>

#include "ktManipulator/ktManipulator.h"
#include "support/Allocations.h"

namespace {

using Linear = KtLinearStateEqualityConstraint;
using List = std::vector<double>;

Linear::Row row(const List& values) {
  Linear::Row list;
  for (const double value : values) list.pushBack(value);
  return list;
}
Linear constraint(const std::vector<List>& joints, const std::vector<List>& base, KtU32 sums) {
  Linear::Rows jointRows, baseRows;
  for (const List& weights : joints) jointRows.pushBack(row(weights));
  for (const List& weights : base) baseRows.pushBack(row(weights));
  Linear made;
  made.setJointWeights(jointRows);
  made.setBaseWeights(baseRows);
  made.setWeightedSums(Linear::Row(sums));
  return made;
}
KtIndividualManipulator manipulator(KtU32 joints, bool fixed) {
  KtIndividualManipulator made;
  for (KtU32 i = 0; i < joints; ++i) made.addChild(KtManipulatorLink());
  made.setIsFixedBase(fixed);
  return made;
}

// Rows too short, too long and missing; seven base weights, of which six count. The base comes
// first, where it is free.
TEST(StateConstraints, JacobianHasTheWeights) {
  KtStateEqualityConstraintVector all;
  const Linear two =
      constraint({{1, 2, 3, 4}, {5, 6, 7, 8, 9}, {1}}, {{11, 12, 13, 14, 15, 16}}, 2);
  all.pushBack(two);
  all.pushBack(constraint({{1, 2, 3, 4}}, {{1, 2}}, 0));
  all.pushBack(constraint({{1, 2}, {}}, {{21, 22}, {1, 2, 3, 4, 5, 6, 7}, {6, 5, 4, 3, 2, 1}}, 8));
  const std::vector<List> expected = {{11, 12, 13, 14, 15, 16, 1, 2, 3, 4},
                                      {0, 0, 0, 0, 0, 0, 5, 6, 7, 8},
                                      {21, 22, 0, 0, 0, 0, 1, 2, 0, 0},
                                      {1, 2, 3, 4, 5, 6, 0, 0, 0, 0},
                                      {6, 5, 4, 3, 2, 1, 0, 0, 0, 0}};
  ASSERT_EQ(all.doc(), expected.size());
  const KtPositionState position;
  const KtVelocityState velocity;
  for (const bool fixed : {true, false}) {
    const KtIndividualManipulator body = manipulator(4, fixed);
    const KtU32 first = fixed ? 6 : 0;
    const KtReArray& jacobian = all.jacobian(body, position);
    ASSERT_EQ(jacobian.columns(), 10 - first);
    for (KtU32 r = 0; r < all.doc(); ++r) {
      EXPECT_EQ(List(jacobian[r], jacobian[r] + 10 - first),
                List(expected[r].begin() + first, expected[r].end()));
    }
    EXPECT_EQ(all.jacobianDerivative(body, position, velocity), KtReArray(5, 10 - first));
    EXPECT_EQ(two.jacobianDerivative(body, position, velocity), KtReArray(2, 10 - first));
    const Allocations allocations;
    all.jacobian(body, position);
    all.jacobianDerivative(body, position, velocity);
    EXPECT_EQ(allocations.count(), 0U);
  }
}

TEST(StateConstraints, WithoutRowsKeepTheOldJacobian) {
  const KtIndividualManipulator body = manipulator(2, true);
  Linear gear = constraint({{1, 2}, {3, 4}}, {}, 1);
  const KtReArray before = gear.jacobian(body, {});
  EXPECT_EQ(before.rows(), 1U);
  gear.setWeightedSums({});
  EXPECT_EQ(gear.jacobian(body, {}), before);
  // A copy doesn't carry the array.
  EXPECT_EQ(Linear(gear).jacobian(body, {}).rows(), 0U);
}

// Leaves its value where it was asked, and fails on request.
class Probe : public KtXmlPersistent<Probe, Linear> {
 public:
  bool constrainPosition(const KtIndividualManipulator&, KtPositionState& p) const override {
    p.jointPositions().pushBack(value);
    return value != 2.0;
  }
  bool constrainVelocity(const KtIndividualManipulator&, const KtPositionState&,
                         KtVelocityState& v) const override {
    v.jointVelocities().pushBack(value);
    return value != 2.0;
  }
  bool operator==(const Probe&) const = default;

  double value = 0.0;
};

TEST(StateConstraints, AreAskedInOrderAlsoBehindAFailure) {
  KtStateEqualityConstraintVector all(1);  // a null entry is passed over
  KtPositionState p;
  KtVelocityState v;
  EXPECT_TRUE(all.constrainPosition({}, p) && all.constrainVelocity({}, p, v));
  EXPECT_EQ(all.jacobian({}, p).rows(), 0U);
  Probe probe;
  for (probe.value = 1.0; probe.value < 4.0; ++probe.value) all.pushBack(probe);
  EXPECT_FALSE(all.constrainPosition({}, p) || all.constrainVelocity({}, p, v));
  EXPECT_EQ(p.jointPositions(), row({1.0, 2.0, 3.0}));
  EXPECT_EQ(v.jointVelocities(), row({1.0, 2.0, 3.0}));
}

// Keeps its gradient in the buffer.
class Buffered : public KtXmlPersistent<Buffered, KtMultivariableJointStateConstraint> {
 public:
  using KtBaseStateConstraint::gradientBuffer_;
  bool operator==(const Buffered&) const = default;
};

TEST(StateConstraints, NormalizeTheirGradientBuffer) {
  for (const auto& [gradient, expected] :
       {std::pair<List, List>{{}, {}}, {{0.0, 0.0}, {0.0, 0.0}}, {{3.0, -4.0}, {0.6, -0.8}}}) {
    Buffered constraint;
    constraint.gradientBuffer_ = gradient;
    constraint.normalizeGradient();
    EXPECT_EQ(constraint.gradientBuffer_, expected);
    EXPECT_EQ(constraint == Buffered(), gradient.empty()) << "the buffer belongs to the value";
  }
}

TEST(StateConstraints, ForwardTheJointPositions) {
  KtPositionState p;
  p.setJointPositions(row({2.0, 5.0}));
  KtMultivariableJointStateConstraint limit;
  EXPECT_EQ(limit.constraint(), nullptr);
  EXPECT_EQ(limit.evaluate(p), 0.0);
  EXPECT_TRUE(limit.gradient(p, true).empty());
  KtLinearMultivariableConstraint linear;
  linear.setConstant(7.0);
  linear.setCoefficient(1, -2.0);
  limit.setConstraint(linear);
  EXPECT_EQ(limit.evaluate(p), -3.0);
  EXPECT_EQ(limit.gradient(p, true), (List{0.0, -2.0}));
}

}  // namespace
