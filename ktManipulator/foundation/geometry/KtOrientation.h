#pragma once

#include <cmath>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtMath.h"
#include "ktManipulator/foundation/geometry/KtVector.h"

/// A rotation as a unit quaternion (w, x, y, z), scalar part first: a plain value.
///
/// Hamilton's product: a * b rotates by b first, then by a. A rotation by t about x is
/// (cos t/2, sin t/2, 0, 0). Operations take the quaternion as it stands; they do not normalise.
/// `KtXmlOrientation` is its persistent form.
class KT_EXPORT KtOrientation {
 public:
  /// The identity (1, 0, 0, 0).
  constexpr KtOrientation() noexcept = default;
  /// From the four components as given, without normalisation.
  constexpr KtOrientation(double q0, double q1, double q2, double q3) noexcept
      : q_{q0, q1, q2, q3} {}

  /// Component i: 0 is the scalar part, 1 to 3 the vector part.
  constexpr double operator[](unsigned i) const noexcept { return q_[i]; }

  /// Composition: rotates by b first, then by this.
  constexpr KtOrientation operator*(const KtOrientation& b) const noexcept {
    return {q_[0] * b.q_[0] - q_[1] * b.q_[1] - q_[2] * b.q_[2] - q_[3] * b.q_[3],
            q_[0] * b.q_[1] + q_[1] * b.q_[0] + q_[2] * b.q_[3] - q_[3] * b.q_[2],
            q_[0] * b.q_[2] - q_[1] * b.q_[3] + q_[2] * b.q_[0] + q_[3] * b.q_[1],
            q_[0] * b.q_[3] + q_[1] * b.q_[2] - q_[2] * b.q_[1] + q_[3] * b.q_[0]};
  }
  /// In-place composition: a *= b makes a = a * b.
  constexpr KtOrientation& operator*=(const KtOrientation& b) noexcept { return *this = *this * b; }

  /// The vector rotated. For a unit quaternion with vector part u: v + 2w (u x v) + 2u x (u x v).
  constexpr KtVector operator*(const KtVector& v) const noexcept {
    const KtVector u(q_[1], q_[2], q_[3]);
    const KtVector t = u.cross(v) * 2.0;
    return v + t * q_[0] + u.cross(t);
  }
  /// Rotates the vector in place.
  constexpr void transform(KtVector& v) const noexcept { v = *this * v; }

  /// The inverse rotation (the conjugate).
  constexpr KtOrientation inverse() const noexcept { return {q_[0], -q_[1], -q_[2], -q_[3]}; }

  /// Rescales to unit length in place. A quaternion without a length (zero, not finite, or so large
  /// that its square is not) becomes the identity.
  void normalize() noexcept {
    const double squared = q_[0] * q_[0] + q_[1] * q_[1] + q_[2] * q_[2] + q_[3] * q_[3];
    if (!(squared > 0.0) || !std::isfinite(squared)) {
      *this = KtOrientation();
      return;
    }
    const double scale = 1.0 / std::sqrt(squared);
    for (double& q : q_) q *= scale;
  }

  /// Rotation by t radians about x.
  static KtOrientation xRotation(double t) noexcept {
    return {std::cos(0.5 * t), std::sin(0.5 * t), 0.0, 0.0};
  }
  /// Rotation by t radians about y.
  static KtOrientation yRotation(double t) noexcept {
    return {std::cos(0.5 * t), 0.0, std::sin(0.5 * t), 0.0};
  }
  /// Rotation by t radians about z.
  static KtOrientation zRotation(double t) noexcept {
    return {std::cos(0.5 * t), 0.0, 0.0, std::sin(0.5 * t)};
  }

  /// Image of the x unit vector: the first column of the direction cosine matrix.
  constexpr KtVector xAxis() const noexcept {
    return {1.0 - 2.0 * (q_[2] * q_[2] + q_[3] * q_[3]), 2.0 * (q_[1] * q_[2] + q_[0] * q_[3]),
            2.0 * (q_[1] * q_[3] - q_[0] * q_[2])};
  }
  /// Image of the y unit vector: the second column of the direction cosine matrix.
  constexpr KtVector yAxis() const noexcept {
    return {2.0 * (q_[1] * q_[2] - q_[0] * q_[3]), 1.0 - 2.0 * (q_[1] * q_[1] + q_[3] * q_[3]),
            2.0 * (q_[2] * q_[3] + q_[0] * q_[1])};
  }
  /// Image of the z unit vector: the third column of the direction cosine matrix.
  constexpr KtVector zAxis() const noexcept {
    return {2.0 * (q_[1] * q_[3] + q_[0] * q_[2]), 2.0 * (q_[2] * q_[3] - q_[0] * q_[1]),
            1.0 - 2.0 * (q_[1] * q_[1] + q_[2] * q_[2])};
  }

  /// Sets this to the rotation by an angle in radians about a unit axis. A zero axis gives a
  /// quaternion without a vector part, to be normalised or avoided by the caller.
  void setFromAngleAxis(double angle, const KtVector& axis) noexcept {
    const double s = std::sin(0.5 * angle);
    q_[0] = std::cos(0.5 * angle);
    q_[1] = s * axis.x, q_[2] = s * axis.y, q_[3] = s * axis.z;
  }
  /// The rotation angle in [0, pi] radians and its unit axis; angle 0 and the x axis for the
  /// identity.
  void getAngleAxis(double& angle, KtVector& axis) const noexcept;

  /// Sets this from the three columns of a direction cosine matrix: the images of the x, y and z
  /// unit vectors. Columns that are not quite orthonormal give the nearby unit quaternion that
  /// their largest component leads to; degenerate ones the identity.
  ///
  /// @see S. W. Shepperd, Quaternion from rotation matrix, Journal of Guidance and Control 1
  ///      (1978), 223-224
  void setFromDcmColumns(const KtVector& c0, const KtVector& c1, const KtVector& c2) noexcept;

  /// Advances this in place by a constant angular velocity over a time, and normalises.
  ///
  /// @param omega  angular velocity in the reference (outer) frame's axes, rad/s
  /// @param dt     time, s
  void integrateReferenceFrameAngularVelocity(const KtVector& omega, double dt) noexcept;

  /// Whether both stand for the same rotation within the tolerance per component; a quaternion and
  /// its negative are the same rotation.
  bool approxEq(const KtOrientation& other, double tolerance) const noexcept;

  /// Exact equality of the components.
  constexpr bool operator==(const KtOrientation& other) const noexcept = default;

 private:
  double q_[4] = {1.0, 0.0, 0.0, 0.0};
};
