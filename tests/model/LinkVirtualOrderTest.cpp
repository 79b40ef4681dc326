#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

using L = KtManipulatorLink;
using M = KtIndividualManipulator;
using T = KtCoordinateSystemTransformation;
using Text = const std::string&;

constexpr std::size_t kLink = kCompound + 121;  // last slot of a link

TEST(VirtualOrder, LinksKeepTheirs) {
  expectOrder(
      "KtManipulatorLink", kCompound + 1, &L::label, &L::setLabel, &L::appendToAllLabels,
      &L::setSurfacesByShapeID, &L::setSurfaces, &L::linkKinematicsContainer,
      &L::setLinkKinematicsContainer, &L::setLinkKinematics, &L::childLinks, &L::setChildLinks,
      &L::addChild, &L::clearChildLinks, &L::addLinkToEndOfChain, &L::physicalExtent,
      &L::shapeContainer, &L::memberShapeContainer, &L::setShapeContainer, &L::setShape,
      &L::setFromShape, &L::setFromShapeContainer, &L::primaryFrame, &L::setPrimaryFrame,
      &L::jointActuator, &L::setJointActuator, &L::truncateValues, &L::massProperties,
      &L::setMassProperties, &L::baseMassProperties, &L::setBaseMassProperties,
      &L::massPropertiesMap, &L::setMassPropertiesMap, &L::clearMassPropertiesMap,
      &L::addMassProperties, &L::deleteMassProperties, &L::springProperties,
      &L::setSpringProperties, &L::damperProperties, &L::setDamperProperties,
      &L::linkReferenceDescription, &L::setLinkReferenceDescription, &L::totalLocalTorque,
      &L::massPropertiesInDHFrame, &L::updateDHMassProperties, &L::transformComponentsBy,
      &L::parentLink, &L::setParentLink, &L::linkIndex, &L::subtreeLinkCount,
      &L::lookupCollisionAvoidanceMetric, &L::mapLinks, &L::dhFrameInSystem,
      &L::primaryFrameInSystem, &L::dhFrameVelocityInSystem, &L::dhFrameVelocityInLocal,
      &L::primaryFrameVelocityInSystem, &L::dhFrameAccelerationInLocal, &L::dhFrameForceInLocal,
      &L::crbi, &L::arbd, &L::addArbdToParent, &L::arbiSupplementalDhFrameAccelerationInLocal,
      &L::arbiJointAcceleration, &L::collectLeafLinks, &L::optimizeForRendering, &L::lookup,
      &L::recursiveOptimizeForRendering, &L::queryData, &L::manipulator, &L::setManipulatorPointer,
      &L::upperBoundExtentDistance, &L::upperBoundSubmanipulatorExtentDistance,
      &L::axisAlignedBoundingBoxVectorInSystem, &L::relabelSubtree, &L::deleteBoundingVolumes,
      &L::numberOfShapes, &L::shapeByIndex, &L::shapeByIdentifier, &L::mapShapes, &L::setNumShapes,
      &L::numShapes, &L::numShapesInPhysicalRepresentation, &L::scaleIndividualLinkBy, &L::scaleBy,
      &L::transformLinkTreeBy, &L::transformPrimaryFrame, &L::intersectLineSegment,
      &L::setLinkReferences, &L::useReferencesWherePossible, &L::removeLinkReferences,
      &L::estimateMassProperties, &L::getNthNonBoundingShape, &L::boundingVolumes,
      &L::deleteAllBoundingVolumes, &L::setJointLimit, &L::replaceLinkProperties,
      &L::replaceMassProperties, &L::setSurfaceProperties, &L::forceVectorInLocal,
      &L::comVelocityInLocal, &L::comAccelerationInLocal, &L::spatialMomentumInLocal,
      &L::compositeSpatialMomentumInLocal, &L::spatialMomentumRateInLocal,
      &L::compositeSpatialMomentumRateInLocal, &L::computeMomentFromLinearAcceleration,
      &L::upperLimitConstraint, &L::setUpperLimitConstraint, &L::lowerLimitConstraint,
      &L::setLowerLimitConstraint, &L::namedPoints, &L::setNamedPoints, &L::lookupNamedPoint,
      &L::addNamedPoint, &L::namedFrames, &L::setNamedFrames, &L::lookupNamedFrame,
      &L::addNamedFrame, &L::isConstrained, &L::setIsConstrained, &L::updateDefaultLimitConstraints,
      &L::updateMassProperties);
}

