#include "ktManipulator/kinematics/KtQuadrilateralTypeLink.h"

#include "ktManipulator/foundation/core/KtMath.h"
#include "ktManipulator/foundation/core/KtPrint.h"

namespace {

// The rotation about z that takes x to (c, s, 0).
KtOrientation turnAboutZ(double c, double s) {
  KtOrientation r;
  r.setFromDcmColumns({c, s, 0.0}, {-s, c, 0.0}, {0.0, 0.0, 1.0});
  return r;
}

}  // namespace

void KtQuadrilateralTypeLink::xmlInit() {
  registerJointTypeEnumerations();
  KtLinkKinematics::xmlInit();
}

void KtQuadrilateralTypeLink::registerComponents() {
  KtLinkKinematics::registerComponents();
  registerComponent(KtManip::KtJointTypeToken, &jointType_);
  registerComponent(KtManip::KtPrecursorToken, &precursor_);
  registerComponent(KtManip::KtNominalSliderLengthToken, &nominalLength_);
  registerComponent(KtManip::KtD1LengthToken, &d1Length_);
  registerComponent(KtManip::KtD2LengthToken, &d2Length_);
  registerComponent(KtManip::KtOppositeLengthToken, &oppositeLength_);
  registerComponent(KtManip::KtZDistanceAToken, &zDistanceA_);
  registerComponent(KtManip::KtZDistanceBToken, &zDistanceB_);
  registerComponent(KtManip::KtZDistanceCToken, &zDistanceC_);
}

void KtQuadrilateralTypeLink::registerJointTypeEnumerations() {
  jointType_.setEnumString(kFixedSlider, KtManip::KtFixedSliderJointToken.text());
  jointType_.setEnumString(kPivotedSlider, KtManip::KtPivotedSliderJointToken.text());
}

bool KtQuadrilateralTypeLink::getSides(double& a, double& b, const char* operation) const {
  if (jointType_ == kFixedSlider) {
    a = loop_.length, b = oppositeLength_;
  } else if (jointType_ == kPivotedSlider) {
    a = oppositeLength_, b = loop_.length;
  } else {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtQuadrilateralTypeLink::%s() bad joint type:\n", operation);
    return false;
  }
  return true;
}

const KtCoordinateSystemTransformation& KtQuadrilateralTypeLink::calculateTransform(
    double q) const {
  return keptTransform(q, [&] { transformIdentityBy(q); });
}

void KtQuadrilateralTypeLink::transformBy(KtCoordinateSystemTransformation& t, double q) const {
  // The kept transformation stands for the loop too, which is about to be that of this q.
  if (q != lastJointParameter_) transformValid_ = false;
  loop_.length = nominalLength_ + q;
  loop_.k = 0.0;
  t *= precursor_;
  double a = 0.0;
  double b = 0.0;
  if (!getSides(a, b, "transformBy")) return;
  solveLoop(a, b);
  t.outboardTransformBy({a, 0.0, zDistanceA_}, turnAboutZ(loop_.cosTheta, loop_.sinTheta));
}

// d1 sin(theta) - a cos(theta) = K has two solutions, theta1 and theta2. The cosine is divided by a
// where that is safe.
void KtQuadrilateralTypeLink::solveLoop(double a, double b) const {
  const double d1 = d1Length_;
  const double d2 = d2Length_;
  const double square = a * a + d1 * d1;
  const double k = loop_.k = (square + d2 * d2 - b * b) / (2.0 * d2);
  double radicand = square - k * k;
  if (radicand < 0.0) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtQuadrilateralTypeLink::transformBy()-Invalid joint position\n");
    radicand = 0.0;
  }
  const double w = KtMath::sqrt(radicand);
  const double s1 = (d1 * k + a * w) / square;
  const double s2 = (d1 * k - a * w) / square;
  if (s2 < 0.0) {
    loop_.sinTheta = s1;
    loop_.cosTheta = a > 0.0 ? cosThetaFromSinTheta(s1, a) : (w * d1 - k * a) / square;
    return;
  }
  const double c1 = a > 0.0 ? cosThetaFromSinTheta(s1, a) : (-k * a + d1 * w) / square;
  const double c2 = a > 0.0 ? cosThetaFromSinTheta(s2, a) : (-k * a - d1 * w) / square;
  loop_.sinTheta = c1 > c2 ? s1 : s2;
  loop_.cosTheta = c1 > c2 ? c1 : c2;
}

