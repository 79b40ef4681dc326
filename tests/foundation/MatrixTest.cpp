#include <Eigen/Dense>

#include "support/Testing.h"

namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Dense = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using Operation = bool (KtReArray::*)(const KtReArray&, KtReArray&) const;

Eigen::Map<const Dense> view(const KtReArray& a) {
  return {a[0], a.rows(), a.columns()};
}
KtReArray arrayOf(const Dense& entries) {
  KtReArray a(static_cast<KtU32>(entries.rows()), static_cast<KtU32>(entries.cols()));
  std::copy_n(entries.data(), entries.size(), a[0]);
  return a;
}
KtReArray randomArray(KtU32 rows, KtU32 columns) {
  return arrayOf(Dense::NullaryExpr(rows, columns, [] { return uniform(); }));
}
// Symmetric, with eigenvalues of at least 1.
KtReArray randomPositive(KtU32 n) {
  const KtReArray a = randomArray(n, n);
  return arrayOf(view(a) * view(a).transpose() + Dense::Identity(n, n));
}
// Largest difference of two entries; NaN for different shapes and if there is a NaN.
double gap(const Dense& a, const Dense& b) {
  if (a.rows() != b.rows() || a.cols() != b.cols() || a.hasNaN() || b.hasNaN()) return kNaN;
  return a.size() == 0 ? 0.0 : (a - b).cwiseAbs().maxCoeff();
}
double largest(const Dense& a) {
  return gap(a, Dense::Zero(a.rows(), a.cols()));
}

// The result of an operation, which may replace either argument.
KtReArray result(Operation run, const KtReArray& a, const KtReArray& b) {
  KtReArray out(3, 3), self = a, other = b;
  EXPECT_TRUE((a.*run)(b, out));
  EXPECT_TRUE((self.*run)(b, self));
  EXPECT_TRUE((a.*run)(other, other));
  EXPECT_EQ(self, out);
  EXPECT_EQ(other, out);
  return out;
}

TEST(ReArray, ProductsAgreeWithEigenAtAllShapes) {
  for (KtU32 rows = 0; rows <= 9; ++rows) {
    for (const KtU32 inner : {0U, 1U, 2U, 3U, 4U, 6U, 9U}) {
      for (const KtU32 columns : {0U, 1U, 2U, 5U, 8U}) {
        SCOPED_TRACE(testing::Message() << rows << " " << inner << " " << columns);
        const KtReArray a = randomArray(rows, inner), b = randomArray(inner, columns);
        const Dense expected = view(a) * view(b);
        const KtReArray product = result(&KtReArray::transform, a, b);
        EXPECT_LE(gap(view(product), expected), 10 * kEpsilon);
        EXPECT_EQ(a * b, product);
        KtReArray turned = a;
        turned.transpose(turned);
        EXPECT_EQ(gap(view(turned), view(a).transpose()), 0.0);
        EXPECT_EQ(a.transpose(), turned);
        const KtReArray left = result(&KtReArray::leftTransposeTransform, turned, b);
        EXPECT_LE(gap(view(left), expected), 10 * kEpsilon);
        KtReArray normal, self = a;
        a.overconstrainedNormal(normal);
        self.overconstrainedNormal(self);
        EXPECT_EQ(self, normal);
        EXPECT_LE(gap(view(normal), view(a).transpose() * view(a)), 10 * kEpsilon);
        EXPECT_EQ(normal, normal.transpose());
        const std::vector<double> sums = a * std::vector<double>(inner, 1.0);
        ASSERT_EQ(sums.size(), rows);
        for (KtU32 i = 0; i < rows; ++i) {
          EXPECT_NEAR(sums[i], view(a).row(i).sum(), 10 * kEpsilon);
        }
      }
    }
  }
}

