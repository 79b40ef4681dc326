// Descriptions of real robots, of a folder that is given by KT_ROBOT_FILES, against MuJoCo.
#include "Evaluate.h"
#include "ImportUrdf.h"
#include "Simulate.h"
#include "support/Testing.h"
#include "tools/RobotPeer.h"

namespace {

// MuJoCo keeps an inertia as principal moments and axes, and finds the axes to about 1e-7 only.
constexpr double kTolerance = 1e-6;

std::vector<std::string> robotFiles() {
  std::vector<std::string> files;
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator(KT_ROBOT_FILES, none)) {
    if (entry.path().extension() == ".urdf") files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  if (files.empty()) files.emplace_back();
  return files;
}

std::string nameOf(const testing::TestParamInfo<std::string>& info) {
  std::string name = std::filesystem::path(info.param).stem().string();
  for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  return name.empty() ? "none" : name;
}

std::string textOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void append(std::vector<double>& list, const Json& json) {
  if (json.is_number()) list.push_back(json.get<double>());
  for (const Json& value : json) {
    if (json.is_array()) append(list, value);
  }
}

// The answers in the form of the peer's ones.
RobotAnswers ownAnswers(const Json& own, bool freeBase) {
  RobotAnswers answers;
  auto& lists = answers.lists;
  append(lists["mass"], own["mass"]);
  append(lists["gravity"], own["gravityTorques"]);
  append(lists["mass matrix"], own["massMatrix"]);
  append(lists["inverse dynamics"], own["inverseDynamics"]["jointTorques"]);
  append(lists["forward dynamics"], own["forwardDynamics"]["jointAccelerations"]);
  append(lists["centre of mass"], own["centerOfMass"]);
  append(lists["energies"], {own["kineticEnergy"], own["potentialEnergy"]});
  if (freeBase) {
    append(lists["inverse dynamics"], own["inverseDynamics"]["baseForce"]);
    append(lists["forward dynamics"], own["forwardDynamics"]["baseAcceleration"]);
  }
  for (std::size_t i = 1; i < own["links"].size(); ++i) {
    const Json& link = own["links"][i];
    const auto r = link["primaryFrame"]["rotation"].get<std::vector<double>>();
    const KtOrientation turn(r[0], r[1], r[2], r[3]);
    append(lists["positions"], link["primaryFrame"]["translation"]);
    for (const KtVector& axis : {turn.xAxis(), turn.yAxis(), turn.zAxis()}) {
      append(lists["axes"], {axis.x, axis.y, axis.z});
    }
    append(lists["velocities"], link["velocity"]["linear"]);
    append(lists["velocities"], link["velocity"]["angular"]);
  }
  return answers;
}

// The largest difference, by the largest entry.
double differenceOf(const std::vector<double>& a, const std::vector<double>& b) {
  if (a.size() != b.size()) return INFINITY;
  double difference = 0.0, largest = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    difference = std::fmax(difference, std::abs(a[i] - b[i]));
    largest = std::fmax(largest, std::abs(b[i]));
  }
  return largest > 0.0 ? difference / largest : difference;
}

void compare(const RobotAnswers& answers, const RobotAnswers& own) {
  if (!answers.whyNot.empty()) std::cout << "not compared with MuJoCo, " << answers.whyNot;
  for (const auto& [what, list] : answers.lists) {
    // A peer tells what pushes a free base; here that isn't gravity's part.
    std::vector<double> ours = own.lists.at(what), theirs = list;
    if (what == "gravity") theirs.resize(ours.size());
    const double difference = differenceOf(ours, theirs);
    std::cout << what << ' ' << difference << "  ";
    EXPECT_LT(difference, kTolerance) << what;
  }
  std::cout << '\n';
}

