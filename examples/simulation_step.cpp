// Simulates: with a class that owns the step, and by the pieces of a step; how far a step of first
// order is off, what happens at limits and in collisions, what becomes of the energy, and that a
// run can be continued to the last bit.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <span>
#include <string>
#include <vector>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

// Makes steps of equal length up to a time. The times come from a count and not from a sum, so that
// they don't depend on where a run began.
void run(KtSimulation& simulation, double step, double until) {
  const long last = std::lround(until / step);
  for (long k = std::lround(simulation.state().time() / step) + 1; k <= last; ++k) {
    simulation.stepTo(static_cast<double>(k) * step);
  }
}

// Point masses of 1 kg on rods of 1 m, each hanging on the one before; all rods are horizontal.
KtStatedSystem pendulum(int rods) {
  KtManipulatorLink rod;
  for (int i = rods; i-- > 0;) {
    KtManipulatorLink outer = rod;
    rod = KtManipulatorLink();
    rod.setLabel("rod " + std::to_string(i + 1));
    KtDenavitHartenberg hinge;
    hinge.setJointType(KtDenavitHartenberg::kRotational);
    hinge.setDhType(KtDenavitHartenberg::kCraig);
    hinge.setDhA(i == 0 ? 0.0 : 1.0);
    hinge.setDhAlpha(KtAngle(i == 0 ? std::numbers::pi / 2.0 : 0.0));
    rod.setLinkKinematics(hinge);
    KtRigidBodyMassProperties mass;
    mass.set(1.0, {1.0, 0.0, 0.0}, {0.0, 1.0, 1.0, 0.0, 0.0, 0.0}, false);
    rod.setMassProperties(mass);
    if (i + 1 < rods) rod.addChild(outer);
  }
  KtIndividualManipulator pendulum;
  pendulum.setLabel("pendulum");
  pendulum.addChild(rod);
  KtStatedSystem scene;
  scene.setFromManipulator(pendulum);
  KtSystemEnvironment environment;
  environment.setUpGravityVector({0.0, 0.0, 9.81});
  scene.setEnvironment(environment);
  return scene;
}

double angle(const KtSimulation& simulation) {
  return simulation.state().positionStates()[0].jointPositions()[0];
}

double rate(const KtSimulation& simulation) {
  return simulation.state().velocityStates()[0].jointVelocities()[0];
}

// The angle of the simple pendulum by Jacobi's elliptic functions (Abramowitz and Stegun, 16.4).
double exactAngle(double time) {
  const double m = 0.5;  // sin^2 of half the amplitude of 90 degrees
  double a[8] = {1.0}, c[8] = {std::sqrt(m)}, b = std::sqrt(1.0 - m);
  for (int n = 1; n < 8; ++n) {
    a[n] = (a[n - 1] + b) / 2.0;
    c[n] = (a[n - 1] - b) / 2.0;
    b = std::sqrt(a[n - 1] * b);
  }
  double phi = std::sqrt(9.81) * time * a[7] * 128.0;
  for (int n = 7; n > 0; --n) phi = (phi + std::asin(c[n] / a[n] * std::sin(phi))) / 2.0;
  const double cd = std::cos(phi) / std::sqrt(1.0 - m * std::pow(std::sin(phi), 2));
  return 2.0 * std::asin(std::sqrt(m) * cd) - std::numbers::pi / 2.0;
}

// The simple pendulum after 5 s: how far its mass is off, m, and the greatest error of its energy
// on the way, J.
void simplePendulum(double step, double& place, double& worst) {
  const KtStatedSystem scene = pendulum(1);
  KtSimulation simulation(scene);
  const long last = std::lround(5.0 / step);
  for (long k = 1; k <= last; ++k) {
    simulation.stepTo(static_cast<double>(k) * step);
    const double energy = 0.5 * std::pow(rate(simulation), 2) + 9.81 * std::sin(angle(simulation));
    worst = std::fmax(worst, std::abs(energy));
  }
  place = 2.0 * std::abs(std::sin((angle(simulation) - exactAngle(5.0)) / 2.0));
}

// By how much the energy of a pendulum of two rods is off after a time, J. It begins with 0.
double doublePendulum(double step, double duration) {
  const KtStatedSystem scene = pendulum(2);
  KtSimulation simulation(scene);
  run(simulation, step, duration);
  return simulation.kineticEnergy() + simulation.potentialEnergy();
}

