#pragma once

#include <random>

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"

/// Random values for tests, from one generator, which every test finds in the same state.
namespace sampling {

inline std::mt19937_64& generator() {
  static std::mt19937_64 theGenerator;
  return theGenerator;
}
inline double uniform(double from = -1.0, double to = 1.0) {
  return std::uniform_real_distribution<double>(from, to)(generator());
}
/// An index below a count.
inline KtU32 pick(std::size_t count) {
  return static_cast<KtU32>(uniform(0.0, 0.999 * static_cast<double>(count)));
}
inline KtVector randomVector() {
  return {uniform(), uniform(), uniform()};
}
inline KtOrientation randomOrientation() {
  KtOrientation q(uniform(), uniform(), uniform(), uniform());
  q.normalize();
  return q;
}
inline KtCoordinateSystemTransformation randomTransformation() {
  return {randomVector(), randomOrientation()};
}
inline KtGeneralMotion randomMotion() {
  return {randomVector(), randomVector()};
}

}  // namespace sampling
