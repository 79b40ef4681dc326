#include "ktManipulator/model/KtQuadrilateralPivotedSliderJointBObject.h"

const KtCoordinateSystemTransformation& KtQuadrilateralPivotedSliderJointBObject::locationInSystem(
    KtManipulatorActiveState& activeState, const KtIndividualManipulator& manipulator) const {
  static constexpr Seat kSeat{"KtQuadrilateralPivotedSliderJointBObject",
                              KtQuadrilateralTypeLink::kPivotedSlider,
                              &KtQuadrilateralTypeLink::frameBTransform};
  return locationOn(kSeat, activeState, manipulator);
}
