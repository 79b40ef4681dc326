#include "ktManipulator/kinematics/KtLinkKinematicsContainer.h"

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/kinematics/KtDenavitHartenberg.h"
#include "ktManipulator/kinematics/KtQuadrilateralTypeLink.h"
#include "ktManipulator/kinematics/KtScrewTypeLink.h"

template class KtBaseExpressionTreeContainer<KtLinkKinematics>;

const KtCoordinateSystemTransformation KtLinkKinematicsContainer::m_theIdentity;
const KtGeneralMotion KtLinkKinematicsContainer::m_theNullMotion;

void KtLinkKinematicsContainer::registerComponentCreators() {
  registerComponentCreator(KtDenavitHartenberg::classToken(), KtDenavitHartenberg::creator);
  registerComponentCreator(KtScrewTypeLink::classToken(), KtScrewTypeLink::creator);
  registerComponentCreator(KtQuadrilateralTypeLink::classToken(), KtQuadrilateralTypeLink::creator);
}

const KtCoordinateSystemTransformation& KtLinkKinematicsContainer::primaryFrame() const {
  const KtLinkKinematics* model = topElement();
  return model != nullptr ? model->primaryFrame() : m_theIdentity;
}

const KtCoordinateSystemTransformation& KtLinkKinematicsContainer::primaryFrameInverse() const {
  const KtLinkKinematics* model = topElement();
  return model != nullptr ? model->primaryFrameInverse() : m_theIdentity;
}

void KtLinkKinematicsContainer::setPrimaryFrame(const KtCoordinateSystemTransformation& frame) {
  if (KtLinkKinematics* model = topElement(); model != nullptr) {
    model->setPrimaryFrame(frame);
  } else if (!(frame == m_theIdentity)) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtLinkKinematicsContainer::setPrimaryFrame-->Null container\n");
  }
}

const KtCoordinateSystemTransformation& KtLinkKinematicsContainer::calculateTransform(
    double q) const {
  const KtLinkKinematics* model = topElement();
  return model != nullptr ? model->calculateTransform(q) : m_theIdentity;
}

bool KtLinkKinematicsContainer::transformBy(KtCoordinateSystemTransformation& t, double q) const {
  const KtLinkKinematics* model = topElement();
  if (model != nullptr) model->transformBy(t, q);
  return model != nullptr;
}

bool KtLinkKinematicsContainer::transformBy(const KtCoordinateSystemTransformation& t) {
  KtLinkKinematics* model = topElement();
  if (model != nullptr) model->transformBy(t);
  return model != nullptr;
}

const KtGeneralMotion& KtLinkKinematicsContainer::calculateVelocity(double q, double qDot) const {
  const KtLinkKinematics* model = topElement();
  return model != nullptr ? model->calculateVelocity(q, qDot) : m_theNullMotion;
}

const KtGeneralMotion& KtLinkKinematicsContainer::calculateAcceleration(double q, double qDot,
                                                                        double qDotDot) const {
  const KtLinkKinematics* model = topElement();
  return model != nullptr ? model->calculateAcceleration(q, qDot, qDotDot) : m_theNullMotion;
}

double KtLinkKinematicsContainer::unitAccelerationTorque(
    double q, const KtArticulatedBodyInertia& inertia) const {
  const KtLinkKinematics* model = topElement();
  return model != nullptr ? model->unitAccelerationTorque(q, inertia) : 0.0;
}

double KtLinkKinematicsContainer::torqueRequiredToExert(double q,
                                                        const KtGeneralForce& force) const {
  const KtLinkKinematics* model = topElement();
  return model != nullptr ? model->torqueRequiredToExert(q, force) : 0.0;
}

void KtLinkKinematicsContainer::scaleBy(double factor) {
  if (KtLinkKinematics* model = topElement(); model != nullptr) model->scaleBy(factor);
}

bool KtLinkKinematicsContainer::addChildArbdToParent(KtArticulatedBodyDynamics& parent,
                                                     const KtArticulatedBodyDynamics& child,
                                                     double q, double inertia,
                                                     double torque) const {
  const KtLinkKinematics* model = topElement();
  return model != nullptr && model->addChildArbdToParent(parent, child, q, inertia, torque);
}

double KtLinkKinematicsContainer::jointParameterScalability() const {
  const KtLinkKinematics* model = topElement();
  return model != nullptr ? model->jointParameterScalability() : 0.0;
}
