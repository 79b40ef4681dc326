// The step of a simulation, against the same written out by hand, closed forms, and its own
// accounts of energy.
#include "support/States.h"
#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using Method = KtSimulation::Method;

void pullTo(KtStatedSystem& scene, const KtVector& up) {
  KtSystemEnvironment environment;
  environment.setUpGravityVector(up);
  scene.setEnvironment(environment);
}

// Random arms with all that acts at joints: one fixed, two free, of which one hangs on the other.
KtStatedSystem sceneOfArms() {
  KtStatedSystem scene;
  for (const int links : {5, 8, 4}) {
    Arm arm = trees::randomMechanismArm(links, links == 5);
    arm.setLabel("arm " + std::to_string(links));
    const trees::Mechanism random(arm);
    scene.addManipulator(arm, random.position, random.velocity);
  }
  KtManipulatorAttachmentMap map;
  map.attachManipulator(2, 1, scene.system().manipulators()[1].linkByIndex(2)->label(),
                        randomTransformation());
  scene.setManipulatorAttachmentMap(map);
  pullTo(scene, {1.0, 2.0, 9.0});
  return scene;
}

struct Loads {
  std::vector<double> torques;  // at joints
  std::vector<KtManipulatorExternalForce> forces;
};

Loads loadsOn(const KtStatedSystem& scene) {
  Loads loads;
  for (const Arm& arm : scene.system().manipulators().elements()) {
    KtManipulatorExternalForce& force = loads.forces.emplace_back();
    force.resize(arm.jointDof());
    for (KtU32 i = 0; i < arm.jointDof(); ++i) {
      force[i] = {randomVector(), randomVector()};
      loads.torques.push_back(uniform() * 3.0);
    }
  }
  return loads;
}

void load(KtSimulation& simulation, const Loads& loads) {
  EXPECT_TRUE(simulation.setTorques(loads.torques));
  for (KtU32 m = 0; m < loads.forces.size(); ++m) {
    for (KtU32 i = 0; i < loads.forces[m].linkForces().size(); ++i) {
      EXPECT_TRUE(simulation.setExternalForce(m, i, loads.forces[m][i]));
    }
  }
}

// The step as a program without the class has to write it.
template <class Tool>
KtManipulatorSystemState byHand(const KtStatedSystem& scene, const Loads& loads, double dt,
                                int steps) {
  const auto& arms = scene.system().manipulators();
  KtManipulatorSystemState state = scene.state();
  KtSystemActiveState active;
  KtStatedSystem::ResultVector results;
  std::vector<Tool> tools(arms.size());
  std::vector<KtAccelerationState> accelerations(arms.size());
  for (int k = 1; k <= steps; ++k) {
    active.setNonredundantState(state);
    std::size_t j = 0;
    for (KtU32 m = 0; m < arms.size(); ++m) {
      Active& own = active.manipulatorActiveStateVector()[m];
      KtAccelerationState gravity =
          KtAccelerationState::zeroCompatibleState(state.velocityStates()[m]);
      if (k == 1) accelerations[m] = gravity;
      gravity.setGeneralAcceleration({scene.environment().upGravityVector(), KtVector()});
      own.setAccelerationState(gravity);
      KtManipulatorTorque command;
      for (KtU32 i = 0; i < arms[m].jointDof(); ++i) {
        const KtJointActuator& actuator = arms[m].linkByIndex(i)->jointActuator();
        actuator.initializeActuatorStates(own);
        command.jointTorques().pushBack(loads.torques[j++] / actuator.gearRatio());
      }
      tools[m].acceleration(scene, arms[m], command, loads.forces[m], accelerations[m], own, true);
      own.setAccelerationState(accelerations[m]);
    }
    scene.propagateTo(dt * k, state, results, active);
  }
  return state;
}

