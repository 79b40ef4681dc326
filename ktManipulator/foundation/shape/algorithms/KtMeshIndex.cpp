#include "ktManipulator/foundation/shape/algorithms/KtMeshIndex.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <tuple>
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

using Edges = std::vector<std::pair<KtU32, KtU32>>;

// Whether each of the edges, which are in order, is there once in each direction.
bool areClosed(const Edges& edges) {
  return !edges.empty() && std::adjacent_find(edges.begin(), edges.end()) == edges.end() &&
         std::all_of(edges.begin(), edges.end(), [&](const auto& edge) {
           return edge.first != edge.second &&
                  std::binary_search(edges.begin(), edges.end(),
                                     std::pair(edge.second, edge.first));
         });
}

// The same where vertices at one place count as one: many files repeat the vertices for every
// triangle, or along a seam. Triangles that this makes a line are left out.
bool isClosedByPlace(const MeshIndex::Vertices& vertices, const MeshIndex::Triangles& triangles) {
  const auto key = [&](KtU32 i) { return std::tie(vertices[i].x, vertices[i].y, vertices[i].z); };
  std::vector<KtU32> order(vertices.size());
  std::iota(order.begin(), order.end(), 0U);
  std::sort(order.begin(), order.end(), [&](KtU32 a, KtU32 b) { return key(a) < key(b); });
  std::vector<KtU32> places(vertices.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    const bool isSame = i != 0 && key(order[i]) == key(order[i - 1]);
    places[order[i]] = isSame ? places[order[i - 1]] : order[i];
  }
  Edges edges;
  for (const auto& t : triangles) {
    const std::array<KtU32, 3> at = {places[t[0]], places[t[1]], places[t[2]]};
    if (at[0] == at[1] || at[1] == at[2] || at[2] == at[0]) continue;
    for (unsigned k = 0; k < 3; ++k) edges.emplace_back(at[k], at[(k + 1) % 3]);
  }
  std::sort(edges.begin(), edges.end());
  return areClosed(edges);
}

}  // namespace

MeshIndex::MeshIndex(const Vertices& vertices, const Triangles& triangles) {
  std::vector<KtAxisAlignedBoundingBox> boxes(triangles.size());
  order_.resize(triangles.size());
  Edges edges;
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
  isClosed_ = areClosed(edges) || isClosedByPlace(vertices, triangles);

  // Of a hull each edge stands there in both directions, so this lists every neighbour.
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

// S. Woop, C. Benthin, I. Wald, Watertight ray/triangle intersection, Journal of Computer Graphics
// Techniques 2 (2013), 65-82; here for both sides of a triangle. No segment slips through between
// two triangles that share an edge.
bool MeshIndex::intersect(const Vertices& vertices, const Triangles& triangles,
                          const KtLineSegment& segment, double& share) const {
  if (nodes_.empty()) return false;
  const KtVector& from = segment.endpoint0();
  const KtVector along = segment.endpoint1() - from;
  // The segment becomes the third axis of a sheared frame, along its largest component.
  double KtVector::*u = &KtVector::x;
  double KtVector::*v = &KtVector::y;
  double KtVector::*w = &KtVector::z;
  if (along.*w != along.largestComponent() && -(along.*w) != along.largestComponent()) {
    std::swap(w, std::abs(along.x) > std::abs(along.y) ? u : v);
  }
  if (along.*w == 0.0) return false;
  const double shearU = along.*u / along.*w;
  const double shearV = along.*v / along.*w;
  const auto sheared = [&](const KtVector& vertex) {
    const KtVector p = vertex - from;
    return KtVector(p.*u - shearU * (p.*w), p.*v - shearV * (p.*w), p.*w / along.*w);
  };
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
      const KtVector a = sheared(vertices[t[0]]);
      const KtVector b = sheared(vertices[t[1]]);
      const KtVector c = sheared(vertices[t[2]]);
      const double weightA = c.x * b.y - c.y * b.x;
      const double weightB = a.x * c.y - a.y * c.x;
      const double weightC = b.x * a.y - b.y * a.x;
      const bool anyNegative = weightA < 0.0 || weightB < 0.0 || weightC < 0.0;
      const bool anyPositive = weightA > 0.0 || weightB > 0.0 || weightC > 0.0;
      if (anyNegative == anyPositive) continue;  // outside, or the triangle is seen edge-on
      const double one =
          (weightA * a.z + weightB * b.z + weightC * c.z) / (weightA + weightB + weightC);
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
