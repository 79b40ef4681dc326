#pragma once

#include <functional>

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"

/// Motions by central differences of a frame's path, as an oracle that knows the frame alone.
namespace differences {

using Path = std::function<KtCoordinateSystemTransformation(double time)>;

/// The rotation vector that takes one orientation to another, in the outer frame's axes.
inline KtVector turn(const KtOrientation& from, const KtOrientation& to) {
  double angle = 0.0;
  KtVector axis;
  (to * from.inverse()).getAngleAxis(angle, axis);
  return axis * angle;
}

/// Velocity at time 0, in the outer frame's axes.
inline KtGeneralMotion outerVelocity(const Path& path, double step) {
  const auto before = path(-step);
  const auto after = path(step);
  return {(after.translation() - before.translation()) / (2.0 * step),
          turn(before.orientation(), after.orientation()) / (2.0 * step)};
}

/// Velocity at time 0, in the frame's own axes.
inline KtGeneralMotion velocity(const Path& path, double step = 1e-4) {
  KtGeneralMotion v = outerVelocity(path, step);
  v.transformBy(path(0.0).orientation().inverse());
  return v;
}

/// Acceleration at time 0, in the frame's own axes.
inline KtGeneralMotion acceleration(const Path& path, double step = 1e-3) {
  const auto rate = [&](double time) {
    return outerVelocity([&](double t) { return path(time + t); }, 0.1 * step);
  };
  KtGeneralMotion a = (rate(step) - rate(-step)) * (0.5 / step);
  a.transformBy(path(0.0).orientation().inverse());
  return a;
}

}  // namespace differences
