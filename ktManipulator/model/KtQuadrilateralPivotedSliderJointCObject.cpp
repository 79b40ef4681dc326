#include "ktManipulator/model/KtQuadrilateralPivotedSliderJointCObject.h"

const KtCoordinateSystemTransformation& KtQuadrilateralPivotedSliderJointCObject::locationInSystem(
    KtManipulatorActiveState& activeState, const KtIndividualManipulator& manipulator) const {
  static constexpr Seat kSeat{"KtQuadrilateralPivotedSliderJointCObject",
                              KtQuadrilateralTypeLink::kPivotedSlider,
                              &KtQuadrilateralTypeLink::frameCTransform};
  return locationOn(kSeat, activeState, manipulator);
}
