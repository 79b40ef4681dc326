#pragma once

#include "ktManipulator/foundation/shape/KtBasePolyhedralExtent.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A triangle mesh. A closed one is solid, whether its triangles run counter-clockwise or clockwise
/// seen from outside; an open one is a surface without thickness. To be closed its triangles need
/// not share vertices: equal coordinates are enough.
///
/// For distance and collision it consists of its triangles.
class KT_EXPORT KtPolyPhysicalExtent
    : public KtXmlPersistent<KtPolyPhysicalExtent, KtBasePolyhedralExtent> {
 public:
  /// The empty extent.
  KtPolyPhysicalExtent() = default;

  void registerComponents() override;
  KtShapeValues shapeType() const override { return kTriangleMesh; }
  bool isConvex() const override { return false; }
  using KtShape::intersectLineSegment;
  const KtShape* intersectLineSegment(const KtLineSegment& segment,
                                      double& distance) const override;
  KtU32 numberOfConvexParts() const override { return static_cast<KtU32>(triangles().size()); }
  KtConvexPart convexPart(KtU32 index) const override;
  void convexPartsInBox(const KtAxisAlignedBoundingBox& box,
                        std::vector<KtU32>& parts) const override;
  const std::vector<std::array<KtU32, 3>>& triangles() const override {
    return triangles_.values();
  }

  /// Sets vertices, in the frame of the mesh, and triangles, by the indices of their vertices.
  ///
  /// @return false, a message and no change for a vertex that is not finite (or beyond 1e100), or
  ///         an index that is not below the number of vertices
  bool setMesh(const std::vector<KtVector>& vertices,
               const std::vector<std::array<KtU32, 3>>& triangles);

  bool operator==(const KtPolyPhysicalExtent&) const = default;
  static const KtToken& classToken();

 protected:
  void clip(Kt::detail::LineClip& line) const override;
  bool ownContains(const KtVector& point) const override;
  bool rebuild() override;

 private:
  KtXmlTriangleList triangles_;
};
