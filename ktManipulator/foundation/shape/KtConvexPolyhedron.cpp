#include "ktManipulator/foundation/shape/KtConvexPolyhedron.h"

#include <algorithm>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/shape/KtConvexHull.h"
#include "ktManipulator/foundation/shape/KtLineClip.h"
#include "ktManipulator/foundation/shape/KtMeshIndex.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

namespace {

constexpr std::size_t kScanned = 32;  // vertices that are looked through faster than walked along

KtVector normalOf(const std::array<KtU32, 3>& t, const std::vector<KtVector>& points) {
  return (points[t[1]] - points[t[0]]).cross(points[t[2]] - points[t[0]]);
}

}  // namespace

const KtToken& KtConvexPolyhedron::classToken() {
  return KtGeom::KtConvexPolyhedronToken;
}

bool KtConvexPolyhedron::setFromPoints(const std::vector<KtVector>& points) {
  if (!Kt::detail::areUsable(points)) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtConvexPolyhedron::setFromPoints(): a point is not finite.\n");
    return false;
  }
  std::string complaint;
  std::vector<Kt::detail::Triangle> faces = Kt::detail::convexHull(points, complaint);
  if (faces.empty()) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtConvexPolyhedron::setFromPoints(): no volume: %s.\n",
                                complaint.c_str());
    assignVertices(points);
  } else {
    std::vector<KtU32> places(points.size(), ktUnmappedIndex);
    for (const auto& face : faces) {
      for (const KtU32 corner : face) places[corner] = 0;
    }
    std::vector<KtVector> corners;
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (places[i] == ktUnmappedIndex) continue;
      places[i] = static_cast<KtU32>(corners.size());
      corners.push_back(points[i]);
    }
    for (auto& face : faces) {
      for (KtU32& corner : face) corner = places[corner];
    }
    assignVertices(std::move(corners));
  }
  const bool solid = !faces.empty();
  triangles_.set(std::move(faces));
  makeIndex();
  return solid;
}

bool KtConvexPolyhedron::rebuild() {
  const bool usable = Kt::detail::areUsable(vertices());
  if (!usable) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtConvexPolyhedron: a vertex is not finite; the polyhedron is left empty.\n");
    assignVertices({});
  }
  std::string complaint;
  triangles_.set(Kt::detail::convexHull(vertices(), complaint));
  if (usable && !isEmpty() && triangles().empty()) {
    Kt::Print::instance().write(Kt::Print::kError, "KtConvexPolyhedron: no volume: %s.\n",
                                complaint.c_str());
  }
  makeIndex();
  return usable;
}

KtVector KtConvexPolyhedron::ownSupport(const KtVector& direction) const {
  if (index() == nullptr || !index()->isClosed() || vertices().size() <= kScanned) {
    return KtBasePolyhedralExtent::ownSupport(direction);
  }
  // A vertex that is no corner of the hull has no neighbour to walk to.
  const KtU32 start = closestPointIndex() < vertices().size() && closestPointIndex() != 0
                          ? closestPointIndex()
                          : triangles()[0][0];
  const KtU32 best = index()->farthest(vertices(), direction, start);
  setClosestPointIndex(best);
  return vertices()[best];
}

void KtConvexPolyhedron::clip(Kt::detail::LineClip& line) const {
  if (triangles().empty()) line.toNothing();
  for (const auto& t : triangles()) {
    line.toHalfSpace(normalOf(t, vertices()), vertices()[t[0]]);
  }
}

bool KtConvexPolyhedron::ownContains(const KtVector& point) const {
  return !triangles().empty() &&
         std::all_of(triangles().begin(), triangles().end(), [&](const auto& t) {
           return normalOf(t, vertices()).dot(point - vertices()[t[0]]) <= 0.0;
         });
}
