#include "ktManipulator/foundation/matrix/KtReArray.h"

#include <Eigen/Core>
#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>

#include "ktManipulator/foundation/core/KtMath.h"
#include "ktManipulator/foundation/core/KtPrint.h"

namespace {

bool reportShapes(const char* operation, const KtReArray& a, const KtReArray& b) {
  Kt::Print::instance().write(Kt::Print::kError,
                              "KtReArray::%s: shapes don't fit: %u by %u and %u by %u\n", operation,
                              a.rows(), a.columns(), b.rows(), b.columns());
  return false;
}

// The two kernels below carry all products and factorisations. Both work along rows, which are
// contiguous, and on several rows at once, so that what is loaded is used more than once; the order
// of their sums depends on sizes alone.

using Pair = Eigen::Array2d;

// sums[i][j] = scalar product of the first n entries of a[i] and b[j].
template <std::size_t R, std::size_t C>
inline void scalarProducts(const double* const (&a)[R], const double* const (&b)[C], std::size_t n,
                           double (&sums)[R][C]) {
  Pair partial[R][C];
  for (auto& row : partial) {
    for (Pair& p : row) p.setZero();
  }
  std::size_t k = 0;
  for (; k + 2 <= n; k += 2) {
    Pair left[R];
    for (std::size_t i = 0; i < R; ++i) left[i] = Eigen::Map<const Pair>(a[i] + k);
    for (std::size_t j = 0; j < C; ++j) {
      const Pair right = Eigen::Map<const Pair>(b[j] + k);
      for (std::size_t i = 0; i < R; ++i) partial[i][j] += left[i] * right;
    }
  }
  for (std::size_t i = 0; i < R; ++i) {
    for (std::size_t j = 0; j < C; ++j) {
      sums[i][j] = partial[i][j][0] + partial[i][j][1];
      if (k < n) sums[i][j] += a[i][k] * b[j][k];
    }
  }
}

// A list of coefficients that stand a stride apart.
struct Coefficients {
  const double* first;
  std::size_t stride;
  double operator[](std::size_t k) const { return first[k * stride]; }
};

// out += sign * sum over k < count of c[k] * (row k of length n); rows stand rowStride apart.
inline void addRows(double* __restrict out, std::size_t n, double sign, Coefficients c,
                    std::size_t count, const double* rows, std::size_t rowStride) {
  std::size_t k = 0;
  for (; k + 4 <= count; k += 4) {
    const double c0 = sign * c[k], c1 = sign * c[k + 1];
    const double c2 = sign * c[k + 2], c3 = sign * c[k + 3];
    const double* r0 = rows + k * rowStride;
    const double* r1 = r0 + rowStride;
    const double* r2 = r1 + rowStride;
    const double* r3 = r2 + rowStride;
    for (std::size_t j = 0; j < n; ++j) {
      out[j] += (c0 * r0[j] + c1 * r1[j]) + (c2 * r2[j] + c3 * r3[j]);
    }
  }
  for (; k < count; ++k) {
    const double c0 = sign * c[k];
    const double* r0 = rows + k * rowStride;
    for (std::size_t j = 0; j < n; ++j) out[j] += c0 * r0[j];
  }
}

// Rows i to i + R - 1 of the factor; those above are complete. The reciprocals of the diagonal
// entries stand in `reciprocals`, which has no place for the last. Answers whether no pivot had to
// be raised.
template <std::size_t R>
bool factorRows(double* factor,  // NOLINT(readability-non-const-parameter)
                std::size_t size, std::size_t i, double* reciprocals) {
  double* row[R];
  const double* left[R];
  for (std::size_t q = 0; q < R; ++q) left[q] = row[q] = factor + (i + q) * size;
  for (std::size_t j = 0; j < i; j += 2) {  // i is a multiple of 4
    const double* const right[2] = {factor + j * size, factor + (j + 1) * size};
    double sums[R][2];
    scalarProducts<R, 2>(left, right, j, sums);
    for (std::size_t q = 0; q < R; ++q) {
      const double x = (row[q][j] - sums[q][0]) * reciprocals[j];
      row[q][j] = x;
      row[q][j + 1] = (row[q][j + 1] - sums[q][1] - x * right[1][j]) * reciprocals[j + 1];
    }
  }
  bool positive = true;
  double sums[R][R];
  scalarProducts<R, R>(left, left, i, sums);
  const double rounding = static_cast<double>(size) * std::numeric_limits<double>::epsilon();
  for (std::size_t m = 0; m < R; ++m) {
    const std::size_t j = i + m;
    const double least = KtMath::nonZeroPos(rounding * row[m][j]);
    double pivot = row[m][j] - sums[m][m];
    for (std::size_t t = i; t < j; ++t) pivot -= row[m][t] * row[m][t];
    const bool raised = pivot <= least;
    positive = positive && pivot > least;  // not for NaN either, which is left as it is
    row[m][j] = std::sqrt(raised ? least : pivot);
    // A factor of zero makes the column below a raised pivot zero.
    const double reciprocal = raised ? 0.0 : 1.0 / row[m][j];
    if (j + 1 < size) reciprocals[j] = reciprocal;
    for (std::size_t q = m + 1; q < R; ++q) {
      double x = row[q][j] - sums[q][m];
      for (std::size_t t = i; t < j; ++t) x -= row[q][t] * row[m][t];
      row[q][j] = x * reciprocal;
    }
  }
  return positive;
}

// x[i .. i + R) of L x = b for one column, with everything before known.
template <std::size_t R>
void solveForwardRows(const KtReArray& factor, double* x, std::size_t i) {
  const double* left[R];
  for (std::size_t q = 0; q < R; ++q) left[q] = factor[static_cast<KtU32>(i + q)];
  const double* const right[1] = {x};
  double sums[R][1];
  scalarProducts<R, 1>(left, right, i, sums);
  for (std::size_t q = 0; q < R; ++q) {
    double value = x[i + q] - sums[q][0];
    for (std::size_t t = i; t < i + q; ++t) value -= left[q][t] * x[t];
    x[i + q] = value / KtMath::nonZeroPos(left[q][i + q]);
  }
}

}  // namespace

