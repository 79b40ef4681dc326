// Composite and articulated inertias of a link and its base.
#include "ktManipulator/model/KtIndividualManipulator.h"

const KtRigidBodyMassProperties& KtManipulatorLink::crbi(
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyCrbi;
}

const KtArticulatedBodyDynamics& KtManipulatorLink::arbd(
    const KtManipulatorExternalForce& /*external*/, const KtManipulatorTorque& /*torque*/,
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyArbd;
}

void KtManipulatorLink::addArbdToParent(KtArticulatedBodyDynamics& /*parent*/,
                                        const KtManipulatorExternalForce& /*external*/,
                                        const KtManipulatorTorque& /*torque*/,
                                        KtManipulatorActiveState& /*activeState*/,
                                        const KtStatedSystemStruct* /*asker*/) const {}

const KtGeneralMotion& KtManipulatorLink::arbiSupplementalDhFrameAccelerationInLocal(
    const KtManipulatorExternalForce& /*external*/, const KtManipulatorTorque& /*torque*/,
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyGeneralAcceleration;
}

double KtManipulatorLink::arbiJointAcceleration(const KtManipulatorExternalForce& /*external*/,
                                                const KtManipulatorTorque& /*torque*/,
                                                KtManipulatorActiveState& /*activeState*/,
                                                const KtStatedSystemStruct* /*asker*/) const {
  return 0.0;
}

const KtRigidBodyMassProperties& KtIndividualManipulator::crbi(
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyCrbi;
}

const KtArticulatedBodyDynamics& KtIndividualManipulator::arbd(
    const KtManipulatorExternalForce& /*external*/, const KtManipulatorTorque& /*torque*/,
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyArbd;
}

const KtGeneralMotion& KtIndividualManipulator::arbiSupplementalDhFrameAccelerationInLocal(
    const KtManipulatorExternalForce& /*external*/, const KtManipulatorTorque& /*torque*/,
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyGeneralAcceleration;
}

const KtGeneralMotion& KtIndividualManipulator::arbiBaseAccelerationInLocal(
    const KtManipulatorExternalForce& /*external*/, const KtManipulatorTorque& /*torque*/,
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyGeneralAcceleration;
}

double KtIndividualManipulator::computeKineticEnergy(KtManipulatorActiveState& /*activeState*/,
                                                     KtMassMatrixTool* /*tool*/,
                                                     const KtStatedSystemStruct* /*asker*/) const {
  return 0.0;
}

const KtReArray& KtIndividualManipulator::crbiSpatialCholeskyDecomposition(
    KtManipulatorActiveState& /*activeState*/, const KtStatedSystemStruct* /*asker*/) const {
  return m_theDummyCrbi.spatialCholeskyDecomposition();
}
