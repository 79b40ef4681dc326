/// @file
/// The convex hull of a cloud of points; for sources of shapes.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/geometry/KtVector.h"

namespace Kt::detail {

/// Three vertices by index, counter-clockwise seen from outside.
using Triangle = std::array<KtU32, 3>;

/// The triangles of the convex hull of points, by the indices of the points.
///
/// @param complaint  receives why there is none
/// @return           no triangle for points that have no hull with a volume: fewer than four,
///                   or all on one plane
/// @see C. B. Barber, D. P. Dobkin, H. Huhdanpaa, The quickhull algorithm for convex hulls, ACM
///      Transactions on Mathematical Software 22 (1996), 469-483
std::vector<Triangle> convexHull(const std::vector<KtVector>& points, std::string& complaint);

/// Whether all coordinates are finite and far from where their squares are not.
bool areUsable(const std::vector<KtVector>& points) noexcept;

}  // namespace Kt::detail
