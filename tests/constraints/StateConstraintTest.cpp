#include <gtest/gtest.h>

#include "ktManipulator/ktManipulator.h"
#include "support/Allocations.h"
#include "support/Random.h"

namespace {

using namespace sampling;
using StateConstraints = Seeded;
using Row = KtLinearStateEqualityConstraint::Row;
using Rows = KtLinearStateEqualityConstraint::Rows;

Row row(std::initializer_list<double> values) {
  Row list;
  for (const double value : values) list.pushBack(value);
  return list;
}
Rows randomRows(std::initializer_list<KtU32> lengths) {
  Rows rows;
  for (const KtU32 length : lengths) {
    Row one(length);
    for (auto& weight : one.vectorContainer()) weight = uniform();
    rows.pushBack(one);
  }
  return rows;
}
KtLinearStateEqualityConstraint constraint(const Rows& joints, const Rows& base, KtU32 sums) {
  KtLinearStateEqualityConstraint made;
  made.setJointWeights(joints);
  made.setBaseWeights(base);
  made.setWeightedSums(Row(sums));
  return made;
}
KtIndividualManipulator manipulator(KtU32 joints, bool fixed) {
  KtIndividualManipulator made;
  for (KtU32 i = 0; i < joints; ++i) made.addChild(KtManipulatorLink());
  made.setIsFixedBase(fixed);
  return made;
}

// The relation as it is told: weights times motion, taken straight from the constraint.
double weighted(const KtLinearStateEqualityConstraint& relation, KtU32 r, bool fixed,
                const KtVelocityState& v) {
  double sum = 0.0;
  if (!fixed && r < relation.baseWeights().size()) {
    const auto& weights = relation.baseWeights()[r];
    for (unsigned i = 0; i < 6 && i < weights.size(); ++i) {
      sum += weights[i] * v.generalVelocity()[i];
    }
  }
  if (r < relation.jointWeights().size()) {
    const auto& weights = relation.jointWeights()[r];
    for (KtU32 i = 0; i < weights.size() && i < v.jointVelocities().size(); ++i) {
      sum += weights[i] * v.jointVelocities()[i];
    }
  }
  return sum;
}

TEST_F(StateConstraints, JacobianTimesMotionIsTheRelation) {
  // Rows too short, too long and missing; seven base weights, of which six count.
  const auto two = constraint(randomRows({4, 9, 3}), randomRows({6}), 2);
  const auto three = constraint(randomRows({2, 0}), randomRows({2, 7, 6}), 8);
  KtStateEqualityConstraintVector all;
  all.pushBack(two);
  all.pushBack(constraint(randomRows({4}), randomRows({6}), 0));
  all.pushBack(three);
  ASSERT_EQ(two.doc(), 2U);
  ASSERT_EQ(three.doc(), 3U);
  ASSERT_EQ(all.doc(), 5U);
  const KtPositionState position;
  for (const bool fixed : {true, false}) {
    SCOPED_TRACE(fixed);
    const KtIndividualManipulator body = manipulator(4, fixed);
    KtVelocityState v;
    v.setGeneralVelocity(randomMotion());
    v.setJointVelocities(randomRows({4})[0]);
    std::vector<double> z;
    for (unsigned i = 0; !fixed && i < 6; ++i) z.push_back(v.generalVelocity()[i]);
    for (const double joint : v.jointVelocities().vectorContainer()) z.push_back(joint);

    const KtReArray& stacked = all.jacobian(body, position);
    ASSERT_EQ(stacked.rows(), 5U);
    ASSERT_EQ(stacked.columns(), z.size());
    const std::vector<double> product = stacked * z;
    for (KtU32 r = 0; r < 5; ++r) {
      const double expected = r < 2 ? weighted(two, r, fixed, v) : weighted(three, r - 2, fixed, v);
      EXPECT_NEAR(product[r], expected, 1e-15) << r;
    }
    EXPECT_EQ(all.jacobianDerivative(body, position, v),
              KtReArray(5, static_cast<KtU32>(z.size())));
    EXPECT_EQ(two.jacobianDerivative(body, position, v).rows(), 2U);

    const Allocations allocations;
    all.jacobian(body, position);
    all.jacobianDerivative(body, position, v);
    EXPECT_EQ(allocations.count(), 0U);
  }
}

TEST_F(StateConstraints, WithoutRowsKeepTheOldJacobian) {
  const KtIndividualManipulator body = manipulator(2, true);
  const KtPositionState position;
  auto gear = constraint(randomRows({2, 2}), {}, 1);
  EXPECT_EQ(gear.doc(), 1U);
  const KtReArray before = gear.jacobian(body, position);
  EXPECT_EQ(before.rows(), 1U);
  gear.setWeightedSums({});
  EXPECT_EQ(gear.doc(), 0U);
  EXPECT_EQ(gear.jacobian(body, position), before);
  // A copy doesn't carry the array.
  EXPECT_EQ(KtLinearStateEqualityConstraint(gear).jacobian(body, position).rows(), 0U);
}

// Counts its calls, and fails on request.
class Probe : public KtXmlPersistent<Probe, KtLinearStateEqualityConstraint> {
 public:
  bool constrainPosition(const KtIndividualManipulator&, KtPositionState& p) const override {
    p.jointPositions().pushBack(value);
    return good;
  }
  bool constrainVelocity(const KtIndividualManipulator&, const KtPositionState&,
                         KtVelocityState& v) const override {
    v.jointVelocities().pushBack(value);
    return good;
  }
  bool operator==(const Probe&) const = default;

