#include "Simulate.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "Numbers.h"
#include "ProgressBar.h"
#include "Support.h"
#include "TimeGrid.h"
#include "TorqueTable.h"
#include "TraceWriter.h"
#include "ktManipulator/dynamics/KtMassMatrixTool.h"

namespace {

constexpr double kMostSteps = 1e12;
// How many states are asked for their energy on the way.
constexpr std::uint64_t kEnergySamples = 16;

bool checkOptions(const KtStatedSystem& system, const SimulateOptions& options,
                  std::string& error) {
  const double start = system.state().time();
  const double end = start + options.duration;
  if (!(options.duration >= 0.0) || !std::isfinite(options.duration)) {
    error = "a duration of " + textOf(options.duration) + " s: it has to be 0 or more";
  } else if (!(options.step > 0.0) || !std::isfinite(options.step)) {
    error = "a step of " + textOf(options.step) + " s: it has to be more than 0";
  } else if (options.duration / options.step > kMostSteps) {
    error = textOf(options.duration) + " s in steps of " + textOf(options.step) +
            " s are more than 10^12 steps";
  } else if (!std::isfinite(start)) {
    error = "the time of its state is not finite";
  } else if (!std::isfinite(end) || end + options.step == end || start - options.step == start) {
    error = "steps of " + textOf(options.step) + " s are lost in the rounding of times like " +
            textOf(std::fmax(std::abs(start), std::abs(end))) + " s";
  } else {
    return true;
  }
  error = options.name + ": " + error;
  return false;
}

bool readTorques(const std::string& file, const KtSimulation& simulation, TorqueTable& table,
                 std::string& error) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream text;
  std::error_code code;
  if (!stream || std::filesystem::is_directory(file, code)) {
    error = file + ": can't be read";
    return false;
  }
  text << stream.rdbuf();
  std::vector<std::string> names;
  for (const KtSimulation::Joint& joint : simulation.joints()) names.push_back(joint.name);
  return table.read(text.str(), file, names, error);
}

// How much viscous friction and its own damper hinder a joint, as torque per rate of the joint.
double dampingOf(const KtManipulatorLink& link) {
  const KtJointActuator& actuator = link.jointActuator();
  double damping = actuator.isRigid() ? actuator.frictionCoefficient() * actuator.gearRatio() *
                                            actuator.gearRatio()
                                      : 0.0;
  const KtDamperProperties& damper = link.damperProperties();
  if (damper.weightingFactors().size() != damper.associatedJoints().size()) return damping;
  for (KtU32 i = 0; i < damper.associatedJoints().size(); ++i) {
    if (damper.associatedJoints()[i].value() != link.label()) continue;
    damping += damper.damperConstant() * damper.weightingFactors()[i];
  }
  return damping;
}

// An explicit step of a damper overshoots beyond damping / inertia * step = 2. With M the mass
// matrix and D the damping, the greatest eigenvalue of M^-1 D, which counts, is no less than any
// (M^-1)_ii D_ii. Here base and springs stand still, which makes inertias greater at the most.
void noteStiffDamping(const KtStatedSystem& system, const KtIndividualManipulator& manipulator,
                      double step, std::vector<std::string>& notes) {
  const KtU32 n = manipulator.jointDof();
  std::vector<double> damping;
  bool any = false;
  for (KtU32 i = 0; i < n; ++i) {
    damping.push_back(dampingOf(*manipulator.linkByIndex(i)));
    any = any || damping.back() > 0.0;
  }
  if (!any) return;
  KtManipulatorActiveState active = activeStateOf(system, manipulator.manipulatorIndex());
  KtMassMatrixTool tool;
  tool.setManipulator(&manipulator);
  KtReArray mass = tool.massMatrix(active, nullptr);
  for (KtU32 i = 0; i < n; ++i) {
    mass[i][i] += manipulator.linkByIndex(i)->jointActuator().effectiveInertia(
        active.positionState().jointPositions()[i]);
  }
  KtReArray factor, response, unit;
  mass.choleskyDecomposition(factor);
  unit.setToZeros(n, n);
  for (KtU32 i = 0; i < n; ++i) unit[i][i] = 1.0;
  factor.choleskyBackSubstitution(unit, response);
  for (KtU32 i = 0; i < n; ++i) {
    const double rate = response[i][i] * damping[i];
    if (!(rate * step > 2.0) || !std::isfinite(rate)) continue;
    notes.push_back("the damping of joint \"" + manipulator.linkByIndex(i)->label() +
                    "\" makes it tremble or worse unless steps are below " +
                    shortTextOf(2.0 / rate) + " s");
  }
}

}  // namespace

