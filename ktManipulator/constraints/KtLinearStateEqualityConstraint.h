#pragma once

#include "ktManipulator/constraints/KtBaseStateEqualityConstraint.h"
#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// Constraints that are weighted sums of the base's motion and the joint values, with constant
/// weights: row r says that the base weights times the base's motion plus the joint weights times
/// the joints are the weighted sum of r. Such are gears, and links that move in parallel.
class KT_EXPORT KtLinearStateEqualityConstraint
    : public KtXmlPersistent<KtLinearStateEqualityConstraint, KtBaseStateEqualityConstraint> {
 public:
  /// A list of reals.
  using Row = KtXmlVectorType<KtXmlBasicType<double>>;
  /// A list of weights for each row of the constraint.
  using Rows = KtXmlVectorType<Row>;

  void registerComponents() override;

  /// The number of rows that have weights, of the joints or the base, but no more than there are
  /// weighted sums.
  KtU32 doc() const override;
  /// Leaves the position as it is.
  ///
  /// @return true
  bool constrainPosition(const KtIndividualManipulator& manipulator,
                         KtPositionState& position) const override;
  /// Leaves the velocity as it is.
  ///
  /// @return true
  bool constrainVelocity(const KtIndividualManipulator& manipulator,
                         const KtPositionState& position, KtVelocityState& velocity) const override;
  /// Leaves the acceleration as it is.
  ///
  /// @return true
  bool constrainAcceleration(const KtIndividualManipulator& manipulator,
                             const KtPositionState& position, const KtVelocityState& velocity,
                             KtAccelerationState& acceleration) const override;
  /// The weights. Those without a column are left out, and so are those of rows from `doc()` on;
  /// for a fixed base the base weights don't count. With a `doc()` of 0 the array is what it was
  /// after the call before, of whatever shape.
  const KtReArray& jacobian(const KtIndividualManipulator& manipulator,
                            const KtPositionState& position) const override;
  /// Zeros: the weights are constant.
  const KtReArray& jacobianDerivative(const KtIndividualManipulator& manipulator,
                                      const KtPositionState& position,
                                      const KtVelocityState& velocity) const override;

  /// The weights of the joints, by row and link index. Empty by default.
  virtual const Rows& jointWeights() const { return jointWeights_; }
  virtual void setJointWeights(const Rows& weights) { jointWeights_ = weights; }
  /// The weights of the base's motion, by row, up to six: linear x, y, z, angular x, y, z. Further
  /// ones don't count. Empty by default.
  virtual const Rows& baseWeights() const { return baseWeights_; }
  virtual void setBaseWeights(const Rows& weights) { baseWeights_ = weights; }
  /// The right sides by row. Empty by default.
  virtual const Row& weightedSums() const { return weightedSums_; }
  virtual void setWeightedSums(const Row& sums) { weightedSums_ = sums; }

  bool operator==(const KtLinearStateEqualityConstraint&) const = default;
  static const KtToken& classToken() { return KtManip::KtLinearStateEqualityConstraintToken; }

 private:
  Rows jointWeights_;
  Rows baseWeights_;
  Row weightedSums_;
};
