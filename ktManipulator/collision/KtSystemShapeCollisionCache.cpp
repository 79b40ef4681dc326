#include "ktManipulator/collision/KtSystemShapeCollisionCache.h"

#include "ktManipulator/foundation/core/KtPrint.h"

namespace {

KtShapeProximityKey ordered(const KtShapeProximityKey& key) {
  return key.second < key.first ? KtShapeProximityKey{key.second, key.first} : key;
}

}  // namespace

void KtSystemShapeCollisionCache::clear() {
  entries_.clear();
  indices_.clear();
  valid_.clear();
  next_ = 0;
}

void KtSystemShapeCollisionCache::invalidateAll() {
  for (const std::size_t index : valid_) entries_[index].valid = false;
  valid_.clear();
  next_ = 0;
}

KtShapeCollisionData* KtSystemShapeCollisionCache::getCollisionData(const KtShapeKey& shapeKey1,
                                                                    const KtShapeKey& shapeKey2) {
  const KtShapeProximityKey key{shapeKey1, shapeKey2};
  const auto [place, isNew] = indices_.try_emplace(ordered(key), entries_.size());
  if (isNew) entries_.push_back({KtShapeCollisionData(shapeKey1, shapeKey2), false});
  KtShapeCollisionData& record = entries_[place->second].record;
  if (record.key() != key) record.swapSides();
  return &record;
}

void KtSystemShapeCollisionCache::setValid(const KtShapeCollisionData* record) {
  if (record == nullptr) return;
  const auto found = indices_.find(ordered(record->key()));
  if (found == indices_.end() || &entries_[found->second].record != record) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtSystemShapeCollisionCache::setValid(): the record is none of this cache.\n");
    return;
  }
  Entry& entry = entries_[found->second];
  if (entry.valid) return;
  entry.valid = true;
  valid_.push_back(found->second);
}
