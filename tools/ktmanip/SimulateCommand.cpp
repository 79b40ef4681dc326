#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>

#include "Commands.h"
#include "Simulate.h"
#include "Support.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace {

struct Arguments {
  std::string file;
  std::string method;
  std::string limits;
  std::string final;
  std::vector<double> gravity;
  SimulateOptions options;
};

const std::map<std::string, KtSimulation::Method> kMethods = {
    {"articulated", KtSimulation::Method::kArticulated},
    {"composite", KtSimulation::Method::kComposite}};

// Whether two names stand for one file, of which writing the one would lose the other.
bool isSameFile(const std::string& one, const std::string& other) {
  std::error_code code;
  if (std::filesystem::exists(one, code)) {
    return std::filesystem::is_regular_file(one, code) &&
           std::filesystem::equivalent(one, other, code);
  }
  return !one.empty() && std::filesystem::absolute(one, code).lexically_normal() ==
                             std::filesystem::absolute(other, code).lexically_normal();
}

// Whether a file could be opened for writing, as far as can be told without doing it.
bool canBeWritten(const std::string& file) {
  std::error_code code;
  if (std::filesystem::exists(file, code)) {
    return !std::filesystem::is_directory(file, code) && access(file.c_str(), W_OK) == 0;
  }
  const std::string folder = std::filesystem::path(file).parent_path().string();
  return access(folder.empty() ? "." : folder.c_str(), W_OK) == 0;
}

// What is wrong with the files that are to be written; empty if nothing is. The last state may take
// the place of the first.
std::string wrongWithOutputs(const Arguments& arguments) {
  const std::string& csv = arguments.options.csvFile;
  const std::string& torques = arguments.options.torqueFile;
  for (const std::string& input : {arguments.file, torques}) {
    if (isSameFile(csv, input)) return csv + ": would be written over";
  }
  if (isSameFile(arguments.final, torques)) return torques + ": would be written over";
  if (isSameFile(csv, arguments.final)) return csv + ": can't take both --csv and --final";
  // Known now, and not behind a long run.
  if (!arguments.final.empty() && !canBeWritten(arguments.final)) {
    return arguments.final + ": can't be written";
  }
  return {};
}

int run(const Arguments& arguments) {
  if (const std::string wrong = wrongWithOutputs(arguments); !wrong.empty()) {
    std::fprintf(stderr, "%s\n", wrong.c_str());
    return 1;
  }
  KtStatedSystem system;
  if (!loadSystem(arguments.file, system)) return 1;
  SimulateOptions options = arguments.options;
  if (!arguments.method.empty()) options.method = kMethods.at(arguments.method);
  options.name = arguments.file;
  options.stopsAtLimits = arguments.limits == "stop";
  if (const std::vector<double>& g = arguments.gravity; g.size() == 3) {
    options.upGravity = KtVector(g[0], g[1], g[2]);
  }
  for (const std::string& note : simulationNotes(system, options)) {
    std::fprintf(stderr, "%s: note: %s\n", arguments.file.c_str(), note.c_str());
  }
  SimulateResult result;
  std::string error;
  const bool good = simulate(system, options, result, error);
  if (result.steps > 0 || good) std::fputs(describeSimulation(result).c_str(), stdout);
  if (!good) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  if (arguments.final.empty()) return 0;
  return KtXmlWriter::writeFile(arguments.final, system) ? 0 : 1;  // which tells why
}

}  // namespace

void addSimulate(CLI::App& app, int& status) {
  CLI::App* command =
      app.add_subcommand("simulate", "Carries a stated system on in time, in equal steps");
  auto arguments = std::make_shared<Arguments>();
  SimulateOptions& options = arguments->options;
  command->add_option("system", arguments->file, "the file of the system")->required();
  command->add_option("--duration", options.duration, "how long to go on, s")->required();
  command->add_option("--step", options.step, "length of a step, s")->required();
  command
      ->add_option("--method", arguments->method,
                   "how accelerations are found: articulated (fast), or composite, which honours "
                   "equality constraints (default: composite for manipulators that have some)")
      ->check(CLI::IsMember(kMethods));
  addGravityOption(*command, arguments->gravity);
  command
      ->add_option("--limits", arguments->limits,
                   "what becomes of a joint's rate at a limit: keep (default, the library's step) "
                   "or stop")
      ->check(CLI::IsMember({"keep", "stop"}));
  command->add_option("--torque", options.torqueFile, "a file of joint torques over time; else 0");
  command->add_option("--csv", options.csvFile, "where to write every state");
  command->add_option("--final", arguments->final,
                      "where to write the system with the state at the end");
  command->footer(
      "A step computes accelerations, then rates from them, then positions from the new rates\n"
      "(semi-implicit Euler, first order: halving the step halves the error). The last step is\n"
      "shorter where the duration is no multiple of the step. A run that goes on from --final\n"
      "gives the same bits as one that goes through, where both times are multiples of the step.\n"
      "\n"
      "--torque: a header, time,<joint>,... and a line for each time at which torques change; a\n"
      "joint is named by its link, behind <manipulator>/ if there are several. They hold until "
      "the\n"
      "next line; 0 before the first. They are torques at the joint, as with evaluate --tau: "
      "those\n"
      "of the motor times the gear ratio, cut to the motor's limits. The gear's efficiency takes\n"
      "its part of them.\n"
      "\n"
      "Springs, dampers, friction, stoppers and the inertias of rotors act. Dry friction holds a\n"
      "joint whose rate is in the actuator's stick region; while one step can carry the rate\n"
      "across that region, the joint trembles instead. Currents and pressures are not simulated.\n"
      "A rate is cut to the actuator's greatest. A joint stops at a limit; with --limits keep it\n"
      "keeps its rate there, and gathers more while it is pushed, which acts on the other joints;\n"
      "with --limits stop it hits the limit without rebound, and the rest of the mechanism feels\n"
      "that. Links don't collide.\n"
      "\n"
      "--csv: a line for the start, and one behind each step. Columns: time; for each joint\n"
      "<joint>.q, .qd, .qdd, its position, rate, and acceleration in that state (rad or m); the\n"
      "frame of the base, base.x, .y, .z, .qw, .qx, .qy, .qz, a unit quaternion; kineticEnergy,\n"
      "with the rotors, and potentialEnergy, of weights and of springs at single joints, J, of "
      "the\n"
      "whole system; limitsHit, the joints that the step took against a limit, with ; between.\n"
      "Joints and bases stand behind <manipulator>/ if there are several.\n"
      "\n"
      "Where nothing but the integrator can have changed the energy, the summary names its drift.\n"
      "Else it has a balance: what torques, friction, dampers, limits and cut rates have added to\n"
      "the energy, negative where they took from it. What is left is the integrator's error.");
  command->callback([arguments, &status] { status = run(*arguments); });
}
