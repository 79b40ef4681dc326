// The value types beside the same arithmetic on plain structs, and the throughput of XML.
//
// The pairs run in one process; after the rows a table gives the ratios. Every operation works
// through a pool of values, so that nothing is known at compile time or stays in a register.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "ktManipulator/ktManipulator.h"

namespace {

constexpr std::size_t kPool = 256;

namespace plain {

struct Vector {
  double x, y, z;
};
struct Quaternion {
  double w, x, y, z;
};
struct Transformation {
  Vector p;
  Quaternion q;
};
struct Spatial {
  Vector linear, angular;
};

inline Vector operator+(Vector a, Vector b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vector operator*(Vector a, double s) {
  return {a.x * s, a.y * s, a.z * s};
}
inline Vector cross(Vector a, Vector b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline Vector rotate(Quaternion q, Vector v) {
  const Vector u{q.x, q.y, q.z};
  const Vector t = cross(u, v) * 2.0;
  return v + t * q.w + cross(u, t);
}
inline Quaternion operator*(Quaternion a, Quaternion b) {
  return {
      a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z, a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
      a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x, a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w};
}
inline Transformation operator*(const Transformation& a, const Transformation& b) {
  return {a.p + rotate(a.q, b.p), a.q * b.q};
}
inline Spatial motion(const Transformation& x, const Spatial& m) {
  const Vector angular = rotate(x.q, m.angular);
  return {rotate(x.q, m.linear) + cross(x.p, angular), angular};
}
inline Spatial force(const Transformation& x, const Spatial& f) {
  const Vector linear = rotate(x.q, f.linear);
  return {linear, rotate(x.q, f.angular) + cross(x.p, linear)};
}

}  // namespace plain

struct Pools {
  std::vector<KtCoordinateSystemTransformation> transformations;
  std::vector<KtGeneralMotion> motions;
  std::vector<KtGeneralForce> forces;
  std::vector<plain::Transformation> plainTransformations;
  std::vector<plain::Spatial> plainSpatials;

  Pools() {
    std::mt19937_64 engine(42);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    const auto vector = [&] { return KtVector(uniform(engine), uniform(engine), uniform(engine)); };
    for (std::size_t i = 0; i < kPool; ++i) {
      KtOrientation q(uniform(engine), uniform(engine), uniform(engine), uniform(engine));
      q.normalize();
      const KtVector p = vector();
      const KtVector a = vector();
      const KtVector b = vector();
      transformations.emplace_back(p, q);
      motions.emplace_back(a, b);
      forces.emplace_back(a, b);
      plainTransformations.push_back({{p.x, p.y, p.z}, {q[0], q[1], q[2], q[3]}});
      plainSpatials.push_back({{a.x, a.y, a.z}, {b.x, b.y, b.z}});
    }
  }
};

const Pools& pools() {
  static const Pools thePools;
  return thePools;
}

/// One iteration is a pass over the pool: out[i] = operation(i).
template <class Out, class Operation>
void pass(benchmark::State& state, Operation operation) {
  std::vector<Out> out(kPool);
  for (auto _ : state) {
    for (std::size_t i = 0; i < kPool; ++i) out[i] = operation(i);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPool));
}

void composeLibrary(benchmark::State& state) {
  const auto& t = pools().transformations;
  pass<KtCoordinateSystemTransformation>(state,
                                         [&](std::size_t i) { return t[i] * t[(i + 1) % kPool]; });
}
void composePlain(benchmark::State& state) {
  const auto& t = pools().plainTransformations;
  pass<plain::Transformation>(state, [&](std::size_t i) { return t[i] * t[(i + 1) % kPool]; });
}
void motionLibrary(benchmark::State& state) {
  const auto& t = pools().transformations;
  const auto& m = pools().motions;
  pass<KtGeneralMotion>(state, [&](std::size_t i) { return t[i] * m[i]; });
}
void motionPlain(benchmark::State& state) {
  const auto& t = pools().plainTransformations;
  const auto& m = pools().plainSpatials;
  pass<plain::Spatial>(state, [&](std::size_t i) { return plain::motion(t[i], m[i]); });
}
void forceLibrary(benchmark::State& state) {
  const auto& t = pools().transformations;
  const auto& f = pools().forces;
  pass<KtGeneralForce>(state, [&](std::size_t i) { return t[i] * f[i]; });
}
void forcePlain(benchmark::State& state) {
  const auto& t = pools().plainTransformations;
  const auto& f = pools().plainSpatials;
  pass<plain::Spatial>(state, [&](std::size_t i) { return plain::force(t[i], f[i]); });
}

KtXmlVectorType<KtXmlBasicType<double>> millionReals() {
  KtXmlVectorType<KtXmlBasicType<double>> list;
  std::mt19937_64 engine(42);
  std::normal_distribution<double> normal(0.0, 10.0);
  for (int i = 0; i < 1000000; ++i) list.pushBack(normal(engine));
  return list;
}

void xmlWrite(benchmark::State& state) {
  const auto list = millionReals();
  std::int64_t bytes = 0;
  for (auto _ : state) {
    std::ostringstream stream;
    KtXmlWriter("bench", stream).writeDocument(list);
    bytes += static_cast<std::int64_t>(stream.view().size());
  }
  state.SetBytesProcessed(bytes);
}

void xmlRead(benchmark::State& state) {
  const std::string text = KtXmlWriter::writeString(millionReals());
  for (auto _ : state) {
    std::istringstream stream(text);
    KtXmlVectorType<KtXmlBasicType<double>> list;
    if (!KtXmlReader("bench", stream).readDocument(list)) state.SkipWithError("not read");
    benchmark::DoNotOptimize(list);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
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

  void printRatios() const {
    std::printf("\n%-14s %12s %12s %8s\n", "operation", "library ns", "plain ns", "ratio");
    for (const char* name : {"compose", "motion", "force"}) {
      const auto library = times_.find(std::string(name) + "/library");
      const auto plainTime = times_.find(std::string(name) + "/plain");
      if (library == times_.end() || plainTime == times_.end()) continue;
      std::printf("%-14s %12.2f %12.2f %8.2f\n", name, library->second, plainTime->second,
                  library->second / plainTime->second);
    }
  }

 private:
  std::map<std::string, double> times_;
};

}  // namespace

int main(int argc, char** argv) {
  const auto add = [](const char* name, void (*run)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name, run)->Repetitions(5);
  };
  add("compose/library", composeLibrary);
  add("compose/plain", composePlain);
  add("motion/library", motionLibrary);
  add("motion/plain", motionPlain);
  add("force/library", forceLibrary);
  add("force/plain", forcePlain);
  add("xml/write", xmlWrite);
  add("xml/read", xmlRead);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  Reporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.printRatios();
  return 0;
}
