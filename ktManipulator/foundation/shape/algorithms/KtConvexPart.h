#pragma once

#include <array>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/geometry/KtVector.h"

class KtShape;

/// A convex piece of a shape, for queries that take convex bodies: a convex shape as a whole, or
/// one triangle of a mesh. It refers to the shape and holds as long as the shape is unchanged.
class KT_EXPORT KtConvexPart {
 public:
  /// No part.
  KtConvexPart() = default;
  /// A convex shape.
  explicit KtConvexPart(const KtShape& shape) noexcept : shape_(&shape), owner_(&shape) {}
  /// A triangle of a mesh.
  KtConvexPart(const KtShape& mesh, KtU32 triangle, const std::array<KtVector, 3>& corners) noexcept
      : shape_(&mesh), owner_(&mesh), triangle_(triangle), corners_(corners) {}

  /// The convex shape, or the mesh of the triangle; null for no part.
  const KtShape* shape() const noexcept { return shape_; }
  /// The shape that has a number in its link: `shape()`, or the union of extents that it is in.
  const KtShape* owner() const noexcept { return owner_; }
  void setOwner(const KtShape& owner) noexcept { owner_ = &owner; }
  /// Whether it is one triangle of the shape.
  bool isTriangle() const noexcept { return triangle_ != ktUnmappedIndex; }
  /// The number of the triangle; `ktUnmappedIndex` for a shape as a whole.
  KtU32 triangle() const noexcept { return triangle_; }
  /// The corners of the triangle.
  const std::array<KtVector, 3>& corners() const& noexcept { return corners_; }
  /// The corners of a part that is about to go.
  std::array<KtVector, 3> corners() && noexcept { return corners_; }
  /// The point farthest in a direction of the core: the part is its core, widened by `margin()`.
  KtVector support(const KtVector& direction) const;
  /// By how much the part is wider than its core, m.
  double margin() const;

 private:
  const KtShape* shape_ = nullptr;
  const KtShape* owner_ = nullptr;
  KtU32 triangle_ = ktUnmappedIndex;
  std::array<KtVector, 3> corners_;
};
