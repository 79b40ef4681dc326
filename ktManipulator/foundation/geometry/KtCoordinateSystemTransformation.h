#pragma once

#include <istream>
#include <ostream>

#include "ktManipulator/foundation/geometry/KtOrientation.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/xml/KtXmlRecord.h"

/// A rigid transformation T = (p, R), read as frame B in frame A: applied to a point given in B it
/// yields the point in A, x_A = R x_B + p.
///
/// The translation is in m. Composition is right multiplication towards the outboard end, T_A_C =
/// T_A_B * T_B_C.
class KT_EXPORT KtCoordinateSystemTransformation
    : public KtXmlRecord<KtCoordinateSystemTransformation> {
 public:
  /// What a transformation does, so that its users can skip work.
  enum Mode : unsigned {
    kGeneral = 0,          ///< Rotates and translates.
    kPureRotation = 1,     ///< The translation is exactly zero.
    kPureTranslation = 2,  ///< The rotation is exactly the identity.
    kIdentity = 3          ///< Both.
  };

  /// The identity.
  KtCoordinateSystemTransformation() noexcept = default;
  /// A pure translation.
  KtCoordinateSystemTransformation(const KtVector& p) noexcept : p_(p) {}  // NOLINT
  /// A pure rotation.
  KtCoordinateSystemTransformation(const KtOrientation& r) noexcept : r_(r) {}  // NOLINT
  /// From the translation p and the rotation R.
  KtCoordinateSystemTransformation(const KtVector& p, const KtOrientation& r) noexcept
      : p_(p), r_(r) {}

  /// The translation p.
  const KtVector& translation() const noexcept { return p_; }
  /// The rotation R.
  const KtOrientation& orientation() const noexcept { return r_; }
  void setTranslation(const KtVector& p) noexcept { p_ = p; }
  void setOrientation(const KtOrientation& r) noexcept { r_ = r; }
  /// Makes this the identity.
  void setToIdentity() noexcept {
    p_ = KtVector();
    r_ = KtOrientation();
  }
  /// The shared identity.
  static const KtCoordinateSystemTransformation& identity();

  /// Composition (p1, R1) * (p2, R2) = (p1 + R1 p2, R1 R2).
  KtCoordinateSystemTransformation operator*(
      const KtCoordinateSystemTransformation& b) const noexcept {
    return {p_ + r_ * b.p_, r_ * b.r_};
  }
  /// In-place composition: a *= b makes a = a * b.
  KtCoordinateSystemTransformation& operator*=(const KtCoordinateSystemTransformation& b) noexcept {
    outboardTransformBy(b.p_, b.r_);
    return *this;
  }
  /// The point in the outer frame: R v + p.
  KtVector operator*(const KtVector& v) const noexcept { return p_ + r_ * v; }
  /// this = this * (p, R), without a temporary.
  void outboardTransformBy(const KtVector& p, const KtOrientation& r) noexcept {
    p_ += r_ * p;
    r_ = r_ * r;
  }

  /// The inverse, by value.
  KtCoordinateSystemTransformation inverse() const noexcept {
    const KtOrientation r = r_.inverse();
    return {-(r * p_), r};
  }
  /// Inverts this in place.
  void invert() noexcept {
    r_ = r_.inverse();
    p_ = -(r_ * p_);
  }

  /// Whether no component of the translation or the quaternion differs by more than the tolerance;
  /// a quaternion and its negative are the same rotation.
  bool approxEq(const KtCoordinateSystemTransformation& other, double tolerance) const noexcept {
    return p_.approxEq(other.p_, tolerance) && r_.approxEq(other.r_, tolerance);
  }
  /// Exact equality of all components.
  bool operator==(const KtCoordinateSystemTransformation& other) const noexcept {
    return p_ == other.p_ && r_ == other.r_;
  }

  /// Sets this to the interpolation between a (s = 0) and b (s = 1): the translation blends
  /// linearly, the orientation by spherical linear interpolation along the shorter arc.
  ///
  /// @see K. Shoemake, Animating rotation with quaternion curves, SIGGRAPH 1985, 245-254
  void interpolation(const KtCoordinateSystemTransformation& a,
                     const KtCoordinateSystemTransformation& b, double s) noexcept;

  /// What this transformation does, judged without a tolerance, so that work is skipped only where
  /// it would change nothing.
  Mode mode() const noexcept {
    const unsigned noTranslation = p_ == KtVector() ? 1U : 0U;
    const unsigned noRotation = r_[1] == 0.0 && r_[2] == 0.0 && r_[3] == 0.0 ? 2U : 0U;
    return static_cast<Mode>(noTranslation | noRotation);
  }

  /// Reads p (3 reals), then R (4 reals), 8 bytes each in the machine's byte order; false, and
  /// nothing changes, at a cut-off stream.
  bool readBin(std::istream& stream);
  /// Writes what `readBin` reads.
  bool writeBin(std::ostream& stream) const;

  static const KtToken& classToken() { return KtFoundCommon::KtCoordinateSystemTransformToken; }

 private:
  friend class KtXmlRecord<KtCoordinateSystemTransformation>;
  template <class Self, class Visit>
  static void forEachField(Self& self, Visit&& visit) {
    visit(KtFoundCommon::KtTranslationToken, self.p_);
    visit(KtFoundCommon::KtOrientationToken, self.r_);
  }

  KtVector p_;
  KtOrientation r_;
};

extern template class KtXmlRecord<KtCoordinateSystemTransformation>;
