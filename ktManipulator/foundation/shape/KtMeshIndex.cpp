#include "ktManipulator/foundation/shape/KtMeshIndex.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace Kt::detail {

namespace {

constexpr KtU32 kLeaf = 4;
constexpr std::size_t kDeepest = 64;  // halves of 2^32 triangles end long before

// The integrals of the tetrahedron between the origin and a triangle. F. Tonon, Explicit exact
// formulas for the 3-D tetrahedron inertia tensor in terms of its vertex coordinates, Journal of
// Mathematics and Statistics 1 (2005), 8-11.
KtVolumeMoments tetrahedron(const KtVector& a, const KtVector& b, const KtVector& c) {
  const double determinant = a.dot(b.cross(c));
  const KtVector sum = a + b + c;
  KtVolumeMoments moments;
  moments.volume = determinant / 6.0;
  moments.first = sum * (determinant / 24.0);
  for (const KtVector* x : {&a, &b, &c, &sum}) moments.addProduct(determinant / 120.0, *x);
  return moments;
}

}  // namespace

MeshIndex::MeshIndex(const Vertices& vertices, const Triangles& triangles) {
  std::vector<KtAxisAlignedBoundingBox> boxes(triangles.size());
  order_.resize(triangles.size());
  std::vector<std::pair<KtU32, KtU32>> edges;
  edges.reserve(3 * triangles.size());
  KtVector middle;
  for (std::size_t i = 0; i < triangles.size(); ++i) {
    order_[i] = static_cast<KtU32>(i);
    for (unsigned k = 0; k < 3; ++k) {
      boxes[i].include(vertices[triangles[i][k]]);
      edges.emplace_back(triangles[i][k], triangles[i][(k + 1) % 3]);
      middle += vertices[triangles[i][k]] / (3.0 * static_cast<double>(triangles.size()));
    }
  }
  if (triangles.empty()) return;
  nodes_.reserve(triangles.size());
  build(boxes, 0, static_cast<KtU32>(triangles.size()));

  std::sort(edges.begin(), edges.end());
  isClosed_ =
      std::adjacent_find(edges.begin(), edges.end()) == edges.end() &&
      std::all_of(edges.begin(), edges.end(), [&](const auto& edge) {
        return edge.first != edge.second &&
               std::binary_search(edges.begin(), edges.end(), std::pair(edge.second, edge.first));
      });

  // Of a closed mesh each edge stands there in both directions, so this lists every neighbour.
  firstNeighbour_.assign(vertices.size() + 1, 0);
  neighbours_.reserve(edges.size());
  for (const auto& edge : edges) {
    ++firstNeighbour_[edge.first + 1];
    neighbours_.push_back(edge.second);
  }
  for (std::size_t i = 1; i < firstNeighbour_.size(); ++i) {
    firstNeighbour_[i] += firstNeighbour_[i - 1];
  }

  if (!isClosed_) return;
  // About a point in the middle, so that little cancels; then moved to where it is.
  for (const auto& t : triangles) {
    moments_ +=
        tetrahedron(vertices[t[0]] - middle, vertices[t[1]] - middle, vertices[t[2]] - middle);
  }
  if (moments_.volume < 0.0) moments_ *= -1.0;
  moments_ = moments_.transformedBy(middle);
}

KtU32 MeshIndex::build(std::vector<KtAxisAlignedBoundingBox>& boxes, KtU32 begin, KtU32 end) {
  const auto at = static_cast<KtU32>(nodes_.size());
  Node node;
  KtAxisAlignedBoundingBox centers;
  for (KtU32 i = begin; i < end; ++i) {
    node.box.include(boxes[order_[i]]);
    centers.include(boxes[order_[i]].center());
  }
  if (end - begin <= kLeaf) {
    node.first = begin;
    node.count = end - begin;
    nodes_.push_back(node);
    return at;
  }
  nodes_.push_back(node);
  // Halves along the longest side of the box of the centres.
  const KtVector size = centers.size();
  double KtVector::*axis = &KtVector::x;
  if (size.y > size.x) axis = &KtVector::y;
  if (size.z > size.*axis) axis = &KtVector::z;
  const KtU32 half = begin + (end - begin) / 2;
  std::nth_element(order_.begin() + begin, order_.begin() + half, order_.begin() + end,
                   [&](KtU32 a, KtU32 b) {
                     const double first = boxes[a].center().*axis;
                     const double second = boxes[b].center().*axis;
                     return first != second ? first < second : a < b;
                   });
  build(boxes, begin, half);
  const KtU32 second = build(boxes, half, end);
  nodes_[at].first = second;
  return at;
}

