/// @file
/// What is computed from a mesh once; for sources of shapes.
#pragma once

#include <array>
#include <vector>

#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/geometry/KtLineSegment.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/shape/algorithms/KtAxisAlignedBoundingBox.h"
#include "ktManipulator/foundation/shape/algorithms/KtVolumeMoments.h"

namespace Kt::detail {

/// A tree of boxes over the triangles of a mesh, with the mesh's volume integrals and the
/// neighbours of its vertices. It never changes, so that copies of a mesh share it.
class MeshIndex {
 public:
  using Vertices = std::vector<KtVector>;
  using Triangles = std::vector<std::array<KtU32, 3>>;

  /// From vertices and triangles whose indices are all in range. The index keeps neither.
  MeshIndex(const Vertices& vertices, const Triangles& triangles);

  /// Whether every edge belongs to two triangles that run along it in opposite directions, where
  /// vertices at the same place may count as one.
  bool isClosed() const noexcept { return isClosed_; }
  /// The integrals over the volume of a closed mesh, whichever side its triangles show outwards; 0
  /// for an open one.
  const KtVolumeMoments& moments() const noexcept { return moments_; }
  /// Appends the triangles whose boxes intersect a box, ascending.
  void trianglesInBox(const Vertices& vertices, const Triangles& triangles,
                      const KtAxisAlignedBoundingBox& box, std::vector<KtU32>& found) const;
  /// The least share of a line segment at which it meets a triangle; false if it meets none.
  bool intersect(const Vertices& vertices, const Triangles& triangles, const KtLineSegment& segment,
                 double& share) const;
  /// Whether the mesh winds around a point.
  static bool windsAround(const Vertices& vertices, const Triangles& triangles,
                          const KtVector& point);
  /// The box around all triangles.
  KtAxisAlignedBoundingBox box() const {
    return nodes_.empty() ? KtAxisAlignedBoundingBox() : nodes_[0].box;
  }
  /// For a convex mesh: the vertex that is farthest in a direction, by walking from neighbour to
  /// neighbour.
  KtU32 farthest(const Vertices& vertices, const KtVector& direction, KtU32 start) const noexcept;

 private:
  struct Node {
    KtAxisAlignedBoundingBox box;
    KtU32 first = 0;  // of a leaf: its first triangle in order_; else the second child, the first
                      // child is the next node
    KtU32 count = 0;  // of a leaf: how many triangles; else 0
  };

  KtU32 build(std::vector<KtAxisAlignedBoundingBox>& boxes, KtU32 begin, KtU32 end);

  std::vector<Node> nodes_;
  std::vector<KtU32> order_;
  std::vector<KtU32> firstNeighbour_;  // by vertex, into neighbours_; one more than vertices
  std::vector<KtU32> neighbours_;
  KtVolumeMoments moments_;
  bool isClosed_ = false;
};

}  // namespace Kt::detail
