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

TEST(Systems, SphereContainsEveryManipulators) {
  std::vector<Arm> arms{armOf("a", 1), armOf("b", 1)};
  const auto state = states::random({1, 1}, {1, 1}, 0.75);
  KtSphere expected;
  for (KtU32 i = 0; i < 2; ++i) {
    const KtSphere own(randomVector(), uniform(0.1, 0.5), 3);
    arms[i].setCoordSysXForm(randomTransformation());
    arms[i].setAbsoluteBoundingSphere(own);
    const T& place = state.positionStates()[i].coordSysXForm();
    expected.expandSelfToInclude(arms[i].coordSysXForm() * (place * own));
  }
  const System system = systemOf(arms);
  EXPECT_EQ(system.absoluteBoundingSphere(state), expected);
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
  const T first = randomTransformation();
  const T second = randomTransformation();
  EXPECT_FALSE(map.attachManipulator(2, 2, "tip", first));
  EXPECT_EQ(map.size(), 0U);
  EXPECT_TRUE(map.attachManipulator(9, 2, "tip", first));
  EXPECT_FALSE(map.attachManipulator(9, 3, "base", second)) << "no replacement";
  EXPECT_TRUE(map.attachManipulator(4, 2, "ti", first));
  EXPECT_TRUE(map.attachManipulator(1, 2, "tip", second));
  EXPECT_TRUE(map.attachManipulator(0, 9, "tip", second));

  KtU32 parent = 0;
  KtString label;
  T offset;
  EXPECT_TRUE(map.getDependentManipulatorInfo(9, parent, label, offset));
  EXPECT_FALSE(map.getDependentManipulatorInfo(2, parent, label, offset)) << "changes nothing";
  EXPECT_EQ(std::tuple(parent, label, offset), std::tuple(2U, "tip", first));

  EXPECT_EQ(map.dependentManipulators(2), (std::vector<KtU32>{1, 4, 9}));
  std::vector<KtU32> dependents;
  KtXmlVectorType<T> offsets;
  EXPECT_TRUE(map.getDependentManipulatorsAndOffsets(2, "tip", dependents, offsets));
  EXPECT_EQ(dependents, (std::vector<KtU32>{1, 9}));
  EXPECT_EQ(offsets.vectorContainer(), (std::vector<T>{second, first}));
  EXPECT_FALSE(map.getDependentManipulatorsAndOffsets(2, "tipp", dependents, offsets));
  EXPECT_TRUE(map.removeManipulatorAttachment(9) && !map.removeManipulatorAttachment(9));
}

}  // namespace