void MeshIndex::trianglesInBox(const Vertices& vertices, const Triangles& triangles,
                               const KtAxisAlignedBoundingBox& box,
                               std::vector<KtU32>& found) const {
  if (nodes_.empty()) return;
  const auto start = static_cast<std::ptrdiff_t>(found.size());
  std::array<KtU32, kDeepest> stack{};
  std::size_t depth = 1;
  while (depth != 0) {
    const KtU32 at = stack[--depth];
    const Node& node = nodes_[at];
    if (!node.box.intersects(box)) continue;
    if (node.count == 0) {
      stack[depth++] = node.first;
      stack[depth++] = at + 1;
      continue;
    }
    for (KtU32 i = node.first; i < node.first + node.count; ++i) {
      KtAxisAlignedBoundingBox own;
      for (const KtU32 corner : triangles[order_[i]]) own.include(vertices[corner]);
      if (own.intersects(box)) found.push_back(order_[i]);
    }
  }
  std::sort(found.begin() + start, found.end());
}

// T. Moeller, B. Trumbore, Fast, minimum storage ray/triangle intersection, Journal of Graphics
// Tools 2 (1997), 21-28; here for both sides of a triangle.
bool MeshIndex::intersect(const Vertices& vertices, const Triangles& triangles,
                          const KtLineSegment& segment, double& share) const {
  if (nodes_.empty()) return false;
  const KtVector& from = segment.endpoint0();
  const KtVector along = segment.endpoint1() - from;
  double nearest = 1.0;
  bool met = false;
  std::array<KtU32, kDeepest> stack{};
  std::size_t depth = 1;
  while (depth != 0) {
    const KtU32 at = stack[--depth];
    const Node& node = nodes_[at];
    if (!node.box.meets(from, along, nearest)) continue;
    if (node.count == 0) {
      stack[depth++] = node.first;
      stack[depth++] = at + 1;
      continue;
    }
    for (KtU32 i = node.first; i < node.first + node.count; ++i) {
      const auto& t = triangles[order_[i]];
      const KtVector& a = vertices[t[0]];
      const KtVector ab = vertices[t[1]] - a;
      const KtVector ac = vertices[t[2]] - a;
      const KtVector p = along.cross(ac);
      const double determinant = ab.dot(p);
      if (determinant == 0.0) continue;
      const KtVector s = from - a;
      const double u = s.dot(p) / determinant;
      if (!(u >= 0.0 && u <= 1.0)) continue;
      const KtVector q = s.cross(ab);
      const double v = along.dot(q) / determinant;
      if (!(v >= 0.0 && u + v <= 1.0)) continue;
      const double one = ac.dot(q) / determinant;
      if (!(one >= 0.0 && one <= nearest)) continue;
      nearest = one;
      met = true;
    }
  }
  if (met) share = nearest;
  return met;
}

// The solid angles that the triangles cover, seen from the point, add up to 4 pi inside and 0
// outside. A. van Oosterom, J. Strackee, The solid angle of a plane triangle, IEEE Transactions on
// Biomedical Engineering 30 (1983), 125-126.
bool MeshIndex::windsAround(const Vertices& vertices, const Triangles& triangles,
                            const KtVector& point) {
  double angle = 0.0;
  for (const auto& t : triangles) {
    const KtVector a = vertices[t[0]] - point;
    const KtVector b = vertices[t[1]] - point;
    const KtVector c = vertices[t[2]] - point;
    const double la = a.mag();
    const double lb = b.mag();
    const double lc = c.mag();
    angle += 2.0 * std::atan2(a.dot(b.cross(c)),
                              la * lb * lc + a.dot(b) * lc + b.dot(c) * la + c.dot(a) * lb);
  }
  return std::abs(angle) > 2.0 * std::numbers::pi;
}

KtU32 MeshIndex::farthest(const Vertices& vertices, const KtVector& direction,
                          KtU32 start) const noexcept {
  KtU32 best = start;
  double reached = vertices[best].dot(direction);
  for (bool moved = true; moved;) {
    moved = false;
    const KtU32 from = best;
    for (KtU32 i = firstNeighbour_[from]; i < firstNeighbour_[from + 1]; ++i) {
      const double one = vertices[neighbours_[i]].dot(direction);
      if (one > reached) {
        reached = one;
        best = neighbours_[i];
        moved = true;
      }
    }
  }
  return best;
}

}  // namespace Kt::detail
