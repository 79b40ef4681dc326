// Frames, velocities, accelerations, forces and momenta of a link.
//
// Every query looks at its flag in the active state, computes what is missing through the queries
// that it stands on, and answers the entry. A link reads and writes entries without virtual calls.
#include "ktManipulator/activestate/KtLinkQuery.h"
#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/state/KtExternalForceDescription.h"
#include "ktManipulator/state/KtManipulatorExternalForce.h"

namespace {

using Kt::detail::queried;
using Kt::detail::queriedOutboard;
using Kt::detail::RotationMatrix;
using Acceleration = KtLinkAccelerationState;
using Velocity = KtLinkVelocityState;
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

// Where the joint places the link in its parent, as the model answers it.
inline const KtCoordinateSystemTransformation& KtManipulatorLink::jointTransform(
    const KtManipulatorActivePositionState& positionState) const {
  const KtLinkKinematics* model = linkKinematicsContainer_.topElement();
  return model != nullptr ? model->calculateTransform(positionState.jointPosition(linkIndex_))
                          : KtLinkKinematicsContainer::m_theIdentity;
}

const KtCoordinateSystemTransformation& KtManipulatorLink::dhFrameInSystem(
    KtManipulatorActivePositionState& positionState) const {
  return queriedOutboard<&KtLinkPositionState::locationInSystemValid,
                         &KtLinkPositionState::dhFrame>(
      positionState, linkIndex_,
      [] { report("KtManipulatorLink::dhFrameInSystem(): index out of range.\n"); },
      m_theDummyTransformation,
      [&](KtLinkPositionState& entry) {
        const T& joint = jointTransform(positionState);
        const T& primary = linkKinematicsContainer_.primaryFrame();
        if (parentLink_ != nullptr) {
          entry.place(parentLink_->dhFrameInSystem(positionState) * joint, primary);
        } else {
          entry.place(scratch().frame *= joint, primary);
        }
      });
}

const KtCoordinateSystemTransformation& KtManipulatorLink::primaryFrameInSystem(
    KtManipulatorActivePositionState& positionState) const {
  return queried<&KtLinkPositionState::locationInSystemValid, &KtLinkPositionState::primaryFrame>(
      positionState, linkIndex_,
      [&] {
        Kt::Print::instance().write(
            Kt::Print::kError,
            "KtManipulatorLink::primaryFrameInSystem(): index %d out of range %d.\n",
            static_cast<int>(linkIndex_), static_cast<int>(positionState.linkCount()));
      },
      m_theDummyTransformation, [&](KtLinkPositionState&) { dhFrameInSystem(positionState); });
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
    entry.setDhTransform(jointTransform(positionState));
    entry.setDhTransformValid(true);
  }
  return entry;
}

Kt::detail::JointMotion KtManipulatorLink::askedUnitMotion(
    const KtManipulatorActivePositionState& positionState) const {
  const KtGeneralMotion& unit = linkKinematicsContainer_.calculateAcceleration(
      positionState.jointPosition(linkIndex_), 0.0, 1.0);
  return {unit.linear(), unit.angular(), KtVector()};
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
  auto& positions = activeState.positionCache();
  auto& velocities = activeState.velocityCache();
  const auto reportSize = [this] { reportBadSize("dhFrameVelocityInLocal", linkIndex_); };
  if (linkIndex_ >= positions.linkCount()) {
    reportSize();
    return m_theDummyGeneralVelocity;
  }
  return queriedOutboard<&Velocity::localDhValid, &Velocity::dhFrameVelocityInLocal>(
      velocities, linkIndex_, reportSize, m_theDummyGeneralVelocity, [&](Velocity& entry) {
        const KtGeneralMotion& inboard =
            parentLink_ != nullptr ? parentLink_->knownVelocity(activeState) : scratch().velocity;
        const KtLinkPositionState& joint = placedJoint(positions);
        const RotationMatrix& r = joint.dhRotation();
        const double qDot = velocities.jointVelocity(linkIndex_);
        const KtVector& w = inboard.angular();
        KtVector linear =
            r.inverseTimes(inboard.linear() + w.cross(joint.dhTransform().translation()));
        KtVector angular = r.inverseTimes(w);
        if (const auto* motion = jointMotion(); motion != nullptr) {
          motion->addTo(qDot, linear, angular);
        } else {
          const KtGeneralMotion& relative =
              linkKinematicsContainer_.calculateVelocity(positions.jointPosition(linkIndex_), qDot);
          linear += relative.linear();
          angular += relative.angular();
        }
        entry.setDhFrameVelocityInLocal(linear, angular);
        if (parentLink_ == nullptr) scratch().velocity = entry.dhFrameVelocityInLocal();
      });
}

