// Joint models, at a fresh joint parameter in every call, beside one bare sincos with one
// composition of transformations; and the step of the articulated-body recursion over one joint.

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "PlainSpatial.h"
#include "Ratios.h"
#include "ktManipulator/ktManipulator.h"

namespace {

using Dh = KtDenavitHartenberg;

const std::vector<double>& angles() {
  static const std::vector<double> theAngles = [] {
    std::mt19937_64 engine(42);
    std::uniform_real_distribution<double> uniform(-3.0, 3.0);
    std::vector<double> list(kPool);
    for (double& q : list) q = uniform(engine);
    return list;
  }();
  return theAngles;
}

Dh someLink(unsigned jointType, unsigned dhType) {
  Dh link;
  link.setJointType(jointType);
  link.setDhType(dhType);
  link.setPrecursor({{0.1, 0.2, 0.3}, KtOrientation::yRotation(0.4)});
  link.setDhA(0.4318);
  link.setDhD(0.1254);
  link.setDhAlpha(0.7);
  return link;
}

template <unsigned JointType, unsigned DhType>
void transformLibrary(benchmark::State& state) {
  const Dh link = someLink(JointType, DhType);
  const KtLinkKinematics& model = link;
  pass<KtCoordinateSystemTransformation>(
      state, [&](std::size_t i) { return model.calculateTransform(angles()[i]); });
}

// A fixed inboard part, composed with a rotation about z by q and a translation.
void transformPlain(benchmark::State& state) {
  plain::Transformation fixed{{0.1, 0.2, 0.3}, {0.5, 0.5, -0.5, 0.5}};
  benchmark::DoNotOptimize(fixed);
  pass<plain::Transformation>(state, [&](std::size_t i) {
    const double half = 0.5 * angles()[i];
    const double c = std::cos(half);
    const double s = std::sin(half);
    return fixed * plain::Transformation{{0.4318 * c, 0.4318 * s, 0.1254}, {c, 0.0, 0.0, s}};
  });
}

void joinLibrary(benchmark::State& state) {
  const Dh link = someLink(Dh::kRotational, Dh::kCraig);
  const KtLinkKinematics& model = link;
  const KtArticulatedBodyDynamics child(KtRigidBodyMassProperties::defaultObject(),
                                        {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}});
  KtArticulatedBodyDynamics parent = child;
  KtArticulatedBodyDynamics articulated = child;
  model.addChildArbdToParent(articulated, child, 0.3, 0.1, 0.2);
  pass<double>(state, [&](std::size_t i) {
    model.addChildArbdToParent(parent, articulated, angles()[i], 0.1, 0.2);
    return parent.bias()[0];
  });
}

}  // namespace

int main(int argc, char** argv) {
  const auto add = [](const char* name, void (*run)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name, run)->Repetitions(5);
  };
  add("paul/library", transformLibrary<Dh::kRotational, Dh::kPaul>);
  add("paul/plain", transformPlain);
  add("craig/library", transformLibrary<Dh::kRotational, Dh::kCraig>);
  add("craig/plain", transformPlain);
  add("generalCraig/library", transformLibrary<Dh::kRotational, Dh::kGeneralCraig>);
  add("generalCraig/plain", transformPlain);
  add("general/library", transformLibrary<Dh::kRotational, Dh::kGeneral>);
  add("general/plain", transformPlain);
  add("prismatic/library", transformLibrary<Dh::kPrismatic, Dh::kCraig>);
  add("prismatic/plain", transformPlain);
  add("addChildArbdToParent", joinLibrary);
  return runWithRatios(argc, argv, {"paul", "craig", "generalCraig", "general", "prismatic"});
}
