#include <gmock/gmock.h>

#include <functional>
#include <memory>

#include "support/KtLogCapture.h"
#include "support/States.h"
#include "support/Trees.h"

namespace {

using Stated = KtStatedSystem;
using Arm = KtIndividualManipulator;
using T = KtCoordinateSystemTransformation;
using namespace sampling;
using StatedSystems = Seeded;

Arm armOf(const std::string& label, int links) {
  return trees::randomManipulator(links, label);
}

KtPositionState at(const std::vector<double>& q) {
  return states::at(states::joints(q));
}

KtVelocityState moving(const std::vector<double>& q) {
  return states::moving(states::joints(q));
}

Stated twoArms() {
  Stated stated;
  stated.addManipulator(armOf("a", 2), at({0.5, -0.25}), moving({1.0, 2.0}));
  stated.addManipulator(armOf("b", 1), at({0.125}), moving({3.0}));
  return stated;
}

std::vector<double> positionsOf(const Stated& stated, KtU32 index) {
  return states::valuesOf(stated.state().positionStates()[index].jointPositions());
}

std::vector<double> velocitiesOf(const Stated& stated, KtU32 index) {
  return states::valuesOf(stated.state().velocityStates()[index].jointVelocities());
}

// Every change through one of several sharers, against what the others held before. In any order of
// destruction.
TEST_F(StatedSystems, ChangesStayWithTheOneThatIsChanged) {
  const std::vector<std::function<void(Stated&)>> changes{
      [](Stated& s) { s.mergeWith(Stated(s)); },
      [](Stated& s) { s.mergeWith(s); },
      [](Stated& s) { s.setSystem(Stated::m_theNullSystem); },
      [](Stated& s) { s.setAndDeleteSystemPointer(new KtManipulatorSystem); },
      [](Stated& s) { s.setFromSystem(KtManipulatorSystem()); },
      [](Stated& s) { s.setFromManipulator(s.system().manipulators()[1]); },
      [](Stated& s) { s.clearAndInitializeForOneManipulator(); },
      [](Stated& s) { s.addManipulator(s.system().manipulators()[0]); },
      [](Stated& s) {
        s.addManipulator(s.system().manipulators()[0], s.state().positionStates()[0],
                         s.state().velocityStates()[0]);
      },
      [](Stated& s) {
        s.exchangeManipulator(1, s.system().manipulators()[0], s.state().positionStates()[0],
                              s.state().velocityStates()[0]);
      },
      [](Stated& s) { s.addShapeAsManipulator(KtSphereShape(), T(), "ball", {}); },
      [](Stated& s) { s.deleteManipulator(0); },
      [](Stated& s) { s.deleteManipulator(s.system().manipulators()[1].label()); },
      [](Stated& s) {
        KtSystemEnvironment environment;
        environment.setUpGravityVector({0.0, 0.0, 9.81});
        s.setEnvironment(environment);
      },
      [](Stated& s) { s.scaleManipulatorBy(0, 2.0); },
      [](Stated& s) { s.setJointLimit(0, "link1", true, -0.625); },
      [](Stated& s) { s.replaceLinkProperties(0, "link1", KtManipulatorLink(), true); },
      [](Stated& s) { KtXmlReader::readString(KtXmlWriter::writeString(Stated()), s); },
      [](Stated& s) { s = Stated(); }};
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE(i);
    for (int order = 0; order < 4; ++order) {
      auto first = std::make_unique<Stated>(twoArms());
      if (order % 2 == 1) KtXmlWriter::writeString(*first);  // makes its table of components
      auto second = std::make_unique<Stated>(*first);
      auto third = std::make_unique<Stated>();
      *third = *second;
      const Stated before(*first, true);
      EXPECT_FALSE(before.isSystemModified());
      EXPECT_NE(&before.system(), &first->system());
      EXPECT_EQ(&second->system(), &first->system());
      EXPECT_EQ(&third->system(), &first->system());
      (order < 2 ? first : second)->resetIsSystemModified();
      changes[i](order < 2 ? *first : *second);
      const Stated& changed = order < 2 ? *first : *second;
      const Stated& kept = order < 2 ? *second : *first;
      EXPECT_NE(&changed.system(), &kept.system());
      EXPECT_FALSE(changed == before);
      EXPECT_TRUE(kept == before);
      EXPECT_EQ(&third->system(), &kept.system());
      // The table of components leads to the present system.
      Stated back;
      const KtLogCapture log;
      EXPECT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(changed), back));
      EXPECT_EQ(KtXmlWriter::writeString(back.system()),
                KtXmlWriter::writeString(changed.system()));
      (order < 2 ? second : first).reset();
      EXPECT_TRUE(*third == before);
      const auto* last = &third->system();
      third->aboutToModifySystem();
      EXPECT_EQ(&third->system(), last) << "the last one needs no copy";
    }
  }
}

