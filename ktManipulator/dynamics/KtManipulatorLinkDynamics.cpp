// Composite and articulated inertias of links and base, and accelerations computed from them.
//
// The recursions are Featherstone's (Rigid Body Dynamics Algorithms, Springer 2008, ch. 6 and 7).
#include <optional>

#include "ktManipulator/activestate/KtLinkQuery.h"
#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/dynamics/KtMassMatrixTool.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/state/KtManipulatorExternalForce.h"
#include "ktManipulator/state/KtManipulatorTorque.h"

namespace {

using Kt::detail::filled;
using Kt::detail::queried;
using Kt::detail::queriedOutboard;
using Articulation = KtLinkArticulationState;

void reportIndex(const char* text, KtU32 index) {
  Kt::Print::instance().write(Kt::Print::kError, "KtManipulatorLink::%s (%d) out of range.\n", text,
                              static_cast<int>(index));
}

// Adds what the joint's acceleration does to that of the DH frame.
void addJointMotion(const KtManipulatorLink& link, KtManipulatorActiveState& activeState,
                    double rate, KtVector& linear, KtVector& angular) {
  if (const auto* motion = link.jointMotion(); motion != nullptr) {
    motion->addTo(rate, linear, angular);
    return;
  }
  const KtGeneralMotion& relative = link.linkKinematicsContainer().calculateAcceleration(
      activeState.positionCache().jointPosition(link.mappedIndex()), 0.0, rate);
  linear += relative.linear();
  angular += relative.angular();
}

}  // namespace

const KtRigidBodyMassProperties& KtManipulatorLink::crbi(KtManipulatorActiveState& activeState,
                                                         const KtStatedSystemStruct* asker) const {
  return queried<&KtLinkMassState::crbiValid, &KtLinkMassState::crbi>(
      activeState.massCache(), linkIndex_, [this] { reportIndex("crbi(): index", linkIndex_); },
      m_theDummyCrbi,
      [&](KtLinkMassState& entry) {
        KtRigidBodyMassProperties sum = knownMass(asker);
        auto& positions = activeState.positionCache();
        for (const KtManipulatorLink& child : childLinks().elements()) {
          const KtRigidBodyMassProperties& part = child.KtManipulatorLink::crbi(activeState, asker);
          const KtLinkPositionState& joint = child.placedJoint(positions);
          sum.addTransformed(part, joint.dhRotation(), joint.dhTransform().translation());
        }
        entry.setCrbi(sum);
      });
}

const KtArticulatedBodyDynamics& KtManipulatorLink::arbd(const KtManipulatorExternalForce& external,
                                                         const KtManipulatorTorque& torque,
                                                         KtManipulatorActiveState& activeState,
                                                         const KtStatedSystemStruct* asker) const {
  return queried<&Articulation::arbdValid, &Articulation::arbd>(
      activeState.articulationCache(), linkIndex_,
      [this] { reportIndex("arbd(): index", linkIndex_); }, m_theDummyArbd,
      [&](Articulation& entry) {
        const KtGeneralMotion& acceleration = dhFrameAccelerationInLocal(activeState);
        const KtGeneralMotion& velocity = dhFrameVelocityInLocal(activeState);
        const KtRigidBodyMassProperties& body = knownMass(asker);
        const KtGeneralForce& given = external[linkIndex_];
        KtVector force;
        KtVector moment;
        body.getForce(velocity.angular(), acceleration, force, moment);
        KtArticulatedBodyDynamics& dynamics = entry.arbdToFill();
        dynamics.setRigid(body, force - given.force(), moment - given.moment());
        for (const KtManipulatorLink& child : childLinks().elements()) {
          child.KtManipulatorLink::addArbdToParent(dynamics, external, torque, activeState, asker);
        }
        entry.setArbdValid(true);
      });
}

