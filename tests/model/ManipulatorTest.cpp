#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <numbers>

#include "support/KtLogCapture.h"
#include "support/Random.h"
#include "support/Trees.h"

namespace {

using Arm = KtIndividualManipulator;
using Link = KtManipulatorLink;
using T = KtCoordinateSystemTransformation;
using namespace sampling;
using Manipulators = Seeded;
using testing::ElementsAre;

// A plain model of a tree: labels, and the place of each parent in the list, in pre-order.
struct Node {
  std::string label;
  std::vector<Node> children;
};

// The labels in pre-order, of all and of those without children.
struct Labels {
  explicit Labels(const Node& node) { add(node); }
  void add(const Node& node) {
    all.push_back(node.label);
    if (node.children.empty()) leaves.push_back(node.label);
    for (const Node& child : node.children) add(child);
  }
  std::vector<std::string> all, leaves;
};

Link linkOf(const Node& node) {
  Link link = trees::randomLink(node.label);
  for (const Node& child : node.children) link.addChild(linkOf(child));
  return link;
}

Node* nth(Node& node, int& n) {
  if (n-- == 0) return &node;
  for (Node& child : node.children) {
    if (Node* found = nth(child, n)) return found;
  }
  return nullptr;
}

// All that the tables must say of the tree.
void expectMapped(const Arm& arm, const Node& model) {
  const auto& [labels, leaves] = Labels(model);
  Link::LinkTable ends;
  arm.collectLeafLinks(ends);
  EXPECT_TRUE(std::ranges::equal(ends, leaves, {}, &Link::label));
  EXPECT_EQ(arm.subtreeLinkCount(), labels.size());
  ASSERT_EQ(arm.jointDof() + 1, labels.size());
  EXPECT_EQ(arm.totalDof(), arm.isFixedBase() ? arm.jointDof() : arm.jointDof() + 6);
  EXPECT_EQ(arm.linkByIndex(ktBaseIndex), &arm);
  EXPECT_EQ(arm.linkByIndex(arm.jointDof()), nullptr);
  for (KtU32 i = 0; i < arm.jointDof(); ++i) {
    const Link* link = arm.linkByIndex(i);
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->label(), labels[i + 1]);
    EXPECT_EQ(link->linkIndex(), i);
    EXPECT_EQ(link->manipulator(), &arm);
    ASSERT_NE(link->parentLink(), nullptr);
    const auto first = std::find(labels.begin() + 1, labels.end(), link->label());
    EXPECT_EQ(arm.linkIndexByIdentifier(link->label()), first - labels.begin() - 1);
    const auto last = std::find(labels.rbegin(), labels.rend(), link->label());
    const auto lastIndex = static_cast<KtU32>(labels.rend() - last - 2);
    EXPECT_EQ(arm.linkByIdentifier(link->label()), arm.linkByIndex(lastIndex));
  }
}

TEST_F(Manipulators, TablesFollowEveryEdit) {
  for (int trial = 0; trial < 20; ++trial) {
    Node model{"base", {}};
    Arm arm;
    arm.changeLinkLabel("", "base");
    for (int step = 0; step < 30; ++step) {
      const auto count = static_cast<double>(Labels(model).all.size());
      int place = static_cast<int>(uniform(0.0, count - 0.001));
      Node* node = nth(model, place);
      const std::string before = node->label;
      const std::string number = std::to_string(step);
      const Node fresh{"n" + number, {{"m" + number, {}}, {"k" + number, {}}}};
      switch (static_cast<int>(uniform(0.0, 5.999))) {
        case 0:
          model.children.push_back(fresh);
          arm.addChild(linkOf(fresh));
          EXPECT_EQ(arm.linkByIndex(arm.jointDof() - 1)->manipulator(), nullptr);
          arm.mapManipulator();
          break;
        case 1: {
          Node* end = &model;
          while (!end->children.empty()) end = &end->children.front();
          end->children.push_back(fresh);
          arm.addLinkToEndOfChain(linkOf(fresh));
          break;
        }
        case 2:
          node->label = fresh.label;
          EXPECT_TRUE(arm.changeLinkLabel(before, fresh.label));
          break;
        case 3:
          if (node != &model) {
            *node = fresh;
            EXPECT_TRUE(arm.replaceLinkAndChildren(before, linkOf(fresh)));
          }
          break;
        case 4:
          if (step % 7 == 0) {
            model.children.clear();
            arm.clearChildLinks();
          }
          break;
        default: {
          // A copy is as good as the original, also after that is gone.
          auto copy = std::make_unique<Arm>(arm);
          arm = Arm();
          arm = *copy;
          break;
        }
      }
      expectMapped(arm, model);
    }
    EXPECT_FALSE(arm.changeLinkLabel("nobody", "somebody"));
    EXPECT_FALSE(arm.replaceLinkAndChildren("nobody", Link()));
    EXPECT_EQ(arm.linkIndexByIdentifier("nobody"), ktUnmappedIndex);
    EXPECT_EQ(arm.linkIndexByIdentifier(model.label), ktBaseIndex);
  }
}