TEST_F(StatedSystems, SomeOperationsReachAllSharers) {
  Stated first = twoArms();
  const Stated second(first);
  KtManipulatorAttachmentMap attachments;
  attachments.attachManipulator(1, 0, "a", T());
  first.setManipulatorAttachmentMap(attachments);
  KtSystemCollisionExclusionMap exclusions;
  exclusions.excludeManipulatorCollisionCandidates(0, 1);
  first.setCollisionExclusionMap(exclusions);
  KtManipulatorSelfCollisionLinkMap selfCollision;
  selfCollision.setLinkCollisionCanditateByIdentifier("link1", "link2", true);
  EXPECT_TRUE(first.setSelfCollisionMap(selfCollision, 0));
  first.truncateValues(1e-3);
  EXPECT_EQ(&second.system(), &first.system());
  EXPECT_EQ(second.system().manipulatorAttachmentMap().size(), 1U);
  EXPECT_FALSE(second.system().canCollide(0, 0, 1, 0));
  EXPECT_EQ(second.system().manipulators()[0].selfCollisionLinkMap(), selfCollision);

  Stated none;
  none.setManipulatorAttachmentMap(attachments);
  none.setCollisionExclusionMap(exclusions);
  EXPECT_FALSE(none.setSelfCollisionMap(selfCollision, 0));
  EXPECT_EQ(&none.system(), &Stated::m_theNullSystem);
  EXPECT_EQ(none.system(), KtManipulatorSystem());
}

TEST_F(StatedSystems, StateFollowsTheSystem) {
  Stated stated = twoArms();
  const KtPositionState a = stated.state().positionStates()[0];
  const KtPositionState b = stated.state().positionStates()[1];
  // All sizes fit: to the bit.
  stated.addManipulator(armOf("c", 3), at({1.0, 2.0, 3.0}), moving({0.0, 0.0, 0.0}));
  EXPECT_EQ(stated.state().positionStates()[0], a);
  EXPECT_EQ(stated.deleteManipulator("c"), 2U);
  EXPECT_EQ(stated.state().positionStates()[1], b);
  EXPECT_TRUE(stated.exchangeManipulator(1, armOf("d", 1), b, moving({7.0})));
  EXPECT_EQ(stated.state().positionStates()[1], b);
  EXPECT_EQ(velocitiesOf(stated, 1), std::vector{7.0});
  EXPECT_TRUE(stated.deleteManipulator(0));
  ASSERT_EQ(stated.state().positionStates().size(), 1U);
  EXPECT_EQ(stated.state().positionStates()[0], b);
  // Something doesn't fit: all joints move by the offset.
  stated.addManipulator(armOf("e", 2));
  EXPECT_EQ(positionsOf(stated, 0), std::vector{1e-9 + 0.125});
  EXPECT_EQ(positionsOf(stated, 1), (std::vector{1e-9, 1e-9}));
  stated.addManipulator(armOf("f", 2), at({5.0}), moving({6.0, 7.0, 8.0}));
  EXPECT_EQ(positionsOf(stated, 2), (std::vector{1e-9 + 5.0, 1e-9}));
  EXPECT_EQ(velocitiesOf(stated, 2), (std::vector{6.0, 7.0}));

  KtU32 index = 9;
  EXPECT_TRUE(stated.lookupManipulatorIndexFromLabel("f", index));
  EXPECT_EQ(index, 2U);
  EXPECT_FALSE(stated.lookupManipulatorIndexFromLabel("nobody", index));
  EXPECT_EQ(index, 2U);
  EXPECT_FALSE(stated.deleteManipulator(3));
  EXPECT_EQ(stated.deleteManipulator("nobody"), ktUnmappedIndex);
  EXPECT_FALSE(stated.exchangeManipulator(3, Arm(), {}, {}));
}

