// Reads a PUMA 560, computes the poses of its links and the torques that hold it, simulates its
// fall, and writes the scene with the final state.

#include <cstdio>
#include <string>

#include "ktManipulator/ktManipulator.h"

int main(int argc, char** argv) {
  const std::string model = argc > 1 ? argv[1] : "examples/models/puma560.xml";
  const std::string result = argc > 2 ? argv[2] : "fallen.xml";
  KtStatedSystem scene;
  if (!KtXmlReader::readFile(model, scene) || scene.system().manipulators().size() == 0) return 1;
  const KtIndividualManipulator& arm = scene.system().manipulators()[0];
  std::printf("%s: %s, %u joints\n", model.c_str(), arm.label().c_str(), arm.jointDof());

  KtManipulatorActiveState active;
  active.setPositionState(scene.state().positionStates()[0]);
  active.setVelocityState(scene.state().velocityStates()[0]);
  KtGravitationalTorqueTool weights;
  weights.setManipulator(&arm);
  weights.setGravityVector(scene.environment().upGravityVector());
  const KtReArray& torques = weights.gravitationalTorques(active, nullptr);
  for (KtU32 i = 0; i < arm.jointDof(); ++i) {
    const KtManipulatorLink& link = *arm.linkByIndex(i);
    const KtVector& place = link.dhFrameInSystem(active.activePositionState()).translation();
    std::printf("  %-10s at (%6.3f, %6.3f, %6.3f) m, held by %8.3f\n", link.label().c_str(),
                place.x, place.y, place.z, torques[i][0]);
  }

  const double before = arm.getCenterOfMassInSystem(active).z;
  KtSimulation simulation(scene);
  for (int i = 1; i <= 2000; ++i) simulation.stepTo(i * 1e-4);
  const double after = arm.getCenterOfMassInSystem(simulation.active()).z;
  std::printf("let go, its centre of mass sinks by %.4f m in %.1f s, to a motion of %.3f J\n",
              before - after, simulation.state().time(), simulation.kineticEnergy());
  if (!(after < before)) return 1;

  scene.setState(simulation.state());
  if (!KtXmlWriter::writeFile(result, scene)) return 1;
  std::printf("wrote %s\n", result.c_str());
  return 0;
}
