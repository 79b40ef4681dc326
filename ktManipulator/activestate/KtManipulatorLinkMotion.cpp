// Frames, velocities, accelerations, forces and momenta of a link.
//
// Every query looks at its flag in the active state, computes what is missing through the queries
// that it stands on, and answers the entry. A link reads and writes entries without virtual calls.
#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/state/KtExternalForceDescription.h"
#include "ktManipulator/state/KtManipulatorExternalForce.h"

namespace {

using Kt::detail::RotationMatrix;
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
    const KtLinkKinematics* model = linkKinematicsContainer_.topElement();
    const T& joint = model != nullptr ? model->calculateTransform(positionState.jointPosition(i))
                                      : KtLinkKinematicsContainer::m_theIdentity;
    if (parentLink_ != nullptr) {
      entry.setDhFrame(parentLink_->dhFrameInSystem(positionState) * joint);
    } else {
      T& frame = scratch().frame;
      frame *= joint;
      entry.setDhFrame(frame);
    }
    const T& primary = linkKinematicsContainer_.primaryFrame();
    entry.setPrimaryFrame(primary.mode() == T::kIdentity ? entry.dhFrame()
                                                         : entry.dhFrame() * primary);
    entry.setLocationInSystemValid(true);
  }
  return entry.dhFrame();
}

const KtCoordinateSystemTransformation& KtManipulatorLink::primaryFrameInSystem(
    KtManipulatorActivePositionState& positionState) const {
  const KtU32 i = linkIndex_;
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

const KtLinkPositionState& KtManipulatorLink::placedJoint(
    KtManipulatorActivePositionState& positionState) const {
  if (linkIndex_ >= positionState.linkCount()) {
    // States of unequal lengths: with that query's message.
    static const KtLinkPositionState theDummyState;
    dhFrameInSystem(positionState);
    return theDummyState;
  }
  KtLinkPositionState& entry = positionState.entry(linkIndex_);
  if (!entry.dhTransformValid()) {
    const KtLinkKinematics* model = linkKinematicsContainer_.topElement();
    entry.setDhTransform(model != nullptr
                             ? model->calculateTransform(positionState.jointPosition(linkIndex_))
                             : KtLinkKinematicsContainer::m_theIdentity);
    entry.setDhTransformValid(true);
  }
  return entry;
}

// Velocities

// The two queries, without a virtual call where the answer is there already.

inline const KtGeneralMotion& KtManipulatorLink::knownVelocity(
    KtManipulatorActiveState& activeState) const {
  auto& velocities = activeState.velocityCache();
  if (linkIndex_ < velocities.linkCount() || linkIndex_ == ktBaseIndex) {
    const KtLinkVelocityState& entry = velocities.entry(linkIndex_);
    if (entry.localDhValid()) return entry.dhFrameVelocityInLocal();
  }
  return dhFrameVelocityInLocal(activeState);
}

inline const KtGeneralMotion& KtManipulatorLink::knownAcceleration(
    KtManipulatorActiveState& activeState) const {
  auto& accelerations = activeState.accelerationCache();
  if (linkIndex_ < accelerations.linkCount() || linkIndex_ == ktBaseIndex) {
    const KtLinkAccelerationState& entry = accelerations.entry(linkIndex_);
    if (entry.localDhValid()) return entry.dhFrameAccelerationInLocal();
  }
  return dhFrameAccelerationInLocal(activeState);
}

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
  if (entry.localDhValid()) return entry.dhFrameVelocityInLocal();
  const KtGeneralMotion& inboard =
      parentLink_ != nullptr ? parentLink_->knownVelocity(activeState) : scratch().velocity;
  const KtLinkPositionState& joint = placedJoint(positions);
  const RotationMatrix& r = joint.dhRotation();
  const double qDot = velocities.jointVelocity(i);
  const KtVector& w = inboard.angular();
  KtVector linear = r.inverseTimes(inboard.linear() + w.cross(joint.dhTransform().translation()));
  KtVector angular = r.inverseTimes(w);
  if (const auto* motion = frameMotion(); motion != nullptr) {
    if (motion->turnsAboutZ) {
      angular.z += qDot;
    } else {
      linear += motion->linear * qDot;
      angular += motion->angular * qDot;
    }
  } else {
    const KtGeneralMotion& relative =
        linkKinematicsContainer_.calculateVelocity(positions.jointPosition(i), qDot);
    linear += relative.linear();
    angular += relative.angular();
  }
  entry.setDhFrameVelocityInLocal(linear, angular);
  if (parentLink_ == nullptr) scratch().velocity = entry.dhFrameVelocityInLocal();
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
    const RotationMatrix r(dhFrameInSystem(activeState.positionCache()).orientation());
    const KtGeneralMotion& local = dhFrameVelocityInLocal(activeState);
    entry.setDhFrameVelocityInSystem(r * local.linear(), r * local.angular());
  }
  return entry.dhFrameVelocityInSystem();
}

