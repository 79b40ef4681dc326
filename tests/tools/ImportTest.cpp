// Small robots, whose import is known in advance.
#include "Evaluate.h"
#include "ImportUrdf.h"
#include "Inspect.h"
#include "support/Testing.h"

namespace {

constexpr const char* kInertia =
    "<inertia ixx='0.02' iyy='0.03' izz='0.04' ixy='0.001' ixz='-0.002' iyz='0.003'/>";

std::string number(double value) {
  return Json(value).dump();
}
std::string link(const std::string& name, const std::string& content = "") {
  return "<link name='" + name + "'>" + content + "</link>\n";
}
std::string body(const std::string& name, const std::string& mass, const std::string& origin) {
  return link(name, "<inertial><origin " + origin + "/><mass value='" + mass + "'/>" + kInertia +
                        "</inertial>");
}
std::string joint(const std::string& name, const std::string& type, const std::string& parent,
                  const std::string& child, const std::string& content = "") {
  return "<joint name='" + name + "' type='" + type + "'><parent link='" + parent +
         "'/><child link='" + child + "'/>" + content + "</joint>\n";
}
std::string robot(const std::string& content) {
  return "<robot name='r'>\n" + content + "</robot>\n";
}

ImportResult imported(const std::string& text, const ImportOptions& options = {}) {
  ImportResult result = importUrdf(text, options);
  std::string errors;
  for (const ImportFinding& e : result.errors) errors += std::to_string(e.line) + e.text + '\n';
  EXPECT_TRUE(result.good) << errors;
  return result;
}
std::vector<std::string> texts(const std::vector<ImportFinding>& findings) {
  std::vector<std::string> result;
  for (const auto& f : findings) result.push_back(std::to_string(f.line) + ": " + f.text);
  return result;
}
const Arm& only(const ImportResult& result) {
  return result.system.system().manipulators()[0];
}
T placeOf(const ImportResult& result, const std::string& label, const std::vector<double>& q) {
  KtPositionState position = result.system.state().positionStates()[0];
  for (KtU32 i = 0; i < q.size(); ++i) position.jointPositions()[i] = q[i];
  KtManipulatorActiveState active;
  active.setPositionState(position);
  return only(result).linkByIdentifier(label)->primaryFrameInSystem(active.activePositionState());
}
// Roll, pitch and yaw about fixed axes, as URDF has them.
KtOrientation turned(double roll, double pitch, double yaw) {
  return KtOrientation::zRotation(yaw) * KtOrientation::yRotation(pitch) *
         KtOrientation::xRotation(roll);
}

constexpr const char* kOrigin = "<origin xyz='0.1\t-0.2 0.3' rpy=' 0.4 -0.5 0.6'/>";
const T theOrigin({0.1, -0.2, 0.3}, turned(0.4, -0.5, 0.6));

// The link of a moving joint stands at the origin, and then turned about the axis, or moved along
// it, as the robot's frames have it: whatever the axis, and -z too.
TEST(Import, JointsMoveTheirLinksAboutTheAxis) {
  for (const KtVector& axis :
       {KtVector(0, 0, 1), KtVector(0, 0, -1), KtVector(1, 0, 0), KtVector(0, -2, 0),
        KtVector(0.3, -0.4, 0.5), KtVector(1e-9, 0, -1), KtVector(0.6, 0.5, -0.7)}) {
    const std::string xyz =
        "<axis xyz='" + number(axis.x) + ' ' + number(axis.y) + ' ' + number(axis.z) + "'/>";
    const std::string limit =
        "<limit lower='-1' upper='2' effort='3' velocity='4'/>"
        "<dynamics damping='0.7' friction='0.2'/>";
    for (const std::string type : {"revolute", "continuous", "prismatic"}) {
      SCOPED_TRACE(type + xyz);
      const ImportResult result = imported(
          robot(link("a") + link("b") + joint("j", type, "a", "b", kOrigin + xyz + limit)));
      T moved(axis.unitVector() * 0.7);
      if (type != "prismatic") {
        KtOrientation turn;
        turn.setFromAngleAxis(0.7, axis.unitVector());
        moved = T(turn);
      }
      EXPECT_TRUE(placeOf(result, "b", {0.7}).approxEq(theOrigin * moved, 1e-14));
      const KtJointActuator& actuator = only(result).linkByIndex(0)->jointActuator();
      EXPECT_EQ(actuator.lowerLimit(), type == "continuous" ? -1e300 : -1.0);
      EXPECT_EQ(actuator.upperLimit(), type == "continuous" ? 1e300 : 2.0);
      EXPECT_EQ(actuator.maxOutputRate(), 4.0);
      EXPECT_EQ(actuator.minOutputTorque(), -3.0);
      EXPECT_EQ(actuator.maxOutputTorque(), 3.0);
      EXPECT_EQ(actuator.effectiveInertia(0.0), 0.0);
      const auto& mechanics = *actuator.mechanicalComponentContainer().element();
      EXPECT_EQ(mechanics.frictionCoefficient(), 0.7);
      EXPECT_EQ(mechanics.staticCoulombFriction(), 0.2);
      EXPECT_LT(mechanics.limitingVelocityStickRegion(), 0.01);  // else it would stick for ever
      EXPECT_EQ(result.notTaken.size(), type == "continuous" ? 2U : 0U);  // its bounds
    }
  }
}

TEST(Import, PlanarJointsMoveInThePlane) {
  const ImportResult result =
      imported(robot(link("a") + body("b", "1", "") +
                     joint("j", "planar", "a", "b", kOrigin + std::string("<axis xyz='1 0 0'/>"))));
  ASSERT_EQ(only(result).jointDof(), 3U);
  const T start = placeOf(result, "b", {0, 0, 0});
  EXPECT_TRUE(start.approxEq(theOrigin, 1e-14));
  const KtVector u = placeOf(result, "b", {1, 0, 0}).translation() - start.translation();
  const KtVector v = placeOf(result, "b", {0, 1, 0}).translation() - start.translation();
  EXPECT_TRUE(u.cross(v).approxEq(theOrigin.orientation().xAxis(), 1e-14));
  EXPECT_NEAR(u.mag(), 1.0, 1e-14);
  EXPECT_TRUE(placeOf(result, "b", {0, 0, 0.3})
                  .approxEq(theOrigin * T(KtOrientation::xRotation(0.3)), 1e-14));
}

TEST(Import, FloatingJointsMakeFreeBasesOnlyAtTheRoot) {
  const std::string two = link("world") + body("b", "1", "");
  const ImportResult free =
      imported(robot(two + link("map") + joint("i", "fixed", "map", "world", kOrigin) +
                     joint("j", "floating", "world", "b", kOrigin)));
  EXPECT_EQ(only(free).label(), "b");
  EXPECT_FALSE(only(free).isFixedBase());
  EXPECT_TRUE(placeOf(free, "b", {}).approxEq(theOrigin * theOrigin, 1e-15));
  EXPECT_THAT(texts(free.notTaken),
              ElementsAre(HasSubstr("2: <link> \"world\""), HasSubstr("4: <link> \"map\"")));

  const ImportResult welded =
      imported(robot(two + link("c") + joint("j", "floating", "world", "b", kOrigin) +
                     joint("k", "continuous", "world", "c")));
  EXPECT_EQ(only(welded).label(), "world");
  EXPECT_EQ(only(welded).jointDof(), 1U);
  EXPECT_EQ(totalMass(only(welded)), 1.0);
  EXPECT_THAT(texts(welded.notTaken),
              ElementsAre(HasSubstr("the frame of <link> \"b\""),
                          HasSubstr("5: the freedom of the floating <joint> \"j\"")));
  EXPECT_EQ(only(imported(robot(link("a")), {true, "other"})).label(), "other");
}

// Links on fixed joints, one behind the other: mass, shapes and frames of all of them stay.
TEST(Import, FixedLinksBecomePartOfTheirParents) {
  const std::string fixed = "<origin xyz='0 0 0.5' rpy='0 0 1'/>";
  const std::string ball =
      "<collision><origin xyz='1 0 0'/><geometry><sphere radius='0.2'/>"
      "</geometry></collision>";
  const ImportResult result = imported(robot(
      link("root") + body("arm", "2", "xyz='0.1 0.2 0.3'") + link("hand", ball) +
      link("tip", "<inertial><mass value='3'/>" + std::string(kInertia) + "</inertial>" + ball) +
      link("finger") + joint("j", "continuous", "root", "arm", kOrigin) +
      joint("f", "fixed", "arm", "hand", fixed) + joint("g", "fixed", "hand", "tip", fixed) +
      joint("k", "continuous", "tip", "finger")));
  EXPECT_TRUE(result.notTaken.empty());
  ASSERT_EQ(only(result).jointDof(), 2U);
  const Link& arm = *only(result).linkByIndex(0);

  const T one({0, 0, 0.5}, KtOrientation::zRotation(1.0));
  T frame;
  ASSERT_TRUE(arm.lookupNamedFrame("hand", frame));
  EXPECT_TRUE(frame.approxEq(one, 1e-15));
  ASSERT_TRUE(arm.lookupNamedFrame("tip", frame));
  EXPECT_TRUE(frame.approxEq(one * one, 1e-15));
  EXPECT_TRUE(placeOf(result, "finger", {0.2, 0.0})
                  .approxEq(placeOf(result, "arm", {0.2, 0.0}) * one * one, 1e-14));
  const KtRigidBodyMassProperties& mass = arm.massProperties(nullptr);
  EXPECT_DOUBLE_EQ(mass.massValue(), 5.0);
  EXPECT_TRUE(mass.firstMoment().approxEq({0.2, 0.4, 0.6 + 3.0}, 1e-15));

  ASSERT_EQ(arm.numShapesInPhysicalRepresentation(), 2U);
  const auto* second = dynamic_cast<const KtSphereShape*>(arm.getNthNonBoundingShape(1));
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second->radius(), 0.2);
  EXPECT_TRUE(second->center().approxEq(one * one * KtVector(1, 0, 0), 1e-15));
}

