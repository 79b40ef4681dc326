#include "ktManipulator/foundation/shape/KtCapsuleShape.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "ktManipulator/foundation/shape/algorithms/KtLineClip.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

const KtToken& KtCapsuleShape::classToken() {
  return KtGeom::KtCapsuleShapeToken;
}

void KtCapsuleShape::registerComponents() {
  KtBasePhysicalExtent::registerComponents();
  registerComponent(KtGeom::KtEndpoint0Token, &endpoint0_);
  registerComponent(KtGeom::KtEndpoint1Token, &endpoint1_);
  registerComponent(KtGeom::KtRadiusToken, &radius_);
}

void KtCapsuleShape::boundingSpheres(std::vector<KtSphere>& spheres) const {
  spheres.emplace_back(endpoint0_, margin(), 3);
  spheres.emplace_back(endpoint1_, margin(), 3);
}

const KtShape* KtCapsuleShape::intersectLineSegment(const KtLineSegment& segment,
                                                    double& distance) const {
  // The capsule is the union of two balls and a cylinder.
  Kt::detail::LineClip ball0(segment);
  ball0.toBall(endpoint0_, margin());
  Kt::detail::LineClip ball1(segment);
  ball1.toBall(endpoint1_, margin());
  const KtVector axis = endpoint1_ - endpoint0_;
  const double length = axis.mag();
  Kt::detail::LineClip side(segment);
  if (length > 0.0) {
    side.toTube(endpoint0_, axis / length, margin());
    side.toSlab(axis / length, endpoint0_, 0.0, length);
  } else {
    side.toNothing();
  }
  double nearest = 0.0;
  bool met = false;
  for (const Kt::detail::LineClip* piece : {&ball0, &ball1, &side}) {
    double one = 0.0;
    if (!piece->enter(one)) continue;
    nearest = met ? std::min(nearest, one) : one;
    met = true;
  }
  if (!met) return nullptr;
  distance = nearest;
  return this;
}

KtVolumeMoments KtCapsuleShape::volumeMoments() const {
  const double r = margin();
  const KtVector axis = endpoint1_ - endpoint0_;
  const double length = axis.mag();
  const double cylinder = std::numbers::pi * r * r * length;
  const double ball = 4.0 / 3.0 * std::numbers::pi * r * r * r;
  // Across the axis both are round; along it the two half balls stand with their flat faces at the
  // ends: their centroids are 3/8 r beyond, and the square of their distance from the face is r^2/5
  // in the mean.
  const double across = (0.25 * cylinder + 0.2 * ball) * r * r;
  const double half = 0.5 * length;
  const double along = cylinder * length * length / 12.0 +
                       ball * (half * half + 2.0 * half * 0.375 * r + 0.2 * r * r);
  KtVolumeMoments moments;
  moments.volume = cylinder + ball;
  moments.squares = {across, across, across};
  if (length > 0.0) moments.addProduct((along - across) / (length * length), axis);
  return moments.transformedBy((endpoint0_ + endpoint1_) * 0.5);
}

bool KtCapsuleShape::contains(const KtVector& point) const {
  const KtVector axis = endpoint1_ - endpoint0_;
  const double share =
      std::clamp((point - endpoint0_).dot(axis) / KtMath::nonZeroPos(axis.magSquared()), 0.0, 1.0);
  return (point - endpoint0_ - axis * share).mag() <= margin();
}

void KtCapsuleShape::scaleOwn(double factor) {
  endpoint0_ *= factor;
  endpoint1_ *= factor;
  radius_ = KtNonNegReal(margin() * std::abs(factor));
}

void KtCapsuleShape::transformOwn(const KtCoordinateSystemTransformation& t) {
  endpoint0_ = t * endpoint0_;
  endpoint1_ = t * endpoint1_;
}

void KtCapsuleShape::truncateOwn(double precision) {
  endpoint0_ = truncated(endpoint0_, precision);
  endpoint1_ = truncated(endpoint1_, precision);
  radius_ = KtNonNegReal(truncated(margin(), precision));
}
