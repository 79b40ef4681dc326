#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

TEST(VirtualOrder, ActiveStatesKeepTheirs) {
  using M = KtManipulatorActiveState;
  using P = KtManipulatorActivePositionState;
  using V = KtManipulatorActiveVelocityState;
  using F = KtManipulatorActiveForceState;
  using D = KtManipulatorActiveArticulationState;
  expectOrder("KtManipulatorActiveState", kCompound + 1, &M::positionState, &M::setPositionState,
              &M::velocityState, &M::setVelocityState, &M::accelerationState,
              &M::setAccelerationState, constant(&M::activePositionState),
              variable(&M::activePositionState), &M::setActivePositionState,
              constant(&M::activeVelocityState), variable(&M::activeVelocityState),
              &M::setActiveVelocityState, constant(&M::activeAccelerationState),
              variable(&M::activeAccelerationState), &M::setActiveAccelerationState,
              constant(&M::activeForceState), variable(&M::activeForceState),
              &M::setActiveForceState, constant(&M::activeMassState), variable(&M::activeMassState),
              &M::setActiveMassState, constant(&M::activeArticulationState),
              variable(&M::activeArticulationState), &M::setActiveArticulationState,
              constant(&M::actuatorState), variable(&M::actuatorState), &M::setActuatorState,
              &M::invalidateAll);
  expectOrder("KtManipulatorActivePositionState", kCompound + 1, &P::positionState,
              &P::setPositionState, &P::linkPositionStates, &P::setLinkPositionState,
              &P::setDhTransform, &P::setLinkPositionStates, &P::basePositionState,
              &P::setBaseLinkPositionState, &P::setBasePositionState, &P::invalidateAll);
  expectOrder(
      "KtManipulatorActiveVelocityState", kCompound + 1, &V::velocityState, &V::setVelocityState,
      constant(&V::linkVelocityStates), variable(&V::linkVelocityStates), &V::linkDhVelocityInLocal,
      &V::setLinkDhVelocityInLocal, &V::linkDhVelocityInSystem, &V::setLinkDhVelocityInSystem,
      &V::linkPrimaryVelocityInSystem, &V::setLinkPrimaryVelocityInSystem,
      &V::linkComVelocityInLocal, &V::setLinkComVelocityInLocal, &V::linkMomentumInLocal,
      &V::setLinkMomentumInLocal, &V::linkCompositeMomentumInLocal,
      &V::setLinkCompositeMomentumInLocal, &V::setLinkVelocityStates,
      constant(&V::baseVelocityState), variable(&V::baseVelocityState), &V::setBaseVelocityState,
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
  expectOrder("KtSystemActiveState", kCompound + 1, constant(&S::manipulatorActiveStateVector),
              variable(&S::manipulatorActiveStateVector), &S::setManipulatorActiveStateVector,
              constant(&S::systemActiveBoundingBoxState),
              variable(&S::systemActiveBoundingBoxState), &S::setSystemActiveBoundingBoxState,
              &S::setNumManipulators, &S::setNonredundantState, &S::setManipulatorNonredundantState,
              &S::setManipulatorNonredundantPositionState, &S::invalidateAll,
              &S::resetForSystemChange, variable(&S::generalForceVector), &S::setGeneralForceVector,
              &S::generalForceValid, &S::setGeneralForceValid, &S::invalidateSystemLevel,
              &S::invalidateModifiedShapeKey, constant(&S::manipulatorLinkProximityStateVector),
              variable(&S::manipulatorLinkProximityStateVector),
              &S::setManipulatorLinkProximityStateVector, constant(&S::systemShapeCollisionCache),
              variable(&S::systemShapeCollisionCache), &S::setSystemShapeCollisionCache,
              constant(&S::modifiedShapeKeyVec), variable(&S::modifiedShapeKeyVec),
              &S::setModifiedShapeKeyVec, &S::modifiedShapeKey, &S::setModifiedShapeKey);
}

TEST(VirtualOrder, JacobianStateKeepsIts) {
  using J = KtJacobianState;
  expectOrder("KtJacobianState", 2, &J::invalidateAll, &J::jacobian, &J::jacobianReferenceToSet,
              &J::setJacobian, &J::jacobianValid, &J::softJacobian, &J::softJacobianReferenceToSet,
              &J::setSoftJacobian, &J::softJacobianValid, &J::nullSpace, &J::setNullSpace,
              &J::nullSpaceValid, &J::calculateNullSpaceAndJacobianLU,
              constant(&J::sparsityIndices), variable(&J::sparsityIndices), &J::zeroStart,
              &J::sparsityValid, &J::setSparsityValid, &J::isSparse, &J::setIsSparse,
              &J::jacobianLU, &J::indices);
}

}  // namespace