// Imports, and goes through a file, as a user's system does.
void import(const std::string& from, bool freeBase, KtStatedSystem& system) {
  const KtLogCapture log;
  ImportResult result = importUrdf(textOf(from), {freeBase, ""});
  ASSERT_TRUE(result.good);
  for (const ImportFinding& finding : result.notTaken) {
    EXPECT_GT(finding.line, 0) << finding.text;
  }
  const std::string file =
      std::string(KT_TEST_OUTPUT) + '/' + std::filesystem::path(from).stem().string() + ".xml";
  ASSERT_TRUE(KtXmlWriter::writeFile(file, result.system));
  ASSERT_TRUE(KtXmlReader::readFile(file, system));
  EXPECT_TRUE(system == result.system);
  EXPECT_EQ(log.text(), "");
}

void compareWithAPeer(const std::string& file, bool freeBase) {
  SCOPED_TRACE(freeBase ? "free base" : "fixed base");
  KtStatedSystem system;
  import(file, freeBase, system);
  if (testing::Test::HasFatalFailure()) return;
  const KtIndividualManipulator& robot = system.system().manipulators()[0];
  RobotQuestion question{file, freeBase, {}, {}, {}, {}, {}};
  for (KtU32 i = 0; i < robot.jointDof(); ++i) {
    const KtJointActuator& actuator = robot.linkByIndex(i)->jointActuator();
    question.links.push_back(robot.linkByIndex(i)->label());
    question.q.push_back(
        uniform(std::fmax(actuator.lowerLimit(), -3.0), std::fmin(actuator.upperLimit(), 3.0)));
    question.qd.push_back(uniform());
    question.qdd.push_back(uniform());
    question.tau.push_back(uniform(-10.0, 10.0));
  }
  EvaluateOptions options;
  options.q = question.q;
  options.qd = question.qd;
  options.qdd = question.qdd;
  options.tau = question.tau;
  Json result;
  std::string error;
  ASSERT_TRUE(evaluate(system, options, result, error)) << error;
  const RobotAnswers own = ownAnswers(result["manipulators"][0], freeBase);
#ifdef KT_WITH_MUJOCO
  compare(askMujoco(question), own);
#endif
}

class RobotFiles : public testing::TestWithParam<std::string> {};

TEST_P(RobotFiles, AgreeWithAPeer) {
  if (GetParam().empty()) GTEST_SKIP() << "no robots: KT_ROBOT_FILES names no folder of them";
  generator().seed(20240517);
  for (const bool freeBase : {false, true}) compareWithAPeer(GetParam(), freeBase);
}

// Both methods go through a second, and agree as long as rounding has not grown.
TEST_P(RobotFiles, SimulateByBothMethods) {
  if (GetParam().empty()) GTEST_SKIP() << "no robots: KT_ROBOT_FILES names no folder of them";
#if defined(__SANITIZE_ADDRESS__)
  const double duration = 0.1;
#else
  const double duration = 1.0;
#endif
  for (const bool freeBase : {false, true}) {
    SCOPED_TRACE(freeBase ? "free base" : "fixed base");
    KtStatedSystem start;
    import(GetParam(), freeBase, start);
    if (HasFatalFailure()) return;
    // Only the composite method has the constraints of mimicking joints.
    const bool comparable = start.system().manipulators()[0].stateEqualityConstraints().doc() == 0;
    KtStatedSystem early[2] = {start, start};
    for (const int i : {0, 1}) {
      const KtLogCapture log;
      SimulateOptions options{0.02, 1e-3, {}, {}, false, "", ""};
      options.method =
          i == 0 ? KtSimulation::Method::kArticulated : KtSimulation::Method::kComposite;
      SimulateResult result;
      std::string error;
      ASSERT_TRUE(simulate(early[i], options, result, error)) << error;
      KtStatedSystem late = early[i];
      options.duration = duration;
      EXPECT_TRUE(simulate(late, options, result, error)) << error;
      EXPECT_EQ(log.text(), "");
    }
    if (comparable) {
      EXPECT_TRUE(early[0].state().approxEq(early[1].state(), 1e-9, true));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, RobotFiles, testing::ValuesIn(robotFiles()), nameOf);

}  // namespace
