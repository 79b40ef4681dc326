#include "Support.h"

#include "ktManipulator/foundation/xml/KtXmlReader.h"

bool loadSystem(const std::string& file, KtStatedSystem& system) {
  return KtXmlReader::readFile(file, system);
}

KtManipulatorActiveState activeStateOf(const KtStatedSystem& system, KtU32 manipulator) {
  KtManipulatorActiveState active;
  active.setPositionState(system.state().positionStates()[manipulator]);
  active.setVelocityState(system.state().velocityStates()[manipulator]);
  return active;
}

const KtManipulatorLink& linkAt(const KtIndividualManipulator& manipulator, KtU32 place) {
  if (place == 0) return manipulator;
  return *manipulator.linkByIndex(place - 1);
}

double totalMass(const KtIndividualManipulator& manipulator) {
  double mass = 0.0;
  for (KtU32 i = 0; i <= manipulator.jointDof(); ++i) {
    mass += linkAt(manipulator, i).massProperties(nullptr).massValue();
  }
  return mass;
}

Json jsonOf(const KtVector& v) {
  return Json::array({v.x, v.y, v.z});
}
