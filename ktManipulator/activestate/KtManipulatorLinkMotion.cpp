// Frames, velocities, accelerations, forces and momenta of a link.
//
// Every query looks at its flag in the active state, computes what is missing through the queries
// that it stands on, and answers the entry. A link reads and writes entries without virtual calls.
#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtExternalForceDescription.h"
#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/model/KtManipulatorExternalForce.h"

namespace {

using T = KtCoordinateSystemTransformation;

void report(const char* message) {
  Kt::Print::instance().write(Kt::Print::kError, "%s", message);
}

void reportBadSize(const char* operation, KtU32 index) {
  Kt::Print::instance().write(
      Kt::Print::kError,
      "KtManipulatorLink::%s(): link index %d not in the range of the active state.\n", operation,
      static_cast<int>(index));
  report("This can be caused by the system and state not having the same size.\n");
}

void reportIndex(const char* operation, KtU32 index) {
  Kt::Print::instance().write(Kt::Print::kError,
                              "KtManipulatorLink::%s(): index (%d) out of range.\n", operation,
                              static_cast<int>(index));
}

// Mass, and inertia tensor about the centre of mass.
struct CentralInertia {
  double mass;
  KtSecondMoment tensor;

  explicit CentralInertia(const KtRigidBodyMassProperties& body) : mass(body.mass()) {
    KtVector center;
    body.getCenterOfMass(center);
    KtRigidBodyMassProperties moved = body;
    moved.transformBy(-center);
    tensor = moved.secondMoment();
  }
};

}  // namespace

// Frames

const KtCoordinateSystemTransformation& KtManipulatorLink::dhFrameInSystem(
    KtManipulatorActivePositionState& positionState) const {
  const KtU32 i = linkIndex_;
  if (i >= positionState.linkCount()) {
    report("KtManipulatorLink::dhFrameInSystem(): index out of range.\n");
    return m_theDummyTransformation;
  }
  KtLinkPositionState& entry = positionState.entry(i);
  if (!entry.locationInSystemValid()) {
    T frame;
    if (parentLink_ != nullptr) frame = parentLink_->dhFrameInSystem(positionState);
    frame *= linkKinematicsContainer_.calculateTransform(positionState.jointPosition(i));
    entry.setDhFrame(frame);
    entry.setPrimaryFrame(frame * linkKinematicsContainer_.primaryFrame());
    entry.setLocationInSystemValid(true);
  }
  return entry.dhFrame();
}

const KtCoordinateSystemTransformation& KtManipulatorLink::primaryFrameInSystem(
    KtManipulatorActivePositionState& positionState) const {
  const KtU32 i = linkIndex();
  if (i != ktBaseIndex && i >= positionState.linkCount()) {
    Kt::Print::instance().write(
        Kt::Print::kError, "KtManipulatorLink::primaryFrameInSystem(): index %d out of range %d.\n",
        static_cast<int>(i), static_cast<int>(positionState.linkCount()));
    return m_theDummyTransformation;
  }
  KtLinkPositionState& entry = positionState.entry(i);
  if (!entry.locationInSystemValid()) dhFrameInSystem(positionState);
  return entry.primaryFrame();
}

const KtCoordinateSystemTransformation& KtManipulatorLink::jointTransform(
    KtManipulatorActivePositionState& positionState) const {
  KtLinkPositionState& entry = positionState.entry(linkIndex_);
  if (!entry.dhTransformValid()) {
    entry.setDhTransform(
        linkKinematicsContainer_.calculateTransform(positionState.jointPosition(linkIndex_)));
    entry.setDhTransformValid(true);
  }
  return entry.dhTransform();
}

// Velocities

const KtGeneralMotion& KtManipulatorLink::dhFrameVelocityInLocal(
    KtManipulatorActiveState& activeState) const {
  const KtU32 i = linkIndex_;
  auto& positions = activeState.positionCache();
  auto& velocities = activeState.velocityCache();
  if (i >= velocities.linkCount() || i >= positions.linkCount()) {
    reportBadSize("dhFrameVelocityInLocal", i);
    return m_theDummyGeneralVelocity;
  }
  KtLinkVelocityState& entry = velocities.entry(i);
  if (!entry.localDhValid()) {
    KtGeneralMotion velocity;
    if (parentLink_ != nullptr) velocity = parentLink_->dhFrameVelocityInLocal(activeState);
    velocity.transformBy(jointTransform(positions).inverse());
    velocity += linkKinematicsContainer_.calculateVelocity(positions.jointPosition(i),
                                                           velocities.jointVelocity(i));
    entry.setDhFrameVelocityInLocal(velocity);
  }
  return entry.dhFrameVelocityInLocal();
}

