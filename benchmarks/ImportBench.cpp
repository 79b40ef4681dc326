// What the command-line tool does with a robot's file: it reads the largest URDF file of a folder
// into a stated system, writes that, and reads it back. The folder is named by the environment
// variable KT_ROBOT_FILES.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

#include "ImportUrdf.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace {

namespace fs = std::filesystem;

constexpr double kBar = 100.0;  // ms, for each of them

// The largest one; an empty path if there is none.
fs::path largestRobot() {
  const char* folder = std::getenv("KT_ROBOT_FILES");
  fs::path largest;
  std::uintmax_t size = 0;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(folder != nullptr ? folder : "", none)) {
    if (entry.path().extension() != ".urdf" || entry.file_size() <= size) continue;
    largest = entry.path();
    size = entry.file_size();
  }
  return largest;
}

ImportResult importFile(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  return importUrdf(text, {});
}

// A file of the system that goes with this object.
class SystemFile {
 public:
  SystemFile() { close(mkstemp(name_.data())); }
  ~SystemFile() { std::remove(name_.c_str()); }
  SystemFile(const SystemFile&) = delete;
  SystemFile& operator=(const SystemFile&) = delete;

  const std::string& name() const { return name_; }

 private:
  std::string name_ = (fs::temp_directory_path() / "kt_bench_import.XXXXXX").string();
};

// Tells which rows take longer than they should.
class Reporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      ++rows_;
      if (!run.error_occurred && run.GetAdjustedRealTime() < kBar) continue;
      std::printf("%s: not under %.0f ms\n", run.benchmark_name().c_str(), kBar);
      ++late_;
    }
  }
  void printSummary() const {
    std::printf("%d of %d rows under %.0f ms\n", rows_ - late_, rows_, kBar);
  }

 private:
  int rows_ = 0;
  int late_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  const fs::path robot = largestRobot();
  if (robot.empty()) {
    std::printf("No robots: KT_ROBOT_FILES names no folder of them.\n");
    return 0;
  }
  const SystemFile file;
  const ImportResult imported = importFile(robot);
  KtStatedSystem loaded;
  if (!imported.good || !KtXmlWriter::writeFile(file.name(), imported.system) ||
      !KtXmlReader::readFile(file.name(), loaded) || !(loaded == imported.system)) {
    std::fprintf(stderr, "%s can't be imported, written and read back.\n", robot.c_str());
    return 1;
  }
  std::printf("%s: %ju bytes, %u joints; as a system %ju bytes\n", robot.filename().c_str(),
              fs::file_size(robot), loaded.system().manipulators()[0].jointDof(),
              fs::file_size(file.name()));

  const auto add = [](const char* row, auto call) {
    benchmark::RegisterBenchmark(row, [call](benchmark::State& state) {
      for (auto _ : state) call();
    })->Unit(benchmark::kMillisecond);
  };
  add("import", [&] { benchmark::DoNotOptimize(importFile(robot).good); });
  add("write", [&] { KtXmlWriter::writeFile(file.name(), imported.system); });
  add("load", [&] {
    KtStatedSystem system;
    benchmark::DoNotOptimize(KtXmlReader::readFile(file.name(), system));
  });
  Reporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.printSummary();
  return 0;
}
