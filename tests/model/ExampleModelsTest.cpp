#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <vector>

#include "ktManipulator/ktManipulator.h"
#include "support/KtLogCapture.h"

namespace {

using T = KtCoordinateSystemTransformation;
using Arm = KtIndividualManipulator;
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

// The links' frames in the base, of an arm without branches.
std::vector<T> framesOf(const Arm& arm, const Joints& q) {
  std::vector<T> frames;
  T frame;
  for (std::size_t i = 0; i < q.size(); ++i) {
    frame *= linkOf(arm, i).linkKinematicsContainer().calculateTransform(q[i]);
    frames.push_back(frame);
  }
  return frames;
}

double potentialEnergy(const Arm& arm, const Joints& q) {
  const std::vector<T> frames = framesOf(arm, q);
  double energy = 0.0;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const KtRigidBodyMassProperties& mass = linkOf(arm, i).massProperties();
    energy += kGravity * (mass.mass() * frames[i].translation().z +
                          (frames[i].orientation() * mass.firstMoment()).z);
  }
  return energy;
}

// The torques that hold the arm: the slopes of its potential energy.
Joints holdingTorques(const Arm& arm, const Joints& q) {
  Joints torques;
  for (std::size_t i = 0; i < q.size(); ++i) {
    const double step = 1e-5;
    Joints before = q, after = q;
    before[i] -= step;
    after[i] += step;
    torques.push_back((potentialEnergy(arm, after) - potentialEnergy(arm, before)) / (2 * step));
  }
  return torques;
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

void expectNear(const Joints& actual, const Joints& expected, double tolerance) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], expected[i], tolerance) << "joint " << i + 1;
  }
}

TEST(ExampleModels, AreReadAndComeBackWithoutAMessage) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(pathOf(""))) {
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

// Armstrong, Khatib and Burdick 1986. Wrist centres and torques were computed from its tables by an
// independent program; the gravity constants in them agree with those that the paper prints.
class Puma560 : public testing::Test {
 protected:
  Arm arm_ = armOf("puma560.xml");
};

TEST_F(Puma560, StandsAndWeighsAsPublished) {
  struct Row {
    Joints q;
    KtVector wrist;
    Joints torques;
  };
  const double down = -kPi / 2, up = kPi / 2, half = kPi / 4;
  for (const Row& row : std::vector<Row>{
           {{0, 0, 0, 0, 0, 0}, {0.4115, 0.1501, 0.4331}, {0, -36.985809, 0.248929, 0, 0, 0}},
           {{0, down, up, 0, 0, 0}, {-0.0203, 0.1501, 0.8649}, {0, -0.775235, 0.248929, 0, 0, 0}},
           {{0, -half, half, 0, half, 0},
            {0.285029, 0.1501, 0.738429},
            {0, -26.824178, 0.228951, 0, -0.019978, 0}},
       }) {
    const std::vector<T> frames = framesOf(arm_, row.q);
    for (const std::size_t i : {3, 4, 5}) {
      EXPECT_TRUE(frames[i].translation().approxEq(row.wrist, 1e-6)) << i;
    }
    expectNear(holdingTorques(arm_, row.q), row.torques, 1e-6);
  }
}

TEST_F(Puma560, HasThePublishedBodiesAndDrives) {
  expectBodies(arm_, {{0.0, {0, 0, 0}, {0, 0, 0.35}},
                      {17.40, {0.068, 0.006, -0.016}, {0.130, 0.524, 0.539}},
                      {4.80, {0, -0.070, 0.014}, {0.066, 0.0125, 0.086}},
                      {0.82, {0, 0, -0.019}, {1.8e-3, 1.8e-3, 1.3e-3}},
                      {0.34, {0, 0, 0}, {0.3e-3, 0.3e-3, 0.4e-3}},
                      {0.09, {0, 0, 0.032}, {0.15e-3, 0.15e-3, 0.04e-3}}});

  // Measured at the joints, so independent of rotors and gears: what the rotors add to the inertia,
  // and its tolerance.
  const double reflected[][2] = {{1.14, 0.27}, {4.71, 0.54},   {0.827, 0.093},
                                 {0.2, 0.016}, {0.179, 0.014}, {0.193, 0.016}};
  const double torque[] = {97.6, 186.4, 89.4, 24.2, 20.1, 21.3};
  for (std::size_t i = 0; i < 6; ++i) {
    const KtJointActuator& actuator = linkOf(arm_, i).jointActuator();
    EXPECT_NEAR(actuator.effectiveInertia(0.0), reflected[i][0], reflected[i][1]) << i;
    EXPECT_NEAR(actuator.maxOutputTorque(), torque[i], 1e-12) << i;
    EXPECT_NEAR(actuator.minOutputTorque(), -torque[i], 1e-12) << i;
  }

  // The inertia about axis 3 of all that it carries, but for terms below 1e-3: I6 + 2 I15.
  KtRigidBodyMassProperties carried = linkOf(arm_, 2).massProperties();
  T frame;
  for (std::size_t i = 3; i < 6; ++i) {
    frame *= linkOf(arm_, i).linkKinematicsContainer().calculateTransform(0.0);
    KtRigidBodyMassProperties mass = linkOf(arm_, i).massProperties();
    mass.transformBy(frame);
    carried += mass;
  }
  EXPECT_NEAR(carried.secondMoment().jzz(), 0.33375 + 2.0 * 0.00125, 1e-3);
}

// Drake, multibody/benchmarks/kuka_iiwa_robot.
TEST(LbrIiwa14, StandsWeighsAndAcceleratesAsPublished) {
  const Arm arm = armOf("iiwa14.xml");
  expectBodies(arm, {{5.76, {0, -0.03, 0.12}, {0.033, 0.0333, 0.0123}},
                     {6.35, {0.0003, 0.059, 0.042}, {0.0305, 0.0304, 0.011}},
                     {3.5, {0, 0.03, 0.13}, {0.025, 0.0238, 0.0076}},
                     {3.5, {0, 0.067, 0.034}, {0.017, 0.0164, 0.006}},
                     {3.5, {0.0001, 0.021, 0.076}, {0.01, 0.0087, 0.00449}},
                     {1.8, {0, 0.0006, 0.0004}, {0.0049, 0.0047, 0.0036}},
                     {1.2, {0, 0, 0.02}, {0.001, 0.001, 0.001}}});

  const Joints zero(7, 0.0);
  const std::vector<T> frames = framesOf(arm, zero);
  EXPECT_TRUE(frames[6].approxEq(T(KtVector(0.0, 0.0, 1.261)), 1e-12));
  expectNear(holdingTorques(arm, zero),
             {0, (0.0003 * 6.35 + 0.0001 * 3.5) * kGravity, 0, -0.0001 * 3.5 * kGravity, 0, 0, 0},
             1e-8);

  // What the joints must give, without gravity, when the last one alone accelerates.
  const KtGeneralForce force = linkOf(arm, 6).massProperties().calculateForce(
      KtGeneralMotion({0.0, 0.0, 0.0}, {0.0, 0.0, 1000.0}));
  Joints torques;
  for (const T& frame : frames) {
    KtGeneralForce atJoint = force;
    atJoint.transformBy(frame.inverse() * frames[6]);
    torques.push_back(atJoint.moment().z);
  }
  expectNear(torques, {1, 0, 1, 0, 1, 0, 1}, 1e-11);
}

}  // namespace
