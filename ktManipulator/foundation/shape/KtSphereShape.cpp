#include "ktManipulator/foundation/shape/KtSphereShape.h"

#include <cmath>
#include <numbers>

#include "ktManipulator/foundation/shape/algorithms/KtLineClip.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

const KtToken& KtSphereShape::classToken() {
  return KtGeom::KtSphereShapeToken;
}

void KtSphereShape::registerComponents() {
  KtBasePhysicalExtent::registerComponents();
  registerComponent(KtGeom::KtCenterToken, &center_);
  registerComponent(KtGeom::KtRadiusToken, &radius_);
}

void KtSphereShape::boundingSpheres(std::vector<KtSphere>& spheres) const {
  spheres.emplace_back(center_, radius(), 3);
}

KtCapsule KtSphereShape::boundingCapsule() const {
  return {KtLineSegment(center_, center_), radius()};
}

const KtShape* KtSphereShape::intersectLineSegment(const KtLineSegment& segment,
                                                   double& distance) const {
  Kt::detail::LineClip clip(segment);
  clip.toBall(center_, radius());
  return clip.enter(distance) ? this : nullptr;
}

KtVolumeMoments KtSphereShape::volumeMoments() const {
  const double r = radius();
  KtVolumeMoments moments;
  moments.volume = 4.0 / 3.0 * std::numbers::pi * r * r * r;
  const double square = 0.2 * r * r * moments.volume;
  moments.squares = {square, square, square};
  return moments.transformedBy(center());
}

bool KtSphereShape::contains(const KtVector& point) const {
  return (point - center_).mag() <= radius();
}

void KtSphereShape::scaleOwn(double factor) {
  center_ *= factor;
  radius_ = KtNonNegReal(radius() * std::abs(factor));
}

void KtSphereShape::transformOwn(const KtCoordinateSystemTransformation& t) {
  center_ = t * center_;
}

void KtSphereShape::truncateOwn(double precision) {
  center_ = truncated(center_, precision);
  radius_ = KtNonNegReal(truncated(radius(), precision));
}
