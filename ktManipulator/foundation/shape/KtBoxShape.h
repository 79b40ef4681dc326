#pragma once

#include "ktManipulator/foundation/geometry/KtXmlVector.h"
#include "ktManipulator/foundation/shape/KtFramedExtent.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A solid box with its edges along the axes of its frame, centred at the frame's origin.
class KT_EXPORT KtBoxShape : public KtXmlPersistent<KtBoxShape, KtFramedExtent> {
 public:
  /// A point at the origin.
  KtBoxShape() = default;
  /// From the lengths of the edges and the frame; negative lengths count as their magnitudes.
  explicit KtBoxShape(const KtVector& size, const KtCoordinateSystemTransformation& frame = {})
      : size_(size) {
    setFrame(frame);
  }

  void registerComponents() override;
  KtShapeValues shapeType() const override { return kBox; }

  /// The lengths of the edges along x, y and z of the frame, as they were set.
  const KtVector& size() const noexcept { return size_; }
  /// Negative lengths count as their magnitudes.
  void setSize(const KtVector& size) noexcept { size_ = size; }

  bool operator==(const KtBoxShape&) const = default;
  static const KtToken& classToken();

 protected:
  KtVector ownSupport(const KtVector& direction) const override;
  void ownPoints(std::vector<KtVector>& points) const override;
  void clip(Kt::detail::LineClip& line) const override;
  KtVolumeMoments ownMoments() const override;
  bool ownContains(const KtVector& point) const override;
  void scaleSizes(double factor) override { size_ *= factor; }
  void truncateSizes(double precision) override { size_ = truncated(size_, precision); }

 private:
  KtVector half() const noexcept;

  KtXmlVector size_;
};