const KtGeneralMotion& KtManipulatorLink::dhFrameVelocityInSystem(
    KtManipulatorActiveState& activeState) const {
  const KtU32 i = linkIndex_;
  auto& velocities = activeState.velocityCache();
  if (i >= velocities.linkCount()) {
    report("KtManipulatorLink::dhFrameVelocityInSystem(): index out of range.\n");
    return m_theDummyGeneralVelocity;
  }
  KtLinkVelocityState& entry = velocities.entry(i);
  if (!entry.systemDhValid()) {
    const KtOrientation& r = dhFrameInSystem(activeState.positionCache()).orientation();
    entry.setDhFrameVelocityInSystem(r * dhFrameVelocityInLocal(activeState));
  }
  return entry.dhFrameVelocityInSystem();
}

const KtGeneralMotion& KtManipulatorLink::primaryFrameVelocityInSystem(
    KtManipulatorActiveState& activeState) const {
  const KtU32 i = linkIndex();
  auto& velocities = activeState.velocityCache();
  if (i != ktBaseIndex && i >= velocities.linkCount()) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtManipulatorLink::primaryFrameVelocityInSystem(): index %d  out of range %d.\n",
        static_cast<int>(i), static_cast<int>(velocities.linkCount()));
    return m_theDummyGeneralVelocity;
  }
  KtLinkVelocityState& entry = velocities.entry(i);
  if (!entry.systemPrimaryValid()) {
    KtGeneralMotion velocity = dhFrameVelocityInLocal(activeState);
    velocity.transformBy(linkKinematicsContainer_.primaryFrameInverse());
    velocity.transformBy(primaryFrameInSystem(activeState.positionCache()).orientation());
    entry.setPrimaryFrameVelocityInSystem(velocity);
  }
  return entry.primaryFrameVelocityInSystem();
}

const KtGeneralMotion& KtManipulatorLink::comVelocityInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  const KtU32 i = linkIndex();
  auto& velocities = activeState.velocityCache();
  if (i != ktBaseIndex && i >= velocities.linkCount()) {
    reportBadSize("comVelocityInLocal", i);
    return m_theDummyGeneralVelocity;
  }
  KtLinkVelocityState& entry = velocities.entry(i);
  if (!entry.localComValid()) {
    KtVector center;
    massPropertiesInDHFrame(asker).getCenterOfMass(center);
    KtGeneralMotion velocity = dhFrameVelocityInLocal(activeState);
    velocity.transformBy(-center);
    entry.setComVelocityInLocal(velocity);
  }
  return entry.comVelocityInLocal();
}

// Accelerations and forces

const KtGeneralMotion& KtManipulatorLink::dhFrameAccelerationInLocal(
    KtManipulatorActiveState& activeState) const {
  const KtU32 i = linkIndex_;
  auto& accelerations = activeState.accelerationCache();
  if (i >= accelerations.linkCount()) {
    report("KtManipulatorLink::dhFrameAccelerationInLocal(): index out of range.\n");
    return m_theDummyGeneralAcceleration;
  }
  KtLinkAccelerationState& entry = accelerations.entry(i);
  if (!entry.localDhValid()) {
    auto& positions = activeState.positionCache();
    const double q = positions.jointPosition(i);
    const double qDot = activeState.velocityCache().jointVelocity(i);
    KtGeneralMotion velocity;
    KtGeneralMotion acceleration;
    if (parentLink_ != nullptr) {
      velocity = parentLink_->dhFrameVelocityInLocal(activeState);
      acceleration = parentLink_->dhFrameAccelerationInLocal(activeState);
    }
    const T toLink = jointTransform(positions).inverse();
    const KtVector w = toLink.orientation() * velocity.angular();
    acceleration.transformBy(toLink);
    const KtGeneralMotion vr = linkKinematicsContainer_.calculateVelocity(q, qDot);
    const KtGeneralMotion& ar =
        linkKinematicsContainer_.calculateAcceleration(q, qDot, accelerations.jointAcceleration(i));
    // The centripetal term of the joint's displacement, which is minus the translation of toLink.
    const KtVector centripetal = w.cross(w.cross(toLink.translation()));
    entry.setDhFrameAccelerationInLocal(
        {acceleration.linear() - centripetal + w.cross(vr.linear()) * 2.0 + ar.linear(),
         acceleration.angular() + w.cross(vr.angular()) + ar.angular()});
  }
  return entry.dhFrameAccelerationInLocal();
}

