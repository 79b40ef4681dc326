#pragma once

#include "ktManipulator/model/KtBaseQuadrilateralBoundObject.h"

/// The rod that faces a fixed slider; it rides on frame B of the linkage.
class KT_EXPORT KtQuadrilateralFixedSliderJointCBObject
    : public KtXmlPersistent<KtQuadrilateralFixedSliderJointCBObject,
                             KtBaseQuadrilateralBoundObject> {
 public:
  const KtCoordinateSystemTransformation& locationInSystem(
      KtManipulatorActiveState& activeState,
      const KtIndividualManipulator& manipulator) const override;

  /// Exact equality.
  bool operator==(const KtQuadrilateralFixedSliderJointCBObject&) const = default;
  /// Name of the class in files.
  static const KtToken& classToken() {
    return KtManip::KtQuadrilateralFixedSliderJointCBObjectToken;
  }
};
