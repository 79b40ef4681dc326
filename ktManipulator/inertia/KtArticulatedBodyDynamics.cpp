#include "ktManipulator/inertia/KtArticulatedBodyDynamics.h"

#include "ktManipulator/foundation/xml/KtXmlTokens.h"
#include "ktManipulator/inertia/KtRigidBodyMassProperties.h"

void KtArticulatedBodyDynamics::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtInertiaToken, &inertia_);
  registerComponent(KtManip::KtBiasToken, &bias_);
  // The bias is written under another name; its own name is accepted when reading.
  registerComponentReadOnly(KtXml::qualifiedToken("bias"), &bias_);
}

void KtArticulatedBodyDynamics::transformBy(const KtCoordinateSystemTransformation& t) {
  inertia_.transformBy(t);
  bias_.transformBy(t);
}

void KtArticulatedBodyDynamics::transformBy(const KtOrientation& r) {
  inertia_.transformBy(r);
  bias_.transformBy(r);
}

void KtArticulatedBodyDynamics::transformBy(const KtVector& p) {
  inertia_.transformBy(p);
  bias_.transformBy(p);
}

void KtArticulatedBodyDynamics::joinWith(const KtArticulatedBodyDynamics& child,
                                         const KtGeneralMotion& s, double d, double tau) {
  KtArticulatedBodyDynamics shown;
  shown.setToTransformedValue(child, s, d, tau);
  *this += shown;
}

void KtArticulatedBodyDynamics::setToTransformedValue(const KtArticulatedBodyDynamics& child,
                                                      const KtGeneralMotion& s, double d,
                                                      double tau) {
  const KtGeneralForce bias = child.bias_;
  KtGeneralForce h;
  double denominator = 0.0;
  inertia_.setToTransformedValue(child.inertia_, s, d, h, denominator);
  bias_ = bias;
  if (denominator == 0.0) return;
  const double rest = tau - s.linear().dot(bias.force()) - s.angular().dot(bias.moment());
  bias_ += h * (rest / denominator);
}

KtGeneralForce KtArticulatedBodyDynamics::calculateForce(
    const KtGeneralMotion& acceleration) const {
  return inertia_.calculateForce(acceleration) + bias_;
}

KtGeneralMotion KtArticulatedBodyDynamics::calculateAcceleration(
    const KtGeneralForce& force) const {
  return inertia_.calculateAcceleration(force - bias_);
}

void KtArticulatedBodyDynamics::setInertiaFromRigidBody(
    const KtRigidBodyMassProperties& properties) {
  inertia_.setFromRigidBody(properties);
}

void KtArticulatedBodyDynamics::set(const KtArticulatedBodyInertia& inertia,
                                    const KtGeneralForce& bias) {
  inertia_ = inertia;
  bias_ = bias;
}

void KtArticulatedBodyDynamics::setInertiaFromArray(const KtReArray& array) {
  inertia_.setFromArray(array);
}

void KtArticulatedBodyDynamics::getInertiaArray(KtReArray& array) const {
  inertia_.getArray(array);
}

bool KtArticulatedBodyDynamics::approxEq(const KtArticulatedBodyDynamics& other,
                                         double tolerance) const {
  return inertia_.approxEq(other.inertia_, tolerance) && bias_.approxEq(other.bias_, tolerance);
}

void KtArticulatedBodyDynamics::setRigid(const KtRigidBodyMassProperties& properties,
                                         const KtVector& biasForce,
                                         const KtVector& biasMoment) noexcept {
  const double m = properties.massValue();
  inertia_.linear_.set(m, m, m, 0.0, 0.0, 0.0);
  inertia_.angular_ = properties.secondMomentValue();
  inertia_.cross_.setToCrossProductMatrix(-properties.firstMomentValue());
  inertia_.isRigid_ = true;
  bias_.setForce(biasForce);
  bias_.setMoment(biasMoment);
}

void KtArticulatedBodyDynamics::joinThrough(const KtArticulatedBodyDynamics& child,
                                            const Kt::detail::JointMotion& s, double d, double tau,
                                            const Kt::detail::RotationMatrix& r,
                                            const KtVector& p) noexcept {
  KtVector u;  // I s
  KtVector w;
  const double* l = child.inertia_.linear_.values();
  const double* a = child.inertia_.angular_.values();
  const double* x = child.inertia_.cross_[0];
  const KtVector& biasForce = child.bias_.force();
  const KtVector& biasMoment = child.bias_.moment();
  double denominator = d;
  double rest = tau;
  if (s.turnsAboutZ) {
    u = {x[2], x[5], x[8]};
    w = {a[4], a[5], a[2]};
    denominator += w.z;
    rest -= biasMoment.z;
  } else {
    child.inertia_.getSparseForce(s.linear, s.angular, u, w);
    denominator += u.dot(s.linear) + w.dot(s.angular);
    rest = tau - s.linear.dot(biasForce) - s.angular.dot(biasMoment);
  }
  const double k = denominator == 0.0 ? 0.0 : 1.0 / denominator;
  const KtVector ku = u * k;
  const KtVector kw = w * k;
  const double shownLinear[6] = {l[0] - ku.x * u.x, l[1] - ku.y * u.y, l[2] - ku.z * u.z,
                                 l[3] - ku.x * u.y, l[4] - ku.x * u.z, l[5] - ku.y * u.z};
  const double shownAngular[6] = {a[0] - kw.x * w.x, a[1] - kw.y * w.y, a[2] - kw.z * w.z,
                                  a[3] - kw.x * w.y, a[4] - kw.x * w.z, a[5] - kw.y * w.z};
  const double shownCross[9] = {x[0] - ku.x * w.x, x[1] - ku.x * w.y, x[2] - ku.x * w.z,
                                x[3] - ku.y * w.x, x[4] - ku.y * w.y, x[5] - ku.y * w.z,
                                x[6] - ku.z * w.x, x[7] - ku.z * w.y, x[8] - ku.z * w.z};
  inertia_.addRotatedAndMoved(shownLinear, shownAngular, shownCross, r, p);
  const double c = rest * k;
  const KtVector force = r * (biasForce + u * c);
  bias_.setForce(bias_.force() + force);
  bias_.setMoment(bias_.moment() + r * (biasMoment + w * c) + p.cross(force));
}

double KtArticulatedBodyDynamics::jointAcceleration(const Kt::detail::JointMotion& s, double d,
                                                    double tau, const KtVector& a,
                                                    const KtVector& alpha) const noexcept {
  KtVector u;  // I s, which gives s . I a as well, I being symmetric
  KtVector w;
  if (s.turnsAboutZ) {
    const double* inertia = inertia_.angular_.values();
    const double* x = inertia_.cross_[0];
    u = {x[2], x[5], x[8]};
    w = {inertia[4], inertia[5], inertia[2]};
    const double denominator = w.z + d;
    return denominator == 0.0 ? 0.0
                              : (tau - (u.dot(a) + w.dot(alpha) + bias_.moment().z)) / denominator;
  }
  inertia_.getSparseForce(s.linear, s.angular, u, w);
  const double denominator = u.dot(s.linear) + w.dot(s.angular) + d;
  if (denominator == 0.0) return 0.0;
  const double load =
      u.dot(a) + w.dot(alpha) + s.linear.dot(bias_.force()) + s.angular.dot(bias_.moment());
  return (tau - load) / denominator;
}
