#include <iostream>
#include "ktManipulator/ktManipulator.h"

int main() {
  KtStatedSystem scene;
  if (!KtXmlReader::readFile("examples/models/puma560.xml", scene)) return 1;  // messages say why
  const KtManipulatorLink& hand = *scene.system().manipulators()[0].linkByIndex(5);
  KtManipulatorActiveState active;  // keeps what is computed in a state
  active.setPositionState(scene.state().positionStates()[0]);
  const KtVector place = hand.dhFrameInSystem(active.activePositionState()).translation();
  std::cout << "hand at " << place.x << ", " << place.y << ", " << place.z << " m\n";
}
