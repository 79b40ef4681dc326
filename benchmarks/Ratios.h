#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

/// How many different values an operation works through, so that nothing is known at compile time
/// or stays in a register.
constexpr std::size_t kPool = 256;

/// One iteration is a pass over the pool: out[i] = operation(i).
template <class Out, class Operation>
inline void pass(benchmark::State& state, Operation operation) {
  std::vector<Out> out(kPool);
  for (auto _ : state) {
    for (std::size_t i = 0; i < kPool; ++i) out[i] = operation(i);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPool));
}

/// Keeps the least time of every row for the table of ratios.
class Reporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      auto& time = times_[run.run_name.function_name];
      const double now = run.GetAdjustedCPUTime() / kPool;
      time = time == 0.0 ? now : std::min(time, now);
    }
  }

  /// Prints one row for each pair of rows "name/library" and "name/plain".
  void printRatios(std::initializer_list<const char*> names) const {
    std::printf("\n%-20s %12s %12s %8s\n", "operation", "library ns", "plain ns", "ratio");
    for (const char* name : names) {
      const auto library = times_.find(std::string(name) + "/library");
      const auto plainTime = times_.find(std::string(name) + "/plain");
      if (library == times_.end() || plainTime == times_.end()) continue;
      std::printf("%-20s %12.2f %12.2f %8.2f\n", name, library->second, plainTime->second,
                  library->second / plainTime->second);
    }
  }

 private:
  std::map<std::string, double> times_;
};

/// Runs what was registered, then prints the table of ratios.
inline int runWithRatios(int argc, char** argv, std::initializer_list<const char*> names) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  Reporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.printRatios(names);
  return 0;
}
