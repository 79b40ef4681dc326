#include "ktManipulator/inertia/KtArticulatedBodyInertia.h"

#include <cmath>
#include <limits>

#include "ktManipulator/foundation/core/KtMath.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"
#include "ktManipulator/inertia/KtRigidBodyMassProperties.h"

namespace {

KtVector transposedProduct(const KtSpatialMatrix& m, const KtVector& v) noexcept {
  return {m[0][0] * v.x + m[1][0] * v.y + m[2][0] * v.z,
          m[0][1] * v.x + m[1][1] * v.y + m[2][1] * v.z,
          m[0][2] * v.x + m[1][2] * v.y + m[2][2] * v.z};
}

// J - u v^T, of which the caller knows that it is symmetric.
void subtractProduct(KtSecondMoment& j, const KtVector& u, const KtVector& v) noexcept {
  const double* x = j.values();
  j.set(x[0] - u.x * v.x, x[1] - u.y * v.y, x[2] - u.z * v.z, x[3] - u.x * v.y, x[4] - u.x * v.z,
        x[5] - u.y * v.z);
}

void subtractProduct(KtSpatialMatrix& m, const KtVector& u, const KtVector& v) noexcept {
  const double column[3] = {u.x, u.y, u.z};
  const double row[3] = {v.x, v.y, v.z};
  for (KtU32 i = 0; i < 3; ++i) {
    for (KtU32 j = 0; j < 3; ++j) m[i][j] -= column[i] * row[j];
  }
}

bool allApproxEq(const double* x, const double* y, int count, double tolerance) {
  for (int i = 0; i < count; ++i) {
    if (!KtMath::approxEq(x[i], y[i], tolerance)) return false;
  }
  return true;
}

}  // namespace

void KtArticulatedBodyInertia::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtLinearMatrixToken, &linear_);
  registerComponent(KtManip::KtAngularMatrixToken, &angular_);
  registerComponent(KtManip::KtCrossMatrixToken, &cross_);
  registerComponent(KtManip::KtIsRigidToken, &isRigid_);
}

void KtArticulatedBodyInertia::transformBy(const KtCoordinateSystemTransformation& t) {
  switch (t.mode()) {
    case KtCoordinateSystemTransformation::kGeneral:
      rotateBlocks(t.orientation());
      translateBlocks(t.translation());
      break;
    case KtCoordinateSystemTransformation::kPureRotation:
      rotateBlocks(t.orientation());
      break;
    case KtCoordinateSystemTransformation::kPureTranslation:
      translateBlocks(t.translation());
      break;
    default:
      break;
  }
}

void KtArticulatedBodyInertia::transformBy(const KtOrientation& r) {
  rotateBlocks(r);
}

void KtArticulatedBodyInertia::transformBy(const KtVector& p) {
  translateBlocks(p);
}

void KtArticulatedBodyInertia::rotateBlocks(const KtOrientation& r) noexcept {
  if (isRigid_) {
    angular_.transformBy(r);
    KtVector minusFirstMoment(cross_[2][1], cross_[0][2], cross_[1][0]);
    r.transform(minusFirstMoment);
    cross_.setToCrossProductMatrix(minusFirstMoment);
    return;
  }
  linear_.transformBy(r);
  angular_.transformBy(r);
  cross_.transformBy(r);
}

// With P the cross-product matrix of p: X' = X - L P, and A' = A + P X + (P X)^T - P L P, which is
// A + P X - X'^T P and so, as A' is symmetric, A + P X + (P X')^T.
void KtArticulatedBodyInertia::translateBlocks(const KtVector& p) noexcept {
  KtSpatialMatrix px = cross_;
  px.multiplyOnLeftByCrossProductMatrix(p);
  KtSpatialMatrix lp = linear_.spatialMatrix();
  lp.multiplyOnRightByCrossProductMatrix(p);
  cross_ -= lp;
  KtSpatialMatrix pxNew = cross_;
  pxNew.multiplyOnLeftByCrossProductMatrix(p);
  const double* a = angular_.values();
  angular_.set(a[0] + px[0][0] + pxNew[0][0], a[1] + px[1][1] + pxNew[1][1],
               a[2] + px[2][2] + pxNew[2][2], a[3] + px[0][1] + pxNew[1][0],
               a[4] + px[0][2] + pxNew[2][0], a[5] + px[1][2] + pxNew[2][1]);
}

