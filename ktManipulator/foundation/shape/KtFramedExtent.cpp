#include "ktManipulator/foundation/shape/KtFramedExtent.h"

#include <cmath>

#include "ktManipulator/foundation/shape/KtLineClip.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

void KtFramedExtent::registerComponents() {
  KtBasePhysicalExtent::registerComponents();
  registerComponent(KtFoundCommon::KtCoordinateSystemTransformToken, &frame_);
}

void KtFramedExtent::boundingSpheres(std::vector<KtSphere>& spheres) const {
  std::vector<KtVector> points;
  ownPoints(points);
  spheres.reserve(spheres.size() + points.size());
  for (const KtVector& point : points) spheres.emplace_back(frame_ * point, 0.0, 3);
}

const KtShape* KtFramedExtent::intersectLineSegment(const KtLineSegment& segment,
                                                    double& distance) const {
  Kt::detail::LineClip line(frame_.inverse() * segment);
  clip(line);
  return line.enter(distance) ? this : nullptr;
}

void KtFramedExtent::scaleOwn(double factor) {
  frame_.setTranslation(frame_.translation() * factor);
  scaleSizes(std::abs(factor));
  if (factor < 0.0) mirror();
}

void KtFramedExtent::truncateOwn(double precision) {
  frame_.setTranslation(truncated(frame_.translation(), precision));
  truncateSizes(precision);
}
