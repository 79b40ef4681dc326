#include "support/States.h"
#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using System = KtManipulatorSystem;
using Stated = KtStatedSystem;
using states::at, states::moving, states::randomJoints;

// A reference that cannot be resolved is kept, and its manipulator has no joints.
void modify(const std::vector<Arm>& arms, KtU32 index) {
  System system;
  for (const Arm& arm : arms) system.addManipulator(arm);
  EXPECT_EQ(system.aboutToModifyManipulator(index), index < arms.size());
  for (const Arm& arm : system.manipulators().vectorContainer()) {
    EXPECT_TRUE(arm.manipulatorReferenceDescription().isManipulatorReferenced());
    EXPECT_EQ(arm.jointDof(), 0U);
  }
}

// An arm whose links "a" and "b" refer to the labels, and "c" to "a".
void refer(const std::string& a, const std::string& b) {
  Arm arm;
  for (const std::string label : {"a", "b", "c"}) {
    Link link = trees::randomLink(label);
    link.setShape(KtBoxShape({1.0, 2.0, 3.0}));
    KtLinkReferenceDescription description;
    description.setReferencedLinkLabel(label == "a" ? a : label == "b" ? b : "a");
    description.setIsShapeReferenced(!description.referencedLinkLabel().empty());
    link.setLinkReferenceDescription(description);
    arm.KtManipulatorLink::addLinkToEndOfChain(link);
  }
  arm.mapManipulator();
  const Link& link = *arm.linkByIndex(0);
  EXPECT_EQ(&link.shapeContainer(), &link.memberShapeContainer());
  EXPECT_EQ(arm.linkByIndex(2)->numberOfShapes(), 1U);
  const KtLogCapture quiet;
  EXPECT_TRUE(arm.transformAllPrimaryFramesToIdentity());
  EXPECT_EQ(arm.linkByIndex(0)->shapeContainer().topElement()->numberOfShapes(), 1U);
}

// Two arms, of two joints and one, at a state of so many joints in each.
Stated sceneOf(const std::vector<KtU32>& joints) {
  Stated scene;
  for (const int count : {2, 1}) scene.addManipulator(trees::randomManipulator(count));
  scene.setState(states::random(joints, joints, 0.5));
  return scene;
}

std::string unfound(const std::string& label) {
  return "KtManipulatorLink::setLinkReference(): could not find link with label " + label +
         " for referencing.  Using self.";
}

std::string modifying(const std::string& problem) {
  return "KtManipulatorSystem::aboutToModifyManipulator(): " + problem;
}

std::string tooBig(const std::string& operation, const std::string& index,
                   const std::string& kind) {
  return "KtStatedSystem::" + operation + "(): manipulator index " + index + " to big for " + kind +
         " state size, 2";
}

std::string unfit(const std::string& kind) {
  return "KtStatedSystem::validateLowLevelDimensions: joint " + kind +
         " do not match the numbers of degrees of freedom--correcting.\n";
}

struct Row {
  const char* name;
  std::function<void()> act;
  std::string text;
};