void KtArticulatedBodyInertia::transformBy2(const KtCoordinateSystemTransformation& t) {
  KtSpatialMatrix r;
  r.setToDcm(t.orientation());
  const KtSpatialMatrix rTransposed = r.transpose();
  const KtSpatialMatrix p = KtSpatialMatrix::crossProductMatrix(t.translation());
  const KtSpatialMatrix l = r * linear_.spatialMatrix() * rTransposed;
  const KtSpatialMatrix x = r * cross_ * rTransposed;
  const KtSpatialMatrix moved = x - l * p;
  const KtSpatialMatrix a =
      r * angular_.spatialMatrix() * rTransposed + p * x + (p * moved).transpose();
  linear_.setFromSpatialMatrix(l);
  cross_ = moved;
  angular_.setFromSpatialMatrix(a);
}

void KtArticulatedBodyInertia::joinWith(const KtArticulatedBodyInertia& child,
                                        const KtGeneralMotion& s, double d) {
  KtGeneralForce h;
  double denominator = 0.0;
  joinWith(child, s, d, h, denominator);
}

void KtArticulatedBodyInertia::joinWith(const KtArticulatedBodyInertia& child,
                                        const KtGeneralMotion& s, double d, KtGeneralForce& h,
                                        double& denominator) {
  KtArticulatedBodyInertia shown;
  shown.setToTransformedValue(child, s, d, h, denominator);
  *this += shown;
}

void KtArticulatedBodyInertia::setToTransformedValue(const KtArticulatedBodyInertia& child,
                                                     const KtGeneralMotion& s, double d,
                                                     KtGeneralForce& h, double& denominator) {
  h = child.calculateForceSparse(s);
  denominator = h.force().dot(s.linear()) + h.moment().dot(s.angular()) + d;
  const double k = denominator == 0.0 ? 0.0 : 1.0 / denominator;
  const KtVector u = h.force() * k;
  linear_ = child.linear_;
  cross_ = child.cross_;
  angular_ = child.angular_;
  subtractProduct(linear_, u, h.force());
  subtractProduct(cross_, u, h.moment());
  subtractProduct(angular_, h.moment() * k, h.moment());
  isRigid_ = false;
}

KtGeneralForce KtArticulatedBodyInertia::calculateForce(const KtGeneralMotion& acceleration) const {
  const KtVector& a = acceleration.linear();
  const KtVector& alpha = acceleration.angular();
  const double* l = linear_.values();
  const KtVector la = isRigid_ ? KtVector(l[0] * a.x, l[1] * a.y, l[2] * a.z) : linear_ * a;
  return {la + cross_ * alpha, transposedProduct(cross_, a) + angular_ * alpha};
}

KtGeneralForce KtArticulatedBodyInertia::calculateForceSparse(
    const KtGeneralMotion& acceleration) const {
  KtVector force;
  KtVector moment;
  getSparseForce(acceleration.linear(), acceleration.angular(), force, moment);
  return {force, moment};
}

void KtArticulatedBodyInertia::getSparseForce(const KtVector& a, const KtVector& alpha,
                                              KtVector& force, KtVector& moment) const noexcept {
  const double* l = linear_.values();
  const double* j = angular_.values();
  const KtSpatialMatrix& x = cross_;
  force = moment = KtVector();
  if (a.x != 0.0) {
    force += KtVector(l[0], l[3], l[4]) * a.x;
    moment += x.row0() * a.x;
  }
  if (a.y != 0.0) {
    force += KtVector(l[3], l[1], l[5]) * a.y;
    moment += x.row1() * a.y;
  }
  if (a.z != 0.0) {
    force += KtVector(l[4], l[5], l[2]) * a.z;
    moment += x.row2() * a.z;
  }
  if (alpha.x != 0.0) {
    force += KtVector(x[0][0], x[1][0], x[2][0]) * alpha.x;
    moment += KtVector(j[0], j[3], j[4]) * alpha.x;
  }
  if (alpha.y != 0.0) {
    force += KtVector(x[0][1], x[1][1], x[2][1]) * alpha.y;
    moment += KtVector(j[3], j[1], j[5]) * alpha.y;
  }
  if (alpha.z != 0.0) {
    force += KtVector(x[0][2], x[1][2], x[2][2]) * alpha.z;
    moment += KtVector(j[4], j[5], j[2]) * alpha.z;
  }
}