TEST(SimulationOfTrees, MovesAsTheLoopByHandAndAsksForNoMemory) {
  const KtStatedSystem scene = sceneOfArms();
  const Loads loads = loadsOn(scene);
  KtManipulatorSystemState ends[2];
  for (const auto method : {Method::kAutomatic, Method::kComposite}) {
    const bool composite = method == Method::kComposite;
    KtSimulation simulation(scene, method);
    load(simulation, loads);
    simulation.setLimits(KtSimulation::Limits::kKeepRates);
    simulation.setKeepsBalance(composite);
    std::optional<Allocations> allocations;
    for (int k = 1; k <= 60; ++k) {
      if (k == 3) allocations.emplace();
      EXPECT_TRUE(simulation.stepTo(1e-3 * k));
    }
    EXPECT_EQ(allocations->count(), 0U);
    EXPECT_TRUE(simulation.state() ==
                (composite ? byHand<KtCrbiAccelerationTool>(scene, loads, 1e-3, 60)
                           : byHand<KtArbiAccelerationTool>(scene, loads, 1e-3, 60)));
    ends[composite] = simulation.state();
  }
  EXPECT_TRUE(ends[0].approxEq(ends[1], 1e-6, true));
  EXPECT_FALSE(ends[0].approxEq(scene.state(), 1e-2, false));
}

// What is left of the energy's change is the integrator's, and goes with the step.
TEST(SimulationOfTrees, AccountsOfEnergyClose) {
  for (const bool fixed : {true, false}) {
    for (const auto method : {Method::kArticulated, Method::kComposite}) {
      Arm arm = trees::randomMechanismArm(6, fixed, {.pivotedSliders = false});
      arm.setCoordSysXForm(T());
      Link& first = *arm.linkByIdentifier(arm.linkByIndex(0)->label());
      KtSpringProperties coupling;  // with a torque of its own on the first joint only
      coupling.setSpringConstant(3.0);
      coupling.setAssociatedJoints({1, arm.linkByIndex(1)->label()});
      coupling.setWeightingFactors({1, 1.0});
      coupling.setSpringOffsets({1, 0.3});
      first.setSpringProperties(coupling);
      KtDamperProperties damper;
      damper.setDamperConstant(0.5);
      damper.setAssociatedJoints({1, first.label()});
      damper.setWeightingFactors({1, 1.0});
      first.setDamperProperties(damper);
      trees::Mechanism m(arm);
      for (auto& q : m.position.jointPositions().elements()) q = 0.5 * q;
      m.stated.setIndividualPositionState(0, m.position);
      m.stated.setIndividualVelocityState(0, m.velocity);
      const Loads loads = loadsOn(m.stated);
      double left[2] = {};
      for (const int i : {0, 1}) {
        KtSimulation simulation(m.stated, method);
        load(simulation, loads);
        simulation.setKeepsBalance(true);
        const int steps = 1000 << i;
        for (int k = 1; k <= steps; ++k) simulation.stepTo(0.1 * k / steps);
        const KtEnergyBalance balance = simulation.energyBalance();
        left[i] = balance.remainder();
        EXPECT_LT(std::abs(left[i]), 1e-2 * std::abs(balance.change()) + 1e-2);
        for (const double part : {balance.torques, balance.forces, balance.springs,
                                  balance.friction, balance.dampers}) {
          EXPECT_GT(std::abs(part), 1e-4);
        }
        EXPECT_NEAR(balance.after, simulation.kineticEnergy() + simulation.potentialEnergy(), 1e-9);
        EXPECT_TRUE(simulation.joints()[0].limit.count == 0);
      }
      EXPECT_NEAR(left[0] / left[1], 2.0, 0.2) << left[0];
    }
  }
}

// A link on one joint at 0, below a base that is fixed, or a cart of 2 kg.
KtStatedSystem oneJoint(Link link, unsigned jointType, double rate, Arm base = {}) {
  KtDenavitHartenberg joint;
  joint.setJointType(jointType);
  joint.setDhType(KtDenavitHartenberg::kCraig);
  link.setLinkKinematics(joint);
  base.addChild(link);
  KtPositionState start;
  start.setJointPositions(states::joints({0.0}));
  KtVelocityState velocity;
  velocity.setJointVelocities(states::joints({rate}));
  KtStatedSystem scene;
  scene.addManipulator(base, start, velocity);
  return scene;
}

