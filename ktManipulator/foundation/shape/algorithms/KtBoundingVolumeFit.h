/// @file
/// Simple bodies of small size around balls; for sources of shapes.
#pragma once

#include <vector>

#include "ktManipulator/foundation/geometry/KtCapsule.h"
#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtSphere.h"

namespace Kt::detail {

/// A box centred at the origin of a frame, with its edges along the frame's axes.
struct OrientedBox {
  KtCoordinateSystemTransformation frame;
  KtVector size;
};

/// Whether there are balls, all of them finite.
bool areUsable(const std::vector<KtSphere>& spheres) noexcept;
/// The smallest ball that contains all balls.
KtSphere smallestSphere(const std::vector<KtSphere>& spheres);
/// A capsule of small volume that contains all balls.
KtCapsule smallCapsule(const std::vector<KtSphere>& spheres);
/// A box of small volume that contains all balls.
OrientedBox smallBox(const std::vector<KtSphere>& spheres);
/// Points whose convex hull contains all balls.
std::vector<KtVector> pointsAround(const std::vector<KtSphere>& spheres);

/// Points whose convex hull contains the unit ball, with nothing farther out than 1.02.
const std::vector<KtVector>& unitBallPoints();
/// Appends points around a circle about the z axis; their convex hull contains the disc, with
/// nothing farther out than 1.003 of the radius.
void appendCircle(std::vector<KtVector>& points, double radius, double z);

}  // namespace Kt::detail
