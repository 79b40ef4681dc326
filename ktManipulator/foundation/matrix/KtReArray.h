#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"

/// A dense matrix of reals, row by row in one block of memory.
///
/// Made for work arrays that are refilled often: memory is asked for only when an array becomes
/// larger than it ever was. Results go into arrays of the caller, which take the shape of the
/// result; a result may be the object itself or an argument, except where stated (it then costs a
/// temporary). Shapes that don't fit are reported; the operation then answers false or an empty
/// array and changes nothing. Same input, same bits: no result depends on where an array lies in
/// memory.
///
/// An empty array has zero rows; it may have columns.
class KT_EXPORT KtReArray {
 public:
  /// The empty array, 0 by 0.
  KtReArray() noexcept = default;
  /// Zeros.
  KtReArray(KtU32 rows, KtU32 columns);
  KtReArray(const KtReArray&) = default;
  KtReArray(KtReArray&& other) noexcept { swap(other); }
  /// Takes over shape and entries; asks for memory only if this was never as large.
  KtReArray& operator=(const KtReArray&) = default;
  KtReArray& operator=(KtReArray&& other) noexcept {
    swap(other);
    return *this;
  }
  virtual ~KtReArray() = default;

  /// Equal shape and exactly equal entries.
  bool operator==(const KtReArray& other) const {
    return rows_ == other.rows_ && columns_ == other.columns_ && entries_ == other.entries_;
  }
  /// The empty array.
  static KtReArray nullObject() { return {}; }

  /// Number of rows.
  KtU32 rows() const noexcept { return rows_; }
  /// Number of columns.
  KtU32 columns() const noexcept { return columns_; }
  /// Row i, its entries one behind the other; unguarded.
  const double* operator[](KtU32 i) const noexcept {
    return entries_.data() + static_cast<std::size_t>(i) * columns_;
  }
  /// Row i, to be changed.
  double* operator[](KtU32 i) noexcept {
    return entries_.data() + static_cast<std::size_t>(i) * columns_;
  }

  /// Gives the array a shape. If it has that shape already nothing changes, otherwise the entries
  /// become zeros. A shape that memory can't hold is reported and gives the empty array.
  void resizeArray(KtU32 rows, KtU32 columns);
  /// Gives the array a shape, filled with zeros.
  void setToZeros(KtU32 rows, KtU32 columns);
  /// Gives the array a shape, with ones on the main diagonal and zeros elsewhere.
  void setToIdentity(KtU32 rows, KtU32 columns);
  /// Copies all entries of an array that is not larger into the top left of this one; the rest is
  /// left alone.
  bool copyEntriesOf(const KtReArray& a);
  /// Exchanges shapes and entries.
  void swap(KtReArray& other) noexcept {
    std::swap(rows_, other.rows_);
    std::swap(columns_, other.columns_);
    entries_.swap(other.entries_);
  }

  /// Matrix product; the empty array if the inner sizes differ.
  KtReArray operator*(const KtReArray& b) const;
  /// Product with a column; the empty list if its length is not the number of columns.
  std::vector<double> operator*(const std::vector<double>& b) const;
  /// Difference; the empty array if the shapes differ.
  KtReArray operator-(const KtReArray& b) const;
  /// In-place sum.
  KtReArray& operator+=(const KtReArray& b);
  /// In-place difference.
  KtReArray& operator-=(const KtReArray& b);

  /// The transposed array.
  KtReArray transpose() const;
  /// The same into an array of the caller.
  void transpose(KtReArray& out) const;
  /// out = this * b.
  bool transform(const KtReArray& b, KtReArray& out) const;
  /// out = this^T * b.
  bool leftTransposeTransform(const KtReArray& b, KtReArray& out) const;
  /// out = this^T * this, exactly symmetric.
  void overconstrainedNormal(KtReArray& out) const;

