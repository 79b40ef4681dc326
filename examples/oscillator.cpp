// A mass on a prismatic joint with a spring and a damper. The simulated oscillation is compared
// with the closed-form solution.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

constexpr double kMass = 2.0;        // kg
constexpr double kStiffness = 50.0;  // N/m
constexpr double kDamping = 1.0;     // N s/m
constexpr double kRest = 0.1;        // position without spring force, m

KtStatedSystem oscillator() {
  KtDenavitHartenberg slide;
  slide.setJointType(KtDenavitHartenberg::kPrismatic);
  KtSpringProperties spring;
  spring.setSpringConstant(kStiffness);
  spring.setWeightingFactors(KtSpringProperties::Reals(1, 1.0));
  spring.setSpringOffsets(KtSpringProperties::Reals(1, kRest));
  spring.setAssociatedJoints(KtSpringProperties::Labels(1, std::string("mass")));
  KtDamperProperties damper;
  damper.setDamperConstant(kDamping);
  damper.setWeightingFactors(KtDamperProperties::Reals(1, 1.0));
  damper.setAssociatedJoints(KtDamperProperties::Labels(1, std::string("mass")));

  KtManipulatorLink mass;
  mass.setLabel("mass");
  mass.setLinkKinematics(slide);
  mass.setMassProperties(KtRigidBodyMassProperties::uniformSolidSphere(kMass, 0.1));
  mass.setSpringProperties(spring);
  mass.setDamperProperties(damper);
  KtIndividualManipulator manipulator;
  manipulator.addChild(mass);
  KtStatedSystem scene;
  scene.setFromManipulator(manipulator);  // position 0, velocity 0
  return scene;
}

double exact(double time) {
  const double decay = kDamping / (2.0 * kMass);
  const double omega = std::sqrt(kStiffness / kMass - decay * decay);
  return kRest - kRest * std::exp(-decay * time) *
                     (std::cos(omega * time) + decay / omega * std::sin(omega * time));
}

}  // namespace

int main() {
  const KtStatedSystem scene = oscillator();
  KtSimulation simulation(scene);
  double worst = 0.0;
  for (int k = 1; k <= 50000; ++k) {
    simulation.stepTo(k * 1e-4);
    const double time = simulation.state().time();
    const double position = simulation.state().positionStates()[0].jointPositions()[0];
    worst = std::fmax(worst, std::abs(position - exact(time)));
    if (k % 10000 == 0) {
      std::printf("at %.0f s: %8.5f m, exactly %8.5f m\n", time, position, exact(time));
    }
  }
  check(worst < 1e-4, "at 1e-4 s the step is never off by more than 0.1 mm");
  return 0;
}