// Blocks of an inertia in another frame, by rows: rotated, moved as by `translateBlocks`, and
// added.
void KtArticulatedBodyInertia::addRotatedAndMoved(const double* linear, const double* angular,
                                                  const double* cross,
                                                  const Kt::detail::RotationMatrix& r,
                                                  const KtVector& p) noexcept {
  double l[6];
  double a[6];
  double x[9];
  r.rotateSymmetric(linear, l);
  r.rotateSymmetric(angular, a);
  r.rotate(cross, x);
  // Rows of X' = X - L P: a row of L P is that row of L, times (p x) on its right.
  const double lp[9] = {l[3] * p.z - l[4] * p.y, l[4] * p.x - l[0] * p.z, l[0] * p.y - l[3] * p.x,
                        l[1] * p.z - l[5] * p.y, l[5] * p.x - l[3] * p.z, l[3] * p.y - l[1] * p.x,
                        l[5] * p.z - l[2] * p.y, l[2] * p.x - l[4] * p.z, l[4] * p.y - l[5] * p.x};
  double y[9];
  for (int i = 0; i < 9; ++i) y[i] = x[i] - lp[i];
  // A' = A + P X + (P X')^T: columns of P X are p x column.
  const double axx = a[0] + (p.y * x[6] - p.z * x[3]) + (p.y * y[6] - p.z * y[3]);
  const double ayy = a[1] + (p.z * x[1] - p.x * x[7]) + (p.z * y[1] - p.x * y[7]);
  const double azz = a[2] + (p.x * x[5] - p.y * x[2]) + (p.x * y[5] - p.y * y[2]);
  const double axy = a[3] + (p.y * x[7] - p.z * x[4]) + (p.z * y[0] - p.x * y[6]);
  const double axz = a[4] + (p.y * x[8] - p.z * x[5]) + (p.x * y[3] - p.y * y[0]);
  const double ayz = a[5] + (p.z * x[2] - p.x * x[8]) + (p.x * y[4] - p.y * y[1]);
  linear_ += KtSecondMoment(l[0], l[1], l[2], l[3], l[4], l[5]);
  angular_ += KtSecondMoment(axx, ayy, azz, axy, axz, ayz);
  double* own = cross_[0];
  for (int i = 0; i < 9; ++i) own[i] += y[i];
  isRigid_ = false;
}

