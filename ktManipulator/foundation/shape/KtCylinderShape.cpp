#include "ktManipulator/foundation/shape/KtCylinderShape.h"

#include <cmath>
#include <numbers>

#include "ktManipulator/foundation/shape/algorithms/KtBoundingVolumeFit.h"
#include "ktManipulator/foundation/shape/algorithms/KtLineClip.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

const KtToken& KtCylinderShape::classToken() {
  return KtGeom::KtCylinderShapeToken;
}

KtVector KtCylinderShape::ownSupport(const KtVector& direction) const {
  const double z = std::copysign(0.5 * height(), direction.z);
  const KtVector across = KtVector(direction.x, direction.y, 0.0).unitVector();
  return across * radius() + KtVector::zVector(z);
}

void KtCylinderShape::ownPoints(std::vector<KtVector>& points) const {
  Kt::detail::appendCircle(points, radius(), -0.5 * height());
  Kt::detail::appendCircle(points, radius(), 0.5 * height());
}

void KtCylinderShape::clip(Kt::detail::LineClip& line) const {
  line.toSlab(KtVector::zVector(1.0), KtVector(), -0.5 * height(), 0.5 * height());
  line.toTube(KtVector(), KtVector::zVector(1.0), radius());
}

KtVolumeMoments KtCylinderShape::ownMoments() const {
  const double r = radius();
  const double h = height();
  KtVolumeMoments moments;
  moments.volume = std::numbers::pi * r * r * h;
  moments.squares = KtVector(0.25 * r * r, 0.25 * r * r, h * h / 12.0) * moments.volume;
  return moments;
}

bool KtCylinderShape::ownContains(const KtVector& point) const {
  return std::abs(point.z) <= 0.5 * height() && std::hypot(point.x, point.y) <= radius();
}
