#include "support/Testing.h"
#include "support/Trees.h"

namespace {

const KtQuadrilateralTypeLink kLinkages[] = {trees::randomQuadrilateral(0),
                                             trees::randomQuadrilateral(1)};

struct Scene {
  Arm arm;
  Active activeState;
};

const T kBase(KtVector(-0.5, 0.3, 0.7), KtOrientation::xRotation(0.6));
constexpr double kPosition = 0.05;

// A boom at the root, which stands somewhere, and a link of another kind below it.
Scene sceneOf(unsigned type) {
  KtManipulatorLink other;
  other.setLabel("other");
  other.setLinkKinematics(KtDenavitHartenberg::defaultObject());
  KtManipulatorLink boom;
  boom.setLabel("boom");
  boom.setLinkKinematics(kLinkages[type]);
  boom.addChild(other);
  Scene scene;
  scene.arm.addChild(boom);
  KtPositionState positions;
  positions.setJointPositions({2, kPosition});
  positions.setCoordSysXForm(kBase);
  scene.activeState.setPositionState(positions);
  return scene;
}

TEST(GeneralBoundObject, RidesOnItsFrameOfTheLinkage) {
  const T frame(KtVector(0.1, 0.2, 0.3), KtOrientation::zRotation(0.4));
  const auto check = [&](auto body, unsigned type, const T& seat) {
    body.setPrimaryFrame(frame);
    body.setlinkIdentifier("boom");
    Scene scene = sceneOf(type);
    const T& location = body.locationInSystem(scene.activeState, scene.arm);
    EXPECT_TRUE(location.approxEq(kBase * seat * frame, 1e-12)) << body.token().text();
  };
  const auto& [fixed, pivoted] = kLinkages;
  const T pivot = fixed.frameATransform(kPosition);
  check(KtQuadrilateralFixedSliderJointOAObject(), 0, pivot);
  check(KtQuadrilateralFixedSliderJointCBObject(), 0, fixed.frameBTransform(kPosition));
  check(KtQuadrilateralPivotedSliderJointBObject(), 1, pivoted.frameBTransform(kPosition));
  check(KtQuadrilateralPivotedSliderJointCObject(), 1, pivoted.frameCTransform(kPosition));
}

TEST(GeneralBoundObject, RepeatsItsLastPlaceWhereNothingFits) {
  KtQuadrilateralPivotedSliderJointBObject body;
  const std::string name = "KtQuadrilateralPivotedSliderJointBObject::location - ";
  Scene scene = sceneOf(1);
  body.setlinkIdentifier("boom");
  const T before = body.locationInSystem(scene.activeState, scene.arm);
  EXPECT_NE(before, T());
  const auto expectMessage = [&](Scene& in, const std::string& message) {
    const KtLogCapture log;
    EXPECT_EQ(body.locationInSystem(in.activeState, in.arm), before);
    EXPECT_EQ(log.errors(), name + message);
  };
  body.setlinkIdentifier("nobody");
  expectMessage(scene, "invalid link identifier.\n");
  body.setlinkIdentifier("other");
  expectMessage(scene, "link kinematics must be of type KtQuadrilateralTypeLink.\n");
  body.setlinkIdentifier("boom");
  Scene fixed = sceneOf(0);
  expectMessage(fixed, "incompatible joint type. PIVOTED_SLIDER expected.\n");
  scene.activeState.setPositionState(KtPositionState());
  expectMessage(scene, "out of range index.\n");
}

}  // namespace
