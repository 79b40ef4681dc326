#pragma once

#include <string>
#include <vector>

#include "ImportModel.h"

/// What came out of a robot's file.
struct ImportResult {
  bool good = false;                    ///< Whether there is a system.
  std::vector<ImportFinding> errors;    ///< Why not, in the order of the lines.
  std::vector<ImportFinding> notTaken;  ///< What the system has nothing of, likewise.
  KtStatedSystem system;
};

/// Reads a robot's URDF text into a stated system; see `importModel`.
ImportResult importUrdf(const std::string& text, const ImportOptions& options);