TEST(Import, ShapesStandWhereTheyStood) {
  const auto collision = [](const std::string& shape) {
    return "<collision>" + std::string(kOrigin) + "<geometry>" + shape + "</geometry></collision>";
  };
  const ImportResult result = imported(robot(link(
      "a", collision("<box size='1 2 3'/>") + collision("<cylinder radius='0.1' length='0.4'/>"))));
  const auto& base = only(result);
  const auto* box = dynamic_cast<const KtBoxShape*>(base.getNthNonBoundingShape(0));
  const auto* cylinder = dynamic_cast<const KtCylinderShape*>(base.getNthNonBoundingShape(1));
  ASSERT_TRUE(box != nullptr && cylinder != nullptr);
  EXPECT_EQ(box->size(), KtVector(1, 2, 3));
  EXPECT_EQ(cylinder->radius(), 0.1);
  EXPECT_EQ(cylinder->height(), 0.4);
  EXPECT_TRUE(box->frame().approxEq(theOrigin, 1e-15));
  EXPECT_TRUE(cylinder->frame().approxEq(theOrigin, 1e-15));
}

TEST(Import, ListsWhatIsNotTakenOver) {
  const ImportResult result = imported(
      "<robot name='r' color='red'>\n"
      "<material name='blue'/>\n"
      "<link name='a' kind='x'><visual/>\n"
      "<collision><geometry><mesh filename='no.stl'/></geometry></collision>\n"
      "<inertial><mass value='1'/><inertia ixx='1' iyy='1' izz='1' ixy='0' ixz='0' iyz='0'/>\n"
      "<density/></inertial></link> some text\n"
      "<link name='b'/>\n"
      "<joint name='j' type='fixed'><parent link='a'/><child link='b'/><axis xyz='1 0 0'/>\n"
      "<safety_controller k_velocity='1'/></joint>\n"
      "<joint name='j2' type='continuous'><parent link='b'/><child link='c'/>\n"
      "<limit effort='1' velocity='0'/><dynamics/></joint><link name='c'/>\n"
      "<transmission name='t'><joint name='j'/></transmission></robot>");
  EXPECT_THAT(
      texts(result.notTaken),
      ElementsAre(
          HasSubstr("1: attribute color of <robot> \"r\""), HasSubstr("2: <material> \"blue\""),
          HasSubstr("3: attribute kind of <link> \"a\""), HasSubstr("3: <visual> in <link> \"a\""),
          HasSubstr("4: <mesh> \"no.stl\""),
          HasSubstr("6: <density> in <inertial> in <link> \"a\""), HasSubstr("6: text"),
          HasSubstr("7: the frame of <link> \"b\""), HasSubstr("8: <axis> in <joint> \"j\""),
          HasSubstr("9: <safety_controller> in <joint> \"j\""),
          HasSubstr("11: <dynamics> in <joint> \"j2\", which says nothing"),
          HasSubstr("11: attribute velocity of <limit> in <joint> \"j2\""),
          HasSubstr("12: <transmission> \"t\"")));
}

