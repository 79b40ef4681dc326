#include "ktManipulator/inertia/KtRigidBodyMassProperties.h"

#include <algorithm>
#include <limits>

#include "ktManipulator/foundation/core/KtMath.h"
#include "ktManipulator/foundation/geometry/KtCapsule.h"
#include "ktManipulator/foundation/geometry/KtEllipsoid.h"

namespace {

constexpr double kLeastMass = 1e-09;
constexpr double kTwelfth = 0.08333333333333333;
constexpr double kPi = 3.141592653589793;

KtRigidBodyMassProperties centered(double m, double jxx, double jyy, double jzz) {
  return {m, KtVector(), KtSecondMoment(jxx, jyy, jzz, 0.0, 0.0, 0.0)};
}

}  // namespace

KtRigidBodyMassProperties::KtRigidBodyMassProperties(KtNonNegReal mass, const KtVector& firstMoment,
                                                     const KtSecondMoment& secondMoment)
    : mass_(mass), firstMoment_(firstMoment), secondMoment_(secondMoment) {
  KtRigidBodyMassProperties::makeValid();
}

bool KtRigidBodyMassProperties::read(KtXmlReader& reader) {
  const bool ok = KtXmlPersistent::read(reader);
  valid_.clear();
  return ok;
}

void KtRigidBodyMassProperties::registerComponents() {
  registerComponent(KtManip::KtMassToken, &mass_);
  registerComponent(KtManip::KtFirstMomentToken, &firstMoment_);
  registerComponent(KtFoundCommon::KtSecondMomentToken, &secondMoment_);
}

void KtRigidBodyMassProperties::transformBy(const KtCoordinateSystemTransformation& t) {
  transformBy(t.orientation());
  transformBy(t.translation());
}

void KtRigidBodyMassProperties::transformBy(const KtOrientation& r) {
  r.transform(firstMoment_);
  secondMoment_.transformBy(r);
  valid_.clear();
}

void KtRigidBodyMassProperties::transformBy(const KtVector& p) {
  const double m = mass_.value();
  const KtVector& c = firstMoment_;
  const double xx = 2.0 * c.x * p.x + m * p.x * p.x;
  const double yy = 2.0 * c.y * p.y + m * p.y * p.y;
  const double zz = 2.0 * c.z * p.z + m * p.z * p.z;
  secondMoment_ += KtSecondMoment(yy + zz, zz + xx, xx + yy,  //
                                  -(c.x * p.y + c.y * p.x + m * p.x * p.y),
                                  -(c.x * p.z + c.z * p.x + m * p.x * p.z),
                                  -(c.y * p.z + c.z * p.y + m * p.y * p.z));
  firstMoment_ += p * m;
  valid_.clear();
}

KtGeneralForce KtRigidBodyMassProperties::calculateForce(
    const KtGeneralMotion& velocity, const KtGeneralMotion& acceleration) const {
  KtVector force;
  KtVector moment;
  getForce(velocity.angular(), acceleration, force, moment);
  return {force, moment};
}

KtGeneralForce KtRigidBodyMassProperties::calculateForce(
    const KtGeneralMotion& acceleration) const {
  const KtVector& c = firstMoment_;
  return {acceleration.linear() * mass_.value() - c.cross(acceleration.angular()),
          secondMoment_ * acceleration.angular() + c.cross(acceleration.linear())};
}

KtGeneralMotion KtRigidBodyMassProperties::calculateAcceleration(
    const KtGeneralMotion& velocity, const KtGeneralForce& force) const {
  const KtVector& w = velocity.angular();
  const KtGeneralForce bias(w.cross(w.cross(firstMoment_)), w.cross(secondMoment_ * w));
  return calculateAcceleration(force - bias);
}

KtGeneralMotion KtRigidBodyMassProperties::calculateAcceleration(
    const KtGeneralForce& force) const {
  const KtReArray& l = spatialCholeskyDecomposition();
  // Two divisions by a floor of 1e-300 would overflow for a mass of zero. A sixth of the largest
  // double leaves room for the sums.
  const auto bounded = [](double x) {
    constexpr double largest = std::numeric_limits<double>::max() / 6.0;
    return std::clamp(x, -largest, largest);
  };
  const auto divided = [bounded](double x, double by) {
    return bounded(x / KtMath::nonZeroPos(by));
  };
  double a[6];
  for (KtU32 i = 0; i < 3; ++i) a[i] = divided(force[i], l[i][i]);
  for (KtU32 i = 3; i < 6; ++i) {
    a[i] = force[i];
    for (KtU32 j = 0; j < i; ++j) a[i] -= bounded(l[i][j] * a[j]);
    a[i] = divided(a[i], l[i][i]);
  }
  for (KtU32 i = 6; i-- > 0;) {
    for (KtU32 j = i + 1; j < 6; ++j) a[i] -= bounded(l[j][i] * a[j]);
    a[i] = divided(a[i], l[i][i]);
  }
  return {KtVector(a[0], a[1], a[2]), KtVector(a[3], a[4], a[5])};
}

