// A seven-joint arm moves its elbow while its hand stays at rest: the joint velocities are in the
// null space of the Jacobian.

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

const KtCoordinateSystemTransformation& frameOf(const KtIndividualManipulator& arm, KtU32 joint,
                                                KtManipulatorActiveState& active) {
  return arm.linkByIndex(joint)->dhFrameInSystem(active.activePositionState());
}

// Column j: the hand's velocity if joint j, which rotates about z of its frame, has the rate 1.
void jacobian(const KtIndividualManipulator& arm, KtManipulatorActiveState& active,
              KtReArray& columns) {
  columns.resizeArray(6, arm.jointDof());
  const KtVector hand = frameOf(arm, arm.jointDof() - 1, active).translation();
  for (KtU32 j = 0; j < arm.jointDof(); ++j) {
    const KtCoordinateSystemTransformation& frame = frameOf(arm, j, active);
    const KtVector axis = frame.orientation() * KtVector(0.0, 0.0, 1.0);
    const KtVector moves = axis.cross(hand - frame.translation());
    const double column[] = {moves.x, moves.y, moves.z, axis.x, axis.y, axis.z};
    for (KtU32 i = 0; i < 6; ++i) columns[i][j] = column[i];
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "examples/models";
  KtStatedSystem scene;
  if (!KtXmlReader::readFile(folder + "/iiwa14.xml", scene)) return 1;  // messages say why
  const KtIndividualManipulator& arm = scene.system().manipulators()[0];
  KtPositionState position = scene.state().positionStates()[0];
  const double pose[] = {0.0, 0.6, 0.0, -1.2, 0.0, 0.9, 0.0};
  for (KtU32 j = 0; j < arm.jointDof(); ++j) position.jointPositions()[j] = pose[j];

  KtManipulatorActiveState active;
  active.setPositionState(position);
  const KtCoordinateSystemTransformation hand = frameOf(arm, 6, active);
  const KtVector elbow = frameOf(arm, 3, active).translation();
  KtJacobianState state;
  jacobian(arm, active, state.jacobianReferenceToSet());
  check(state.nullSpace().columns() == 1, "seven joints have one motion more than a hand takes");

  // Follow the null-space motion in small steps; the first joint keeps its direction of rotation.
  for (int k = 0; k < 20000; ++k) {
    jacobian(arm, active, state.jacobianReferenceToSet());
    const KtReArray& idle = state.nullSpace();
    const double step = std::copysign(1e-4, idle[0][0]);
    for (KtU32 j = 0; j < arm.jointDof(); ++j) {
      position.jointPositions()[j] = position.jointPositions()[j] + step * idle[j][0];
    }
    active.setPositionState(position);
  }
  const double moved = (frameOf(arm, 3, active).translation() - elbow).mag();
  const double off = (frameOf(arm, 6, active).translation() - hand.translation()).mag();
  std::printf("the elbow went by %.3f m, the hand by %.1e m\n", moved, off);
  check(moved > 0.1 && off < 1e-4, "the hand rests");
  return 0;
}
