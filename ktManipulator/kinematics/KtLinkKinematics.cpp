#include "ktManipulator/kinematics/KtLinkKinematics.h"

#include "ktManipulator/foundation/geometry/KtGeneralForce.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/inertia/KtArticulatedBodyDynamics.h"

namespace {

// Step of the differences: near the root of the machine's precision, where the error of rounding
// and that of the curvature are alike.
constexpr double kStep = 1e-08;

}  // namespace

bool KtLinkKinematics::read(KtXmlReader& reader) {
  const bool good = KtBaseExpressionTreeElement::read(reader);
  primaryFrameInverse_ = primaryFrame_.inverse();
  return good;
}

void KtLinkKinematics::registerComponents() {
  KtBaseExpressionTreeElement::registerComponents();
  registerComponent(KtManip::KtPrimaryFrameToken, &primaryFrame_);
}

bool KtLinkKinematics::approxEq(const KtLinkKinematics& other, double tolerance) const {
  return primaryFrame_.approxEq(other.primaryFrame_, tolerance);
}

void KtLinkKinematics::setPrimaryFrame(const KtCoordinateSystemTransformation& frame) {
  primaryFrame_ = frame;
  primaryFrameInverse_ = frame.inverse();
}

const KtGeneralMotion& KtLinkKinematics::calculateVelocity(double q, double qDot) const {
  const KtCoordinateSystemTransformation ahead = calculateTransform(q + kStep);
  KtCoordinateSystemTransformation here = calculateTransform(q);
  const KtOrientation& r = here.orientation();
  double rate[4];
  for (unsigned i = 0; i < 4; ++i) rate[i] = (ahead.orientation()[i] - r[i]) / kStep;
  // Twice the vector part of the conjugate of r times its rate: the rotation rate in the outboard
  // frame.
  const KtVector omega =
      2.0 * KtVector(-r[1] * rate[0] + r[0] * rate[1] + r[3] * rate[2] - r[2] * rate[3],
                     -r[2] * rate[0] - r[3] * rate[1] + r[0] * rate[2] + r[1] * rate[3],
                     -r[3] * rate[0] + r[2] * rate[1] - r[1] * rate[2] + r[0] * rate[3]);
  KtVector linear = (ahead.translation() - here.translation()) * 1e8;
  here.invert();
  here.orientation().transform(linear);
  resultVelocity_.setLinear(linear * qDot);
  resultVelocity_.setAngular(omega * qDot);
  return resultVelocity_;
}

const KtGeneralMotion& KtLinkKinematics::calculateAcceleration(double q, double qDot,
                                                               double qDotDot) const {
  KtGeneralMotion here = calculateVelocity(q, qDot);
  KtGeneralMotion ahead = calculateVelocity(q + kStep, qDot);
  KtGeneralMotion faster = calculateVelocity(q, qDot + kStep);
  const KtOrientation orientationAhead = calculateTransform(q + kStep).orientation();
  const KtOrientation orientation = calculateTransform(q).orientation();
  // The velocities stand in frames that turn: they are compared in the inboard frame.
  here.transformBy(orientation);
  ahead.transformBy(orientationAhead);
  faster.transformBy(orientation);
  resultAcceleration_ = (ahead - here) * (qDot / kStep) + (faster - here) * (qDotDot / kStep);
  resultAcceleration_.transformBy(orientation.inverse());
  return resultAcceleration_;
}

double KtLinkKinematics::unitAccelerationTorque(double q,
                                                const KtArticulatedBodyInertia& inertia) const {
  const KtGeneralMotion unit = calculateAcceleration(q, 0.0, 1.0);
  return torqueRequiredToExert(q, inertia.calculateForce(unit));
}

double KtLinkKinematics::torqueRequiredToExert(double q, const KtGeneralForce& force) const {
  const KtGeneralMotion unit = calculateAcceleration(q, 0.0, 1.0);
  return unit.linear().dot(force.force()) + unit.angular().dot(force.moment());
}

bool KtLinkKinematics::addChildArbdToParent(KtArticulatedBodyDynamics& parent,
                                            const KtArticulatedBodyDynamics& child, double q,
                                            double inertia, double torque) const {
  const KtCoordinateSystemTransformation t = calculateTransform(q);
  KtArticulatedBodyDynamics moved(child);
  moved.transformBy(t);
  KtGeneralMotion unit = calculateAcceleration(q, 0.0, 1.0);
  unit.transformBy(t);
  parent.joinWith(moved, unit, inertia, torque);
  return true;
}