// A block of 2 kg on a rail along z, at rest; or at 1 m/s against a cart of its mass.
KtStatedSystem sliding(const KtMechanicalActuatorComponent& mechanics, bool fixed = true) {
  const Mass ball = Mass::uniformSolidSphere(2.0, 0.1);
  KtJointActuator actuator;
  actuator.setMechanicalComponent(mechanics);
  Link block;
  block.setLabel("block");
  block.setMassProperties(ball);
  block.setJointActuator(actuator);
  Arm cart;
  cart.setIsFixedBase(fixed);
  if (!fixed) cart.setMassProperties(ball);
  return oneJoint(block, KtDenavitHartenberg::kPrismatic, fixed ? 0.0 : 1.0, cart);
}

double rateOf(const KtSimulation& simulation) {
  return simulation.state().velocityStates()[0].jointVelocities()[0];
}

double positionOf(const KtSimulation& simulation) {
  return simulation.state().positionStates()[0].jointPositions()[0];
}

constexpr double kForce[] = {5.0};

// Here the accounts close to rounding: the inertia is constant, and there is no weight.
TEST(Simulation, ABlockOnARailGoesByClosedForms) {
  const double h = 1e-3, mass = 2.0;
  KtMechanicalActuatorComponent mechanics;
  const auto run = [&](const auto& check) {
    for (const auto method : {Method::kArticulated, Method::kComposite}) {
      const KtStatedSystem scene = sliding(mechanics);
      KtSimulation simulation(scene, method);
      simulation.setTorques(kForce);
      simulation.setKeepsBalance(true);
      for (int k = 1; k <= 1000; ++k) simulation.stepTo(h * k);
      const KtEnergyBalance balance = simulation.energyBalance();
      EXPECT_NEAR(balance.remainder(), 0.0, 1e-12 * balance.torques);
      check(simulation, balance);
    }
  };
  mechanics.setGearRatio(10.0);
  mechanics.setFrictionCoefficient(0.04);  // 4 N s/m behind the gear
  run([&](const KtSimulation& s, const KtEnergyBalance& balance) {
    EXPECT_NEAR(rateOf(s), 1.25 * (1.0 - std::pow(1.0 - 4.0 * h / mass, 1000)), 1e-12);
    EXPECT_NEAR(balance.torques, 5.0 * positionOf(s), 5e-3);
    EXPECT_LT(balance.friction, -0.3);
  });
  mechanics = {};
  mechanics.setStaticCoulombFriction(3.0);
  mechanics.setMaxEfficiency(0.9);
  run([&](const KtSimulation& s, const KtEnergyBalance& balance) {
    EXPECT_NEAR(rateOf(s), (4.5 - 3.0) / mass, 1e-12);
    EXPECT_NEAR(balance.friction, -0.7 * balance.torques, 1e-12);
  });
  mechanics = {};
  mechanics.setGearRatio(10.0);
  mechanics.setInertia(0.03);  // 3 kg behind the gear
  run([&](const KtSimulation& s, const KtEnergyBalance& balance) {
    EXPECT_NEAR(rateOf(s), 1.0, 1e-12);
    EXPECT_NEAR(balance.after, 2.5, 1e-12);
  });
  mechanics.setIsRigid(false);  // then it swings a bit, with 91 rad/s
  mechanics.setJointFlexibilityStiffness(1e4);
  run([&](const KtSimulation& s, const KtEnergyBalance&) { EXPECT_NEAR(rateOf(s), 1.0, 0.02); });
  mechanics = {};
  mechanics.setMaxOutputRate(0.5001);
  mechanics.setUpperLimit(0.1001);
  run([&](const KtSimulation& s, const KtEnergyBalance& balance) {
    EXPECT_DOUBLE_EQ(s.joints()[0].rate.first, 0.201);
    EXPECT_GT(s.joints()[0].limit.count, 600U);
    EXPECT_EQ(positionOf(s), 0.1001);
    EXPECT_LT(balance.rates, -1.0);
    EXPECT_THAT(s.lastStep().limits, ElementsAre(0));
    EXPECT_FALSE(s.lastStep().isFree());
  });
}

