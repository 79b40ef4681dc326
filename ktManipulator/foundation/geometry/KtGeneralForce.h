#pragma once

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtXmlVector.h"

class KtReArray;

/// A spatial force: a force and a moment about one point (the origin of the frame that it belongs
/// to), both in one frame's axes.
///
/// Index 0, 1, 2 is force x, y, z in N, and 3, 4, 5 is moment x, y, z in N m. Its pairing with a
/// motion s, the power, is s.linear . force + s.angular . moment.
class KT_EXPORT KtGeneralForce : public KtXmlRecord<KtGeneralForce> {
 public:
  /// Zero.
  KtGeneralForce() noexcept = default;
  /// From the two parts.
  KtGeneralForce(const KtVector& force, const KtVector& moment) noexcept
      : force_(force), moment_(moment) {}

  /// The force.
  const KtVector& force() const noexcept { return force_; }
  /// The moment.
  const KtVector& moment() const noexcept { return moment_; }
  void setForce(const KtVector& v) noexcept { force_ = v; }
  void setMoment(const KtVector& v) noexcept { moment_ = v; }

  /// Sum.
  KtGeneralForce operator+(const KtGeneralForce& f) const noexcept {
    return {force_ + f.force_, moment_ + f.moment_};
  }
  /// Difference.
  KtGeneralForce operator-(const KtGeneralForce& f) const noexcept {
    return {force_ - f.force_, moment_ - f.moment_};
  }
  /// Product.
  KtGeneralForce operator*(double s) const noexcept { return {force_ * s, moment_ * s}; }
  /// In-place sum.
  KtGeneralForce& operator+=(const KtGeneralForce& f) noexcept {
    force_ += f.force_;
    moment_ += f.moment_;
    return *this;
  }
  /// In-place difference.
  KtGeneralForce& operator-=(const KtGeneralForce& f) noexcept {
    force_ -= f.force_;
    moment_ -= f.moment_;
    return *this;
  }
  /// In-place product.
  KtGeneralForce& operator*=(double s) noexcept {
    force_ *= s;
    moment_ *= s;
    return *this;
  }

  /// Component i; 0 for an index above 5.
  double operator[](unsigned i) const noexcept {
    switch (i) {
      case 0:
        return force_.x;
      case 1:
        return force_.y;
      case 2:
        return force_.z;
      case 3:
        return moment_.x;
      case 4:
        return moment_.y;
      case 5:
        return moment_.z;
      default:
        return 0.0;
    }
  }
  /// Sets component i; an index above 5 is ignored.
  void setScalarValue(unsigned i, double value) noexcept {
    switch (i) {
      case 0:
        force_.x = value;
        break;
      case 1:
        force_.y = value;
        break;
      case 2:
        force_.z = value;
        break;
      case 3:
        moment_.x = value;
        break;
      case 4:
        moment_.y = value;
        break;
      case 5:
        moment_.z = value;
        break;
      default:
        break;
    }
  }

  /// Changes the reference in place. For X = (p, R) with new coordinates = R old coordinates + p:
  /// force' = R force, moment' = R moment + p x force'. A force given in frame B at B's origin is
  /// carried to frame A at A's origin by `transformBy(T_A_B)`.
  void transformBy(const KtCoordinateSystemTransformation& x) noexcept {
    force_ = x.orientation() * force_;
    moment_ = x.orientation() * moment_ + x.translation().cross(force_);
  }
  /// Rotates both parts.
  void transformBy(const KtOrientation& r) noexcept {
    force_ = r * force_;
    moment_ = r * moment_;
  }
  /// moment += p x force.
  void transformBy(const KtVector& p) noexcept { moment_ += p.cross(force_); }

  /// Writes the 6 components as a 6 by 1 array.
  void copyToArray(KtReArray& array) const;

  /// Whether no component differs by more than the tolerance.
  bool approxEq(const KtGeneralForce& f, double tolerance) const noexcept {
    return force_.approxEq(f.force_, tolerance) && moment_.approxEq(f.moment_, tolerance);
  }
  /// Exact equality of all components.
  bool operator==(const KtGeneralForce& f) const noexcept {
    return force_ == f.force_ && moment_ == f.moment_;
  }

  static const KtToken& classToken() { return KtFoundCommon::KtGeneralForceToken; }

 private:
  friend class KtXmlRecord<KtGeneralForce>;
  template <class Self, class Visit>
  static void forEachField(Self& self, Visit&& visit) {
    visit(KtFoundCommon::KtForceToken, self.force_);
    visit(KtFoundCommon::KtMomentToken, self.moment_);
  }

  KtXmlVector force_;
  KtXmlVector moment_;
};

/// Scalar multiple.
inline KtGeneralForce operator*(double s, const KtGeneralForce& f) noexcept {
  return f * s;
}

/// The opposite force.
inline KtGeneralForce operator-(const KtGeneralForce& f) noexcept {
  return {-f.force(), -f.moment()};
}

/// The force with its reference changed; see `KtGeneralForce::transformBy`.
inline KtGeneralForce operator*(const KtCoordinateSystemTransformation& x,
                                const KtGeneralForce& f) noexcept {
  const KtVector force = x.orientation() * f.force();
  return {force, x.orientation() * f.moment() + x.translation().cross(force)};
}

extern template class KtXmlRecord<KtGeneralForce>;
extern template class KtXmlVectorType<KtGeneralForce>;
extern template class KtXmlVectorType<KtXmlVectorType<KtGeneralForce>>;