KtReArray::KtReArray(KtU32 rows, KtU32 columns) {
  resizeArray(rows, columns);
}

void KtReArray::resizeArray(KtU32 rows, KtU32 columns) {
  if (rows == rows_ && columns == columns_) return;
  setToZeros(rows, columns);
}

void KtReArray::setToZeros(KtU32 rows, KtU32 columns) {
  try {
    entries_.assign(static_cast<std::size_t>(rows) * columns, 0.0);
    rows_ = rows;
    columns_ = columns;
  } catch (const std::exception&) {
    Kt::Print::instance().write(Kt::Print::kError, "KtReArray: no memory for %u by %u entries\n",
                                rows, columns);
    entries_.clear();
    rows_ = columns_ = 0;
  }
}

void KtReArray::setToIdentity(KtU32 rows, KtU32 columns) {
  setToZeros(rows, columns);
  for (KtU32 i = 0; i < std::min(rows_, columns_); ++i) (*this)[i][i] = 1.0;
}

bool KtReArray::copyEntriesOf(const KtReArray& a) {
  if (a.rows_ > rows_ || a.columns_ > columns_) return reportShapes("copyEntriesOf", *this, a);
  if (&a == this) return true;
  for (KtU32 i = 0; i < a.rows_; ++i) std::copy_n(a[i], a.columns_, (*this)[i]);
  return true;
}

KtReArray KtReArray::operator*(const KtReArray& b) const {
  KtReArray product;
  transform(b, product);
  return product;
}