void accuracy() {
  std::printf("    step, s   error of place, m   of energy, J   two rods, of energy, J\n");
  double lastPlace = 0.0, lastWorst = 0.0;
  for (const double step : {1e-3, 1e-4, 1e-5}) {
    double place = 0.0, worst = 0.0;
    simplePendulum(step, place, worst);
    std::printf("    %7.0e   %17.2e   %12.2e   %22.2e\n", step, place, worst,
                doublePendulum(step, 5.0));
    if (lastPlace > 0.0) {
      check(std::abs(lastPlace / place - 10.0) < 0.1 && std::abs(lastWorst / worst - 10.0) < 0.1,
            "a step of a tenth makes a tenth of the error");
    }
    lastPlace = place;
    lastWorst = worst;
  }
  check(std::abs(doublePendulum(1e-3, 100.0)) > 1.0, "energy drifts where inertia changes");
}

void bothMethods(const KtStatedSystem& arm) {
  KtSimulation articulated(arm, KtSimulation::Method::kArticulated);
  KtSimulation composite(arm, KtSimulation::Method::kComposite);
  run(articulated, 1e-3, 0.2);
  run(composite, 1e-3, 0.2);
  check(articulated.state().approxEq(composite.state(), 1e-9, true),
        "both methods lead to the same state");
}

// One step by its pieces: from a scene's state to that at a later time, under torques of motors.
class Pieces {
 public:
  explicit Pieces(KtStatedSystem& scene) : scene_(scene) {
    torques_.resize(1);
    torques_[0].jointTorques().resize(scene.system().jointDof(0));
    forces_.resize(scene.system().jointDof(0));
    gravity_.resize(scene.system().jointDof(0));
    gravity_.setGeneralAcceleration({scene.environment().upGravityVector(), KtVector()});
  }

  void stepTo(double time) {
    const KtIndividualManipulator& arm = scene_.system().manipulators()[0];
    active_.setNonredundantState(scene_.state());
    scene_.system().processLinkInteractions(active_, scene_.state().time(), torques_);
    KtManipulatorActiveState& active = active_.manipulatorActiveStateVector()[0];
    active.setAccelerationState(gravity_);
    for (const KtManipulatorLink* link : arm.links()) {
      link->jointActuator().initializeActuatorStates(active);  // motors in step with the joints
    }
    tool_.acceleration(scene_, arm, torques_[0], forces_, acceleration_, active, true);
    active.setAccelerationState(acceleration_);
    for (KtPropagationResultData& result : results_.vectorContainer()) result.reset();
    scene_.propagateSelfTo(time, results_, &active_);
  }

 private:
  KtStatedSystem& scene_;
  KtSystemActiveState active_;
  KtArbiAccelerationTool tool_;
  KtXmlVectorType<KtManipulatorTorque> torques_;
  KtManipulatorExternalForce forces_;
  KtAccelerationState gravity_, acceleration_;
  KtStatedSystem::ResultVector results_;
};

void pieces(const KtStatedSystem& arm) {
  KtStatedSystem scene = arm;
  Pieces byHand(scene);
  KtSimulation simulation(arm);
  for (int k = 1; k <= 200; ++k) {
    byHand.stepTo(k * 1e-3);
    simulation.stepTo(k * 1e-3);
  }
  check(scene.state() == simulation.state(), "the step by its pieces gives the same bits");
}

// A controller: each joint is pulled to where it was at the start.
void control(const KtStatedSystem& arm) {
  KtSimulation simulation(arm);
  const KtPositionState start = arm.state().positionStates()[0];
  KtGravitationalTorqueTool weights;
  weights.setManipulator(&arm.system().manipulators()[0]);
  weights.setGravityVector(arm.environment().upGravityVector());
  simulation.setTorqueLaw([&](const KtManipulatorSystemState& state, std::span<double> torques) {
    const KtReArray& weight = weights.gravitationalTorques(simulation.active(), nullptr);
    for (KtU32 i = 0; i < torques.size(); ++i) {
      const double off =
          state.positionStates()[0].jointPositions()[i] - start.jointPositions()[i].value();
      const double rate = state.velocityStates()[0].jointVelocities()[i];
      torques[i] = weight[i][0] - 50.0 * off - 5.0 * rate;
    }
  });
  run(simulation, 1e-3, 0.5);
  check(simulation.state().positionStates()[0].approxEq(start, 1e-6), "a controller holds the arm");
}

