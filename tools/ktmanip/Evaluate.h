#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Support.h"

/// In which state, and under what, a system is evaluated. Lists have an entry for each joint.
struct EvaluateOptions {
  std::optional<KtU32> manipulator;        ///< The only one to be evaluated.
  std::optional<KtVector> upGravity;       ///< In the place of the system's, m/s^2.
  std::optional<std::vector<double>> q;    ///< Joint positions in the place of the file's.
  std::optional<std::vector<double>> qd;   ///< Joint rates in the place of the file's.
  std::optional<std::vector<double>> qdd;  ///< Accelerations of the inverse dynamics; else 0.
  std::optional<std::vector<double>> tau;  ///< Torques of the forward dynamics; else 0.
};

/// Evaluates a system.
///
/// Dynamics are those of the links, rotors, springs and dampers: friction and stoppers of the
/// actuators don't count, nor do equality constraints. The base doesn't accelerate in the inverse
/// dynamics. Linear parts come first, in the axes of the system; forces and accelerations of the
/// base are those at the origin of its frame. The potential energy is that of the weight, 0 where
/// the centre of mass is in the plane of the system's origin; the index of the base is -1.
///
/// @param result  receives `{"manipulators": [...]}`
/// @param error   receives what is wrong with the options
/// @return        whether nothing is
bool evaluate(const KtStatedSystem& system, const EvaluateOptions& options, Json& result,
              std::string& error);