TEST(ReArray, FactorAndSolversInvertAPositiveMatrix) {
  for (KtU32 n = 1; n <= 23; ++n) {
    SCOPED_TRACE(n);
    const KtReArray s = randomPositive(n);
    KtReArray array = s;
    KtReArray l(n, n);
    for (KtU32 i = 0; i < n; ++i) {
      std::fill(l[i], l[i] + n, kNaN);                  // must not shine through
      std::fill(array[i] + i + 1, array[i] + n, kNaN);  // not looked at
    }
    EXPECT_TRUE(array.choleskyDecomposition(l));
    const double tolerance = 10 * kEpsilon * n * n;
    EXPECT_LE(gap(view(l) * view(l).transpose(), view(s)), tolerance);
    EXPECT_TRUE(view(l).isLowerTriangular(0.0));
    EXPECT_TRUE(array.choleskyDecomposition(array));
    EXPECT_EQ(array, l) << "in place";
    for (const KtU32 columns : {0U, 1U, 2U, 6U}) {
      const KtReArray b = randomArray(n, columns), bT = b.transpose();
      const struct {
        Operation solve;
        KtReArray given;
        Dense matrix;
      } rows[] = {{&KtReArray::choleskyBackSubstitution, b, view(s)},
                  {&KtReArray::forwardSubstitution, b, view(l)},
                  {&KtReArray::backwardSubstitution, b, view(l).transpose()},
                  {&KtReArray::choleskyBackSubstitutionOnTranspose, bT, view(s)},
                  {&KtReArray::forwardSubstitutionOnTranspose, bT, view(l)}};
      for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const KtReArray x = result(row.solve, l, row.given);
        EXPECT_LE(gap(row.matrix * view(x), view(b)), 100 * tolerance);
      }
    }
  }
}

// Equations that repeat each other, as closed loops bring them, are solved with moderate numbers.
TEST(ReArray, SingularAndIndefiniteMatricesGiveFiniteNumbers) {
  for (KtU32 n = 1; n <= 12; ++n) {
    Dense a = view(randomArray(n, n));
    a.row(n - 1) = a.row(0) * (n > 1 ? 2.0 : 0.0);
    const KtReArray twice = arrayOf(a * a.transpose());
    const KtReArray b = arrayOf(view(twice) * view(randomArray(n, 1)));
    KtReArray factor, solution;
    EXPECT_FALSE(twice.choleskyDecomposition(factor));
    ASSERT_TRUE(factor.choleskyBackSubstitution(b, solution));
    EXPECT_LE(gap(view(twice) * view(solution), view(b)), 1e-9);
    EXPECT_LT(largest(view(solution)), 1e6);
    KtReArray s = randomArray(n, n);
    s += s.transpose();
    s[0][0] = -1.0;
    for (const KtReArray& matrix : {s, KtReArray(n, n)}) {
      KtReArray l, x;
      EXPECT_FALSE(matrix.choleskyDecomposition(l));
      EXPECT_LT(largest(view(l)), 1e150);
      l.choleskyBackSubstitution(randomArray(n, 1), x);
      EXPECT_TRUE(view(x).allFinite());
    }
  }
}

TEST(ReArray, NullSpaceIsCompleteAndOrthonormalAndTheFactorIsJs) {
  const auto upTo = [](KtU32 n) { return static_cast<KtU32>(generator()() % n); };
  for (int trial = 0; trial < 400; ++trial) {
    SCOPED_TRACE(trial);
    const KtU32 rows = 1 + upTo(8), columns = 1 + upTo(8), k = std::max(rows, columns);
    // Every other Jacobian has a pattern: a staircase, so that the rank is known.
    const bool sparse = trial % 2 == 1;
    const KtU32 rank = sparse ? std::min(rows, columns) : upTo(std::min(rows, columns) + 1);
    std::vector<unsigned> begin(sparse ? rows : 0), end(begin);
    Dense j = Dense::Zero(rows, k);  // padded
    j.leftCols(columns) = view(randomArray(rows, rank)) * view(randomArray(rank, columns));
    for (KtU32 i = 0; i < begin.size(); ++i) {
      begin[i] = i;
      end[i] = i + 1 + upTo(3);
      for (KtU32 m = 0; m < k; ++m) {
        j(i, m) = m >= i && m < end[i] && m < columns ? uniform(1.0, 2.0) : 0.0;
      }
    }
    KtReArray work = arrayOf(Dense::Constant(k, k, kNaN));  // rows below are not looked at
    work.copyEntriesOf(arrayOf(j));
    EXPECT_TRUE(rows == k || std::isnan(work[rows][0]));
    KtReArray sparseWork = work;
    KtReArray basis, sparseBasis;
    std::vector<unsigned> indices, sparseIndices;
    ASSERT_TRUE(work.nullSpace(basis, rows, indices));
    ASSERT_EQ(indices.size(), rows + k + 1);
    EXPECT_EQ(indices.back(), rank);
    ASSERT_EQ(basis.rows(), k);
    ASSERT_EQ(basis.columns(), k - rank);
    const auto n = view(basis);
    EXPECT_LE(largest(j * n), 1e-13);
    EXPECT_LE(gap(n.transpose() * n, Dense::Identity(k - rank, k - rank)), 1e-13);
    const Dense factor = view(work).topRows(rows);
    const Dense l = factor.leftCols(rows).triangularView<Eigen::UnitLower>();
    const Dense u = factor.triangularView<Eigen::Upper>();
    const auto columnPivots = indices.begin() + rows;
    const Dense permuted =
        j(std::vector(indices.begin(), columnPivots), std::vector(columnPivots, columnPivots + k));
    EXPECT_LE(gap(l * u, permuted), 1e-11);
    ASSERT_TRUE(sparseWork.nullSpaceSparse(sparseBasis, rows, sparseIndices, begin, end));
    EXPECT_EQ(sparseBasis, basis);
    EXPECT_EQ(sparseIndices, indices);
    EXPECT_EQ(gap(view(sparseWork).topRows(rows), factor), 0.0);
  }
}

