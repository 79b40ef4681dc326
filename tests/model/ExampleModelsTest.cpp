#include "support/Testing.h"

namespace {

TEST(ExampleModels, AreReadAndComeBackWithoutAMessage) {
  int count = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(KT_SOURCE_FOLDER "/examples/models")) {
    if (entry.path().extension() != ".xml") continue;  // a robot to import
    SCOPED_TRACE(entry.path().filename().string());
    ++count;
    const KtLogCapture log;
    KtStatedSystem scene, back;
    EXPECT_TRUE(KtXmlReader::readFile(entry.path().string(), scene));
    EXPECT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(scene), back));
    EXPECT_EQ(log.text(), "");
    EXPECT_TRUE(back == scene);
    EXPECT_EQ(scene.environment().upGravityVector(), KtVector(0.0, 0.0, 9.81));
    ASSERT_EQ(scene.system().numberOfManipulators(), 1U);
    const Arm& arm = scene.system().manipulators()[0];
    const auto& positions = scene.state().positionStates()[0].jointPositions();
    for (KtU32 i = 0; i < arm.jointDof(); ++i) {
      const KtJointActuator& actuator = arm.linkByIndex(i)->jointActuator();
      EXPECT_LE(actuator.lowerLimit(), positions[i]);
      EXPECT_GE(actuator.upperLimit(), positions[i]);
      EXPECT_LT(actuator.minOutputTorque(), actuator.maxOutputTorque());
    }
  }
  EXPECT_EQ(count, 3);
}

TEST(Version, IsThatOfTheBuild) {
  std::ostringstream project;
  project << "project(ktManipulator VERSION " << ktVersion << ' ';
  EXPECT_THAT(textOf(KT_SOURCE_FOLDER "/CMakeLists.txt"), HasSubstr(project.str()));
}

}  // namespace