std::vector<double> KtReArray::operator*(const std::vector<double>& b) const {
  if (b.size() != columns_) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtReArray::operator*: %u columns, but a list of %zu\n", columns_,
                                b.size());
    return {};
  }
  std::vector<double> product(rows_);
  for (KtU32 i = 0; i < rows_; ++i) {
    double sum[1][1];
    scalarProducts<1, 1>({(*this)[i]}, {b.data()}, columns_, sum);
    product[i] = sum[0][0];
  }
  return product;
}

KtReArray KtReArray::operator-(const KtReArray& b) const {
  if (rows_ != b.rows_ || columns_ != b.columns_) {
    reportShapes("operator-", *this, b);
    return {};
  }
  KtReArray difference(*this);
  difference -= b;
  return difference;
}

KtReArray& KtReArray::operator+=(const KtReArray& b) {
  if (rows_ != b.rows_ || columns_ != b.columns_) {
    reportShapes("operator+=", *this, b);
    return *this;
  }
  for (std::size_t k = 0; k < entries_.size(); ++k) entries_[k] += b.entries_[k];
  return *this;
}

KtReArray& KtReArray::operator-=(const KtReArray& b) {
  if (rows_ != b.rows_ || columns_ != b.columns_) {
    reportShapes("operator-=", *this, b);
    return *this;
  }
  for (std::size_t k = 0; k < entries_.size(); ++k) entries_[k] -= b.entries_[k];
  return *this;
}

KtReArray KtReArray::transpose() const {
  KtReArray transposed;
  transpose(transposed);
  return transposed;
}

void KtReArray::transpose(KtReArray& out) const {
  if (&out == this) {
    KtReArray transposed;
    transpose(transposed);
    out.swap(transposed);
    return;
  }
  out.resizeArray(columns_, rows_);
  for (KtU32 i = 0; i < rows_; ++i) {
    const double* row = (*this)[i];
    for (KtU32 j = 0; j < columns_; ++j) out[j][i] = row[j];
  }
}

bool KtReArray::transform(const KtReArray& b, KtReArray& out) const {
  if (columns_ != b.rows_) return reportShapes("transform", *this, b);
  if (&out == this || &out == &b) {
    KtReArray product;
    transform(b, product);
    out.swap(product);
    return true;
  }
  out.setToZeros(rows_, b.columns_);
  if (columns_ == 0) return true;
  if (b.columns_ == 1) {
    const double* const right[1] = {b[0]};
    KtU32 i = 0;
    for (; i + 4 <= rows_; i += 4) {
      double sums[4][1];
      scalarProducts<4, 1>({(*this)[i], (*this)[i + 1], (*this)[i + 2], (*this)[i + 3]}, right,
                           columns_, sums);
      for (KtU32 q = 0; q < 4; ++q) out[i + q][0] = sums[q][0];
    }
    for (; i < rows_; ++i) {
      double sums[1][1];
      scalarProducts<1, 1>({(*this)[i]}, right, columns_, sums);
      out[i][0] = sums[0][0];
    }
    return true;
  }
  for (KtU32 i = 0; i < rows_; ++i) {
    addRows(out[i], b.columns_, 1.0, {(*this)[i], 1}, columns_, b[0], b.columns_);
  }
  return true;
}

bool KtReArray::leftTransposeTransform(const KtReArray& b, KtReArray& out) const {
  if (rows_ != b.rows_) return reportShapes("leftTransposeTransform", *this, b);
  if (&out == this || &out == &b) {
    KtReArray product;
    leftTransposeTransform(b, product);
    out.swap(product);
    return true;
  }
  out.setToZeros(columns_, b.columns_);
  if (rows_ == 0) return true;
  if (b.columns_ == 1) {
    addRows(out[0], columns_, 1.0, {b[0], 1}, rows_, (*this)[0], columns_);
    return true;
  }
  for (KtU32 i = 0; i < columns_; ++i) {
    addRows(out[i], b.columns_, 1.0, {(*this)[0] + i, columns_}, rows_, b[0], b.columns_);
  }
  return true;
}

