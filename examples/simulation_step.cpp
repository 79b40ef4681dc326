// Simulates: the step of a dynamic loop, how far a step of first order is off, what happens at
// limits and in collisions, and that a run can be repeated and continued to the last bit.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <string>
#include <vector>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

// The loop's memory of one scene. The tool is KtArbiAccelerationTool or KtCrbiAccelerationTool.
template <class Tool>
class Simulation {
 public:
  explicit Simulation(KtStatedSystem& scene)
      : scene_(scene), tools_(scene.system().numberOfManipulators()) {
    const KtU32 count = scene.system().numberOfManipulators();
    torques_.resize(count);
    accelerations_.resize(count);
    gravity_.resize(count);
    for (KtU32 m = 0; m < count; ++m) {
      torques_[m].jointTorques().resize(scene.system().jointDof(m));
      gravity_[m].resize(scene.system().jointDof(m));
      gravity_[m].setGeneralAcceleration({scene.environment().upGravityVector(), KtVector()});
    }
  }

  // One torque for each joint, on the motor's side. They are 0 until they are set.
  KtXmlVectorType<KtManipulatorTorque>& torques() { return torques_; }
  // What the last step met.
  const KtStatedSystem::ResultVector& results() const { return results_; }

  // One step, from the scene's state to that at a later time.
  void stepTo(double time, KtU32 collisionCheckMode = 0) {
    const KtManipulatorSystem& system = scene_.system();
    active_.setNonredundantState(scene_.state());
    system.processLinkInteractions(active_, scene_.state().time(), torques_);
    active_.generalForceVector().resize(system.numberOfManipulators());
    for (KtU32 m = 0; m < system.numberOfManipulators(); ++m) {
      accelerate(system.manipulators()[m], m);
    }
    for (KtPropagationResultData& result : results_.vectorContainer()) result.reset();
    scene_.propagateSelfTo(time, results_, &active_, collisionCheckMode, 1.0, 1, 0.0);
  }

 private:
  // Computes the accelerations of a manipulator, and leaves them where the step finds them.
  void accelerate(const KtIndividualManipulator& manipulator, KtU32 m) {
    KtManipulatorActiveState& active = active_.manipulatorActiveStateVector()[m];
    KtManipulatorExternalForce& forces = active_.generalForceVector()[m];
    forces.resize(manipulator.jointDof());

    active.setAccelerationState(gravity_[m]);
    for (const KtManipulatorLink* link : manipulator.links()) {
      link->jointActuator().initializeActuatorStates(active);  // motors in step with the joints
    }
    tools_[m].acceleration(scene_, manipulator, torques_[m], forces, accelerations_[m], active,
                           true);
    active.setAccelerationState(accelerations_[m]);
  }

  KtStatedSystem& scene_;
  KtSystemActiveState active_;
  std::vector<Tool> tools_;
  KtXmlVectorType<KtManipulatorTorque> torques_;
  std::vector<KtAccelerationState> gravity_;
  std::vector<KtAccelerationState> accelerations_;
  KtStatedSystem::ResultVector results_;
};

