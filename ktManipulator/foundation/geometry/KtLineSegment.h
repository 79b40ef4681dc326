#pragma once

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/xml/KtXmlRecord.h"

/// The straight line between two points. Lengths in m.
class KT_EXPORT KtLineSegment : public KtXmlRecord<KtLineSegment> {
 public:
  /// Both points at the origin.
  KtLineSegment() noexcept = default;
  /// From its two points.
  KtLineSegment(const KtVector& endpoint0, const KtVector& endpoint1) noexcept
      : endpoint0_(endpoint0), endpoint1_(endpoint1) {}

  /// The first point.
  const KtVector& endpoint0() const noexcept { return endpoint0_; }
  /// The second point.
  const KtVector& endpoint1() const noexcept { return endpoint1_; }
  void setEndpoint0(const KtVector& v) noexcept { endpoint0_ = v; }
  void setEndpoint1(const KtVector& v) noexcept { endpoint1_ = v; }
  /// The point halfway.
  KtVector center() const noexcept { return (endpoint0_ + endpoint1_) * 0.5; }
  /// The distance of the two points.
  double length() const noexcept { return (endpoint1_ - endpoint0_).mag(); }
  /// Transforms both points in place.
  void transformBy(const KtCoordinateSystemTransformation& t) noexcept {
    endpoint0_ = t * endpoint0_;
    endpoint1_ = t * endpoint1_;
  }

  bool operator==(const KtLineSegment& other) const noexcept {
    return endpoint0_ == other.endpoint0_ && endpoint1_ == other.endpoint1_;
  }

  static const KtToken& classToken() { return KtGeom::KtLineSegmentToken; }

 private:
  friend class KtXmlRecord<KtLineSegment>;
  template <class Self, class Visit>
  static void forEachField(Self& self, Visit&& visit) {
    visit(KtGeom::KtEndpoint0Token, self.endpoint0_);
    visit(KtGeom::KtEndpoint1Token, self.endpoint1_);
  }

  KtVector endpoint0_;
  KtVector endpoint1_;
};

/// The segment in the outer frame.
inline KtLineSegment operator*(const KtCoordinateSystemTransformation& t,
                               const KtLineSegment& segment) noexcept {
  return {t * segment.endpoint0(), t * segment.endpoint1()};
}

extern template class KtXmlRecord<KtLineSegment>;
