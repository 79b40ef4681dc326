// Frames, velocities, accelerations, forces and momenta of a link.
#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtExternalForceDescription.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

double KtManipulatorLink::totalLocalTorque(KtManipulatorActiveState& activeState) const {
  if (manipulator_ == nullptr) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtManipulatorLink::totalLocalTorque()->NULL manipulator pointer");
    return 0.0;
  }
  return damperProperties_.torque(*manipulator_, activeState) +
         springProperties_.torque(*manipulator_, activeState);
}

const KtCoordinateSystemTransformation& KtManipulatorLink::dhFrameInSystem(
    KtManipulatorActivePositionState& /*positionState*/) const {
  return m_theDummyTransformation;
}

const KtCoordinateSystemTransformation& KtManipulatorLink::primaryFrameInSystem(
    KtManipulatorActivePositionState& /*positionState*/) const {
  return m_theDummyTransformation;
}

const KtGeneralMotion& KtManipulatorLink::dhFrameVelocityInSystem(
    KtManipulatorActiveState& /*activeState*/) const {
  return m_theDummyGeneralVelocity;
}

const KtGeneralMotion& KtManipulatorLink::dhFrameVelocityInLocal(
    KtManipulatorActiveState& /*activeState*/) const {
  return m_theDummyGeneralVelocity;
}

const KtGeneralMotion& KtManipulatorLink::primaryFrameVelocityInSystem(
    KtManipulatorActiveState& /*activeState*/) const {
  return m_theDummyGeneralVelocity;
}

const KtGeneralMotion& KtManipulatorLink::dhFrameAccelerationInLocal(
    KtManipulatorActiveState& /*activeState*/) const {
  return m_theDummyGeneralAcceleration;
}

const KtGeneralForce& KtManipulatorLink::dhFrameForceInLocal(
    const KtManipulatorExternalForce& /*external*/, KtManipulatorActiveState& /*activeState*/,
    const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyGeneralForce;
}

const KtLineSegment& KtManipulatorLink::forceVectorInLocal(
    const KtManipulatorActiveState& /*activeState*/) const {
  return KtExternalForceDescription::m_TheNullLineSegment;
}

const KtGeneralMotion& KtManipulatorLink::comVelocityInLocal(
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyGeneralVelocity;
}

const KtGeneralMotion& KtManipulatorLink::comAccelerationInLocal(
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyGeneralAcceleration;
}

const KtGeneralMotion& KtManipulatorLink::spatialMomentumInLocal(
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummySpatialMomentum;
}

const KtGeneralMotion& KtManipulatorLink::compositeSpatialMomentumInLocal(
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummySpatialMomentum;
}

const KtGeneralMotion& KtManipulatorLink::spatialMomentumRateInLocal(
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummySpatialMomentumRate;
}

const KtGeneralMotion& KtManipulatorLink::compositeSpatialMomentumRateInLocal(
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummySpatialMomentumRate;
}

void KtManipulatorLink::computeMomentFromLinearAcceleration(
    const KtVector& /*point*/, KtManipulatorActiveState& /*activeState*/, KtVector& /*moment*/,
    const KtStatedSystemStruct* /*asker*/) const {}