TEST(VirtualOrder, ManipulatorsKeepTheirs) {
  expectOrder(
      "KtIndividualManipulator", kLink + 1, &M::setFromLink, &M::coordSysXForm,
      &M::setCoordSysXForm, &M::absoluteBoundingSphere, &M::setAbsoluteBoundingSphere,
      &M::buildSelfCollisionLinkMap, &M::fitAbsoluteBoundingSphere, &M::isFixedBase,
      &M::setIsFixedBase, &M::optimizeOnLoad, &M::setOptimizeOnLoad, &M::isControllable,
      &M::setIsControllable, &M::manipulatorReferenceDescription,
      &M::setManipulatorReferenceDescription, &M::manipulatorIndex, &M::jointDof,
      &M::jointAndBaseDof, &M::totalDof, &M::linkCollisionTest,
      &M::crbiSpatialCholeskyDecomposition, &M::arbiBaseAccelerationInLocal,
      &M::linkIndexByIdentifier, &M::linkByIdentifier, &M::linkByIndex, &M::changeLinkLabel,
      taking<const KtVelocityState&, double, KtPositionState&>(&M::propagateState),
      taking<const KtVelocityState&, double, KtPositionState&, KtPropagationResultData&>(
          &M::propagateState),
      &M::propagateVelocityState, &M::intersectLineSegmentWithManipulator,
      &M::findAndConvertToReferences, &M::aboutToModifyLink, &M::replaceLinkAndChildren,
      taking<KtU32, const KtLinkKinematics&>(&M::replaceLinkKinematics),
      taking<Text, const KtLinkKinematics&>(&M::replaceLinkKinematics),
      taking<KtU32, const KtShape&>(&M::replaceLinkShape),
      taking<Text, const KtShape&>(&M::replaceLinkShape),
      taking<KtU32, const T&>(&M::replaceLinkPrimaryFrame),
      taking<Text, const T&>(&M::replaceLinkPrimaryFrame),
      taking<Text, const T&>(&M::transformPrimaryFrame), &M::transformAllPrimaryFramesToIdentity,
      &M::transformLinkComponentsBy, &M::transformLinkSubtreeBy, &M::configureManipulatorReference,
      &M::generalBoundObjects, &M::setGeneralBoundObjects, taking<>(&M::mapManipulator),
      taking<L::LinkTable&, L::LabelTable&>(&M::mapManipulator), &M::surfaces,
      taking<const KtSurfaceMap&>(&M::setSurfaces), &M::setSelfCollisionLinkMap,
      &M::selfCollisionLinkMap, &M::mapLinkCollisionCandidates, &M::setSurfacesByIDs,
      &M::canCollide, &M::getCenterOfMassInSystem, &M::simplifyLinkShapesWithCapsules,
      &M::simplifyLinkShapesWithConvexHulls, &M::simplifyLinkShapesWithBoundingVolumes,

      taking<const KtPlane&, KtManipulatorActiveState&, KtVector&, const KtStatedSystemStruct*>(
          &M::computeZeroMomentPoint),
      taking<const KtVector&, const KtPlane&, KtManipulatorActiveState&, KtVector&,
             const KtStatedSystemStruct*>(&M::computeZeroMomentPoint),
      &M::computeKineticEnergy, &M::stateConstraints, &M::setStateConstraints,
      &M::stateEqualityConstraints, &M::setStateEqualityConstraints, &M::stoppingCriteria,
      &M::setStoppingCriteria, &M::getCraigDhParameters, &M::setBoundingVolume);
}

}  // namespace