// At the end of its rail a block takes a cart of its mass along, with half the rate and energy.
TEST(Simulation, LimitsStopWithoutRebound) {
  KtMechanicalActuatorComponent mechanics;
  mechanics.setUpperLimit(0.1);
  const KtStatedSystem scene = sliding(mechanics, false);
  for (const bool stops : {false, true}) {
    KtSimulation simulation(scene);
    if (stops) simulation.setLimits(KtSimulation::Limits::kStopRates);
    simulation.setKeepsBalance(true);
    const auto run = [&] {
      for (int k = 1; k <= 300; ++k) simulation.stepTo(1e-3 * k);
    };
    run();
    simulation.setState(scene.state());
    const Allocations allocations;
    run();
    EXPECT_EQ(allocations.count(), 0U);
    EXPECT_NEAR(rateOf(simulation), stops ? 0.0 : 1.0, 1e-14);
    EXPECT_NEAR(simulation.state().velocityStates()[0].generalVelocity()[2], stops ? 0.5 : 0.0,
                1e-14);
    EXPECT_NEAR(simulation.energyBalance().limits, stops ? -0.5 : 0.0, 1e-12);
    EXPECT_NEAR(simulation.energyBalance().remainder(), 0.0, 1e-12);
  }
}

// A point mass on a rod of 1 m, let go horizontally: at 5 s it stands at (0.942305435044,
// -0.334754338414), by elliptic functions.
KtStatedSystem pendulum() {
  Mass mass;
  mass.set(1.0, KtVector(1.0, 0.0, 0.0), KtSecondMoment(0.0, 1.0, 1.0, 0.0, 0.0, 0.0), false);
  Link rod;
  rod.setLabel("rod");
  rod.setMassProperties(mass);
  KtStatedSystem scene = oneJoint(rod, KtDenavitHartenberg::kRotational, 0.0);
  pullTo(scene, {0.0, 9.81, 0.0});
  return scene;
}

TEST(Simulation, APendulumConvergesAtFirstOrder) {
  const KtStatedSystem scene = pendulum();
  for (const auto method : {Method::kArticulated, Method::kComposite}) {
    double error[2] = {};
    for (const int i : {0, 1}) {
      KtSimulation simulation(scene, method);
      simulation.setKeepsBalance(true);
      const int steps = i == 0 ? 5000 : 50000;
      for (int k = 1; k <= steps; ++k) simulation.stepTo(5.0 * k / steps);
      const double q = positionOf(simulation);
      error[i] = std::hypot(std::cos(q) - 0.942305435044, std::sin(q) + 0.334754338414);
      EXPECT_TRUE(simulation.energyBalance().isIntegratorAlone());
      EXPECT_LT(std::abs(simulation.energyBalance().remainder()), 0.02 / (i == 0 ? 1 : 10));
    }
    EXPECT_LT(error[0], 0.02);
    EXPECT_NEAR(error[0] / error[1], 10.0, 1.5);
  }
}

TEST(Simulation, ALawIsAskedOnceForEachStateWhichItSees) {
  const KtStatedSystem scene = pendulum();
  KtSimulation simulation(scene);
  int calls = 0;
  simulation.setTorqueLaw([&](const KtManipulatorSystemState& state, std::span<double> torques) {
    EXPECT_DOUBLE_EQ(state.time(), 1e-3 * calls++);
    EXPECT_EQ(torques[0], calls == 1 ? 0.0 : 9.81);
    EXPECT_EQ(simulation.active().positionState().jointPositions()[0].value(), 0.0);
    torques[0] = 9.81;  // which holds it
  });
  for (int k = 1; k <= 100; ++k) {
    EXPECT_NEAR(simulation.acceleration().jointAccelerations()[0], 0.0, 1e-15);
    simulation.stepTo(1e-3 * k);
  }
  EXPECT_EQ(calls, 100);
  EXPECT_NEAR(positionOf(simulation), 0.0, 1e-15);
  const double off[] = {0.0};
  EXPECT_TRUE(simulation.setTorques(off));
  EXPECT_NEAR(simulation.acceleration().jointAccelerations()[0], -9.81, 1e-12);
  simulation.setExternalForce(0, 0, {KtVector(), KtVector(0.0, 0.0, 2.0)});
  EXPECT_NEAR(simulation.acceleration().jointAccelerations()[0], -7.81, 1e-12);
  simulation.setUpGravity(KtVector());
  EXPECT_NEAR(simulation.acceleration().jointAccelerations()[0], 2.0, 1e-12);
  simulation.clearExternalForces();
  EXPECT_EQ(simulation.acceleration().jointAccelerations()[0], 0.0);
}

