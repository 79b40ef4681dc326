#include "ktManipulator/model/KtQuadrilateralFixedSliderJointOAObject.h"

const KtCoordinateSystemTransformation& KtQuadrilateralFixedSliderJointOAObject::locationInSystem(
    KtManipulatorActiveState& activeState, const KtIndividualManipulator& manipulator) const {
  static constexpr Seat kSeat{"KtQuadrilateralFixedSliderJointOAObject",
                              KtQuadrilateralTypeLink::kFixedSlider,
                              &KtQuadrilateralTypeLink::frameATransform};
  return locationOn(kSeat, activeState, manipulator);
}