// A state may be shorter than the system: `setState` doesn't look.
TEST_F(StatedSystems, ShortStatesDoNoHarm) {
  const std::vector<std::function<void(Stated&)>> operations{
      [](Stated& s) { s.deleteManipulator(1); },
      [](Stated& s) { s.deleteManipulator("b"); },
      [](Stated& s) { s.exchangeManipulator(0, armOf("x", 2), {}, {}); },
      [](Stated& s) { s.addManipulator(armOf("x", 2), {}, {}); },
      [](Stated& s) { s.validateTopLevelDimensions(), s.validateLowLevelDimensions(); },
      [](Stated& s) { s.validateLowLevelDimensions(), s.addManipulator(armOf("x", 2)); }};
  const KtLogCapture log;
  for (const KtU32 positions : {0U, 1U, 3U}) {
    for (const KtU32 velocities : {0U, 1U, 3U}) {
      for (const auto& operation : operations) {
        Stated stated = twoArms();
        KtManipulatorSystemState state;
        state.positionStates().resize(positions);
        state.velocityStates().resize(velocities);
        stated.setState(state);
        stated.scaleManipulatorBy(1, 2.0);
        operation(stated);
        stated.absoluteBoundingSphere();
        if (positions == 0) continue;  // where an exchange has nothing to exchange
        EXPECT_TRUE(stated.system().isCompatible(stated.state()));
      }
    }
  }
}

TEST_F(StatedSystems, MidpointIsHalfwayBetweenTheLimits) {
  Arm arm = armOf("a", 1);
  arm.setJointLimit("link1", true, -1.0);
  arm.setJointLimit("link1", false, 3.0);
  Stated stated;
  stated.clearAndInitializeForOneManipulator() = arm;
  stated.finalizeOneManipulator();
  EXPECT_EQ(positionsOf(stated, 0), std::vector{1.0});
  stated.addCompatibleState();
  EXPECT_EQ(positionsOf(stated, 0), std::vector{1e-9});
}

TEST_F(StatedSystems, ScalingKeepsThePose) {
  KtDenavitHartenberg slide;
  slide.setJointType(KtDenavitHartenberg::kPrismatic);
  slide.setDhA(0.5);
  KtDenavitHartenberg turn = slide;
  turn.setJointType(KtDenavitHartenberg::kRotational);
  Arm arm;
  for (const auto& joint : {slide, turn}) {
    KtManipulatorLink link;
    link.setLinkKinematics(joint);
    arm.addLinkToEndOfChain(link);
  }
  Stated stated;
  stated.addManipulator(arm, at({0.1, 0.7}), moving({0.3, 0.9}));
  EXPECT_TRUE(stated.scaleManipulatorBy(0, 2.0));
  EXPECT_EQ(positionsOf(stated, 0), (std::vector{0.1 * 2.0, 0.7}));
  EXPECT_EQ(velocitiesOf(stated, 0), (std::vector{0.3 * 2.0, 0.9}));
  for (KtU32 i = 0; i < 2; ++i) {
    const auto& scaled =
        stated.system().manipulators()[0].linkByIndex(i)->linkKinematicsContainer();
    EXPECT_EQ(dynamic_cast<const KtDenavitHartenberg&>(*scaled.topElement()).dhA(), 1.0);
  }
  EXPECT_FALSE(stated.scaleManipulatorBy(1, 2.0));
}

