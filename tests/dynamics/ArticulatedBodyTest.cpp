#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "ktManipulator/ktManipulator.h"
#include "support/Allocations.h"
#include "support/KtLogCapture.h"
#include "support/Random.h"

namespace {

using Inertia = KtArticulatedBodyInertia;
using Dynamics = KtArticulatedBodyDynamics;
using T = KtCoordinateSystemTransformation;
using namespace sampling;
using ArticulatedBody = Seeded;

KtRigidBodyMassProperties randomBody() {
  return {uniform(0.5, 2.0),
          randomVector() * 0.1,
          {uniform(0.5, 0.6), uniform(0.5, 0.6), uniform(0.5, 0.6), 0.02, -0.03, 0.04}};
}

// A positive definite inertia that is no rigid body's.
Inertia randomInertia() {
  KtReArray root(6, 6);
  for (KtU32 i = 0; i < 6; ++i) {
    for (KtU32 j = 0; j < 6; ++j) root[i][j] = uniform() + (i == j ? 2.0 : 0.0);
  }
  KtReArray transposed;
  root.transpose(transposed);
  Inertia inertia;
  inertia.setFromArray(root * transposed);
  return inertia;
}

KtReArray arrayOf(const Inertia& inertia) {
  KtReArray array;
  inertia.getArray(array);
  return array;
}

std::vector<double> listOf(const KtGeneralMotion& m) {
  return {m[0], m[1], m[2], m[3], m[4], m[5]};
}

// The matrix that carries a motion given in frame A to frame B, by its columns.
KtReArray carrier(const T& t) {
  KtReArray x(6, 6);
  for (KtU32 j = 0; j < 6; ++j) {
    KtGeneralMotion unit;
    unit.setScalarValue(j, 1.0);
    unit.transformBy(t.inverse());
    for (KtU32 i = 0; i < 6; ++i) x[i][j] = unit[i];
  }
  return x;
}

void expectNear(const KtReArray& actual, const KtReArray& expected, double tolerance) {
  ASSERT_EQ(actual.rows(), expected.rows());
  ASSERT_EQ(actual.columns(), expected.columns());
  for (KtU32 i = 0; i < expected.rows(); ++i) {
    for (KtU32 j = 0; j < expected.columns(); ++j) {
      EXPECT_NEAR(actual[i][j], expected[i][j], tolerance) << i << ", " << j;
    }
  }
}

TEST_F(ArticulatedBody, ProductsAreThoseOfTheMatrix) {
  for (int trial = 0; trial < 10; ++trial) {
    Inertia inertia = randomInertia();
    if (trial % 2 == 0) inertia.setFromRigidBody(randomBody());
    KtGeneralMotion a = randomMotion();
    if (trial > 4) a = {{0.0, a[1], 0.0}, {0.0, 0.0, a[5]}};
    const std::vector<double> expected = arrayOf(inertia) * listOf(a);
    for (const KtGeneralForce& f : {inertia.calculateForce(a), inertia.calculateForceSparse(a)}) {
      for (unsigned i = 0; i < 6; ++i) EXPECT_NEAR(f[i], expected[i], 1e-14);
    }
    EXPECT_TRUE(inertia.calculateAcceleration(inertia.calculateForce(a)).approxEq(a, 1e-12));
  }
  const KtRigidBodyMassProperties body = randomBody();
  Inertia rigid;
  rigid.setFromRigidBody(body);
  const KtGeneralMotion a = randomMotion();
  EXPECT_TRUE(rigid.calculateForce(a).approxEq(body.calculateForce(a), 1e-14));
  // Nothing to accelerate: large, but finite.
  const KtGeneralMotion wild = Inertia().calculateAcceleration({{1.0, 0.0, 0.0}, {}});
  EXPECT_TRUE(std::isfinite(wild.linear().largestComponent()));
}

TEST_F(ArticulatedBody, MovesAsTheMatrixDoes) {
  const T random = randomTransformation();
  for (const T& t : {random, T(random.translation()), T(random.orientation()), T()}) {
    for (const bool rigid : {false, true}) {
      Inertia inertia = randomInertia();
      if (rigid) inertia.setFromRigidBody(randomBody());
      // A force in B is carried to A by the transpose of what carries a motion from A to B.
      const KtReArray x = carrier(t);
      KtReArray xTransposed;
      x.transpose(xTransposed);
      const KtReArray expected = xTransposed * arrayOf(inertia) * x;
      Inertia moved = inertia;
      moved.transformBy(t);
      Inertia moved2 = inertia;
      moved2.transformBy2(t);
      expectNear(arrayOf(moved), expected, 1e-12);
      expectNear(arrayOf(moved2), expected, 1e-12);
      EXPECT_EQ(moved.isRigid(), rigid);
      moved.transformBy(t.inverse());
      EXPECT_TRUE(moved.approxEq(inertia, 1e-12));
    }
  }
}

TEST_F(ArticulatedBody, JoinTakesOffWhatTheJointYields) {
  for (const double d : {0.0, 0.8}) {
    Inertia child = randomInertia();
    const KtGeneralMotion s = d > 0.0 ? randomMotion() : KtGeneralMotion({}, {0.0, 0.6, 0.8});
    const std::vector<double> h = arrayOf(child) * listOf(s);
    double sIs = 0.0;
    for (unsigned i = 0; i < 6; ++i) sIs += s[i] * h[i];
    KtReArray expected = arrayOf(child);
    for (KtU32 i = 0; i < 6; ++i) {
      for (KtU32 j = 0; j < 6; ++j) expected[i][j] -= h[i] * h[j] / (sIs + d);
    }
    Inertia shown;
    KtGeneralForce force;
    double denominator = 0.0;
    shown.setToTransformedValue(child, s, d, force, denominator);
    expectNear(arrayOf(shown), expected, 1e-12);
    EXPECT_NEAR(denominator, sIs + d, 1e-12);
    for (unsigned i = 0; i < 6; ++i) EXPECT_NEAR(force[i], h[i], 1e-13);
    // What the joint's own inertia holds is all that remains along the joint.
    const KtGeneralForce f = shown.calculateForce(s);
    EXPECT_NEAR(s.linear().dot(f.force()) + s.angular().dot(f.moment()), sIs * d / denominator,
                1e-12);
    Inertia parent;
    parent.setFromRigidBody(randomBody());
    Inertia sum = parent + shown;
    parent.joinWith(child, s, d);
    EXPECT_TRUE(parent.approxEq(sum, 1e-14));
    EXPECT_FALSE(parent.isRigid());
    // The object itself may be the child.
    child.setToTransformedValue(child, s, d, force, denominator);
    EXPECT_EQ(child, shown);
  }
}

TEST_F(ArticulatedBody, NothingToJoinLeavesInertiaAndBias) {
  const Dynamics child(Inertia(), {randomVector(), randomVector()});
  Dynamics shown;
  shown.setToTransformedValue(child, randomMotion(), 0.0, 3.0);
  EXPECT_EQ(shown.bias(), child.bias());
  EXPECT_TRUE(shown.inertia().approxEq(child.inertia(), 0.0));
}

TEST_F(ArticulatedBody, SumsAreRigidIfBothAre) {
  Inertia a;
  Inertia b;
  a.setFromRigidBody(randomBody());
  b.setFromRigidBody(randomBody());
  EXPECT_TRUE((a + b).isRigid());
  EXPECT_FALSE((a - randomInertia()).isRigid());
  EXPECT_TRUE((a + b - b).approxEq(a, 1e-14));
  Dynamics whole(a, {randomVector(), randomVector()});
  const KtGeneralMotion motion = randomMotion();
  EXPECT_TRUE(whole.calculateAcceleration(whole.calculateForce(motion)).approxEq(motion, 1e-12));
  const T t = randomTransformation();
  const KtGeneralForce before = whole.calculateForce(motion);
  whole.transformBy(t);
  EXPECT_TRUE(whole.calculateForce(t * motion).approxEq(t * before, 1e-12));
  Dynamics pushed = whole;
  pushed.setBias(whole.bias() + KtGeneralForce({}, {0.0, 0.25, 0.0}));
  EXPECT_FALSE(whole.approxEq(pushed, 0.2));
  EXPECT_TRUE(whole.approxEq(pushed, 0.3));
  // One body is another's twin but for the place of its mass.
  const KtSecondMoment j(1.0, 1.0, 1.0, 0.0, 0.0, 0.0);
  b.setFromRigidBody({1.0, {0.0, 0.25, 0.0}, j});
  Inertia centred;
  centred.setFromRigidBody({1.0, {}, j});
  EXPECT_FALSE(b.approxEq(centred, 0.2));
  EXPECT_TRUE(b.approxEq(centred, 0.3));
  Inertia back;
  back.setFromArray(arrayOf(a));
  EXPECT_TRUE(back.approxEq(a, 0.0));
  KtLogCapture log;
  back.setFromArray(KtReArray(5, 6));
  EXPECT_TRUE(back.approxEq(a, 0.0));
  EXPECT_NE(log.text(), "");
}

TEST_F(ArticulatedBody, RecursionAllocatesNothing) {
  Dynamics child(randomBody(), {randomVector(), randomVector()});
  Dynamics parent = child;
  KtDenavitHartenberg link;
  link.setDhAlpha(0.4);
  const Allocations allocations;
  for (int i = 0; i < 5; ++i) {
    link.addChildArbdToParent(parent, child, 0.1 * i, 0.2, 0.3);
    link.KtLinkKinematics::addChildArbdToParent(parent, child, 0.1 * i, 0.2, 0.3);
    child = parent;
    EXPECT_NE(parent.calculateAcceleration({{1.0, 0.0, 0.0}, {}}), KtGeneralMotion());
  }
  EXPECT_EQ(allocations.count(), 0U);
}

// A file that names the bias as such is read as well.
TEST_F(ArticulatedBody, BiasIsReadUnderEitherName) {
  const Dynamics dynamics(randomBody(), {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}});
  std::ostringstream stream;
  ASSERT_TRUE(KtXmlWriter("text", stream).writeDocument(dynamics));
  std::string text = stream.str();
  const std::string written = "articulatedBodyInertia";
  int replaced = 0;
  for (std::size_t at = 0; (at = text.find(written, at)) != std::string::npos; ++replaced) {
    text.replace(at, written.size(), "bias");
  }
  EXPECT_EQ(replaced, 2) << text;  // the opening and the closing tag
  std::istringstream back(text);
  Dynamics read;
  EXPECT_TRUE(KtXmlReader("text", back).readDocument(read));
  EXPECT_EQ(read, dynamics);
}

}  // namespace
