#include "support/States.h"
#include "support/Testing.h"

namespace {

using Joints = std::vector<double>;

constexpr double kPi = std::numbers::pi;
constexpr double kGravity = 9.81;

// An arm under gravity, at rest.
Active activeOf(const Arm& arm, const Joints& q, const Joints& accelerations, double gravity) {
  KtPositionState position;
  KtVelocityState velocity;
  KtAccelerationState acceleration;
  position.setJointPositions(states::joints(q));
  velocity.jointVelocities().resize(arm.jointDof());
  acceleration.setJointAccelerations(states::joints(accelerations));
  acceleration.setGeneralAcceleration({KtVector(0.0, 0.0, gravity), KtVector()});
  Active active;
  active.setPositionState(position);
  active.setVelocityState(velocity);
  active.setAccelerationState(acceleration);
  return active;
}

// B. Armstrong, O. Khatib, J. Burdick, The explicit dynamic model and inertial parameters of the
// PUMA 560 arm, IEEE Int. Conf. on Robotics and Automation 1986, 510-518: gravity vector and
// entries of the mass matrix by constants g1.., I1.., which an independent program computed from
// the paper's tables. They agree with those that the paper prints, but for I1 and I3, which don't
// follow from its tables.
TEST(PublishedArms, Puma560OfArmstrong) {
  const KtStatedSystem model = modelOf("puma560");
  const Arm& arm = model.system().manipulators()[0];
  KtGravitationalTorqueTool gravity;
  gravity.setManipulator(&arm);
  gravity.setGravityVector({0.0, 0.0, kGravity});
  KtMassMatrixTool mass;
  mass.setManipulator(&arm);
  for (int trial = 0; trial < 20; ++trial) {
    Joints q;
    for (int i = 0; i < 6; ++i) q.push_back(uniform(-kPi, kPi));
    KtManipulatorActiveState active = activeOf(arm, q, Joints(6, 0.0), kGravity);
    const double s2 = std::sin(q[1]), c2 = std::cos(q[1]);
    const double s23 = std::sin(q[1] + q[2]), c23 = std::cos(q[1] + q[2]);
    const double s4 = std::sin(q[3]), c4 = std::cos(q[3]);
    const double s5 = std::sin(q[4]), c5 = std::cos(q[4]);

    const double g4 = 0.24893, g5 = -0.02825;
    const double g3 = -8.45421 * s23 + g4 * c23 + g5 * (s23 * c5 + c23 * c4 * s5);
    const double expected[] = {0.0,
                               -37.23474 * c2 + 1.02416 * s2 + g3,
                               g3,
                               -g5 * s23 * s4 * s5,
                               g5 * (c23 * s5 + s23 * c4 * c5),
                               0.0};
    const KtReArray& torques = gravity.gravitationalTorques(active, nullptr);
    for (KtU32 i = 0; i < 6; ++i) EXPECT_NEAR(torques[i][0], expected[i], 3e-5) << i;

    const double i1 = 1.55326, i3 = 1.60186, i5 = 0.37212, i6 = 0.33375, i7 = 0.29858;
    const double i10 = -0.02135, i11 = -0.0142, i12 = -0.01096, i15 = 0.00125, i16 = 0.00124;
    const double i18 = 0.00043, i20 = -0.0002, i21 = -0.0001, i22 = -0.00006;
    const double m11 =
        i1 + i3 * c2 * c2 + i7 * s23 * s23 + i10 * s23 * c23 + i11 * s2 * c2 +
        i20 * (s5 * s5 * (s23 * s23 * (1 + c4 * c4) - 1) - 2 * s23 * c23 * c4 * s5 * c5) +
        i21 * s23 * s23 * c4 * c4 +
        2 * (i5 * c2 * s23 + i12 * c2 * c23 + i15 * (s23 * s23 * c5 + s23 * c23 * c4 * s5) +
             i16 * c2 * (s23 * c5 + c23 * c4 * s5) + i18 * s4 * s5 +
             i22 * (s23 * c23 * c5 + c23 * c23 * c4 * s5));
    const KtReArray& m = mass.massMatrix(active, nullptr);
    EXPECT_NEAR(m[0][0], m11, 1e-4);
    EXPECT_NEAR(m[2][2], i6 + 2 * i15 * c5, 5e-4) << "but for small terms";
  }
}

// Drake, multibody/benchmarks/kuka_iiwa_robot: the last joint accelerates, without and with
// gravity.
TEST(PublishedArms, LbrIiwa14OfDrake) {
  const KtStatedSystem model = modelOf("iiwa14");
  const Arm& arm = model.system().manipulators()[0];
  const double rotor = arm.linkByIndex(6)->jointActuator().effectiveInertia(0.0);
  KtTotalTorqueTool tool;
  tool.setManipulator(&arm);
  tool.setTotalTorqueType(kTotalTorqueOfLinks);
  KtManipulatorExternalForce none;
  none.resize(7);
  for (const double g : {0.0, kGravity}) {
    Active active = activeOf(arm, Joints(7, 0.0), {0, 0, 0, 0, 0, 0, 1000}, g);
    const double by2 = (0.0003 * 6.35 + 0.0001 * 3.5) * g, by4 = -0.0001 * 3.5 * g;
    const double expected[] = {1, by2, 1, by4, 1, 0, 1 + 1000 * rotor};
    const auto& torques = tool.torques(none, active, nullptr).jointTorques();
    for (KtU32 i = 0; i < 7; ++i) EXPECT_NEAR(torques[i], expected[i], 1e-11) << i;
  }
}

}  // namespace
