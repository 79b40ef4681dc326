#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

TEST(VirtualOrder, ActiveStatesKeepTheirs) {
  using M = KtManipulatorActiveState;
  using P = KtManipulatorActivePositionState;
  using V = KtManipulatorActiveVelocityState;
  using A = KtManipulatorActiveAccelerationState;
  using F = KtManipulatorActiveForceState;
  using I = KtManipulatorActiveMassState;
  using D = KtManipulatorActiveArticulationState;
  expectOrder("KtManipulatorActiveState", kCompound + 1, &M::positionState, &M::setPositionState,
              &M::velocityState, &M::setVelocityState, &M::accelerationState,
              &M::setAccelerationState,
              static_cast<const P& (M::*)() const>(&M::activePositionState),
              static_cast<P& (M::*)()>(&M::activePositionState), &M::setActivePositionState,
              static_cast<const V& (M::*)() const>(&M::activeVelocityState),
              static_cast<V& (M::*)()>(&M::activeVelocityState), &M::setActiveVelocityState,
              static_cast<const A& (M::*)() const>(&M::activeAccelerationState),
              static_cast<A& (M::*)()>(&M::activeAccelerationState), &M::setActiveAccelerationState,
              static_cast<const F& (M::*)() const>(&M::activeForceState),
              static_cast<F& (M::*)()>(&M::activeForceState), &M::setActiveForceState,
              static_cast<const I& (M::*)() const>(&M::activeMassState),
              static_cast<I& (M::*)()>(&M::activeMassState), &M::setActiveMassState,
              static_cast<const D& (M::*)() const>(&M::activeArticulationState),
              static_cast<D& (M::*)()>(&M::activeArticulationState), &M::setActiveArticulationState,
              static_cast<const KtActuatorState& (M::*)() const>(&M::actuatorState),
              static_cast<KtActuatorState& (M::*)()>(&M::actuatorState), &M::setActuatorState,
              &M::invalidateAll);
  expectOrder("KtManipulatorActivePositionState", kCompound + 1, &P::positionState,
              &P::setPositionState, &P::linkPositionStates, &P::setLinkPositionState,
              &P::setDhTransform, &P::setLinkPositionStates, &P::basePositionState,
              &P::setBaseLinkPositionState, &P::setBasePositionState, &P::invalidateAll);
  expectOrder(
      "KtManipulatorActiveVelocityState", kCompound + 1, &V::velocityState, &V::setVelocityState,
      static_cast<const V::LinkStates& (V::*)() const>(&V::linkVelocityStates),
      static_cast<V::LinkStates& (V::*)()>(&V::linkVelocityStates), &V::linkDhVelocityInLocal,
      &V::setLinkDhVelocityInLocal, &V::linkDhVelocityInSystem, &V::setLinkDhVelocityInSystem,
      &V::linkPrimaryVelocityInSystem, &V::setLinkPrimaryVelocityInSystem,
      &V::linkComVelocityInLocal, &V::setLinkComVelocityInLocal, &V::linkMomentumInLocal,
      &V::setLinkMomentumInLocal, &V::linkCompositeMomentumInLocal,
      &V::setLinkCompositeMomentumInLocal, &V::setLinkVelocityStates,
      static_cast<const KtLinkVelocityState& (V::*)() const>(&V::baseVelocityState),
      static_cast<KtLinkVelocityState& (V::*)()>(&V::baseVelocityState), &V::setBaseVelocityState,
      &V::invalidateAll, &V::resize);
  expectOrder("KtManipulatorActiveForceState", kCompound + 1, &F::resize, &F::size,
              &F::linkForceStates, &F::linkDhForceInLocal, &F::setLinkDhForceInLocal,
              &F::setLinkForceStates, &F::baseForceState, &F::setBaseForceState,
              &F::externalForceDescription, &F::setExternalForceDescription, &F::invalidateAll);
  expectOrder("KtManipulatorActiveArticulationState", kCompound + 1, &D::linkArticulationStates,
              &D::setLinkArticulationStates, &D::baseArticulationState,
              &D::setBaseArticulationState, &D::arbd, &D::setArbd, &D::setBaseArbd,
              &D::supplementalDhAcceleration, &D::setSupplementalDhAcceleration,
              &D::baseSupplementalDhAcceleration, &D::setBaseSupplementalDhAcceleration,
              &D::supplementalJointAcceleration, &D::setSupplementalJointAcceleration,
              &D::invalidateAll, &D::resize);
}

TEST(VirtualOrder, SystemActiveStateKeepsIts) {
  using S = KtSystemActiveState;
  expectOrder(
      "KtSystemActiveState", kCompound + 1,
      static_cast<const S::ActiveStateVector& (S::*)() const>(&S::manipulatorActiveStateVector),
      static_cast<S::ActiveStateVector& (S::*)()>(&S::manipulatorActiveStateVector),
      &S::setManipulatorActiveStateVector,
      static_cast<const KtSystemActiveBoundingBoxState& (S::*)() const>(
          &S::systemActiveBoundingBoxState),
      static_cast<KtSystemActiveBoundingBoxState& (S::*)()>(&S::systemActiveBoundingBoxState),
      &S::setSystemActiveBoundingBoxState, &S::setNumManipulators, &S::setNonredundantState,
      &S::setManipulatorNonredundantState, &S::setManipulatorNonredundantPositionState,
      &S::invalidateAll, &S::resetForSystemChange,
      static_cast<S::ForceVector& (S::*)()>(&S::generalForceVector), &S::setGeneralForceVector,
      &S::generalForceValid, &S::setGeneralForceValid, &S::invalidateSystemLevel,
      &S::invalidateModifiedShapeKey,
      static_cast<const S::ProximityStateVector& (S::*)() const>(
          &S::manipulatorLinkProximityStateVector),
      static_cast<S::ProximityStateVector& (S::*)()>(&S::manipulatorLinkProximityStateVector),
      &S::setManipulatorLinkProximityStateVector,
      static_cast<const KtSystemShapeCollisionCache& (S::*)() const>(&S::systemShapeCollisionCache),
      static_cast<KtSystemShapeCollisionCache& (S::*)()>(&S::systemShapeCollisionCache),
      &S::setSystemShapeCollisionCache,
      static_cast<const S::ShapeKeyVector& (S::*)() const>(&S::modifiedShapeKeyVec),
      static_cast<S::ShapeKeyVector& (S::*)()>(&S::modifiedShapeKeyVec), &S::setModifiedShapeKeyVec,
      &S::modifiedShapeKey, &S::setModifiedShapeKey);
}

}  // namespace
