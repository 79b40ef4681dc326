#include <boost/algorithm/string/replace.hpp>

#include "support/Testing.h"

namespace {

using Inertia = KtArticulatedBodyInertia;
using Dynamics = KtArticulatedBodyDynamics;

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

// Moved with its motion, a body takes the force moved too. Joining, moving and products by the
// shortest way are for the tests of mechanisms, which need them all.
TEST(ArticulatedBody, MovesWithItsMotionAndForce) {
  const T random = randomTransformation();
  for (const T& t : {random, T(random.translation()), T(random.orientation()), T()}) {
    for (const bool rigid : {false, true}) {
      Inertia inertia = randomInertia();
      if (rigid) inertia.setFromRigidBody(randomBody());
      Inertia moved = inertia, moved2 = inertia;
      moved.transformBy(t);
      moved2.transformBy2(t);
      EXPECT_EQ(moved.isRigid(), rigid);
      const KtGeneralMotion a = randomMotion();
      const KtGeneralForce force = inertia.calculateForce(a), expected = t * force;
      EXPECT_TRUE(moved.calculateForce(t * a).approxEq(expected, 1e-12));
      EXPECT_TRUE(moved2.calculateForce(t * a).approxEq(expected, 1e-12));
      EXPECT_TRUE(inertia.calculateForceSparse(a).approxEq(force, 1e-14));
      EXPECT_TRUE(inertia.calculateAcceleration(force).approxEq(a, 1e-12));
      Dynamics whole(inertia, {randomVector(), randomVector()});
      const KtGeneralForce loaded = whole.calculateForce(a);
      EXPECT_TRUE(whole.calculateAcceleration(loaded).approxEq(a, 1e-12));
      whole.transformBy(t);
      EXPECT_TRUE(whole.calculateForce(t * a).approxEq(t * loaded, 1e-12));
    }
  }
  // Nothing to accelerate: large, but finite.
  const KtGeneralMotion wild = Inertia().calculateAcceleration({{1.0, 0.0, 0.0}, {}});
  EXPECT_TRUE(std::isfinite(wild.linear().largestComponent()));
}

TEST(ArticulatedBody, SumsAreRigidIfBothAre) {
  const Dynamics nothing(Inertia(), {randomVector(), randomVector()});
  Dynamics shown;
  shown.setToTransformedValue(nothing, randomMotion(), 0.0, 3.0);
  EXPECT_TRUE(shown.approxEq(nothing, 0.0));
  Inertia a, b;
  a.setFromRigidBody(randomBody());
  b.setFromRigidBody(randomBody());
  EXPECT_TRUE((a + b).isRigid());
  EXPECT_FALSE((a + randomInertia()).isRigid() || (a - randomInertia()).isRigid());
  EXPECT_TRUE((a + b - b).approxEq(a, 1e-14));
  KtReArray array;
  a.getArray(array);
  b.setFromArray(array);
  const KtLogCapture log;
  b.setFromArray(KtReArray(5, 6));
  EXPECT_TRUE(b.approxEq(a, 0.0) && !log.text().empty());
}

// A file that names the bias as such is read as well.
TEST(ArticulatedBody, BiasIsReadUnderEitherName) {
  const Dynamics dynamics(randomBody(), {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}});
  const std::string text = KtXmlWriter::writeString(dynamics);
  Dynamics read;
  EXPECT_TRUE(KtXmlReader::readString(
      boost::replace_all_copy(text, "articulatedBodyInertia", "bias"), read));
  EXPECT_EQ(read, dynamics);
  EXPECT_NE(text.find("</articulatedBodyInertia>"), std::string::npos);
}

}  // namespace
