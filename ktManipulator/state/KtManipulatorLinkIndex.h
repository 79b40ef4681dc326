#pragma once

#include "ktManipulator/foundation/core/KtTypes.h"

/// A link of a system by two indices; a plain value that holds until the next mapping.
class KtManipulatorLinkIndex {
 public:
  /// Link 0 of manipulator 0.
  constexpr KtManipulatorLinkIndex() noexcept = default;
  /// From the two indices; the link's is `ktBaseIndex` for a root.
  constexpr KtManipulatorLinkIndex(KtU32 manipulatorIndex, KtU32 linkIndex) noexcept
      : manipulatorIndex_(manipulatorIndex), linkIndex_(linkIndex) {}

  /// Position of the manipulator in its system.
  constexpr KtU32 manipulatorIndex() const noexcept { return manipulatorIndex_; }
  constexpr void setManipulatorIndex(KtU32 index) noexcept { manipulatorIndex_ = index; }
  /// Index of the link in its manipulator.
  constexpr KtU32 linkIndex() const noexcept { return linkIndex_; }
  constexpr void setLinkIndex(KtU32 index) noexcept { linkIndex_ = index; }

  /// Whether both indices are equal.
  constexpr bool operator==(const KtManipulatorLinkIndex&) const noexcept = default;
  /// Order by manipulator, then by link.
  constexpr bool operator<(const KtManipulatorLinkIndex& other) const noexcept {
    return manipulatorIndex_ != other.manipulatorIndex_
               ? manipulatorIndex_ < other.manipulatorIndex_
               : linkIndex_ < other.linkIndex_;
  }

 private:
  KtU32 manipulatorIndex_ = 0;
  KtU32 linkIndex_ = 0;
};
