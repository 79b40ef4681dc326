#include <iostream>
#include "ktManipulator/ktManipulator.h"

int main() {
  KtStatedSystem scene;
  if (!KtXmlReader::readFile("examples/models/puma560.xml", scene)) return 1;  // messages say why
  KtSimulation simulation(scene);
  for (int i = 1; i <= 500; ++i) simulation.stepTo(i * 1e-3);  // the arm falls for 0.5 s
  const KtManipulatorLink& hand = *scene.system().manipulators()[0].linkByIndex(5);
  const KtVector place =
      hand.dhFrameInSystem(simulation.active().activePositionState()).translation();
  std::cout << "hand at " << place.x << ", " << place.y << ", " << place.z << " m\n";
}
