#include "Evaluate.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>

#include "Commands.h"
#include "Numbers.h"
#include "ktManipulator/dynamics/KtGravitationalTorqueTool.h"
#include "ktManipulator/dynamics/KtMassMatrixTool.h"
#include "ktManipulator/dynamics/KtTotalTorqueTool.h"
#include "ktManipulator/model/KtAsker.h"
#include "ktManipulator/simulation/KtMechanicalEnergy.h"

namespace {

using Reals = KtXmlVectorType<KtXmlBasicType<double>>;

Json jsonOf(const KtCoordinateSystemTransformation& t) {
  const KtOrientation& r = t.orientation();
  return {{"translation", jsonOf(t.translation())},
          {"rotation", Json::array({r[0], r[1], r[2], r[3]})}};
}

Json jsonOf(const Reals& values) {
  Json result = Json::array();
  for (const auto& value : values.elements()) result.push_back(value.value());
  return result;
}

template <class Motion>
Json sixOf(const Motion& motion) {
  Json result = Json::array();
  for (unsigned i = 0; i < 6; ++i) result.push_back(motion[i]);
  return result;
}

void assign(Reals& to, const std::vector<double>& from) {
  to.resize(static_cast<KtU32>(from.size()));
  for (KtU32 i = 0; i < to.size(); ++i) to[i] = from[i];
}

// Evaluates one manipulator in one state.
class Evaluation {
 public:
  Evaluation(const KtStatedSystem& system, KtU32 index, const EvaluateOptions& options)
      : manipulator_(system.system().manipulators()[index]),
        options_(options),
        asker_(system, index),
        gravity_(options.upGravity.value_or(system.environment().upGravityVector())),
        active_(activeStateOf(system, index)) {
    if (options.q) {
      KtPositionState position = active_.positionState();
      assign(position.jointPositions(), *options.q);
      active_.setPositionState(position);
    }
    if (options.qd) {
      KtVelocityState velocity = active_.velocityState();
      assign(velocity.jointVelocities(), *options.qd);
      active_.setVelocityState(velocity);
    }
    none_.resize(manipulator_.jointDof());
  }

  Json result();

 private:
  const KtOrientation& baseOrientation() {
    return manipulator_.dhFrameInSystem(active_.activePositionState()).orientation();
  }
  void setAcceleration(const std::optional<std::vector<double>>& qdd);
  Json links();
  Json massMatrix();
  Json gravityTorques();
  Json inverseDynamics();
  Json forwardDynamics();

