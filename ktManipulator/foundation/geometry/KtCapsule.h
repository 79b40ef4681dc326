#pragma once

#include "ktManipulator/foundation/geometry/KtLineSegment.h"

/// A capsule: all points no farther from a line segment than the radius. Lengths in m.
class KT_EXPORT KtCapsule : public KtXmlRecord<KtCapsule> {
 public:
  /// A point at the origin.
  KtCapsule() noexcept = default;
  /// From its segment and radius.
  KtCapsule(const KtLineSegment& lineSegment, double radius) noexcept
      : lineSegment_(lineSegment), radius_(radius) {}

  /// The segment.
  const KtLineSegment& lineSegment() const noexcept { return lineSegment_; }
  /// The radius.
  double radius() const noexcept { return radius_; }
  void setLineSegment(const KtLineSegment& segment) noexcept { lineSegment_ = segment; }
  void setRadius(double r) noexcept { radius_ = r; }
  /// Volume: a cylinder and two halves of a ball.
  double volume() const noexcept {
    constexpr double pi = 3.141592653589793;
    return pi * radius_ * radius_ * (lineSegment_.length() + 4.0 / 3.0 * radius_);
  }

  bool operator==(const KtCapsule& other) const noexcept {
    return lineSegment_ == other.lineSegment_ && radius_ == other.radius_;
  }

  static const KtToken& classToken() { return KtGeom::KtCapsuleToken; }

 private:
  friend class KtXmlRecord<KtCapsule>;
  template <class Self, class Visit>
  static void forEachField(Self& self, Visit&& visit) {
    visit(KtGeom::KtLineSegmentToken, self.lineSegment_);
    visit(KtGeom::KtRadiusToken, self.radius_);
  }

  KtLineSegment lineSegment_;
  double radius_ = 0.0;
};

/// The capsule in the outer frame.
inline KtCapsule operator*(const KtCoordinateSystemTransformation& t,
                           const KtCapsule& capsule) noexcept {
  return {t * capsule.lineSegment(), capsule.radius()};
}

extern template class KtXmlRecord<KtCapsule>;
