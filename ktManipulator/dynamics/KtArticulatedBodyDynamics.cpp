#include "ktManipulator/dynamics/KtArticulatedBodyDynamics.h"

#include "ktManipulator/foundation/xml/KtXmlTokens.h"

void KtArticulatedBodyDynamics::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtInertiaToken, &inertia_);
  registerComponent(KtManip::KtBiasToken, &bias_);
  // The bias is written under a name that says something else; its own name is read as well.
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
