#include "ktManipulator/foundation/shape/KtFramedExtent.h"

#include <cmath>

#include "ktManipulator/foundation/shape/algorithms/KtLineClip.h"
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

bool KtFramedExtent::axisAlignedBoundingBox(const KtCoordinateSystemTransformation& t,
                                            KtAxisAlignedBoundingBox& box) const {
  box = KtAxisAlignedBoundingBox();
  const KtCoordinateSystemTransformation toOuter = t * frame_;
  const KtVector c0 = toOuter.orientation().xAxis();
  const KtVector c1 = toOuter.orientation().yAxis();
  const KtVector c2 = toOuter.orientation().zAxis();
  // The outer axes in the own frame.
  const KtVector x(c0.x, c1.x, c2.x);
  const KtVector y(c0.y, c1.y, c2.y);
  const KtVector z(c0.z, c1.z, c2.z);
  const KtVector largest(ownSupport(x).dot(x), ownSupport(y).dot(y), ownSupport(z).dot(z));
  const KtVector least(ownSupport(-x).dot(x), ownSupport(-y).dot(y), ownSupport(-z).dot(z));
  const KtAxisAlignedBoundingBox found(toOuter.translation() + least,
                                       toOuter.translation() + largest);
  if (!std::isfinite(found.size().magSquared())) return false;
  box = found;
  return true;
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
