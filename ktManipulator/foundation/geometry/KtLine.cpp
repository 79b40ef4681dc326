#include "ktManipulator/foundation/geometry/KtLine.h"

#include "ktManipulator/foundation/geometry/KtXmlRecordImpl.h"

template class KtXmlRecord<KtLine>;

double KtLine::distanceSquared(const KtLine& other, double& s, double& t) const noexcept {
  // Below this square of the sine of their angle the lines count as parallel: the common
  // perpendicular would then be nothing but rounding.
  constexpr double kParallel = 1e-24;
  const KtVector between = other.point_ - point_;
  const KtVector normal = unitVector_.cross(other.unitVector_);
  const double sineSquared = normal.magSquared();
  if (!(sineSquared > kParallel)) {
    s = 0.0;
    t = -between.dot(other.unitVector_);
  } else {
    s = between.cross(other.unitVector_).dot(normal) / sineSquared;
    t = between.cross(unitVector_).dot(normal) / sineSquared;
  }
  return (between + other.unitVector_ * t - unitVector_ * s).magSquared();
}
