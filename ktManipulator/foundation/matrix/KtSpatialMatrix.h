#pragma once

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/geometry/KtOrientation.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A 3 by 3 matrix of reals, by rows. In a file it is the text of its nine entries, row by row.
class KT_EXPORT KtSpatialMatrix : public KtXmlPersistent<KtSpatialMatrix> {
 public:
  /// Zeros.
  KtSpatialMatrix() noexcept = default;
  /// From its rows.
  KtSpatialMatrix(const KtVector& row0, const KtVector& row1, const KtVector& row2) noexcept
      : KtSpatialMatrix(row0.x, row0.y, row0.z, row1.x, row1.y, row1.z, row2.x, row2.y, row2.z) {}
  /// From its entries, by rows.
  KtSpatialMatrix(double a00, double a01, double a02, double a10, double a11, double a12,
                  double a20, double a21, double a22) noexcept
      : m_{{a00, a01, a02}, {a10, a11, a12}, {a20, a21, a22}} {}

  bool read(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;
  void writeSchema(KtXmlSchema& schema) const override;

  /// Row i, its three entries one behind the other; unguarded.
  const double* operator[](KtU32 i) const noexcept { return m_[i]; }
  /// Row i, to be changed.
  double* operator[](KtU32 i) noexcept { return m_[i]; }
  /// The first row.
  KtVector row0() const noexcept { return {m_[0][0], m_[0][1], m_[0][2]}; }
  /// The second row.
  KtVector row1() const noexcept { return {m_[1][0], m_[1][1], m_[1][2]}; }
  /// The third row.
  KtVector row2() const noexcept { return {m_[2][0], m_[2][1], m_[2][2]}; }
  void setRow0(const KtVector& v) noexcept { setRow(0, v); }
  void setRow1(const KtVector& v) noexcept { setRow(1, v); }
  void setRow2(const KtVector& v) noexcept { setRow(2, v); }

  /// Matrix product.
  KtSpatialMatrix operator*(const KtSpatialMatrix& b) const noexcept {
    KtSpatialMatrix product;
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        product.m_[i][j] = m_[i][0] * b.m_[0][j] + m_[i][1] * b.m_[1][j] + m_[i][2] * b.m_[2][j];
      }
    }
    return product;
  }
  /// Matrix times column.
  KtVector operator*(const KtVector& v) const noexcept {
    return {m_[0][0] * v.x + m_[0][1] * v.y + m_[0][2] * v.z,
            m_[1][0] * v.x + m_[1][1] * v.y + m_[1][2] * v.z,
            m_[2][0] * v.x + m_[2][1] * v.y + m_[2][2] * v.z};
  }
  /// Product.
  KtSpatialMatrix operator*(double s) const noexcept { return KtSpatialMatrix(*this) *= s; }
  /// Sum.
  KtSpatialMatrix operator+(const KtSpatialMatrix& b) const noexcept {
    return KtSpatialMatrix(*this) += b;
  }
  /// Difference.
  KtSpatialMatrix operator-(const KtSpatialMatrix& b) const noexcept {
    return KtSpatialMatrix(*this) -= b;
  }
  /// In-place product.
  KtSpatialMatrix& operator*=(double s) noexcept {
    for (auto& row : m_) {
      for (double& x : row) x *= s;
    }
    return *this;
  }
  /// In-place sum.
  KtSpatialMatrix& operator+=(const KtSpatialMatrix& b) noexcept {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) m_[i][j] += b.m_[i][j];
    }
    return *this;
  }
  /// In-place difference.
  KtSpatialMatrix& operator-=(const KtSpatialMatrix& b) noexcept {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) m_[i][j] -= b.m_[i][j];
    }
    return *this;
  }
  /// Exact equality of the entries.
  bool operator==(const KtSpatialMatrix&) const noexcept = default;

  /// The transposed matrix.
  KtSpatialMatrix transpose() const noexcept {
    return {m_[0][0], m_[1][0], m_[2][0], m_[0][1], m_[1][1],
            m_[2][1], m_[0][2], m_[1][2], m_[2][2]};
  }

  /// (v x): the matrix C with C u = v x u.
  static KtSpatialMatrix crossProductMatrix(const KtVector& v) noexcept {
    return {0.0, -v.z, v.y, v.z, 0.0, -v.x, -v.y, v.x, 0.0};
  }
  /// this = (v x).
  void setToCrossProductMatrix(const KtVector& v) noexcept {
    // In place: a copy of a matrix just written, entry by entry, waits for the entries.
    m_[0][0] = 0.0, m_[0][1] = -v.z, m_[0][2] = v.y;
    m_[1][0] = v.z, m_[1][1] = 0.0, m_[1][2] = -v.x;
    m_[2][0] = -v.y, m_[2][1] = v.x, m_[2][2] = 0.0;
  }
  /// this = (v x) this: each column becomes v x column.
  void multiplyOnLeftByCrossProductMatrix(const KtVector& v) noexcept {
    for (int j = 0; j < 3; ++j) {
      const KtVector column = v.cross({m_[0][j], m_[1][j], m_[2][j]});
      m_[0][j] = column.x, m_[1][j] = column.y, m_[2][j] = column.z;
    }
  }
  /// this = this (v x): each row becomes row x v.
  void multiplyOnRightByCrossProductMatrix(const KtVector& v) noexcept {
    setRow(0, row0().cross(v));
    setRow(1, row1().cross(v));
    setRow(2, row2().cross(v));
  }

  /// this = the direction cosine matrix of R: its columns are the images of the unit vectors.
  void setToDcm(const KtOrientation& r) noexcept {
    const KtVector x = r.xAxis();
    const KtVector y = r.yAxis();
    const KtVector z = r.zAxis();
    *this = {x.x, y.x, z.x, x.y, y.y, z.y, x.z, y.z, z.z};
  }
  /// this = R this R^T.
  void transformBy(const KtOrientation& r) noexcept {
    KtSpatialMatrix dcm;
    dcm.setToDcm(r);
    *this = dcm * *this * dcm.transpose();
  }

  /// The lower triangular L with L L^T = this, for a symmetric positive definite matrix; its strict
  /// upper triangle is not read. L may be this matrix.
  ///
  /// A pivot that is lost in rounding (not above 3 eps times its diagonal entry) or not positive is
  /// raised to that bound, or to 1e-300 if the bound is less, and the column below it is zero: no
  /// factor contains infinities or NaN unless this does.
  ///
  /// @return whether no pivot had to be raised
  bool choleskyDecomposition(KtSpatialMatrix& factor) const noexcept;
  /// The inverse of a symmetric positive definite matrix, by its factor; so a singular matrix gives
  /// large, finite entries. `out` may be this matrix.
  ///
  /// @return whether no pivot had to be raised
  bool getSymmetricPositiveDefiniteInverse(KtSpatialMatrix& out) const noexcept;

  static const KtToken& classToken() { return KtFoundCommon::KtSpatialMatrixToken; }

 private:
  void setRow(int i, const KtVector& v) noexcept { m_[i][0] = v.x, m_[i][1] = v.y, m_[i][2] = v.z; }

  double m_[3][3] = {};
};
