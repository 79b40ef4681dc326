// A hydraulic cylinder tilts a boom. Base, boom and cylinder form a closed loop of bars, which a
// single joint models; the joint parameter is the extension of the cylinder.

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

// The boom's pivot is 0.9 m along x from the origin. The cylinder has the length 0.8 m + q. It is
// mounted 0.3 m above the origin and connected to the boom 0.5 m from the pivot.
KtStatedSystem boomOnCylinder() {
  KtQuadrilateralTypeLink joint;
  joint.setJointType(KtQuadrilateralTypeLink::kPivotedSlider);
  joint.setOppositeLength(0.9);
  joint.setNominalLength(0.8);
  joint.setD1Length(0.3);
  joint.setD2Length(0.5);
  const double half = std::sqrt(0.5);
  joint.setPrecursor(KtOrientation(half, half, 0.0, 0.0));  // the loop's y is the system's z

  KtRigidBodyMassProperties mass =
      KtRigidBodyMassProperties::uniformSolidAxisAlignedRectangularPrism(50.0, 2.0, 0.2, 0.2);
  mass.transformBy(KtVector(1.0, 0.0, 0.0));  // the boom begins at its pivot
  KtManipulatorLink boom;
  boom.setLabel("boom");
  boom.setLinkKinematics(joint);
  boom.setMassProperties(mass);
  KtIndividualManipulator crane;
  crane.addChild(boom);
  KtStatedSystem scene;
  scene.setFromManipulator(crane);
  return scene;
}

}  // namespace

int main() {
  const KtStatedSystem scene = boomOnCylinder();
  const KtIndividualManipulator& crane = scene.system().manipulators()[0];
  const KtManipulatorLink& boom = *crane.linkByIndex(0);
  KtGravitationalTorqueTool weight;
  weight.setManipulator(&crane);
  weight.setGravityVector({0.0, 0.0, 9.81});

  KtManipulatorActiveState active;
  const auto setExtension = [&](double q) {
    KtPositionState position = scene.state().positionStates()[0];
    position.jointPositions()[0] = q;
    active.setPositionState(position);
  };
  const auto height = [&](double q) {
    setExtension(q);
    return crane.getCenterOfMassInSystem(active).z;
  };
  std::printf("  extension, m   angle, degrees   force of the cylinder, N\n");
  for (const double q : {0.0, 0.1, 0.2, 0.3}) {
    const double h = 1e-6, perMetre = (height(q + h) - height(q - h)) / (2.0 * h);
    setExtension(q);
    const auto& frame = boom.dhFrameInSystem(active.activePositionState());
    const KtVector along = frame.orientation() * KtVector::xVector(1.0);
    const double angle = std::atan2(along.z, along.x) * 180.0 / 3.141592653589793;
    const double force = weight.gravitationalTorque(0, active, nullptr);
    std::printf("  %12.1f   %14.3f   %24.2f\n", q, angle, force);

    const KtVector held = frame * KtVector(0.5, 0.0, 0.0);
    const double length = (held - KtVector(0.0, 0.0, 0.3)).mag();
    check(std::abs(length - (0.8 + q)) < 1e-12, "the loop is closed");
    check(std::abs(force - 50.0 * 9.81 * perMetre) < 1e-4,
          "the cylinder's work is what lifts the boom, or what holds it back");
  }
  return 0;
}
