#include "ktManipulator/kinematics/KtDenavitHartenberg.h"

#include <algorithm>
#include <cmath>

#include "ktManipulator/actuation/KtJointActuator.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/inertia/KtArticulatedBodyDynamics.h"

template class KtXmlVectorType<KtDenavitHartenberg>;

namespace {

void report(const char* operation, const char* what) {
  Kt::Print::instance().write(Kt::Print::kError, "KtDenavitHartenberg::%s() bad %s type:\n",
                              operation, what);
}

}  // namespace

KtDenavitHartenberg KtDenavitHartenberg::defaultObject() {
  KtDenavitHartenberg link;
  link.setJointType(kPrismatic);
  link.setDhTheta(1.0);
  link.setDhD(2.0);
  link.setDhA(3.141592653589793);
  link.setDhAlpha(-1e-08);
  link.setPrimaryFrame({{12.0, -3.0, -4.0}, {-1.0, 2.0, -1.0, 4.0}});
  return link;
}

bool KtDenavitHartenberg::read(KtXmlReader& reader) {
  const bool good = KtLinkKinematics::read(reader);
  refreshAngles();
  return good;
}

void KtDenavitHartenberg::xmlInit() {
  registerJointTypeEnumerations();
  registerDhTypeEnumerations();
  KtLinkKinematics::xmlInit();
}

void KtDenavitHartenberg::registerComponents() {
  KtLinkKinematics::registerComponents();
  registerComponent(KtManip::KtJointTypeToken, &jointType_);
  registerComponent(KtManip::KtDhTypeToken, &dhType_);
  registerComponent(KtManip::KtPrecursorToken, &precursor_);
  registerComponent(KtManip::KtDhAToken, &a_);
  registerComponent(KtManip::KtDhDToken, &d_);
  registerComponent(KtManip::KtDhAlphaToken, &alpha_);
  registerComponent(KtManip::KtDhThetaToken, &theta_);
}

void KtDenavitHartenberg::registerJointTypeEnumerations() {
  jointType_.setEnumString(kRotational, KtManip::KtJointTypeRotationalToken.text());
  jointType_.setEnumString(kPrismatic, KtManip::KtJointTypePrismaticToken.text());
}

void KtDenavitHartenberg::registerDhTypeEnumerations() {
  dhType_.setEnumString(kPaul, KtManip::KtDhTypePaulToken.text());
  dhType_.setEnumString(kGeneralPaul, KtManip::KtDhTypeGeneralPaulToken.text());
  dhType_.setEnumString(kCraig, KtManip::KtDhTypeCraigToken.text());
  dhType_.setEnumString(kGeneralCraig, KtManip::KtDhTypeGeneralCraigToken.text());
  dhType_.setEnumString(kGeneral, KtManip::KtDhTypeGeneralToken.text());
}

const KtCoordinateSystemTransformation& KtDenavitHartenberg::calculateTransform(double q) const {
  return keptTransform(q, [&] {
    if (dhType_ == kGeneral && jointType_ == kRotational) {
      // The product of the precursor and Rz(q), of which two components are zero.
      const KtOrientation& r = precursor_.orientation();
      const double s = std::sin(0.5 * q);
      const double c = std::cos(0.5 * q);
      resultTransform_.setTranslation(precursor_.translation());
      resultTransform_.setOrientation(
          {r[0] * c - r[3] * s, r[1] * c + r[2] * s, r[2] * c - r[1] * s, r[3] * c + r[0] * s});
    } else {
      transformIdentityBy(q);
    }
  });
}

void KtDenavitHartenberg::transformBy(KtCoordinateSystemTransformation& t, double q) const {
  if (dhType_ == kGeneral) {
    if (jointType_ == kRotational) {
      t = precursor_;
      t.outboardTransformBy(KtVector(), KtOrientation::zRotation(q));
    } else if (jointType_ == kPrismatic) {
      t = precursor_;
      t.outboardTransformBy(KtVector::zVector(q), KtOrientation());
    } else {
      report("calculateTransform", "joint");
    }
    return;
  }
  if (!isPaul() && !isCraig()) {
    report("calculateTransform", "D-H");
    return;
  }
  KtVector p;
  KtOrientation r;
  getJointTransform(q, p, r);
  const bool general = dhType_ == kGeneralPaul || dhType_ == kGeneralCraig;
  if (t == KtCoordinateSystemTransformation()) {
    // As calculateTransform asks: one product less.
    if (!general) {
      t = {p, r};
      return;
    }
    t = precursor_;
  } else if (general) {
    t *= precursor_;
  }
  t.outboardTransformBy(p, r);
}

