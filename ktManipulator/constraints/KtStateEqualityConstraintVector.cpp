#include "ktManipulator/constraints/KtStateEqualityConstraintVector.h"

#include <algorithm>

#include "ktManipulator/constraints/KtLinearStateEqualityConstraint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

template class KtXmlVariableVectorType<KtBaseStateEqualityConstraint>;

namespace {

// Stacks what each constraint gives into an array that has the rows and columns of the result.
template <class Give>
void stack(const std::vector<KtBaseStateEqualityConstraint*>& constraints, KtReArray& out,
           Give&& give) {
  KtU32 first = 0;
  for (const auto* constraint : constraints) {
    if (constraint == nullptr) continue;
    const KtU32 rows = constraint->doc();
    const KtReArray& own = give(*constraint);
    const KtU32 columns = std::min(own.columns(), out.columns());
    const KtU32 room = out.rows() - std::min(first, out.rows());
    for (KtU32 r = 0; r < std::min({rows, own.rows(), room}); ++r) {
      std::copy_n(own[r], columns, out[first + r]);
    }
    first += rows;
  }
}

}  // namespace

void KtStateEqualityConstraintVector::registerComponentCreators() {
  registerComponentCreator(KtLinearStateEqualityConstraint::classToken(),
                           KtLinearStateEqualityConstraint::creator);
}

void KtStateEqualityConstraintVector::registerComponents() {}

KtU32 KtStateEqualityConstraintVector::doc() const {
  KtU32 rows = 0;
  for (const auto* constraint : vectorContainer()) {
    if (constraint != nullptr) rows += constraint->doc();
  }
  return rows;
}

bool KtStateEqualityConstraintVector::constrainPosition(const KtIndividualManipulator& manipulator,
                                                        KtPositionState& position) const {
  bool good = true;
  for (const auto* constraint : vectorContainer()) {
    if (constraint != nullptr) good &= constraint->constrainPosition(manipulator, position);
  }
  return good;
}

bool KtStateEqualityConstraintVector::constrainVelocity(const KtIndividualManipulator& manipulator,
                                                        const KtPositionState& position,
                                                        KtVelocityState& velocity) const {
  bool good = true;
  for (const auto* constraint : vectorContainer()) {
    if (constraint != nullptr) {
      good &= constraint->constrainVelocity(manipulator, position, velocity);
    }
  }
  return good;
}

const KtReArray& KtStateEqualityConstraintVector::jacobian(
    const KtIndividualManipulator& manipulator, const KtPositionState& position) const {
  KtReArray& out = buffers_.require().jacobian;
  out.setToZeros(doc(), manipulator.totalDof());
  stack(vectorContainer(), out, [&](const auto& constraint) -> const KtReArray& {
    return constraint.jacobian(manipulator, position);
  });
  return out;
}

const KtReArray& KtStateEqualityConstraintVector::jacobianDerivative(
    const KtIndividualManipulator& manipulator, const KtPositionState& position,
    const KtVelocityState& velocity) const {
  KtReArray& out = buffers_.require().derivative;
  out.setToZeros(doc(), manipulator.totalDof());
  stack(vectorContainer(), out, [&](const auto& constraint) -> const KtReArray& {
    return constraint.jacobianDerivative(manipulator, position, velocity);
  });
  return out;
}
