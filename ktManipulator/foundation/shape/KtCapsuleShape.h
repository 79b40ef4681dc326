#pragma once

#include "ktManipulator/foundation/geometry/KtXmlVector.h"
#include "ktManipulator/foundation/shape/KtBasePhysicalExtent.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A solid capsule: all points no farther from a line segment than the radius. Its core is the
/// segment, its margin the radius.
class KT_EXPORT KtCapsuleShape : public KtXmlPersistent<KtCapsuleShape, KtBasePhysicalExtent> {
 public:
  /// A point at the origin.
  KtCapsuleShape() = default;
  /// From a capsule; a negative radius counts as 0.
  explicit KtCapsuleShape(const KtCapsule& capsule) { setCapsule(capsule); }

  void registerComponents() override;
  KtShapeValues shapeType() const override { return kCapsule; }
  KtVector support(const KtVector& direction) const override {
    return (endpoint1_ - endpoint0_).dot(direction) > 0.0 ? endpoint1_ : endpoint0_;
  }
  double margin() const override { return radius_.value(); }
  void boundingSpheres(std::vector<KtSphere>& spheres) const override;
  KtCapsule boundingCapsule() const override { return capsule(); }
  using KtShape::intersectLineSegment;
  const KtShape* intersectLineSegment(const KtLineSegment& segment,
                                      double& distance) const override;
  KtVolumeMoments volumeMoments() const override;
  bool contains(const KtVector& point) const override;

  /// The capsule.
  KtCapsule capsule() const noexcept {
    return {KtLineSegment(endpoint0_, endpoint1_), radius_.value()};
  }
  /// A negative radius counts as 0.
  void setCapsule(const KtCapsule& capsule) noexcept {
    endpoint0_ = capsule.lineSegment().endpoint0();
    endpoint1_ = capsule.lineSegment().endpoint1();
    radius_ = KtNonNegReal(capsule.radius());
  }

  bool operator==(const KtCapsuleShape&) const = default;
  static const KtToken& classToken();

 protected:
  void scaleOwn(double factor) override;
  void transformOwn(const KtCoordinateSystemTransformation& t) override;
  void truncateOwn(double precision) override;

 private:
  KtXmlVector endpoint0_;
  KtXmlVector endpoint1_;
  KtXmlBasicType<KtNonNegReal> radius_;
};