// The quaternion of Rz(theta) Rx(alpha) is the product of the two half-angle quaternions, which
// needs one sincos per q and neither a root nor a division. At a rotational joint its sign is fixed
// by making the component positive that Shepperd's rule would divide by: w, x, y or z by the signs
// of cos q and cos alpha. Rx(alpha) Rz(theta) differs in the sign of y alone, before that choice.
void KtDenavitHartenberg::getJointTransform(double q, KtVector& p, KtOrientation& r) const {
  const bool paul = isPaul();
  const double a = a_;
  double sh;
  double ch;
  if (jointType_ == kRotational) {
    sh = std::sin(0.5 * q);
    ch = std::cos(0.5 * q);
    const double c = ch * ch - sh * sh;
    const double s = 2.0 * sh * ch;
    const double d = d_;
    p = paul ? KtVector(a * c, a * s, d) : KtVector(a, -sinAlpha_ * d, cosAlpha_ * d);
    // At a quarter turn, where c is lost in rounding, the cosine itself has the sign.
    const bool turned = (std::abs(c) > 1e-15 ? c : std::cos(q)) <= 0.0;
    double sign = std::copysign(1.0, turned ? sh : ch) * halfAlphaSign_;
    if (turned && !paul && cosAlpha_ < 0.0) sign = -sign;
    sh *= sign;
    ch *= sign;
  } else if (jointType_ == kPrismatic) {
    sh = sinHalfTheta_;
    ch = cosHalfTheta_;
    const KtAngle& theta = theta_.value();
    p = paul ? KtVector(a * theta.cosine(), a * theta.sine(), q)
             : KtVector(a, -sinAlpha_ * q, cosAlpha_ * q);
  } else {
    report("calculateTransform", "joint");
    return;
  }
  const double y = sh * sinHalfAlpha_;
  r = {ch * cosHalfAlpha_, ch * sinHalfAlpha_, paul ? y : -y, sh * cosHalfAlpha_};
}

void KtDenavitHartenberg::getUnitFrameMotion(KtGeneralMotion& motion, double /*q*/) const {
  KtVector axis;
  if (!getAxis(axis, "getUnitFrameMotion")) return;
  if (jointType_ == kRotational) {
    // The frame's origin lies at (a, 0, 0) from the axis.
    motion.setLinear(isPaul() ? KtVector(0.0, a_ * cosAlpha_, -a_ * sinAlpha_) : KtVector());
    motion.setAngular(axis);
  } else if (jointType_ == kPrismatic) {
    motion.setLinear(axis);
    motion.setAngular(KtVector());
  } else {
    report("getUnitFrameMotion", "joint");
  }
}

const KtGeneralMotion& KtDenavitHartenberg::calculateVelocity(double q, double qDot) const {
  getUnitFrameMotion(resultVelocity_, q);
  resultVelocity_ *= qDot;
  return resultVelocity_;
}

const KtGeneralMotion& KtDenavitHartenberg::calculateAcceleration(double /*q*/, double qDot,
                                                                  double qDotDot) const {
  KtVector axis;
  // The name of the other function in the reports is an old text that programs may look for.
  if (!getAxis(axis, "accelerationFromJointVelocity")) return resultAcceleration_;
  if (jointType_ == kRotational) {
    resultAcceleration_.setLinear(
        isPaul() ? KtVector(-a_ * qDot * qDot, a_ * cosAlpha_ * qDotDot, -a_ * sinAlpha_ * qDotDot)
                 : KtVector());
    resultAcceleration_.setAngular(axis * qDotDot);
  } else if (jointType_ == kPrismatic) {
    resultAcceleration_.setLinear(axis * qDotDot);
    resultAcceleration_.setAngular(KtVector());
  } else {
    report("accelerationFromJointVelocity", "joint");
  }
  return resultAcceleration_;
}

