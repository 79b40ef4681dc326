#pragma once

#include "ktManipulator/foundation/geometry/KtXmlVector.h"
#include "ktManipulator/foundation/shape/KtBasePhysicalExtent.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A solid ball. Its core is the centre, its margin the radius.
class KT_EXPORT KtSphereShape : public KtXmlPersistent<KtSphereShape, KtBasePhysicalExtent> {
 public:
  /// A point at the origin.
  KtSphereShape() = default;
  /// From centre and radius; a negative radius counts as 0.
  KtSphereShape(const KtVector& center, double radius)
      : center_(center), radius_(KtNonNegReal(radius)) {}

  void registerComponents() override;
  KtShapeValues shapeType() const override { return kSphere; }
  KtVector support(const KtVector& /*direction*/) const override { return center_; }
  double margin() const override { return radius(); }
  void boundingSpheres(std::vector<KtSphere>& spheres) const override;
  KtCapsule boundingCapsule() const override;
  using KtShape::intersectLineSegment;
  const KtShape* intersectLineSegment(const KtLineSegment& segment,
                                      double& distance) const override;
  KtVolumeMoments volumeMoments() const override;
  bool contains(const KtVector& point) const override;

  /// The centre.
  const KtVector& center() const noexcept { return center_; }
  /// The radius.
  double radius() const noexcept { return radius_.value(); }
  void setCenter(const KtVector& center) noexcept { center_ = center; }
  /// A negative radius counts as 0.
  void setRadius(double radius) noexcept { radius_ = KtNonNegReal(radius); }

  bool operator==(const KtSphereShape&) const = default;
  static const KtToken& classToken();

 protected:
  void scaleOwn(double factor) override;
  void transformOwn(const KtCoordinateSystemTransformation& t) override;
  void truncateOwn(double precision) override;

 private:
  KtXmlVector center_;
  KtXmlBasicType<KtNonNegReal> radius_;
};
