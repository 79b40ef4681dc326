#pragma once

#include "ktManipulator/model/KtBaseQuadrilateralBoundObject.h"

/// The half of a fixed slider that rides on frame A of the linkage: it does not turn with the link.
class KT_EXPORT KtQuadrilateralFixedSliderJointOAObject
    : public KtXmlPersistent<KtQuadrilateralFixedSliderJointOAObject,
                             KtBaseQuadrilateralBoundObject> {
 public:
  const KtCoordinateSystemTransformation& locationInSystem(
      KtManipulatorActiveState& activeState,
      const KtIndividualManipulator& manipulator) const override;

  /// Exact equality.
  bool operator==(const KtQuadrilateralFixedSliderJointOAObject&) const = default;
  /// Name of the class in files.
  static const KtToken& classToken() {
    return KtManip::KtQuadrilateralFixedSliderJointOAObjectToken;
  }
};
