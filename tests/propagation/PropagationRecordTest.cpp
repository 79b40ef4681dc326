#include "support/Testing.h"

namespace {

TEST(PropagationRecord, DescriptionsAreJoinedAndClearedWithTheirFlag) {
  KtPropagationResultData result;
  EXPECT_EQ(result.linkIndexAtJointLimit(), 1000U);
  const KtString& text = result.satisfiedGeneralStoppingCriteriaDescription();
  result.setSatisfiedGeneralStoppingCriteriaDescription("note");
  result.reset();
  EXPECT_EQ(text, "note");
  result.registerGenericStoppingCriterion("one");
  EXPECT_EQ(text, "note; one");

  result.setHitJointLimit(true);
  result.setHitSingularity(true);
  result.setCollisionOccurred(true);
  KtPropagationResultData expected;
  for (KtPropagationResultData* each : {&result, &expected}) {
    each->setOtherCollidedLink(3);
    each->setLinkIndexAtJointLimit(5);
  }
  result.reset();
  EXPECT_TRUE(result == expected) << "indices stay";
  result.registerGenericStoppingCriterion("one");
  EXPECT_EQ(text, "one");
}

TEST(PropagationRecord, FilesHaveTheirOwnOrderAndLeaveOutTheOwnManipulator) {
  KtPropagationResultData result;
  result.setCollidedManipulator(6);
  const KtManipulatorActiveAccelerationState accelerations;
  using Names = std::vector<const char*>;
  for (const auto& [text, names] :
       {std::pair(
            KtXmlWriter::writeString(result),
            Names{"hitJointLimit", "hitSingularity", "collisionOccurred", "collidedLink",
                  "linkIndexAtJointLimit", "otherCollidedLink", "otherCollidedManipulator",
                  "hitGeneralStoppingCriterion", "satisfiedGeneralStoppingCriteriaDescription"}),
        std::pair(KtXmlWriter::writeString(accelerations),
                  Names{"accelerationState>", "accelerationStates", "baseAccelerationState"})}) {
    std::size_t before = 0;
    for (const char* name : names) {
      const std::size_t at = text.find(std::string("<") + name);
      ASSERT_NE(at, std::string::npos) << name;
      EXPECT_LT(before, at) << name;
      before = at;
    }
    EXPECT_EQ(text.find("<collidedManipulator"), std::string::npos);
  }
}

}  // namespace
