#pragma once

#include <CLI/App.hpp>
#include <vector>

/// @file
/// The subcommands of ktmanip, one source each. Each function adds one to the application. A
/// chosen subcommand runs while the command line is parsed and sets `status` to its exit status,
/// which is 0 only for success.

/// `ktmanip import`: converts a robot's URDF file to a stated system.
void addImport(CLI::App& app, int& status);
/// `ktmanip inspect`: lists the contents of a stated system, with warnings.
void addInspect(CLI::App& app, int& status);
/// `ktmanip evaluate`: frames, velocities, inertias, torques and accelerations in one state.
void addEvaluate(CLI::App& app, int& status);
/// `ktmanip simulate`: simulates the motion of a stated system.
void addSimulate(CLI::App& app, int& status);

/// The option `--gravity X Y Z` of a subcommand: the upward gravity vector, m/s^2.
///
/// @param gravity  receives the three numbers; stays empty without the option
void addGravityOption(CLI::App& command, std::vector<double>& gravity);
