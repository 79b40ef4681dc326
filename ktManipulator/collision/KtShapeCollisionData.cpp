#include "ktManipulator/collision/KtShapeCollisionData.h"

#include <utility>

void KtShapeCollisionData::swapSides() noexcept {
  std::swap(sides_[0], sides_[1]);
  for (auto& points : penetrationPoints_) std::swap(points[0], points[1]);
  collisionNormal_ = -collisionNormal_;
  lineOfAction_ = -lineOfAction_;
}
