// A box that flies and tumbles: a manipulator with a free base and no joints.

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

KtStatedSystem flyingBox() {
  KtIndividualManipulator box;
  box.setLabel("box");
  box.setIsFixedBase(false);
  box.setMassProperties(
      KtRigidBodyMassProperties::uniformSolidAxisAlignedRectangularPrism(1.0, 0.2, 0.4, 0.6));
  KtStatedSystem scene;
  scene.setFromManipulator(box);
  KtSystemEnvironment environment;
  environment.setUpGravityVector({0.0, 0.0, 9.81});
  scene.setEnvironment(environment);
  KtVelocityState thrown;
  thrown.setGeneralVelocity({{1.0, 0.0, 5.0}, {0.05, 5.0, 0.05}});  // m/s, rad/s
  scene.setIndividualVelocityState(0, thrown);
  return scene;
}

struct Flight {
  double height;      // after 1 s, m
  double turned;      // greatest change of the angular velocity's direction in the box's axes, rad
  double momentum;    // greatest relative change of the angular momentum
  double spinEnergy;  // relative change of the rotational energy
};

Flight fly(double step) {
  const KtStatedSystem scene = flyingBox();
  const KtIndividualManipulator& box = scene.system().manipulators()[0];
  KtSimulation simulation(scene);
  Flight flight{};
  const KtSecondMoment& inertia = box.massProperties().secondMoment();
  KtVector spin0, momentum0;
  double energy0 = 0.0;
  const int steps = static_cast<int>(std::lround(10.0 / step));
  for (int k = 0; k <= steps; ++k) {
    const KtManipulatorSystemState& state = simulation.state();
    const KtPositionState& position = state.positionStates()[0];
    const KtOrientation& axes = position.coordSysXForm().orientation();
    const KtVector spin = axes.inverse() * state.velocityStates()[0].generalVelocity().angular();
    const KtVector momentum = axes * (inertia * spin);
    const double energy = 0.5 * spin.dot(inertia * spin);
    if (k == 0) spin0 = spin, momentum0 = momentum, energy0 = energy;
    flight.turned = std::fmax(flight.turned, std::acos(spin.unitVector().dot(spin0.unitVector())));
    flight.momentum = std::fmax(flight.momentum, (momentum - momentum0).mag() / momentum0.mag());
    flight.spinEnergy = energy / energy0 - 1.0;
    if (std::abs(state.time() - 1.0) < step / 2.0) {
      flight.height = position.coordSysXForm().translation().z;
    }
    simulation.stepTo((k + 1) * step);
  }
  return flight;
}

}  // namespace

int main() {
  std::printf(
      "  step, s   height after 1 s, m   of 10 s: turned, rad   momentum off   energy off\n");
  double last = 0.0;
  for (const double step : {1e-2, 1e-3, 1e-4}) {
    const Flight flight = fly(step);
    std::printf("  %7.0e   %19.5f   %22.4f   %12.1e   %10.1e\n", step, flight.height, flight.turned,
                flight.momentum, flight.spinEnergy);
    // Velocities are half a step ahead of positions.
    check(std::abs(flight.height - (5.0 - 0.5 * 9.81 * (1.0 + step))) < 1e-9,
          "the height is 5 m/s - 9.81/2 m/s^2, less what the step makes of it");
    check(flight.turned > 3.0, "a spin about the middle axis turns over");
    check(last == 0.0 || std::abs(last / flight.momentum - 10.0) < 0.5,
          "angular momentum is kept to first order");
    last = flight.momentum;
  }
  return 0;
}