void KtDenavitHartenberg::accelerationFromJointVelocity(double qDot, const KtVector& omega,
                                                        const KtVector& linearBase,
                                                        const KtVector& angularBase,
                                                        KtGeneralMotion& result) const {
  KtVector axis;
  if (!getAxis(axis, "accelerationFromJointVelocity")) return;
  if (jointType_ == kRotational) {
    KtVector linear = linearBase;
    if (isPaul()) {
      // 2 omega x (qDot a (0, ca, -sa)) of Coriolis and the centripetal (-a qDot^2, 0, 0).
      linear += KtVector(-(2.0 * sinAlpha_ * omega.y + 2.0 * cosAlpha_ * omega.z + qDot),
                         2.0 * sinAlpha_ * omega.x, 2.0 * cosAlpha_ * omega.x) *
                (a_ * qDot);
    }
    const KtVector angular = angularBase + omega.cross(axis) * qDot;
    result.setLinear(linear);
    result.setAngular(angular);
  } else if (jointType_ == kPrismatic) {
    const KtVector linear = linearBase + omega.cross(axis) * (2.0 * qDot);
    const KtVector angular = angularBase;
    result.setLinear(linear);
    result.setAngular(angular);
  } else {
    report("accelerationFromJointVelocity", "joint");
  }
}

double KtDenavitHartenberg::upperBoundDhFrameDistance(const KtJointActuator& actuator) const {
  if (jointType_ == kRotational) {
    const double distance = calculateTransform(actuator.upperLimit()).translation().mag();
    return isPaul() ? distance + 2.0 * std::abs(a_.value()) : distance;
  }
  if (jointType_ == kPrismatic) {
    const double lower = calculateTransform(actuator.lowerLimit()).translation().mag();
    const double upper = calculateTransform(actuator.upperLimit()).translation().mag();
    return std::max(lower, upper);
  }
  Kt::Print::instance().write(
      Kt::Print::kError, "KtDenavitHartenberg::upperBoundDhFrameDistance-->Joint Type (%d) unknown",
      static_cast<int>(jointType_.value()));
  return 0.0;
}

// Joined in the child's own frame, where the unit motion has few components that are not zero.
bool KtDenavitHartenberg::addChildArbdToParent(KtArticulatedBodyDynamics& parent,
                                               const KtArticulatedBodyDynamics& child, double q,
                                               double inertia, double torque) const {
  if (!hasMotion_) {
    // Reports the type. The child counts as fixed to its parent.
    KtGeneralMotion unit;
    getUnitFrameMotion(unit, q);
  }
  const KtCoordinateSystemTransformation& t = calculateTransform(q);
  parent.joinThrough(child, hasMotion_ ? motion_ : Kt::detail::JointMotion(), inertia, torque,
                     Kt::detail::RotationMatrix(t.orientation()), t.translation());
  return true;
}

void KtDenavitHartenberg::scaleBy(double factor) {
  precursor_.setTranslation(precursor_.translation() * factor);
  d_ = d_ * factor;
  a_ = a_ * factor;
  refreshMotion();
}

void KtDenavitHartenberg::transformBy(const KtCoordinateSystemTransformation& t) {
  const KtCoordinateSystemTransformation by = t;  // which may be the precursor
  generalise();
  precursor_ = by * precursor_;
}

double KtDenavitHartenberg::jointParameterScalability() const {
  if (jointType_ == kRotational) return 0.0;
  if (jointType_ == kPrismatic) return 1.0;
  Kt::Print::instance().write(
      Kt::Print::kError,
      "KtDenavitHartenberg::jointParameterScalability(): unknown joint type (%d).",
      static_cast<int>(jointType_.value()));
  return 0.0;
}

void KtDenavitHartenberg::changeInboardFrameBy(const KtCoordinateSystemTransformation& t) {
  const KtCoordinateSystemTransformation by = t;  // which may be the precursor
  generalise();
  precursor_ = precursor_ * by;
  transformValid_ = false;
}

void KtDenavitHartenberg::setJointType(unsigned int type) {
  jointType_ = type;
  refreshMotion();
  transformValid_ = false;
}

