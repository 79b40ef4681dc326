#include "ktManipulator/kinematics/KtQuadrilateralBoundObjects.h"

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

void KtBaseQuadrilateralBoundObject::registerComponents() {
  KtBaseGeneralBoundObject::registerComponents();
  registerComponent(KtManip::KtLinkIdentifierToken, &linkIdentifier_);
}

bool KtBaseQuadrilateralBoundObject::operator==(const KtBaseQuadrilateralBoundObject& other) const {
  return KtBaseGeneralBoundObject::operator==(other) && linkIdentifier_ == other.linkIdentifier_;
}

const KtCoordinateSystemTransformation& KtBaseQuadrilateralBoundObject::locationInSystem(
    KtManipulatorActiveState& activeState, const KtIndividualManipulator& manipulator) const {
  Kt::Print& log = Kt::Print::instance();
  const KtManipulatorLink* const link = manipulator.linkByIdentifier(linkIdentifier_);
  if (link == nullptr) {
    log.write(Kt::Print::kError, "%s::location - invalid link identifier.\n", seat_.className);
    return location_;
  }
  const auto* const linkage =
      dynamic_cast<const KtQuadrilateralTypeLink*>(link->linkKinematicsContainer().topElement());
  if (linkage == nullptr) {
    log.write(Kt::Print::kError,
              "%s::location - link kinematics must be of type KtQuadrilateralTypeLink.\n",
              seat_.className);
    return location_;
  }
  if (linkage->jointType() != seat_.jointType) {
    const bool fixed = seat_.jointType == KtQuadrilateralTypeLink::kFixedSlider;
    log.write(Kt::Print::kError, "%s::location - incompatible joint type. %s expected.\n",
              seat_.className, fixed ? "FIXED_SLIDER" : "PIVOTED_SLIDER");
    return location_;
  }
  const KtPositionState::JointVector& positions = activeState.positionState().jointPositions();
  const KtU32 index = link->linkIndex();
  if (index >= positions.size()) {
    log.write(Kt::Print::kError, "%s::location - out of range index.\n", seat_.className);
    return location_;
  }
  const KtManipulatorLink* const parent = link->parentLink();
  if (parent != nullptr) {
    location_ = parent->dhFrameInSystem(activeState.activePositionState());
  } else {
    location_.setToIdentity();
  }
  location_ *= (linkage->*seat_.frame)(positions[index]);
  location_ *= primaryFrame();
  return location_;
}

KtQuadrilateralFixedSliderJointOAObject::KtQuadrilateralFixedSliderJointOAObject()
    : KtXmlPersistent(Seat{"KtQuadrilateralFixedSliderJointOAObject",
                           KtQuadrilateralTypeLink::kFixedSlider,
                           &KtQuadrilateralTypeLink::frameATransform}) {}

KtQuadrilateralFixedSliderJointCBObject::KtQuadrilateralFixedSliderJointCBObject()
    : KtXmlPersistent(Seat{"KtQuadrilateralFixedSliderJointCBObject",
                           KtQuadrilateralTypeLink::kFixedSlider,
                           &KtQuadrilateralTypeLink::frameBTransform}) {}

KtQuadrilateralPivotedSliderJointBObject::KtQuadrilateralPivotedSliderJointBObject()
    : KtXmlPersistent(Seat{"KtQuadrilateralPivotedSliderJointBObject",
                           KtQuadrilateralTypeLink::kPivotedSlider,
                           &KtQuadrilateralTypeLink::frameBTransform}) {}

KtQuadrilateralPivotedSliderJointCObject::KtQuadrilateralPivotedSliderJointCObject()
    : KtXmlPersistent(Seat{"KtQuadrilateralPivotedSliderJointCObject",
                           KtQuadrilateralTypeLink::kPivotedSlider,
                           &KtQuadrilateralTypeLink::frameCTransform}) {}
