#pragma once

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"

class KtStatedSystem;

/// Who asks a link for what depends on the manipulators that are attached to it. It is passed by
/// pointer: a null pointer, or one to a struct without a stated system, asks for the link alone.
struct KT_EXPORT KtStatedSystemStruct {
  /// The stated system that knows the attachments; not owned.
  const KtStatedSystem* statedSystem = nullptr;
  /// The manipulator, of those of that system, to which the link belongs.
  KtU32 manipulatorIndex = 0;
};
