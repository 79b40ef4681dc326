#include "ktManipulator/activestate/KtJacobianState.h"

#include <algorithm>

#include "ktManipulator/foundation/core/KtPrint.h"

namespace {

void report(const char* message) {
  Kt::Print::instance().write(Kt::Print::kError, "%s", message);
}

}  // namespace

void KtJacobianState::invalidateAll() {
  valid_ = 0;
}

const KtReArray& KtJacobianState::jacobian() const {
  if (!valid(kJacobian)) report("Jacobian not ready");
  return jacobian_;
}

KtReArray& KtJacobianState::jacobianReferenceToSet() {
  valid_ = (valid_ | kJacobian) & ~(kNullSpace | kJacobianLU);
  return jacobian_;
}

void KtJacobianState::setJacobian(const KtReArray& jacobian) {
  jacobianReferenceToSet() = jacobian;
}

bool KtJacobianState::jacobianValid() const {
  return valid(kJacobian);
}

const KtReArray& KtJacobianState::softJacobian() const {
  if (!valid(kSoftJacobian)) report("Soft Jacobian not ready");
  return softJacobian_;
}

KtReArray& KtJacobianState::softJacobianReferenceToSet() {
  valid_ |= kSoftJacobian;
  return softJacobian_;
}

void KtJacobianState::setSoftJacobian(const KtReArray& jacobian) {
  softJacobianReferenceToSet() = jacobian;
}

bool KtJacobianState::softJacobianValid() const {
  return valid(kSoftJacobian);
}

const KtReArray& KtJacobianState::nullSpace() {
  if (!valid(kNullSpace)) calculateNullSpaceAndJacobianLU();
  return nullSpace_;
}

void KtJacobianState::setNullSpace(const KtReArray& nullSpace) {
  nullSpace_ = nullSpace;
  valid_ |= kNullSpace;
}

bool KtJacobianState::nullSpaceValid() const {
  return valid(kNullSpace);
}

void KtJacobianState::calculateNullSpaceAndJacobianLU() {
  if (!valid(kJacobian)) {
    report("Jacobian not available.");
    return;
  }
  const KtU32 rows = jacobian_.rows();
  const KtU32 size = std::max(rows, jacobian_.columns());
  // A square array fits wide and tall Jacobians. The rows below the Jacobian are not read, so they
  // need no zeros. The columns beside it need zeros only the first time, because factoring doesn't
  // change them.
  if (jacobianLU_.rows() != size || jacobianLU_.columns() != size) {
    jacobianLU_.setToZeros(size, size);
  }
  jacobianLU_.copyEntriesOf(jacobian_);
  if (isSparse()) {
    jacobianLU_.nullSpaceSparse(nullSpace_, rows, indices_, sparsityIndices_, zeroStart_);
  } else {
    jacobianLU_.nullSpace(nullSpace_, rows, indices_);
  }
  valid_ |= kNullSpace | kJacobianLU;
}

const std::vector<unsigned int>& KtJacobianState::sparsityIndices() const {
  return sparsityIndices_;
}
std::vector<unsigned int>& KtJacobianState::sparsityIndices() {
  return sparsityIndices_;
}
std::vector<unsigned int>& KtJacobianState::zeroStart() {
  return zeroStart_;
}
bool KtJacobianState::sparsityValid() const {
  return sparsityValid_;
}
void KtJacobianState::setSparsityValid(bool valid) {
  sparsityValid_ = valid;
}
bool KtJacobianState::isSparse() const {
  return isSparse_;
}
void KtJacobianState::setIsSparse(bool sparse) {
  isSparse_ = sparse;
}

const KtReArray& KtJacobianState::jacobianLU() {
  if (!valid(kJacobianLU)) calculateNullSpaceAndJacobianLU();
  return jacobianLU_;
}

const std::vector<unsigned int>& KtJacobianState::indices() {
  if (!valid(kJacobianLU)) calculateNullSpaceAndJacobianLU();
  return indices_;
}