// One that is called a reference after it was mapped has no table of links that have moved.
TEST_F(Manipulators, ReferencesKeepNoLinksThatHaveMoved) {
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

TEST_F(Manipulators, OneLabelLeadsToTheFirstIndexAndTheLastLink) {
  Arm arm;
  arm.addChild(trees::randomLink("twin"));
  arm.addChild(trees::randomLink("twin"));
  EXPECT_EQ(arm.linkIndexByIdentifier("twin"), 0U);
  EXPECT_EQ(arm.linkByIdentifier("twin"), arm.linkByIndex(1));
  EXPECT_TRUE(arm.replaceLinkPrimaryFrame(0, KtVector(1.0, 2.0, 3.0)));
  EXPECT_EQ(arm.linkByIndex(1)->primaryFrame(), T(KtVector(1.0, 2.0, 3.0)));
  EXPECT_FALSE(arm.replaceLinkPrimaryFrame(2, T()));
}

TEST_F(Manipulators, BadLabelsAreReported) {
  Arm arm = trees::randomManipulator(3);
  KtLogCapture log;
  EXPECT_FALSE(arm.transformPrimaryFrame("nobody", T()));
  EXPECT_EQ(log.text(), "KtIndividualManipulator::transformPrimaryFrame()->bad link label, nobody");
  log.clear();
  EXPECT_FALSE(arm.transformLinkSubtreeBy("nobody", T()));
  EXPECT_FALSE(arm.transformLinkComponentsBy("nobody", T()));
  EXPECT_FALSE(arm.replaceLinkShape("nobody", KtSphereShape()));
  EXPECT_FALSE(arm.aboutToModifyLink("nobody"));
  EXPECT_FALSE(arm.setBoundingVolume("nobody", KtSphereShape()));
  EXPECT_EQ(log.text(), "");
}

TEST_F(Manipulators, SelfCollisionIsWhatTheMapSays) {
  Arm arm = trees::randomManipulator(6);
  arm.buildSelfCollisionLinkMap();
  const KtU32 n = arm.jointDof();
  const std::string off = arm.linkByIndex(2)->label();
  KtLogCapture log;
  for (const bool candidates : {false, true}) {
    for (KtU32 i = 0; i <= n; ++i) {
      for (KtU32 j = 0; j <= n; ++j) {
        const bool excluded = std::min(i, j) == 2 && std::max(i, j) == n;
        EXPECT_EQ(arm.canCollide(i < n ? i : ktBaseIndex, j < n ? j : ktBaseIndex),
                  candidates && i != j && !excluded)
            << i << ", " << j;
      }
    }
    KtManipulatorSelfCollisionLinkMap map = arm.selfCollisionLinkMap();
    map.setAllAsCollisionCandidates();
    map.setLinkCollisionCanditateByIdentifier(off, "base", false);
    arm.setSelfCollisionLinkMap(map);
  }
  EXPECT_EQ(log.text(), "");
  EXPECT_FALSE(arm.canCollide(n + 1, 0));
  EXPECT_EQ(log.text(),
            "KtIndividualManipulator::canCollide(): indices (7,0) out of range.  Returning "
            "False.\n");
  KtU32 low = 3, base = ktBaseIndex;
  EXPECT_TRUE(arm.makeIndicesCompatible(low, base));
  EXPECT_EQ(low, ktBaseIndex);
  EXPECT_EQ(base, 3U);
}

// Two links of equal balls and one of a box, in a chain.
Arm armWithTwins() {
  const KtSphereShape ball;
  const KtBoxShape box;
  const KtShape* const shapes[] = {&ball, &box, &ball};
  Arm arm;
  arm.setLabel("arm");
  for (std::size_t i = 0; i < 3; ++i) {
    Link link = trees::randomLink(std::string(1, "abc"[i]));
    link.setShape(*shapes[i]);
    arm.addLinkToEndOfChain(link);
  }
  return arm;
}

TEST_F(Manipulators, LinksShareEqualShapesUntilOneChanges) {
  auto original = std::make_unique<Arm>(armWithTwins());
  EXPECT_TRUE(original->findAndConvertToReferences());
  Arm arm(*original);
  original.reset();
  const Link& a = *arm.linkByIndex(0);
  const Link& c = *arm.linkByIndex(2);
  EXPECT_FALSE(arm.linkByIndex(1)->linkReferenceDescription().isShapeReferenced());
  ASSERT_TRUE(c.linkReferenceDescription().isShapeReferenced());
  EXPECT_EQ(c.memberShapeContainer().topElement(), nullptr);
  EXPECT_EQ(&c.shapeContainer(), &a.shapeContainer());
  EXPECT_EQ(c.shapeByIndex(0), a.shapeByIndex(0));
  EXPECT_EQ(c.numShapes(), 1U);
  // A link is replaced by itself, with the shape that it referenced.
  Arm same(arm);
  EXPECT_TRUE(same.replaceLinkProperties("c", *same.linkByIndex(2), true));
  EXPECT_EQ(same.linkByIndex(2)->memberShapeContainer(), a.shapeContainer());
  // The same through a file.
  Arm read;
  ASSERT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(arm), read));
  EXPECT_EQ(read, arm);
  EXPECT_EQ(&read.linkByIndex(2)->shapeContainer(), &read.linkByIndex(0)->shapeContainer());
  // A link that refers to a part of what replaces it has no shape.
  Link replacement = trees::randomLink("a");
  Link child = trees::randomLink("c");
  child.setLinkReferenceDescription(c.linkReferenceDescription());
  replacement.addChild(child);
  EXPECT_TRUE(arm.replaceLinkAndChildren("a", replacement));
  EXPECT_EQ(arm.linkByIndex(1)->shapeContainer().topElement(), nullptr);
  // Before the target changes, the other gets shapes of its own.
  EXPECT_TRUE(read.aboutToModifyLink("a"));
  EXPECT_FALSE(read.linkByIndex(2)->linkReferenceDescription().isShapeReferenced());
  EXPECT_EQ(read.linkByIndex(2)->linkReferenceDescription().referencedLinkLabel(), "a");
  EXPECT_NE(read.linkByIndex(2)->memberShapeContainer().topElement(), nullptr);
}

