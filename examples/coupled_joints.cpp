// Joints that move in a fixed ratio, like the fingers of a gripper, and a motion in which the
// accelerations of some joints and the torques of the others are given.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

using Constraint = KtLinearStateEqualityConstraint;

// The constraint q_a + weight q_b = 0, which also holds for velocities and accelerations.
KtStateEqualityConstraintVector coupling(KtU32 joints, KtU32 a, KtU32 b, double weight) {
  Constraint::Row weights(joints, 0.0);
  weights[a] = 1.0;
  weights[b] = weight;
  Constraint constraint;
  constraint.setJointWeights(Constraint::Rows(1, weights));
  constraint.setWeightedSums(Constraint::Row(1, 0.0));
  KtStateEqualityConstraintVector constraints;
  constraints.pushBack(constraint);
  return constraints;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "examples/models";
  KtStatedSystem scene;
  if (!KtXmlReader::readFile(folder + "/two-link-arm.xml", scene)) return 1;  // messages say why

  // The elbow rotates back by twice the angle of the shoulder, so the hand stays on a line.
  KtIndividualManipulator coupled = scene.system().manipulators()[0];
  coupled.setStateEqualityConstraints(coupling(2, 1, 0, 2.0));
  KtPositionState start = scene.state().positionStates()[0];
  start.jointPositions()[0] = 0.5;
  start.jointPositions()[1] = -1.0;
  scene.exchangeManipulator(0, coupled, start, scene.state().velocityStates()[0]);
  const KtIndividualManipulator& arm = scene.system().manipulators()[0];

  KtSimulation simulation(scene);  // by the composite method, as there are constraints
  for (int k = 1; k <= 200; ++k) simulation.stepTo(k * 1e-3);
  const KtPositionState& position = simulation.state().positionStates()[0];
  const double shoulder = position.jointPositions()[0], elbow = position.jointPositions()[1];
  const KtVector wrist =
      arm.linkByIndex(1)->dhFrameInSystem(simulation.active().activePositionState()) *
      KtVector(0.5, 0.0, 0.0);
  std::printf("after %.1f s: shoulder %.4f, elbow %.4f rad, hand at (%.4f, %.4f, %.4f) m\n",
              simulation.state().time(), shoulder, elbow, wrist.x, wrist.y, wrist.z);
  check(shoulder != 0.5 && std::abs(elbow + 2.0 * shoulder) < 1e-12, "the relation holds");
  check(std::abs(wrist.z - 0.5) < 1e-12, "and so the hand stays at the shoulder's height");

  // Without the constraint: the shoulder's acceleration is given, the elbow's torque is 0.
  KtIndividualManipulator unbound = arm;
  unbound.setStateEqualityConstraints(KtStateEqualityConstraintVector());
  scene.exchangeManipulator(0, unbound, start, scene.state().velocityStates()[0]);
  const KtIndividualManipulator& loose = scene.system().manipulators()[0];
  const KtManipulatorSystemState& state = scene.state();
  KtCrbiAccelerationTool tool;
  KtManipulatorExternalForce none;
  none.resize(2);
  KtManipulatorTorque torque;
  torque.jointTorques().resize(2);
  KtAccelerationState acceleration;
  acceleration.resize(2);
  acceleration.jointAccelerations()[0] = 2.0;
  tool.hybridTorqueAcceleration(scene, loose, state.positionStates()[0], state.velocityStates()[0],
                                none, {false, true}, torque, acceleration, nullptr, true);
  const double swing = acceleration.jointAccelerations()[1];
  std::printf(
      "to accelerate by 2 rad/s^2 the shoulder's motor gives %.4f N m; the elbow swings by "
      "%.4f rad/s^2\n",
      torque.jointTorques()[0].value(), swing);

  KtAccelerationState back;
  tool.acceleration(scene, loose, state.positionStates()[0], state.velocityStates()[0], torque,
                    none, back, nullptr, true);
  check(std::abs(back.jointAccelerations()[0] - 2.0) < 1e-10 &&
            std::abs(back.jointAccelerations()[1] - swing) < 1e-10,
        "forward dynamics makes that of these torques");
  return 0;
}