const KtGeneralMotion& KtManipulatorLink::primaryFrameVelocityInSystem(
    KtManipulatorActiveState& activeState) const {
  const KtU32 i = linkIndex_;
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
  const KtU32 i = linkIndex_;
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
  auto& positions = activeState.positionCache();
  auto& accelerations = activeState.accelerationCache();
  if (i >= accelerations.linkCount()) {
    report("KtManipulatorLink::dhFrameAccelerationInLocal(): index out of range.\n");
    return m_theDummyGeneralAcceleration;
  }
  KtLinkAccelerationState& entry = accelerations.entry(i);
  if (entry.localDhValid()) return entry.dhFrameAccelerationInLocal();
  const double qDot = activeState.velocityCache().jointVelocity(i);
  const double qDotDot = accelerations.jointAcceleration(i);
  const KtGeneralMotion& velocity = parentLink_ != nullptr
                                        ? parentLink_->knownVelocity(activeState)
                                        : KtLinkKinematicsContainer::m_theNullMotion;
  const KtGeneralMotion& inboard = parentLink_ != nullptr
                                       ? parentLink_->knownAcceleration(activeState)
                                       : KtLinkKinematicsContainer::m_theNullMotion;
  const KtLinkPositionState& joint = placedJoint(positions);
  const RotationMatrix& r = joint.dhRotation();
  const KtVector& p = joint.dhTransform().translation();
  const KtVector& outer = velocity.angular();
  const KtVector w = r.inverseTimes(outer);
  KtVector linear =
      r.inverseTimes(inboard.linear() + inboard.angular().cross(p) + outer.cross(outer.cross(p)));
  KtVector angular = r.inverseTimes(inboard.angular());
  if (const auto* motion = frameMotion(); motion != nullptr && motion->turnsAboutZ) {
    angular += KtVector(w.y * qDot, -w.x * qDot, qDotDot);
  } else if (motion != nullptr) {
    const KtVector relative = motion->angular * qDot;
    linear += w.cross(motion->linear) * (2.0 * qDot) + motion->linear * qDotDot +
              motion->centripetal * (qDot * qDot);
    angular += w.cross(relative) + motion->angular * qDotDot;
  } else {
    const double q = positions.jointPosition(i);
    const KtGeneralMotion& vr = linkKinematicsContainer_.calculateVelocity(q, qDot);
    linear += w.cross(vr.linear()) * 2.0;
    angular += w.cross(vr.angular());
    const KtGeneralMotion& ar = linkKinematicsContainer_.calculateAcceleration(q, qDot, qDotDot);
    linear += ar.linear();
    angular += ar.angular();
  }
  entry.setDhFrameAccelerationInLocal(linear, angular);
  return entry.dhFrameAccelerationInLocal();
}

const KtGeneralForce& KtManipulatorLink::dhFrameForceInLocal(
    const KtManipulatorExternalForce& external, KtManipulatorActiveState& activeState,
    const KtStatedSystemStruct* asker) const {
  const KtU32 i = linkIndex_;
  if (i != ktBaseIndex && i >= activeState.forceCache().linkCount()) {
    report("KtManipulatorLink::dhFrameForceInLocal(): force index out of range.\n");
    return m_theDummyGeneralForce;
  }
  if (i != ktBaseIndex && i >= activeState.accelerationCache().linkCount()) {
    report("KtManipulatorLink::dhFrameForceInLocal(): acc. index out of range.\n");
    return m_theDummyGeneralForce;
  }
  KtLinkForceState& entry = activeState.forceCache().entry(i);
  if (entry.localDhValid()) return entry.dhFrameForceInLocal();
  auto& positions = activeState.positionCache();
  const KtVector& w = dhFrameVelocityInLocal(activeState).angular();
  const KtGeneralMotion& acceleration = dhFrameAccelerationInLocal(activeState);
  const KtRigidBodyMassProperties& body =
      ownMassSuffices(asker) ? massPropertiesInDHFrame_ : massPropertiesInDHFrame(asker);
  const KtGeneralForce& given = external[i];
  KtVector force;
  KtVector moment;
  body.getForce(w, acceleration, force, moment);
  force -= given.force();
  moment -= given.moment();
  for (const KtManipulatorLink& child : childLinks().elements()) {
    const KtGeneralForce& outboard =
        child.KtManipulatorLink::dhFrameForceInLocal(external, activeState, asker);
    const KtLinkPositionState& joint = child.placedJoint(positions);
    const KtVector turned = joint.dhRotation() * outboard.force();
    force += turned;
    moment +=
        joint.dhRotation() * outboard.moment() + joint.dhTransform().translation().cross(turned);
  }
  entry.setDhFrameForceInLocal(force, moment);
  return entry.dhFrameForceInLocal();
}

const KtGeneralMotion& KtManipulatorLink::comAccelerationInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  const KtU32 i = linkIndex_;
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
  double torque = 0.0;
  if (!damperProperties_.isEmpty()) torque += damperProperties_.torque(*manipulator_, activeState);
  if (!springProperties_.isEmpty()) torque += springProperties_.torque(*manipulator_, activeState);
  return torque;
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
  const KtU32 i = linkIndex_;
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
  const KtU32 i = linkIndex_;
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
  const KtU32 i = linkIndex_;
  auto& velocities = activeState.velocityCache();
  if (i != ktBaseIndex && i >= velocities.linkCount()) {
    reportIndex("compositeSpatialMomentumInLocal", i);
    return m_theDummySpatialMomentum;
  }
  KtLinkVelocityState& entry = velocities.entry(i);
  if (!entry.compositeMomentumValid()) {
    KtGeneralMotion sum = spatialMomentumInLocal(activeState, asker);
    const auto& positions = activeState.positionCache();
    for (const KtManipulatorLink& child : childLinks().elements()) {
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
  const KtU32 i = linkIndex_;
  auto& accelerations = activeState.accelerationCache();
  if (i != ktBaseIndex && i >= accelerations.linkCount()) {
    reportIndex("compositeSpatialMomentumRateInLocal", i);
    return m_theDummySpatialMomentumRate;
  }
  KtLinkAccelerationState& entry = accelerations.entry(i);
  if (!entry.compositeMomentumRateValid()) {
    KtGeneralMotion sum = spatialMomentumRateInLocal(activeState, asker);
    const auto& positions = activeState.positionCache();
    for (const KtManipulatorLink& child : childLinks().elements()) {
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
  for (const KtManipulatorLink& child : childLinks().elements()) {
    KtVector part;
    child.computeMomentFromLinearAcceleration(point, activeState, part, asker);
    moment += part;
  }
}
