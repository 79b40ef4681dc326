#include "ktManipulator/foundation/shape/KtEllipsoidShape.h"

#include <cmath>
#include <numbers>

#include "ktManipulator/foundation/shape/algorithms/KtBoundingVolumeFit.h"
#include "ktManipulator/foundation/shape/algorithms/KtLineClip.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

namespace {

// The vector with each component divided by a semi-axis, in which the ellipsoid is the unit ball.
KtVector inUnits(const KtVector& v, const KtVector& radii) {
  return {v.x / KtMath::nonZeroPos(std::abs(radii.x)), v.y / KtMath::nonZeroPos(std::abs(radii.y)),
          v.z / KtMath::nonZeroPos(std::abs(radii.z))};
}

}  // namespace

const KtToken& KtEllipsoidShape::classToken() {
  return KtGeom::KtEllipsoidShapeToken;
}

void KtEllipsoidShape::registerComponents() {
  KtFramedExtent::registerComponents();
  registerComponent(KtGeom::KtRadiiToken, &radii_);
}

KtVector KtEllipsoidShape::ownSupport(const KtVector& direction) const {
  const KtVector u =
      KtVector(radii_.x * direction.x, radii_.y * direction.y, radii_.z * direction.z).unitVector();
  return {radii_.x * u.x, radii_.y * u.y, radii_.z * u.z};
}

void KtEllipsoidShape::ownPoints(std::vector<KtVector>& points) const {
  for (const KtVector& p : Kt::detail::unitBallPoints()) {
    points.emplace_back(radii_.x * p.x, radii_.y * p.y, radii_.z * p.z);
  }
}

void KtEllipsoidShape::clip(Kt::detail::LineClip& line) const {
  // Without a thickness there is nothing to meet: squares beyond the range of a double give none.
  line.toLength(inUnits(line.point(), radii_), inUnits(line.along(), radii_), 1.0);
}

KtVolumeMoments KtEllipsoidShape::ownMoments() const {
  KtVolumeMoments moments;
  moments.volume = 4.0 / 3.0 * std::numbers::pi * std::abs(radii_.x * radii_.y * radii_.z);
  moments.squares = KtVector(radii_.x * radii_.x, radii_.y * radii_.y, radii_.z * radii_.z) *
                    (0.2 * moments.volume);
  return moments;
}

bool KtEllipsoidShape::ownContains(const KtVector& point) const {
  return inUnits(point, radii_).magSquared() <= 1.0;
}
