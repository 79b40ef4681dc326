// An arm carries a tool that is a separate manipulator. The tool follows the arm's flange, and its
// weight acts on the arm.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

// A ball of 2 kg without joints.
KtIndividualManipulator ball() {
  KtIndividualManipulator ball;
  ball.setLabel("ball");
  ball.setMassProperties(KtRigidBodyMassProperties::uniformSolidSphere(2.0, 0.05));
  return ball;
}

// The torque of the second joint that holds the arm and what it carries.
double holdingTorque(const KtStatedSystem& scene) {
  KtGravitationalTorqueTool tool;
  tool.setManipulator(&scene.system().manipulators()[0]);
  tool.setGravityVector(scene.environment().upGravityVector());
  KtManipulatorActiveState active;
  active.setPositionState(scene.state().positionStates()[0]);
  const KtStatedSystemStruct asker{&scene, 0};  // without an asker, attachments are ignored
  return tool.gravitationalTorques(active, &asker)[1][0];
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "examples/models";
  KtStatedSystem alone;
  if (!KtXmlReader::readFile(folder + "/puma560.xml", alone)) return 1;  // messages say why

  KtStatedSystem scene(alone, true);  // not shared with `alone`
  scene.addManipulator(ball(), KtPositionState(), KtVelocityState());
  const KtCoordinateSystemTransformation offset(KtVector(0.0, 0.0, 0.1));
  KtManipulatorAttachmentMap attachments;
  attachments.attachManipulator(1, 0, "flange roll", offset);  // attaches the ball to the flange
  scene.setManipulatorAttachmentMap(attachments);

  // A step moves the ball to the flange, even a step of length 0.
  KtSystemActiveState active;
  active.setNonredundantState(scene.state());
  KtAccelerationState turning =
      KtAccelerationState::zeroCompatibleState(scene.state().velocityStates()[0]);
  turning.jointAccelerations()[0] = 1.0;
  active.manipulatorActiveStateVector()[0].setAccelerationState(turning);
  KtStatedSystem::ResultVector results;
  for (int k = 0; k <= 100; ++k) scene.propagateSelfTo(k * 1e-2, results, &active);

  KtManipulatorActiveState arm;
  arm.setPositionState(scene.state().positionStates()[0]);
  arm.setVelocityState(scene.state().velocityStates()[0]);
  const KtManipulatorLink& flange =
      *scene.system().manipulators()[0].linkByIdentifier("flange roll");
  const KtCoordinateSystemTransformation expected =
      flange.primaryFrameInSystem(arm.activePositionState()) * offset;
  const KtVector place = scene.state().positionStates()[1].coordSysXForm().translation();
  const KtVector velocity = scene.state().velocityStates()[1].generalVelocity().linear();
  std::printf("after %.1f s the ball is at (%.3f, %.3f, %.3f) m and moves at %.3f m/s\n",
              scene.state().time(), place.x, place.y, place.z, velocity.mag());
  check(place.approxEq(expected.translation(), 1e-12), "the ball is where the flange carries it");
  check(std::abs(velocity.mag() - std::hypot(place.x, place.y)) < 1e-9,
        "at 1 rad/s about the waist it moves as fast as it is far from the axis");

  // The shoulder's axis is horizontal and intersects the waist's axis; the waist has rotated the
  // arm.
  const double waist = scene.state().positionStates()[0].jointPositions()[0];
  const double lever = place.x * std::cos(waist) + place.y * std::sin(waist);
  const double added = holdingTorque(scene) - holdingTorque(alone);
  std::printf("it adds %.3f N m at the shoulder\n", added);
  check(std::abs(added + 2.0 * 9.81 * lever) < 1e-9, "which is its weight times the lever");
}
