#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

using M = KtIndividualManipulator;
using T = KtCoordinateSystemTransformation;
using Text = const std::string&;

TEST(VirtualOrder, SystemsKeepTheirs) {
  using E = KtSystemEnvironment;
  expectOrder("KtSystemEnvironment", kCompound + 1, &E::coordSysXForm, &E::setCoordSysXForm,
              &E::upGravityVector, &E::setUpGravityVector);
  using S = KtManipulatorSystem;
  expectOrder(
      "KtManipulatorSystem", kCompound + 1, &S::mergeWith, taking<>(&S::jointDof),
      taking<const KtU32&>(&S::jointDof), &S::jointAndBaseDof, &S::environment, &S::setEnvironment,
      &S::manipulators, &S::setManipulators, &S::addManipulator,
      taking<KtU32, const M&>(&S::exchangeManipulator),
      taking<Text, const M&>(&S::exchangeManipulator), taking<Text>(&S::deleteManipulator),
      taking<KtU32>(&S::deleteManipulator), &S::manipulatorByIdentifier, &S::mapManipulators,
      &S::buildBoundingBoxTreeFromEnvironment, &S::setFromIndividualManipulator,
      &S::linkInteractionsVector, &S::setLinkInteractionsVector, &S::collisionExclusionMap,
      &S::setCollisionExclusionMap, &S::manipulatorAttachmentMap, &S::setManipulatorAttachmentMap,
      &S::propagateStateBy, &S::propagateSingleStateBy, &S::rightSizeState, &S::isCompatible,
      &S::absoluteBoundingSphere, &S::numberOfManipulators, &S::processLinkInteractions,
      &S::collisionDetectionPrecisionLevel, &S::findAndConvertToReferences, &S::setSurfacesByKey,
      &S::setJointLimit, &S::canCollide, &S::replaceLinkProperties, &S::truncateValues,
      &S::getNumberOfShapes, taking<Text>(&S::aboutToModifyManipulator),
      taking<KtU32>(&S::aboutToModifyManipulator), &S::computeCollisionDetectionPrecisionLevel);
}

TEST(VirtualOrder, StatedSystemsKeepTheirs) {
  using S = KtStatedSystem;
  using P = const KtPositionState&;
  using V = const KtVelocityState&;
  using Active = KtSystemActiveState;
  using State = KtManipulatorSystemState;
  using Results = S::ResultVector;
  using Real = const KtReal&;
  using U32 = const KtU32&;
  expectOrder(
      "KtStatedSystem", kCompound + 1, &S::mergeWith, &S::system, &S::setSystem,
      &S::setAndDeleteSystemPointer, &S::setFromSystem, &S::setFromManipulator,
      &S::clearAndInitializeForOneManipulator, &S::finalizeOneManipulator,
      taking<const M&, P, V>(&S::addManipulator), taking<const M&>(&S::addManipulator),
      &S::exchangeManipulator, &S::addShapeAsManipulator, &S::setSelfCollisionMap,
      taking<Text>(&S::deleteManipulator), taking<KtU32>(&S::deleteManipulator), &S::environment,
      &S::setEnvironment, &S::state, &S::setState, &S::setIndividualPositionState,
      &S::setIndividualCoordinateSystemTransformation, &S::setIndividualVelocityState,
      &S::rotateIndividualBaseVelocity, &S::zeroIndividualVelocityState, &S::setPositionStates,
      &S::setVelocityStates, taking<double, Active*>(&S::propagateSelfTo),
      taking<double, Results&, Active*>(&S::propagateSelfTo),
      taking<double, Results&, Active*, KtU32, Real, U32, Real>(&S::propagateSelfTo),
      taking<double, State&, Active*>(&S::propagateTo),
      taking<double, State&, Results&, Active&>(&S::propagateTo),
      taking<double, State&, Results&, Active&, KtU32, Real, U32, Real>(&S::propagateTo),
      taking<KtU32, V, double, KtPositionState&>(&S::propagateSingleStateBy),
      taking<KtU32, V, double, KtPositionState&, KtPropagationResultData&>(
          &S::propagateSingleStateBy),
      &S::propagateSingleVelocityStateBy, &S::addCompatibleState, &S::setToMidpointState,
      &S::rightSizeState, &S::absoluteBoundingSphere, &S::setSurfacesByKey,
      constant(&S::modifiedShapeKeyVec), variable(&S::modifiedShapeKeyVec),
      &S::setModifiedShapeKeyVec, &S::addModifiedShapeKeyVec, &S::isTransparentDisplay,
      &S::setIsTransparentDisplay, &S::intersectLineSegment, &S::scaleManipulatorBy,
      &S::findAndConvertToReferences, &S::jointDof, &S::setJointLimit, &S::replaceLinkProperties,
      &S::generateCollisionReport, &S::isSystemModified, &S::resetIsSystemModified,
      &S::truncateValues, &S::changeAmbientAlpha, &S::changeDiffuseAlpha, &S::changeSpecularAlpha,
      &S::changeEmissionAlpha, &S::selectedShapeKeyVector, &S::setSelectedShapeKeyVector,
      &S::transparencyAlpha, &S::setTransparencyAlpha, &S::isSelectionDataChanged,
      &S::setIsSelectionDataChanged, &S::setCollisionExclusionMap, &S::setManipulatorAttachmentMap,
      &S::lookupManipulatorIndexFromLabel, &S::validateTopLevelDimensions,
      &S::validateLowLevelDimensions, &S::aboutToModifySystem, &S::reregisterSystem,
      &S::newManipulatorSystem, &S::checkForCollisions);
}

TEST(VirtualOrder, BodiesOfLinkagesKeepTheirs) {
  using B = KtBaseGeneralBoundObject;
  expectOrder("KtBaseGeneralBoundObject", kCompound + 1, &B::shape, &B::setShape, &B::primaryFrame,
              &B::setPrimaryFrame, &B::locationInSystem);
  using Q = KtQuadrilateralFixedSliderJointOAObject;
  expectOrder("KtQuadrilateralFixedSliderJointOAObject", kCompound + 5, &Q::locationInSystem,
              &Q::linkIdentifier, &Q::setlinkIdentifier);
}

}  // namespace
