#include "ktManipulator/foundation/shape/KtBasePolyhedralExtent.h"

#include <cmath>

#include "ktManipulator/foundation/shape/algorithms/KtMeshIndex.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

KtBasePolyhedralExtent::KtBasePolyhedralExtent() = default;
KtBasePolyhedralExtent::~KtBasePolyhedralExtent() = default;
KtBasePolyhedralExtent::KtBasePolyhedralExtent(const KtBasePolyhedralExtent&) = default;
KtBasePolyhedralExtent& KtBasePolyhedralExtent::operator=(const KtBasePolyhedralExtent&) = default;

bool KtBasePolyhedralExtent::read(KtXmlReader& reader) {
  const bool ok = KtFramedExtent::read(reader);
  return rebuild() && ok;
}

void KtBasePolyhedralExtent::registerComponents() {
  KtFramedExtent::registerComponents();
  registerComponent(KtGeom::KtVerticesToken, &vertices_);
}

void KtBasePolyhedralExtent::makeIndex() {
  setClosestPointIndex(0);
  index_ = triangles().empty()
               ? nullptr
               : std::make_shared<const Kt::detail::MeshIndex>(vertices(), triangles());
}

bool KtBasePolyhedralExtent::isSolid() const {
  return index_ != nullptr && index_->isClosed();
}

bool KtBasePolyhedralExtent::axisAlignedBoundingBox(const KtCoordinateSystemTransformation& t,
                                                    KtAxisAlignedBoundingBox& box) const {
  box = KtAxisAlignedBoundingBox();
  const KtCoordinateSystemTransformation toOuter = t * frame();
  KtAxisAlignedBoundingBox found;
  const KtVector c0 = toOuter.orientation().xAxis();
  const KtVector c1 = toOuter.orientation().yAxis();
  const KtVector c2 = toOuter.orientation().zAxis();
  for (const KtVector& v : vertices()) found.include(c0 * v.x + c1 * v.y + c2 * v.z);
  if (found.isEmpty()) return false;
  const KtVector& p = toOuter.translation();
  found = {found.minimum() + p, found.maximum() + p};
  if (!std::isfinite(found.size().magSquared())) return false;
  box = found;
  return true;
}

KtVector KtBasePolyhedralExtent::ownSupport(const KtVector& direction) const {
  if (isEmpty()) return frame().inverse() * KtVector();  // the zero vector in the link's frame
  const std::vector<KtVector>& points = vertices();
  KtU32 best = 0;
  double reached = points[0].dot(direction);
  for (std::size_t i = 1; i < points.size(); ++i) {
    const double one = points[i].dot(direction);
    if (one > reached) {
      reached = one;
      best = static_cast<KtU32>(i);
    }
  }
  setClosestPointIndex(best);
  return points[best];
}

void KtBasePolyhedralExtent::ownPoints(std::vector<KtVector>& points) const {
  points.insert(points.end(), vertices().begin(), vertices().end());
}

KtVolumeMoments KtBasePolyhedralExtent::ownMoments() const {
  return index_ != nullptr ? index_->moments() : KtVolumeMoments();
}

template <class Change>
void KtBasePolyhedralExtent::changeVertices(Change&& change) {
  std::vector<KtVector> changed = vertices();
  for (KtVector& v : changed) v = change(v);
  vertices_.set(std::move(changed));
  rebuild();
}

void KtBasePolyhedralExtent::scaleSizes(double factor) {
  changeVertices([factor](const KtVector& v) { return v * factor; });
}

void KtBasePolyhedralExtent::mirror() {
  changeVertices([](const KtVector& v) { return -v; });
}

void KtBasePolyhedralExtent::truncateSizes(double precision) {
  changeVertices([precision](const KtVector& v) { return truncated(v, precision); });
}