TEST_F(StatedSystems, SingleManipulatorsAreSetByIndex) {
  Stated stated = twoArms();
  const KtGeneralMotion motion = stated.state().velocityStates()[1].generalVelocity();
  const KtOrientation rotation = randomOrientation();
  stated.rotateIndividualBaseVelocity(1, rotation);
  const auto& velocity = stated.state().velocityStates()[1];
  EXPECT_TRUE(velocity.generalVelocity().linear().approxEq(rotation * motion.linear(), 1e-12));
  EXPECT_TRUE(velocity.generalVelocity().angular().approxEq(rotation * motion.angular(), 1e-12));
  stated.zeroIndividualVelocityState(1);
  EXPECT_EQ(velocity.generalVelocity(), KtGeneralMotion());
  EXPECT_EQ(velocitiesOf(stated, 1), std::vector{0.0});
  const Stated before = stated;
  const KtLogCapture log;
  stated.setIndividualPositionState(2, {});
  stated.setIndividualVelocityState(3, {});
  stated.setIndividualCoordinateSystemTransformation(4, T());
  stated.rotateIndividualBaseVelocity(5, rotation);
  stated.zeroIndividualVelocityState(6);
  EXPECT_EQ(
      log.text(),
      "KtStatedSystem::setIndividualState(): manipulator index 2 to big for position state size, 2"
      "KtStatedSystem::setIndividualState(): manipulator index 3 to big for velocity state size, 2"
      "KtStatedSystem::setIndividualCoordinateSystemTransformation(): manipulator index 4 to big "
      "for position state size, 2"
      "KtStatedSystem::rotateIndividualBaseVelocity(): manipulator index 5 to big for velocity "
      "state size, 2"
      "KtStatedSystem::setIndividualState(): manipulator index 6 to big for velocity state size, "
      "2");
  EXPECT_EQ(stated, before);
}

TEST_F(StatedSystems, WrongStatesInFilesAreRepaired) {
  Stated stated = twoArms();
  KtManipulatorSystemState state = stated.state();
  state.positionStates().erase(1);
  state.velocityStates().erase(1);
  state.positionStates()[0].jointPositions().erase(1);
  state.velocityStates()[0].jointVelocities().erase(1);
  stated.setState(state);
  const std::string top =
      "KtStatedSystem::validateTopLevelDimensions(): number of states does not equal the number of "
      "systems in the input file--correcting.\n";
  const std::string low = "KtStatedSystem::validateLowLevelDimensions: joint ";
  const std::string end = " do not match the numbers of degrees of freedom--correcting.\n";
  const std::string pair = low + "positions" + end + low + "velocities" + end;
  const KtLogCapture log;
  Stated back;
  EXPECT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(stated), back));
  EXPECT_EQ(log.text(), top + pair + pair);
  EXPECT_EQ(positionsOf(back, 0), (std::vector{0.5, 1e-9})) << "values that stay stay";
  EXPECT_EQ(velocitiesOf(back, 0), (std::vector{1.0, 0.0}));
  EXPECT_EQ(positionsOf(back, 1), std::vector{1e-9});
  EXPECT_EQ(velocitiesOf(back, 1), std::vector{0.0});
  EXPECT_EQ(back.state().positionStates()[0].coordSysXForm(),
            state.positionStates()[0].coordSysXForm());
  EXPECT_EQ(back.state().positionStates()[1].coordSysXForm(), T());
}

