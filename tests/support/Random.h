#pragma once

#include <gtest/gtest.h>

#include <random>

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"

/// Random values for tests, from one generator.
namespace sampling {

inline std::mt19937_64& generator() {
  static std::mt19937_64 theGenerator;
  return theGenerator;
}
inline double uniform(double from = -1.0, double to = 1.0) {
  return std::uniform_real_distribution<double>(from, to)(generator());
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

/// Starts every test with the same sequence, whatever order the tests run in.
class Seeded : public testing::Test {
 protected:
  Seeded() { generator().seed(20240517); }
};

}  // namespace sampling