void KtDenavitHartenberg::setDhType(unsigned int type) {
  dhType_ = type;
  refreshMotion();
  transformValid_ = false;
}

void KtDenavitHartenberg::setPrecursor(const KtCoordinateSystemTransformation& t) {
  precursor_ = t;
  transformValid_ = false;
}

void KtDenavitHartenberg::setDhTheta(const KtAngle& theta) {
  theta_ = theta;
  refreshAngles();
  transformValid_ = false;
}

void KtDenavitHartenberg::setDhD(double d) {
  d_ = d;
  transformValid_ = false;
}

void KtDenavitHartenberg::setDhA(double a) {
  a_ = a;
  refreshMotion();
  transformValid_ = false;
}

void KtDenavitHartenberg::setDhAlpha(const KtAngle& alpha) {
  alpha_ = alpha;
  refreshAngles();
  transformValid_ = false;
}

bool KtDenavitHartenberg::approxEq(const KtDenavitHartenberg& other, double tolerance) const {
  return jointType_ == other.jointType_ && dhType_ == other.dhType_ &&
         precursor_.approxEq(other.precursor_, tolerance) &&
         KtMath::approxEq(theta_.value(), other.theta_.value(), tolerance) &&
         KtMath::approxEq(d_, other.d_, tolerance) && KtMath::approxEq(a_, other.a_, tolerance) &&
         KtMath::approxEq(alpha_.value(), other.alpha_.value(), tolerance);
}

bool KtDenavitHartenberg::operator==(const KtDenavitHartenberg& other) const {
  return KtLinkKinematics::operator==(other) && jointType_ == other.jointType_ &&
         dhType_ == other.dhType_ && precursor_ == other.precursor_ && a_ == other.a_ &&
         d_ == other.d_ && alpha_ == other.alpha_ && theta_ == other.theta_;
}

bool KtDenavitHartenberg::getAxis(KtVector& axis, const char* operation) const {
  if (isPaul()) {
    axis = {0.0, sinAlpha_, cosAlpha_};
  } else if (isCraig() || dhType_ == kGeneral) {
    axis = {0.0, 0.0, 1.0};
  } else {
    report(operation, "D-H");
    return false;
  }
  return true;
}

void KtDenavitHartenberg::generalise() {
  if (dhType_ != kPaul && dhType_ != kCraig) return;
  setDhType(dhType_ == kPaul ? kGeneralPaul : kGeneralCraig);
  precursor_.setToIdentity();
}

void KtDenavitHartenberg::refreshAngles() {
  const KtAngle& alpha = alpha_.value();
  sinAlpha_ = alpha.sine();
  cosAlpha_ = alpha.cosine();
  sinHalfAlpha_ = std::sin(0.5 * alpha);
  cosHalfAlpha_ = std::cos(0.5 * alpha);
  halfAlphaSign_ = (cosAlpha_ >= 0.0 ? cosHalfAlpha_ : sinHalfAlpha_) < 0.0 ? -1.0 : 1.0;
  sinHalfTheta_ = std::sin(0.5 * theta_.value());
  cosHalfTheta_ = std::cos(0.5 * theta_.value());
  refreshMotion();
}

void KtDenavitHartenberg::refreshMotion() noexcept {
  const bool paul = isPaul();
  const bool rotational = jointType_ == kRotational;
  hasMotion_ =
      (paul || isCraig() || dhType_ == kGeneral) && (rotational || jointType_ == kPrismatic);
  const KtVector axis = paul ? KtVector(0.0, sinAlpha_, cosAlpha_) : KtVector(0.0, 0.0, 1.0);
  motion_ = {};
  if (rotational) {
    motion_.angular = axis;
    // The frame's origin lies at (a, 0, 0) from the axis.
    if (paul) {
      motion_.linear = {0.0, a_ * cosAlpha_, -a_ * sinAlpha_};
      motion_.centripetal = {-a_, 0.0, 0.0};
    }
  } else {
    motion_.linear = axis;
  }
  const KtVector none;
  motion_.turnsAboutZ = motion_.angular == KtVector(0.0, 0.0, 1.0) && motion_.linear == none &&
                        motion_.centripetal == none;
}
