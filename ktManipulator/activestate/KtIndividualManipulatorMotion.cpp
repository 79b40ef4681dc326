// Frames, velocities, accelerations and forces of the base and of the whole manipulator.
#include "ktManipulator/activestate/KtLinkQuery.h"
#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/foundation/geometry/KtPlane.h"
#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/state/KtManipulatorExternalForce.h"

using Kt::detail::filled;
using Kt::detail::RotationMatrix;

const KtCoordinateSystemTransformation& KtIndividualManipulator::dhFrameInSystem(
    KtManipulatorActivePositionState& positionState) const {
  return filled<&KtLinkPositionState::locationInSystemValid, &KtLinkPositionState::dhFrame>(
      positionState.entry(ktBaseIndex), [&](KtLinkPositionState& entry) {
        entry.place(coordSysXForm_ * positionState.positionState().coordSysXForm(), primaryFrame());
      });
}

const KtCoordinateSystemTransformation& KtIndividualManipulator::primaryFrameInSystem(
    KtManipulatorActivePositionState& positionState) const {
  return KtManipulatorLink::primaryFrameInSystem(positionState);
}

const KtGeneralMotion& KtIndividualManipulator::dhFrameVelocityInSystem(
    KtManipulatorActiveState& activeState) const {
  return activeState.velocityState().generalVelocity();
}

const KtGeneralMotion& KtIndividualManipulator::dhFrameVelocityInLocal(
    KtManipulatorActiveState& activeState) const {
  return filled<&KtLinkVelocityState::localDhValid, &KtLinkVelocityState::dhFrameVelocityInLocal>(
      activeState.velocityCache().entry(ktBaseIndex), [&](KtLinkVelocityState& entry) {
        const RotationMatrix r(dhFrameInSystem(activeState.positionCache()).orientation());
        const KtGeneralMotion& given = activeState.velocityState().generalVelocity();
        entry.setDhFrameVelocityInLocal(r.inverseTimes(given.linear()),
                                        r.inverseTimes(given.angular()));
      });
}

const KtGeneralMotion& KtIndividualManipulator::primaryFrameVelocityInSystem(
    KtManipulatorActiveState& activeState) const {
  return KtManipulatorLink::primaryFrameVelocityInSystem(activeState);
}

const KtGeneralMotion& KtIndividualManipulator::dhFrameAccelerationInLocal(
    KtManipulatorActiveState& activeState) const {
  return filled<&KtLinkAccelerationState::localDhValid,
                &KtLinkAccelerationState::dhFrameAccelerationInLocal>(
      activeState.accelerationCache().entry(ktBaseIndex), [&](KtLinkAccelerationState& entry) {
        const RotationMatrix r(dhFrameInSystem(activeState.positionCache()).orientation());
        const KtGeneralMotion& given = activeState.accelerationState().generalAcceleration();
        entry.setDhFrameAccelerationInLocal(r.inverseTimes(given.linear()),
                                            r.inverseTimes(given.angular()));
      });
}

const KtGeneralForce& KtIndividualManipulator::dhFrameForceInLocal(
    const KtManipulatorExternalForce& external, KtManipulatorActiveState& activeState,
    const KtStatedSystemStruct* asker) const {
  return KtManipulatorLink::dhFrameForceInLocal(external, activeState, asker);
}

KtVector KtIndividualManipulator::getCenterOfMassInSystem(
    KtManipulatorActiveState& activeState) const {
  KtVector center;
  crbi(activeState, nullptr).getCenterOfMass(center);
  return dhFrameInSystem(activeState.positionCache()) * center;
}

namespace {

// The point of the plane about which a force and a moment have no moment along the plane. The
// moment is given about the plane's own point. No change if the force doesn't cross the plane.
void moveToZeroMoment(const KtPlane& plane, const KtVector& force, const KtVector& moment,
                      KtVector& point) {
  const double across = force.dot(plane.normalVector());
  if (across != 0.0) point = plane.normalVector().cross(moment) / across + plane.basePoint();
}

// The forces of inertia on all links, and their moment about a point, in the system.
void getInertialLoad(const KtIndividualManipulator& manipulator, const KtVector& point,
                     KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker,
                     KtVector& force, KtVector& moment) {
  KtGeneralMotion rate = manipulator.compositeSpatialMomentumRateInLocal(activeState, asker);
  rate.transformBy(manipulator.dhFrameInSystem(activeState.positionCache()));
  manipulator.computeMomentFromLinearAcceleration(point, activeState, moment, asker);
  force = -rate.linear();
  moment = -(moment + rate.angular());
}

}  // namespace

void KtIndividualManipulator::computeZeroMomentPoint(const KtPlane& plane,
                                                     KtManipulatorActiveState& activeState,
                                                     KtVector& point,
                                                     const KtStatedSystemStruct* asker) const {
  KtVector force;
  KtVector moment;
  getInertialLoad(*this, plane.basePoint(), activeState, asker, force, moment);
  moveToZeroMoment(plane, force, moment, point);
}

void KtIndividualManipulator::computeZeroMomentPoint(const KtVector& gravity, const KtPlane& plane,
                                                     KtManipulatorActiveState& activeState,
                                                     KtVector& point,
                                                     const KtStatedSystemStruct* asker) const {
  KtVector force;
  KtVector moment;
  getInertialLoad(*this, plane.basePoint(), activeState, asker, force, moment);
  const KtVector weight = gravity * static_cast<double>(crbi(activeState, asker).mass());
  const KtVector arm = getCenterOfMassInSystem(activeState) - plane.basePoint();
  moveToZeroMoment(plane, force + weight, moment + arm.cross(weight), point);
}