void limits() {
  KtStatedSystem scene = pendulum(1);
  scene.setJointLimit(0, "rod 1", true, -1.0);  // true: the lower limit
  KtSimulation keeping(scene), stopping(scene);
  stopping.setLimits(KtSimulation::Limits::kStopRates);
  run(keeping, 1e-3, 1.0);
  run(stopping, 1e-3, 1.0);
  check(keeping.lastStep().limits.size() == 1 && angle(keeping) == -1.0,
        "a joint stands exactly at the limit that it hit");
  check(rate(keeping) < -5.0, "and keeps its rate, which goes on growing");
  check(angle(stopping) == -1.0 && std::abs(rate(stopping)) < 1e-12, "unless an impact takes it");
}

// A scene with a floor 0.9 m below its origin. A manipulator collides with it where the end of a
// link, 1 m along x of its primary frame, comes that low.
class Floored : public KtStatedSystem {
 public:
  explicit Floored(const KtStatedSystem& scene) : KtStatedSystem(scene) {}

  bool checkForCollisions(KtSystemActiveState& activeState, const KtReal&, const KtU32&,
                          const KtReal& tolerance, ResultVector& results) const override {
    const auto& manipulators = system().manipulators();
    results.resizeToAtLeast(manipulators.size());
    bool any = false;
    for (KtU32 m = 0; m < manipulators.size(); ++m) {
      results[m].setCollisionOccurred(false);
      auto& position = activeState.manipulatorActiveStateVector()[m].activePositionState();
      for (const KtManipulatorLink* link : manipulators[m].links()) {
        const KtVector end = link->primaryFrameInSystem(position) * KtVector(1.0, 0.0, 0.0);
        if (end.z > -0.9 + tolerance) continue;
        results[m].setCollisionOccurred(true);
        results[m].setCollidedManipulator(m);
        results[m].setCollidedLink(link->linkIndex());
        any = true;
      }
    }
    return any;
  }
};

void collisions() {
  const Floored scene(pendulum(1));
  KtSimulation simulation(scene);
  simulation.setCollisions(KtSimulation::Collisions::kTakeBackAll);
  run(simulation, 1e-3, 1.0);
  check(simulation.lastStep().collided.size() == 1, "an own check is asked");
  check(std::sin(angle(simulation)) > -0.9 && std::sin(angle(simulation)) < -0.89,
        "the position before the collision stays");
  check(simulation.state().time() == 1.0, "the time goes on");
}

void sameBits(const KtStatedSystem& arm, const std::string& fileName) {
  KtSimulation whole(arm), begun(arm);
  run(whole, 1e-3, 0.4);
  run(begun, 1e-3, 0.2);
  KtStatedSystem scene = arm;
  scene.setState(begun.state());
  if (!KtXmlWriter::writeFile(fileName, scene)) std::exit(1);

  KtStatedSystem later;
  if (!KtXmlReader::readFile(fileName, later)) std::exit(1);
  KtSimulation continued(later);
  run(continued, 1e-3, 0.4);
  check(continued.state() == whole.state(),
        "a run that was saved and continued ends at the same bits");
}

// What has changed the energy of an arm that falls against its limits.
void energy(const KtStatedSystem& arm) {
  KtSimulation simulation(arm);
  simulation.setLimits(KtSimulation::Limits::kStopRates);
  simulation.setKeepsBalance(true);
  run(simulation, 1e-3, 2.0);
  const KtEnergyBalance balance = simulation.energyBalance();
  std::printf("energy changed by %.3f J, at limits by %.3f J, by the integrator by %.3f J\n",
              balance.change(), balance.limits, balance.remainder());
  check(balance.limits < 0.0 && std::abs(balance.remainder()) < 0.01 * std::abs(balance.change()),
        "impacts take energy, and the rest is small");
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "examples/models";
  const std::string fileName = argc > 2 ? argv[2] : "half-way.xml";
  KtStatedSystem arm;
  if (!KtXmlReader::readFile(folder + "/puma560.xml", arm)) return 1;  // messages say why
  bothMethods(arm);
  pieces(arm);
  control(arm);
  limits();
  collisions();
  sameBits(arm, fileName);
  energy(arm);
  accuracy();
  return 0;
}
