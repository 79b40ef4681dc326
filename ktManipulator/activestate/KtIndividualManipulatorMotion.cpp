// Frames, velocities, accelerations and forces of the base.
#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

const KtCoordinateSystemTransformation& KtIndividualManipulator::dhFrameInSystem(
    KtManipulatorActivePositionState& /*positionState*/) const {
  return m_theDummyTransformation;
}

const KtCoordinateSystemTransformation& KtIndividualManipulator::primaryFrameInSystem(
    KtManipulatorActivePositionState& /*positionState*/) const {
  return m_theDummyTransformation;
}

const KtGeneralMotion& KtIndividualManipulator::dhFrameVelocityInSystem(
    KtManipulatorActiveState& /*activeState*/) const {
  return m_theDummyGeneralVelocity;
}

const KtGeneralMotion& KtIndividualManipulator::dhFrameVelocityInLocal(
    KtManipulatorActiveState& /*activeState*/) const {
  return m_theDummyGeneralVelocity;
}

const KtGeneralMotion& KtIndividualManipulator::primaryFrameVelocityInSystem(
    KtManipulatorActiveState& /*activeState*/) const {
  return m_theDummyGeneralVelocity;
}

const KtGeneralMotion& KtIndividualManipulator::dhFrameAccelerationInLocal(
    KtManipulatorActiveState& /*activeState*/) const {
  return m_theDummyGeneralAcceleration;
}

const KtGeneralForce& KtIndividualManipulator::dhFrameForceInLocal(
    const KtManipulatorExternalForce& /*external*/, KtManipulatorActiveState& /*activeState*/,
    const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyGeneralForce;
}

KtVector KtIndividualManipulator::getCenterOfMassInSystem(
    KtManipulatorActiveState& /*activeState*/) const {
  return KtVector();
}

void KtIndividualManipulator::computeZeroMomentPoint(const KtPlane& /*plane*/,
                                                     KtManipulatorActiveState& /*activeState*/,
                                                     KtVector& /*point*/,
                                                     const KtStatedSystemStruct* /*asker*/) const {}

void KtIndividualManipulator::computeZeroMomentPoint(const KtVector& /*gravity*/,
                                                     const KtPlane& /*plane*/,
                                                     KtManipulatorActiveState& /*activeState*/,
                                                     KtVector& /*point*/,
                                                     const KtStatedSystemStruct* /*asker*/) const {}
