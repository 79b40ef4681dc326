#pragma once

#include "ktManipulator/foundation/shape/KtBasePolyhedralExtent.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A solid convex polyhedron: the convex hull of its vertices. A file gives the vertices alone; the
/// faces follow from them.
///
/// Vertices that all lie on one plane, or fewer than four, are a shape too: it has its bounds and
/// its farthest points, but no face, no volume, and no line segment meets it.
class KT_EXPORT KtConvexPolyhedron
    : public KtXmlPersistent<KtConvexPolyhedron, KtBasePolyhedralExtent> {
 public:
  /// No point at all.
  KtConvexPolyhedron() = default;

  KtShapeValues shapeType() const override { return kConvexHull; }
  const std::vector<std::array<KtU32, 3>>& triangles() const override {
    return triangles_.values();
  }

  /// Makes this the convex hull of points, given in the frame of the polyhedron. Of points with a
  /// hull that has a volume only the corners of the hull stay, in their order.
  ///
  /// @return false and a message for points without such a hull: then all points stay, so that the
  ///         polyhedron is flat. With a point that is not finite (or beyond 1e100) nothing changes.
  bool setFromPoints(const std::vector<KtVector>& points);

  /// Exact equality of what a file holds. The faces follow from it, in an order that depends on how
  /// the polyhedron was made.
  bool operator==(const KtConvexPolyhedron& other) const {
    return KtBasePolyhedralExtent::operator==(other);
  }
  static const KtToken& classToken();

 protected:
  KtVector ownSupport(const KtVector& direction) const override;
  void clip(Kt::detail::LineClip& line) const override;
  bool ownContains(const KtVector& point) const override;
  bool rebuild() override;

 private:
  KtXmlTriangleList triangles_;  // follows from the vertices
};
