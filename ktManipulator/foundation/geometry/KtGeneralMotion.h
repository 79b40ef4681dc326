#pragma once

#include <istream>
#include <ostream>

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtXmlVector.h"

class KtReArray;

/// A spatial motion: the velocity or acceleration of one point of a rigid body (the origin of the
/// frame that it belongs to) together with the body's angular rate, both in one frame's axes.
///
/// Index 0, 1, 2 is linear x, y, z, and 3, 4, 5 is angular x, y, z. Units m/s and rad/s, or m/s^2
/// and rad/s^2.
class KT_EXPORT KtGeneralMotion : public KtXmlRecord<KtGeneralMotion> {
 public:
  /// Zero.
  KtGeneralMotion() noexcept = default;
  /// From the two parts.
  KtGeneralMotion(const KtVector& linear, const KtVector& angular) noexcept
      : linear_(linear), angular_(angular) {}

  /// The linear part.
  const KtVector& linear() const noexcept { return linear_; }
  /// The angular part.
  const KtVector& angular() const noexcept { return angular_; }
  void setLinear(const KtVector& v) noexcept { linear_ = v; }
  void setAngular(const KtVector& v) noexcept { angular_ = v; }

  /// Sum.
  KtGeneralMotion operator+(const KtGeneralMotion& m) const noexcept {
    return {linear_ + m.linear_, angular_ + m.angular_};
  }
  /// Difference.
  KtGeneralMotion operator-(const KtGeneralMotion& m) const noexcept {
    return {linear_ - m.linear_, angular_ - m.angular_};
  }
  /// The opposite.
  KtGeneralMotion operator-() const noexcept { return {-linear_, -angular_}; }
  /// Product.
  KtGeneralMotion operator*(double s) const noexcept { return {linear_ * s, angular_ * s}; }
  /// In-place sum.
  KtGeneralMotion& operator+=(const KtGeneralMotion& m) noexcept {
    linear_ += m.linear_;
    angular_ += m.angular_;
    return *this;
  }
  /// In-place difference.
  KtGeneralMotion& operator-=(const KtGeneralMotion& m) noexcept {
    linear_ -= m.linear_;
    angular_ -= m.angular_;
    return *this;
  }
  /// In-place product.
  KtGeneralMotion& operator*=(double s) noexcept {
    linear_ *= s;
    angular_ *= s;
    return *this;
  }

  /// Component i; 0 for an index above 5.
  double operator[](unsigned i) const noexcept {
    switch (i) {
      case 0:
        return linear_.x;
      case 1:
        return linear_.y;
      case 2:
        return linear_.z;
      case 3:
        return angular_.x;
      case 4:
        return angular_.y;
      case 5:
        return angular_.z;
      default:
        return 0.0;
    }
  }
  /// Sets component i; an index above 5 is ignored.
  void setScalarValue(unsigned i, double value) noexcept {
    switch (i) {
      case 0:
        linear_.x = value;
        break;
      case 1:
        linear_.y = value;
        break;
      case 2:
        linear_.z = value;
        break;
      case 3:
        angular_.x = value;
        break;
      case 4:
        angular_.y = value;
        break;
      case 5:
        angular_.z = value;
        break;
      default:
        break;
    }
  }

  /// Changes the reference in place. For X = (p, R) with new coordinates = R old coordinates + p:
  /// angular' = R angular, linear' = R linear + p x angular'. A motion given in frame A at A's
  /// origin is carried to frame B at B's origin by `transformBy(T_A_B.inverse())`.
  void transformBy(const KtCoordinateSystemTransformation& x) noexcept {
    angular_ = x.orientation() * angular_;
    linear_ = x.orientation() * linear_ + x.translation().cross(angular_);
  }
  /// Rotates both parts.
  void transformBy(const KtOrientation& r) noexcept {
    linear_ = r * linear_;
    angular_ = r * angular_;
  }
  /// linear += p x angular.
  void transformBy(const KtVector& p) noexcept { linear_ += p.cross(angular_); }

  /// Reads the first column of an array of 6 rows; an array with fewer rows, or without a column,
  /// changes nothing.
  void copyFromArray(const KtReArray& array) noexcept;

  /// Whether no component differs by more than the tolerance.
  bool approxEq(const KtGeneralMotion& m, double tolerance) const noexcept {
    return linear_.approxEq(m.linear_, tolerance) && angular_.approxEq(m.angular_, tolerance);
  }
  /// Exact equality of all components.
  bool operator==(const KtGeneralMotion& m) const noexcept {
    return linear_ == m.linear_ && angular_ == m.angular_;
  }

  /// Reads the 6 components, 8 bytes each in the machine's byte order; false, and nothing changes,
  /// at a cut-off stream.
  bool readBin(std::istream& stream);
  /// Writes what `readBin` reads.
  bool writeBin(std::ostream& stream) const;

  static const KtToken& classToken() { return KtFoundCommon::KtGeneralVelocityToken; }

 private:
  friend class KtXmlRecord<KtGeneralMotion>;
  template <class Self, class Visit>
  static void forEachField(Self& self, Visit&& visit) {
    visit(KtFoundCommon::KtLinearToken, self.linear_);
    visit(KtFoundCommon::KtAngularToken, self.angular_);
  }

  KtXmlVector linear_;
  KtXmlVector angular_;
};

/// Scalar multiple.
inline KtGeneralMotion operator*(double s, const KtGeneralMotion& m) noexcept {
  return m * s;
}

/// The motion with its reference changed; see `KtGeneralMotion::transformBy`.
inline KtGeneralMotion operator*(const KtCoordinateSystemTransformation& x,
                                 const KtGeneralMotion& m) noexcept {
  const KtVector angular = x.orientation() * m.angular();
  return {x.orientation() * m.linear() + x.translation().cross(angular), angular};
}

/// The motion with both parts rotated.
inline KtGeneralMotion operator*(const KtOrientation& r, const KtGeneralMotion& m) noexcept {
  return {r * m.linear(), r * m.angular()};
}

extern template class KtXmlRecord<KtGeneralMotion>;