TEST_F(Manipulators, BadReferencesFallBackToTheLinkItself) {
  Arm arm = armWithTwins();
  const auto refer = [&arm](const std::string& from, const std::string& to) {
    KtLinkReferenceDescription description;
    description.setIsShapeReferenced(true);
    description.setReferencedLinkLabel(to);
    arm.linkByIdentifier(from)->setLinkReferenceDescription(description);
  };
  KtLogCapture log;
  refer("a", "nobody");
  arm.mapManipulator();
  EXPECT_EQ(log.text(),
            "KtManipulatorLink::setLinkReference(): could not find link with label nobody for "
            "referencing.  Using self.");
  EXPECT_EQ(&arm.linkByIndex(0)->shapeContainer(), &arm.linkByIndex(0)->memberShapeContainer());
  // A circle ends at the links themselves, a chain at its end.
  refer("a", "b");
  refer("b", "a");
  refer("c", "a");
  log.clear();
  arm.mapManipulator();
  EXPECT_NE(log.text(), "");
  for (KtU32 i = 0; i < 3; ++i) EXPECT_EQ(arm.linkByIndex(i)->numberOfShapes(), 1U);
  arm.linkByIdentifier("b")->removeLinkReferences();
  log.clear();
  arm.mapManipulator();
  EXPECT_EQ(log.text(), "");
  EXPECT_EQ(&arm.linkByIndex(2)->shapeContainer(), &arm.linkByIndex(1)->memberShapeContainer());
  EXPECT_TRUE(arm.linkByIdentifier("c")->removeLinkReferences());
  EXPECT_EQ(arm.linkByIndex(2)->memberShapeContainer(), arm.linkByIndex(1)->memberShapeContainer());
}

