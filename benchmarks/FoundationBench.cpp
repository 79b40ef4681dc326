// The value types beside the same arithmetic on plain structs, and the throughput of XML.
//
// The pairs run in one process; after the rows a table gives the ratios. Every operation works
// through a pool of values, so that nothing is known at compile time or stays in a register.

#include <benchmark/benchmark.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "PlainSpatial.h"
#include "Ratios.h"
#include "ktManipulator/ktManipulator.h"

namespace {

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
  return runWithRatios(argc, argv, {"compose", "motion", "force"});
}
