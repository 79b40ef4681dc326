#pragma once

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/matrix/KtSecondMoment.h"

/// The integrals of a solid over its volume, about the origin of a frame: of 1 in m^3, of the
/// position x in m^4, and of the products x x^T in m^5. A plain value.
class KT_EXPORT KtVolumeMoments {
 public:
  /// Integral of 1: the volume.
  double volume = 0.0;
  /// Integral of the position: the volume times the centroid.
  KtVector first;
  /// Integrals of xx, yy, zz.
  KtVector squares;
  /// Integrals of xy, xz, yz.
  KtVector products;

  /// Adds w x x^T to the second integrals.
  constexpr void addProduct(double w, const KtVector& x) noexcept {
    squares += KtVector(x.x * x.x, x.y * x.y, x.z * x.z) * w;
    products += KtVector(x.x * x.y, x.x * x.z, x.y * x.z) * w;
  }
  /// The integrals of two solids that have no point in common.
  constexpr KtVolumeMoments& operator+=(const KtVolumeMoments& other) noexcept {
    volume += other.volume;
    first += other.first;
    squares += other.squares;
    products += other.products;
    return *this;
  }
  /// Multiplies all integrals by a number.
  constexpr KtVolumeMoments& operator*=(double s) noexcept {
    volume *= s;
    first *= s;
    squares *= s;
    products *= s;
    return *this;
  }
  /// The integrals of the solid moved by T: given in frame B and transformed by T_A_B they stand in
  /// frame A.
  KtVolumeMoments transformedBy(const KtCoordinateSystemTransformation& t) const noexcept {
    const KtOrientation& r = t.orientation();
    // The rows of R C, then those of (R C) R^T by way of its transposed.
    const KtVector c0 = r * KtVector(squares.x, products.x, products.y);
    const KtVector c1 = r * KtVector(products.x, squares.y, products.z);
    const KtVector c2 = r * KtVector(products.y, products.z, squares.z);
    const KtVector r0 = r * KtVector(c0.x, c1.x, c2.x);
    const KtVector r1 = r * KtVector(c0.y, c1.y, c2.y);
    const KtVector r2 = r * KtVector(c0.z, c1.z, c2.z);
    const KtVector& p = t.translation();
    const KtVector f = r * first;
    KtVolumeMoments moved;
    moved.volume = volume;
    moved.first = f + p * volume;
    moved.squares = {r0.x + 2.0 * f.x * p.x, r1.y + 2.0 * f.y * p.y, r2.z + 2.0 * f.z * p.z};
    moved.products = {r0.y + f.x * p.y + p.x * f.y, r0.z + f.x * p.z + p.x * f.z,
                      r1.z + f.y * p.z + p.y * f.z};
    moved.addProduct(volume, p);
    return moved;
  }
  /// The inertia tensor about the origin of a solid of density 1 kg / m^3, kg m^2.
  KtSecondMoment inertia() const noexcept {
    return {squares.y + squares.z, squares.x + squares.z, squares.x + squares.y,
            -products.x,           -products.y,           -products.z};
  }
};