const KtCoordinateSystemTransformation& KtQuadrilateralTypeLink::frameATransform(double q) const {
  double x = 0.0;
  if (jointType_ == kFixedSlider) {
    x = q + nominalLength_;
  } else if (jointType_ == kPivotedSlider) {
    x = oppositeLength_;
  } else {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtQuadrilateralTypeLink::frameATransform() bad joint type:\n");
    return frameA_;
  }
  frameA_ = precursor_;
  frameA_.outboardTransformBy({x, 0.0, zDistanceA_}, KtOrientation());
  return frameA_;
}

const KtCoordinateSystemTransformation& KtQuadrilateralTypeLink::frameBTransform(double q) const {
  if (frameBValid_ && q == lastJointParameterB_) return frameB_;
  calculateTransform(q);
  double a = 0.0;
  double b = 0.0;
  if (!getSides(a, b, "frameBTransform")) return frameB_;
  const double px = a + d2Length_ * loop_.cosTheta;
  const double py = d2Length_ * loop_.sinTheta;
  const double u = b > 0.0 ? px / b : loop_.sinTheta;
  const double v = b > 0.0 ? (py - d1Length_) / b : -loop_.cosTheta;
  frameB_ = precursor_;
  frameB_.outboardTransformBy({px, py, zDistanceB_}, turnAboutZ(u, v));
  lastJointParameterB_ = q;
  frameBValid_ = true;
  return frameB_;
}

const KtCoordinateSystemTransformation& KtQuadrilateralTypeLink::frameCTransform(double q) const {
  frameC_ = calculateTransform(q);
  frameC_.outboardTransformBy(KtVector::xVector(-loop_.length), KtOrientation());
  return frameC_;
}

const KtGeneralMotion& KtQuadrilateralTypeLink::calculateVelocity(double q, double qDot) const {
  calculateTransform(q);
  Loop& loop = loop_;
  const double d1 = d1Length_;
  const double d2 = d2Length_;
  if (jointType_ == kFixedSlider) {
    loop.denominator = (d1 * loop.cosTheta + loop.length * loop.sinTheta) * d2;
    loop.thetaDot = (d2 * loop.cosTheta + loop.length) * qDot / loop.denominator;
    resultVelocity_.setLinear(KtVector::xVector(qDot));
  } else if (jointType_ == kPivotedSlider) {
    loop.denominator = (d1 * loop.cosTheta + oppositeLength_ * loop.sinTheta) * d2;
    loop.thetaDot = -(loop.length * qDot) / loop.denominator;
    resultVelocity_.setLinear(KtVector());
  } else {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtQuadrilateralTypeLink::calculateVelocity() bad joint type:\n");
  }
  resultVelocity_.setAngular(KtVector::zVector(loop.thetaDot));
  return resultVelocity_;
}

const KtGeneralMotion& KtQuadrilateralTypeLink::calculateAcceleration(double q, double qDot,
                                                                      double qDotDot) const {
  calculateVelocity(q, qDot);
  const Loop& loop = loop_;
  const double d2 = d2Length_;
  const double t = loop.thetaDot;
  double thetaDotDot = 0.0;
  if (jointType_ == kFixedSlider) {
    thetaDotDot = ((loop.cosTheta * d2 + loop.length) * qDotDot + qDot * qDot -
                   qDot * (2.0 * d2 * loop.sinTheta * t) + d2 * loop.k * t * t) /
                  loop.denominator;
    resultAcceleration_.setLinear(KtVector::xVector(qDotDot));
  } else if (jointType_ == kPivotedSlider) {
    thetaDotDot = (-loop.length * qDotDot - qDot * qDot + d2 * loop.k * t * t) / loop.denominator;
    resultAcceleration_.setLinear(KtVector());
  } else {
    Kt::Print::instance().write(
        Kt::Print::kError, "KtQuadrilateralTypeLink::calculateAcceleration() bad joint type:\n");
  }
  resultAcceleration_.setAngular(KtVector::zVector(thetaDotDot));
  return resultAcceleration_;
}

