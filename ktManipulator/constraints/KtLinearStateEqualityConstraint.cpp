#include "ktManipulator/constraints/KtLinearStateEqualityConstraint.h"

#include <algorithm>

#include "ktManipulator/model/KtIndividualManipulator.h"

namespace {

constexpr KtU32 kBaseColumns = 6;

// Copies the weights into the array from a column on, as many as there is room for in each row and
// in all. Rows of weights beyond the array are left out.
void placeWeights(const KtLinearStateEqualityConstraint::Rows& weights, KtU32 firstColumn,
                  KtU32 mostColumns, KtReArray& array) {
  const KtU32 rows = std::min(weights.size(), array.rows());
  for (KtU32 r = 0; r < rows; ++r) {
    const auto& row = weights[r].vectorContainer();
    const std::size_t count = std::min<std::size_t>(row.size(), mostColumns);
    std::copy_n(row.begin(), count, array[r] + firstColumn);
  }
}

}  // namespace

void KtLinearStateEqualityConstraint::registerComponents() {
  KtBaseStateEqualityConstraint::registerComponents();
  registerComponent(KtManip::KtJointWeightsToken, &jointWeights_);
  registerComponent(KtManip::KtBaseWeightsToken, &baseWeights_);
  registerComponent(KtManip::KtWeightedSumsToken, &weightedSums_);
}

KtU32 KtLinearStateEqualityConstraint::doc() const {
  return std::min(std::max(jointWeights_.size(), baseWeights_.size()), weightedSums_.size());
}

bool KtLinearStateEqualityConstraint::constrainPosition(const KtIndividualManipulator&,
                                                        KtPositionState&) const {
  return true;
}

bool KtLinearStateEqualityConstraint::constrainVelocity(const KtIndividualManipulator&,
                                                        const KtPositionState&,
                                                        KtVelocityState&) const {
  return true;
}

bool KtLinearStateEqualityConstraint::constrainAcceleration(const KtIndividualManipulator&,
                                                            const KtPositionState&,
                                                            const KtVelocityState&,
                                                            KtAccelerationState&) const {
  return true;
}

const KtReArray& KtLinearStateEqualityConstraint::jacobian(
    const KtIndividualManipulator& manipulator, const KtPositionState&) const {
  KtReArray& array = jacobianBuffer();
  const KtU32 rows = doc();
  if (rows == 0) return array;
  const KtU32 columns = manipulator.totalDof();
  array.setToZeros(rows, columns);
  if (manipulator.isFixedBase()) {
    placeWeights(jointWeights_, 0, columns, array);
  } else {
    const KtU32 base = std::min(kBaseColumns, columns);
    placeWeights(baseWeights_, 0, base, array);
    placeWeights(jointWeights_, base, columns - base, array);
  }
  return array;
}

const KtReArray& KtLinearStateEqualityConstraint::jacobianDerivative(
    const KtIndividualManipulator& manipulator, const KtPositionState&,
    const KtVelocityState&) const {
  KtReArray& array = jacobianDerivativeBuffer();
  array.setToZeros(doc(), manipulator.totalDof());
  return array;
}