void KtRigidBodyMassProperties::addTransformed(const KtRigidBodyMassProperties& other,
                                               const Kt::detail::RotationMatrix& r,
                                               const KtVector& p) noexcept {
  const double m = other.mass_.value();
  const KtVector c = r * other.firstMoment_;
  double j[6];
  r.rotateSymmetric(other.secondMoment_.values(), j);
  // About the new origin: with c' = c + m p / 2, -(p x)(c' x) - (c' x)(p x).
  const KtVector h = c + p * (0.5 * m);
  const double xx = 2.0 * h.x * p.x;
  const double yy = 2.0 * h.y * p.y;
  const double zz = 2.0 * h.z * p.z;
  secondMoment_ += KtSecondMoment(j[0] + yy + zz, j[1] + zz + xx, j[2] + xx + yy,  //
                                  j[3] - (h.x * p.y + h.y * p.x), j[4] - (h.x * p.z + h.z * p.x),
                                  j[5] - (h.y * p.z + h.z * p.y));
  firstMoment_ += c + p * m;
  mass_ = mass_.value() + m;
  valid_.clear();
}

const KtSpatialMatrix& KtRigidBodyMassProperties::invSecondMoment() const {
  if (!valid_.inverse) computeSecondMomentInverse();
  return caches_.require().inverse;
}

void KtRigidBodyMassProperties::set(KtNonNegReal mass, const KtVector& firstMoment,
                                    const KtSecondMoment& secondMoment, bool makeValidToo) {
  mass_ = mass;
  firstMoment_ = firstMoment;
  secondMoment_ = secondMoment;
  valid_.factor = false;
  if (makeValidToo) makeValid();
}

void KtRigidBodyMassProperties::getCenterOfMass(KtVector& center) const {
  const double m = mass_.value();
  center = m == 0.0 ? KtVector() : firstMoment_ * (1.0 / m);
}

bool KtRigidBodyMassProperties::getPrincipalFrame(KtCoordinateSystemTransformation& frame) const {
  KtVector center;
  getCenterOfMass(center);
  KtRigidBodyMassProperties body(*this);
  body.transformBy(-center);
  KtOrientation orientation;
  body.secondMoment_.principalOrientation(orientation);
  frame.setTranslation(center);
  frame.setOrientation(orientation);
  return true;
}

bool KtRigidBodyMassProperties::isValid() const {
  return mass_.value() >= kLeastMass && secondMoment_.isValid();
}

const KtReArray& KtRigidBodyMassProperties::spatialCholeskyDecomposition() const {
  KtReArray& l = caches_.require().factor;
  if (valid_.factor) return l;
  const KtVector& c = firstMoment_;
  const double s = KtMath::sqrt(mass_.value());
  const double k = 1.0 / KtMath::nonZeroPos(s);
  l.setToZeros(6, 6);
  for (KtU32 i = 0; i < 3; ++i) l[i][i] = s;
  l[3][1] = -k * c.z, l[3][2] = k * c.y;
  l[4][2] = -k * c.x, l[4][0] = k * c.z;
  l[5][0] = -k * c.y, l[5][1] = k * c.x;
  // What elimination of the linear rows leaves: the tensor about the centre of mass.
  KtSpatialMatrix schur;
  schur.setToCrossProductMatrix(c / KtMath::nonZeroPos(mass_.value()));
  schur.multiplyOnLeftByCrossProductMatrix(c);
  schur += secondMoment_.spatialMatrix();
  schur.choleskyDecomposition(schur);
  for (KtU32 i = 0; i < 3; ++i) {
    for (KtU32 j = 0; j <= i; ++j) l[3 + i][3 + j] = schur[i][j];
  }
  valid_.factor = true;
  return l;
}