// All of them are errors.
const Row kRows[] = {
    {"extent", [] { EXPECT_EQ(&Link().physicalExtent(), &Link::m_theDummyPhysicalExtent); },
     "KtManipulatorLink::physicalExtent()-->empty shape container\n"},
    {"estimate",
     [] {
       Link link = trees::randomLink("link");
       link.estimateMassProperties();
       EXPECT_EQ(link.massProperties(), KtRigidBodyMassProperties::defaultObject());
     },
     "KtManipulatorLink::estimateMassProperties-->Shape container is empty\n"},
    {"named",
     [] {
       Link link;
       for (int i = 0; i < 2; ++i) link.addNamedPoint("x", {}), link.addNamedFrame("x", T());
     },
     "KtManipulatorLink::addNamedPoint point already exists\n"
     "KtManipulatorLink::addNamedFrame frame already exists\n"},
    {"labels",
     [] {
       trees::Holed arm;
       arm.mapManipulator();
       for (const char* label : {"nobody", "none"}) {
         EXPECT_FALSE(arm.transformPrimaryFrame(label, T()));
         EXPECT_FALSE(arm.transformLinkSubtreeBy(label, T()));
         EXPECT_FALSE(arm.replaceLinkAndChildren(label, Link()));
         EXPECT_FALSE(arm.transformLinkComponentsBy(label, T()) ||
                      arm.replaceLinkShape(label, KtSphereShape()) ||
                      arm.replaceLinkKinematics(label, KtDenavitHartenberg()) ||
                      arm.replaceLinkPrimaryFrame(label, T()) || arm.aboutToModifyLink(label) ||
                      arm.setBoundingVolume(label, KtSphereShape()));
       }
     },
     "KtIndividualManipulator::transformPrimaryFrame()->bad link label, nobody"
     "KtIndividualManipulator::transformPrimaryFrame()->bad link for label, none"
     "KtIndividualManipulator::transformLinkSubtreeBy(): unexpected NULL pointer for link none.\n"
     "KtIndividualManipulator::replaceLinkAndChildren(): unexpected NULL pointer for link none.\n"},
    {"holes",
     [] {
       trees::Holed arm;
       arm.addLinkToEndOfChain(trees::randomLink("a"));
       EXPECT_EQ(arm.linkIndexByIdentifier("nobody"), ktUnmappedIndex);
       arm.truncateValues(1e-9);
       EXPECT_TRUE(arm.transformAllPrimaryFramesToIdentity());
       EXPECT_EQ(arm.linkByIndex(0)->primaryFrame(), T());
     },
     "Invalid link pointer [0][1]Invalid link pointer [1][0]Invalid link pointer [1][1]"
     "Invalid link pointer [1][2]Invalid link pointer [2][1]"},
    // Before any mapping there is no row for the base.
    {"collision",
     [] {
       Arm arm;
       EXPECT_FALSE(arm.canCollide(ktBaseIndex, ktBaseIndex) || arm.canCollide(3, 3));
       EXPECT_FALSE(arm.canCollide(0, 1) || arm.canCollide(0, ktBaseIndex));
       arm.buildSelfCollisionLinkMap();
       EXPECT_FALSE(arm.canCollide(ktBaseIndex, 7) || arm.canCollide(1, 0));
     },
     "KtIndividualManipulator::canCollide(): indices (0,1) out of range.  Returning False.\n"
     "KtIndividualManipulator::canCollide(): indices (0,-1) out of range.  Returning False.\n"
     "KtIndividualManipulator::canCollide(): indices (0,7) out of range.  Returning False.\n"
     "KtIndividualManipulator::canCollide(): indices (1,0) out of range.  Returning False.\n"},
    {"nobody", [] { refer("nobody", ""); }, unfound("nobody")},
    {"circle", [] { refer("b", "a"); }, unfound("b") + unfound("a") + unfound("a")},
    {"modify", [] { modify({}, 7); }, modifying("bad index (7).\n")},
    {"target", [] { modify({trees::referenceTo("Q", "X")}, 0); },
     modifying("could not find referenced manipulator X\n.")},
    {"self", [] { modify({trees::referenceTo("Q", "Q")}, 0); },
     modifying("self-reference error for manipulator 0.\n") +
         modifying("could not find referenced manipulator Q\n.")},
    {"cycle",
     [] {
       modify({trees::referenceTo("A", "B"), trees::referenceTo("B", "A")}, 1);
     },
     modifying("could not find referenced manipulator A\n.")},
    {"indices",
     [] {
       System system;
       EXPECT_EQ(system.jointDof(1), 0U);
       EXPECT_FALSE(system.setJointLimit(1, "link1", true, 0.0));
       EXPECT_FALSE(system.replaceLinkProperties(1, "link1", Link(), true));
       EXPECT_FALSE(system.exchangeManipulator(1, Arm()) ||
                    system.exchangeManipulator("b", Arm()) || system.setSelfCollisionMap({}, 0) ||
                    system.deleteManipulator(0) || system.setSurfacesByKey({1, 0, 0}, {}) ||
                    system.aboutToModifyManipulator("b"));
       EXPECT_EQ(system.deleteManipulator("b"), ktUnmappedIndex);
     },
     "KtManipulatorSystem::jointDof-->manipulator at index (1) undefined\n"
     "KtManipulatorSystem::setJointLimit() - invalid manipulator index.\n"
     "KtManipulatorSystem::replaceLinkProperties() - invalid manipulator index.\n"},
    {"sphere",
     [] {
       System system;
       system.addManipulator(Arm());
       EXPECT_TRUE(system.absoluteBoundingSphere({}).isEmpty());
     },
     "KtManipulatorSystem::absoluteBoundingSphere(): system size, 1, not equal to state size, 0."},
    {"states",
     [] {
       Stated scene = sceneOf({2, 1});
       const Stated before = scene;
       scene.setIndividualPositionState(2, {});
       scene.setIndividualVelocityState(3, {});
       scene.setIndividualCoordinateSystemTransformation(4, T());
       scene.rotateIndividualBaseVelocity(5, {});
       scene.zeroIndividualVelocityState(6);
       EXPECT_EQ(scene, before);
       EXPECT_FALSE(scene.deleteManipulator(3) || scene.exchangeManipulator(3, Arm(), {}, {}) ||
                    scene.scaleManipulatorBy(2, 2.0));
       EXPECT_EQ(scene.deleteManipulator("nobody"), ktUnmappedIndex);
     },
     tooBig("setIndividualState", "2", "position") + tooBig("setIndividualState", "3", "velocity") +
         tooBig("setIndividualCoordinateSystemTransformation", "4", "position") +
         tooBig("rotateIndividualBaseVelocity", "5", "velocity") +
         tooBig("setIndividualState", "6", "velocity")},
    // Values that stay stay.
    {"repair",
     [] {
       const Stated scene = sceneOf({1});
       Stated back;
       EXPECT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(scene), back));
       KtManipulatorSystemState expected = scene.state();
       expected.positionStates()[0].jointPositions().pushBack(1e-9);
       expected.velocityStates()[0].jointVelocities().pushBack(0.0);
       expected.positionStates().resize(2);
       expected.velocityStates().resize(2);
       expected.positionStates()[1].jointPositions().pushBack(1e-9);
       expected.velocityStates()[1].jointVelocities().pushBack(0.0);
       EXPECT_EQ(back.state(), expected);
     },
     "KtStatedSystem::validateTopLevelDimensions(): number of states does not equal the number of "
     "systems in the input file--correcting.\n" +
         unfit("positions") + unfit("velocities") + unfit("positions") + unfit("velocities")},
    {"attachment",
     [] {
       KtManipulatorActiveState active;
       KtLinkAttachment attachment;
       attachment.setLinkIdentifier("no %s link");
       const T before = randomTransformation();
       T place = before;
       attachment.calculatePlacement(Arm(), active, place);
       EXPECT_EQ(place, before);
       // Quiet, and without motion: cut to the right length, or never cut.
       std::vector<double> reals(10, 1.0);
       attachment.calculateVelocity(Arm(), active, reals, 2);
       EXPECT_EQ(reals, (std::vector<double>{1, 1, 0, 0, 0, 0, 0, 0}));
       reals.assign(7, 1.0);
       attachment.calculateAcceleration(Arm(), active, reals, 2);
       EXPECT_EQ(reals, (std::vector<double>{1, 1, 0, 0, 0, 0, 0, 0}));
     },
     "KtAttachment::calculateFramePlacement():  bad label on link attachment: no %s link.\n"},
    {"positions",
     [] {
       const KtPositionState two = at(randomJoints(2));
       KtPositionState p = at(randomJoints(5));
       EXPECT_FALSE(p.linearInterpolation(at(randomJoints(3)), two, 1.0));
       EXPECT_TRUE(p.approxEq(two, 1e-14));
     },
     "KtPositionState::linearInterpolation(): the two joint-position sizes (3 and 2) do not "
     "match"},
    {"velocities",
     [] {
       const KtVelocityState before = moving(randomJoints(3));
       KtVelocityState v = before;
       EXPECT_FALSE(v.linearInterpolation(v, moving(randomJoints(2)), 0.5));
       EXPECT_EQ(v, before);
     },
     "KtVelocityState::linearInterpolation velocityState1.jointVelocities() size mismatch."},
    {"systems",
     [] {
       KtManipulatorSystemState out = states::random({1}, {1}, 0.5);
       const KtManipulatorSystemState before = out;
       EXPECT_FALSE(out.linearFactorInterpolation(out, states::random({1, 1}, {1, 1}, 2.0), 0.5));
       EXPECT_EQ(out, before);
     },
     "KtManipulatorSystemState::linearFactorInterpolation: positionStates size mismatch."},
    {"forces",
     [] {
       const KtManipulatorExternalForce forces;
       EXPECT_EQ(&forces[2], &KtManipulatorExternalForce::m_theNullGeneralForce);
       EXPECT_EQ(&forces[ktBaseIndex], &forces.baseForce());
     },
     "KtManipulatorExternalForce::operator[]: index 2 out of range.  Returning zero force.\n"},
    {"descriptions",
     [] {
       KtManipulatorActiveForceState forces;
       forces.setExternalForceDescription(2, {});
       EXPECT_EQ(&forces.externalForceDescription(7),
                 &KtManipulatorActiveForceState::m_theZeroForceDescription);
     },
     "KtManipulatorActiveForceState::setExternalForceDescription(): index 2 out of range 0.\n"
     "KtManipulatorActiveForceState::externalForceDescription(): index 7 out of range 0.\n"}};

class Messages : public testing::TestWithParam<Row> {};

TEST_P(Messages, SayWhatIsWrong) {
  const KtLogCapture log;
  GetParam().act();
  EXPECT_EQ(log.errors(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Model, Messages, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

}  // namespace
