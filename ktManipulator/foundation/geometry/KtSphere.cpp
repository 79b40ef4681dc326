#include "ktManipulator/foundation/geometry/KtSphere.h"

#include "ktManipulator/foundation/geometry/KtXmlRecordImpl.h"

template class KtXmlRecord<KtSphere>;

void KtSphere::expandSelfToInclude(const KtSphere& other) noexcept {
  if (other.isEmpty()) return;
  const KtVector between = other.center_ - center_;
  const double distance = between.mag();
  if (isEmpty() || distance + radius_ <= other.radius_) {
    center_ = other.center_;
    radius_ = other.radius_;
    return;
  }
  if (distance + other.radius_ <= radius_) return;
  const double radius = 0.5 * (distance + radius_ + other.radius_);
  center_ += between * ((radius - radius_) / distance);
  radius_ = radius;
}
