#pragma once

#include "ktManipulator/model/KtBaseQuadrilateralBoundObject.h"

/// The half of a pivoted slider that rides on frame C of the linkage.
class KT_EXPORT KtQuadrilateralPivotedSliderJointCObject
    : public KtXmlPersistent<KtQuadrilateralPivotedSliderJointCObject,
                             KtBaseQuadrilateralBoundObject> {
 public:
  const KtCoordinateSystemTransformation& locationInSystem(
      KtManipulatorActiveState& activeState,
      const KtIndividualManipulator& manipulator) const override;

  /// Exact equality.
  bool operator==(const KtQuadrilateralPivotedSliderJointCObject&) const = default;
  /// Name of the class in files.
  static const KtToken& classToken() {
    return KtManip::KtQuadrilateralPivotedSliderJointCObjectToken;
  }
};