std::vector<std::string> simulationNotes(const KtStatedSystem& system,
                                         const SimulateOptions& options) {
  std::vector<std::string> notes;
  for (const KtIndividualManipulator& manipulator : system.system().manipulators().elements()) {
    if (options.method == KtSimulation::Method::kArticulated &&
        manipulator.stateEqualityConstraints().doc() > 0) {
      notes.push_back("the articulated method leaves the equality constraints of \"" +
                      manipulator.label() + "\" out");
    }
    for (KtU32 i = 0; i < manipulator.jointDof(); ++i) {
      const KtManipulatorLink& link = *manipulator.linkByIndex(i);
      const KtJointActuator& actuator = link.jointActuator();
      if (actuator.powerConverterContainer().numStateVariables() > 0) {
        notes.push_back("the currents or pressures of the motor of joint \"" + link.label() +
                        "\" are not simulated: its torque is what is given");
      }
      const auto* mechanics = actuator.mechanicalComponentContainer().element();
      if (mechanics == nullptr) continue;
      if (!mechanics->isRigid() || mechanics->staticCoulombSpringCoefficient() > 0.0) {
        notes.push_back(std::string("the ") +
                        (mechanics->isRigid() ? "place where static friction holds"
                                              : "motor behind the flexible gear of") +
                        " joint \"" + link.label() +
                        "\" is no part of a file's state: each run starts without tension there");
      }
    }
    noteStiffDamping(system, manipulator, options.step, notes);
  }
  return notes;
}

bool simulate(KtStatedSystem& system, const SimulateOptions& options, SimulateResult& result,
              std::string& error) {
  result = {};
  if (!checkOptions(system, options, error)) return false;
  KtSimulation simulation(system, options.method);
  if (options.upGravity) simulation.setUpGravity(*options.upGravity);
  if (options.stopsAtLimits) simulation.setLimits(KtSimulation::Limits::kStopRates);
  simulation.setKeepsBalance(true);
  TorqueTable table;
  if (!options.torqueFile.empty() && !readTorques(options.torqueFile, simulation, table, error)) {
    return false;
  }
  TraceWriter trace;
  const bool traced = !options.csvFile.empty();
  if (traced && !trace.open(options.csvFile, simulation)) {
    error = options.csvFile + ": can't be written";
    return false;
  }

  const TimeGrid grid(system.state().time(), options.duration, options.step);
  const std::uint64_t sampled = std::max<std::uint64_t>(grid.steps() / kEnergySamples, 1);
  std::vector<double> torques(simulation.joints().size(), 0.0);
  const auto began = std::chrono::steady_clock::now();
  bool good = true;
  {
    ProgressBar bar(grid.steps());
    for (std::uint64_t step = 0;; ++step) {
      if (table.advance(grid.time(step), 1e-6 * options.step, torques)) {
        simulation.setTorques(torques);
      }
      if (traced) trace.write(simulation);
      if (step % sampled == 0 || step == grid.steps()) {
        result.kineticAfter = simulation.kineticEnergy();
        result.potentialAfter = simulation.potentialEnergy();
        result.greatestKinetic = std::fmax(result.greatestKinetic, result.kineticAfter);
      }
      if (step == 0) {
        result.kineticBefore = result.kineticAfter;
        result.potentialBefore = result.potentialAfter;
      }
      if (step == grid.steps()) break;
      good = simulation.stepTo(grid.time(step + 1));
      if (!good) break;
      ++result.steps;
      bar.update(result.steps);
    }
  }
  result.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
  result.completed = good;
  result.simulated = grid.time(result.steps) - grid.time(0);
  result.balance = simulation.energyBalance();
  result.constraintError = simulation.constraintError();
  result.stopsAtLimits = options.stopsAtLimits;
  result.joints = simulation.joints();
  result.stops = simulation.stops();
  for (const KtIndividualManipulator& manipulator : system.system().manipulators().elements()) {
    result.labels.push_back(manipulator.label());
  }
  if (!good) {
    error = options.name + ": " + simulation.complaint();
  } else if (!trace.close()) {
    error = options.csvFile + ": not everything could be written";
    good = false;
  }
  system.setState(simulation.state());
  return good;
}