void KtReArray::overconstrainedNormal(KtReArray& out) const {
  if (&out == this) {
    KtReArray product;
    overconstrainedNormal(product);
    out.swap(product);
    return;
  }
  out.setToZeros(columns_, columns_);
  if (rows_ == 0) return;
  for (KtU32 i = 0; i < columns_; ++i) {
    addRows(out[i], std::size_t{i} + 1, 1.0, {(*this)[0] + i, columns_}, rows_, (*this)[0],
            columns_);
    for (KtU32 j = 0; j < i; ++j) out[j][i] = out[i][j];
  }
}

bool KtReArray::choleskyDecomposition(KtReArray& factor) const {
  if (rows_ != columns_) return reportShapes("choleskyDecomposition", *this, *this);
  if (rows_ == 0) {
    factor.resizeArray(0, 0);
    return true;
  }
  const std::size_t size = rows_;
  if (&factor != this) {
    factor.resizeArray(rows_, rows_);
    for (KtU32 i = 0; i < rows_; ++i) std::copy_n((*this)[i], std::size_t{i} + 1, factor[i]);
  }
  // The reciprocals stand, for the time being, in the first row behind its diagonal entry, a part
  // that the factorisation doesn't read.
  double* entries = factor.entries_.data();
  bool positive = true;
  std::size_t i = 0;
  for (; i + 4 <= size; i += 4) positive = factorRows<4>(entries, size, i, entries + 1) && positive;
  switch (size - i) {
    case 1:
      positive = factorRows<1>(entries, size, i, entries + 1) && positive;
      break;
    case 2:
      positive = factorRows<2>(entries, size, i, entries + 1) && positive;
      break;
    case 3:
      positive = factorRows<3>(entries, size, i, entries + 1) && positive;
      break;
    default:
      break;
  }
  for (KtU32 r = 0; r < rows_; ++r) std::fill(factor[r] + r + 1, factor[r] + size, 0.0);
  return positive;
}

bool KtReArray::isFactorFor(KtU32 rows, const char* operation) const {
  if (rows_ == columns_ && rows_ == rows) return true;
  Kt::Print::instance().write(Kt::Print::kError,
                              "KtReArray::%s: a factor of %u by %u, but %u equations\n", operation,
                              rows_, columns_, rows);
  return false;
}

// Solves L x = b in place.
void KtReArray::solveForward(KtReArray& x) const {
  const KtU32 count = x.columns_;
  if (count == 1) {
    double* column = x[0];
    std::size_t i = 0;
    for (; i + 4 <= rows_; i += 4) solveForwardRows<4>(*this, column, i);
    for (; i < rows_; ++i) solveForwardRows<1>(*this, column, i);
    return;
  }
  for (KtU32 i = 0; i < rows_; ++i) {
    double* row = x[i];
    addRows(row, count, -1.0, {(*this)[i], 1}, i, x[0], count);
    const double reciprocal = 1.0 / KtMath::nonZeroPos((*this)[i][i]);
    for (KtU32 j = 0; j < count; ++j) row[j] *= reciprocal;
  }
}

// Solves L^T x = b in place.
void KtReArray::solveBackward(KtReArray& x) const {
  const KtU32 count = x.columns_;
  if (count == 1) {
    double* column = x[0];
    KtU32 end = rows_;
    while (end > 0) {
      // Up to four unknowns from each other, then all above from these.
      const KtU32 begin = end - (end % 4 == 0 ? 4 : end % 4);
      for (KtU32 i = end; i-- > begin;) {
        for (KtU32 j = i + 1; j < end; ++j) column[i] -= (*this)[j][i] * column[j];
        column[i] /= KtMath::nonZeroPos((*this)[i][i]);
      }
      addRows(column, begin, -1.0, {column + begin, 1}, end - begin, (*this)[begin], columns_);
      end = begin;
    }
    return;
  }
  for (KtU32 i = rows_; i-- > 0;) {
    double* row = x[i];
    const KtU32 below = i + 1;
    if (below < rows_) {
      addRows(row, count, -1.0, {(*this)[below] + i, columns_}, rows_ - below, x[below], count);
    }
    const double reciprocal = 1.0 / KtMath::nonZeroPos((*this)[i][i]);
    for (KtU32 j = 0; j < count; ++j) row[j] *= reciprocal;
  }
}

