#include "ktManipulator/foundation/shape/KtPolyPhysicalExtent.h"

#include <algorithm>
#include <cmath>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/shape/algorithms/KtConvexHull.h"
#include "ktManipulator/foundation/shape/algorithms/KtLineClip.h"
#include "ktManipulator/foundation/shape/algorithms/KtMeshIndex.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

namespace {

bool isMesh(const std::vector<KtVector>& vertices,
            const std::vector<std::array<KtU32, 3>>& triangles) {
  return Kt::detail::areUsable(vertices) &&
         std::all_of(triangles.begin(), triangles.end(), [&](const auto& t) {
           return std::max({t[0], t[1], t[2]}) < vertices.size();
         });
}

void complain(const char* where, const char* consequence) {
  Kt::Print::instance().write(Kt::Print::kError,
                              "KtPolyPhysicalExtent%s: a vertex is not finite, or a triangle has a "
                              "vertex that isn't there; %s.\n",
                              where, consequence);
}

}  // namespace

const KtToken& KtPolyPhysicalExtent::classToken() {
  return KtGeom::KtPolyPhysicalExtentToken;
}

void KtPolyPhysicalExtent::registerComponents() {
  KtBasePolyhedralExtent::registerComponents();
  registerComponent(KtGeom::KtTrianglesToken, &triangles_);
}

bool KtPolyPhysicalExtent::setMesh(const std::vector<KtVector>& vertices,
                                   const std::vector<std::array<KtU32, 3>>& triangles) {
  if (!isMesh(vertices, triangles)) {
    complain("::setMesh()", "nothing is changed");
    return false;
  }
  assignVertices(vertices);
  triangles_.set(triangles);
  makeIndex();
  return true;
}

bool KtPolyPhysicalExtent::rebuild() {
  const bool usable = isMesh(vertices(), triangles());
  if (!usable) {
    complain("", "the mesh is left empty");
    assignVertices({});
    triangles_.set({});
  }
  makeIndex();
  return usable;
}

const KtShape* KtPolyPhysicalExtent::intersectLineSegment(const KtLineSegment& segment,
                                                          double& distance) const {
  if (index() == nullptr) return nullptr;
  const KtLineSegment own = frame().inverse() * segment;
  if (!std::isfinite(own.length())) return nullptr;
  double share = 0.0;
  if (!ownContains(own.endpoint0()) && !index()->intersect(vertices(), triangles(), own, share)) {
    return nullptr;
  }
  distance = share * own.length();
  return this;
}

KtConvexPart KtPolyPhysicalExtent::convexPart(KtU32 number) const {
  if (number >= triangles().size()) return {};
  const auto& t = triangles()[number];
  return {*this,
          number,
          {frame() * vertices()[t[0]], frame() * vertices()[t[1]], frame() * vertices()[t[2]]}};
}

void KtPolyPhysicalExtent::convexPartsInBox(const KtAxisAlignedBoundingBox& box,
                                            std::vector<KtU32>& parts) const {
  if (index() == nullptr || box.isEmpty()) return;
  if (frame().mode() == KtCoordinateSystemTransformation::kIdentity) {
    index()->trianglesInBox(vertices(), triangles(), box, parts);
    return;
  }
  // The box around the box in the own frame finds a few too many; the rest is sorted out after.
  const KtCoordinateSystemTransformation toOwn = frame().inverse();
  const KtVector half = box.size() * 0.5;
  KtAxisAlignedBoundingBox own;
  for (unsigned corner = 0; corner < 8; ++corner) {
    own.include(toOwn * (box.center() + KtVector((corner & 1U) != 0 ? half.x : -half.x,
                                                 (corner & 2U) != 0 ? half.y : -half.y,
                                                 (corner & 4U) != 0 ? half.z : -half.z)));
  }
  own.enlarge(1e-14 * (own.minimum().largestComponent() + own.maximum().largestComponent()));
  if (!std::isfinite(half.magSquared())) own = index()->box();  // it may well be without end
  const auto start = static_cast<std::ptrdiff_t>(parts.size());
  index()->trianglesInBox(vertices(), triangles(), own, parts);
  parts.erase(std::remove_if(parts.begin() + start, parts.end(),
                             [&](KtU32 number) {
                               KtAxisAlignedBoundingBox one;
                               for (const KtU32 corner : triangles()[number]) {
                                 one.include(frame() * vertices()[corner]);
                               }
                               return !one.intersects(box);
                             }),
              parts.end());
}

void KtPolyPhysicalExtent::clip(Kt::detail::LineClip& line) const {
  line.toNothing();  // a mesh is not convex, and answers for itself
}

bool KtPolyPhysicalExtent::ownContains(const KtVector& point) const {
  return isSolid() && index()->box().contains(point) &&
         Kt::detail::MeshIndex::windsAround(vertices(), triangles(), point);
}
