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
              &M::setAccelerationState, looking(&M::activePositionState),
              changing(&M::activePositionState), &M::setActivePositionState,
              looking(&M::activeVelocityState), changing(&M::activeVelocityState),
              &M::setActiveVelocityState, looking(&M::activeAccelerationState),
              changing(&M::activeAccelerationState), &M::setActiveAccelerationState,
              looking(&M::activeForceState), changing(&M::activeForceState),
              &M::setActiveForceState, looking(&M::activeMassState), changing(&M::activeMassState),
              &M::setActiveMassState, looking(&M::activeArticulationState),
              changing(&M::activeArticulationState), &M::setActiveArticulationState,
              looking(&M::actuatorState), changing(&M::actuatorState), &M::setActuatorState,
              &M::invalidateAll);
  expectOrder("KtManipulatorActivePositionState", kCompound + 1, &P::positionState,
              &P::setPositionState, &P::linkPositionStates, &P::setLinkPositionState,
              &P::setDhTransform, &P::setLinkPositionStates, &P::basePositionState,
              &P::setBaseLinkPositionState, &P::setBasePositionState, &P::invalidateAll);
  expectOrder(
      "KtManipulatorActiveVelocityState", kCompound + 1, &V::velocityState, &V::setVelocityState,
      looking(&V::linkVelocityStates), changing(&V::linkVelocityStates), &V::linkDhVelocityInLocal,
      &V::setLinkDhVelocityInLocal, &V::linkDhVelocityInSystem, &V::setLinkDhVelocityInSystem,
      &V::linkPrimaryVelocityInSystem, &V::setLinkPrimaryVelocityInSystem,
      &V::linkComVelocityInLocal, &V::setLinkComVelocityInLocal, &V::linkMomentumInLocal,
      &V::setLinkMomentumInLocal, &V::linkCompositeMomentumInLocal,
      &V::setLinkCompositeMomentumInLocal, &V::setLinkVelocityStates,
      looking(&V::baseVelocityState), changing(&V::baseVelocityState), &V::setBaseVelocityState,
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
  expectOrder("KtSystemActiveState", kCompound + 1, looking(&S::manipulatorActiveStateVector),
              changing(&S::manipulatorActiveStateVector), &S::setManipulatorActiveStateVector,
              looking(&S::systemActiveBoundingBoxState), changing(&S::systemActiveBoundingBoxState),
              &S::setSystemActiveBoundingBoxState, &S::setNumManipulators, &S::setNonredundantState,
              &S::setManipulatorNonredundantState, &S::setManipulatorNonredundantPositionState,
              &S::invalidateAll, &S::resetForSystemChange, changing(&S::generalForceVector),
              &S::setGeneralForceVector, &S::generalForceValid, &S::setGeneralForceValid,
              &S::invalidateSystemLevel, &S::invalidateModifiedShapeKey,
              looking(&S::manipulatorLinkProximityStateVector),
              changing(&S::manipulatorLinkProximityStateVector),
              &S::setManipulatorLinkProximityStateVector, looking(&S::systemShapeCollisionCache),
              changing(&S::systemShapeCollisionCache), &S::setSystemShapeCollisionCache,
              looking(&S::modifiedShapeKeyVec), changing(&S::modifiedShapeKeyVec),
              &S::setModifiedShapeKeyVec, &S::modifiedShapeKey, &S::setModifiedShapeKey);
}

TEST(VirtualOrder, JacobianStateKeepsIts) {
  using J = KtJacobianState;
  expectOrder("KtJacobianState", 2, &J::invalidateAll, &J::jacobian, &J::jacobianReferenceToSet,
              &J::setJacobian, &J::jacobianValid, &J::softJacobian, &J::softJacobianReferenceToSet,
              &J::setSoftJacobian, &J::softJacobianValid, &J::nullSpace, &J::setNullSpace,
              &J::nullSpaceValid, &J::calculateNullSpaceAndJacobianLU, looking(&J::sparsityIndices),
              changing(&J::sparsityIndices), &J::zeroStart, &J::sparsityValid, &J::setSparsityValid,
              &J::isSparse, &J::setIsSparse, &J::jacobianLU, &J::indices);
}

}  // namespace
