/// @file
/// Who asks the links of a manipulator for what depends on attachments.
#pragma once

#include "ktManipulator/model/KtStatedSystem.h"

namespace Kt::detail {

/// A manipulator of a stated system as the one that asks: a null pointer where nothing is attached
/// to any link, so that links needn't look for that.
class Asker {
 public:
  /// The system has to live as long as this object.
  Asker(const KtStatedSystem& system, KtU32 manipulatorIndex)
      : self_{system.hasAttachments() ? &system : nullptr, manipulatorIndex} {}

  /// What links are given.
  operator const KtStatedSystemStruct*() const noexcept {
    return self_.statedSystem != nullptr ? &self_ : nullptr;
  }

 private:
  KtStatedSystemStruct self_;
};

}  // namespace Kt::detail
