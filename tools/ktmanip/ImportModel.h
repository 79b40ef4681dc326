#pragma once

#include <urdf_model/model.h>

#include <string>
#include <vector>

#include "ImportDocument.h"
#include "ktManipulator/model/KtStatedSystem.h"

/// How a robot is to be imported.
struct ImportOptions {
  bool floatingBase = false;  ///< Whether the root moves freely.
  std::string name;           ///< Label of the base; the root link's name if empty.
};

/// Makes a stated system of a robot: one manipulator, in a state at rest, under a gravity of
/// 9.81 m/s^2 along -z.
///
/// Links that hang on fixed joints become part of the link that they hang on: their mass an entry
/// of its map of mass properties, their shapes shapes of it, their frames named frames, all by the
/// link's name. A planar joint becomes two slides and a hinge, joined by links without mass. Joints
/// stand at 0, or at the limit next to it, and those that mimic another one where that puts them.
/// No two links are candidates for a collision yet; the map of them lists those with shapes.
///
/// @param model     the robot
/// @param document  its text, for the order of joints
/// @param notTaken  receives what has no place in a stated system
KtStatedSystem importModel(const urdf::ModelInterface& model, const ImportDocument& document,
                           const ImportOptions& options, std::vector<ImportFinding>& notTaken);