  const KtIndividualManipulator& manipulator_;
  const EvaluateOptions& options_;
  Kt::detail::Asker asker_;
  KtVector gravity_;
  KtManipulatorActiveState active_;
  KtManipulatorExternalForce none_;
};

Json Evaluation::links() {
  Json result = Json::array();
  for (KtU32 i = 0; i <= manipulator_.jointDof(); ++i) {
    const KtManipulatorLink& link = linkAt(manipulator_, i);
    const KtGeneralMotion& velocity = link.primaryFrameVelocityInSystem(active_);
    result.push_back(
        {{"label", link.label()},
         {"index", static_cast<long>(i) - 1},
         {"dhFrame", jsonOf(link.dhFrameInSystem(active_.activePositionState()))},
         {"primaryFrame", jsonOf(link.primaryFrameInSystem(active_.activePositionState()))},
         {"velocity",
          {{"linear", ::jsonOf(velocity.linear())}, {"angular", ::jsonOf(velocity.angular())}}}});
  }
  return result;
}

Json Evaluation::massMatrix() {
  KtMassMatrixTool tool;
  tool.setManipulator(&manipulator_);
  const KtReArray& mass = tool.massMatrix(active_, asker_);
  const Reals& q = active_.positionState().jointPositions();
  Json result = Json::array();
  for (KtU32 i = 0; i < manipulator_.jointDof(); ++i) {
    Json row = Json::array();
    for (KtU32 k = 0; k < manipulator_.jointDof(); ++k) row.push_back(mass[i][k]);
    row[i] = mass[i][i] + manipulator_.linkByIndex(i)->jointActuator().effectiveInertia(q[i]);
    result.push_back(row);
  }
  return result;
}

Json Evaluation::gravityTorques() {
  KtGravitationalTorqueTool tool;
  tool.setManipulator(&manipulator_);
  tool.setGravityVector(gravity_);
  const KtReArray& torques = tool.gravitationalTorques(active_, asker_);
  Json result = Json::array();
  for (KtU32 i = 0; i < manipulator_.jointDof(); ++i) result.push_back(torques[i][0]);
  return result;
}

// Gravity is represented as an upward acceleration of the base.
void Evaluation::setAcceleration(const std::optional<std::vector<double>>& qdd) {
  KtAccelerationState acceleration =
      KtAccelerationState::zeroCompatibleState(active_.velocityState());
  acceleration.setGeneralAcceleration({gravity_, KtVector()});
  if (qdd) assign(acceleration.jointAccelerations(), *qdd);
  active_.setAccelerationState(acceleration);
  active_.invalidateAll();
}

Json Evaluation::inverseDynamics() {
  setAcceleration(options_.qdd);
  KtTotalTorqueTool tool;
  tool.setManipulator(&manipulator_);
  tool.setTotalTorqueType(kTotalTorqueOfLinks);
  const KtManipulatorTorque& torque = tool.torques(none_, active_, asker_);
  KtGeneralForce base = torque.generalForce();
  base.transformBy(baseOrientation());
  return {{"jointTorques", jsonOf(torque.jointTorques())}, {"baseForce", sixOf(base)}};
}

// Calls the links directly, because the acceleration tools include actuator friction.
Json Evaluation::forwardDynamics() {
  setAcceleration(std::nullopt);
  const KtU32 joints = manipulator_.jointDof();
  KtManipulatorTorque torque;
  torque.jointTorques().resize(joints);
  for (KtU32 i = 0; i < joints; ++i) {
    const double tau = options_.tau ? (*options_.tau)[i] : 0.0;
    torque.jointTorques()[i] = tau - manipulator_.linkByIndex(i)->totalLocalTorque(active_);
  }
  Json accelerations = Json::array();
  for (KtU32 i = 0; i < joints; ++i) {
    accelerations.push_back(
        manipulator_.linkByIndex(i)->arbiJointAcceleration(none_, torque, active_, asker_));
  }
  KtGeneralMotion base = manipulator_.arbiBaseAccelerationInLocal(none_, torque, active_, asker_);
  base.transformBy(baseOrientation());
  return {{"jointAccelerations", accelerations}, {"baseAcceleration", sixOf(base)}};
}

Json Evaluation::result() {
  Json joints = Json::array();
  for (KtU32 i = 0; i < manipulator_.jointDof(); ++i) {
    joints.push_back(manipulator_.linkByIndex(i)->label());
  }
  const double mass = totalMass(manipulator_);
  const KtVector center = manipulator_.getCenterOfMassInSystem(active_);
  Json result;
  result["label"] = manipulator_.label();
  result["fixedBase"] = manipulator_.isFixedBase();
  result["joints"] = joints;
  result["q"] = jsonOf(active_.positionState().jointPositions());
  result["qd"] = jsonOf(active_.velocityState().jointVelocities());
  result["links"] = links();
  result["mass"] = mass;
  result["centerOfMass"] = ::jsonOf(center);
  result["massMatrix"] = massMatrix();
  result["gravityTorques"] = gravityTorques();
  result["inverseDynamics"] = inverseDynamics();
  result["forwardDynamics"] = forwardDynamics();
  result["kineticEnergy"] = KtMechanicalEnergy::kinetic(manipulator_, active_, asker_);
  result["potentialEnergy"] = KtMechanicalEnergy::weight(manipulator_, active_, gravity_);
  return result;
}

bool checkList(const char* option, const std::vector<double>& list,
               const KtIndividualManipulator& manipulator, std::string& error) {
  if (list.size() == manipulator.jointDof()) return true;
  error = std::string(option) + " has " + std::to_string(list.size()) + " values, but " +
          manipulator.label() + " has " + std::to_string(manipulator.jointDof()) + " joints";
  return false;
}

bool checkOptions(const KtStatedSystem& system, const EvaluateOptions& options,
                  std::string& error) {
  const KtU32 count = system.system().manipulators().size();
  if (options.manipulator && *options.manipulator >= count) {
    error = "--manipulator " + std::to_string(*options.manipulator) + ": there are " +
            std::to_string(count) + ", counted from 0";
    return false;
  }
  const bool lists = options.q || options.qd || options.qdd || options.tau;
  if (!lists) return true;
  if (!options.manipulator && count != 1) {
    error = "lists of joint values need --manipulator where there are " + std::to_string(count);
    return false;
  }
  const KtIndividualManipulator& manipulator =
      system.system().manipulators()[options.manipulator.value_or(0)];
  return (!options.q || checkList("--q", *options.q, manipulator, error)) &&
         (!options.qd || checkList("--qd", *options.qd, manipulator, error)) &&
         (!options.qdd || checkList("--qdd", *options.qdd, manipulator, error)) &&
         (!options.tau || checkList("--tau", *options.tau, manipulator, error));
}

// Whether a JSON value has a number that is not finite; JSON can't represent it.
bool isFinite(const Json& value) {
  if (value.is_number_float()) return std::isfinite(value.get<double>());
  for (const Json& member : value) {
    if (member.is_structured() ? !isFinite(member)
                               : member.is_number_float() && !std::isfinite(member.get<double>())) {
      return false;
    }
  }
  return true;
}

void printNumbers(const char* name, const Json& values) {
  std::printf("%-24s", name);
  for (const Json& value : values) std::printf(" %12.6g", value.get<double>());
  std::printf("\n");
}

void printManipulator(const Json& m) {
  const auto text = [](const Json& value) { return value.get<std::string>(); };
  std::printf("%s: %s base\n", text(m["label"]).c_str(),
              m["fixedBase"].get<bool>() ? "fixed" : "free");
  std::printf("mass %.9g kg, kinetic energy %.9g J, potential energy %.9g J\n",
              m["mass"].get<double>(), m["kineticEnergy"].get<double>(),
              m["potentialEnergy"].get<double>());
  printNumbers("centre of mass", m["centerOfMass"]);
  printNumbers("force at the base", m["inverseDynamics"]["baseForce"]);
  printNumbers("acceleration of the base", m["forwardDynamics"]["baseAcceleration"]);
  std::printf("\n%-24s %12s %12s %12s %12s %12s\n", "joint", "q", "qd", "gravity", "inverse",
              "forward");
  for (std::size_t i = 0; i < m["joints"].size(); ++i) {
    std::printf("%-24s %12.6g %12.6g %12.6g %12.6g %12.6g\n", text(m["joints"][i]).c_str(),
                m["q"][i].get<double>(), m["qd"][i].get<double>(),
                m["gravityTorques"][i].get<double>(),
                m["inverseDynamics"]["jointTorques"][i].get<double>(),
                m["forwardDynamics"]["jointAccelerations"][i].get<double>());
  }
  std::printf("\n%-24s %38s %51s %38s %38s\n", "primary frame", "translation", "rotation (w x y z)",
              "linear velocity", "angular velocity");
  for (const Json& link : m["links"]) {
    std::printf("%-24s", text(link["label"]).c_str());
    for (const Json* values :
         {&link["primaryFrame"]["translation"], &link["primaryFrame"]["rotation"],
          &link["velocity"]["linear"], &link["velocity"]["angular"]}) {
      for (const Json& value : *values) std::printf(" %12.6g", value.get<double>());
    }
    std::printf("\n");
  }
  std::printf("\nmass matrix\n");
  for (const Json& row : m["massMatrix"]) {
    for (const Json& value : row) std::printf(" %12.6g", value.get<double>());
    std::printf("\n");
  }
  std::printf("\n");
}

struct Arguments {
  std::string file;
  KtU32 manipulator = 0;
  std::vector<double> gravity;
  std::string q, qd, qdd, tau;
  bool json = false;
};

// Reads the list of an option if the option is given.
bool readList(const CLI::App& command, const char* option, const std::string& text,
              std::optional<std::vector<double>>& list) {
  if (command.count(option) == 0) return true;
  std::string wrong;
  if (readNumbers(text, ",", list.emplace(), wrong)) return true;
  std::fprintf(stderr, "ktmanip evaluate: %s: \"%s\" is not a number\n", option, wrong.c_str());
  return false;
}

int run(const Arguments& arguments, const CLI::App& command) {
  KtStatedSystem system;
  EvaluateOptions options;
  if (!readList(command, "--q", arguments.q, options.q) ||
      !readList(command, "--qd", arguments.qd, options.qd) ||
      !readList(command, "--qdd", arguments.qdd, options.qdd) ||
      !readList(command, "--tau", arguments.tau, options.tau)) {
    return 1;
  }
  if (command.count("--manipulator") > 0) {
    options.manipulator = arguments.manipulator;
  }
  if (const std::vector<double>& g = arguments.gravity; g.size() == 3) {
    options.upGravity = KtVector(g[0], g[1], g[2]);
  }
  if (!loadSystem(arguments.file, system)) return 1;
  Json result;
  std::string error;
  if (!evaluate(system, options, result, error)) {
    std::fprintf(stderr, "%s: %s\n", arguments.file.c_str(), error.c_str());
    return 1;
  }
  if (arguments.json) {
    std::printf("%s\n", result.dump(2).c_str());
  } else {
    for (const Json& manipulator : result["manipulators"]) printManipulator(manipulator);
  }
  return 0;
}

}  // namespace