TEST_F(Manipulators, PrimaryFramesBecomeTheIdentityAroundTheSameBodies) {
  Arm arm = armWithTwins();
  arm.replaceLinkPrimaryFrame("c", arm.linkByIndex(0)->primaryFrame());
  arm.findAndConvertToReferences();
  std::vector<KtRigidBodyMassProperties> before;
  for (KtU32 i = 0; i < 3; ++i) before.push_back(arm.linkByIndex(i)->massPropertiesInDHFrame());
  const auto center = [&arm] {
    return arm.linkByIndex(2)->shapeByIndex(0)->boundingCapsule().lineSegment().endpoint0();
  };
  const KtVector point = arm.linkByIndex(2)->primaryFrame() * center();
  EXPECT_TRUE(arm.transformAllPrimaryFramesToIdentity());
  for (KtU32 i = 0; i < 3; ++i) {
    EXPECT_EQ(arm.linkByIndex(i)->primaryFrame(), T());
    KtManipulatorLink* link = arm.linkByIdentifier(arm.linkByIndex(i)->label());
    link->updateMassProperties();
    link->updateDHMassProperties();
    EXPECT_TRUE(arm.linkByIndex(i)->massPropertiesInDHFrame().approxEq(before[i], 1e-12)) << i;
  }
  EXPECT_TRUE(center().approxEq(point, 1e-12));
}

TEST_F(Manipulators, BoundingVolumesGoAroundOwnShapes) {
  Arm arm = armWithTwins();
  arm.findAndConvertToReferences();
  arm.addBoundingBoxToLinks();
  arm.addBoundingBoxToLinks();
  arm.addCapsuleBoundingVolumeToLinks();
  // The exact box is a box already.
  EXPECT_EQ(arm.linkByIndex(0)->numberOfShapes(), 3U);
  EXPECT_EQ(arm.linkByIndex(1)->numberOfShapes(), 2U);
  EXPECT_EQ(arm.linkByIndex(2)->numShapes(), arm.linkByIndex(0)->numShapes());
  KtDataMap data;
  data.add("grip", 2.0);
  Arm simple = arm;
  simple.simplifyLinkShapesWithCapsules(data);
  EXPECT_EQ(simple.linkByIndex(1)->shapeByIndex(0)->shapeType(), KtShape::kCapsule);
  const KtDataMap* found = nullptr;
  EXPECT_TRUE(simple.linkByIndex(1)->lookup("Bounding", found));
  EXPECT_EQ(*found, data);
  simple = arm;
  simple.deleteAllBoundingVolumes();
  Arm empty = simple;
  simple.simplifyLinkShapesWithConvexHulls(data);
  EXPECT_EQ(simple.linkByIndex(1)->shapeByIndex(0)->shapeType(), KtShape::kConvexHull);
  empty.simplifyLinkShapesWithBoundingVolumes(data, false);
  EXPECT_EQ(empty.linkByIndex(1)->numShapes(), 0U);
  // One volume of the caller's choice, with the contact properties of what it bounds.
  const std::string spring = KtFoundCommon::KtSurfaceTensionSpringConstantToken.text();
  KtDataMap surface;
  surface.add(spring, 500.0);
  KtSurfaceMap surfaces;
  surfaces.add(arm.linkByIndex(1)->shapeByIndex(0)->surfaceLabel(), surface);
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

TEST_F(Manipulators, LinksBecomeManipulators) {
  int next = 0;
  Link link = trees::randomTree("link", 5, next);
  link.setShape(KtSphereShape());
  Arm arm = trees::randomManipulator(3);
  arm.setIsFixedBase(false);
  arm.setCoordSysXForm(randomTransformation());
  arm.setFromLink(link);
  EXPECT_EQ(arm.parentLink(), nullptr);
  EXPECT_EQ(arm.linkIndex(), ktBaseIndex);
  EXPECT_TRUE(arm.isFixedBase());
  EXPECT_EQ(arm.coordSysXForm(), T());
  EXPECT_EQ(arm.jointDof(), 5U);
  EXPECT_GE(arm.absoluteBoundingSphere().radius(), KtSphereShape().boundingCapsule().radius());
}

}  // namespace
