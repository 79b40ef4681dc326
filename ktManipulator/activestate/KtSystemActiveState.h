#pragma once

#include <vector>

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/collision/KtManipulatorLinkProximityState.h"
#include "ktManipulator/collision/KtSystemActiveBoundingBoxState.h"
#include "ktManipulator/collision/KtSystemShapeCollisionCache.h"
#include "ktManipulator/state/KtManipulatorExternalForce.h"
#include "ktManipulator/state/KtManipulatorSystemState.h"

/// The positions and velocities of all manipulators of a system, and a cache of the results
/// computed from them.
///
/// The caller owns it and passes it to queries, so one mechanism can be used with several active
/// states. It takes its sizes from the first state that is set. Setters compute nothing: they
/// invalidate the values that depend on the new state, and nothing if the state is the same. Boxes,
/// distances and collisions of the system depend on positions alone. Contact forces stay valid
/// until positions change, too; if they depend on velocities, invalidate them with
/// `setGeneralForceValid`.
///
/// Only one thread at a time may use it, and only one thread at a time may use a mechanism, even
/// with different active states.
class KT_EXPORT KtSystemActiveState
    : public KtXmlPersistent<KtSystemActiveState, KtXmlCompoundType> {
 public:
  /// One active state for each manipulator.
  using ActiveStateVector = KtXmlVectorType<KtManipulatorActiveState>;
  /// Forces on the links of each manipulator.
  using ForceVector = KtXmlVectorType<KtManipulatorExternalForce>;
  /// One table of distances for each manipulator.
  using ProximityStateVector = std::vector<KtManipulatorLinkProximityState>;
  /// Shapes of a system.
  using ShapeKeyVector = std::vector<KtShapeStateCacheKey>;

  /// Reads the state, and makes all that hangs on the system invalid; see `KtXmlObject::read`.
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// The active states of the manipulators. Empty by default.
  virtual const ActiveStateVector& manipulatorActiveStateVector() const {
    return manipulatorActiveStateVector_;
  }
  /// The same, to be filled. What is set through it leaves boxes, distances, collisions and contact
  /// forces as they are; see `invalidateAll`.
  virtual ActiveStateVector& manipulatorActiveStateVector() {
    return manipulatorActiveStateVector_;
  }
  /// Replaces the states and leaves everything else as it is.
  virtual void setManipulatorActiveStateVector(const ActiveStateVector& states) {
    manipulatorActiveStateVector_ = states;
  }
  /// Boxes around the links of the system.
  virtual const KtSystemActiveBoundingBoxState& systemActiveBoundingBoxState() const {
    return systemActiveBoundingBoxState_;
  }
  virtual KtSystemActiveBoundingBoxState& systemActiveBoundingBoxState() {
    return systemActiveBoundingBoxState_;
  }
  virtual void setSystemActiveBoundingBoxState(const KtSystemActiveBoundingBoxState& state) {
    systemActiveBoundingBoxState_ = state;
  }
  /// Sets the number of manipulators. Those that stay keep their states.
  virtual void setNumManipulators(KtU32 count) { manipulatorActiveStateVector_.resize(count); }
  /// Sets positions and velocities of all manipulators, and their number. A manipulator of which
  /// the state has no velocity keeps its own.
  virtual void setNonredundantState(const KtManipulatorSystemState& state);
  /// Sets position and velocity of one manipulator to those of an active state. A bad index does
  /// nothing.
  ///
  /// If the position differs, the tables of distances are cut or filled up to index + 1: this
  /// serves one manipulator at a time.
  virtual void setManipulatorNonredundantState(const KtManipulatorActiveState& activeState,
                                               KtU32 index);
  /// The same for the position alone.
  virtual void setManipulatorNonredundantPositionState(const KtPositionState& state, KtU32 index);
  /// Makes everything invalid: all active states, distances, boxes, collisions and contact forces.
  virtual void invalidateAll();
  /// Drops all that depends on the mechanism, for when that has changed. The next
  /// `setNonredundantState` builds it anew.
  virtual void resetForSystemChange();
  /// The contact forces on the links of each manipulator. They hold if `generalForceValid()`.
  virtual ForceVector& generalForceVector() { return generalForceVector_; }
  virtual void setGeneralForceVector(const ForceVector& forces) { generalForceVector_ = forces; }
  /// Whether `generalForceVector()` holds. False by default.
  virtual bool generalForceValid() const { return generalForceValid_; }
  virtual void setGeneralForceValid(const bool& valid) { generalForceValid_ = valid; }
  /// Makes boxes, collisions and contact forces invalid.
  virtual void invalidateSystemLevel();
  /// Empties `modifiedShapeKeyVec()`.
  virtual void invalidateModifiedShapeKey() { modifiedShapeKeyVec_.clear(); }
  /// The tables of distances of the manipulators. Empty by default.
  virtual const ProximityStateVector& manipulatorLinkProximityStateVector() const {
    return manipulatorLinkProximityStateVector_;
  }
  virtual ProximityStateVector& manipulatorLinkProximityStateVector() {
    return manipulatorLinkProximityStateVector_;
  }
  virtual void setManipulatorLinkProximityStateVector(const ProximityStateVector& states) {
    manipulatorLinkProximityStateVector_ = states;
  }
  /// The records of shapes that collide.
  virtual const KtSystemShapeCollisionCache& systemShapeCollisionCache() const {
    return systemShapeCollisionCache_;
  }
  virtual KtSystemShapeCollisionCache& systemShapeCollisionCache() {
    return systemShapeCollisionCache_;
  }
  virtual void setSystemShapeCollisionCache(const KtSystemShapeCollisionCache& cache) {
    systemShapeCollisionCache_ = cache;
  }
  /// The shapes that the present query has changed.
  virtual const ShapeKeyVector& modifiedShapeKeyVec() const { return modifiedShapeKeyVec_; }
  virtual ShapeKeyVector& modifiedShapeKeyVec() { return modifiedShapeKeyVec_; }
  virtual void setModifiedShapeKeyVec(const ShapeKeyVector& keys) { modifiedShapeKeyVec_ = keys; }
  /// The shape that the present query has changed last; that of no shape by default.
  virtual const KtShapeStateCacheKey& modifiedShapeKey() const { return modifiedShapeKey_; }
  virtual void setModifiedShapeKey(const KtShapeStateCacheKey& key) { modifiedShapeKey_ = key; }

  /// What the other form answers, to be looked at.
  const ForceVector& generalForceVector() const noexcept { return generalForceVector_; }
  /// `setNonredundantState` with the positions and velocities of active states.
  void setNonredundantStateFromActiveStateVector(const ActiveStateVector& states);

  /// Exact equality of what files hold, the active states of the manipulators.
  bool operator==(const KtSystemActiveState& other) const {
    return manipulatorActiveStateVector_ == other.manipulatorActiveStateVector_;
  }
  static const KtToken& classToken() { return KtManip::KtSystemActiveStateToken; }

 private:
  template <class PositionOf, class VelocityOf>
  void setStates(KtU32 count, PositionOf&& positionOf, VelocityOf&& velocityOf);
  void invalidateProximity(KtU32 manipulatorIndex);

  ActiveStateVector manipulatorActiveStateVector_;
  // Not in files
  KtSystemActiveBoundingBoxState systemActiveBoundingBoxState_;
  ForceVector generalForceVector_;
  ProximityStateVector manipulatorLinkProximityStateVector_;
  KtSystemShapeCollisionCache systemShapeCollisionCache_;
  bool generalForceValid_ = false;
  ShapeKeyVector modifiedShapeKeyVec_;
  KtShapeStateCacheKey modifiedShapeKey_;
};
