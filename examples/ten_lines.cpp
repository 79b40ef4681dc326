#include <iostream>
#include "ktManipulator/ktManipulator.h"

int main() {
  KtStatedSystem scene;
  if (!KtXmlReader::readFile("examples/models/puma560.xml", scene)) return 1;  // messages say why
  const KtIndividualManipulator& arm = scene.system().manipulators()[0];
  KtManipulatorExternalForce none;  // and no torques: the arm falls
  none.resize(arm.jointDof());
  KtArbiAccelerationTool tool;
  KtAccelerationState acceleration;
  KtSystemActiveState active;  // what is computed in a state is kept there
  active.setNonredundantState(scene.state());
  for (int k = 1; k <= 500; ++k) {
    const KtManipulatorSystemState& now = scene.state();
    tool.acceleration(scene, arm, now.positionStates()[0], now.velocityStates()[0], {}, none,
                      acceleration, nullptr, true);
    active.manipulatorActiveStateVector()[0].setAccelerationState(acceleration);
    scene.propagateSelfTo(k * 1e-3, &active);
  }
  std::cout << "after " << scene.state().time() << " s the shoulder stands at "
            << scene.state().positionStates()[0].jointPositions()[1] << " rad\n";
}
