#include "support/Testing.h"

namespace {

using Joints = std::vector<double>;

constexpr double kPi = 3.14159265358979323846;
constexpr double kGravity = 9.81;

std::string pathOf(const std::string& name) {
  return std::string(KT_SOURCE_FOLDER "/examples/models/") + name;
}

Arm armOf(const std::string& name) {
  KtStatedSystem scene;
  EXPECT_TRUE(KtXmlReader::readFile(pathOf(name), scene));
  return scene.system().manipulators()[0];
}

const KtManipulatorLink& linkOf(const Arm& arm, std::size_t i) {
  return *arm.linkByIndex(static_cast<KtU32>(i));
}

// The last link's frame in the base, of an arm without branches.
T tipOf(const Arm& arm, const Joints& q) {
  T frame;
  for (std::size_t i = 0; i < q.size(); ++i) {
    frame *= linkOf(arm, i).linkKinematicsContainer().calculateTransform(q[i]);
  }
  return frame;
}

// A published row: mass, centre of mass, inertia about it without products.
struct Body {
  double mass;
  KtVector center;
  std::array<double, 3> inertia;
};

void expectBodies(const Arm& arm, const std::vector<Body>& bodies) {
  ASSERT_EQ(arm.jointDof(), bodies.size());
  for (std::size_t i = 0; i < bodies.size(); ++i) {
    SCOPED_TRACE(linkOf(arm, i).label());
    KtRigidBodyMassProperties mass = linkOf(arm, i).massProperties();
    EXPECT_EQ(mass.mass(), bodies[i].mass);
    KtVector center;
    mass.getCenterOfMass(center);
    EXPECT_TRUE(center.approxEq(bodies[i].center, 1e-12));
    mass.transformBy(-bodies[i].center);
    const auto& inertia = bodies[i].inertia;
    EXPECT_TRUE(mass.secondMoment().approxEq({inertia[0], inertia[1], inertia[2], 0, 0, 0}, 1e-12));
  }
}

TEST(ExampleModels, AreReadAndComeBackWithoutAMessage) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(pathOf(""))) {
    if (entry.path().extension() != ".xml") continue;  // a robot to import
    SCOPED_TRACE(entry.path().filename().string());
    ++count;
    const KtLogCapture log;
    KtStatedSystem scene, back;
    EXPECT_TRUE(KtXmlReader::readFile(entry.path().string(), scene));
    EXPECT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(scene), back));
    EXPECT_EQ(log.text(), "");
    EXPECT_TRUE(back == scene);
    EXPECT_EQ(scene.environment().upGravityVector(), KtVector(0.0, 0.0, kGravity));
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
  std::ifstream file(KT_SOURCE_FOLDER "/CMakeLists.txt");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const std::string project = std::string("project(ktManipulator VERSION ") + ktVersion + " ";
  EXPECT_NE(text.find(project), std::string::npos);
}

// Armstrong, Khatib and Burdick 1986; the wrist's centre by an independent program from its tables.
TEST(ExampleModels, Puma560HasThePublishedBodiesAndDrives) {
  const Arm arm = armOf("puma560.xml");
  expectBodies(arm, {{0.0, {0, 0, 0}, {0, 0, 0.35}},
                     {17.40, {0.068, 0.006, -0.016}, {0.130, 0.524, 0.539}},
                     {4.80, {0, -0.070, 0.014}, {0.066, 0.0125, 0.086}},
                     {0.82, {0, 0, -0.019}, {1.8e-3, 1.8e-3, 1.3e-3}},
                     {0.34, {0, 0, 0}, {0.3e-3, 0.3e-3, 0.4e-3}},
                     {0.09, {0, 0, 0.032}, {0.15e-3, 0.15e-3, 0.04e-3}}});
  const double half = kPi / 4;
  const KtVector wrist(0.285029, 0.1501, 0.738429);
  EXPECT_TRUE(tipOf(arm, {0, -half, half, 0, half, 0}).translation().approxEq(wrist, 1e-6));

  // Measured at the joints, so independent of rotors and gears: what the rotors add to the inertia,
  // and its tolerance.
  const double reflected[][2] = {{1.14, 0.27}, {4.71, 0.54},   {0.827, 0.093},
                                 {0.2, 0.016}, {0.179, 0.014}, {0.193, 0.016}};
  const double torque[] = {97.6, 186.4, 89.4, 24.2, 20.1, 21.3};
  for (std::size_t i = 0; i < 6; ++i) {
    const KtJointActuator& actuator = linkOf(arm, i).jointActuator();
    EXPECT_NEAR(actuator.effectiveInertia(0.0), reflected[i][0], reflected[i][1]) << i;
    EXPECT_NEAR(actuator.maxOutputTorque(), torque[i], 1e-12) << i;
    EXPECT_NEAR(actuator.minOutputTorque(), -torque[i], 1e-12) << i;
  }
}

// Drake, multibody/benchmarks/kuka_iiwa_robot.
TEST(ExampleModels, LbrIiwa14HasThePublishedBodies) {
  const Arm arm = armOf("iiwa14.xml");
  expectBodies(arm, {{5.76, {0, -0.03, 0.12}, {0.033, 0.0333, 0.0123}},
                     {6.35, {0.0003, 0.059, 0.042}, {0.0305, 0.0304, 0.011}},
                     {3.5, {0, 0.03, 0.13}, {0.025, 0.0238, 0.0076}},
                     {3.5, {0, 0.067, 0.034}, {0.017, 0.0164, 0.006}},
                     {3.5, {0.0001, 0.021, 0.076}, {0.01, 0.0087, 0.00449}},
                     {1.8, {0, 0.0006, 0.0004}, {0.0049, 0.0047, 0.0036}},
                     {1.2, {0, 0, 0.02}, {0.001, 0.001, 0.001}}});
  EXPECT_TRUE(tipOf(arm, Joints(7, 0.0)).approxEq(T(KtVector(0.0, 0.0, 1.261)), 1e-12));
}

}  // namespace
