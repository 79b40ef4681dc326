// One manipulator's step in time.
#include <algorithm>

#include "ktManipulator/model/KtAccelerationState.h"
#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/model/KtPositionState.h"
#include "ktManipulator/model/KtVelocityState.h"

void KtIndividualManipulator::propagateVelocityState(const KtAccelerationState& acceleration,
                                                     double dt, KtVelocityState& velocity) const {
  const auto& accelerations = acceleration.jointAccelerations();
  auto& rates = velocity.jointVelocities();
  const KtU32 count = std::min({jointDof(), accelerations.size(), rates.size()});
  for (KtU32 i = 0; i < count; ++i) {
    double rate = dt * accelerations[i] + rates[i];
    if (const KtManipulatorLink* link = linkByIndex(i); link != nullptr) {
      const double most = link->jointActuator().maxOutputRate();
      rate = std::max(std::min(rate, most), -most);
    }
    rates[i] = rate;
  }
  velocity.setGeneralVelocity(velocity.generalVelocity() + dt * acceleration.generalAcceleration());
}

void KtIndividualManipulator::propagateState(const KtVelocityState& velocity, double dt,
                                             KtPositionState& position) const {
  propagationResult_.reset();
  propagateState(velocity, dt, position, propagationResult_);
}

void KtIndividualManipulator::propagateState(const KtVelocityState& velocity, double dt,
                                             KtPositionState& position,
                                             KtPropagationResultData& result) const {
  const auto& rates = velocity.jointVelocities();
  auto& positions = position.jointPositions();
  const KtU32 count = std::min({jointDof(), rates.size(), positions.size()});
  for (KtU32 i = 0; i < count; ++i) {
    double q = dt * rates[i] + positions[i];
    if (const KtManipulatorLink* link = linkByIndex(i); link != nullptr) {
      const double upper = link->jointActuator().upperLimit();
      const double lower = link->jointActuator().lowerLimit();
      const auto stopAt = [&](double limit) {
        result.setHitJointLimit(true);
        result.setLinkIndexAtJointLimit(link->linkIndex());
        q = limit;
      };
      if (q > upper) stopAt(upper);
      if (lower > q) stopAt(lower);
    }
    positions[i] = q;
  }
  const KtGeneralMotion& base = velocity.generalVelocity();
  KtOrientation orientation = position.coordSysXForm().orientation();
  orientation.integrateReferenceFrameAngularVelocity(base.angular(), dt);
  position.setCoordSysXForm(
      {position.coordSysXForm().translation() + base.linear() * dt, orientation});
}
