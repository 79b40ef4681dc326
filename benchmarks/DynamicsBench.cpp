// Kinematics and dynamics of random mechanisms, by the library and by others in the same run.
//
// Every result is compared with the reference, on several states, before it is timed. A round times
// the library, the others, the others again in opposite order, and the library again, so that a
// machine that changes its speed does so for all of them.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "DynamicsSubject.h"

#ifndef KT_BENCH_KDL
std::unique_ptr<Subject> makeKdl(const mechanisms::Mechanism&, const States&) {
  return nullptr;
}
#endif
#ifndef KT_BENCH_MUJOCO
std::unique_ptr<Subject> makeMujoco(const mechanisms::Mechanism&, const States&) {
  return nullptr;
}
#endif

namespace {

constexpr std::size_t kPool = 256;  // so that nothing cached for an equal state can be of use
constexpr std::size_t kChecked = 8;
constexpr std::size_t kCheckedTracks = 2;  // of steps: the reference takes long for them
constexpr double kTolerance = 1e-8;        // relative
constexpr int kRounds = 51;
constexpr double kBlock = 3e-3;  // s

constexpr const char* kUsage =
    "Usage: kt_bench_dynamics [--benchmark_filter=REGEX] [--benchmark_list_tests]\n"
    "       kt_bench_dynamics --count=ROW[/LIBRARY] [--calls=N]\n"
    "\n"
    "Times the rows, such as chain7/id, whose names match. Other options of Google Benchmark are\n"
    "accepted and have no effect.\n"
    "\n"
    "--count carries a row's operation out N times (256), by this library or a named other one, "
    "and\n"
    "does nothing else: for tools that count instructions. The difference of two runs is free of\n"
    "what comes before the first call.\n";

struct NamedOperation {
  Operation operation;
  const char* name;
};
constexpr NamedOperation kOperations[] = {
    {Operation::kForwardKinematics, "fk"},
    {Operation::kInverseDynamics, "id"},
    {Operation::kMassMatrix, "mass"},
    {Operation::kArticulatedDynamics, "fd-articulated"},
    {Operation::kMassMatrixDynamics, "fd-mass"},
    {Operation::kArticulatedStep, "step-articulated"},
    {Operation::kMassMatrixStep, "step-mass"},
};

struct NamedLibrary {
  const char* name;
  std::unique_ptr<Subject> (*make)(const mechanisms::Mechanism&, const States&);
};
// This library is the first.
constexpr NamedLibrary kLibraries[] = {
    {"library", makeLibrary},
    {"KDL", makeKdl},
    {"MuJoCo", makeMujoco},
};
constexpr std::size_t kLibraryCount = std::size(kLibraries);

std::string rowName(const mechanisms::Mechanism& mechanism, const NamedOperation& operation) {
  return mechanism.name + "/" + operation.name;
}

// CPU time of this program, which a busy machine doesn't stretch.
double now() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The greatest difference over the greatest entry; not finite where something is wrong.
double relativeDifference(const Numbers& numbers, const Numbers& expected) {
  if (numbers.size() != expected.size()) return HUGE_VAL;
  double difference = 0.0;
  double size = std::numeric_limits<double>::min();
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const double d = std::abs(numbers[i] - expected[i]);
    if (!std::isfinite(d)) return HUGE_VAL;
    difference = std::max(difference, d);
    size = std::max(size, std::abs(expected[i]));
  }
  return difference / size;
}

// A library in one row of the table.
struct Column {
  Subject* subject = nullptr;  // null: it doesn't have the operation
  std::size_t first = 0;       // state that the next block starts with
  std::size_t calls = 0;       // of a block
  double roundTime = 0.0;      // of one call, in the round that runs
  std::vector<double> times, ratios;

  double run(Operation operation) {
    const double start = now();
    subject->run(operation, first, calls);
    const double time = now() - start;
    first = (first + calls) % kPool;
    return time;
  }
  // Finds how many calls make a block, which also warms up.
  void calibrate(Operation operation) {
    calls = kPool;
    run(operation);
    const double perCall = run(operation) / static_cast<double>(calls);
    calls = std::max<std::size_t>(16, static_cast<std::size_t>(kBlock / perCall));
  }
};

