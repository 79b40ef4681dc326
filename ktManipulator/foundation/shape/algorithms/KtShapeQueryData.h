#pragma once

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/geometry/KtVector.h"

/// What a distance query remembers of its last answer, so that the next one starts near it. It
/// never changes an answer beyond rounding, and a default one is always good.
class KT_EXPORT KtShapeQueryData {
 public:
  /// Vertex of the first shape's polyhedron that was closest.
  KtU32 closestPointIndex1 = 0;
  /// Vertex of the second shape's polyhedron that was closest.
  KtU32 closestPointIndex2 = 0;
  /// Direction from the first to the second shape in which they were farthest apart, in the first
  /// shape's frame; zero when there was no query yet.
  KtVector separatingDirection;

  bool operator==(const KtShapeQueryData&) const noexcept = default;
};
