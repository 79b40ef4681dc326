#pragma once

#include "ktManipulator/foundation/shape/algorithms/KtShapeQueryData.h"

/// The full answer of a distance query between two shapes, from which the next one can start.
class KT_EXPORT KtShapeProximityData {
 public:
  /// Distance of the two shapes, m; minus the depth where they penetrate.
  double distance = 0.0;
  /// Closest point of the first shape, in the first shape's frame.
  KtVector point1;
  /// Closest point of the second shape, in the first shape's frame.
  KtVector point2;
  /// Where the next query starts.
  KtShapeQueryData start;

  bool operator==(const KtShapeProximityData&) const noexcept = default;
};
