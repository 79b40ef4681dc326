#pragma once

#include <deque>
#include <unordered_map>
#include <vector>

#include "ktManipulator/collision/KtShapeCollisionData.h"

/// The records of the shape pairs of a system that collide, kept from step to step, so that
/// friction and last velocities survive.
///
/// Pointers to records hold until `clear`, an assignment to the cache or its end. A copy has copies
/// of all records.
class KT_EXPORT KtSystemShapeCollisionCache {
 public:
  /// Removes all records.
  void clear();
  /// Marks every record as not valid for this step. None is lost.
  void invalidateAll();
  /// The record of a pair, made now if there is none. There is one record for a pair: asked for in
  /// the other order, it comes with its sides exchanged, so that the first key is always side 1.
  ///
  /// @return never null; owned by the cache
  KtShapeCollisionData* getCollisionData(const KtShapeKey& shapeKey1, const KtShapeKey& shapeKey2);
  /// Marks a record of this cache as valid for this step; a record that is valid stays in its place
  /// among the valid ones. Null does nothing; a record of no pair of this cache is reported.
  void setValid(const KtShapeCollisionData* record);
  /// Starts the visit of the valid records anew.
  void resetNextCollisionData() noexcept { next_ = 0; }
  /// The next valid record, in the order in which they became valid; null behind the last.
  KtShapeCollisionData* nextCollisionData() noexcept {
    return next_ < valid_.size() ? &entries_[valid_[next_++]].record : nullptr;
  }

 private:
  struct Entry {
    KtShapeCollisionData record;
    bool valid = false;
  };

  // A deque: its elements stay where they are when it grows.
  std::deque<Entry> entries_;
  std::unordered_map<KtShapeProximityKey, std::size_t> indices_;  // by the pair in its own order
  std::vector<std::size_t> valid_;
  std::size_t next_ = 0;
};
