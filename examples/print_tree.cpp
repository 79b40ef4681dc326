// Prints the mechanisms of a file as trees: each link with its joint, its mass and its limits.
//
//     print_tree examples/models/puma560.xml

#include <iostream>
#include <string>

#include "ktManipulator/ktManipulator.h"

namespace {

std::string jointOf(const KtManipulatorLink& link) {
  const KtLinkKinematics* joint = link.linkKinematicsContainer().topElement();
  if (joint == nullptr) return "no joint";
  if (const auto* dh = dynamic_cast<const KtDenavitHartenberg*>(joint)) {
    return dh->jointType() == KtDenavitHartenberg::kRotational ? "rotational" : "prismatic";
  }
  return dynamic_cast<const KtScrewTypeLink*>(joint) != nullptr ? "screw" : "four-bar";
}

void print(const KtManipulatorLink& link, int depth) {
  std::cout << std::string(2 * static_cast<std::size_t>(depth), ' ') << link.label() << ": "
            << link.massProperties().mass() << " kg";
  if (depth > 0) {
    const KtJointActuator& actuator = link.jointActuator();
    std::cout << ", joint " << link.linkIndex() << " " << jointOf(link) << " from "
              << actuator.lowerLimit() << " to " << actuator.upperLimit();
  }
  std::cout << "\n";
  for (const KtManipulatorLink& child : link.childLinks().vectorContainer()) {
    print(child, depth + 1);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: print_tree FILE.xml\n";
    return 2;
  }
  KtStatedSystem scene;
  if (!KtXmlReader::readFile(argv[1], scene)) return 1;  // messages say why
  for (const KtIndividualManipulator& manipulator :
       scene.system().manipulators().vectorContainer()) {
    print(manipulator, 0);
  }
  return 0;
}