void KtManipulatorLink::addArbdToParent(KtArticulatedBodyDynamics& parent,
                                        const KtManipulatorExternalForce& external,
                                        const KtManipulatorTorque& torque,
                                        KtManipulatorActiveState& activeState,
                                        const KtStatedSystemStruct* asker) const {
  const double q = activeState.positionCache().jointPosition(linkIndex_);
  const KtArticulatedBodyDynamics& own = arbd(external, torque, activeState, asker);
  if (linkKinematicsContainer_.topElement() == nullptr) {
    // A link without a joint model is fixed to its parent, frame on frame, though nothing asks for
    // its inertia through a joint: so the articulated method carries what the composite one does,
    // and both find the same accelerations.
    parent += own;
    return;
  }
  const double inertia = jointActuator_.effectiveInertia(q);
  const double tau = Kt::detail::valueOrZero(torque.jointTorques(), linkIndex_);
  if (const auto* motion = jointMotion(); motion != nullptr) {
    // What that joint does itself, with the placement that is there already.
    const KtLinkPositionState& joint = placedJoint(activeState.positionCache());
    parent.joinThrough(own, *motion, inertia, tau, joint.dhRotation(),
                       joint.dhTransform().translation());
    return;
  }
  linkKinematicsContainer_.addChildArbdToParent(parent, own, q, inertia, tau);
}

const KtGeneralMotion& KtManipulatorLink::arbiSupplementalDhFrameAccelerationInLocal(
    const KtManipulatorExternalForce& external, const KtManipulatorTorque& torque,
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  return queriedOutboard<&Articulation::supplementalDhAccelerationValid,
                         &Articulation::supplementalDhAcceleration>(
      activeState.articulationCache(), linkIndex_,
      [this] {
        reportIndex("arbiSupplementalDhFrameAccelerationInLocal(): articulation states index",
                    linkIndex_);
      },
      m_theDummyGeneralAcceleration,
      [&](Articulation& entry) {
        const double rate = arbiJointAcceleration(external, torque, activeState, asker);
        // A plain joint has done that on the way.
        if (entry.supplementalDhAccelerationValid()) return;
        KtVector linear;
        KtVector angular;
        getInboardSupplement(external, torque, activeState, asker, linear, angular);
        addJointMotion(*this, activeState, rate, linear, angular);
        entry.setSupplementalDhAcceleration(linear, angular);
      });
}

// What the parent's supplemental acceleration is at this link's DH frame, in its axes.
void KtManipulatorLink::getInboardSupplement(const KtManipulatorExternalForce& external,
                                             const KtManipulatorTorque& torque,
                                             KtManipulatorActiveState& activeState,
                                             const KtStatedSystemStruct* asker, KtVector& linear,
                                             KtVector& angular) const {
  const KtGeneralMotion& inboard = parentLink_ != nullptr
                                       ? parentLink_->arbiSupplementalDhFrameAccelerationInLocal(
                                             external, torque, activeState, asker)
                                       : KtLinkKinematicsContainer::m_theNullMotion;
  const KtLinkPositionState& joint = placedJoint(activeState.positionCache());
  const KtVector& p = joint.dhTransform().translation();
  linear = joint.dhRotation().inverseTimes(inboard.linear() + inboard.angular().cross(p));
  angular = joint.dhRotation().inverseTimes(inboard.angular());
}