TEST(ReArray, MisfitsAreReportedAndChangeNothing) {
  const KtReArray a = randomArray(2, 3), b = randomArray(2, 2);
  KtReArray infinite(2, 2);
  infinite[1][1] = std::numeric_limits<double>::infinity();
  std::vector<unsigned> indices(3);
  using Runs = std::vector<std::function<void(KtReArray&)>>;
  const Runs unchanged = {
      [&](auto& out) { EXPECT_FALSE(a.transform(a, out)); },
      [&](auto& out) { EXPECT_FALSE(a.leftTransposeTransform(KtReArray(3, 1), out)); },
      [&](auto& out) { EXPECT_FALSE(a.choleskyDecomposition(out)); },
      [&](auto& out) { EXPECT_FALSE(b.choleskyBackSubstitution(KtReArray(3, 1), out)); },
      [&](auto& out) { EXPECT_FALSE(b.choleskyBackSubstitutionOnTranspose(a, out)); },
      [&](auto& out) { EXPECT_FALSE(b.forwardSubstitutionOnTranspose(a, out)); },
      [&](auto& out) { EXPECT_FALSE(out.copyEntriesOf(KtReArray(1, 5))); },
      [&](auto& out) { out += b; },
      [&](auto& out) { EXPECT_FALSE(out.nullSpace(out, 2, indices)); }};
  const Runs empty = {
      [&](auto& out) { out = a * a; },
      [&](auto& out) {
        out.resizeArray(static_cast<KtU32>((a * std::vector<double>(2)).size()), 0);
      },
      [&](auto& out) { EXPECT_FALSE(KtReArray(a).nullSpace(out, 3, indices)); },
      [&](auto& out) { EXPECT_FALSE(KtReArray(infinite).nullSpace(out, 2, indices)); },
      [&](auto& out) { out.resizeArray(4294967295U, 4294967295U); }};
  const KtReArray before = randomArray(4, 4);
  for (const auto& [runs, expected] :
       {std::pair{unchanged, before}, std::pair{empty, KtReArray()}}) {
    for (std::size_t i = 0; i < runs.size(); ++i) {
      SCOPED_TRACE(i);
      KtLogCapture log;
      KtReArray out = before;
      runs[i](out);
      EXPECT_EQ(out, expected);
      ASSERT_EQ(log.messages().size(), 1U);
      EXPECT_EQ(log.messages()[0].type, Kt::Print::kError);
    }
  }
}

TEST(ReArray, WorkArraysAskForMemoryOnlyOnce) {
  const KtU32 n = 13;
  const KtReArray s = randomPositive(n), j = randomArray(6, n);
  KtReArray l, x, y, z, w, basis;
  std::vector<unsigned> indices;
  const auto step = [&] {
    s.choleskyDecomposition(l);
    l.choleskyBackSubstitutionOnTranspose(j, x);
    j.transform(x, y);
    l.forwardSubstitutionOnTranspose(j, z);
    j.overconstrainedNormal(w);
    w -= s;
    w.setToZeros(n, n);
    w.resizeArray(6, n);
    w.resizeArray(n, n);
    w.copyEntriesOf(j);
    w.nullSpace(basis, 6, indices);
    w = s;
  };
  step();
  const Allocations allocations;
  step();
  EXPECT_EQ(allocations.count(), 0U);
}

