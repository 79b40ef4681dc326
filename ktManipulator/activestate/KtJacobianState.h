#pragma once

#include <vector>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"

/// A manipulator's Jacobian, which the caller computes, together with its null space and its
/// triangular factors, which this object computes on first use.
///
/// The contents of an array are undefined unless its flag is set. By default all flags are false
/// and all arrays empty. If an array is invalid and can't be computed, its accessor reports that
/// and returns the array as it is.
///
/// To write the Jacobian through a reference, call `jacobianReferenceToSet` each time: only this
/// call invalidates the null space and the factors. Use one object either for Jacobians of any
/// shapes with at least as many columns as rows, or for taller Jacobians of a single shape. The
/// array for the factors is reused, and the columns that pad a taller Jacobian to a square must not
/// have values that a Jacobian of another shape left there.
///
/// Only one thread at a time may use it: `nullSpace`, `jacobianLU` and `indices` compute.
class KT_EXPORT KtJacobianState {
 public:
  virtual ~KtJacobianState() = default;

  /// Makes Jacobian, soft Jacobian, null space and factors invalid. Arrays keep what they hold, and
  /// what is known of zeros stays: it depends on the mechanism alone.
  virtual void invalidateAll();
  /// The Jacobian, a row for each task coordinate and a column for each joint.
  virtual const KtReArray& jacobian() const;
  /// The same, to be written by the caller without a copy: marks it as valid, and what follows from
  /// it as invalid. The soft Jacobian is left alone.
  virtual KtReArray& jacobianReferenceToSet();
  /// Sets what `jacobian()` answers, with the same consequences.
  virtual void setJacobian(const KtReArray& jacobian);
  /// Whether `jacobian()` holds.
  virtual bool jacobianValid() const;
  /// A softened form of the Jacobian, such as one damped near singular poses: whatever was stored.
  virtual const KtReArray& softJacobian() const;
  /// The same, to be written by the caller without a copy; marks it as valid.
  virtual KtReArray& softJacobianReferenceToSet();
  /// Sets what `softJacobian()` answers and marks it as valid.
  virtual void setSoftJacobian(const KtReArray& jacobian);
  /// Whether `softJacobian()` holds.
  virtual bool softJacobianValid() const;
  /// A basis of the Jacobian's null space, computed if it isn't valid; see `KtReArray::nullSpace`.
  /// For a Jacobian with more rows than columns it has a row, and as last columns a unit vector,
  /// for each column that pads the Jacobian to a square.
  virtual const KtReArray& nullSpace();
  /// Sets what `nullSpace()` answers and marks it as valid.
  virtual void setNullSpace(const KtReArray& nullSpace);
  /// Whether `nullSpace()` holds.
  virtual bool nullSpaceValid() const;
  /// Computes null space and factors together, in a square array as large as the Jacobian's longer
  /// side. Without a valid Jacobian that is reported and nothing changes.
  ///
  /// @note allocates only if sizes grow
  virtual void calculateNullSpaceAndJacobianLU();
  /// For each row of the Jacobian, the first column that may be non-zero; see
  /// `KtReArray::nullSpaceSparse`.
  virtual const std::vector<unsigned int>& sparsityIndices() const;
  virtual std::vector<unsigned int>& sparsityIndices();
  /// For each row of the Jacobian, the first column from which on all are zero; to be changed.
  virtual std::vector<unsigned int>& zeroStart();
  /// Whether `sparsityIndices()` and `zeroStart()` hold. For the caller's use: `isSparse` decides
  /// whether they are used.
  virtual bool sparsityValid() const;
  virtual void setSparsityValid(bool valid);
  /// Whether the null space is computed with the known zeros skipped.
  virtual bool isSparse() const;
  virtual void setIsSparse(bool sparse);
  /// The Jacobian's factors, in the top rows of a square array, computed if they aren't valid; see
  /// `KtReArray::nullSpace`.
  virtual const KtReArray& jacobianLU();
  /// The pivots that go with `jacobianLU()`, computed if they aren't valid.
  virtual const std::vector<unsigned int>& indices();

 private:
  enum Flag : unsigned { kJacobian = 1, kSoftJacobian = 2, kNullSpace = 4, kJacobianLU = 8 };

  bool valid(Flag flag) const noexcept { return (valid_ & flag) != 0; }

  KtReArray jacobian_;
  KtReArray softJacobian_;
  KtReArray nullSpace_;
  KtReArray jacobianLU_;
  std::vector<unsigned int> indices_;
  std::vector<unsigned int> sparsityIndices_;
  std::vector<unsigned int> zeroStart_;
  // Of the first four arrays, in one word that is cleared at once.
  unsigned valid_ = 0;
  bool sparsityValid_ = false;
  bool isSparse_ = false;
};