// Makes steps of equal length up to a time. The times come from a count and not from a sum, so that
// they don't depend on where a run began.
template <class Tool>
void run(Simulation<Tool>& simulation, KtStatedSystem& scene, double step, double until) {
  const long last = std::lround(until / step);
  for (long k = std::lround(scene.state().time() / step) + 1; k <= last; ++k) {
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

double angle(const KtStatedSystem& scene, KtU32 joint) {
  return scene.state().positionStates()[0].jointPositions()[joint];
}

double rate(const KtStatedSystem& scene, KtU32 joint) {
  return scene.state().velocityStates()[0].jointVelocities()[joint];
}

double energy(const KtStatedSystem& scene, KtManipulatorActiveState& active) {
  const KtIndividualManipulator& arm = scene.system().manipulators()[0];
  active.setPositionState(scene.state().positionStates()[0]);
  active.setVelocityState(scene.state().velocityStates()[0]);
  const double weight = arm.jointDof() * 9.81;  // of the pendulum's masses
  return arm.computeKineticEnergy(active, nullptr, nullptr) +
         weight * arm.getCenterOfMassInSystem(active).z;
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
  KtStatedSystem scene = pendulum(1);
  Simulation<KtArbiAccelerationTool> simulation(scene);
  const long last = std::lround(5.0 / step);
  for (long k = 1; k <= last; ++k) {
    simulation.stepTo(static_cast<double>(k) * step);
    const double energy = 0.5 * std::pow(rate(scene, 0), 2) + 9.81 * std::sin(angle(scene, 0));
    worst = std::fmax(worst, std::abs(energy));
  }
  place = 2.0 * std::abs(std::sin((angle(scene, 0) - exactAngle(5.0)) / 2.0));
}

// By how much the energy of a pendulum of two rods is off after a time, J. It begins with 0.
double doublePendulum(double step, double duration) {
  KtStatedSystem scene = pendulum(2);
  Simulation<KtArbiAccelerationTool> simulation(scene);
  run(simulation, scene, step, duration);
  KtManipulatorActiveState active;
  return energy(scene, active);
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

void bothTools(const KtStatedSystem& arm) {
  KtStatedSystem articulated = arm, composite = arm;
  Simulation<KtArbiAccelerationTool> one(articulated);
  Simulation<KtCrbiAccelerationTool> other(composite);
  run(one, articulated, 1e-3, 0.2);
  run(other, composite, 1e-3, 0.2);
  check(articulated.state().approxEq(composite.state(), 1e-9, 1e-9),
        "both tools lead to the same state");
}

// Brings joints to rest that stand at a limit and still move outwards, as an end stop does.
void restAtLimits(KtStatedSystem& scene, KtU32 m) {
  const KtPositionState& position = scene.state().positionStates()[m];
  KtVelocityState velocity = scene.state().velocityStates()[m];
  for (const KtManipulatorLink* link : scene.system().manipulators()[m].links()) {
    const double q = position.jointPositions()[link->linkIndex()];
    KtXmlBasicType<double>& rate = velocity.jointVelocities()[link->linkIndex()];
    const KtJointActuator& actuator = link->jointActuator();
    if ((q >= actuator.upperLimit() && rate > 0.0) || (q <= actuator.lowerLimit() && rate < 0.0)) {
      rate = 0.0;
    }
  }
  scene.setIndividualVelocityState(m, velocity);
}

void limits() {
  KtStatedSystem scene = pendulum(1);
  scene.setJointLimit(0, "rod 1", true, -1.0);  // true: the lower limit
  Simulation<KtArbiAccelerationTool> simulation(scene);
  run(simulation, scene, 1e-3, 1.0);
  check(simulation.results()[0].hitJointLimit() && angle(scene, 0) == -1.0,
        "a joint stands exactly at the limit that it hit");
  check(rate(scene, 0) < -5.0, "and keeps its rate, which goes on growing");
  restAtLimits(scene, 0);
  check(rate(scene, 0) == 0.0, "unless the program brings it to rest");
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
  Floored scene(pendulum(1));
  Simulation<KtArbiAccelerationTool> simulation(scene);
  for (long k = 1; k <= 1000; ++k) simulation.stepTo(static_cast<double>(k) * 1e-3, 1);
  check(simulation.results()[0].collisionOccurred(), "an own check is asked in mode 1");
  check(std::sin(angle(scene, 0)) > -0.9 && std::sin(angle(scene, 0)) < -0.89,
        "the position before the collision stays");
  check(scene.state().time() == 1.0, "the time goes on");
}

void sameBits(const KtStatedSystem& arm, const std::string& fileName) {
  KtStatedSystem whole = arm, first = arm;
  Simulation<KtArbiAccelerationTool> simulation(whole), begun(first);
  run(simulation, whole, 1e-3, 0.4);
  run(begun, first, 1e-3, 0.2);
  if (!KtXmlWriter::writeFile(fileName, first)) std::exit(1);

  KtStatedSystem second;
  if (!KtXmlReader::readFile(fileName, second)) std::exit(1);
  Simulation<KtArbiAccelerationTool> continued(second);
  run(continued, second, 1e-3, 0.4);
  check(second == whole, "a run that was saved and continued ends at the same bits");
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "examples/models";
  const std::string fileName = argc > 2 ? argv[2] : "half-way.xml";
  KtStatedSystem arm;
  if (!KtXmlReader::readFile(folder + "/puma560.xml", arm)) return 1;  // messages say why
  bothTools(arm);
  limits();
  collisions();
  sameBits(arm, fileName);
  accuracy();
  return 0;
}
