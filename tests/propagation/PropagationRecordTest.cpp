#include <gtest/gtest.h>

#include "ktManipulator/ktManipulator.h"

namespace {

TEST(PropagationRecord, DefaultsAreTheDocumentedOnes) {
  const KtPropagationDescriptor descriptor;
  EXPECT_TRUE(descriptor.checkForCollisions());
  EXPECT_EQ(descriptor.collisionDetectionTolerance(), 0.001);
  EXPECT_EQ(descriptor.collisionDetectionFidelity(), 1U);
  EXPECT_EQ(KtSystemProcessingParameters().maxGJKIterations(), 120U);
  EXPECT_EQ(KtPropagationResultData().linkIndexAtJointLimit(), 1000U);
}

TEST(PropagationRecord, DescriptionsAreJoinedAndClearedWithTheirFlag) {
  KtPropagationResultData result;
  result.setSatisfiedGeneralStoppingCriteriaDescription("note");
  result.reset();
  EXPECT_EQ(result.satisfiedGeneralStoppingCriteriaDescription(), "note");
  result.registerGenericStoppingCriterion("one");
  EXPECT_EQ(result.satisfiedGeneralStoppingCriteriaDescription(), "note; one");

  result.setHitJointLimit(true);
  result.setHitSingularity(true);
  result.setCollisionOccurred(true);
  result.setOtherCollidedLink(3);
  result.setLinkIndexAtJointLimit(5);
  KtPropagationResultData expected;
  expected.setOtherCollidedLink(3);
  expected.setLinkIndexAtJointLimit(5);
  result.reset();
  EXPECT_TRUE(result == expected) << "indices stay";

  result.registerGenericStoppingCriterion("one");
  EXPECT_EQ(result.satisfiedGeneralStoppingCriteriaDescription(), "one");
  result.registerGenericStoppingCriterion("two");
  EXPECT_EQ(result.satisfiedGeneralStoppingCriteriaDescription(), "one; two");
}

TEST(PropagationRecord, FilesHaveTheirOwnOrderAndLeaveOutTheOwnManipulator) {
  KtPropagationResultData result;
  result.setCollidedManipulator(6);
  const std::string text = KtXmlWriter::writeString(result);
  std::size_t before = 0;
  for (const char* name :
       {"hitJointLimit", "hitSingularity", "collisionOccurred", "collidedLink",
        "linkIndexAtJointLimit", "otherCollidedLink", "otherCollidedManipulator",
        "hitGeneralStoppingCriterion", "satisfiedGeneralStoppingCriteriaDescription"}) {
    const std::size_t at = text.find(std::string("<") + name);
    ASSERT_NE(at, std::string::npos) << name;
    EXPECT_LT(before, at) << name;
    before = at;
  }
  EXPECT_EQ(text.find("<collidedManipulator"), std::string::npos);
}

}  // namespace
