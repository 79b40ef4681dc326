#pragma once

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/xml/KtXmlRecord.h"

/// A ball: all points no farther from a centre than the radius. One with a negative radius, such as
/// the default one, has no point. Lengths in m.
class KT_EXPORT KtSphere : public KtXmlRecord<KtSphere> {
 public:
  /// No point at all: what an expansion starts from.
  KtSphere() noexcept = default;
  /// From centre and radius.
  ///
  /// @param dimension  of the space that it lies in: 3
  KtSphere(const KtVector& center, double radius, int dimension) noexcept
      : center_(center), radius_(radius), dimension_(dimension) {}

  /// The centre.
  const KtVector& center() const noexcept { return center_; }
  /// The radius.
  double radius() const noexcept { return radius_; }
  /// The dimension of the space.
  int dimension() const noexcept { return dimension_; }
  void setCenter(const KtVector& v) noexcept { center_ = v; }
  void setRadius(double r) noexcept { radius_ = r; }
  /// Whether it has no point.
  bool isEmpty() const noexcept { return radius_ < 0.0; }

  /// Makes this the smallest ball that includes itself and the other.
  void expandSelfToInclude(const KtSphere& other) noexcept;

  bool operator==(const KtSphere& other) const noexcept {
    return center_ == other.center_ && radius_ == other.radius_ && dimension_ == other.dimension_;
  }

  static const KtToken& classToken() { return KtGeom::KtSphereToken; }

 private:
  friend class KtXmlRecord<KtSphere>;
  template <class Self, class Visit>
  static void forEachField(Self& self, Visit&& visit) {
    visit(KtGeom::KtCenterToken, self.center_);
    visit(KtGeom::KtRadiusToken, self.radius_);
    visit(KtGeom::KtDimensionToken, self.dimension_);
  }

  KtVector center_;
  double radius_ = -1.0;
  int dimension_ = 3;
};

/// The ball in the outer frame.
inline KtSphere operator*(const KtCoordinateSystemTransformation& t,
                          const KtSphere& sphere) noexcept {
  return {t * sphere.center(), sphere.radius(), sphere.dimension()};
}

extern template class KtXmlRecord<KtSphere>;