class Bench {
 public:
  // Runs the rows that match; answers whether all results were right.
  bool run(const std::regex& filter) {
    bool allRight = true;
    for (const mechanisms::Mechanism& mechanism : mechanisms::all()) {
      std::vector<NamedOperation> selected;
      for (const NamedOperation& operation : kOperations) {
        if (std::regex_search(rowName(mechanism, operation), filter)) selected.push_back(operation);
      }
      if (selected.empty()) continue;
      const States states = mechanisms::randomStates(mechanism, kPool);
      std::vector<std::unique_ptr<Subject>> subjects;
      for (const NamedLibrary& library : kLibraries) {
        subjects.push_back(library.make(mechanism, states));
      }
      for (const NamedOperation& operation : selected) {
        std::vector<Column> columns(kLibraryCount);
        for (std::size_t i = 0; i < kLibraryCount; ++i) {
          Subject* subject = subjects[i].get();
          if (subject != nullptr && subject->offers(operation.operation)) {
            columns[i].subject = subject;
          }
        }
        if (check(mechanism, states, operation, columns)) {
          time(operation.operation, columns);
          print(rowName(mechanism, operation), columns);
          if (isStep(operation.operation)) keepStepRates(rowName(mechanism, operation), columns);
        } else {
          allRight = false;
        }
      }
    }
    if (rows_ > 0) {
      printStepRates();
      std::printf(
          "\nMedians of %d rounds; x: the library's time over the other's, the median of "
          "the ratios within\neach round. Largest relative difference from the reference: "
          "%.1e.\n",
          kRounds, largestDifference_);
    } else if (allRight) {
      std::printf("No row matches.\n");
    }
    return allRight;
  }

 private:
  bool check(const mechanisms::Mechanism& mechanism, const States& states,
             const NamedOperation& operation, const std::vector<Column>& columns) {
    double differences[kLibraryCount] = {};
    const bool steps = isStep(operation.operation);
    for (std::size_t s = 0; s < (steps ? kCheckedTracks : kChecked); ++s) {
      const Numbers expected = referenceResult(mechanism, states[s], operation.operation);
      for (std::size_t i = 0; i < kLibraryCount; ++i) {
        Subject* subject = columns[i].subject;
        if (subject == nullptr) continue;
        subject->run(operation.operation, s, steps ? kStepsPerState : 1);
        const double difference =
            relativeDifference(subject->result(operation.operation, s), expected);
        differences[i] = std::max(differences[i], difference);
      }
    }
    bool right = true;
    for (std::size_t i = 0; i < kLibraryCount; ++i) {
      largestDifference_ = std::max(largestDifference_, differences[i]);
      if (differences[i] <= kTolerance) continue;
      std::fprintf(stderr, "%s: %s differs from the reference by %.1e, relative\n",
                   rowName(mechanism, operation).c_str(), kLibraries[i].name, differences[i]);
      right = false;
    }
    return right;
  }

  static void time(Operation operation, std::vector<Column>& columns) {
    std::vector<Column*> order;
    for (Column& column : columns) {
      if (column.subject == nullptr) continue;
      column.calibrate(operation);
      order.push_back(&column);
    }
    for (int round = 0; round < kRounds; ++round) {
      for (Column* column : order) column->roundTime = column->run(operation);
      std::reverse(order.begin(), order.end());
      for (Column* column : order) {
        const double total = column->roundTime + column->run(operation);
        column->roundTime = total / (2.0 * static_cast<double>(column->calls));
      }
      std::reverse(order.begin(), order.end());
      for (Column* column : order) {
        column->times.push_back(column->roundTime);
        column->ratios.push_back(columns[0].roundTime / column->roundTime);
      }
    }
  }

