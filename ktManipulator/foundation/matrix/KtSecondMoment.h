#pragma once

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtMath.h"
#include "ktManipulator/foundation/geometry/KtOrientation.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/matrix/KtSpatialMatrix.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A symmetric 3 by 3 tensor, held and written as six numbers: jxx, jyy, jzz, jxy, jxz, jyz.
///
/// As an inertia tensor its unit is kg m^2, and the products are the tensor's off-diagonal entries:
/// jxy is minus the sum of m x y.
class KT_EXPORT KtSecondMoment : public KtXmlPersistent<KtSecondMoment> {
 public:
  /// Zero.
  KtSecondMoment() noexcept = default;
  /// From its six numbers.
  KtSecondMoment(double jxx, double jyy, double jzz, double jxy, double jxz, double jyz) noexcept
      : j_{jxx, jyy, jzz, jxy, jxz, jyz} {}

  bool read(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;
  void writeSchema(KtXmlSchema& schema) const override;

  /// On the diagonal, x.
  virtual double jxx() const { return j_[0]; }
  /// On the diagonal, y.
  virtual double jyy() const { return j_[1]; }
  /// On the diagonal, z.
  virtual double jzz() const { return j_[2]; }
  /// The orientation R in which the tensor is diagonal: R^T this R has no products, and the images
  /// of the unit vectors under R are the principal axes. A tensor without products gives the
  /// identity, as does one with an entry that is not finite.
  virtual void principalOrientation(KtOrientation& r) const;
  /// Whether none of the six numbers differs by more than the tolerance.
  virtual bool approxEq(const KtSecondMoment& other, double tolerance) const;

  /// Off the diagonal, x and y.
  double jxy() const noexcept { return j_[3]; }
  /// Off the diagonal, x and z.
  double jxz() const noexcept { return j_[4]; }
  /// Off the diagonal, y and z.
  double jyz() const noexcept { return j_[5]; }
  /// The six numbers, without a virtual call.
  const double* values() const noexcept { return j_; }
  /// Sets the six numbers.
  void set(double jxx, double jyy, double jzz, double jxy, double jxz, double jyz) noexcept {
    j_[0] = jxx, j_[1] = jyy, j_[2] = jzz;
    j_[3] = jxy, j_[4] = jxz, j_[5] = jyz;
  }

  /// Tensor times vector.
  KtVector operator*(const KtVector& v) const noexcept {
    return {j_[0] * v.x + j_[3] * v.y + j_[4] * v.z, j_[3] * v.x + j_[1] * v.y + j_[5] * v.z,
            j_[4] * v.x + j_[5] * v.y + j_[2] * v.z};
  }
  /// Sum.
  KtSecondMoment operator+(const KtSecondMoment& b) const noexcept {
    return KtSecondMoment(*this) += b;
  }
  /// Difference.
  KtSecondMoment operator-(const KtSecondMoment& b) const noexcept {
    return KtSecondMoment(*this) -= b;
  }
  /// Product.
  KtSecondMoment operator*(double s) const noexcept { return KtSecondMoment(*this) *= s; }
  /// In-place sum.
  KtSecondMoment& operator+=(const KtSecondMoment& b) noexcept {
    for (int i = 0; i < 6; ++i) j_[i] += b.j_[i];
    return *this;
  }
  /// In-place difference.
  KtSecondMoment& operator-=(const KtSecondMoment& b) noexcept {
    for (int i = 0; i < 6; ++i) j_[i] -= b.j_[i];
    return *this;
  }
  /// In-place product.
  KtSecondMoment& operator*=(double s) noexcept {
    for (double& x : j_) x *= s;
    return *this;
  }
  /// Exact equality of the six numbers.
  bool operator==(const KtSecondMoment&) const noexcept = default;

  /// The tensor as a matrix.
  KtSpatialMatrix spatialMatrix() const noexcept {
    return {j_[0], j_[3], j_[4], j_[3], j_[1], j_[5], j_[4], j_[5], j_[2]};
  }
  /// From a symmetric matrix; of one that is not quite symmetric, its symmetric part.
  void setFromSpatialMatrix(const KtSpatialMatrix& m) noexcept {
    set(m[0][0], m[1][1], m[2][2], 0.5 * (m[0][1] + m[1][0]), 0.5 * (m[0][2] + m[2][0]),
        0.5 * (m[1][2] + m[2][1]));
  }
  /// this = R this R^T.
  void transformBy(const KtOrientation& r) noexcept {
    // Entry (i, k) of R J R^T is row i of R times J times row k of R, and the rows of R are the
    // images of the unit vectors under its inverse.
    const KtOrientation inverse = r.inverse();
    const KtVector x = inverse.xAxis();
    const KtVector y = inverse.yAxis();
    const KtVector z = inverse.zAxis();
    const KtVector jx = *this * x;
    const KtVector jy = *this * y;
    const KtVector jz = *this * z;
    set(x.dot(jx), y.dot(jy), z.dot(jz), x.dot(jy), x.dot(jz), y.dot(jz));
  }

  /// Whether the tensor can be the inertia of a body about its centre of mass: finite, with
  /// positive eigenvalues of which none is greater than the sum of the other two.
  ///
  /// Both are judged relative to the largest eigenvalue: the least has to be at least 1e-15 times
  /// as large, which is where rounding ends, and the sum may be short by 1e-9 times as much, so
  /// that a flat body passes. A tensor with no entry beyond 1e-250 counts as zero, one with an
  /// entry beyond 1e250 as not finite.
  bool isValid() const noexcept;
  /// Changes a tensor that is not valid into a near one that is. The principal axes stay.
  ///
  /// Of the triples of eigenvalues that keep the triangle rule the nearest is taken; then one that
  /// is less than 1e-9 times the largest is raised to that. A tensor that has thus no positive
  /// eigenvalue, or is not finite, becomes 1e-9 kg m^2 about every axis: a link without mass of its
  /// own keeps an inertia that can be inverted, far below what matters beside other links.
  void makeValid() noexcept;

  static const KtToken& classToken() { return KtFoundCommon::KtSecondMomentToken; }

 private:
  double j_[6] = {};
};