// Reports a collision of the first manipulator from a time on.
class Walled : public KtStatedSystem {
 public:
  explicit Walled(const KtStatedSystem& scene) : KtStatedSystem(scene) {}
  bool checkForCollisions(KtSystemActiveState& active, const KtReal&, const KtU32& level,
                          const KtReal& tolerance, ResultVector& results) const override {
    EXPECT_EQ(level, 3U);
    EXPECT_EQ(tolerance, 0.25);
    const auto& state = active.manipulatorActiveStateVector()[0].positionState();
    const bool hit = state.jointPositions()[0] < -0.5;
    results[0].setCollisionOccurred(hit);
    return hit;
  }
};

TEST(Simulation, TakesACollisionBack) {
  const Walled walled(pendulum());
  KtSimulation simulation(walled);
  KtPropagationDescriptor descriptor;
  descriptor.setCollisionDetectionFidelity(3);
  descriptor.setCollisionDetectionTolerance(0.25);
  simulation.setCollisions(KtSimulation::Collisions::kTakeBackAll, descriptor);
  simulation.setKeepsBalance(true);
  while (simulation.lastStep().isFree()) simulation.step(1e-3);
  const double q = positionOf(simulation);
  EXPECT_GE(q, -0.5);
  EXPECT_EQ(simulation.lastStep().collided.size(), 1U);
  EXPECT_EQ(simulation.lastStep().stopped.size() + simulation.stops().size(), 0U);
  // It keeps its rate.
  EXPECT_GT(simulation.energyBalance().stops, 0.0);
  EXPECT_NEAR(simulation.energyBalance().remainder(), 0.0, 0.02);
  simulation.step(1e-3);
  EXPECT_EQ(positionOf(simulation), q);
}

TEST(Simulation, EndsWhereAStateIsNotFiniteAndReportsBadCalls) {
  KtMechanicalActuatorComponent mechanics;
  mechanics.setMaxOutputRate(INFINITY);
  mechanics.setUpperLimit(INFINITY);
  const KtStatedSystem scene = sliding(mechanics);
  KtSimulation simulation(scene);
  const KtLogCapture log;
  EXPECT_FALSE(simulation.setTorques({}));
  EXPECT_FALSE(simulation.setExternalForce(0, 1, KtGeneralForce()));
  EXPECT_FALSE(simulation.setExternalForce(1, 0, KtGeneralForce()));
  EXPECT_EQ(simulation.active(2).positionState().jointPositions().size(), 0u);
  EXPECT_EQ(simulation.acceleration(3).jointAccelerations().size(), 0u);
  EXPECT_FALSE(simulation.stepTo(NAN));
  EXPECT_EQ(simulation.state(), scene.state());
  EXPECT_THAT(
      log.text(),
      testing::AllOf(HasSubstr("0 torques for 1 joints"), HasSubstr("no link 0 of manipulator 1"),
                     HasSubstr("no manipulator 2"), HasSubstr("no manipulator 3")));
  const double blast[] = {1e300};
  simulation.setTorques(blast);
  EXPECT_TRUE(simulation.stepTo(1.0));
  while (simulation.state().time() < 1e9 && simulation.stepTo(simulation.state().time() * 1e3)) {
  }
  EXPECT_FALSE(simulation.lastStep().isFinite);
  EXPECT_THAT(simulation.complaint(),
              testing::StartsWith("the motion of joint \"block\" is not finite at "));
  EXPECT_THAT(simulation.complaint(), HasSubstr("; a step before, \"block\" was the "));
  simulation.setState(scene.state());
  EXPECT_TRUE(simulation.setTorques(kForce));
  EXPECT_TRUE(simulation.stepTo(1e-3));
}

}  // namespace