TEST(SpatialMatrix, FactorAndInverseOfPositiveMatrices) {
  for (int trial = 0; trial < 20; ++trial) {
    const KtSpatialMatrix a(randomVector(), randomVector(), randomVector());
    const KtSpatialMatrix s = a * a.transpose() + KtSpatialMatrix(1, 0, 0, 0, 1, 0, 0, 0, 1) * 0.1;
    KtSpatialMatrix l = s;
    EXPECT_TRUE(l.choleskyDecomposition(l));
    EXPECT_TRUE(l[0][1] == 0.0 && l[0][2] == 0.0 && l[1][2] == 0.0);
    KtSpatialMatrix inverse = s;
    EXPECT_TRUE(inverse.getSymmetricPositiveDefiniteInverse(inverse));
    const KtVector v = randomVector();
    EXPECT_TRUE((l * l.transpose() * v).approxEq(s * v, 1e-14));
    EXPECT_TRUE((inverse * (s * v)).approxEq(v, 1e-12));
    EXPECT_TRUE((inverse.transpose() * v).approxEq(inverse * v, 0.0));
  }
  for (const KtSpatialMatrix& s : {KtSpatialMatrix(), KtSpatialMatrix(1, 1, 1, 1, 1, 1, 1, 1, 1),
                                   KtSpatialMatrix(-1, 2, 3, 2, -1, 4, 3, 4, -5),
                                   KtSpatialMatrix(1, 5, 0, 5, 1, 0, 0, 0, 1)}) {
    KtSpatialMatrix inverse;
    EXPECT_FALSE(s.getSymmetricPositiveDefiniteInverse(inverse));
    for (KtU32 i = 0; i < 9; ++i) EXPECT_TRUE(std::isfinite(inverse[i / 3][i % 3]));
    EXPECT_GT(std::abs(inverse[0][0]) + inverse[1][1] + inverse[2][2], 1e10);
  }
}

// Inertia of a body about its centre of mass: a handful of particles, as flat or thin as asked.
KtSecondMoment cloud(double y = 1.0, double z = 1.0, int count = 5) {
  KtSecondMoment j;
  std::vector<KtVector> points(static_cast<std::size_t>(count));
  KtVector center;
  for (KtVector& p : points) {
    p = {uniform(), y * uniform(), z * uniform()};
    center += p / count;
  }
  for (const KtVector& p : points) {
    const KtVector d = p - center;
    j += {d.y * d.y + d.z * d.z,
          d.x * d.x + d.z * d.z,
          d.x * d.x + d.y * d.y,
          -d.x * d.y,
          -d.x * d.z,
          -d.y * d.z};
  }
  return j;
}
double pairing(const KtSecondMoment& a, const KtSecondMoment& b) {
  return a.jxx() * b.jxx() + a.jyy() * b.jyy() + a.jzz() * b.jzz() +
         2.0 * (a.jxy() * b.jxy() + a.jxz() * b.jxz() + a.jyz() * b.jyz());
}

TEST(SecondMoment, BodiesAreValidAndImpossibleOnesAreNot) {
  const double big = 1e300;
  for (const auto& [j, valid] :
       {std::pair{KtSecondMoment(1, 1, 1.999, 0, 0, 0), true},
        std::pair{KtSecondMoment(1, 1, 2.00001, 0, 0, 0), false},
        std::pair{KtSecondMoment(1, 1, 1e-12, 0, 0, 0), true},
        std::pair{KtSecondMoment(1, 1, 0, 0, 0, 0), false}, std::pair{KtSecondMoment(), false},
        std::pair{KtSecondMoment(-1, -1, -1, 0, 0, 0), false},
        std::pair{KtSecondMoment(1, 1, 1, 0, 0.6, 0), false},
        std::pair{KtSecondMoment(1, 1, 1, 0, 1.1, 0), false},
        std::pair{KtSecondMoment(1, 1, 1, kNaN, 0, 0), false},
        std::pair{KtSecondMoment(1, big * big, 1, 0, 0, 0), false}}) {
    KtSecondMoment repaired = j;
    EXPECT_EQ(j.isValid(), valid) << j.jxx() << " " << j.jzz() << " " << j.jxz();
    repaired.makeValid();
    EXPECT_TRUE(repaired.isValid());
    EXPECT_TRUE(!valid || repaired == j);
  }
}

// The valid tensors form a convex cone, so the nearest valid one is known by this: seen from it,
// no valid tensor lies on the side of the original.
TEST(SecondMoment, RepairIsTheNearestValidTensor) {
  for (int trial = 0; trial < 300; ++trial) {
    KtSecondMoment j(uniform(-1, 3), uniform(-1, 3), uniform(-1, 3), uniform(), uniform(),
                     uniform());
    if (trial % 3 == 0) j = KtSecondMoment(uniform(), uniform(), uniform(), 0, 0, 0);
    KtSecondMoment repaired = j;
    repaired.makeValid();
    ASSERT_TRUE(repaired.isValid());
    for (int k = 0; k < 20; ++k) {
      const KtSecondMoment other = cloud(uniform(0, 1), uniform(0, 1), 4);
      EXPECT_LE(pairing(j - repaired, other - repaired), 1e-7);
    }
    KtSecondMoment again = repaired;
    again.makeValid();
    EXPECT_EQ(again, repaired);
  }
}

}  // namespace
