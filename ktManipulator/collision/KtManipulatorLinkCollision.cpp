// What the search for collisions asks of a link.
#include <algorithm>

#include "ktManipulator/model/KtManipulatorLink.h"

double KtManipulatorLink::lookupCollisionAvoidanceMetric() const {
  double metric = 1.0;
  const KtShape* shape = topShape();
  const KtDataMap* surface = shape != nullptr ? shape->defaultSurface() : nullptr;
  if (surface != nullptr) surface->lookup(KtManip::KtCollisionAvoidanceMetricToken.text(), metric);
  return metric;
}

KtShapeQueryData& KtManipulatorLink::queryData() const {
  return scratch().queryData;
}

double KtManipulatorLink::upperBoundExtentDistance() const {
  const KtLinkKinematics* model = linkKinematicsContainer_.topElement();
  return model != nullptr ? model->upperBoundDhFrameDistance(jointActuator_) : 0.0;
}

double KtManipulatorLink::upperBoundSubmanipulatorExtentDistance() const {
  double distance = 0.0;
  if (const KtShape* shape = topShape(); shape != nullptr && !shape->isEmpty()) {
    const KtCapsule capsule = primaryFrame() * shape->boundingCapsule();
    const KtLineSegment& axis = capsule.lineSegment();
    distance = capsule.radius() + std::max(axis.endpoint0().mag(), axis.endpoint1().mag());
  }
  for (const KtManipulatorLink& child : childLinks().elements()) {
    distance = std::max(distance, child.upperBoundExtentDistance() +
                                      child.upperBoundSubmanipulatorExtentDistance());
  }
  return distance;
}

void KtManipulatorLink::axisAlignedBoundingBoxVectorInSystem(
    KtManipulatorActivePositionState& positionState, std::vector<KtAxisAlignedBoundingBox>& boxes,
    std::vector<KtU32>& identifiers) const {
  const KtShape* shape = topShape();
  if (shape == nullptr) return;
  std::vector<KtCapsule> capsules;
  shape->boundingCapsules(capsules, identifiers);
  const KtCoordinateSystemTransformation& frame = primaryFrameInSystem(positionState);
  for (const KtCapsule& capsule : capsules) {
    KtAxisAlignedBoundingBox box;
    box.resize(frame * capsule);
    boxes.push_back(box);
  }
}

void KtManipulatorLink::intersectLineSegment(const KtLineSegment& /*segment*/,
                                             KtLinkPointEvent& /*event*/,
                                             KtManipulatorActiveState* /*activeState*/,
                                             KtU32 /*level*/) const {}
