#pragma once

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/shape/KtBasePhysicalExtent.h"

namespace Kt::detail {
class LineClip;
}

/// An extent that is described in a frame of its own, which stands in the frame of the link.
///
/// A concrete extent answers in its own frame; this class takes it from there to the link's.
class KT_EXPORT KtFramedExtent : public KtBasePhysicalExtent {
 public:
  void registerComponents() override;
  KtVector support(const KtVector& direction) const override {
    return frame_ * ownSupport(frame_.orientation().inverse() * direction);
  }
  void boundingSpheres(std::vector<KtSphere>& spheres) const override;
  bool axisAlignedBoundingBox(const KtCoordinateSystemTransformation& t,
                              KtAxisAlignedBoundingBox& box) const override;
  using KtShape::intersectLineSegment;
  const KtShape* intersectLineSegment(const KtLineSegment& segment,
                                      double& distance) const override;
  KtVolumeMoments volumeMoments() const override { return ownMoments().transformedBy(frame_); }
  bool contains(const KtVector& point) const override {
    return ownContains(frame_.inverse() * point);
  }

  /// The own frame, in the frame of the link.
  const KtCoordinateSystemTransformation& frame() const noexcept { return frame_; }
  void setFrame(const KtCoordinateSystemTransformation& frame) noexcept { frame_ = frame; }

  bool operator==(const KtFramedExtent&) const = default;

 protected:
  void scaleOwn(double factor) override;
  void transformOwn(const KtCoordinateSystemTransformation& t) override { frame_ = t * frame_; }
  void truncateOwn(double precision) override;

  // In the own frame.

  /// The point farthest in a direction.
  virtual KtVector ownSupport(const KtVector& direction) const = 0;
  /// Appends points whose convex hull contains the extent.
  virtual void ownPoints(std::vector<KtVector>& points) const = 0;
  /// Cuts off what is outside.
  virtual void clip(Kt::detail::LineClip& line) const = 0;
  /// The integrals over the volume.
  virtual KtVolumeMoments ownMoments() const = 0;
  /// Whether a point lies inside or on the surface.
  virtual bool ownContains(const KtVector& point) const = 0;
  /// Scales the lengths by a factor that is not negative.
  virtual void scaleSizes(double factor) = 0;
  /// Mirrors the extent through its own origin, for those that change by it.
  virtual void mirror() {}
  /// Truncates the lengths; the frame's translation is done.
  virtual void truncateSizes(double precision) = 0;

 private:
  KtCoordinateSystemTransformation frame_;
};
