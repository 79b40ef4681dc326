#pragma once

#include <string>
#include <vector>

#include "Support.h"

/// Describes the manipulators of a system: `{"manipulators": [...], "warnings": [...]}`, with
/// masses in the links' primary frames and all that concerns the whole in the system.
Json describe(const KtStatedSystem& system);

/// What looks wrong in a system: links that move without a mass, inertias that no body has, limits
/// that cross or are out of keeping with the state, labels that clash.
std::vector<std::string> warningsAbout(const KtStatedSystem& system);
