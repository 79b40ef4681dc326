#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/model/KtStatedSystem.h"

/// @file
/// What subcommands share.

/// A JSON value whose members keep their order.
using Json = nlohmann::ordered_json;

/// Reads a stated system; what is wrong with the file is reported on standard error.
///
/// @return whether nothing was wrong
bool loadSystem(const std::string& file, KtStatedSystem& system);

/// An active state of the positions and velocities that a system has of one manipulator.
KtManipulatorActiveState activeStateOf(const KtStatedSystem& system, KtU32 manipulator);

/// The link of a place in the order in which links are told: 0 is the base, and i + 1 the link of
/// index i.
const KtManipulatorLink& linkAt(const KtIndividualManipulator& manipulator, KtU32 place);

/// The mass of all links, kg.
double totalMass(const KtIndividualManipulator& manipulator);

/// [x, y, z]
Json jsonOf(const KtVector& v);
