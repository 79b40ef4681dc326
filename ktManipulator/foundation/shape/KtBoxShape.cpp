#include "ktManipulator/foundation/shape/KtBoxShape.h"

#include <cmath>

#include "ktManipulator/foundation/shape/algorithms/KtLineClip.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

const KtToken& KtBoxShape::classToken() {
  return KtGeom::KtBoxShapeToken;
}

void KtBoxShape::registerComponents() {
  KtFramedExtent::registerComponents();
  registerComponent(KtGeom::KtSizeToken, &size_);
}

KtVector KtBoxShape::half() const noexcept {
  return KtVector(std::abs(size_.x), std::abs(size_.y), std::abs(size_.z)) * 0.5;
}

KtVector KtBoxShape::ownSupport(const KtVector& direction) const {
  const KtVector h = half();
  return {std::copysign(h.x, direction.x), std::copysign(h.y, direction.y),
          std::copysign(h.z, direction.z)};
}

void KtBoxShape::ownPoints(std::vector<KtVector>& points) const {
  const KtVector h = half();
  for (unsigned corner = 0; corner < 8; ++corner) {
    points.emplace_back((corner & 1U) != 0 ? h.x : -h.x, (corner & 2U) != 0 ? h.y : -h.y,
                        (corner & 4U) != 0 ? h.z : -h.z);
  }
}

void KtBoxShape::clip(Kt::detail::LineClip& line) const {
  const KtVector h = half();
  line.toSlab(KtVector::xVector(1.0), KtVector(), -h.x, h.x);
  line.toSlab(KtVector::yVector(1.0), KtVector(), -h.y, h.y);
  line.toSlab(KtVector::zVector(1.0), KtVector(), -h.z, h.z);
}

KtVolumeMoments KtBoxShape::ownMoments() const {
  KtVolumeMoments moments;
  moments.volume = std::abs(size_.x * size_.y * size_.z);
  moments.squares =
      KtVector(size_.x * size_.x, size_.y * size_.y, size_.z * size_.z) * (moments.volume / 12.0);
  return moments;
}

bool KtBoxShape::ownContains(const KtVector& point) const {
  const KtVector h = half();
  return std::abs(point.x) <= h.x && std::abs(point.y) <= h.y && std::abs(point.z) <= h.z;
}
