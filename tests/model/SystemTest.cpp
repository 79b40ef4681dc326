#include "support/States.h"
#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using System = KtManipulatorSystem;

Arm armOf(const std::string& label, int links) {
  return trees::randomManipulator(links, label);
}

System systemOf(const std::vector<Arm>& arms) {
  System system;
  for (const Arm& arm : arms) system.addManipulator(arm);
  return system;
}

std::string targetOf(const System& system, KtU32 index) {
  const auto& description = system.manipulators()[index].manipulatorReferenceDescription();
  return description.isManipulatorReferenced() ? description.referencedManipulatorLabel() : "";
}

TEST(Systems, LinksGoToTheFirstReferrerAndThroughChains) {
  const std::vector<Arm> arms{armOf("P", 2), trees::referenceTo("Q", "P"),
                              trees::referenceTo("R", "P")};
  System system = systemOf(arms);
  EXPECT_TRUE(system.aboutToModifyManipulator("P"));
  EXPECT_EQ(targetOf(system, 1), "");
  EXPECT_EQ(system.manipulators()[1].label(), "Q");
  EXPECT_EQ(system.manipulators()[1].childLinks(), arms[0].childLinks());
  EXPECT_EQ(targetOf(system, 2), "Q");
  // A chain shows the links of its last, and counts those of the next, which has none of its own.
  System chain = systemOf({arms[0], arms[1], trees::referenceTo("R", "Q")});
  const auto& all = chain.manipulators();
  EXPECT_EQ(&all[2].childLinks(), &all[0].childLinks());
  EXPECT_EQ(all[1].jointDof(), 2U);
  EXPECT_EQ(all[2].jointDof(), 0U);
  EXPECT_TRUE(chain.aboutToModifyManipulator(2));
  EXPECT_EQ(all[2].jointDof(), 2U);
  EXPECT_EQ(all[2].label(), "R");
}

// Of two with one label only the first can be referenced.
TEST(Systems, ConversionsLoseNoLinks) {
  const Arm first = armOf("A", 1);
  Arm second = armOf("A", 3), third = second;
  third.changeLinkLabel("A", "B");
  System system = systemOf({first, second, third});
  EXPECT_TRUE(system.findAndConvertToReferences());
  EXPECT_EQ(system.manipulators()[2].jointDof(), 3U);
  EXPECT_TRUE(System().findAndConvertToReferences());
}

// A reference that no longer resolves must not point to where its target was.
TEST(Systems, NothingPointsToWhatWasDeleted) {
  System system =
      systemOf({trees::referenceTo("R", "X"), armOf("P", 2), trees::referenceTo("X", "P")});
  const KtLogCapture log;
  EXPECT_TRUE(system.exchangeManipulator("P", trees::referenceTo("P", "gone")));
  EXPECT_TRUE(system.deleteManipulator(1));
  EXPECT_EQ(system.deleteManipulator("X"), 1U);
  ASSERT_EQ(system.numberOfManipulators(), 1U);
  const Arm& left = system.manipulators()[0];
  EXPECT_EQ(left.referenceManipulator(), &left);
  EXPECT_EQ(left.jointDof(), 2U) << "it got the links when their owner was deleted";
}

TEST(Systems, DeletingByIndexAndByLabelDetachDifferently) {
  const auto keysAfter = [](auto remove) {
    System system;
    KtManipulatorAttachmentMap map;
    for (const char* label : {"a", "b", "c", "d"}) system.addManipulator(armOf(label, 1));
    for (const KtU32 i : {0U, 1U, 2U}) map.attachManipulator(i, (i + 3) % 4, "link1", T());
    map.attachManipulator(3, 2, "nothing", T());
    system.setManipulatorAttachmentMap(map);
    EXPECT_EQ(system.manipulatorAttachmentMap().size(), 3U) << "the missing label must go";
    remove(system);
    std::vector<KtU32> keys;
    for (const auto& entry : system.manipulatorAttachmentMap().mapContainer()) {
      keys.push_back(entry.first.value());
    }
    return keys;
  };
  EXPECT_THAT(keysAfter([](System& s) { s.deleteManipulator(2); }), ElementsAre(2U));
  EXPECT_THAT(keysAfter([](System& s) { s.deleteManipulator("c"); }), ElementsAre(0U, 1U));
}

