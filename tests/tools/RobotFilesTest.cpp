// Descriptions of real robots, of a folder that is given by KT_ROBOT_FILES. The benchmarks compare
// their answers with those of other libraries.
#include "ImportUrdf.h"
#include "Simulate.h"
#include "support/Testing.h"

namespace {

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

class RobotFiles : public testing::TestWithParam<std::string> {};

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
