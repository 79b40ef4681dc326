#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ktManipulator/simulation/KtSimulation.h"

/// How a system is simulated.
struct SimulateOptions {
  double duration = 0.0;  ///< s
  double step = 0.0;      ///< s
  KtSimulation::Method method = KtSimulation::Method::kAutomatic;
  std::optional<KtVector> upGravity;  ///< In the place of the system's, m/s^2.
  bool stopsAtLimits = false;         ///< Whether joints lose their rates at limits.
  std::string torqueFile;             ///< Joint torques over time; none if empty.
  std::string csvFile;                ///< Where every state is written to; nowhere if empty.
  std::string name = "the system";    ///< What messages call it, such as its file.
};

/// What came of a simulation.
struct SimulateResult {
  std::uint64_t steps = 0;  ///< Those that led to a finite state.
  bool completed = false;   ///< Whether all did.
  double simulated = 0.0;   ///< s
  double wall = 0.0;        ///< s
  double kineticBefore = 0.0, potentialBefore = 0.0, kineticAfter = 0.0,
         potentialAfter = 0.0;              ///< J
  KtEnergyBalance balance;                  ///< What has changed the energy.
  double constraintError = 0.0;             ///< `KtSimulation::constraintError`, at the end.
  double greatestKinetic = 0.0;             ///< Of some states on the way, J.
  bool stopsAtLimits = false;               ///< As in the options.
  std::vector<KtSimulation::Joint> joints;  ///< With how often limits and greatest rates were hit.
  std::vector<KtSimulation::Stop> stops;    ///< What stopping criteria registered.
  std::vector<std::string> labels;          ///< Those of the manipulators.
};

/// Simulates a system: see `KtSimulation` and `TimeGrid`.
///
/// A run that is continued from its last state gives the same bits as one that goes through, where
/// start and duration are multiples of the step: but for what is no part of a state, the bristles
/// of static friction, and the rotors of joints that are not rigid.
///
/// @param system  in: where it starts. Out: where it ends, also if it ends early
/// @param error   receives what went wrong
/// @return        whether all steps were made and everything was written
bool simulate(KtStatedSystem& system, const SimulateOptions& options, SimulateResult& result,
              std::string& error);

/// What a user should know before: what of a system is not simulated with these options, and what
/// the step is too long for.
std::vector<std::string> simulationNotes(const KtStatedSystem& system,
                                         const SimulateOptions& options);

/// The result as lines for people.
std::string describeSimulation(const SimulateResult& result);
