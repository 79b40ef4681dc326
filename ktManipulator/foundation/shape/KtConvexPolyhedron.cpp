#include "ktManipulator/foundation/shape/KtConvexPolyhedron.h"

#include <algorithm>
#include <cmath>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/shape/algorithms/KtConvexHull.h"
#include "ktManipulator/foundation/shape/algorithms/KtLineClip.h"
#include "ktManipulator/foundation/shape/algorithms/KtMeshIndex.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

namespace {

constexpr std::size_t kScanned = 32;  // vertices that are looked through faster than walked along

// Calls visit(normal, corner) for the faces until it gives false. Left out are faces so thin, for a
// body of this extent, that rounding turns their planes; their neighbours bound the body there.
//
// Gives false if a call did, or if no face is left.
template <class Visit>
bool visitFaces(const KtBasePolyhedralExtent& body, double extent, Visit&& visit) {
  bool any = false;
  for (const auto& t : body.triangles()) {
    const KtVector& corner = body.vertices()[t[0]];
    const KtVector ab = body.vertices()[t[1]] - corner;
    const KtVector ac = body.vertices()[t[2]] - corner;
    const KtVector normal = ab.cross(ac);
    const double longest = std::max({ab.magSquared(), ac.magSquared(), (ac - ab).magSquared()});
    if (!(normal.mag() > 1e-9 * extent * std::sqrt(longest))) continue;
    if (!visit(normal, corner)) return false;
    any = true;
  }
  return any;
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
  const bool any =
      index() != nullptr && visitFaces(*this, index()->box().size().largestComponent(),
                                       [&](const KtVector& normal, const KtVector& corner) {
                                         line.toHalfSpace(normal, corner);
                                         return true;
                                       });
  if (!any) line.toNothing();
}

bool KtConvexPolyhedron::ownContains(const KtVector& point) const {
  return index() != nullptr && index()->box().contains(point) &&
         visitFaces(*this, index()->box().size().largestComponent(),
                    [&](const KtVector& normal, const KtVector& corner) {
                      return normal.dot(point - corner) <= 0.0;
                    });
}
