// Puts two arms into one scene, and shows what sharing, attachments, references and the repair of
// states mean. Every statement about the scene is checked.

#include <cstdio>
#include <cstdlib>
#include <string>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

KtStatedSystem read(const std::string& fileName) {
  KtStatedSystem scene;
  if (!KtXmlReader::readFile(fileName, scene)) std::exit(1);  // messages say why
  return scene;
}

double upperLimit(const KtStatedSystem& scene, KtU32 manipulator, const std::string& link) {
  return scene.system()
      .manipulators()[manipulator]
      .linkByIdentifier(link)
      ->jointActuator()
      .upperLimit();
}

// Passes the state, too. Without it, the new joints would be at 1e-9, and 1e-9 would be added to
// the positions of all other joints.
void addAtItsState(KtStatedSystem& scene, const KtStatedSystem& other) {
  scene.addManipulator(other.system().manipulators()[0], other.state().positionStates()[0],
                       other.state().velocityStates()[0]);
}

void sharing(const KtStatedSystem& scene) {
  KtStatedSystem copy(scene);  // one system, two states
  check(&copy.system() == &scene.system(), "a copy shares the system");

  copy.setIndividualCoordinateSystemTransformation(0, KtVector(1.0, 0.0, 0.0));
  check(&copy.system() == &scene.system(), "a change of the state leaves the system shared");

  copy = scene;
  copy.setJointLimit(0, "waist", false, 1.0);  // false: the upper limit
  check(&copy.system() != &scene.system(), "a change of the system makes it the copy's own");
  check(upperLimit(copy, 0, "waist") == 1.0 && upperLimit(scene, 0, "waist") > 2.0,
        "the other one keeps what it had");
}

void attachments(const KtStatedSystem& scene) {
  KtStatedSystem carried(scene, true);  // with a system of its own at once
  KtManipulatorAttachmentMap attachments;
  attachments.attachManipulator(1, 0, "flange roll", KtVector(0.0, 0.0, 0.05625));
  carried.setManipulatorAttachmentMap(attachments);
  const auto& map = carried.system().manipulatorAttachmentMap();
  check(map.dependentManipulators(0).size() == 1, "manipulator 1 is carried by manipulator 0");

  attachments.attachManipulator(0, 1, "no such link", KtCoordinateSystemTransformation());
  carried.setManipulatorAttachmentMap(attachments);
  check(map.dependentManipulators(1).empty(), "an attachment to a missing link is left out");
}

void references(const KtStatedSystem& puma) {
  KtStatedSystem cell(puma);
  KtIndividualManipulator second = puma.system().manipulators()[0];
  second.changeLinkLabel("PUMA 560", "the second PUMA");
  cell.addManipulator(second, puma.state().positionStates()[0], puma.state().velocityStates()[0]);
  cell.findAndConvertToReferences();
  const auto& arms = cell.system().manipulators();
  check(arms[1].manipulatorReferenceDescription().isManipulatorReferenced(),
        "of two equal arms, the second one uses the links of the first");
  check(cell.jointDof() == 12 && &arms[1].childLinks() == &arms[0].childLinks(),
        "it still has its joints");

  cell.setJointLimit(0, "waist", false, 1.0);
  check(upperLimit(cell, 0, "waist") == 1.0 && upperLimit(cell, 1, "waist") > 2.0,
        "a change of the first one leaves the second one as it was");
}

void repair(const KtStatedSystem& scene) {
  const std::string text = KtXmlWriter::writeString(scene);
  std::string shortened = text;
  const std::string group = "<jointPositions count=\"2\"><group>0.5 -1</group></jointPositions>";
  const std::size_t at = shortened.find(group);
  check(at != std::string::npos, "the file has the joint positions of the second arm");
  shortened.replace(at, group.size(),
                    "<jointPositions count=\"1\"><group>0.5</group></jointPositions>");

  KtStatedSystem back;
  check(KtXmlReader::readString(text, back) && back == scene, "what is written comes back");
  std::string messages;
  const auto before = Kt::Print::instance().setSink(
      [&](Kt::Print::PrintType, const std::string& message) { messages += message; });
  const bool good = KtXmlReader::readString(shortened, back);
  Kt::Print::instance().setSink(before);
  std::printf("%s", messages.c_str());
  check(good && !messages.empty(), "a state that is too short is read and repaired, with messages");
  check(back.state().positionStates()[1].jointPositions()[1] == 1e-9, "its new values are 1e-9");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER_OF_MODELS\n", argv[0]);
    return 2;
  }
  const std::string folder = argv[1];
  const KtStatedSystem puma = read(folder + "/puma560.xml");
  KtStatedSystem scene = puma;
  addAtItsState(scene, read(folder + "/two-link-arm.xml"));
  check(scene.jointDof() == 8, "the scene has six joints and two");

  sharing(scene);
  attachments(scene);
  references(puma);
  repair(scene);
}
