#pragma once

#include <cstddef>
#include <vector>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"

/// Which pairs of links of a manipulator are tested for collision: a square table of bits, by link
/// index, with the base in the last row and column. A row takes memory when its first bit is set.
class KT_EXPORT KtLinkCollisionTable {
 public:
  /// Gives the table a number of rows and of bits in each, none of them set.
  void reset(std::size_t size) {
    rows_.clear();
    rows_.resize(size);
  }
  /// Number of rows, and of bits in each.
  std::size_t size() const noexcept { return rows_.size(); }
  /// Sets a bit; both indices must be below the size.
  void set(std::size_t row, std::size_t column) {
    if (rows_[row].empty()) rows_[row].resize(size());
    rows_[row][column] = true;
  }
  /// Whether a bit is set; false beyond the size.
  bool test(std::size_t row, std::size_t column) const {
    return row < size() && column < rows_[row].size() && rows_[row][column];
  }

  bool operator==(const KtLinkCollisionTable&) const = default;

 private:
  std::vector<std::vector<bool>> rows_;
};
