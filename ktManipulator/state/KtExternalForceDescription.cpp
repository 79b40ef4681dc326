#include "ktManipulator/state/KtExternalForceDescription.h"

const KtLineSegment KtExternalForceDescription::m_TheNullLineSegment;

const KtLineSegment& KtExternalForceDescription::representativeForceVector() const {
  const KtVector& force = externalLinkForce_.force();
  const double square = force.dot(force);
  if (square == 0.0 || !valid_) return m_TheNullLineSegment;
  const KtVector point = force.cross(externalLinkForce_.moment()) * (1.0 / square);
  representativeForceVector_.setEndpoint0(point);
  representativeForceVector_.setEndpoint1(point + force);
  return representativeForceVector_;
}