  void print(const std::string& row, const std::vector<Column>& columns) {
    if (rows_++ == 0) {
      std::printf("%-24s %12s", "operation, ns per call", kLibraries[0].name);
      for (std::size_t i = 1; i < kLibraryCount; ++i)
        std::printf(" %12s %7s", kLibraries[i].name, "x");
      std::printf("\n");
    }
    std::printf("%-24s", row.c_str());
    for (std::size_t i = 0; i < kLibraryCount; ++i) {
      const Column& column = columns[i];
      if (column.subject == nullptr) {
        std::printf(" %12s %7s", "-", "-");
        continue;
      }
      std::printf(" %12.0f", 1e9 * median(column.times));
      if (i > 0) std::printf(" %7.2f", median(column.ratios));
    }
    std::printf("\n");
    std::fflush(stdout);
  }

  void keepStepRates(const std::string& row, const std::vector<Column>& columns) {
    char text[32];
    std::snprintf(text, sizeof text, "%-24s", row.c_str());
    stepRates_ += text;
    for (const Column& column : columns) {
      const double rate = column.subject != nullptr ? 1.0 / median(column.times) : 0.0;
      std::snprintf(text, sizeof text, " %12.0f", rate);
      stepRates_ += rate > 0.0 ? text : "            -";
    }
    stepRates_ += "\n";
  }
  void printStepRates() const {
    if (stepRates_.empty()) return;
    std::printf("\n%-24s", "steps per second");
    for (const NamedLibrary& library : kLibraries) std::printf(" %12s", library.name);
    std::printf("\n%s", stepRates_.c_str());
  }

  int rows_ = 0;
  double largestDifference_ = 0.0;
  std::string stepRates_;  // a table of them
};

// Carries out one row's operation; answers false if there is no such row.
bool count(std::string_view row, std::size_t calls) {
  for (const mechanisms::Mechanism& mechanism : mechanisms::all()) {
    for (const NamedOperation& operation : kOperations) {
      const std::string name = rowName(mechanism, operation);
      for (const NamedLibrary& library : kLibraries) {
        const bool isFirst = &library == kLibraries;
        if (row != name + "/" + library.name && !(isFirst && row == name)) continue;
        const auto subject = library.make(mechanism, mechanisms::randomStates(mechanism, kPool));
        if (subject == nullptr || !subject->offers(operation.operation)) return false;
        subject->run(operation.operation, 0, calls);
        return true;
      }
    }
  }
  return false;
}

void list() {
  for (const mechanisms::Mechanism& mechanism : mechanisms::all()) {
    for (const NamedOperation& operation : kOperations) {
      std::printf("%s\n", rowName(mechanism, operation).c_str());
    }
  }
}

// What follows the equals sign of an option, if it is that option.
std::optional<std::string> valueOf(std::string_view argument, std::string_view option) {
  if (!argument.starts_with(option)) return std::nullopt;
  argument.remove_prefix(option.size());
  if (!argument.starts_with('=')) return std::nullopt;
  return std::string(argument.substr(1));
}

}  // namespace

int main(int argc, char** argv) {
  std::string filter = ".";
  std::string counted;
  std::size_t calls = kPool;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (const auto pattern = valueOf(argument, "--benchmark_filter")) {
      filter = *pattern == "all" ? "." : *pattern;
    } else if (const auto row = valueOf(argument, "--count")) {
      counted = *row;
    } else if (const auto number = valueOf(argument, "--calls")) {
      calls = std::strtoull(number->c_str(), nullptr, 10);
    } else if (argument == "--benchmark_list_tests" || argument == "--benchmark_list_tests=true") {
      list();
      return 0;
    } else if (!argument.starts_with("--benchmark_")) {
      const bool isHelp = argument == "--help" || argument == "-h";
      std::fputs(kUsage, isHelp ? stdout : stderr);
      return isHelp ? 0 : 1;
    }
  }
  if (!counted.empty()) {
    if (count(counted, calls)) return 0;
    std::fprintf(stderr, "There is no %s.\n", counted.c_str());
    return 1;
  }
  try {
    return Bench().run(std::regex(filter)) ? 0 : 1;
  } catch (const std::regex_error&) {
    std::fprintf(stderr, "%s is no regular expression.\n", filter.c_str());
    return 1;
  }
}