const KtGeneralMotion& KtManipulatorLink::dhFrameVelocityInSystem(
    KtManipulatorActiveState& activeState) const {
  return queriedOutboard<&Velocity::systemDhValid, &Velocity::dhFrameVelocityInSystem>(
      activeState.velocityCache(), linkIndex_,
      [] { report("KtManipulatorLink::dhFrameVelocityInSystem(): index out of range.\n"); },
      m_theDummyGeneralVelocity,
      [&](Velocity& entry) {
        const RotationMatrix r(dhFrameInSystem(activeState.positionCache()).orientation());
        const KtGeneralMotion& local = dhFrameVelocityInLocal(activeState);
        entry.setDhFrameVelocityInSystem(r * local.linear(), r * local.angular());
      });
}

const KtGeneralMotion& KtManipulatorLink::primaryFrameVelocityInSystem(
    KtManipulatorActiveState& activeState) const {
  auto& velocities = activeState.velocityCache();
  return queried<&Velocity::systemPrimaryValid, &Velocity::primaryFrameVelocityInSystem>(
      velocities, linkIndex_,
      [&] {
        Kt::Print::instance().write(
            Kt::Print::kError,
            "KtManipulatorLink::primaryFrameVelocityInSystem(): index %d  out of range %d.\n",
            static_cast<int>(linkIndex_), static_cast<int>(velocities.linkCount()));
      },
      m_theDummyGeneralVelocity,
      [&](Velocity& entry) {
        KtGeneralMotion velocity = dhFrameVelocityInLocal(activeState);
        velocity.transformBy(linkKinematicsContainer_.primaryFrameInverse());
        velocity.transformBy(primaryFrameInSystem(activeState.positionCache()).orientation());
        entry.setPrimaryFrameVelocityInSystem(velocity);
      });
}

const KtGeneralMotion& KtManipulatorLink::comVelocityInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  return queried<&Velocity::localComValid, &Velocity::comVelocityInLocal>(
      activeState.velocityCache(), linkIndex_,
      [this] { reportBadSize("comVelocityInLocal", linkIndex_); }, m_theDummyGeneralVelocity,
      [&](Velocity& entry) {
        KtVector center;
        massPropertiesInDHFrame(asker).getCenterOfMass(center);
        KtGeneralMotion velocity = dhFrameVelocityInLocal(activeState);
        velocity.transformBy(-center);
        entry.setComVelocityInLocal(velocity);
      });
}

// Accelerations and forces

const KtGeneralMotion& KtManipulatorLink::dhFrameAccelerationInLocal(
    KtManipulatorActiveState& activeState) const {
  auto& accelerations = activeState.accelerationCache();
  return queriedOutboard<&Acceleration::localDhValid, &Acceleration::dhFrameAccelerationInLocal>(
      accelerations, linkIndex_,
      [] { report("KtManipulatorLink::dhFrameAccelerationInLocal(): index out of range.\n"); },
      m_theDummyGeneralAcceleration,
      [&](Acceleration& entry) {
        auto& positions = activeState.positionCache();
        const double qDot = activeState.velocityCache().jointVelocity(linkIndex_);
        const double qDotDot = accelerations.jointAcceleration(linkIndex_);
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
        KtVector linear = r.inverseTimes(inboard.linear() + inboard.angular().cross(p) +
                                         outer.cross(outer.cross(p)));
        KtVector angular = r.inverseTimes(inboard.angular());
        if (const auto* motion = jointMotion(); motion != nullptr) {
          motion->addAccelerationTo(w, qDot, qDotDot, linear, angular);
        } else {
          const double q = positions.jointPosition(linkIndex_);
          const KtGeneralMotion& vr = linkKinematicsContainer_.calculateVelocity(q, qDot);
          linear += w.cross(vr.linear()) * 2.0;
          angular += w.cross(vr.angular());
          const KtGeneralMotion& ar =
              linkKinematicsContainer_.calculateAcceleration(q, qDot, qDotDot);
          linear += ar.linear();
          angular += ar.angular();
        }
        entry.setDhFrameAccelerationInLocal(linear, angular);
      });
}

const KtGeneralForce& KtManipulatorLink::dhFrameForceInLocal(
    const KtManipulatorExternalForce& external, KtManipulatorActiveState& activeState,
    const KtStatedSystemStruct* asker) const {
  auto& forces = activeState.forceCache();
  if (linkIndex_ < forces.linkCount() &&
      linkIndex_ >= activeState.accelerationCache().linkCount()) {
    report("KtManipulatorLink::dhFrameForceInLocal(): acc. index out of range.\n");
    return m_theDummyGeneralForce;
  }
  return queried<&KtLinkForceState::localDhValid, &KtLinkForceState::dhFrameForceInLocal>(
      forces, linkIndex_,
      [] { report("KtManipulatorLink::dhFrameForceInLocal(): force index out of range.\n"); },
      m_theDummyGeneralForce,
      [&](KtLinkForceState& entry) {
        auto& positions = activeState.positionCache();
        const KtVector& w = dhFrameVelocityInLocal(activeState).angular();
        const KtGeneralMotion& acceleration = dhFrameAccelerationInLocal(activeState);
        const KtGeneralForce& given = external[linkIndex_];
        KtVector force;
        KtVector moment;
        knownMass(asker).getForce(w, acceleration, force, moment);
        force -= given.force();
        moment -= given.moment();
        for (const KtManipulatorLink& child : childLinks().elements()) {
          const KtGeneralForce& outboard =
              child.KtManipulatorLink::dhFrameForceInLocal(external, activeState, asker);
          const KtLinkPositionState& joint = child.placedJoint(positions);
          const KtVector turned = joint.dhRotation() * outboard.force();
          force += turned;
          moment += joint.dhRotation() * outboard.moment() +
                    joint.dhTransform().translation().cross(turned);
        }
        entry.setDhFrameForceInLocal(force, moment);
      });
}

