#pragma once

#include "ktManipulator/dynamics/KtCompositeColumns.h"
#include "ktManipulator/dynamics/KtManipulatorTool.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"

/// The matrix that couples the joints of a manipulator to its base: row i is the force and moment
/// that the base needs for a unit acceleration of joint i while everything else is at rest.
class KT_EXPORT KtMatrixDTool : public KtManipulatorTool {
 public:
  void setManipulator(const KtIndividualManipulator* manipulator) override;

  /// The matrix: one row for each joint by link index, six columns, force first, in the base's DH
  /// frame. A missing link is reported and its row stays zero. The matrix is empty without a
  /// manipulator.
  ///
  /// @param activeState  positions; filled with what was computed
  /// @param asker        the system whose attached manipulators count as well; may be null
  virtual const KtReArray& matrixD(KtManipulatorActiveState& activeState,
                                   const KtStatedSystemStruct* asker);
  /// The same on the state pointed to or the tool's own.
  virtual const KtReArray& matrixD(KtManipulatorActiveState* activeState,
                                   const KtStatedSystemStruct* asker);
  /// Rotates the force and the moment in each row of a matrix of six columns.
  ///
  /// @param d    a matrix with another number of columns is reported, and `out` stays as it was
  /// @param r    the rotation
  /// @param out  the result; may be d itself
  virtual void transformMatrixD(const KtReArray& d, const KtOrientation& r, KtReArray& out) const;
  /// Resizes the result for the manipulator and fills it with zeros.
  virtual void resize();

 private:
  Kt::detail::CompositeColumns columns_;
  KtReArray result_;
};