  /// The lower triangular L with L L^T = this, for a symmetric positive definite array. The
  /// strict upper triangle of this is not read, that of L is zero.
  ///
  /// A pivot that is lost in rounding (not above n eps times its diagonal entry of this, n being
  /// the size) or not positive is raised to that bound, or to 1e-300 if the bound is less, and the
  /// column below it is zero. So a semidefinite array is factored up to rounding, an unknown that
  /// the equations don't determine gets a moderate value if they are consistent, and no factor
  /// contains infinities or NaN unless this does.
  ///
  /// @return whether no pivot had to be raised; false also if this is not square, with `factor`
  ///         unchanged
  bool choleskyDecomposition(KtReArray& factor) const;

  // Operations of a lower triangular factor L: this is square, its strict upper triangle is not
  // read, and diagonal entries below 1e-300 count as 1e-300.

  /// Solves L L^T x = b for one or several columns b.
  bool choleskyBackSubstitution(const KtReArray& b, KtReArray& x) const;
  /// Solves L x = b for one or several columns b, the first half of `choleskyBackSubstitution`.
  bool forwardSubstitution(const KtReArray& b, KtReArray& x) const;
  /// Solves L^T x = b for one or several columns b, the second half.
  bool backwardSubstitution(const KtReArray& b, KtReArray& x) const;
  /// Solves L L^T x = a^T.
  bool choleskyBackSubstitutionOnTranspose(const KtReArray& a, KtReArray& x) const;
  /// Solves L x = b^T.
  virtual bool forwardSubstitutionOnTranspose(const KtReArray& b, KtReArray& x) const;

  /// A basis of the null space of a Jacobian J, which is the top `rows` rows of this; what stands
  /// below is not looked at. J is factored in place with full pivoting, P J Q = L U.
  ///
  /// Afterwards the top `rows` rows hold L strictly below the main diagonal (the ones on the
  /// diagonal are not stored) and U on and above it, both trapezoidal of the rank r of J.
  ///
  /// A pivot counts as zero when it is not above 1e-12 times the largest entry of J: joint
  /// positions and link lengths carry their own rounding into J, so a tighter bound would not tell
  /// a singular pose.
  ///
  /// @param n        the basis, `columns()` by nullity, with orthonormal columns: J n = 0. Columns
  ///                 of J that are zero, such as those that pad a Jacobian with more rows than
  ///                 columns to a square, contribute their unit vectors, in order, as the last
  ///                 columns of n. Not this array itself.
  /// @param rows     number of rows of J
  /// @param indices  `rows` row pivots, `columns()` column pivots, and the rank: row i of P J Q is
  ///                 row indices[i] of J, its column j is column indices[rows + j] of J, and
  ///                 indices[rows + columns()] = r
  /// @return         false if there are not so many rows, or if J is not finite; a message has
  ///                 been given, and n and indices are empty
  bool nullSpace(KtReArray& n, unsigned int rows, std::vector<unsigned int>& indices);
  /// The same, to the last bit, skipping work on entries of J that are known to be zero.
  ///
  /// @param sparsityIndices  for each row of J, the first column that may be non-zero
  /// @param zeroStart        for each row of J, the first column from which on all are zero. A
  ///                         value beyond the last column counts as the number of columns, a row
  ///                         that a list is too short for as one without known zeros at that end;
  ///                         a row's first column at or behind its last says that the row is zero
  bool nullSpaceSparse(KtReArray& n, unsigned int rows, std::vector<unsigned int>& indices,
                       const std::vector<unsigned int>& sparsityIndices,
                       const std::vector<unsigned int>& zeroStart);

 private:
  bool isFactorFor(KtU32 rows, const char* operation) const;
  void solveForward(KtReArray& x) const;
  void solveBackward(KtReArray& x) const;
  bool factorJacobian(KtReArray& n, unsigned int rows, std::vector<unsigned int>& indices);
  void nullSpaceOfFactor(KtReArray& n, unsigned int rows, std::vector<unsigned int>& indices) const;

  KtU32 rows_ = 0;
  KtU32 columns_ = 0;
  std::vector<double> entries_;
};
