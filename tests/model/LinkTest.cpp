#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <numbers>

#include "support/Allocations.h"
#include "support/KtLogCapture.h"
#include "support/States.h"
#include "support/Trees.h"

namespace {

using Link = KtManipulatorLink;
using Mass = KtRigidBodyMassProperties;
using T = KtCoordinateSystemTransformation;
using namespace sampling;
using Links = Seeded;
using testing::ElementsAre;

Link labelled(const std::string& label) {
  Link link;
  link.setLabel(label);
  return link;
}

// Everything that must hold between a link, its children and its shapes after any change.
void expectSound(const Link& link) {
  for (const Link& child : link.childLinks().vectorContainer()) {
    EXPECT_EQ(child.parentLink(), &link);
    expectSound(child);
  }
  for (KtU32 i = 0; i < link.numShapes(); ++i) {
    ASSERT_NE(link.shapeByIndex(i), nullptr);
    if (!link.linkReferenceDescription().isShapeReferenced()) {
      EXPECT_EQ(link.shapeByIndex(i)->link(), &link);
    }
  }
  EXPECT_EQ(link.shapeByIndex(link.numShapes()), nullptr);
}

// R with the children P, which has the child S, and Q.
Link smallTree() {
  Link p = labelled("P");
  p.addChild(labelled("S"));
  Link r = labelled("R");
  r.addChild(p);
  r.addChild(labelled("Q"));
  return r;
}

// Also by one of their own labels.
TEST_F(Links, WholeTreesAreRelabelledAndExtended) {
  Link tree = smallTree();
  tree.appendToAllLabels(tree.childLinks()[0].label());
  EXPECT_EQ(tree.childLinks()[1].label(), "QP");
  KtU32 counter = 3;
  tree.relabelSubtree(tree.label(), counter);
  EXPECT_EQ(counter, 7U);
  EXPECT_EQ(tree.childLinks()[0].childLinks()[0].label(), "RP5");
  EXPECT_EQ(tree.childLinks()[1].label(), "RP6");
  tree.clearChildLinks();
  EXPECT_EQ(tree.subtreeLinkCount(), 1U);
}

TEST_F(Links, CopiesStandAlone) {
  auto original = std::make_unique<Link>(smallTree());
  original->setShape(KtSphereShape());
  original->setJointActuator(KtJointActuator::defaultObject());
  Link parent = labelled("parent");
  original->setParentLink(&parent);
  KtIndividualManipulator manipulator;
  original->setManipulatorPointer(&manipulator);
  Link copy(*original);
  EXPECT_EQ(copy.parentLink(), &parent);
  EXPECT_EQ(copy.manipulator(), nullptr);
  Link assigned = labelled("old");
  assigned.setShape(KtBoxShape());
  assigned.addChild(labelled("gone"));
  assigned = *original;
  Link& self = assigned;
  assigned = self;
  EXPECT_EQ(assigned, *original);
  // A part of itself may be assigned.
  Link whole = copy;
  whole = whole.childLinks()[0];
  EXPECT_EQ(whole.label(), "P");
  Link narrowed = copy;
  narrowed.setChildLinks(narrowed.childLinks()[0].childLinks());
  EXPECT_EQ(narrowed.childLinks()[0].label(), "S");
  original.reset();
  for (const Link* link : {&copy, &assigned, &whole, &narrowed}) expectSound(*link);
  copy.copyAllButChildLinksFrom(copy);
  EXPECT_EQ(copy.childLinks().size(), 0U);
  EXPECT_EQ(copy.numShapes(), 1U);
}

// By memory asked for, which is the same on every machine.
TEST_F(Links, DeepTreesAreAssignedAtTheCostOfACopy) {
  Link chain = labelled("0");
  for (int i = 1; i < 60; ++i) chain.addLinkToEndOfChain(labelled(std::to_string(i)));
  const Allocations copying;
  Link target(chain);
  const std::size_t once = copying.count();
  const Allocations assigning;
  target = chain;
  EXPECT_LE(assigning.count(), 2 * once);
  const Allocations setting;
  target.setChildLinks(chain.childLinks());
  EXPECT_LE(setting.count(), 2 * once);
  EXPECT_EQ(target, chain);
  expectSound(target);
}

TEST_F(Links, TablesOfShapesNeverOutliveTheShapes) {
  KtLinkReferenceDescription description;
  description.setIsShapeReferenced(true);
  Link shapeless;
  shapeless.setLinkReferenceDescription(description);
  const std::string referring = KtXmlWriter::writeString(shapeless);
  const auto bounded = [] {
    Link link;
    link.setShape(KtSphereShape());
    EXPECT_TRUE(link.addBoundingVolume(KtShape::kBox));
    EXPECT_EQ(link.numShapes(), 2U);
    return link;
  };
  const auto last = [](const Link& link) {
    return link.shapeContainer().topElement()->outerBoundingVolume();
  };
  Link truncated = bounded();
  truncated.truncateValues(0.125);
  EXPECT_EQ(truncated.shapeByIndex(1), last(truncated));
  EXPECT_EQ(last(truncated)->link(), &truncated);
  Link target = bounded();
  target.setLabel("target");
  Link referrer;
  description.setReferencedLinkLabel("target");
  referrer.setLinkReferenceDescription(description);
  referrer.setLinkReferences({{"target", &target}});
  referrer.truncateValues(0.125);
  EXPECT_EQ(target.shapeByIndex(1), last(target));
  Link converted = bounded();
  converted.setLinkReferenceDescription(description);
  converted.deleteBoundingVolumes();
  EXPECT_EQ(converted.shapeByIndex(1), nullptr);
  Link read = bounded();
  ASSERT_TRUE(KtXmlReader::readString(referring, read));
  EXPECT_EQ(read.shapeByIndex(0), nullptr);
  // A link that is read references nothing until it is mapped.
  ASSERT_TRUE(KtXmlReader::readString(referring, referrer));
  EXPECT_EQ(referrer.shapeByIndex(0), nullptr);
}

TEST_F(Links, MassIsTheSumOfWhatIsThere) {
  Link link = trees::randomLink("link");
  const Mass base = link.baseMassProperties();
  const Mass load = Mass::uniformSolidSphere(3.0, 0.1);
  const auto expectTotal = [&link](const Mass& total) {
    EXPECT_TRUE(link.massProperties().approxEq(total, 1e-14));
    Mass moved = total;
    moved.transformBy(link.primaryFrame());
    EXPECT_TRUE(link.massPropertiesInDHFrame().approxEq(moved, 1e-13));
  };
  link.addMassProperties("load", load);
  expectTotal(base + load);
  const KtStatedSystemStruct nobody;
  EXPECT_EQ(&link.massProperties(&nobody), &link.massProperties());
  link.setBaseMassProperties(load);
  expectTotal(load + load);
  EXPECT_FALSE(link.deleteMassProperties("cargo"));
  EXPECT_TRUE(link.deleteMassProperties("load"));
  expectTotal(load);
  link.addMassProperties("load", base);
  link.setPrimaryFrame(randomTransformation());
  expectTotal(load + base);
  link.setMassProperties(base);
  EXPECT_EQ(link.massPropertiesMap().size(), 0U);
  expectTotal(base);
  // A replacement works and says that it didn't.
  Link tree = smallTree();
  EXPECT_FALSE(tree.replaceMassProperties("S", load));
  EXPECT_EQ(tree.childLinks()[0].childLinks()[0].massProperties(), load);
  EXPECT_FALSE(tree.replaceJointActuator("Q", KtJointActuator::defaultObject()));
  EXPECT_EQ(tree.childLinks()[1].jointActuator(), KtJointActuator::defaultObject());
}

TEST_F(Links, AttachedManipulatorsAddTheMassOfTheirRoot) {
  KtStatedSystem stated;
  for (const int links : {1, 2}) stated.addManipulator(trees::randomManipulator(links));
  const Link& link = *stated.system().manipulators()[0].linkByIndex(0);
  const T offset = randomTransformation();
  KtManipulatorAttachmentMap attachments;
  attachments.attachManipulator(1, 0, link.label(), offset);
  stated.setManipulatorAttachmentMap(attachments);
  KtStatedSystemStruct asker;
  asker.statedSystem = &stated;
  Mass all = stated.system().manipulators()[1].massProperties();
  all.transformBy(offset);
  all += link.massProperties();
  EXPECT_TRUE(link.massProperties(&asker).approxEq(all, 1e-13));
  all.transformBy(link.primaryFrame());
  EXPECT_TRUE(link.massPropertiesInDHFrame(&asker).approxEq(all, 1e-12));
}

TEST_F(Links, MovingThePrimaryFrameLeavesTheBody) {
  Link link = trees::randomLink("link");
  link.setShape(KtBoxShape());
  const Mass before = link.massPropertiesInDHFrame();
  const KtVector corner = link.primaryFrame() * link.shapeByIndex(0)->supportPoint({1.0, 2.0, 3.0});
  const KtVector direction = link.primaryFrame().orientation() * KtVector(1.0, 2.0, 3.0);
  const T frame = randomTransformation();
  EXPECT_TRUE(link.transformPrimaryFrame(frame));
  EXPECT_EQ(link.primaryFrame(), frame);
  // The mass in the DH frame follows only when the total mass has.
  EXPECT_FALSE(link.massPropertiesInDHFrame().approxEq(before, 1e-3));
  link.updateMassProperties();
  link.updateDHMassProperties();
  EXPECT_TRUE(link.massPropertiesInDHFrame().approxEq(before, 1e-12));
  const KtVector there = frame.orientation().inverse() * direction;
  EXPECT_TRUE((frame * link.shapeByIndex(0)->supportPoint(there)).approxEq(corner, 1e-12));
}

TEST_F(Links, ScalingReachesTheTotalMassLater) {
  Link link = trees::randomLink("link");
  KtDenavitHartenberg joint;
  joint.setJointType(KtDenavitHartenberg::kPrismatic);
  joint.setPrimaryFrame(KtVector(1.0, 0.0, 0.0));
  link.setLinkKinematics(joint);
  KtJointActuator actuator;
  actuator.setUpperLimit(0.5);
  link.setJointActuator(actuator);
  const Mass total = link.massProperties();
  link.addChild(link);
  link.scaleBy(2.0);
  EXPECT_EQ(link.massProperties(), total);
  EXPECT_NEAR(link.baseMassProperties().mass(), 8.0 * total.mass(), 1e-12);
  EXPECT_EQ(link.primaryFrame().translation().x, 2.0);
  EXPECT_EQ(link.jointActuator().upperLimit(), 1.0);
  EXPECT_EQ(link.childLinks()[0].jointActuator().upperLimit(), 1.0);
  link.updateMassProperties();
  EXPECT_NEAR(link.massProperties().mass(), 8.0 * total.mass(), 1e-12);
}

TEST_F(Links, LimitsBecomeConstraintsOnTheState) {
  KtIndividualManipulator arm = trees::randomManipulator(6);
  const KtPositionState state = states::at(states::randomJoints(6));
  for (KtU32 i = 0; i < arm.jointDof(); ++i) {
    const Link& link = *arm.linkByIndex(i);
    const double q = state.jointPositions()[i];
    EXPECT_TRUE(arm.setJointLimit(link.label(), true, -0.25));
    for (const double limit : {0.5, 0.75}) {
      EXPECT_TRUE(arm.setJointLimit(link.label(), false, limit));
      EXPECT_DOUBLE_EQ(link.upperLimitConstraint().evaluate(state), limit - q);
    }
    EXPECT_DOUBLE_EQ(link.lowerLimitConstraint().evaluate(state), q + 0.25);
    // In a copy that stands at another place the constraint follows it.
    KtIndividualManipulator other;
    other.addChild(link);
    EXPECT_DOUBLE_EQ(other.linkByIndex(0)->upperLimitConstraint().evaluate(state),
                     0.75 - state.jointPositions()[0]);
  }
  EXPECT_FALSE(arm.setJointLimit("nobody", false, 1.0));
  // A link without a place weighs no joint.
  Link alone;
  alone.jointActuator();
  EXPECT_EQ(alone.upperLimitConstraint().evaluate(state), 1e300);
  // An explicit constraint hides the actuator's limit.
  alone.setUpperLimitConstraint(arm.linkByIndex(2)->upperLimitConstraint());
  EXPECT_DOUBLE_EQ(alone.upperLimitConstraint().evaluate(state), 0.75 - state.jointPositions()[2]);
}

TEST_F(Links, ShapesAreNumberedAndGiveTheirSurfaces) {
  Link link = labelled("link");
  KtLogCapture log;
  EXPECT_EQ(&link.physicalExtent(), &Link::m_theDummyPhysicalExtent);
  link.estimateMassProperties();
  EXPECT_EQ(log.text(),
            "KtManipulatorLink::physicalExtent()-->empty shape container\n"
            "KtManipulatorLink::estimateMassProperties-->Shape container is empty\n");
  EXPECT_EQ(link.massProperties(), Mass::defaultObject());
  EXPECT_EQ(link.numShapesInPhysicalRepresentation(), 0U);

  KtSphereShape ball;
  ball.setIdentifier("ball");
  ball.setSurfaceLabel("rubber");
  link.setShape(ball);
  EXPECT_EQ(link.shapeByIdentifier("ball"), link.shapeByIndex(0));
  EXPECT_EQ(link.getNthNonBoundingShape(9), link.shapeByIndex(0));
  EXPECT_TRUE(link.addBoundingVolume(KtShape::kBox));
  EXPECT_EQ(link.numberOfShapes(), 2U);
  expectSound(link);
  KtDataMap data;
  data.add("grip", 3.0);
  const KtSurfaceMap surfaces(std::string("rubber"), data);
  Link parent = labelled("parent");
  parent.addChild(link);
  EXPECT_FALSE(parent.setSurfaces("link", 2, surfaces));
  EXPECT_TRUE(parent.setSurfaces("link", 0, surfaces));
  const KtDataMap* found = nullptr;
  EXPECT_FALSE(parent.lookup("rubber", found));
  Link child = parent.childLinks()[0];
  EXPECT_TRUE(child.lookup("rubber", found));
  EXPECT_EQ(*found, data);
  EXPECT_EQ(child.lookupCollisionAvoidanceMetric(), 1.0);
  data.add("ktCollisionAvoidanceMetric", 7.0);
  EXPECT_TRUE(child.setSurfaceProperties("rubber", data));
  EXPECT_EQ(child.lookupCollisionAvoidanceMetric(), 7.0);
  link.deleteAllBoundingVolumes();
  EXPECT_EQ(link.numberOfShapes(), 1U);
  expectSound(link);
  link.setShapeContainer(KtShapeContainer());
  EXPECT_EQ(link.shapeByIdentifier("ball"), nullptr);
  expectSound(link);
}

TEST_F(Links, NamedPointsAndFramesKeepTheirFirstValue) {
  Link link;
  const KtLogCapture log;
  for (const double x : {1.0, 4.0}) {
    link.addNamedPoint("tip", {x, 2.0, 3.0});
    link.addNamedFrame("tool", T(KtVector(x, 0.0, 0.0)));
  }
  EXPECT_EQ(log.text(),
            "KtManipulatorLink::addNamedPoint point already exists\n"
            "KtManipulatorLink::addNamedFrame frame already exists\n");
  KtVector point;
  T frame;
  EXPECT_TRUE(link.lookupNamedPoint("tip", point));
  EXPECT_TRUE(link.lookupNamedFrame("tool", frame));
  EXPECT_FALSE(link.lookupNamedPoint("end", point));
  EXPECT_EQ(point, KtVector(1.0, 2.0, 3.0));
  EXPECT_EQ(frame.translation().x, 1.0);
}

TEST_F(Links, PropertiesAreReplacedAndTheActuatorIsBound) {
  Link source = trees::randomLink("source");
  source.setShape(KtSphereShape());
  source.addNamedPoint("tip", {1.0, 2.0, 3.0});
  KtJointActuator actuator;
  actuator.setUpperLimit(0.5);
  source.setJointActuator(actuator);
  KtIndividualManipulator arm = trees::randomManipulator(5);
  const std::string label = arm.linkByIndex(3)->label();
  EXPECT_FALSE(arm.replaceLinkProperties("nobody", source, true));
  EXPECT_TRUE(arm.replaceLinkProperties(label, source, true));
  const Link& target = *arm.linkByIndex(3);
  EXPECT_EQ(target.label(), label);
  EXPECT_EQ(target.massProperties(), source.massProperties());
  EXPECT_EQ(target.namedPoints(), source.namedPoints());
  EXPECT_EQ(target.numShapes(), 1U);
  expectSound(target);
  // Its limit is one of its own joint, and its actuator reads its own entry of a state.
  const KtPositionState state = states::at(states::joints({0.0, 0.0, 0.0, 0.25, 0.0}));
  EXPECT_EQ(target.upperLimitConstraint().evaluate(state), 0.25);
  const KtVelocityState velocity = states::moving(states::randomJoints(5));
  KtManipulatorActiveState active;
  active.setPositionState(state);
  active.setVelocityState(velocity);
  active.setAccelerationState(KtAccelerationState::zeroCompatibleState(velocity));
  target.jointActuator().initializeActuatorStates(active);
  EXPECT_EQ(active.actuatorState().motorPositions()[3], 0.25);
  Link copy;
  source.copyLinkProperties(copy);
  EXPECT_EQ(copy.label(), "source");
  EXPECT_EQ(copy.shapeContainer(), source.shapeContainer());
}

TEST_F(Links, ActuatorsOfOlderFilesAreTakenOver) {
  const std::string document = R"(<manipulatorLink>
      <jointActuator><upperLimit>0.5</upperLimit><maxTorque>7</maxTorque></jointActuator>
      <identifier>old</identifier>
    </manipulatorLink>)";
  Link link;
  ASSERT_TRUE(KtXmlReader::readString(document, link));
  EXPECT_EQ(link.jointActuator().upperLimit(), 0.5);
  EXPECT_EQ(link.jointActuator().maxTorque(), 7.0);
  const std::string written = KtXmlWriter::writeString(link);
  EXPECT_EQ(written.find("<jointActuator>"), std::string::npos);
  EXPECT_NE(written.find("compositeJointActuator"), std::string::npos);
  // It is so again when a newer file is read into the same link, but not into another one.
  Link other;
  ASSERT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(other), link));
  EXPECT_EQ(link.jointActuator().upperLimit(), 0.5);
  ASSERT_TRUE(KtXmlReader::readString(written, other));
  EXPECT_EQ(other.jointActuator().upperLimit(), 0.5);
}

}  // namespace