// By the factor G of I = G G^T. A pivot that is lost in rounding is raised, as `KtReArray` does
// it, so that the factor stays finite. The work arrays are on the stack: this object is copied
// where nothing may be allocated.
KtGeneralMotion KtArticulatedBodyInertia::calculateAcceleration(const KtGeneralForce& force) const {
  constexpr int kSize = 6;
  const double* l = linear_.values();
  const double* a = angular_.values();
  const KtSpatialMatrix& c = cross_;
  double g[kSize][kSize] = {{l[0]},
                            {l[3], l[1]},
                            {l[4], l[5], l[2]},
                            {c[0][0], c[1][0], c[2][0], a[0]},
                            {c[0][1], c[1][1], c[2][1], a[3], a[1]},
                            {c[0][2], c[1][2], c[2][2], a[4], a[5], a[2]}};
  double x[kSize];
  for (int i = 0; i < kSize; ++i) x[i] = force[static_cast<unsigned>(i)];
  double reciprocals[kSize];
  double scales[kSize];  // the reciprocals, but 0 below a raised pivot
  for (int i = 0; i < kSize; ++i) {
    const double least =
        KtMath::nonZeroPos(kSize * std::numeric_limits<double>::epsilon() * g[i][i]);
    for (int j = 0; j < i; ++j) {
      for (int k = 0; k < j; ++k) g[i][j] -= g[i][k] * g[j][k];
      g[i][j] *= scales[j];
      g[i][i] -= g[i][j] * g[i][j];
      x[i] -= g[i][j] * x[j];
    }
    const bool raised = g[i][i] <= least;
    g[i][i] = std::sqrt(raised ? least : g[i][i]);
    reciprocals[i] = 1.0 / g[i][i];
    scales[i] = raised ? 0.0 : reciprocals[i];
    x[i] *= reciprocals[i];
  }
  for (int i = kSize - 1; i >= 0; --i) {
    for (int j = i + 1; j < kSize; ++j) x[i] -= g[j][i] * x[j];
    x[i] *= reciprocals[i];
  }
  return {{x[0], x[1], x[2]}, {x[3], x[4], x[5]}};
}

void KtArticulatedBodyInertia::set(const KtSecondMoment& linear, const KtSecondMoment& angular,
                                   const KtSpatialMatrix& cross) {
  linear_ = linear;
  angular_ = angular;
  cross_ = cross;
  isRigid_ = false;
}

void KtArticulatedBodyInertia::setFromRigidBody(const KtRigidBodyMassProperties& properties) {
  const double m = properties.mass();
  linear_.set(m, m, m, 0.0, 0.0, 0.0);
  angular_ = properties.secondMoment();
  cross_.setToCrossProductMatrix(-properties.firstMoment());
  isRigid_ = true;
}

void KtArticulatedBodyInertia::setFromArray(const KtReArray& array) {
  if (array.rows() != 6 || array.columns() != 6) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtArticulatedBodyInertia::setFromArray(): array is %u by %u.\n",
                                array.rows(), array.columns());
    return;
  }
  const auto block = [&array](KtU32 row, KtU32 column) {
    KtSpatialMatrix m;
    for (KtU32 i = 0; i < 3; ++i) {
      for (KtU32 j = 0; j < 3; ++j) m[i][j] = array[row + i][column + j];
    }
    return m;
  };
  linear_.setFromSpatialMatrix(block(0, 0));
  cross_ = block(0, 3);
  angular_.setFromSpatialMatrix(block(3, 3));
  isRigid_ = false;
}

void KtArticulatedBodyInertia::getArray(KtReArray& array) const {
  array.resizeArray(6, 6);
  const KtSpatialMatrix l = linear_.spatialMatrix();
  const KtSpatialMatrix a = angular_.spatialMatrix();
  for (KtU32 i = 0; i < 3; ++i) {
    for (KtU32 j = 0; j < 3; ++j) {
      array[i][j] = l[i][j];
      array[i][j + 3] = array[j + 3][i] = cross_[i][j];
      array[i + 3][j + 3] = a[i][j];
    }
  }
}

bool KtArticulatedBodyInertia::approxEq(const KtArticulatedBodyInertia& other,
                                        double tolerance) const {
  return linear_.approxEq(other.linear_, tolerance) &&
         angular_.approxEq(other.angular_, tolerance) &&
         allApproxEq(cross_[0], other.cross_[0], 9, tolerance);
}

KtArticulatedBodyInertia& KtArticulatedBodyInertia::operator+=(
    const KtArticulatedBodyInertia& other) noexcept {
  linear_ += other.linear_;
  angular_ += other.angular_;
  cross_ += other.cross_;
  isRigid_ = isRigid_ && other.isRigid_;
  return *this;
}

KtArticulatedBodyInertia& KtArticulatedBodyInertia::operator-=(
    const KtArticulatedBodyInertia& other) noexcept {
  linear_ -= other.linear_;
  angular_ -= other.angular_;
  cross_ -= other.cross_;
  isRigid_ = isRigid_ && other.isRigid_;
  return *this;
}