namespace {

// What the summary says of the energy.
std::string describeEnergy(const SimulateResult& result) {
  const double before = result.kineticBefore + result.potentialBefore;
  const double after = result.kineticAfter + result.potentialAfter;
  std::string text = "energy at the start " + shortTextOf(before) + " J (kinetic " +
                     shortTextOf(result.kineticBefore) + ", potential " +
                     shortTextOf(result.potentialBefore) + "), at the end " + shortTextOf(after) +
                     " J (" + shortTextOf(result.kineticAfter) + ", " +
                     shortTextOf(result.potentialAfter) + ")\n";
  const KtEnergyBalance& balance = result.balance;
  // A mechanism at rest has some kinetic energy by rounding, which is no measure.
  const bool moved = result.greatestKinetic > 1e-9 * std::fmax(std::abs(before), std::abs(after));
  const auto add = [&](const std::string& what, double energy) {
    text += what + ' ' + shortTextOf(energy) + " J";
  };
  if (balance.isIntegratorAlone()) {
    add("energy drift", after - before);
    if (moved) {
      text += ", " + shortTextOf(100.0 * (after - before) / result.greatestKinetic) +
              " % of the greatest kinetic energy seen, " + shortTextOf(result.greatestKinetic) +
              " J";
    }
    return text + '\n';
  }
  add("the energy has changed by", after - before);
  text += ", of that";
  const struct {
    const char* name;
    double energy;
  } parts[] = {{"torques", balance.torques},
               {"forces", balance.forces},
               {"springs between joints", balance.springs},
               {"friction", balance.friction},
               {"dampers", balance.dampers},
               {"limits", balance.limits},
               {"cut rates", balance.rates},
               {"stops", balance.stops}};
  const char* separator = " by ";
  for (const auto& part : parts) {
    if (part.energy == 0.0) continue;
    add(separator + std::string(part.name), part.energy);
    separator = ", ";
  }
  text += '\n';
  add("what is left, the integrator's error:", balance.remainder());
  return text + '\n';
}

}  // namespace

std::string describeSimulation(const SimulateResult& result) {
  std::string text;
  const auto add = [&text](std::initializer_list<std::string> words) {
    for (const std::string& word : words) text += word;
    text += '\n';
  };
  const auto happened = [](const KtSimulation::Event& event) {
    return "first at " + shortTextOf(event.first) + " s, in " +
           counted(event.count, "step", "steps");
  };
  add({counted(result.steps, "step", "steps"), ", ", shortTextOf(result.simulated),
       " s simulated in ", shortTextOf(result.wall), " s"});
  if (result.steps > 0) {
    add({shortTextOf(static_cast<double>(result.steps) / result.wall), " steps/s, ",
         shortTextOf(result.simulated / result.wall), " times real time"});
  }
  if (result.completed) text += describeEnergy(result);
  if (result.completed && result.constraintError > 0.0) {
    add({"equality constraints are off by ", shortTextOf(result.constraintError), " at the end"});
  }
  if (!result.stopsAtLimits &&
      std::any_of(result.joints.begin(), result.joints.end(),
                  [](const auto& joint) { return joint.limit.count > 0; })) {
    add({"joints kept their rates at limits, and gathered more: --limits stop takes them"});
  }
  bool hit = !result.stops.empty();
  for (const KtSimulation::Joint& joint : result.joints) {
    if (joint.limit.count > 0) {
      add({"limit of joint \"", joint.name, "\": ", happened(joint.limit)});
    }
    if (joint.rate.count > 0) {
      add({"greatest rate of joint \"", joint.name, "\": ", happened(joint.rate)});
    }
    hit = hit || joint.limit.count > 0 || joint.rate.count > 0;
  }
  for (const KtSimulation::Stop& stop : result.stops) {
    add({"stopping criterion of \"", result.labels[stop.manipulator], "\", ", stop.description,
         ": ", happened(stop.event)});
  }
  if (!hit) add({"nothing was hit"});
  return text;
}
