#include "ktManipulator/foundation/shape/KtBasePhysicalExtent.h"

#include <cmath>

void KtBasePhysicalExtent::truncateValues(const double& precision) {
  if (!(precision > 0.0) || !std::isfinite(precision)) return;
  truncateOwn(precision);
  refitBoundingVolumes();
}

double KtBasePhysicalExtent::truncated(double value, double precision) noexcept {
  const double steps = value / precision;
  const double whole = std::round(steps);
  // Beyond 2^52 steps every double is a multiple as far as it can tell.
  if (!(std::abs(steps) < 4503599627370496.0)) return value;
  if (std::abs(steps - whole) <= 4e-16 * std::abs(steps)) return value;
  return std::trunc(steps) * precision;
}

bool KtBasePhysicalExtent::massMoments(double density, double& mass, KtVector& firstMoment,
                                       KtSecondMoment& secondMoment) const {
  const KtVolumeMoments moments = volumeMoments();
  mass = moments.volume * density;
  firstMoment = moments.first * density;
  secondMoment = moments.inertia() * density;
  return isSolid();
}