const KtGeneralForce& KtManipulatorLink::dhFrameForceInLocal(
    const KtManipulatorExternalForce& external, KtManipulatorActiveState& activeState,
    const KtStatedSystemStruct* asker) const {
  const KtU32 i = linkIndex();
  if (i != ktBaseIndex && i >= activeState.forceCache().linkCount()) {
    report("KtManipulatorLink::dhFrameForceInLocal(): force index out of range.\n");
    return m_theDummyGeneralForce;
  }
  if (i != ktBaseIndex && i >= activeState.accelerationCache().linkCount()) {
    report("KtManipulatorLink::dhFrameForceInLocal(): acc. index out of range.\n");
    return m_theDummyGeneralForce;
  }
  KtLinkForceState& entry = activeState.forceCache().entry(i);
  if (!entry.localDhValid()) {
    KtGeneralForce force = massPropertiesInDHFrame(asker).calculateForce(
        dhFrameVelocityInLocal(activeState), dhFrameAccelerationInLocal(activeState));
    force -= external[i];
    const auto& positions = activeState.positionCache();
    for (const KtManipulatorLink& child : childLinks().vectorContainer()) {
      const KtGeneralForce& outboard = child.dhFrameForceInLocal(external, activeState, asker);
      force += child.linkKinematicsContainer_.calculateTransform(
                   positions.jointPosition(child.linkIndex_)) *
               outboard;
    }
    entry.setDhFrameForceInLocal(force);
  }
  return entry.dhFrameForceInLocal();
}

const KtGeneralMotion& KtManipulatorLink::comAccelerationInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  const KtU32 i = linkIndex();
  auto& accelerations = activeState.accelerationCache();
  if (i != ktBaseIndex && i >= accelerations.linkCount()) {
    reportBadSize("comAccelerationInLocal", i);
    return m_theDummyGeneralAcceleration;
  }
  KtLinkAccelerationState& entry = accelerations.entry(i);
  if (!entry.localComValid()) {
    KtVector center;
    massPropertiesInDHFrame(asker).getCenterOfMass(center);
    const KtVector w = dhFrameVelocityInLocal(activeState).angular();
    KtGeneralMotion acceleration = dhFrameAccelerationInLocal(activeState);
    acceleration.setLinear(acceleration.linear() + acceleration.angular().cross(center) +
                           w.cross(w.cross(center)));
    entry.setComAccelerationInLocal(acceleration);
  }
  return entry.comAccelerationInLocal();
}

double KtManipulatorLink::totalLocalTorque(KtManipulatorActiveState& activeState) const {
  if (manipulator_ == nullptr) {
    report("KtManipulatorLink::totalLocalTorque()->NULL manipulator pointer");
    return 0.0;
  }
  return damperProperties_.torque(*manipulator_, activeState) +
         springProperties_.torque(*manipulator_, activeState);
}

const KtLineSegment& KtManipulatorLink::forceVectorInLocal(
    const KtManipulatorActiveState& activeState) const {
  return activeState.activeForceState()
      .externalForceDescription(linkIndex())
      .representativeForceVector();
}

// Momenta: linear, and angular about the centre of mass.

const KtGeneralMotion& KtManipulatorLink::spatialMomentumInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  const KtU32 i = linkIndex();
  auto& velocities = activeState.velocityCache();
  if (i != ktBaseIndex && i >= velocities.linkCount()) {
    reportIndex("spatialMomentumInLocal", i);
    return m_theDummySpatialMomentum;
  }
  KtLinkVelocityState& entry = velocities.entry(i);
  if (!entry.localMomentumValid()) {
    const CentralInertia body(massPropertiesInDHFrame(asker));
    const KtGeneralMotion& velocity = comVelocityInLocal(activeState, asker);
    entry.setMomentumInLocal({velocity.linear() * body.mass, body.tensor * velocity.angular()});
  }
  return entry.momentumInLocal();
}

