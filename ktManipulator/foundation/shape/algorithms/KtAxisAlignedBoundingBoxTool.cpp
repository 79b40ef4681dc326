#include "ktManipulator/foundation/shape/algorithms/KtAxisAlignedBoundingBoxTool.h"

#include "ktManipulator/foundation/shape/KtShape.h"

bool KtAxisAlignedBoundingBoxTool::axisAlignedBoundingBoxInSystem(
    const KtCoordinateSystemTransformation& transformation, const KtShape& shape,
    KtAxisAlignedBoundingBox& box) const {
  return shape.axisAlignedBoundingBox(transformation, box);
}
