// What `ktmanip simulate` does, against closed forms, the other method, and itself stopped halfway,
// and what `ktmanip evaluate` answers, against closed forms.
#include "Evaluate.h"
#include "ImportUrdf.h"
#include "Simulate.h"
#include "TimeGrid.h"
#include "TorqueTable.h"
#include "support/Testing.h"

namespace {

std::string pathOf(const std::string& name) {
  return std::string(KT_TEST_OUTPUT) + '/' + name;
}

std::string fileOf(const std::string& name, const std::string& text) {
  std::ofstream(pathOf(name), std::ios::binary) << text;
  return pathOf(name);
}

std::string bodyOf(const std::string& name, const std::string& more = "") {
  return "<link name='" + name + "'><inertial>" + more +
         "<mass value='2'/><inertia ixx='0.1' iyy='0.2' izz='0.15' ixy='0' ixz='0' iyz='0'/>"
         "</inertial></link>";
}

std::string jointOf(const std::string& type, const std::string& child, const std::string& more) {
  return "<joint name='to " + child + "' type='" + type + "'><parent link='base'/><child link='" +
         child + "'/>" + more + "</joint>";
}

KtStatedSystem robotOf(const std::string& parts, bool freeBase = false) {
  ImportResult result = importUrdf("<robot name='r'>" + parts + "</robot>", {freeBase, ""});
  EXPECT_TRUE(result.good);
  return result.system;
}

// A block of 2 kg on a horizontal rail.
KtStatedSystem slider(const std::string& more) {
  return robotOf("<link name='base'/>" + bodyOf("block") + jointOf("prismatic", "block", more));
}

struct Trace {
  SimulateResult result;
  std::string error;
  std::vector<std::vector<std::string>> rows;  // of the CSV, the header first
  double at(std::size_t row, const std::string& column) const {
    const auto& names = rows.front();
    const auto found = std::find(names.begin(), names.end(), column);
    EXPECT_NE(found, names.end()) << column;
    return std::stod(rows[row][static_cast<std::size_t>(found - names.begin())]);
  }
};

Trace traced(KtStatedSystem& system, SimulateOptions options) {
  Trace trace;
  options.csvFile =
      pathOf(std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + ".csv");
  EXPECT_TRUE(simulate(system, options, trace.result, trace.error)) << trace.error;
  std::istringstream lines(textOf(options.csvFile));
  for (std::string line; std::getline(lines, line);) {
    trace.rows.emplace_back();
    std::istringstream fields(line);
    for (std::string field; std::getline(fields, field, ',');) trace.rows.back().push_back(field);
  }
  return trace;
}

double positionOf(const KtStatedSystem& system, KtU32 joint = 0) {
  return system.state().positionStates()[0].jointPositions()[joint];
}

void setRate(KtStatedSystem& system, double rate) {
  KtVelocityState velocity = system.state().velocityStates()[0];
  velocity.jointVelocities()[0] = rate;
  system.setIndividualVelocityState(0, velocity);
}

// At 2.5 m/s^2 it reaches its greatest rate in step 201, and its limit thereafter.
TEST(Simulate, ASummaryTellsWhatWasHitAndWhereTheEnergyWent) {
  const std::string torque = fileOf("push.csv", "time,block\n0,5\n");
  SimulateOptions options{0.35, 1e-3, {}, {}, false, torque, ""};
  for (const bool stops : {false, true}) {
    KtStatedSystem block =
        slider("<limit lower='-1' upper='0.1001' effort='50' velocity='0.5001'/>");
    options.stopsAtLimits = stops;
    const Trace r = traced(block, options);
    EXPECT_EQ(r.rows.at(351).back(), "block");
    EXPECT_EQ(r.rows.at(2).size() + 1, r.rows.at(351).size());  // nothing hit: an empty field
    EXPECT_EQ(r.at(351, "block.qd") > 0.4, !stops);
    const std::string text = describeSimulation(r.result);
    EXPECT_THAT(text, HasSubstr("limit of joint \"block\": first at "));
    EXPECT_THAT(text, HasSubstr("greatest rate of joint \"block\": first at 0.201 s"));
    EXPECT_THAT(text, testing::ContainsRegex("of that by torques [^-]* J, .*cut rates -.* J"));
    EXPECT_EQ(text.find("limits -0.2") != std::string::npos, stops) << text;
    EXPECT_EQ(text.find("kept their rates") != std::string::npos, !stops);
    EXPECT_THAT(text, testing::Not(HasSubstr("drift")));
  }
  KtStatedSystem arm = modelOf("puma560");
  const Trace fall = traced(arm, {0.1, 3e-5, {}, {}, false, "", ""});
  EXPECT_EQ(fall.result.kineticAfter, fall.at(fall.rows.size() - 1, "kineticEnergy"));
  EXPECT_THAT(describeSimulation(fall.result),
              testing::AllOf(HasSubstr("energy drift "), HasSubstr("nothing was hit")));
}

TEST(Simulate, RowsAreWhatTheLibraryAnswers) {
  KtStatedSystem system = modelOf("two-link-arm");
  // The forearm goes by quotes here, and the upper arm gets its torque from 0.01 s on.
  const std::string torque = fileOf(
      "arm.csv", "time, \"forearm\",upper arm\r\n\r\n0,-2,0\r\n0.01,1.5,3e1\r\n0.012,0,0\r\n");
  SimulateOptions options{
      0.0115, 1e-3, KtSimulation::Method::kArticulated, KtVector(0, 1, 5), false, torque, ""};
  KtStatedSystem moved = system;
  const Trace r = traced(moved, options);
  ASSERT_EQ(r.rows.size(), 14U);
  EXPECT_THAT(r.rows[0], ElementsAre("time", "upper arm.q", "upper arm.qd", "upper arm.qdd",
                                     "forearm.q", "forearm.qd", "forearm.qdd", "base.x", "base.y",
                                     "base.z", "base.qw", "base.qx", "base.qy", "base.qz",
                                     "kineticEnergy", "potentialEnergy", "limitsHit"));
  EXPECT_EQ(r.at(1, "base.z"), 0.5);
  EXPECT_EQ(r.at(1, "base.qw"), 1.0);
  const double times[] = {0.0, 0.009, 0.01, 0.0115};
  const std::size_t rows[] = {1, 10, 11, 13};
  for (std::size_t k = 0; k < 4; ++k) {
    const std::size_t row = rows[k];
    EXPECT_EQ(r.at(row, "time"), times[k]);
    EvaluateOptions at;
    at.upGravity = options.upGravity;
    at.q = {{r.at(row, "upper arm.q"), r.at(row, "forearm.q")}};
    at.qd = {{r.at(row, "upper arm.qd"), r.at(row, "forearm.qd")}};
    at.tau = row < 11 ? std::vector<double>{0, -2} : std::vector<double>{30, 1.5};
    Json evaluated;
    std::string error;
    ASSERT_TRUE(evaluate(system, at, evaluated, error)) << error;
    const Json& m = evaluated["manipulators"][0];
    const Json& expected = m["forwardDynamics"]["jointAccelerations"];
    EXPECT_NEAR(r.at(row, "upper arm.qdd"), expected[0].get<double>(), 1e-10) << row;
    EXPECT_NEAR(r.at(row, "forearm.qdd"), expected[1].get<double>(), 1e-10) << row;
    EXPECT_EQ(r.at(row, "kineticEnergy"), m["kineticEnergy"].get<double>());
    const double stretch = r.at(row, "upper arm.q") - 1.5707963267948966;  // of 8 N m/rad
    EXPECT_NEAR(r.at(row, "potentialEnergy"),
                m["potentialEnergy"].get<double>() + 4.0 * stretch * stretch, 1e-12);
  }
}

TEST(Simulate, GoesOnFromAFileToTheLastBit) {
  for (const bool freeBase : {false, true}) {
    for (const auto method :
         {KtSimulation::Method::kArticulated, KtSimulation::Method::kComposite}) {
      for (const double step : {1e-3, 3e-3, 1.0 / 240.0}) {
        KtStatedSystem whole = modelOf("puma560");
        Arm arm = whole.system().manipulators()[0];
        arm.setIsFixedBase(!freeBase);
        arm.setMassProperties(Mass::uniformSolidSphere(10.0, 0.2));
        const KtManipulatorSystemState state = whole.state();
        whole.setFromManipulator(arm);
        whole.setState(state);
        KtStatedSystem first = whole;
        Trace a = traced(first, {60 * step, step, method, {}, false, "", ""});
        ASSERT_TRUE(KtXmlWriter::writeFile(pathOf("half.xml"), first));
        KtStatedSystem second;
        ASSERT_TRUE(KtXmlReader::readFile(pathOf("half.xml"), second));
        const Trace b = traced(second, {60 * step, step, method, {}, false, "", ""});
        const Trace c = traced(whole, {120 * step, step, method, {}, false, "", ""});
        EXPECT_TRUE(second.state() == whole.state()) << step;
        ASSERT_EQ(b.rows.size(), 62U);
        a.rows.insert(a.rows.end(), b.rows.begin() + 2, b.rows.end());
        EXPECT_EQ(a.rows, c.rows) << step;
      }
    }
  }
}

TEST(Simulate, StepsEndWherePeopleExpect) {
  const TimeGrid tenths(0.0, 0.75, 0.1);
  EXPECT_EQ(tenths.steps(), 8U);
  EXPECT_EQ(tenths.time(3), 0.3);  // 3 * 0.1 is not
  EXPECT_EQ(tenths.time(8), 0.75);
  EXPECT_EQ(TimeGrid(0.3, 0.4, 0.1).time(4), 0.7);
  EXPECT_EQ(TimeGrid(-0.3, 0.4, 0.1).time(4), 0.1);
  EXPECT_EQ(TimeGrid(0.25, 0.5, 0.1).time(1), 0.35);
  EXPECT_EQ(TimeGrid(0.0, 1e4, 1e-3).steps(), 10000000U);
  EXPECT_EQ(TimeGrid(0.0, 0.0, 1e-3).steps(), 0U);
}

TEST(Simulate, MimicJointsFollow) {
  const std::string parts =
      "<link name='base'/>" + bodyOf("leader", "<origin xyz='0 0 -0.5'/>") +
      bodyOf("follower", "<origin xyz='0 0 -0.2'/>") +
      jointOf("continuous", "leader", "<axis xyz='1 1 0'/>") +
      jointOf("continuous", "follower",
              "<axis xyz='0 1 0'/><mimic joint='to leader' multiplier='-1.5' offset='0.2'/>");
  KtStatedSystem system = robotOf(parts);
  SimulateOptions options{1.0, 1e-3, KtSimulation::Method::kAutomatic, {}, false, "", ""};
  EXPECT_TRUE(simulationNotes(system, options).empty());
  const Trace r = traced(system, options);
  EXPECT_LT(r.result.constraintError, 1e-12);
  const KtU32 leader = system.system().manipulators()[0].linkIndexByIdentifier("leader");
  EXPECT_GT(std::abs(positionOf(system, leader)), 1e-2);
  EXPECT_NEAR(positionOf(system, 1 - leader), -1.5 * positionOf(system, leader) + 0.2, 1e-12);
  options.method = KtSimulation::Method::kArticulated;
  EXPECT_THAT(simulationNotes(system, options), ElementsAre(HasSubstr("equality constraints")));
}

TEST(Simulate, NotesDampingThatTheStepIsTooLongFor) {
  // Rates overshoot beyond h c / m = 2, at c = 4000.
  for (const auto& [damping, grows] : {std::pair{3900.0, false}, {4100.0, true}}) {
    KtStatedSystem system =
        slider("<limit lower='-99' upper='99' effort='9' velocity='999'/><dynamics damping='" +
               std::to_string(damping) + "'/>");
    setRate(system, 1e-3);
    const SimulateOptions options{0.2, 1e-3, KtSimulation::Method::kAutomatic, {}, false, "", ""};
    EXPECT_EQ(!simulationNotes(system, options).empty(), grows);
    const Trace r = traced(system, options);
    EXPECT_EQ(std::abs(r.at(201, "block.qd")) > 1e-3, grows);
  }
}

TEST(TorqueTable, TellsWhatIsWrong) {
  const struct {
    const char *text, *complaint;
  } cases[] = {
      {"", "t.csv:1: empty"},
      {"t,a\n", "t.csv:1: the header begins with \"t\""},
      {"time,a,c\n", "t.csv:1: there is no joint \"c\""},
      {"time,a,a\n", "t.csv:1: \"a\" has two columns"},
      {"time,twin\n", "t.csv:1: more than one joint is called \"twin\""},
      {"time,a\n0,1\n\n1,x\n", "t.csv:4: \"x\" is not a number"},
      {"time,a\n0,\n", "t.csv:2: \"\" is not a number"},
      {"time,a\n0,nan\n", "t.csv:2: \"nan\" is not a number"},
      {"time,a\n1,1\n1,2\n", "t.csv:3: the time 1 is not after"},
      {"time,a\n1,1,\n", "t.csv:2: 3 values, but the header has 2"},
      {"time,a\n1,\"1\n", "t.csv:2: quotation marks are not closed"},
  };
  const std::vector<std::string> joints = {"a", "twin", "twin", "b\"\n,c"};
  TorqueTable table;
  std::string error;
  for (const auto& c : cases) {
    EXPECT_FALSE(table.read(c.text, "t.csv", joints, error)) << c.text;
    EXPECT_THAT(error, HasSubstr(c.complaint));
  }
  std::vector<double> torques(4, 7.0);
  ASSERT_TRUE(table.read("\xEF\xBB\xBFtime,\"b\"\"\n,c\"\n1, +2e1\n3,4", "t.csv", joints, error))
      << error;
  EXPECT_FALSE(table.advance(0.5, 0.0, torques));
  EXPECT_TRUE(table.advance(1.5, 0.0, torques));
  EXPECT_THAT(torques, ElementsAre(7, 7, 7, 20));
  EXPECT_FALSE(table.advance(2.0, 0.0, torques));
  EXPECT_TRUE(table.advance(3.0 - 1e-12, 1e-9, torques));
  EXPECT_EQ(torques[3], 4.0);
}

// A bob of 2 kg, 0.5 m below a hinge about y that stands 1 m above the origin, with a rotor.
KtStatedSystem pendulum() {
  const KtStatedSystem system = robotOf(
      "<link name='base'/>" + bodyOf("rod", "<origin xyz='0 0 -0.5'/>") +
      jointOf("continuous", "rod",
              "<origin xyz='0 0 1'/><axis xyz='0 1 0'/><dynamics damping='5' friction='3'/>"));
  KtIndividualManipulator arm = system.system().manipulators()[0];
  KtManipulatorLink& rod = *arm.linkByIdentifier("rod");
  KtJointActuator actuator = rod.jointActuator();
  actuator.setInertia(0.001);
  actuator.setGearRatio(10.0);
  rod.setJointActuator(actuator);
  KtStatedSystem result;
  result.setFromManipulator(arm);
  result.setEnvironment(system.environment());
  return result;
}

TEST(Evaluate, APendulumObeysItsClosedForms) {
  const KtStatedSystem system = pendulum();
  const double q = 0.3, qd = 1.7, qdd = 0.9, tau = 2.5, g = 9.81;
  EvaluateOptions options;
  options.q = {{q}};
  options.qd = {{qd}};
  options.qdd = {{qdd}};
  options.tau = {{tau}};
  Json result;
  std::string error;
  ASSERT_TRUE(evaluate(system, options, result, error)) << error;
  const Json& m = result["manipulators"][0];
  const double inertia = 0.2 + 2.0 * 0.25 + 0.1;  // body, Steiner, rotor behind the gear
  const double weight = 2.0 * g * 0.5 * std::sin(q);
  const auto near = [](const Json& json, double value) {
    EXPECT_NEAR(json.get<double>(), value, 1e-13);
  };
  near(m["massMatrix"][0][0], inertia);
  near(m["gravityTorques"][0], weight);
  near(m["inverseDynamics"]["jointTorques"][0], inertia * qdd + weight);
  near(m["forwardDynamics"]["jointAccelerations"][0], (tau - weight) / inertia);
  near(m["kineticEnergy"], 0.5 * inertia * qd * qd);
  near(m["potentialEnergy"], 2.0 * g * (1.0 - 0.5 * std::cos(q)));
  near(m["centerOfMass"][0], -0.5 * std::sin(q));
  // The base carries the weight and what moves the bob: m a, and its moment about the origin.
  const double c = std::cos(q), s = std::sin(q);
  const double ax = 0.5 * (qd * qd * s - qdd * c), az = 0.5 * (qd * qd * c + qdd * s);
  const Json& force = m["inverseDynamics"]["baseForce"];
  near(force[0], 2.0 * ax);
  near(force[2], 2.0 * (az + g));
  near(force[4], 0.2 * qdd + (1.0 - 0.5 * c) * 2.0 * ax + 0.5 * s * 2.0 * (az + g));
  const Json& rod = m["links"][1];
  EXPECT_EQ(m["links"][0]["label"], "base");
  EXPECT_EQ(m["joints"], Json::array({"rod"}));
  near(rod["velocity"]["angular"][1], qd);
  near(rod["primaryFrame"]["translation"][2], 1.0);
  near(rod["primaryFrame"]["rotation"][0], std::cos(0.5 * q));
  near(rod["primaryFrame"]["rotation"][1], 0.0);
  near(rod["primaryFrame"]["rotation"][2], std::sin(0.5 * q));
}

}  // namespace