// Links one behind the other.
std::string row(const char* type, int joints) {
  std::string text = link(number(0));
  for (int i = 1; i <= joints; ++i) {
    text += link(number(i)) + joint(number(i), type, number(i - 1), number(i));
  }
  return robot(text);
}

TEST(Import, TakesLongRows) {
  KtStatedSystem system;
  EXPECT_TRUE(KtXmlReader::readString(
      KtXmlWriter::writeString(imported(row("continuous", 1400)).system), system));
  EXPECT_EQ(system.system().manipulators()[0].jointDof(), 1400U);
  EXPECT_EQ(imported(row("fixed", 5000)).notTaken.size(), 5000U);
}

TEST(Import, RefusesWhatIsWrongWithItsLine) {
  const std::string two = link("a") + link("b");
  const std::string good = joint("j", "continuous", "a", "b");
  const struct {
    std::string text, message;
  } cases[] = {
      {"<robot name='r'>\n<link name='a'>\n</robot>", "2: not well-formed"},
      {"<urdf/>", "1: the root is not <robot>"},
      {"", "not well-formed"},
      {robot(link("a")) + "<robot/>", "4: a second root, <robot>"},
      {robot(link("Gr\xfc\xdf")), "has characters that no system's file can have"},
      {"<robot name='r'/>", "1: the robot has no link"},
      {robot(link("a") + link("b")), "two links without a parent"},
      {robot(link("a") + link("a")), "3: a second <link> \"a\"; the first is in line 2"},
      {robot(two + good + joint("j", "fixed", "a", "b")), "5: a second <joint> \"j\""},
      {robot(two + good + joint("k", "fixed", "a", "b")), "5: link \"b\" is the child"},
      {robot(two + joint("j", "fixed", "a", "c")), "4: <joint> \"j\": no link \"c\""},
      {robot(two + joint("j", "hinge", "a", "b")), "4: <joint> \"j\" has the unknown type"},
      {robot(two + joint("j", "revolute", "a", "b")), "4: <joint> \"j\" has no <limit>"},
      {robot(two + joint("j", "fixed", "a", "b", "<origin xyz='1 2 nan'/>")),
       "\"nan\", no finite number"},
      {robot(two + joint("j", "continuous", "a", "b", "<axis xyz='0 0 0'/>")), "the axis 0 0 0"},
      {robot(two + joint("j", "continuous", "a", "b", "<axis/>")), "has no xyz"},
      {robot(two + joint("j", "continuous", "a", "b", "<mimic joint='k'/>")), "no joint \"k\""},
      {robot(two + joint("j", "continuous", "a", "b", "<mimic joint='j'/>")), "follows itself"},
      {robot(body("a", "-1", "")), "2: value of <mass> in <inertial> in <link> \"a\" is negative"},
      {robot("<link name=''/>"), "2: name of <link> \"\" is empty"},
      {robot("<link/>"), "2: <link> has no name"},
      {robot(link("c") + two + joint("j", "fixed", "a", "b") + joint("k", "fixed", "b", "a")),
       "hangs on a loop"},
      {robot(std::string(100000, ' ') + std::string(3000, '<')), "not well-formed"},
      {row("continuous", 1401), "hangs on a row of more than 1400 moving links"},
      {row("planar", 467), "hangs on a row of more than 1400 moving links"},
  };
  for (const auto& c : cases) {
    const ImportResult result = importUrdf(c.text, {});
    EXPECT_FALSE(result.good);
    ASSERT_FALSE(result.errors.empty()) << c.message;
    EXPECT_THAT(texts(result.errors)[0], HasSubstr(c.message));
  }
}

