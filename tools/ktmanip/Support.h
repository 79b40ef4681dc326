#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/model/KtStatedSystem.h"

/// @file
/// Functions that several subcommands use.

/// A JSON value whose members keep their order.
using Json = nlohmann::ordered_json;

/// Reads a stated system and reports mistakes of the file on standard error.
///
/// @return true if the file has no mistake
bool loadSystem(const std::string& file, KtStatedSystem& system);

/// An active state with the positions and velocities of one manipulator of a system.
KtManipulatorActiveState activeStateOf(const KtStatedSystem& system, KtU32 manipulator);

/// The base for place 0, the link of index i for place i + 1.
const KtManipulatorLink& linkAt(const KtIndividualManipulator& manipulator, KtU32 place);

/// The mass of all links and the base, kg.
double totalMass(const KtIndividualManipulator& manipulator);

/// [x, y, z]
Json jsonOf(const KtVector& v);
