#pragma once

#include <cstdint>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/geometry/KtVector.h"

/// The process-wide random source.
///
/// A program that wants its own sequence seeds it; the library never does. The same seed gives the
/// same sequence, bit for bit, on every platform with IEEE doubles: the generator is the 64-bit
/// Mersenne Twister, and the samples use nothing but correctly rounded operations.
class KT_EXPORT KtRandom {
 public:
  /// Starts the sequence that belongs to the seed.
  static void seed(std::uint64_t value);

  /// A real uniform in [0, 1), a multiple of 2^-53.
  static double uniformRandom();

  /// A normally distributed sample by the polar method.
  ///
  /// @param mean   mean of the distribution
  /// @param sigma  standard deviation; 0 gives the mean
  /// @see G. Marsaglia, T. A. Bray, A convenient method for generating normal variables,
  ///      SIAM Review 6 (1964), 260-264
  static double normalRandom(double mean, double sigma);

  /// A direction uniform on the unit sphere.
  ///
  /// @see G. Marsaglia, Choosing a point from the surface of a sphere,
  ///      Annals of Mathematical Statistics 43 (1972), 645-646
  static KtVector randomUnitVector();
};