bool KtReArray::choleskyBackSubstitution(const KtReArray& b, KtReArray& x) const {
  if (!isFactorFor(b.rows_, "choleskyBackSubstitution")) return false;
  if (&x == this) return KtReArray(*this).choleskyBackSubstitution(b, x);
  x = b;
  if (x.entries_.empty()) return true;
  solveForward(x);
  solveBackward(x);
  return true;
}

bool KtReArray::forwardSubstitution(const KtReArray& b, KtReArray& x) const {
  if (!isFactorFor(b.rows_, "forwardSubstitution")) return false;
  if (&x == this) return KtReArray(*this).forwardSubstitution(b, x);
  x = b;
  if (!x.entries_.empty()) solveForward(x);
  return true;
}

bool KtReArray::backwardSubstitution(const KtReArray& b, KtReArray& x) const {
  if (!isFactorFor(b.rows_, "backwardSubstitution")) return false;
  if (&x == this) return KtReArray(*this).backwardSubstitution(b, x);
  x = b;
  if (!x.entries_.empty()) solveBackward(x);
  return true;
}

bool KtReArray::choleskyBackSubstitutionOnTranspose(const KtReArray& a, KtReArray& x) const {
  if (!isFactorFor(a.columns_, "choleskyBackSubstitutionOnTranspose")) return false;
  if (&x == this) return KtReArray(*this).choleskyBackSubstitutionOnTranspose(a, x);
  a.transpose(x);
  if (x.entries_.empty()) return true;
  solveForward(x);
  solveBackward(x);
  return true;
}

bool KtReArray::forwardSubstitutionOnTranspose(const KtReArray& b, KtReArray& x) const {
  if (!isFactorFor(b.columns_, "forwardSubstitutionOnTranspose")) return false;
  if (&x == this) return KtReArray(*this).KtReArray::forwardSubstitutionOnTranspose(b, x);
  b.transpose(x);
  if (x.entries_.empty()) return true;
  solveForward(x);
  return true;
}

namespace {

// How `indices` is laid out; what the caller gets ends with the rank.
struct NullSpaceIndices {
  NullSpaceIndices(std::vector<unsigned int>& indices, unsigned int rows, unsigned int columns)
      : rowPivots(indices.data()),
        columnPivots(rowPivots + rows),
        rank(columnPivots + columns),
        begin(rank + 1),
        end(begin + rows) {}
  static std::size_t size(unsigned int rows, unsigned int columns) {
    return std::size_t{rows} + columns + 1;
  }

  unsigned int* rowPivots;
  unsigned int* columnPivots;
  unsigned int* rank;
  // Work space: where the entries of a row that may be non-zero begin and end.
  unsigned int* begin;
  unsigned int* end;
};

}  // namespace

bool KtReArray::nullSpace(KtReArray& n, unsigned int rows, std::vector<unsigned int>& indices) {
  return nullSpaceSparse(n, rows, indices, {}, {});
}