void KtRigidBodyMassProperties::getArray(KtReArray& array) const {
  array.setToZeros(6, 6);
  const KtVector& c = firstMoment_;
  const KtSpatialMatrix cross = KtSpatialMatrix::crossProductMatrix(c);
  const KtSpatialMatrix j = secondMoment_.spatialMatrix();
  for (KtU32 row = 0; row < 3; ++row) {
    array[row][row] = mass_.value();
    for (KtU32 column = 0; column < 3; ++column) {
      array[row][3 + column] = cross[column][row];  // -(c x), its transposed
      array[3 + row][column] = cross[row][column];
      array[3 + row][3 + column] = j[row][column];
    }
  }
}

bool KtRigidBodyMassProperties::approxEq(const KtRigidBodyMassProperties& other,
                                         double tolerance) const {
  return KtMath::approxEq(mass_.value(), other.mass_.value(), tolerance) &&
         firstMoment_.approxEq(other.firstMoment_, tolerance) &&
         secondMoment_.approxEq(other.secondMoment_, tolerance);
}

void KtRigidBodyMassProperties::scaleBy(double s) {
  const double cube = s * s * s;
  mass_.value() *= cube;
  firstMoment_ *= cube * s;
  secondMoment_ *= cube * s * s;
  valid_.factor = false;
}

void KtRigidBodyMassProperties::getEllipsoid(KtEllipsoid& ellipsoid, double& density) const {
  const double k = 1.0 / KtMath::nonZeroPos(mass_.value());
  KtCoordinateSystemTransformation frame(firstMoment_ * k);
  KtRigidBodyMassProperties body(*this);
  body.transformBy(-frame.translation());
  KtOrientation orientation;
  body.secondMoment_.principalOrientation(orientation);
  frame.setOrientation(orientation);
  body.transformBy(orientation.inverse());
  const double i1 = body.secondMoment_.jxx();
  const double i2 = body.secondMoment_.jyy();
  const double i3 = body.secondMoment_.jzz();
  const auto semiAxis = [e = 2.5 * k](double difference) {
    const double square = e * difference;
    return square > 1e-12 ? KtMath::sqrt(square) : 1e-12;
  };
  ellipsoid =
      KtEllipsoid(semiAxis(i2 - i1 + i3), semiAxis(i1 - i2 + i3), semiAxis(i1 + i2 - i3), frame);
  density = mass_.value() / KtMath::nonZeroPos(ellipsoid.volume());
}

void KtRigidBodyMassProperties::makeValid() {
  // Written so that a mass that is no number is raised too.
  if (!(mass_.value() >= kLeastMass)) {
    mass_ = KtNonNegReal(kLeastMass);
    valid_.factor = false;
  }
  if (secondMoment_.isValid()) return;
  KtVector center;
  getCenterOfMass(center);
  KtRigidBodyMassProperties body(*this);
  body.transformBy(-center);
  KtSecondMoment repaired(body.secondMoment_);
  repaired.makeValid();
  body.set(body.mass(), body.firstMoment(), repaired, false);
  body.transformBy(center);
  if (!body.secondMoment_.isValid()) {
    // So far from the centre of mass the translation's rounding swallows a small repaired tensor.
    const double least = 1e-14 * body.mass_.value() * center.magSquared();
    body.secondMoment_ += KtSecondMoment(least, least, least, 0.0, 0.0, 0.0);
  }
  *this = body;
}

void KtRigidBodyMassProperties::computeSecondMomentInverse() const {
  secondMoment_.spatialMatrix().getSymmetricPositiveDefiniteInverse(caches_.require().inverse);
  valid_.inverse = true;
}

KtRigidBodyMassProperties& KtRigidBodyMassProperties::operator+=(
    const KtRigidBodyMassProperties& other) {
  mass_.value() = mass_.value() + other.mass_.value();
  firstMoment_ += other.firstMoment_;
  secondMoment_ += other.secondMoment_;
  valid_.clear();
  return *this;
}

