#include "support/Testing.h"

namespace {

using Transformation = KtCoordinateSystemTransformation;

TEST(Attachment, OneParentForEachDependent) {
  KtManipulatorAttachmentMap map;
  const Transformation first = randomTransformation();
  const Transformation second = randomTransformation();
  EXPECT_FALSE(map.attachManipulator(2, 2, "tip", first));
  EXPECT_EQ(map.size(), 0U);
  EXPECT_TRUE(map.attachManipulator(9, 2, "tip", first));
  EXPECT_FALSE(map.attachManipulator(9, 3, "base", second)) << "no replacement";
  EXPECT_TRUE(map.attachManipulator(4, 2, "ti", first));
  EXPECT_TRUE(map.attachManipulator(1, 2, "tip", second));
  EXPECT_TRUE(map.attachManipulator(0, 9, "tip", second));

  KtU32 parent = 0;
  KtString label;
  Transformation offset;
  EXPECT_TRUE(map.getDependentManipulatorInfo(9, parent, label, offset));
  EXPECT_FALSE(map.getDependentManipulatorInfo(2, parent, label, offset)) << "changes nothing";
  EXPECT_EQ(std::tuple(parent, label, offset), std::tuple(2U, "tip", first));

  EXPECT_EQ(map.dependentManipulators(2), (std::vector<KtU32>{1, 4, 9}));
  std::vector<KtU32> dependents;
  KtXmlVectorType<Transformation> offsets;
  EXPECT_TRUE(map.getDependentManipulatorsAndOffsets(2, "tip", dependents, offsets));
  EXPECT_EQ(dependents, (std::vector<KtU32>{1, 9}));
  EXPECT_EQ(offsets.vectorContainer(), (std::vector<Transformation>{second, first}));
  EXPECT_FALSE(map.getDependentManipulatorsAndOffsets(2, "tipp", dependents, offsets));
  EXPECT_TRUE(dependents.empty() && offsets.size() == 0U);

  EXPECT_TRUE(map.removeManipulatorAttachment(9));
  EXPECT_FALSE(map.removeManipulatorAttachment(9));
  EXPECT_TRUE(map.attachManipulator(9, 3, "base", second));
}

}  // namespace
