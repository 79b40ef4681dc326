/// @file
/// A rotation as passes over many links use it.
#pragma once

#include "ktManipulator/foundation/geometry/KtOrientation.h"

namespace Kt::detail {

/// A rotation as a direction cosine matrix, by rows. It rotates a vector with half the work of the
/// quaternion that it comes from: worth the conversion from two vectors on.
class RotationMatrix {
 public:
  /// The identity.
  constexpr RotationMatrix() noexcept = default;
  /// From a unit quaternion.
  explicit constexpr RotationMatrix(const KtOrientation& q) noexcept {
    const double w = q[0], x = q[1], y = q[2], z = q[3];
    const double x2 = x + x, y2 = y + y, z2 = z + z;
    const double xx = x * x2, yy = y * y2, zz = z * z2;
    const double xy = x * y2, xz = x * z2, yz = y * z2;
    const double wx = w * x2, wy = w * y2, wz = w * z2;
    m_[0] = 1.0 - (yy + zz), m_[1] = xy - wz, m_[2] = xz + wy;
    m_[3] = xy + wz, m_[4] = 1.0 - (xx + zz), m_[5] = yz - wx;
    m_[6] = xz - wy, m_[7] = yz + wx, m_[8] = 1.0 - (xx + yy);
  }

  /// Entry i of the nine, row by row.
  constexpr double operator[](unsigned i) const noexcept { return m_[i]; }
  /// The vector rotated.
  constexpr KtVector operator*(const KtVector& v) const noexcept {
    return {m_[0] * v.x + m_[1] * v.y + m_[2] * v.z, m_[3] * v.x + m_[4] * v.y + m_[5] * v.z,
            m_[6] * v.x + m_[7] * v.y + m_[8] * v.z};
  }
  /// Composition: rotates by b first, then by this.
  constexpr RotationMatrix operator*(const RotationMatrix& b) const noexcept {
    RotationMatrix product;
    for (int i = 0; i < 9; i += 3) {
      for (int j = 0; j < 3; ++j) {
        product.m_[i + j] = m_[i] * b.m_[j] + m_[i + 1] * b.m_[3 + j] + m_[i + 2] * b.m_[6 + j];
      }
    }
    return product;
  }
  /// The vector rotated back.
  constexpr KtVector inverseTimes(const KtVector& v) const noexcept {
    return {m_[0] * v.x + m_[3] * v.y + m_[6] * v.z, m_[1] * v.x + m_[4] * v.y + m_[7] * v.z,
            m_[2] * v.x + m_[5] * v.y + m_[8] * v.z};
  }
  /// R J R^T of a symmetric matrix J, given and answered as xx, yy, zz, xy, xz, yz.
  constexpr void rotateSymmetric(const double* j, double* out) const noexcept {
    double rj[9];
    for (int i = 0; i < 9; i += 3) {
      rj[i] = m_[i] * j[0] + m_[i + 1] * j[3] + m_[i + 2] * j[4];
      rj[i + 1] = m_[i] * j[3] + m_[i + 1] * j[1] + m_[i + 2] * j[5];
      rj[i + 2] = m_[i] * j[4] + m_[i + 1] * j[5] + m_[i + 2] * j[2];
    }
    out[0] = rj[0] * m_[0] + rj[1] * m_[1] + rj[2] * m_[2];
    out[1] = rj[3] * m_[3] + rj[4] * m_[4] + rj[5] * m_[5];
    out[2] = rj[6] * m_[6] + rj[7] * m_[7] + rj[8] * m_[8];
    out[3] = rj[0] * m_[3] + rj[1] * m_[4] + rj[2] * m_[5];
    out[4] = rj[0] * m_[6] + rj[1] * m_[7] + rj[2] * m_[8];
    out[5] = rj[3] * m_[6] + rj[4] * m_[7] + rj[5] * m_[8];
  }
  /// R X R^T of any matrix X, both by rows.
  constexpr void rotate(const double* x, double* out) const noexcept {
    double rx[9];
    for (int i = 0; i < 9; i += 3) {
      for (int j = 0; j < 3; ++j) {
        rx[i + j] = m_[i] * x[j] + m_[i + 1] * x[3 + j] + m_[i + 2] * x[6 + j];
      }
    }
    for (int i = 0; i < 9; i += 3) {
      for (int j = 0; j < 3; ++j) {
        out[i + j] = rx[i] * m_[3 * j] + rx[i + 1] * m_[3 * j + 1] + rx[i + 2] * m_[3 * j + 2];
      }
    }
  }

 private:
  double m_[9] = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};
};

}  // namespace Kt::detail
