#include "ktManipulator/foundation/geometry/KtRandom.h"

#include <cmath>
#include <random>

namespace {

std::mt19937_64& engine() {
  static std::mt19937_64 theEngine;
  return theEngine;
}

/// A point uniform in the open unit disk, never its centre.
struct DiskPoint {
  double u, v, squared;
};

DiskPoint randomDiskPoint() {
  for (;;) {
    const double u = 2.0 * KtRandom::uniformRandom() - 1.0;
    const double v = 2.0 * KtRandom::uniformRandom() - 1.0;
    const double squared = u * u + v * v;
    if (squared < 1.0 && squared > 0.0) return {u, v, squared};
  }
}

/// Natural logarithm from basic operations alone: the mathematics library may differ between
/// platforms in the last bit, and the sequence must not. log x = e log 2 + 2 artanh((m-1)/(m+1)).
double portableLog(double x) {
  int exponent = 0;
  double mantissa = std::frexp(x, &exponent);
  if (mantissa < 0.7071067811865476) {
    mantissa *= 2.0;
    --exponent;
  }
  const double s = (mantissa - 1.0) / (mantissa + 1.0);
  const double square = s * s;
  double sum = 0.0;
  // |s| < 0.172, so that the first term left out is below 1e-17 of the sum.
  for (int k = 21; k >= 1; k -= 2) sum = sum * square + 1.0 / k;
  return exponent * 0.6931471805599453 + 2.0 * s * sum;
}

}  // namespace

void KtRandom::seed(std::uint64_t value) {
  engine().seed(value);
}

double KtRandom::uniformRandom() {
  return static_cast<double>(engine()() >> 11) * 0x1p-53;
}

double KtRandom::normalRandom(double mean, double sigma) {
  const DiskPoint p = randomDiskPoint();
  return mean + sigma * (p.u * std::sqrt(-2.0 * portableLog(p.squared) / p.squared));
}

KtVector KtRandom::randomUnitVector() {
  const DiskPoint p = randomDiskPoint();
  const double scale = 2.0 * std::sqrt(1.0 - p.squared);
  return {p.u * scale, p.v * scale, 1.0 - 2.0 * p.squared};
}
