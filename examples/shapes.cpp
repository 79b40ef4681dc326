// The body of a link: mass properties of its shapes, a bounding volume, and the points where a line
// intersects the shapes.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

// A steel mallet: a handle of 0.3 m along x, and a head along z at its end.
KtExtentUnion mallet() {
  const double half = std::numbers::sqrt2 / 2.0;
  const KtOrientation alongX(half, 0.0, half, 0.0);  // the cylinder's z axis is the mallet's x axis
  KtExtentUnion mallet;
  mallet.addMember(KtCylinderShape(0.01, 0.3, {KtVector(0.15, 0.0, 0.0), alongX}));
  mallet.addMember(KtBoxShape({0.04, 0.04, 0.12}, KtVector(0.32, 0.0, 0.0)));
  return mallet;
}

}  // namespace

int main() {
  KtExtentUnion shape = mallet();
  double mass = 0.0;
  KtVector firstMoment;
  KtSecondMoment secondMoment;
  shape.massMoments(7850.0, mass, firstMoment, secondMoment);
  const double handle = 7850.0 * std::numbers::pi * 1e-4 * 0.3, head = 7850.0 * 0.04 * 0.04 * 0.12;
  std::printf("%.4f kg, centre of mass at x = %.4f m, %.6f kg m^2 about the grip\n", mass,
              firstMoment.x / mass, secondMoment.jzz());
  check(std::abs(mass - handle - head) < 1e-12, "the parts add up");

  shape.addBoundingVolume(KtShape::kCapsule);
  shape.addBoundingVolume(KtShape::kSphere);
  const auto* capsule = dynamic_cast<const KtCapsuleShape*>(shape.outerBoundingVolume());
  const auto* sphere = dynamic_cast<const KtSphereShape*>(capsule->outerBoundingVolume());
  std::printf("volume %.5f, in a capsule of %.5f, in a sphere of %.5f m^3\n", shape.volume(),
              capsule->volume(), sphere->volume());
  check(shape.volume() < capsule->volume() && capsule->volume() < sphere->volume(),
        "each volume contains the one before");

  // A vertical line at x = 0.1 misses the head and intersects the handle.
  const KtLineSegment line({0.1, 0.0, 1.0}, {0.1, 0.0, -1.0});
  double toShape = 0.0, toCapsule = 0.0;
  shape.intersectLineSegment(line, 0, toShape);
  shape.intersectLineSegment(line, 1, toCapsule);
  std::printf("a line meets the mallet after %.4f m, its capsule after %.4f m\n", toShape,
              toCapsule);
  check(std::abs(toShape - 0.99) < 1e-12 && toCapsule < toShape, "the handle lies at 0.99 m");
  return 0;
}