TEST(Systems, MergingMovesAttachmentsAlong) {
  System first = systemOf({armOf("a", 1), armOf("b", 2)});
  KtManipulatorAttachmentMap map;
  const T offset = randomTransformation();
  map.attachManipulator(1, 0, "link1", offset);
  first.setManipulatorAttachmentMap(map);
  System both = first;
  EXPECT_TRUE(both.mergeWith(first));
  EXPECT_TRUE(both.mergeWith(both));
  EXPECT_EQ(both.jointDof(), 12U);
  EXPECT_EQ(both.manipulatorAttachmentMap().size(), 4U);
  KtU32 parent = 0;
  KtString label;
  T found;
  EXPECT_TRUE(both.manipulatorAttachmentMap().getDependentManipulatorInfo(7, parent, label, found));
  EXPECT_EQ(parent, 6U);
  EXPECT_EQ(label, "link1");
  EXPECT_EQ(found, offset);
}

TEST(Systems, ExclusionsFollowTheLinks) {
  System system = systemOf({armOf("a", 2), armOf("b", 2)});
  KtSystemCollisionExclusionMap map;
  const std::string label = system.manipulators()[0].linkByIndex(1)->label();
  map.excludeLinkCollisionCandidate(0, label, 1, "b");
  system.setCollisionExclusionMap(map);
  EXPECT_FALSE(system.canCollide(0, 1, 1, ktBaseIndex));
  EXPECT_TRUE(system.canCollide(0, 0, 1, ktBaseIndex));
  EXPECT_FALSE(System(system).canCollide(1, ktBaseIndex, 0, 1));
  Arm arm = system.manipulators()[0];
  arm.changeLinkLabel(label, "renamed");
  system.exchangeManipulator(0, arm);
  EXPECT_TRUE(system.canCollide(0, 1, 1, ktBaseIndex));
}

// A row for each joint of all manipulators; an arm gives its own in one list, and says if it is
// all Craig.
TEST(Systems, CraigParametersAreCollected) {
  using Joint = KtDenavitHartenberg;
  Arm arm;
  std::vector<double> parameters;
  const std::vector<double> none, three{1.0, 2.0, 3.0};
  for (const auto type : {Joint::kCraig, Joint::kGeneralCraig, Joint::kPaul}) {
    Joint joint;
    joint.setDhType(type);
    if (type == Joint::kGeneralCraig) joint.setPrecursor(randomTransformation());
    joint.setDhA(1.0), joint.setDhAlpha(2.0), joint.setDhD(3.0);
    Link link;
    link.setLinkKinematics(joint);
    arm.addLinkToEndOfChain(link);
    EXPECT_EQ(arm.getCraigDhParameters(parameters), type != Joint::kPaul);
  }
  EXPECT_EQ(parameters, three);
  std::vector<std::vector<double>> rows(99);
  EXPECT_TRUE(systemOf({arm, arm}).getCraigDhParameters(rows));
  EXPECT_THAT(rows, ElementsAre(three, none, none, three, none, none));
}

TEST(Attachment, OneParentForEachDependent) {
  KtManipulatorAttachmentMap map;
  const T first = randomTransformation(), second = randomTransformation();
  EXPECT_FALSE(map.attachManipulator(2, 2, "tip", first));
  EXPECT_EQ(map.size(), 0U);
  EXPECT_TRUE(map.attachManipulator(9, 2, "tip", first));
  EXPECT_FALSE(map.attachManipulator(9, 3, "base", second)) << "no replacement";
  EXPECT_TRUE(map.attachManipulator(1, 2, "tip", second));
  EXPECT_TRUE(map.attachManipulator(0, 9, "tip", second));

  KtU32 parent = 0;
  KtString label;
  T offset;
  EXPECT_TRUE(map.getDependentManipulatorInfo(9, parent, label, offset));
  EXPECT_FALSE(map.getDependentManipulatorInfo(2, parent, label, offset)) << "changes nothing";
  EXPECT_EQ(std::tuple(parent, label, offset), std::tuple(2U, "tip", first));

  EXPECT_EQ(map.dependentManipulators(2), (std::vector<KtU32>{1, 9}));
  std::vector<KtU32> dependents;
  KtXmlVectorType<T> offsets;
  EXPECT_TRUE(map.getDependentManipulatorsAndOffsets(2, "tip", dependents, offsets));
  EXPECT_EQ(dependents, (std::vector<KtU32>{1, 9}));
  EXPECT_EQ(offsets.vectorContainer(), (std::vector<T>{second, first}));
  EXPECT_FALSE(map.getDependentManipulatorsAndOffsets(2, "tipp", dependents, offsets));
  EXPECT_TRUE(map.removeManipulatorAttachment(9) && !map.removeManipulatorAttachment(9));
}

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
