#include "ktManipulator/foundation/shape/KtConeShape.h"

#include <cmath>
#include <numbers>

#include "ktManipulator/foundation/shape/algorithms/KtBoundingVolumeFit.h"
#include "ktManipulator/foundation/shape/algorithms/KtLineClip.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

const KtToken& KtConeShape::classToken() {
  return KtGeom::KtConeShapeToken;
}

KtVector KtConeShape::ownSupport(const KtVector& direction) const {
  const double across = std::hypot(direction.x, direction.y);
  if (direction.z * height() >= across * radius()) return KtVector::zVector(height());
  return KtVector(direction.x, direction.y, 0.0).unitVector() * radius();
}

void KtConeShape::ownPoints(std::vector<KtVector>& points) const {
  Kt::detail::appendCircle(points, radius(), 0.0);
  points.push_back(KtVector::zVector(height()));
}

void KtConeShape::clip(Kt::detail::LineClip& line) const {
  line.toSlab(KtVector::zVector(1.0), KtVector(), 0.0, height());
  if (height() == 0.0) {  // a disc
    line.toTube(KtVector(), KtVector::zVector(1.0), radius());
    return;
  }
  // In the slab: x^2 + y^2 <= (r / h)^2 (h - z)^2, seen from the point next to the base's centre.
  const KtVector& d = line.along();
  const double shift = -line.point().dot(d) / KtMath::nonZeroPos(d.magSquared());
  const KtVector p = line.point() + d * shift;
  const double ratio = radius() / height();
  const double square = ratio * ratio;
  const double below = height() - p.z;
  line.toQuadratic(d.x * d.x + d.y * d.y - square * d.z * d.z,
                   p.x * d.x + p.y * d.y + square * below * d.z,
                   p.x * p.x + p.y * p.y - square * below * below, shift);
}

KtVolumeMoments KtConeShape::ownMoments() const {
  const double r = radius();
  const double h = height();
  KtVolumeMoments moments;
  moments.volume = std::numbers::pi * r * r * h / 3.0;
  moments.first = KtVector::zVector(0.25 * h * moments.volume);
  moments.squares = KtVector(0.15 * r * r, 0.15 * r * r, 0.1 * h * h) * moments.volume;
  return moments;
}

bool KtConeShape::ownContains(const KtVector& point) const {
  if (!(point.z >= 0.0 && point.z <= height())) return false;
  const double across = std::hypot(point.x, point.y);
  return height() == 0.0 ? across <= radius()
                         : across * height() <= radius() * (height() - point.z);
}

void KtConeShape::mirror() {
  // A cone that is mirrored through its base's centre is one turned upside down.
  const KtCoordinateSystemTransformation upsideDown(KtOrientation(0.0, 1.0, 0.0, 0.0));
  setFrame(frame() * upsideDown);
}
