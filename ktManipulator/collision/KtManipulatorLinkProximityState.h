#pragma once

#include <memory>
#include <vector>

#include "ktManipulator/collision/KtLinkProximityData.h"
#include "ktManipulator/collision/KtSystemActiveBoundingBoxState.h"

/// The distances of one manipulator's links to each other and to those of the others, each found
/// again only when one of its two manipulators may have moved.
///
/// Each manipulator of the system has a stamp, and a move changes nothing but this stamp: the
/// distances that were found with another one don't hold any more. A pair stands under its keys in
/// the order in which they are given; (a, b) and (b, a) are two pairs.
class KT_EXPORT KtManipulatorLinkProximityState {
 public:
  /// Without pairs and stamps.
  KtManipulatorLinkProximityState() noexcept;
  KtManipulatorLinkProximityState(const KtManipulatorLinkProximityState& other);
  KtManipulatorLinkProximityState(KtManipulatorLinkProximityState&& other) noexcept;
  KtManipulatorLinkProximityState& operator=(const KtManipulatorLinkProximityState& other);
  KtManipulatorLinkProximityState& operator=(KtManipulatorLinkProximityState&& other) noexcept;
  virtual ~KtManipulatorLinkProximityState();

  /// Boxes around the links of the system, with a tolerance of this manipulator's own.
  virtual const KtSystemActiveBoundingBoxState& systemActiveBoundingBoxState() const {
    return boxState_;
  }
  virtual KtSystemActiveBoundingBoxState& systemActiveBoundingBoxState() { return boxState_; }
  virtual void setSystemActiveBoundingBoxState(const KtSystemActiveBoundingBoxState& state) {
    boxState_ = state;
  }
  /// The entry of a pair, made now if there is none, though this is constant; a new one doesn't
  /// hold. It stays where it is until `initialize` or an assignment.
  virtual const KtLinkProximityData& getData(const KtLinkKey& key1, const KtLinkKey& key2) const;
  virtual KtLinkProximityData& getData(const KtLinkKey& key1, const KtLinkKey& key2);
  /// Sets the distance of a pair, m, and notes that it holds as its two manipulators stand now.
  ///
  /// @return false, with nothing done, if the pair has no entry
  virtual bool setDistance(const KtLinkKey& key1, const KtLinkKey& key2, double distance);
  /// The distance in a pair's entry, m, whether it holds or not.
  virtual double getDistance(const KtLinkKey& key1, const KtLinkKey& key2) const;
  /// Makes the distances of all pairs invalid, and the boxes outdated.
  virtual void invalidateAll();
  /// Makes the distances of all pairs with links of one manipulator invalid, and the boxes
  /// outdated.
  virtual void invalidate(KtU32 manipulatorIndex);
  /// Whether a pair has an entry, found as its two manipulators stand now.
  virtual bool isValid(const KtLinkKey& key1, const KtLinkKey& key2) const;
  /// Notes that the distance of a pair holds as its two manipulators stand now.
  ///
  /// @return false, with nothing done, if the pair has no entry
  virtual bool setValid(const KtLinkKey& key1, const KtLinkKey& key2);
  /// Starts anew, with an entry for each pair of links that can collide, of which the first is one
  /// of the manipulator's. A pair of its own links stands in ascending order, the root last. Pairs
  /// that were there are dropped.
  ///
  /// @return whether it is initialized; it stays as it was if there is no such manipulator
  virtual bool initialize(KtU32 manipulatorIndex, const KtManipulatorSystem& system);
  /// Sets what `isInitialized()` answers.
  virtual void setIsInitialized(const bool& value) { isInitialized_ = value; }
  /// Whether the pairs have been set up. False by default.
  virtual bool isInitialized() const { return isInitialized_; }

 private:
  struct Table;

  Table& table() const;
  KtLinkProximityData* find(const KtLinkKey& key1, const KtLinkKey& key2) const;
  void stamp(KtLinkProximityData& data, const KtLinkKey& key1, const KtLinkKey& key2) const;
  KtU32 stampOf(KtU32 manipulatorIndex) const noexcept {
    return manipulatorIndex < stamps_.size() ? stamps_[manipulatorIndex]
                                             : KtLinkProximityData::kNever;
  }

  // Behind a pointer, so that users need not have the library that it comes from. Null while empty.
  mutable std::unique_ptr<Table> table_;
  KtSystemActiveBoundingBoxState boxState_;
  std::vector<KtU32> stamps_;
  bool isInitialized_ = false;
};