double KtManipulatorLink::arbiJointAcceleration(const KtManipulatorExternalForce& external,
                                                const KtManipulatorTorque& torque,
                                                KtManipulatorActiveState& activeState,
                                                const KtStatedSystemStruct* asker) const {
  return queriedOutboard<&Articulation::supplementalJointAccelerationValid,
                         &Articulation::supplementalJointAcceleration>(
      activeState.articulationCache(), linkIndex_,
      [this] { reportIndex("arbiJointAcceleration(): articulation states index", linkIndex_); },
      0.0,
      [&](Articulation& entry) {
        const KtArticulatedBodyDynamics& own = arbd(external, torque, activeState, asker);
        const double q = activeState.positionCache().jointPosition(linkIndex_);
        const double inertia = jointActuator_.effectiveInertia(q);
        const double tau = Kt::detail::valueOrZero(torque.jointTorques(), linkIndex_);
        KtVector linear;
        KtVector angular;
        getInboardSupplement(external, torque, activeState, asker, linear, angular);
        double rate = 0.0;
        if (const auto* motion = jointMotion(); motion != nullptr) {
          rate = own.jointAcceleration(*motion, inertia, tau, linear, angular);
          motion->addTo(rate, linear, angular);
          entry.setSupplementalDhAcceleration(linear, angular);
        } else {
          const double load = linkKinematicsContainer_.torqueRequiredToExert(
              q, own.calculateForce(KtGeneralMotion(linear, angular)));
          const double whole =
              linkKinematicsContainer_.unitAccelerationTorque(q, own.inertia()) + inertia;
          if (whole != 0.0) rate = (tau - load) / whole;
        }
        entry.setSupplementalJointAcceleration(rate);
      });
}

// The base

const KtRigidBodyMassProperties& KtIndividualManipulator::crbi(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  return KtManipulatorLink::crbi(activeState, asker);
}

const KtReArray& KtIndividualManipulator::crbiSpatialCholeskyDecomposition(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  return crbi(activeState, asker).spatialCholeskyDecomposition();
}

const KtArticulatedBodyDynamics& KtIndividualManipulator::arbd(
    const KtManipulatorExternalForce& external, const KtManipulatorTorque& torque,
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  return KtManipulatorLink::arbd(external, torque, activeState, asker);
}

const KtGeneralMotion& KtIndividualManipulator::arbiSupplementalDhFrameAccelerationInLocal(
    const KtManipulatorExternalForce& external, const KtManipulatorTorque& torque,
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  if (isFixedBase()) return m_theZeroAcceleration;
  return filled<&Articulation::supplementalDhAccelerationValid,
                &Articulation::supplementalDhAcceleration>(
      activeState.articulationCache().entry(ktBaseIndex), [&](Articulation& entry) {
        entry.setSupplementalDhAcceleration(arbd(external, torque, activeState, asker)
                                                .calculateAcceleration(torque.generalForce()));
      });
}

const KtGeneralMotion& KtIndividualManipulator::arbiBaseAccelerationInLocal(
    const KtManipulatorExternalForce& external, const KtManipulatorTorque& torque,
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  return arbiSupplementalDhFrameAccelerationInLocal(external, torque, activeState, asker);
}

double KtIndividualManipulator::computeKineticEnergy(KtManipulatorActiveState& activeState,
                                                     KtMassMatrixTool* tool,
                                                     const KtStatedSystemStruct* asker) const {
  const KtU32 joints = jointDof();
  if (isFixedBase() && joints == 0) return 0.0;
  std::optional<KtMassMatrixTool> own;
  if (tool == nullptr) tool = &own.emplace();
  tool->setManipulator(this);
  tool->setIsFixedBase(isFixedBase());
  const KtReArray& mass = isFixedBase() ? tool->massMatrix(activeState, asker)
                                        : tool->extendedMassMatrixInBase(activeState, asker);
  const KtVelocityState& velocity = activeState.velocityState();
  KtReArray z(mass.rows(), 1);
  for (KtU32 i = 0; i < joints; ++i) z[i][0] = activeState.velocityCache().jointVelocity(i);
  for (KtU32 k = joints; k < z.rows(); ++k) z[k][0] = velocity.generalVelocity()[k - joints];
  return 0.5 * (z.transpose() * (mass * z))[0][0];
}

void KtIndividualManipulator::initializeActuatorStatesIfShort(
    KtManipulatorActiveState& activeState) const {
  if (activeState.actuatorState().outputTorques().size() >=
      activeState.positionState().jointPositions().size()) {
    return;
  }
  for (KtU32 i = 0; i < jointDof(); ++i) {
    const KtManipulatorLink* link = linkByIndex(i);
    if (link != nullptr) link->jointActuator().initializeActuatorStates(activeState);
  }
}