KtRigidBodyMassProperties& KtRigidBodyMassProperties::operator-=(
    const KtRigidBodyMassProperties& other) {
  mass_.value() = mass_.value() - other.mass_.value();
  firstMoment_ -= other.firstMoment_;
  secondMoment_ -= other.secondMoment_;
  valid_.clear();
  return *this;
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::operator+(
    const KtRigidBodyMassProperties& other) const {
  KtRigidBodyMassProperties sum(*this);
  sum += other;
  return sum;
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::operator-(
    const KtRigidBodyMassProperties& other) const {
  KtRigidBodyMassProperties difference(*this);
  difference -= other;
  return difference;
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::pointMass(double m) {
  return centered(m, 0.0, 0.0, 0.0);
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::uniformSolidSphere(double m, double r) {
  const double j = 0.4 * m * r * r;
  return centered(m, j, j, j);
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::uniformSolidHemisphere(double m, double r) {
  const double j = 0.4 * m * r * r;
  return {m, KtVector::zVector(0.375 * r), KtSecondMoment(j, j, j, 0.0, 0.0, 0.0)};
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::uniformSphericalShell(double m, double r) {
  const double j = 0.6666666666666666 * m * r * r;
  return centered(m, j, j, j);
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::uniformSolidAxisAlignedEllipsoid(double m,
                                                                                      double a,
                                                                                      double b,
                                                                                      double c) {
  const double fifth = 0.2 * m;
  return centered(m, fifth * (b * b + c * c), fifth * (c * c + a * a), fifth * (a * a + b * b));
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::uniformSolidAxisAlignedRectangularPrism(
    double m, double x, double y, double z) {
  const double twelfth = kTwelfth * m;
  return centered(m, twelfth * (y * y + z * z), twelfth * (z * z + x * x),
                  twelfth * (x * x + y * y));
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::uniformSolidAxisAlignedCylinder(double m,
                                                                                     double r,
                                                                                     double h) {
  const double j = kTwelfth * m * (3.0 * r * r + h * h);
  return centered(m, j, j, 0.5 * m * r * r);
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::uniformSolidAxisAlignedTorus(
    double m, double ringRadius, double tubeRadius) {
  const double a = tubeRadius * tubeRadius;
  const double ring = 4.0 * ringRadius * ringRadius;
  const double j = 0.125 * m * (5.0 * a + ring);
  return centered(m, j, j, 0.25 * m * (3.0 * a + ring));
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::uniformSolidCapsule(double m,
                                                                         const KtCapsule& capsule) {
  const KtLineSegment& segment = capsule.lineSegment();
  const double r = capsule.radius();
  const double length = segment.length();
  if (length == 0.0) {
    KtRigidBodyMassProperties sphere = uniformSolidSphere(m, r);
    sphere.transformBy(segment.center());
    return sphere;
  }
  const double cylinderVolume = kPi * r * r * length;
  const double hemisphereVolume = 2.0943951023931953 * r * r * r;
  const double volume = KtMath::nonZeroPos(cylinderVolume + 2.0 * hemisphereVolume);
  const double cylinderMass = cylinderVolume * m / volume;
  const double hemisphereMass = hemisphereVolume * m / volume;

  KtRigidBodyMassProperties body = uniformSolidAxisAlignedCylinder(cylinderMass, r, length);
  KtRigidBodyMassProperties top = uniformSolidHemisphere(hemisphereMass, r);
  KtRigidBodyMassProperties bottom = top;
  bottom.transformBy(KtOrientation::xRotation(kPi));
  top.transformBy(KtVector::zVector(0.5 * length));
  bottom.transformBy(KtVector::zVector(-0.5 * length));
  body = body + top + bottom;

  const KtVector z = KtVector::zVector(1.0);
  const KtVector u = (segment.endpoint1() - segment.endpoint0()).unitVector();
  const KtVector axis = z.cross(u);
  KtOrientation orientation;
  if (axis.magSquared() > 0.0) {
    orientation.setFromAngleAxis(KtMath::acos(z.dot(u)), axis.unitVector());
  } else if (u.z < 0.0) {
    orientation = KtOrientation::xRotation(kPi);  // any axis across z serves
  }
  body.transformBy(orientation);
  body.transformBy(segment.center());
  return body;
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::nullObject() {
  return {0.0, KtVector(), KtSecondMoment::nullObject()};
}

KtRigidBodyMassProperties KtRigidBodyMassProperties::defaultObject() {
  KtRigidBodyMassProperties example;
  example.set(1.5, KtVector(1.0, 2.0, 3.0), KtSecondMoment(3.0, 4.0, 5.0, 0.1, 0.2, 0.3), false);
  return example;
}

template class KtXmlVectorType<KtRigidBodyMassProperties>;
template class KtXmlMapType<KtXmlBasicType<std::string>, KtRigidBodyMassProperties>;
