#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Support.h"

/// Options of `evaluate`. Each list has one entry for each joint.
struct EvaluateOptions {
  std::optional<KtU32> manipulator;        ///< Index; by default all are evaluated.
  std::optional<KtVector> upGravity;       ///< Replaces that of the system, m/s^2.
  std::optional<std::vector<double>> q;    ///< Replaces the joint positions of the file.
  std::optional<std::vector<double>> qd;   ///< Replaces the joint rates of the file.
  std::optional<std::vector<double>> qdd;  ///< For the inverse dynamics; 0 by default.
  std::optional<std::vector<double>> tau;  ///< For the forward dynamics; 0 by default.
};

/// Evaluates a system.
///
/// The dynamics include links, rotors, springs and dampers. They ignore the friction and stoppers
/// of actuators, and equality constraints. The inverse dynamics assume that the base doesn't
/// accelerate. All vectors are in system axes, with linear components first; the force and the
/// acceleration of the base are given at the origin of its frame. The potential energy is that of
/// gravity, and 0 if the centre of mass is at the height of the system's origin. The index of the
/// base is -1.
///
/// @param result  receives `{"manipulators": [...]}`
/// @param error   receives a message if an option is wrong or a result is not finite
/// @return        true if all options are right and all results are finite
bool evaluate(const KtStatedSystem& system, const EvaluateOptions& options, Json& result,
              std::string& error);