double KtQuadrilateralTypeLink::upperBoundDhFrameDistance(
    const KtJointActuator& /*actuator*/) const {
  return 0.0;
}

void KtQuadrilateralTypeLink::scaleBy(double factor) {
  precursor_.setTranslation(precursor_.translation() * factor);
  for (auto* length : {&nominalLength_, &d1Length_, &d2Length_, &oppositeLength_, &zDistanceA_,
                       &zDistanceB_, &zDistanceC_}) {
    length->value() *= factor;
  }
}

void KtQuadrilateralTypeLink::transformBy(const KtCoordinateSystemTransformation& t) {
  precursor_ = t * precursor_;
}

void KtQuadrilateralTypeLink::changeInboardFrameBy(const KtCoordinateSystemTransformation& t) {
  precursor_ = precursor_ * t;
  invalidateAllTransforms();
}

void KtQuadrilateralTypeLink::setJointType(unsigned int type) {
  jointType_ = type;
  invalidateAllTransforms();
}

void KtQuadrilateralTypeLink::setPrecursor(const KtCoordinateSystemTransformation& t) {
  precursor_ = t;
  invalidateAllTransforms();
}

void KtQuadrilateralTypeLink::setNominalLength(double length) {
  nominalLength_ = length;
  invalidateAllTransforms();
}

void KtQuadrilateralTypeLink::setD1Length(double length) {
  d1Length_ = length;
  invalidateAllTransforms();
}

void KtQuadrilateralTypeLink::setD2Length(double length) {
  d2Length_ = length;
  invalidateAllTransforms();
}

void KtQuadrilateralTypeLink::setOppositeLength(double length) {
  oppositeLength_ = length;
  invalidateAllTransforms();
}

void KtQuadrilateralTypeLink::invalidateAllTransforms() {
  transformValid_ = false;
  frameBValid_ = false;
}

bool KtQuadrilateralTypeLink::approxEq(const KtQuadrilateralTypeLink& other,
                                       double tolerance) const {
  return KtLinkKinematics::approxEq(other, tolerance) && jointType_ == other.jointType_ &&
         KtMath::approxEq(nominalLength_, other.nominalLength_, tolerance) &&
         KtMath::approxEq(d1Length_, other.d1Length_, tolerance) &&
         KtMath::approxEq(d2Length_, other.d2Length_, tolerance) &&
         KtMath::approxEq(oppositeLength_, other.oppositeLength_, tolerance) &&
         KtMath::approxEq(zDistanceA_, other.zDistanceA_, tolerance) &&
         KtMath::approxEq(zDistanceB_, other.zDistanceB_, tolerance) &&
         KtMath::approxEq(zDistanceC_, other.zDistanceC_, tolerance);
}

bool KtQuadrilateralTypeLink::operator==(const KtQuadrilateralTypeLink& other) const {
  return KtLinkKinematics::operator==(other) && jointType_ == other.jointType_ &&
         precursor_ == other.precursor_ && nominalLength_ == other.nominalLength_ &&
         d1Length_ == other.d1Length_ && d2Length_ == other.d2Length_ &&
         oppositeLength_ == other.oppositeLength_ && zDistanceA_ == other.zDistanceA_ &&
         zDistanceB_ == other.zDistanceB_ && zDistanceC_ == other.zDistanceC_;
}
