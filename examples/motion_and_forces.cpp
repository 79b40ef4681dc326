// Computes poses, velocities, torques and accelerations of an arm, and shows what an active state
// caches. Every statement is checked.

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

double largestDifference(const KtXmlVectorType<KtXmlBasicType<double>>& a,
                         const KtXmlVectorType<KtXmlBasicType<double>>& b) {
  double largest = 0.0;
  for (KtU32 i = 0; i < a.size(); ++i) largest = std::fmax(largest, std::abs(a[i] - b[i]));
  return largest;
}

KtManipulatorActiveState activeStateOf(const KtStatedSystem& scene, double rate) {
  KtVelocityState velocity = scene.state().velocityStates()[0];
  velocity.jointVelocities().assign(velocity.jointVelocities().size(), rate);
  KtManipulatorActiveState active;
  active.setPositionState(scene.state().positionStates()[0]);
  active.setVelocityState(velocity);
  return active;
}

void setGravity(const KtStatedSystem& scene, KtManipulatorActiveState& active) {
  KtAccelerationState acceleration =
      KtAccelerationState::zeroCompatibleState(active.velocityState());
  acceleration.setGeneralAcceleration({scene.environment().upGravityVector(), KtVector()});
  active.setAccelerationState(acceleration);
}

void motion(const KtIndividualManipulator& arm, KtManipulatorActiveState& active) {
  const KtManipulatorLink& hand = *arm.linkByIndex(arm.jointDof() - 1);

  const KtVector place = hand.dhFrameInSystem(active.activePositionState()).translation();
  const KtVector velocity = hand.dhFrameVelocityInSystem(active).linear();
  std::printf("hand at (%.3f, %.3f, %.3f) m, moving at (%.3f, %.3f, %.3f) m/s\n", place.x, place.y,
              place.z, velocity.x, velocity.y, velocity.z);

  KtPositionState later = active.positionState();
  arm.propagateState(active.velocityState(), 1e-6, later);
  KtManipulatorActiveState then;
  then.setPositionState(later);
  const KtVector moved = hand.dhFrameInSystem(then.activePositionState()).translation() - place;
  check((moved / 1e-6).approxEq(velocity, 1e-4), "the velocity is the rate of the place");
}

void caching(const KtIndividualManipulator& arm, KtManipulatorActiveState& active) {
  const KtManipulatorLink& hand = *arm.linkByIndex(arm.jointDof() - 1);
  hand.dhFrameInSystem(active.activePositionState());
  check(!active.setPositionState(active.positionState()), "the same positions change nothing");

  KtVelocityState atRest = active.velocityState();
  atRest.jointVelocities().assign(arm.jointDof(), 0.0);
  active.setVelocityState(atRest);
  const auto& positions = active.activePositionState().linkPositionStates();
  check(positions[hand.linkIndex()].locationInSystemValid(), "frames outlive a new velocity");
}

void torques(const KtStatedSystem& scene, const KtIndividualManipulator& arm,
             KtManipulatorActiveState& active) {
  KtManipulatorExternalForce none;
  none.resize(arm.jointDof());

  setGravity(scene, active);
  KtTotalTorqueTool inverse;
  inverse.setManipulator(&arm);
  inverse.setTotalTorqueType(kTotalTorqueOfLinks);
  const KtManipulatorTorque holding = inverse.torques(none, active, nullptr);

  KtGravitationalTorqueTool gravity;
  gravity.setManipulator(&arm);
  gravity.setGravityVector(scene.environment().upGravityVector());
  const KtReArray& weights = gravity.gravitationalTorques(active, nullptr);
  double difference = 0.0;
  for (KtU32 i = 0; i < arm.jointDof(); ++i) {
    difference = std::fmax(difference, std::abs(holding.jointTorques()[i] - weights[i][0]));
  }
  check(difference < 1e-10, "at rest, inverse dynamics gives the torques that hold the weight");
}

void forward(const KtStatedSystem& scene, const KtIndividualManipulator& arm,
             KtManipulatorActiveState& active) {
  KtManipulatorExternalForce none;
  none.resize(arm.jointDof());
  KtManipulatorTorque limp;
  limp.jointTorques().resize(arm.jointDof());

  KtArbiAccelerationTool articulated;
  KtAccelerationState falling;
  articulated.acceleration(scene, arm, active.positionState(), active.velocityState(), limp, none,
                           falling, nullptr, true);

  KtCrbiAccelerationTool composite;
  KtAccelerationState again;
  composite.acceleration(scene, arm, active.positionState(), active.velocityState(), limp, none,
                         again, nullptr, true);
  check(largestDifference(falling.jointAccelerations(), again.jointAccelerations()) < 1e-8,
        "both methods let the arm fall alike");

  // The result has no gravity: it is added for the way back.
  falling.setGeneralAcceleration({scene.environment().upGravityVector(), KtVector()});
  active.setAccelerationState(falling);
  KtTotalTorqueTool inverse;
  inverse.setManipulator(&arm);
  inverse.setTotalTorqueType(kTotalTorqueOfLinks);
  const KtManipulatorTorque taken = inverse.torques(none, active, nullptr);
  check(largestDifference(taken.jointTorques(), limp.jointTorques()) < 1e-9,
        "inverse dynamics of a fall takes no torque");
}

void massMatrix(const KtIndividualManipulator& arm, KtManipulatorActiveState& active) {
  KtMassMatrixTool tool;
  tool.setManipulator(&arm);
  const KtReArray& mass = tool.massMatrix(active, nullptr);
  double energy = 0.0;
  const auto& rates = active.velocityState().jointVelocities();
  for (KtU32 i = 0; i < mass.rows(); ++i) {
    for (KtU32 j = 0; j < mass.columns(); ++j) energy += 0.5 * rates[i] * mass[i][j] * rates[j];
  }
  check(std::abs(energy - arm.computeKineticEnergy(active, nullptr, nullptr)) < 1e-10,
        "the mass matrix gives the kinetic energy");
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "examples/models";
  KtStatedSystem scene;
  if (!KtXmlReader::readFile(folder + "/puma560.xml", scene)) return 1;
  const KtIndividualManipulator& arm = scene.system().manipulators()[0];

  KtManipulatorActiveState active = activeStateOf(scene, 0.5);
  motion(arm, active);
  massMatrix(arm, active);
  caching(arm, active);
  torques(scene, arm, active);
  forward(scene, arm, active);
  return 0;
}
