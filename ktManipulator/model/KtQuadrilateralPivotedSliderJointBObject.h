#pragma once

#include "ktManipulator/model/KtBaseQuadrilateralBoundObject.h"

/// The half of a pivoted slider that rides on frame B of the linkage, at the far end of the link's
/// side.
class KT_EXPORT KtQuadrilateralPivotedSliderJointBObject
    : public KtXmlPersistent<KtQuadrilateralPivotedSliderJointBObject,
                             KtBaseQuadrilateralBoundObject> {
 public:
  const KtCoordinateSystemTransformation& locationInSystem(
      KtManipulatorActiveState& activeState,
      const KtIndividualManipulator& manipulator) const override;

  /// Exact equality.
  bool operator==(const KtQuadrilateralPivotedSliderJointBObject&) const = default;
  /// Name of the class in files.
  static const KtToken& classToken() {
    return KtManip::KtQuadrilateralPivotedSliderJointBObjectToken;
  }
};
