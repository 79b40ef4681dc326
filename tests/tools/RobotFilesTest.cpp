// Descriptions of real robots, of a folder that is given by KT_ROBOT_FILES, against peers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "Evaluate.h"
#include "ImportUrdf.h"
#include "Simulate.h"
#include "ktManipulator/ktManipulator.h"
#include "support/KtLogCapture.h"
#include "support/Random.h"
#include "tools/RobotPeers.h"

namespace {

constexpr double kTolerance = 1e-8;

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

std::vector<double> listOf(const Json& json) {
  std::vector<double> list;
  for (const Json& value : json) {
    if (value.is_array()) {
      for (const double v : listOf(value)) list.push_back(v);
    } else {
      list.push_back(value.get<double>());
    }
  }
  return list;
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

class RobotFiles : public testing::TestWithParam<std::string> {
 protected:
  RobotFiles() { sampling::generator().seed(20240517); }

  // Imports, and goes through a file, as a user's system does.
  static void import(bool freeBase, KtStatedSystem& system) {
    const KtLogCapture log;
    ImportResult result = importUrdf(textOf(GetParam()), {freeBase, ""});
    ASSERT_TRUE(result.good);
    for (const ImportFinding& finding : result.notTaken) {
      EXPECT_GT(finding.line, 0) << finding.text;
    }
    const std::string file = std::string(KT_TEST_OUTPUT) + '/' +
                             std::filesystem::path(GetParam()).stem().string() + ".xml";
    ASSERT_TRUE(KtXmlWriter::writeFile(file, result.system));
    ASSERT_TRUE(KtXmlReader::readFile(file, system));
    EXPECT_TRUE(system == result.system);
    EXPECT_EQ(log.text(), "");
  }

  static void compare(const char* peer, const RobotAnswers& answers, const Json& own,
                      const std::vector<double>& accelerations) {
    SCOPED_TRACE(peer);
    std::cout << peer << ": ";
    if (!answers.whyNot.empty()) {
      std::cout << "not compared, " << answers.whyNot << '\n';
      return;
    }
    const auto check = [](const char* what, double difference) {
      std::cout << what << ' ' << difference << "  ";
      EXPECT_LT(difference, kTolerance) << what;
    };
    if (answers.mass >= 0.0) {
      check("mass", differenceOf({own["mass"].get<double>()}, {answers.mass}));
    }
    check("gravity", differenceOf(listOf(own["gravityTorques"]), answers.gravityTorques));
    check("mass matrix", differenceOf(listOf(own["massMatrix"]), answers.massMatrix));
    check("forward dynamics", differenceOf(accelerations, answers.accelerations));
    std::cout << '\n';
  }
};

TEST_P(RobotFiles, AgreeWithPeers) {
  if (GetParam().empty()) GTEST_SKIP() << "no robots: KT_ROBOT_FILES names no folder of them";
  for (const bool freeBase : {false, true}) {
    SCOPED_TRACE(freeBase ? "free base" : "fixed base");
    KtStatedSystem system;
    import(freeBase, system);
    if (HasFatalFailure()) return;
    const KtIndividualManipulator& robot = system.system().manipulators()[0];
    RobotQuestion question{GetParam(), freeBase, {}, {}, {}, {}};
    EvaluateOptions options;
    for (KtU32 i = 0; i < robot.jointDof(); ++i) {
      const KtJointActuator& actuator = robot.linkByIndex(i)->jointActuator();
      question.links.push_back(robot.linkByIndex(i)->label());
      question.q.push_back(sampling::uniform(std::fmax(actuator.lowerLimit(), -3.0),
                                             std::fmin(actuator.upperLimit(), 3.0)));
      question.qd.push_back(sampling::uniform());
      question.tau.push_back(sampling::uniform(-10.0, 10.0));
    }
    options.q = question.q;
    options.qd = question.qd;
    options.tau = question.tau;
    Json result;
    std::string error;
    ASSERT_TRUE(evaluate(system, options, result, error)) << error;
    const Json& own = result["manipulators"][0];
    std::vector<double> accelerations = listOf(own["forwardDynamics"]["jointAccelerations"]);
    if (freeBase) {
      const std::vector<double> base = listOf(own["forwardDynamics"]["baseAcceleration"]);
      accelerations.insert(accelerations.end(), base.begin(), base.end());
    }
    std::cout << (freeBase ? "free base\n" : "fixed base\n");
#ifdef KT_WITH_KDL
    compare("  KDL", askKdl(question), own, accelerations);
#endif
#ifdef KT_WITH_MUJOCO
    compare("  MuJoCo", askMujoco(question), own, accelerations);
#endif
  }
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
    import(freeBase, start);
    if (HasFatalFailure()) return;
    // Only the composite method has the constraints of mimicking joints.
    const bool comparable = start.system().manipulators()[0].stateEqualityConstraints().doc() == 0;
    KtStatedSystem early[2] = {start, start};
    for (const int i : {0, 1}) {
      const KtLogCapture log;
      SimulateOptions options{0.02, 1e-3, {}, {}, false, "", ""};
      options.method = i == 0 ? SimulationMethod::kArticulated : SimulationMethod::kComposite;
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