bool KtReArray::nullSpaceSparse(KtReArray& n, unsigned int rows, std::vector<unsigned int>& indices,
                                const std::vector<unsigned int>& sparsityIndices,
                                const std::vector<unsigned int>& zeroStart) {
  if (&indices == &sparsityIndices || &indices == &zeroStart) {
    std::vector<unsigned int> result;
    const bool ok = nullSpaceSparse(n, rows, result, sparsityIndices, zeroStart);
    indices.swap(result);
    return ok;
  }
  if (&n == this) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtReArray::nullSpace: the basis can't replace the array\n");
    indices.clear();
    return false;
  }
  if (rows > rows_) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtReArray::nullSpace: %u rows of an array of %u by %u\n", rows,
                                rows_, columns_);
    n.setToZeros(0, 0);
    indices.clear();
    return false;
  }
  indices.assign(NullSpaceIndices::size(rows, columns_) + 2 * std::size_t{rows}, 0);
  const NullSpaceIndices at(indices, rows, columns_);
  for (unsigned int i = 0; i < rows; ++i) {
    at.end[i] = i < zeroStart.size() ? std::min(zeroStart[i], columns_) : columns_;
    at.begin[i] = i < sparsityIndices.size() ? std::min(sparsityIndices[i], at.end[i]) : 0;
  }
  if (!factorJacobian(n, rows, indices)) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtReArray::nullSpace: the Jacobian is not finite\n");
    n.setToZeros(0, 0);
    indices.clear();
    return false;
  }
  nullSpaceOfFactor(n, rows, indices);
  indices.resize(NullSpaceIndices::size(rows, columns_));
  return true;
}

// P J Q = L U in place. Columns stay where they are until the end: so the non-zero entries of a row
// stay together, and a row is combined with another over the other's extent only.
bool KtReArray::factorJacobian(KtReArray& n, unsigned int rows,
                               std::vector<unsigned int>& indices) {
  const NullSpaceIndices at(indices, rows, columns_);
  const unsigned int steps = std::min(rows, columns_);
  // The basis isn't needed yet; its memory takes the columns of L, and one row.
  n.entries_.resize(std::size_t{rows} * steps + columns_);
  double* const lower = n.entries_.data();
  double* const spareRow = lower + std::size_t{rows} * steps;

  for (unsigned int i = 0; i < rows; ++i) {
    at.rowPivots[i] = i;
    const double* row = (*this)[i];
    for (unsigned int j = at.begin[i]; j < at.end[i]; ++j) {
      if (!std::isfinite(row[j])) return false;
    }
  }
  double least = 0.0;
  unsigned int rank = 0;
  for (; rank < steps; ++rank) {
    double largest = least;
    unsigned int pivotRow = rows;
    unsigned int pivotColumn = 0;
    for (unsigned int i = rank; i < rows; ++i) {
      const double* row = (*this)[i];
      for (unsigned int j = at.begin[i]; j < at.end[i]; ++j) {
        if (std::abs(row[j]) > largest) {
          largest = std::abs(row[j]);
          pivotRow = i;
          pivotColumn = j;
        }
      }
    }
    if (pivotRow == rows) break;
    if (rank == 0) least = 1e-12 * largest;
    at.columnPivots[rank] = pivotColumn;
    if (pivotRow != rank) {
      std::swap_ranges((*this)[rank], (*this)[rank] + columns_, (*this)[pivotRow]);
      std::swap_ranges(lower + std::size_t{rank} * steps, lower + std::size_t{rank} * steps + rank,
                       lower + std::size_t{pivotRow} * steps);
      std::swap(at.rowPivots[rank], at.rowPivots[pivotRow]);
      std::swap(at.begin[rank], at.begin[pivotRow]);
      std::swap(at.end[rank], at.end[pivotRow]);
    }
    const double* pivot = (*this)[rank];
    for (unsigned int i = rank + 1; i < rows; ++i) {
      double* row = (*this)[i];
      double& factor = lower[std::size_t{i} * steps + rank];
      factor = 0.0;
      if (pivotColumn < at.begin[i] || pivotColumn >= at.end[i] || row[pivotColumn] == 0.0) {
        continue;
      }
      factor = row[pivotColumn] / pivot[pivotColumn];
      for (unsigned int j = at.begin[rank]; j < at.end[rank]; ++j) row[j] -= factor * pivot[j];
      row[pivotColumn] = 0.0;
      at.begin[i] = std::min(at.begin[i], at.begin[rank]);
      at.end[i] = std::max(at.end[i], at.end[rank]);
    }
  }
  *at.rank = rank;

  // The columns without a pivot follow in order, those that are zero last.
  const auto isPivot = [&](unsigned int j) {
    return std::find(at.columnPivots, at.columnPivots + rank, j) != at.columnPivots + rank;
  };
  const auto isZero = [&](unsigned int j) {
    for (unsigned int i = 0; i < rank; ++i) {
      if ((*this)[i][j] != 0.0) return false;
    }
    return true;
  };
  unsigned int next = rank;
  for (const bool zero : {false, true}) {
    for (unsigned int j = 0; j < columns_; ++j) {
      if (!isPivot(j) && isZero(j) == zero) at.columnPivots[next++] = j;
    }
  }
  for (unsigned int i = 0; i < rows; ++i) {
    double* row = (*this)[i];
    std::copy_n(row, columns_, spareRow);
    const unsigned int multipliers = std::min(i, rank);
    std::copy_n(lower + std::size_t{i} * steps, multipliers, row);
    for (unsigned int j = multipliers; j < columns_; ++j) {
      row[j] = i < rank ? spareRow[at.columnPivots[j]] : 0.0;
    }
  }
  return true;
}

