#include "ktManipulator/model/KtQuadrilateralFixedSliderJointCBObject.h"

const KtCoordinateSystemTransformation& KtQuadrilateralFixedSliderJointCBObject::locationInSystem(
    KtManipulatorActiveState& activeState, const KtIndividualManipulator& manipulator) const {
  static constexpr Seat kSeat{"KtQuadrilateralFixedSliderJointCBObject",
                              KtQuadrilateralTypeLink::kFixedSlider,
                              &KtQuadrilateralTypeLink::frameBTransform};
  return locationOn(kSeat, activeState, manipulator);
}
