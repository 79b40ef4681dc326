#pragma once

#include <CLI/App.hpp>
#include <vector>

/// @file
/// The subcommands of ktmanip, one source each. Each function adds one to the application; where it
/// is chosen, it runs while the command line is parsed and leaves its exit status, which is 0 only
/// for success.

/// `ktmanip import`: makes a stated system of a robot's URDF file.
void addImport(CLI::App& app, int& status);
/// `ktmanip inspect`: tells what a stated system is made of, and what looks wrong with it.
void addInspect(CLI::App& app, int& status);
/// `ktmanip evaluate`: frames, velocities, inertias, torques and accelerations in one state.
void addEvaluate(CLI::App& app, int& status);
/// `ktmanip simulate`: carries a stated system on in time.
void addSimulate(CLI::App& app, int& status);

/// The option `--gravity X Y Z` of a subcommand: the acceleration upwards, m/s^2.
///
/// @param gravity  receives the three numbers; stays empty without the option
void addGravityOption(CLI::App& command, std::vector<double>& gravity);
