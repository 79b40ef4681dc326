#pragma once

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/shape/algorithms/KtAxisAlignedBoundingBox.h"

class KtShape;

/// Bounds shapes by boxes along the axes of a system.
class KT_EXPORT KtAxisAlignedBoundingBoxTool {
 public:
  /// Makes a box the smallest around a shape; the shape's bounding volumes don't count.
  ///
  /// @param transformation  the frame of the shape's link, in the system
  /// @param shape           the shape, in the frame of its link
  /// @param box             receives the box, in the axes of the system
  /// @return                false, and a box without a point, for a shape without one or with
  ///                        coordinates that are not finite
  bool axisAlignedBoundingBoxInSystem(const KtCoordinateSystemTransformation& transformation,
                                      const KtShape& shape, KtAxisAlignedBoundingBox& box) const;
};