bool evaluate(const KtStatedSystem& system, const EvaluateOptions& options, Json& result,
              std::string& error) {
  if (!checkOptions(system, options, error)) return false;
  Json manipulators = Json::array();
  for (KtU32 i = 0; i < system.system().manipulators().size(); ++i) {
    if (options.manipulator.value_or(i) != i) continue;
    manipulators.push_back(Evaluation(system, i, options).result());
    for (const auto& [name, value] : manipulators.back().items()) {
      if (isFinite(value)) continue;
      error = name + " of " + system.system().manipulators()[i].label() + " is not finite";
      return false;
    }
  }
  result = {{"manipulators", manipulators}};
  return true;
}

void addEvaluate(CLI::App& app, int& status) {
  CLI::App* command =
      app.add_subcommand("evaluate",
                         "Computes frames, velocities, inertias, torques and accelerations of a "
                         "stated system in one state");
  auto arguments = std::make_shared<Arguments>();
  command->add_option("system", arguments->file, "the file of the system")->required();
  command->add_option("--manipulator", arguments->manipulator,
                      "index of one manipulator, from 0 (default: all)");
  addGravityOption(*command, arguments->gravity);
  command->add_option("--q", arguments->q, "joint positions, like --q=0.1,-2");
  command->add_option("--qd", arguments->qd, "joint rates");
  command->add_option("--qdd", arguments->qdd,
                      "joint accelerations for the inverse dynamics (default: 0)");
  command->add_option("--tau", arguments->tau,
                      "joint torques for the forward dynamics (default: 0)");
  command->add_flag("--json", arguments->json, "print one JSON object with full precision");
  command->footer(
      "A list has one value for each joint, in the order of the link indices. All vectors are in\n"
      "system axes, with linear components before angular ones; the index of the base is -1.\n"
      "The dynamics include links, rotors, springs and dampers; they ignore actuator friction and\n"
      "equality constraints. The inverse dynamics assume that the base doesn't accelerate.");
  command->callback([arguments, command, &status] { status = run(*arguments, *command); });
}
