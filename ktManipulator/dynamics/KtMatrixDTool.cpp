#include "ktManipulator/dynamics/KtMatrixDTool.h"

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

void KtMatrixDTool::setManipulator(const KtIndividualManipulator* manipulator) {
  KtManipulatorTool::setManipulator(manipulator);
  resize();
}

const KtReArray& KtMatrixDTool::matrixD(KtManipulatorActiveState& activeState,
                                        const KtStatedSystemStruct* asker) {
  resize();
  if (manipulator_ == nullptr) return result_;
  Kt::detail::CompositeColumns::reportMissing(*manipulator_);
  columns_.compute(*manipulator_, activeState, asker);
  columns_.getCoupling(result_);
  return result_;
}

const KtReArray& KtMatrixDTool::matrixD(KtManipulatorActiveState* activeState,
                                        const KtStatedSystemStruct* asker) {
  return matrixD(stateOrOwn(activeState), asker);
}

void KtMatrixDTool::transformMatrixD(const KtReArray& d, const KtOrientation& r,
                                     KtReArray& out) const {
  if (d.rows() > 0 && d.columns() != 6) {
    Kt::Print::instance().write(
        Kt::Print::kError, "KtMatrixDTool::transformMatrixD(): %u columns, not 6\n", d.columns());
    return;
  }
  out.resizeArray(d.rows(), 6);
  for (KtU32 i = 0; i < d.rows(); ++i) {
    const KtVector force = r * KtVector(d[i][0], d[i][1], d[i][2]);
    const KtVector moment = r * KtVector(d[i][3], d[i][4], d[i][5]);
    double* row = out[i];
    row[0] = force.x, row[1] = force.y, row[2] = force.z;
    row[3] = moment.x, row[4] = moment.y, row[5] = moment.z;
  }
}

void KtMatrixDTool::resize() {
  result_.setToZeros(manipulator_ != nullptr ? manipulator_->jointDof() : 0, 6);
}
