// Defines a stopping criterion in the program. Files can hold it like the criteria of the library;
// it stops a falling arm before its hand is too low.

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

// Stops the simulation when the frame of a manipulator's last link is below a height.
class HandTooLow : public KtXmlPersistent<HandTooLow, KtBaseStoppingCriterion> {
 public:
  void registerComponents() override {
    KtBaseStoppingCriterion::registerComponents();
    registerComponent(KtToken("height"), &height_);
  }
  const KtString& descriptiveText() const override { return text_; }
  bool stop(KtSystemActiveState& activeState, const KtStatedSystem& scene, const KtReal&, KtU32 m,
            KtPropagationResultData& result) const override {
    auto& position = activeState.manipulatorActiveStateVector()[m].activePositionState();
    const KtManipulatorLink* hand = scene.system().manipulators()[m].links().back();
    if (hand->dhFrameInSystem(position).translation().z >= height_) return false;
    result.registerGenericStoppingCriterion(text_);
    return true;
  }
  void setHeight(double height) { height_ = height; }
  double height() const { return height_; }

  bool operator==(const HandTooLow& other) const { return height_ == other.height_; }
  static const KtToken& classToken() {
    static const KtToken token("handTooLow");
    return token;
  }

 private:
  KtXmlBasicType<double> height_;
  KtString text_ = "the hand is too low";
};

// A program registers its own classes in a table so that the reader can create them.
bool readWithOwnClasses(const std::string& text, KtStatedSystem& scene) {
  KtXmlFactory factory;
  factory.registerCreator(HandTooLow::classToken(), &HandTooLow::creator);
  std::istringstream stream(text);
  KtXmlReader reader("text", stream);
  reader.setFactory(&factory);
  return reader.readDocument(scene);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "examples/models";
  KtStatedSystem scene;
  if (!KtXmlReader::readFile(folder + "/puma560.xml", scene)) return 1;  // messages say why

  KtIndividualManipulator arm = scene.system().manipulators()[0];
  HandTooLow criterion;
  criterion.setHeight(0.25);
  KtStoppingCriterionVector criteria;
  criteria.pushBack(criterion);
  arm.setStoppingCriteria(criteria);
  scene.exchangeManipulator(0, arm, scene.state().positionStates()[0],
                            scene.state().velocityStates()[0]);

  KtStatedSystem back;
  check(readWithOwnClasses(KtXmlWriter::writeString(scene), back) && back == scene,
        "an own class is written and read like the library's");

  // With a check for collisions criteria see the new positions.
  KtSimulation simulation(back);
  simulation.setCollisions(KtSimulation::Collisions::kTakeBackAll);
  for (int k = 1; k <= 1000 && simulation.lastStep().stopped.empty(); ++k) {
    simulation.stepTo(k * 1e-3);
  }
  const KtManipulatorLink& hand = *back.system().manipulators()[0].links().back();
  const double height =
      hand.dhFrameInSystem(simulation.active().activePositionState()).translation().z;
  check(simulation.stops().size() == 1, "the criterion stopped the arm");
  std::printf("stopped at %.3f s with the hand at %.4f m: %s\n", simulation.state().time(), height,
              simulation.stops()[0].description.c_str());
  check(height >= 0.25 && height < 0.26, "in the last position before it was satisfied");
}
