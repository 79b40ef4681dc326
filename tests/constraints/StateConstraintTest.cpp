#include "support/Testing.h"

namespace {

using Linear = KtLinearStateEqualityConstraint;
using List = std::vector<double>;

Linear::Row row(const List& values) {
  Linear::Row list;
  for (const double value : values) list.pushBack(value);
  return list;
}
Linear::Rows randomRows() {
  Linear::Rows rows(pick(4));
  for (auto& one : rows.vectorContainer()) {
    for (KtU32 i = pick(9); i > 0; --i) one.pushBack(uniform());
  }
  return rows;
}
double weight(const Linear::Rows& rows, KtU32 r, KtU32 column) {
  return r < rows.size() && column < rows[r].size() ? rows[r][column].value() : 0.0;
}

// Against arrays written entry by entry, for rows too short, too long and missing. The base comes
// first, where it is free.
TEST(StateConstraints, JacobianHasTheWeights) {
  for (int trial = 0; trial < 300; ++trial) {
    const KtU32 joints = pick(5), base = trial % 2 == 0 ? 0 : 6;
    KtIndividualManipulator body;
    for (KtU32 i = 0; i < joints; ++i) body.addChild(KtManipulatorLink());
    body.setIsFixedBase(base == 0);
    KtStateEqualityConstraintVector all(1);  // a null entry is passed over
    std::vector<List> expected;
    for (KtU32 count = pick(4); count > 0; --count) {
      Linear one;
      one.setJointWeights(randomRows());
      one.setBaseWeights(randomRows());
      one.setWeightedSums(Linear::Row(pick(5)));
      all.pushBack(one);
      const KtU32 rows = std::max(one.jointWeights().size(), one.baseWeights().size());
      for (KtU32 r = 0; r < std::min(rows, one.weightedSums().size()); ++r) {
        List& made = expected.emplace_back();
        for (KtU32 c = 0; c < base; ++c) made.push_back(weight(one.baseWeights(), r, c));
        for (KtU32 c = 0; c < joints; ++c) made.push_back(weight(one.jointWeights(), r, c));
      }
    }
    ASSERT_EQ(all.doc(), expected.size());
    const KtReArray& jacobian = all.jacobian(body, {});
    ASSERT_EQ(jacobian.rows(), expected.size());
    ASSERT_EQ(jacobian.columns(), base + joints);
    for (KtU32 r = 0; r < all.doc(); ++r) {
      EXPECT_EQ(List(jacobian[r], jacobian[r] + base + joints), expected[r]);
    }
    EXPECT_EQ(all.jacobianDerivative(body, {}, {}), KtReArray(all.doc(), base + joints));
    const KtPositionState position;
    const KtVelocityState velocity;
    const Allocations allocations;
    all.jacobian(body, position);
    all.jacobianDerivative(body, position, velocity);
    EXPECT_EQ(allocations.count(), 0U);
  }
}

TEST(StateConstraints, WithoutRowsKeepTheOldJacobian) {
  Linear gear;
  gear.setJointWeights({1, row({1, 2})});
  gear.setWeightedSums(row({0}));
  const KtReArray before = gear.jacobian({}, {});
  EXPECT_EQ(before.rows(), 1U);
  gear.setWeightedSums({});
  EXPECT_EQ(gear.jacobian({}, {}), before);
  EXPECT_EQ(Linear(gear).jacobian({}, {}).rows(), 0U) << "a copy doesn't carry the array";
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
  KtStateEqualityConstraintVector all(1);
  KtPositionState p;
  KtVelocityState v;
  EXPECT_TRUE(all.constrainPosition({}, p) && all.constrainVelocity({}, p, v));
  Probe probe;
  for (probe.value = 1.0; probe.value < 4.0; ++probe.value) all.pushBack(probe);
  EXPECT_FALSE(all.constrainPosition({}, p) || all.constrainVelocity({}, p, v));
  EXPECT_EQ(p.jointPositions(), row({1.0, 2.0, 3.0}));
  EXPECT_EQ(v.jointVelocities(), row({1.0, 2.0, 3.0}));
}

TEST(StateConstraints, ForwardTheJointPositions) {
  KtMultivariableJointStateConstraint limit;
  KtPositionState p;
  p.setJointPositions(row({2.0, 5.0}));
  EXPECT_EQ(limit.evaluate(p), 0.0);
  EXPECT_TRUE(limit.gradient(p, true).empty());
  KtLinearMultivariableConstraint linear;
  linear.setConstant(7.0);
  EXPECT_TRUE(linear.setCoefficient(1, -2.0) && !linear.setCoefficient(ktUnmappedIndex, 1.0));
  limit.setConstraint(linear);
  EXPECT_EQ(limit.evaluate(p), -3.0);
  EXPECT_EQ(limit.gradient(p, true), (List{0.0, -2.0}));
}

}  // namespace
