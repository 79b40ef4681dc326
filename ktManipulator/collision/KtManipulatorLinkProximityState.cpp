#include "ktManipulator/collision/KtManipulatorLinkProximityState.h"

#include <boost/unordered_map.hpp>

#include "ktManipulator/model/KtManipulatorSystem.h"

struct KtManipulatorLinkProximityState::Table {
  boost::unordered_map<KtLinkProximityKey, KtLinkProximityData> pairs;
};

KtManipulatorLinkProximityState::KtManipulatorLinkProximityState() noexcept = default;
KtManipulatorLinkProximityState::KtManipulatorLinkProximityState(
    KtManipulatorLinkProximityState&&) noexcept = default;
KtManipulatorLinkProximityState& KtManipulatorLinkProximityState::operator=(
    KtManipulatorLinkProximityState&&) noexcept = default;
KtManipulatorLinkProximityState::~KtManipulatorLinkProximityState() = default;

KtManipulatorLinkProximityState::KtManipulatorLinkProximityState(
    const KtManipulatorLinkProximityState& other)
    : table_(other.table_ != nullptr ? std::make_unique<Table>(*other.table_) : nullptr),
      boxState_(other.boxState_),
      stamps_(other.stamps_),
      isInitialized_(other.isInitialized_) {}

KtManipulatorLinkProximityState& KtManipulatorLinkProximityState::operator=(
    const KtManipulatorLinkProximityState& other) {
  return *this = KtManipulatorLinkProximityState(other);
}

KtManipulatorLinkProximityState::Table& KtManipulatorLinkProximityState::table() const {
  if (table_ == nullptr) table_ = std::make_unique<Table>();
  return *table_;
}

KtLinkProximityData* KtManipulatorLinkProximityState::find(const KtLinkKey& key1,
                                                           const KtLinkKey& key2) const {
  if (table_ == nullptr) return nullptr;
  const auto pair = table_->pairs.find({key1, key2});
  return pair != table_->pairs.end() ? &pair->second : nullptr;
}

const KtLinkProximityData& KtManipulatorLinkProximityState::getData(const KtLinkKey& key1,
                                                                    const KtLinkKey& key2) const {
  return table().pairs[{key1, key2}];
}

KtLinkProximityData& KtManipulatorLinkProximityState::getData(const KtLinkKey& key1,
                                                              const KtLinkKey& key2) {
  return table().pairs[{key1, key2}];
}

bool KtManipulatorLinkProximityState::setDistance(const KtLinkKey& key1, const KtLinkKey& key2,
                                                  double distance) {
  KtLinkProximityData* const data = find(key1, key2);
  if (data == nullptr) return false;
  data->setDistance(distance);
  stamp(*data, key1, key2);
  return true;
}

double KtManipulatorLinkProximityState::getDistance(const KtLinkKey& key1,
                                                    const KtLinkKey& key2) const {
  return getData(key1, key2).distance();
}

namespace {

void advance(KtU32& stamp) {
  if (++stamp == KtLinkProximityData::kNever) stamp = 0;
}

}  // namespace

void KtManipulatorLinkProximityState::invalidateAll() {
  for (KtU32& stamp : stamps_) advance(stamp);
  boxState_.invalidateAll();
}

void KtManipulatorLinkProximityState::invalidate(KtU32 manipulatorIndex) {
  if (manipulatorIndex < stamps_.size()) advance(stamps_[manipulatorIndex]);
  boxState_.invalidateAll();
}

bool KtManipulatorLinkProximityState::isValid(const KtLinkKey& key1, const KtLinkKey& key2) const {
  const KtU32 stamp1 = stampOf(key1.manipulatorIndex);
  const KtU32 stamp2 = stampOf(key2.manipulatorIndex);
  // Of a manipulator without a stamp nothing is known to hold.
  if (stamp1 == KtLinkProximityData::kNever || stamp2 == KtLinkProximityData::kNever) return false;
  const KtLinkProximityData* const data = find(key1, key2);
  return data != nullptr && data->updateTime1() == stamp1 && data->updateTime2() == stamp2;
}

bool KtManipulatorLinkProximityState::setValid(const KtLinkKey& key1, const KtLinkKey& key2) {
  KtLinkProximityData* const data = find(key1, key2);
  if (data == nullptr) return false;
  stamp(*data, key1, key2);
  return true;
}

void KtManipulatorLinkProximityState::stamp(KtLinkProximityData& data, const KtLinkKey& key1,
                                            const KtLinkKey& key2) const {
  data.setUpdateTime1(stampOf(key1.manipulatorIndex));
  data.setUpdateTime2(stampOf(key2.manipulatorIndex));
}

bool KtManipulatorLinkProximityState::initialize(KtU32 manipulatorIndex,
                                                 const KtManipulatorSystem& system) {
  const auto& manipulators = system.manipulators();
  const KtU32 count = manipulators.size();
  if (manipulatorIndex >= count) return isInitialized_;
  const KtIndividualManipulator& own = manipulators[manipulatorIndex];
  const KtU32 joints = own.jointDof();
  const auto linkAt = [](KtU32 index, KtU32 size) { return index == size ? ktBaseIndex : index; };
  auto& pairs = table().pairs;
  // Entries of another system could have the stamps that this one starts with.
  pairs.clear();
  for (KtU32 i = 0; i <= joints; ++i) {
    const KtU32 a = linkAt(i, joints);
    for (KtU32 j = i; j <= joints; ++j) {
      const KtU32 b = linkAt(j, joints);
      if (own.canCollide(a, b)) pairs[{{manipulatorIndex, a}, {manipulatorIndex, b}}];
    }
    for (KtU32 k = 0; k < count; ++k) {
      if (k == manipulatorIndex) continue;
      const KtU32 others = manipulators[k].jointDof();
      for (KtU32 j = 0; j <= others; ++j) {
        const KtU32 c = linkAt(j, others);
        if (system.canCollide(manipulatorIndex, a, k, c)) pairs[{{manipulatorIndex, a}, {k, c}}];
      }
    }
  }
  stamps_.assign(count, 0);
  isInitialized_ = true;
  return true;
}
