#pragma once

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/xml/KtXmlRecord.h"

/// A plane: a point of it, in m, and a vector at right angles to it.
class KT_EXPORT KtPlane : public KtXmlRecord<KtPlane> {
 public:
  /// The xy plane through the origin, with its normal along z.
  KtPlane() noexcept : normalVector_(KtVector::zVector(1.0)) {}
  /// From a point and a normal vector, taken as it is.
  KtPlane(const KtVector& basePoint, const KtVector& normalVector) noexcept
      : basePoint_(basePoint), normalVector_(normalVector) {}

  /// The point.
  const KtVector& basePoint() const noexcept { return basePoint_; }
  /// The normal vector.
  const KtVector& normalVector() const noexcept { return normalVector_; }
  void setBasePoint(const KtVector& v) noexcept { basePoint_ = v; }
  void setNormalVector(const KtVector& v) noexcept { normalVector_ = v; }

  bool operator==(const KtPlane& other) const noexcept {
    return basePoint_ == other.basePoint_ && normalVector_ == other.normalVector_;
  }

  static const KtToken& classToken() { return KtGeom::KtPlaneToken; }

 private:
  friend class KtXmlRecord<KtPlane>;
  template <class Self, class Visit>
  static void forEachField(Self& self, Visit&& visit) {
    visit(KtGeom::KtBasePointToken, self.basePoint_);
    visit(KtGeom::KtNormalVectorToken, self.normalVector_);
  }

  KtVector basePoint_;
  KtVector normalVector_;
};

/// The plane in the outer frame.
inline KtPlane operator*(const KtCoordinateSystemTransformation& t, const KtPlane& plane) noexcept {
  return {t * plane.basePoint(), t.orientation() * plane.normalVector()};
}

extern template class KtXmlRecord<KtPlane>;