const KtGeneralMotion& KtManipulatorLink::comAccelerationInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  return queried<&Acceleration::localComValid, &Acceleration::comAccelerationInLocal>(
      activeState.accelerationCache(), linkIndex_,
      [this] { reportBadSize("comAccelerationInLocal", linkIndex_); },
      m_theDummyGeneralAcceleration,
      [&](Acceleration& entry) {
        KtVector center;
        massPropertiesInDHFrame(asker).getCenterOfMass(center);
        const KtVector w = dhFrameVelocityInLocal(activeState).angular();
        KtGeneralMotion acceleration = dhFrameAccelerationInLocal(activeState);
        acceleration.setLinear(acceleration.linear() + acceleration.angular().cross(center) +
                               w.cross(w.cross(center)));
        entry.setComAccelerationInLocal(acceleration);
      });
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
  return queried<&Velocity::localMomentumValid, &Velocity::momentumInLocal>(
      activeState.velocityCache(), linkIndex_,
      [this] { reportIndex("spatialMomentumInLocal", linkIndex_); }, m_theDummySpatialMomentum,
      [&](Velocity& entry) {
        const CentralInertia body(massPropertiesInDHFrame(asker));
        const KtGeneralMotion& velocity = comVelocityInLocal(activeState, asker);
        entry.setMomentumInLocal({velocity.linear() * body.mass, body.tensor * velocity.angular()});
      });
}

const KtGeneralMotion& KtManipulatorLink::spatialMomentumRateInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  return queried<&Acceleration::localMomentumRateValid, &Acceleration::momentumRateInLocal>(
      activeState.accelerationCache(), linkIndex_,
      [this] { reportIndex("spatialMomentumRateInLocal", linkIndex_); },
      m_theDummySpatialMomentumRate,
      [&](Acceleration& entry) {
        const CentralInertia body(massPropertiesInDHFrame(asker));
        const KtVector w = comVelocityInLocal(activeState, asker).angular();
        const KtGeneralMotion& acceleration = comAccelerationInLocal(activeState, asker);
        entry.setMomentumRateInLocal(
            {acceleration.linear() * body.mass,
             body.tensor * acceleration.angular() - (body.tensor * w).cross(w)});
      });
}

// The vectors of the children are turned into this link's axes and added; the points that their
// angular parts are about stay their own.

const KtGeneralMotion& KtManipulatorLink::compositeSpatialMomentumInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  return queried<&Velocity::compositeMomentumValid, &Velocity::compositeMomentumInLocal>(
      activeState.velocityCache(), linkIndex_,
      [this] { reportIndex("compositeSpatialMomentumInLocal", linkIndex_); },
      m_theDummySpatialMomentum,
      [&](Velocity& entry) {
        KtGeneralMotion sum = spatialMomentumInLocal(activeState, asker);
        for (const KtManipulatorLink& child : childLinks().elements()) {
          const KtGeneralMotion& part = child.compositeSpatialMomentumInLocal(activeState, asker);
          sum += child.jointTransform(activeState.positionCache()).orientation() * part;
        }
        entry.setCompositeMomentumInLocal(sum);
      });
}

const KtGeneralMotion& KtManipulatorLink::compositeSpatialMomentumRateInLocal(
    KtManipulatorActiveState& activeState, const KtStatedSystemStruct* asker) const {
  return queried<&Acceleration::compositeMomentumRateValid,
                 &Acceleration::compositeMomentumRateInLocal>(
      activeState.accelerationCache(), linkIndex_,
      [this] { reportIndex("compositeSpatialMomentumRateInLocal", linkIndex_); },
      m_theDummySpatialMomentumRate,
      [&](Acceleration& entry) {
        KtGeneralMotion sum = spatialMomentumRateInLocal(activeState, asker);
        for (const KtManipulatorLink& child : childLinks().elements()) {
          const KtGeneralMotion& part =
              child.compositeSpatialMomentumRateInLocal(activeState, asker);
          sum += child.jointTransform(activeState.positionCache()).orientation() * part;
        }
        entry.setCompositeMomentumRateInLocal(sum);
      });
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
