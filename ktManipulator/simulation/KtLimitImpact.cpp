#include "ktManipulator/simulation/KtLimitImpact.h"

#include <cmath>

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

namespace Kt::detail {

// With rates v, rows g of conditions g v = 0 (equality constraints) or g v <= 0 (limits), and the
// mass matrix M: impulses p >= 0 at limits with v - M^-1 g^T p, found by sweeps over the rows.
// These serve also where conditions depend on each other, as with two joints at limits of which one
// mimics the other.
void LimitImpact::apply(const KtIndividualManipulator& manipulator, bool constrained,
                        KtManipulatorActiveState& active, const KtStatedSystemStruct* asker,
                        KtVelocityState& velocity) {
  const bool fixed = manipulator.isFixedBase();
  const KtU32 n = manipulator.jointDof();
  massMatrixTool_.setManipulator(&manipulator);
  mass_ = fixed ? massMatrixTool_.massMatrix(active, asker)
                : massMatrixTool_.extendedMassMatrixInSystem(active, asker);
  for (KtU32 i = 0; i < n; ++i) {
    const KtManipulatorLink* link = manipulator.linkByIndex(i);
    if (link == nullptr) continue;
    mass_[i][i] +=
        link->jointActuator().effectiveInertia(active.positionState().jointPositions()[i]);
  }
  takeRates(manipulator, velocity);
  listConditions(manipulator, constrained, active);
  const KtU32 count = conditions_.rows();
  responses_.resizeArray(mass_.rows(), count);
  for (KtU32 r = 0; r < count; ++r) {
    for (KtU32 k = 0; k < mass_.rows(); ++k) responses_[k][r] = conditions_[r][k];
  }
  mass_.choleskyDecomposition(factor_);
  factor_.choleskyBackSubstitution(responses_, responses_);
  sweep();
  for (KtU32 i = 0; i < n; ++i) velocity.jointVelocities()[i] = rates_[i];
  if (fixed) return;
  KtGeneralMotion base;
  for (unsigned k = 0; k < 6; ++k) base.setScalarValue(k, rates_[n + k]);
  velocity.setGeneralVelocity(base);
}

void LimitImpact::takeRates(const KtIndividualManipulator& manipulator,
                            const KtVelocityState& velocity) {
  rates_.clear();
  for (const auto& rate : velocity.jointVelocities().elements()) rates_.push_back(rate);
  if (manipulator.isFixedBase()) return;
  for (unsigned k = 0; k < 6; ++k) rates_.push_back(velocity.generalVelocity()[k]);
}

// The columns are those of the mass matrix: joints, then the base.
void LimitImpact::listConditions(const KtIndividualManipulator& manipulator, bool constrained,
                                 const KtManipulatorActiveState& active) {
  const KtU32 n = manipulator.jointDof();
  const KtU32 first = manipulator.isFixedBase() ? 0 : 6;  // column of the Jacobian
  const KtReArray* jacobian = nullptr;
  if (constrained && manipulator.stateEqualityConstraints().doc() > 0) {
    jacobian =
        &manipulator.stateEqualityConstraints().jacobian(manipulator, active.positionState());
    if (jacobian->columns() != n + first) jacobian = nullptr;
  }
  const auto limits = static_cast<KtU32>(stops_.size());
  conditions_.setToZeros(limits + (jacobian != nullptr ? jacobian->rows() : 0),
                         static_cast<KtU32>(rates_.size()));
  for (KtU32 r = 0; r < limits; ++r) conditions_[r][stops_[r].joint] = stops_[r].outwards;
  for (KtU32 r = limits; r < conditions_.rows(); ++r) {
    const double* row = (*jacobian)[r - limits];
    for (KtU32 i = 0; i < n; ++i) conditions_[r][i] = row[first + i];
    for (KtU32 k = 0; k < first; ++k) conditions_[r][n + k] = row[k];
  }
}

void LimitImpact::sweep() {
  constexpr int kMostSweeps = 100;
  const KtU32 count = conditions_.rows();
  impulses_.assign(count, 0.0);
  for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
    double change = 0.0, all = 0.0;
    for (KtU32 r = 0; r < count; ++r) {
      double rate = 0.0, response = 0.0;
      for (KtU32 k = 0; k < rates_.size(); ++k) {
        rate += conditions_[r][k] * rates_[k];
        response += conditions_[r][k] * responses_[k][r];
      }
      if (!(response > 0.0)) continue;
      const double old = impulses_[r];
      impulses_[r] += rate / response;
      if (r < stops_.size()) impulses_[r] = std::fmax(impulses_[r], 0.0);
      for (KtU32 k = 0; k < rates_.size(); ++k) {
        rates_[k] -= responses_[k][r] * (impulses_[r] - old);
      }
      change += std::abs(impulses_[r] - old);
      all += std::abs(impulses_[r]);
    }
    if (!(change > 1e-14 * all)) break;
  }
}

}  // namespace Kt::detail