TEST_F(StatedSystems, ShapesAreFoundAndColouredByKey) {
  KtSphereShape ball;
  KtDataMap data;
  data.add("ktDiffuseAlpha", 0.25);
  ball.setSurfaces({std::string("0"), data});
  ball.setSurfaceLabel("0");
  KtManipulatorLink link;
  link.setShape(ball);
  Arm arm;
  arm.addLinkToEndOfChain(link);
  Stated stated;
  stated.addManipulator(arm);
  const T place(KtVector(1.0, 2.0, 3.0));
  EXPECT_EQ(stated.addShapeAsManipulator(ball, place, "ball", data), 1U);
  EXPECT_EQ(stated.state().positionStates()[1].coordSysXForm(), place);
  const Stated sharer(stated);
  for (const KtShapeStateCacheKey& bad : {KtShapeStateCacheKey(2, 0, 0), {0, 1, 0}, {0, 0, 1}}) {
    const KtLogCapture log;
    EXPECT_EQ(stated.shapeByKey(bad), nullptr);
    stated.changeDiffuseAlpha(bad, 0.5);
    EXPECT_EQ(log.text(), "");
  }
  const KtShape* added = stated.shapeByKey({1, ktBaseIndex, 0});
  ASSERT_NE(added, nullptr);
  ASSERT_NE(added->defaultSurface(), nullptr);
  EXPECT_EQ(*added->defaultSurface(), data);
  const KtShapeStateCacheKey key(0, 0, 0);
  const KtLogCapture log;
  stated.changeDiffuseAlpha(key, 0.5);
  stated.changeAmbientAlpha(key, 0.75);
  EXPECT_EQ(log.text(),
            "\nktDiffuseAlpha: 0.250000\n\nNew Alpha: 0.500000\n"
            "\nktAmbientAlpha: 0.000000\n\nNew Alpha: 0.750000\n");
  const auto valueOf = [&key](const Stated& in, const char* property) {
    double value = -1.0;
    in.shapeByKey(key)->defaultSurface()->lookup(property, value);
    return value;
  };
  EXPECT_EQ(valueOf(stated, "ktDiffuseAlpha"), 0.5);
  EXPECT_EQ(valueOf(stated, "ktAmbientAlpha"), 0.75);
  EXPECT_EQ(valueOf(sharer, "ktDiffuseAlpha"), 0.25);

  stated.addModifiedShapeKeyVec(key);
  stated.addModifiedShapeKeyVec(KtShapeStateCacheKey::nullObject());
  stated.addModifiedShapeKeyVec(key);
  EXPECT_EQ(stated.modifiedShapeKeyVec(), std::vector{key});
}

TEST_F(StatedSystems, ModificationIsRemembered) {
  Stated stated;
  stated.setState({});
  EXPECT_FALSE(stated.isSystemModified());
  stated.aboutToModifySystem();
  EXPECT_TRUE(stated.isSystemModified());
  std::as_const(stated).resetIsSystemModified();
  EXPECT_FALSE(stated.isSystemModified());
  KtXmlWriter::writeString(stated);
  EXPECT_TRUE(stated.isSystemModified()) << "the first write sees to a system of its own";
  EXPECT_EQ(stated, Stated()) << "a missing system is an empty one";
}

// A stated system that tells which active state its collision reports look at.
class Reporting : public Stated {
 public:
  bool checkForCollisions(KtSystemActiveState& activeState, const KtReal&, const KtU32& level,
                          const KtReal& tolerance, ResultVector&) const override {
    active = &activeState;
    return level == 2 && tolerance == 0.5;
  }
  bool report() const {
    ResultVector results;
    return generateCollisionReport(results, 2, 0.5);
  }
  mutable KtSystemActiveState* active = nullptr;
};

TEST_F(StatedSystems, CollisionReportsFollowTheSystem) {
  Reporting stated;
  stated.addManipulator(armOf("a", 2), at({0.5}), moving({1.0}));
  EXPECT_TRUE(stated.report());
  const auto positions = [&] {
    std::vector<KtPositionState> all;
    for (const auto& one : stated.active->manipulatorActiveStateVector().vectorContainer()) {
      all.push_back(one.positionState());
    }
    return all;
  };
  const auto& own = stated.state().positionStates().vectorContainer();
  EXPECT_EQ(positions(), own);
  stated.active->systemActiveBoundingBoxState().setIsInitialized(true);
  stated.addManipulator(armOf("b", 3), at({0.125, 0.25}), moving({3.0, 4.0}));
  EXPECT_EQ(positions(), own);
  EXPECT_FALSE(stated.active->systemActiveBoundingBoxState().isInitialized());
  stated.deleteManipulator(0U);
  EXPECT_EQ(positions(), own);

  // Copies have their own, and data of another system are not kept.
  const Reporting copy(stated);
  KtSystemActiveState* const before = stated.active;
  EXPECT_TRUE(copy.report());
  EXPECT_NE(copy.active, before);
  stated.active->systemActiveBoundingBoxState().setIsInitialized(true);
  stated = Reporting();
  EXPECT_FALSE(before->systemActiveBoundingBoxState().isInitialized());
}

}  // namespace