  double value = 0.0;
  bool good = true;
};

TEST(StateConstraintList, AsksAllInOrderAlsoBehindAFailure) {
  const KtIndividualManipulator body;
  KtStateEqualityConstraintVector all(1);  // a null entry is passed over
  KtPositionState p;
  KtVelocityState v;
  EXPECT_TRUE(all.constrainPosition(body, p));
  EXPECT_TRUE(all.constrainVelocity(body, p, v));
  Probe probe;
  for (const double value : {1.0, 2.0, 3.0}) {
    probe.value = value;
    probe.good = value != 2.0;
    all.pushBack(probe);
  }
  EXPECT_FALSE(all.constrainPosition(body, p));
  EXPECT_FALSE(all.constrainVelocity(body, p, v));
  EXPECT_EQ(p.jointPositions(), row({1.0, 2.0, 3.0}));
  EXPECT_EQ(v.jointVelocities(), row({1.0, 2.0, 3.0}));
}

// Keeps its gradient in the buffer.
class Buffered : public KtXmlPersistent<Buffered, KtMultivariableJointStateConstraint> {
 public:
  using KtBaseStateConstraint::gradientBuffer_;
  bool operator==(const Buffered&) const = default;
};

TEST(StateConstraint, NormalizesItsGradientBuffer) {
  Buffered constraint;
  constraint.normalizeGradient();
  EXPECT_TRUE(constraint.gradientBuffer_.empty());
  constraint.gradientBuffer_ = {0.0, 0.0};
  constraint.normalizeGradient();
  EXPECT_EQ(constraint.gradientBuffer_, (std::vector<double>{0.0, 0.0}));
  constraint.gradientBuffer_ = {3.0, -4.0};
  constraint.normalizeGradient();
  EXPECT_EQ(constraint.gradientBuffer_, (std::vector<double>{0.6, -0.8}));
  // The buffer belongs to the value.
  const Buffered copy = constraint;
  EXPECT_EQ(copy, constraint);
  EXPECT_FALSE(copy == Buffered());
}

TEST(StateConstraint, ForwardsTheJointPositions) {
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
  EXPECT_EQ(limit.gradient(p, true), (std::vector<double>{0.0, -2.0}));
  EXPECT_TRUE(limit.constraint()->equality(&linear));
}

}  // namespace