const KtGeneralMotion& KtManipulatorLink::spatialMomentumRateInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  const KtU32 i = linkIndex();
  auto& accelerations = activeState.accelerationCache();
  if (i != ktBaseIndex && i >= accelerations.linkCount()) {
    reportIndex("spatialMomentumRateInLocal", i);
    return m_theDummySpatialMomentumRate;
  }
  KtLinkAccelerationState& entry = accelerations.entry(i);
  if (!entry.localMomentumRateValid()) {
    const CentralInertia body(massPropertiesInDHFrame(asker));
    const KtVector w = comVelocityInLocal(activeState, asker).angular();
    const KtGeneralMotion& acceleration = comAccelerationInLocal(activeState, asker);
    entry.setMomentumRateInLocal(
        {acceleration.linear() * body.mass,
         body.tensor * acceleration.angular() - (body.tensor * w).cross(w)});
  }
  return entry.momentumRateInLocal();
}

// The vectors of the children are turned into this link's axes and added; the points that their
// angular parts are about stay their own.

const KtGeneralMotion& KtManipulatorLink::compositeSpatialMomentumInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  const KtU32 i = linkIndex();
  auto& velocities = activeState.velocityCache();
  if (i != ktBaseIndex && i >= velocities.linkCount()) {
    reportIndex("compositeSpatialMomentumInLocal", i);
    return m_theDummySpatialMomentum;
  }
  KtLinkVelocityState& entry = velocities.entry(i);
  if (!entry.compositeMomentumValid()) {
    KtGeneralMotion sum = spatialMomentumInLocal(activeState, asker);
    const auto& positions = activeState.positionCache();
    for (const KtManipulatorLink& child : childLinks().vectorContainer()) {
      const KtGeneralMotion& momentum = child.compositeSpatialMomentumInLocal(activeState, asker);
      sum += child.linkKinematicsContainer_
                 .calculateTransform(positions.jointPosition(child.linkIndex_))
                 .orientation() *
             momentum;
    }
    entry.setCompositeMomentumInLocal(sum);
  }
  return entry.compositeMomentumInLocal();
}

const KtGeneralMotion& KtManipulatorLink::compositeSpatialMomentumRateInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  const KtU32 i = linkIndex();
  auto& accelerations = activeState.accelerationCache();
  if (i != ktBaseIndex && i >= accelerations.linkCount()) {
    reportIndex("compositeSpatialMomentumRateInLocal", i);
    return m_theDummySpatialMomentumRate;
  }
  KtLinkAccelerationState& entry = accelerations.entry(i);
  if (!entry.compositeMomentumRateValid()) {
    KtGeneralMotion sum = spatialMomentumRateInLocal(activeState, asker);
    const auto& positions = activeState.positionCache();
    for (const KtManipulatorLink& child : childLinks().vectorContainer()) {
      const KtGeneralMotion& rate = child.compositeSpatialMomentumRateInLocal(activeState, asker);
      sum += child.linkKinematicsContainer_
                 .calculateTransform(positions.jointPosition(child.linkIndex_))
                 .orientation() *
             rate;
    }
    entry.setCompositeMomentumRateInLocal(sum);
  }
  return entry.compositeMomentumRateInLocal();
}

void KtManipulatorLink::computeMomentFromLinearAcceleration(
    const KtVector& point, KtManipulatorActiveState& activeState, KtVector& moment,
    const KtStatedSystemStruct* asker) const {
  KtVector center;
  massPropertiesInDHFrame(asker).getCenterOfMass(center);
  const T frame = dhFrameInSystem(activeState.positionCache());
  const KtVector acceleration =
      frame.orientation() * comAccelerationInLocal(activeState, asker).linear();
  moment = (frame * center - point).cross(acceleration) * massProperties(asker).mass();
  for (const KtManipulatorLink& child : childLinks().vectorContainer()) {
    KtVector part;
    child.computeMomentFromLinearAcceleration(point, activeState, part, asker);
    moment += part;
  }
}