// The null space is the orthogonal complement of U's rows. Householder's reflections that turn
// them, one after the other, into the first coordinates turn the remaining coordinates into it; the
// result is accurate however close the pivots come to zero.
void KtReArray::nullSpaceOfFactor(KtReArray& n, unsigned int rows,
                                  std::vector<unsigned int>& indices) const {
  const NullSpaceIndices at(indices, rows, columns_);
  const unsigned int rank = *at.rank;
  const std::size_t size = columns_;
  const std::size_t nullity = size - rank;
  // Basis, normals of the reflections, one coordinate vector.
  n.entries_.assign(size * nullity + rank * size + size, 0.0);
  double* const basis = n.entries_.data();
  double* const normals = basis + size * nullity;
  double* const vector = normals + rank * size;
  const auto reflect = [size](const double* normal, unsigned int first, double* v) {
    double product = 0.0;
    for (std::size_t j = first; j < size; ++j) product += normal[j] * v[j];
    for (std::size_t j = first; j < size; ++j) v[j] -= product * normal[j];
  };
  for (unsigned int i = 0; i < rank; ++i) {
    std::copy_n((*this)[i] + i, size - i, normals + i * size + i);
  }
  for (unsigned int i = 0; i < rank; ++i) {
    double* normal = normals + i * size;
    double largest = 0.0;
    for (std::size_t j = i; j < size; ++j) largest = std::max(largest, std::abs(normal[j]));
    if (largest == 0.0) continue;
    // Scaled to a squared length of 2, so that a reflection needs no further factor.
    double squared = 0.0;
    for (std::size_t j = i; j < size; ++j) {
      normal[j] /= largest;
      squared += normal[j] * normal[j];
    }
    const double length = std::sqrt(squared);
    normal[i] += normal[i] < 0.0 ? -length : length;
    const double scale = 1.0 / std::sqrt(length * std::abs(normal[i]));
    for (std::size_t j = i; j < size; ++j) normal[j] *= scale;
    for (unsigned int next = i + 1; next < rank; ++next) reflect(normal, i, normals + next * size);
  }
  for (std::size_t k = 0; k < nullity; ++k) {
    std::fill_n(vector, size, 0.0);
    vector[rank + k] = 1.0;
    for (unsigned int i = rank; i-- > 0;) reflect(normals + i * size, i, vector);
    for (std::size_t j = 0; j < size; ++j) basis[at.columnPivots[j] * nullity + k] = vector[j];
  }
  n.entries_.resize(size * nullity);
  n.rows_ = columns_;
  n.columns_ = static_cast<KtU32>(nullity);
}