TEST(Inspect, WarnsOfWhatLooksWrong) {
  ImportResult result = imported(robot(
      link("a") + link("massless") + body("flipped", "1", "xyz='1 0 0'") +
      "<link name='odd'><inertial><mass value='1'/><inertia ixx='1' iyy='1' izz='3' ixy='0' "
      "ixz='0' iyz='0'/></inertial></link>" +
      joint("j", "continuous", "a", "massless") +
      joint("k", "revolute", "a", "flipped",
            "<limit lower='1' upper='-1' effort='1' velocity='1'/>") +
      joint("l", "revolute", "a", "odd", "<limit lower='-1' upper='1' effort='1' velocity='1'/>") +
      // Not odd as a whole.
      body("arm", "100", "xyz='0 0 1'") + joint("m", "continuous", "a", "arm") +
      "<link name='part'><inertial><mass value='1'/><inertia ixx='1' iyy='1' izz='3' ixy='0' "
      "ixz='0' iyz='0'/></inertial></link>" +
      joint("n", "fixed", "arm", "part")));
  KtPositionState position = result.system.state().positionStates()[0];
  position.jointPositions()[2] = 1.5;
  result.system.setIndividualPositionState(0, position);
  EXPECT_THAT(warningsAbout(result.system),
              ElementsAre(HasSubstr("massless: the link moves and has no mass"),
                          HasSubstr("flipped: the lower limit 1.0 lies above"),
                          HasSubstr("odd: no body has this inertia"),
                          HasSubstr("odd: the joint stands at 1.5, beyond its limits"),
                          HasSubstr("arm: part: no body has this inertia")));
  const Json description = describe(result.system);
  EXPECT_EQ(description["manipulators"][0]["mass"], 103.0);
  EXPECT_EQ(description["manipulators"][0]["links"][2]["parent"], "a");
}

}  // namespace
