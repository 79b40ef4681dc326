// Dynamics of chains against those of the Orocos Kinematics and Dynamics Library, where it is
// installed; see the list of tests for how it is left out otherwise.
#include <gtest/gtest.h>

#include <kdl/chainidsolver_recursive_newton_euler.hpp>

#include "ktManipulator/ktManipulator.h"
#include "support/Trees.h"

namespace {

using Kdl = sampling::Seeded;

KDL::Vector vectorOf(const KtVector& v) {
  return {v.x, v.y, v.z};
}

KDL::Frame frameOf(const KtCoordinateSystemTransformation& t) {
  const KtOrientation& q = t.orientation();
  return {KDL::Rotation::Quaternion(q[1], q[2], q[3], q[0]), vectorOf(t.translation())};
}

KDL::RigidBodyInertia inertiaOf(KtRigidBodyMassProperties mass) {
  KtVector center;
  mass.getCenterOfMass(center);
  mass.transformBy(-center);
  const KtSecondMoment& j = mass.secondMoment();
  return KDL::RigidBodyInertia(
      mass.mass(), vectorOf(center),
      KDL::RotationalInertia(j.jxx(), j.jyy(), j.jzz(), j.jxy(), j.jxz(), j.jyz()));
}

// Both are built from the same random numbers: a frame, and a joint along its z.
TEST_F(Kdl, ChainsAgree) {
  for (const int links : {1, 3, 7, 20, 40}) {
    SCOPED_TRACE(links);
    KDL::Chain chain;
    KtIndividualManipulator source;
    for (int i = 0; i < links; ++i) {
      const bool turns = sampling::uniform() < 0.4;
      KtDenavitHartenberg joint;
      joint.setDhType(KtDenavitHartenberg::kGeneral);
      joint.setJointType(turns ? KtDenavitHartenberg::kRotational
                               : KtDenavitHartenberg::kPrismatic);
      joint.setPrecursor(sampling::randomTransformation());
      KtManipulatorLink link = trees::randomLink(std::to_string(i));
      link.setLinkKinematics(joint);
      link.updateDHMassProperties();
      source.addLinkToEndOfChain(link);
      chain.addSegment(KDL::Segment(KDL::Joint(KDL::Joint::Fixed), frameOf(joint.precursor())));
      chain.addSegment(KDL::Segment(KDL::Joint(turns ? KDL::Joint::RotZ : KDL::Joint::TransZ),
                                    KDL::Frame::Identity(), inertiaOf(link.massProperties())));
    }
    for (int i = 0; i < links; ++i) {
      source.setJointLimit(std::to_string(i), true, -2.0);
      source.setJointLimit(std::to_string(i), false, 2.0);
    }
    trees::Mechanism m(source);
    m.position.setCoordSysXForm({});
    m.external.setToZeros();
    const KtAccelerationState acceleration = m.acceleration(true);
    const auto n = static_cast<unsigned>(links);
    KDL::JntArray q(n), rates(n), accelerations(n), torques(n);
    for (KtU32 i = 0; i < n; ++i) {
      q(i) = m.position.jointPositions()[i];
      rates(i) = m.velocity.jointVelocities()[i];
      accelerations(i) = acceleration.jointAccelerations()[i];
    }
    const KDL::Vector gravity = vectorOf(-m.stated.environment().upGravityVector());

    KDL::ChainIdSolver_RNE inverse(chain, gravity);
    const KDL::Wrenches none(chain.getNrOfSegments(), KDL::Wrench::Zero());
    ASSERT_GE(inverse.CartToJnt(q, rates, accelerations, none, torques), 0);
    KtManipulatorActiveState active = m.active(acceleration);
    KtTotalTorqueTool total;
    total.setManipulator(&m.arm());
    const KtManipulatorTorque& actual = total.torques(m.external, active, nullptr);
    const double scale = 1.0 + torques.data.cwiseAbs().maxCoeff();
    for (KtU32 i = 0; i < n; ++i) {
      EXPECT_NEAR(actual.jointTorques()[i], torques(i), 1e-11 * scale) << i;
    }
  }
}

}  // namespace
