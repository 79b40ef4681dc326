#include "support/Testing.h"
#include "support/Trees.h"

namespace {

// One that is called a reference after it was mapped has no table of links that have moved.
TEST(Manipulators, ReferencesKeepNoLinksThatHaveMoved) {
  Arm arm = trees::randomManipulator(1);
  KtManipulatorReferenceDescription description;
  description.setIsManipulatorReferenced(true);
  arm.setManipulatorReferenceDescription(description);
  for (int i = 0; i < 4; ++i) {
    arm.addChild(Link());
    EXPECT_TRUE(arm.jointDof() == 0 || arm.linkByIndex(0) == &arm.childLinks()[0]);
  }
  // What it stood for is forgotten with the file that said so.
  KtXmlVectorType<Arm> others(1, trees::randomManipulator(3));
  others[0].changeLinkLabel("base", "");
  EXPECT_FALSE(others[0].configureManipulatorReference(others));
  ASSERT_TRUE(arm.configureManipulatorReference(others));
  EXPECT_EQ(arm.linkByIndex(2), others[0].linkByIndex(2));
  ASSERT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(Arm()), arm));
  EXPECT_EQ(arm.jointDof(), 0U);
}

// The answers are those of the map's lookup, whatever a file holds.
TEST(Manipulators, SelfCollisionIsWhatTheMapSays) {
  Arm arm = trees::randomManipulator(6);
  arm.buildSelfCollisionLinkMap();
  const KtU32 n = arm.jointDof();
  const auto labelOf = [&](KtU32 i) { return i < n ? arm.linkByIndex(i)->label() : arm.label(); };
  for (int round = 0; round < 20; ++round) {
    KtManipulatorSelfCollisionLinkMap map = arm.selfCollisionLinkMap();
    if (round == 1) map.setAllAsCollisionCandidates();
    for (int edit = 0; round > 1 && edit < 5; ++edit) {
      const std::string one = labelOf(static_cast<KtU32>(uniform(0.0, n + 0.999)));
      const std::string other = labelOf(static_cast<KtU32>(uniform(0.0, n + 0.999)));
      // The second may stand where no lookup finds it.
      if (edit % 2 == 0) map.setLinkCollisionCanditateByIdentifier(one, other, uniform() < 0.0);
      if (edit % 2 == 1) map.mapContainer()[one].add(other, true);
    }
    arm.setSelfCollisionLinkMap(map);
    Arm read;
    ASSERT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(arm), read));
    for (KtU32 i = 0; i <= n; ++i) {
      for (KtU32 j = 0; j <= n; ++j) {
        bool flag = false;
        map.linkCollisionCanditateByIdentifier(labelOf(i), labelOf(j), flag);
        EXPECT_TRUE(round > 1 || flag == (round == 1));
        EXPECT_EQ(read.canCollide(i < n ? i : ktBaseIndex, j < n ? j : ktBaseIndex), flag && i != j)
            << i << ", " << j;
      }
    }
  }
  KtU32 low = 3, base = ktBaseIndex;
  EXPECT_TRUE(arm.makeIndicesCompatible(low, base));
  EXPECT_EQ(low, ktBaseIndex);
  EXPECT_EQ(base, 3U);
}

TEST(Manipulators, BoundingVolumesGoAroundOwnShapes) {
  Arm arm;
  for (const char* label : {"a", "b", "c"}) {
    Link link = trees::randomLink(label);
    link.setShape(KtSphereShape());
    arm.addLinkToEndOfChain(link);
  }
  arm.replaceLinkShape("b", KtBoxShape());
  arm.findAndConvertToReferences();
  EXPECT_EQ(arm.linkByIndex(2)->memberShapeContainer().topElement(), nullptr);
  arm.addBoundingBoxToLinks();
  arm.addBoundingBoxToLinks();
  arm.addCapsuleBoundingVolumeToLinks();
  // The exact box is a box already.
  EXPECT_EQ(arm.linkByIndex(0)->numberOfShapes(), 3U);
  EXPECT_EQ(arm.linkByIndex(1)->numberOfShapes(), 2U);
  EXPECT_EQ(arm.linkByIndex(2)->numShapes(), 3U);
  KtDataMap data;
  data.add("grip", 2.0);
  Arm simple = arm;
  simple.simplifyLinkShapesWithCapsules(data);
  EXPECT_EQ(simple.linkByIndex(1)->shapeByIndex(0)->shapeType(), KtShape::kCapsule);
  const KtDataMap* found = nullptr;
  EXPECT_TRUE(simple.linkByIndex(1)->lookup("Bounding", found));
  EXPECT_EQ(*found, data);
  arm.deleteAllBoundingVolumes();
  simple = arm;
  simple.simplifyLinkShapesWithConvexHulls(data);
  EXPECT_EQ(simple.linkByIndex(1)->shapeByIndex(0)->shapeType(), KtShape::kConvexHull);
  simple = arm;
  simple.simplifyLinkShapesWithBoundingVolumes(data, false);
  EXPECT_EQ(simple.linkByIndex(1)->numShapes(), 0U);
  // One volume of the caller's choice, with the contact properties of what it bounds.
  const std::string spring = KtFoundCommon::KtSurfaceTensionSpringConstantToken.text();
  data.add(spring, 500.0);
  const KtSurfaceMap surfaces(arm.linkByIndex(1)->shapeByIndex(0)->surfaceLabel(), data);
  EXPECT_TRUE(arm.setSurfacesByIDs(1, 0, surfaces));
  EXPECT_FALSE(arm.setSurfacesByIDs(ktBaseIndex, 0, surfaces));
  EXPECT_TRUE(arm.setBoundingVolume("b", KtSphereShape()));
  const KtShape* volume = arm.linkByIndex(1)->shapeByIndex(0)->outerBoundingVolume();
  ASSERT_NE(volume, nullptr);
  EXPECT_EQ(volume->shapeType(), KtShape::kSphere);
  double value = 0.0;
  EXPECT_TRUE(volume->defaultSurface()->lookup(spring, value));
  EXPECT_EQ(value, 500.0);
  EXPECT_EQ(arm.linkByIndex(1)->numberOfShapes(), 2U);
}

}  // namespace
