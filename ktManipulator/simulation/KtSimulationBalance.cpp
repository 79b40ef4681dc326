// How a simulation keeps accounts of its energy.

#include "ktManipulator/simulation/KtMechanicalEnergy.h"
#include "ktManipulator/simulation/KtOwnSpring.h"
#include "ktManipulator/simulation/KtSimulation.h"

namespace {

double power(const KtGeneralForce& force, const KtGeneralMotion& motion) {
  return force.force().dot(motion.linear()) + force.moment().dot(motion.angular());
}

}  // namespace

void KtSimulation::setKeepsBalance(bool keeps) {
  keepsBalance_ = keeps;
  balance_ = {};
  if (!keeps) return;
  probes_.resize(manipulators().size());
  balance_.before = energyNow();
}

KtEnergyBalance KtSimulation::energyBalance() {
  if (keepsBalance_) balance_.after = energyNow();
  return balance_;
}

double KtSimulation::energyNow() {
  double energy = 0.0;
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    energy += energyIn(m, state_.positionStates()[m], state_.velocityStates()[m], true);
  }
  return energy;
}

double KtSimulation::energyIn(KtU32 m, const KtPositionState& position,
                              const KtVelocityState& velocity, bool withPotential) {
  const KtIndividualManipulator& manipulator = manipulators()[m];
  probes_[m].setPositionState(position);
  probes_[m].setVelocityState(velocity);
  const double kinetic = KtMechanicalEnergy::kinetic(manipulator, probes_[m], nullptr);
  if (!withPotential) return kinetic;
  return kinetic + KtMechanicalEnergy::weight(manipulator, probes_[m], upGravity_) +
         KtMechanicalEnergy::springs(manipulator, probes_[m]);
}

// The kinetic energy is quadratic in the rates: with the inertia of before the step, what a force
// adds to it is its work along the mean of the rates before and behind it. What the change of
// inertias and of positions makes of it beyond that is the integrator's.
void KtSimulation::balanceForces(double dt) {
  free_.resize(manipulators().size());
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    KtVelocityState& free = free_[m];
    free = state_.velocityStates()[m];
    auto& rates = free.jointVelocities().elements();
    const auto& accelerations = accelerations_[m].jointAccelerations().elements();
    for (std::size_t i = 0; i < rates.size(); ++i) rates[i] = dt * accelerations[i] + rates[i];
    free.setGeneralVelocity(free.generalVelocity() + dt * accelerations_[m].generalAcceleration());
    balanceJoints(m, dt);
    if (isForced_ || m < active_.generalForceVector().size()) balanceLinks(m, dt);
  }
}

void KtSimulation::balanceJoints(KtU32 m, double dt) {
  const KtIndividualManipulator& manipulator = manipulators()[m];
  const KtManipulatorActiveState& active = cache(m);
  const auto& rates = state_.velocityStates()[m].jointVelocities().elements();
  const auto& free = free_[m].jointVelocities().elements();
  const auto& commands = commands_[m].jointTorques().elements();
  const auto& outputs = active.actuatorState().outputTorques().elements();
  for (const Bounds& joint : boundsOf(m)) {
    const KtU32 i = joint.link;
    const KtManipulatorLink& link = *manipulator.links()[i];
    const double way = dt * 0.5 * (rates[i] + free[i]);
    const double given = commands[i] * joint.ratio;
    const auto* mechanics = link.jointActuator().mechanicalComponentContainer().element();
    if (mechanics == nullptr || i >= outputs.size()) {
      balance_.torques += given * way;
    } else if (!joint.isRigid) {
      balance_.torques += outputs[i] * way;
    } else {
      const double stopper = mechanics->stopperTorque(active);
      balance_.torques += given * way;
      balance_.limits -= stopper * way;
      balance_.friction += (outputs[i] + stopper - given) * way;
    }
    if (const KtDamperProperties& damper = link.damperProperties(); !damper.isEmpty()) {
      balance_.dampers -= damper.torque(manipulator, active) * way;
    }
    if (const KtSpringProperties& spring = link.springProperties();
        !spring.isEmpty() && !Kt::detail::hasOwnSpring(manipulator, link)) {
      balance_.springs -= spring.torque(manipulator, active) * way;
    }
  }
}

void KtSimulation::balanceLinks(KtU32 m, double dt) {
  const KtIndividualManipulator& manipulator = manipulators()[m];
  const KtManipulatorExternalForce& forces = forcesOn(m);
  probes_[m].setPositionState(state_.positionStates()[m]);
  probes_[m].setVelocityState(free_[m]);
  const auto add = [&](const KtManipulatorLink& link, const KtGeneralForce& force) {
    balance_.forces += 0.5 * dt *
                       (power(force, link.dhFrameVelocityInLocal(cache(m))) +
                        power(force, link.dhFrameVelocityInLocal(probes_[m])));
  };
  if (!manipulator.isFixedBase()) add(manipulator, forces.baseForce());
  for (const Bounds& joint : boundsOf(m)) {
    add(*manipulator.links()[joint.link], forces[joint.link]);
  }
}

void KtSimulation::balanceEvents(double dt) {
  const auto& cuts = lastStep_.rates;
  for (std::size_t k = 0; k < cuts.size(); ++k) {
    const KtU32 m = joints_[cuts[k]].manipulator;
    if (k > 0 && joints_[cuts[k - 1]].manipulator == m) continue;
    // The base is left: what an attached one gets from its parent is no cut.
    KtVelocityState& cut = free_[m];
    const double before = energyIn(m, before_.positionStates()[m], cut, false);
    cut.setJointVelocities(state_.velocityStates()[m].jointVelocities());
    balance_.rates += energyIn(m, before_.positionStates()[m], cut, false) - before;
  }
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    const KtPropagationResultData& result = results_[m];
    const bool taken = result.collisionOccurred() || result.hitGeneralStoppingCriterion();
    if (!taken && !result.hitJointLimit()) continue;
    const KtVelocityState& velocity = state_.velocityStates()[m];
    clamped_ = before_.positionStates()[m];
    manipulators()[m].propagateState(velocity, dt, clamped_);
    unclamped_ = clamped_;
    for (const Bounds& joint : boundsOf(m)) {
      unclamped_.jointPositions()[joint.link] =
          dt * velocity.jointVelocities()[joint.link] +
          before_.positionStates()[m].jointPositions()[joint.link];
    }
    const double stopped = energyIn(m, clamped_, velocity, true);
    balance_.limits += stopped - energyIn(m, unclamped_, velocity, true);
    if (taken) {
      balance_.stops += energyIn(m, state_.positionStates()[m], velocity, true) - stopped;
    }
  }
}

void KtSimulation::balanceImpact() {
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    if (struck_[m] == state_.velocityStates()[m]) continue;
    const KtPositionState& position = state_.positionStates()[m];
    const double before = energyIn(m, position, struck_[m], false);
    balance_.limits += energyIn(m, position, state_.velocityStates()[m], false) - before;
  }
}
