#pragma once

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/xml/KtXmlRecord.h"

/// An infinite line: a point, in m, and a unit vector along it.
class KT_EXPORT KtLine : public KtXmlRecord<KtLine> {
 public:
  /// The x axis.
  KtLine() noexcept : unitVector_(KtVector::xVector(1.0)) {}
  /// From a point of the line and a vector of length 1, taken as it is.
  KtLine(const KtVector& point, const KtVector& unitVector) noexcept
      : point_(point), unitVector_(unitVector) {}

  /// The point.
  const KtVector& point() const noexcept { return point_; }
  /// The direction.
  const KtVector& unitVector() const noexcept { return unitVector_; }

  /// Squared distance to another line.
  ///
  /// @param other  the other line
  /// @param s      receives the parameter of the closest point on this line: its distance from
  ///               `point()` along `unitVector()`. For parallel lines it is 0.
  /// @param t      receives the same for the other line
  double distanceSquared(const KtLine& other, double& s, double& t) const noexcept;

  bool operator==(const KtLine& other) const noexcept {
    return point_ == other.point_ && unitVector_ == other.unitVector_;
  }

  static const KtToken& classToken() { return KtGeom::KtLineToken; }

 private:
  friend class KtXmlRecord<KtLine>;
  template <class Self, class Visit>
  static void forEachField(Self& self, Visit&& visit) {
    visit(KtGeom::KtPointToken, self.point_);
    visit(KtGeom::KtUnitVectorToken, self.unitVector_);
  }

  KtVector point_;
  KtVector unitVector_;
};

/// The line in the outer frame.
inline KtLine operator*(const KtCoordinateSystemTransformation& t, const KtLine& line) noexcept {
  return {t * line.point(), t.orientation() * line.unitVector()};
}

extern template class KtXmlRecord<KtLine>;
