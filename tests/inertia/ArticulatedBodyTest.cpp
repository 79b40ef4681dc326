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

TEST(ArticulatedBody, SumsAreRigidIfBothAre) {
  const Dynamics nothing(Inertia(), {randomVector(), randomVector()});
  Dynamics shown;
  shown.setToTransformedValue(nothing, randomMotion(), 0.0, 3.0);
  EXPECT_TRUE(shown.approxEq(nothing, 0.0));
  Inertia a, b;
  a.setFromRigidBody(randomBody());
  b.setFromRigidBody(randomBody());
  EXPECT_TRUE((a + b).isRigid());
  KtReArray array(6, 6);
  for (KtU32 i = 0; i < 6; ++i) array[i][i] = 1.0;
  Inertia other;
  other.setFromArray(array);
  EXPECT_FALSE((a + other).isRigid() || (a - other).isRigid());
  EXPECT_TRUE((a + b - b).approxEq(a, 1e-14));
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
