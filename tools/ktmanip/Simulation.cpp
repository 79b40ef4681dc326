#include "Simulation.h"

#include <algorithm>
#include <cmath>

#include "Energy.h"
#include "Numbers.h"
#include "ktManipulator/constraints/KtLinearStateEqualityConstraint.h"
#include "ktManipulator/model/KtAsker.h"

Simulation::Simulation(const KtStatedSystem& system, SimulationMethod method,
                       const KtVector& upGravity)
    : system_(system), upGravity_(upGravity), state_(system.state()) {
  const auto& all = manipulators();
  const auto count = static_cast<KtU32>(all.size());
  articulated_.resize(count);
  composite_.resize(count);
  torques_.resize(count);
  none_.resize(count);
  active_.setNonredundantState(state_);
  firstJoints_.push_back(0);
  for (KtU32 m = 0; m < count; ++m) {
    const KtU32 dof = all[m].jointDof();
    isComposite_.push_back(
        method == SimulationMethod::kComposite ||
        (method == SimulationMethod::kAutomatic && all[m].stateEqualityConstraints().doc() > 0));
    accelerations_.push_back(KtAccelerationState::zeroCompatibleState(state_.velocityStates()[m]));
    gravity_.push_back(accelerations_.back());
    gravity_.back().setGeneralAcceleration({upGravity, KtVector()});
    torques_[m].jointTorques().resize(dof);
    none_[m].resize(dof);
    active(m).setAccelerationState(accelerations_.back());
    for (KtU32 i = 0; i < dof; ++i) {
      const KtManipulatorLink& link = *all[m].linkByIndex(i);
      Joint joint;
      joint.manipulator = m;
      joint.index = i;
      joint.name = (count > 1 ? all[m].label() + '/' : "") + link.label();
      joint.actuator = &link.jointActuator();
      joint.mechanics = joint.actuator->mechanicalComponentContainer().element();
      joint.lower = joint.actuator->lowerLimit();
      joint.upper = joint.actuator->upperLimit();
      joint.fastest = joint.actuator->maxOutputRate();
      joint.ratio = joint.actuator->gearRatio();
      joint.isRigid = joint.actuator->isRigid();
      joint.actuator->initializeActuatorStates(active(m));
      someAreFlexible_ = someAreFlexible_ || !joint.isRigid;
      joints_.push_back(std::move(joint));
    }
    firstJoints_.push_back(joints_.size());
  }
}

std::vector<std::string> Simulation::jointNames() const {
  std::vector<std::string> names;
  for (const Joint& joint : joints_) names.push_back(joint.name);
  return names;
}

void Simulation::setTorques(const std::vector<double>& torques) {
  for (std::size_t j = 0; j < joints_.size(); ++j) {
    const Joint& joint = joints_[j];
    double command = joint.ratio != 0.0 ? torques[j] / joint.ratio : 0.0;
    if (const auto* converter = joint.actuator->powerConverterContainer().element()) {
      converter->limitOutputTorque(command);
    }
    torques_[joint.manipulator].jointTorques()[joint.index] = command;
  }
}

// Friction goes by the motors' rates, which nothing but their owner keeps up with the joints'.
void Simulation::setMotors() {
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    KtManipulatorActiveState& active = this->active(m);
    const auto& positions = active.positionState().jointPositions().elements();
    const auto& rates = active.velocityState().jointVelocities().elements();
    auto& motorPositions = active.actuatorState().motorPositions().elements();
    auto& motorRates = active.actuatorState().motorVelocities().elements();
    for (const Joint& joint : jointsOf(m)) {
      if (!joint.isRigid) continue;
      motorPositions[joint.index] = positions[joint.index] * joint.ratio;
      motorRates[joint.index] = rates[joint.index] * joint.ratio;
    }
  }
}

void Simulation::computeAccelerations() {
  active_.setNonredundantState(state_);
  setMotors();
  // The forces between links depend on velocities, too.
  active_.setGeneralForceValid(false);
  const auto& all = manipulators();
  const auto count = static_cast<KtU32>(all.size());
  for (KtU32 m = 0; m < count; ++m) active(m).setAccelerationState(gravity_[m]);
  system_.system().processLinkInteractions(active_, state_.time(), torques_);
  const auto& forces = active_.generalForceVector();
  for (KtU32 m = 0; m < count; ++m) {
    KtManipulatorActiveState& active = this->active(m);
    const KtManipulatorExternalForce& force = m < forces.size() ? forces[m] : none_[m];
    if (isComposite_[m]) {
      composite_[m].acceleration(system_, all[m], torques_[m], force, accelerations_[m], active,
                                 true);
    } else {
      articulated_[m].acceleration(system_, all[m], torques_[m], force, accelerations_[m], active,
                                   true);
    }
    active.setAccelerationState(accelerations_[m]);
  }
  if (!someAreFlexible_) return;
  for (const Joint& joint : joints_) {
    if (joint.isRigid) continue;
    joint.mechanics->acceleration(torques_[joint.manipulator].jointTorques()[joint.index],
                                  active(joint.manipulator));
  }
}

bool Simulation::stepTo(double time) {
  for (KtPropagationResultData& result : results_.elements()) result.reset();
  const double dt = time - state_.time();
  system_.propagateTo(time, state_, results_, active_);
  if (someAreFlexible_) stepMotors(dt);
  noteEvents(time, dt);
  if (!checkFinite(time)) return false;
  if (stopsAtLimits_) {
    for (KtU32 m = 0; m < results_.size(); ++m) {
      if (results_[m].hitJointLimit()) stopAtLimits(m);
    }
  }
  return true;
}

// With rates v, rows g of conditions g v = 0 (equality constraints) or g v <= 0 (limits), and the
// mass matrix M of before the step: impulses p >= 0 at limits with v - M^-1 g^T p, found by sweeps
// over the rows. These serve also where conditions depend on each other, as with two joints at
// limits of which one mimics the other.
void Simulation::stopAtLimits(KtU32 m) {
  const KtIndividualManipulator& manipulator = manipulators()[m];
  KtVelocityState& velocity = state_.velocityStates()[m];
  const Kt::detail::Asker asker(system_, m);
  const bool fixed = manipulator.isFixedBase();
  const KtU32 n = manipulator.jointDof();
  massMatrixTool_.setManipulator(&manipulator);
  KtReArray mass = fixed ? massMatrixTool_.massMatrix(active(m), asker)
                         : massMatrixTool_.extendedMassMatrixInSystem(active(m), asker);
  for (KtU32 i = 0; i < n; ++i) {
    mass[i][i] += manipulator.linkByIndex(i)->jointActuator().effectiveInertia(
        active(m).positionState().jointPositions()[i]);
  }
  std::vector<double> v;
  for (const auto& rate : velocity.jointVelocities().elements()) v.push_back(rate);
  for (unsigned k = 0; !fixed && k < 6; ++k) v.push_back(velocity.generalVelocity()[k]);

  // Rows of limits first; the columns of rows and rates are those of the mass matrix.
  std::vector<std::vector<double>> rows;
  for (const Joint& joint : jointsOf(m)) {
    if (!joint.isAtLimit) continue;
    rows.emplace_back(v.size(), 0.0);
    const double q = state_.positionStates()[m].jointPositions()[joint.index];
    const bool up = joint.lower == joint.upper ? v[joint.index] > 0.0 : q == joint.upper;
    rows.back()[joint.index] = up ? 1.0 : -1.0;
  }
  const std::size_t limits = rows.size();
  if (isComposite_[m] && manipulator.stateEqualityConstraints().doc() > 0) {
    const KtReArray& jacobian =
        manipulator.stateEqualityConstraints().jacobian(manipulator, active(m).positionState());
    const KtU32 first = fixed ? 0 : 6;
    for (KtU32 r = 0; r < jacobian.rows() && jacobian.columns() == n + first; ++r) {
      std::vector<double>& row = rows.emplace_back(v.size(), 0.0);
      for (KtU32 i = 0; i < n; ++i) row[i] = jacobian[r][first + i];
      for (KtU32 k = 0; k < first; ++k) row[n + k] = jacobian[r][k];
    }
  }
  KtReArray responses(mass.rows(), static_cast<KtU32>(rows.size()));  // M^-1 g^T
  for (KtU32 r = 0; r < rows.size(); ++r) {
    for (KtU32 k = 0; k < mass.rows(); ++k) responses[k][r] = rows[r][k];
  }
  KtReArray factor;
  mass.choleskyDecomposition(factor);
  factor.choleskyBackSubstitution(responses, responses);
  std::vector<double> impulses(rows.size(), 0.0);
  constexpr int kMostSweeps = 100;
  for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
    double change = 0.0, all = 0.0;
    for (KtU32 r = 0; r < rows.size(); ++r) {
      double rate = 0.0, response = 0.0;
      for (KtU32 k = 0; k < v.size(); ++k) {
        rate += rows[r][k] * v[k];
        response += rows[r][k] * responses[k][r];
      }
      if (!(response > 0.0)) continue;
      const double old = impulses[r];
      impulses[r] += rate / response;
      if (r < limits) impulses[r] = std::fmax(impulses[r], 0.0);
      for (KtU32 k = 0; k < v.size(); ++k) v[k] -= responses[k][r] * (impulses[r] - old);
      change += std::abs(impulses[r] - old);
      all += std::abs(impulses[r]);
    }
    if (!(change > 1e-14 * all)) break;
  }
  for (KtU32 i = 0; i < n; ++i) velocity.jointVelocities()[i] = v[i];
  if (fixed) return;
  KtGeneralMotion base;
  for (unsigned k = 0; k < 6; ++k) base.setScalarValue(k, v[n + k]);
  velocity.setGeneralVelocity(base);
}

// As the joints: rates first.
void Simulation::stepMotors(double dt) {
  for (const Joint& joint : joints_) {
    if (joint.isRigid) continue;
    KtActuatorState& motors = active(joint.manipulator).actuatorState();
    double& rate = motors.motorVelocities()[joint.index].value();
    rate += dt * motors.motorAccelerations()[joint.index];
    motors.motorPositions()[joint.index].value() += dt * rate;
  }
}

// The records tell one joint for each manipulator. What the step did to the others follows from the
// active state, which is still that of before the step.
void Simulation::noteEvents(double time, double dt) {
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    const auto& q = active(m).positionState().jointPositions().elements();
    const auto& qd = active(m).velocityState().jointVelocities().elements();
    const auto& qdd = accelerations_[m].jointAccelerations().elements();
    const auto& rates = state_.velocityStates()[m].jointVelocities().elements();
    const bool someHit = results_[m].hitJointLimit();
    for (Joint& joint : jointsOf(m)) {
      const KtU32 i = joint.index;
      const double rate = rates[i];
      if (std::abs(rate) == joint.fastest && std::abs(dt * qdd[i] + qd[i]) > joint.fastest) {
        joint.rate.note(time);
      }
      const double free = dt * rate + q[i];
      joint.isAtLimit = someHit && (free > joint.upper || joint.lower > free);
      if (joint.isAtLimit) joint.limit.note(time);
    }
  }
  for (KtU32 m = 0; m < results_.size(); ++m) {
    if (!results_[m].hitGeneralStoppingCriterion()) continue;
    const KtString& description = results_[m].satisfiedGeneralStoppingCriteriaDescription();
    const std::string& label = manipulators()[m].label();
    auto found = std::find_if(stops_.begin(), stops_.end(), [&](const Stop& stop) {
      return stop.manipulator == label && stop.description == description;
    });
    if (found == stops_.end()) found = stops_.insert(found, {label, description, {}});
    found->event.note(time);
  }
}

bool Simulation::checkFinite(double time) {
  // The differences are NaN if anything isn't finite, and else 0.
  double sum = 0.0;
  const auto add = [&sum](double value) { sum += value - value; };
  const auto addSix = [&](const KtGeneralMotion& motion) {
    for (unsigned k = 0; k < 6; ++k) add(motion[k]);
  };
  const auto addBase = [&](KtU32 m) {
    const KtVector& place = state_.positionStates()[m].coordSysXForm().translation();
    for (const double value : {place.x, place.y, place.z}) add(value);
    addSix(state_.velocityStates()[m].generalVelocity());
  };
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    for (const auto& q : state_.positionStates()[m].jointPositions().elements()) add(q);
    for (const auto& rate : state_.velocityStates()[m].jointVelocities().elements()) add(rate);
    addBase(m);
  }
  if (sum == 0.0) return true;

  // Mostly a whole manipulator goes at once; what was fastest before tells where it began.
  const Joint* first = nullptr;
  for (const Joint& joint : joints_) {
    sum = 0.0;
    add(state_.positionStates()[joint.manipulator].jointPositions()[joint.index]);
    add(state_.velocityStates()[joint.manipulator].jointVelocities()[joint.index]);
    if (sum == 0.0) continue;
    first = &joint;
    break;
  }
  const auto at = [&] { return " at " + textOf(time) + " s"; };
  if (first == nullptr) {
    for (KtU32 m = 0; m < manipulators().size(); ++m) {
      sum = 0.0;
      addBase(m);
      if (sum == 0.0) continue;
      complaint_ =
          "the motion of the base of \"" + manipulators()[m].label() + "\" is not finite" + at();
      break;
    }
    return false;
  }
  complaint_ = "the motion of joint \"" + first->name + "\" is not finite" + at();
  const Joint* fastest = nullptr;
  double greatest = 0.0;
  for (const Joint& joint : joints_) {
    if (joint.manipulator != first->manipulator) continue;
    const double rate =
        std::abs(active(joint.manipulator).velocityState().jointVelocities()[joint.index].value());
    if (rate <= greatest) continue;
    greatest = rate;
    fastest = &joint;
  }
  if (fastest != nullptr) {
    complaint_ += "; a step before, \"" + fastest->name + "\" was the fastest, at " +
                  shortTextOf(greatest) + " per second";
  }
  return false;
}

double Simulation::kineticEnergy() {
  double energy = 0.0;
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    energy += ::kineticEnergy(manipulators()[m], active(m), nullptr);
  }
  return energy;
}

double Simulation::potentialEnergy() {
  double energy = 0.0;
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    energy += weightEnergy(manipulators()[m], active(m), upGravity_) +
              springEnergy(manipulators()[m], active(m));
  }
  return energy;
}

double Simulation::constraintError() const {
  double greatest = 0.0;
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    const auto& q = state_.positionStates()[m].jointPositions();
    if (!isComposite_[m]) continue;
    for (const auto* constraint : manipulators()[m].stateEqualityConstraints().vectorContainer()) {
      const auto* linear = dynamic_cast<const KtLinearStateEqualityConstraint*>(constraint);
      if (linear == nullptr || linear->baseWeights().size() > 0) continue;
      for (KtU32 r = 0; r < linear->doc(); ++r) {
        const auto& weights = linear->jointWeights()[r];
        double error = -linear->weightedSums()[r];
        for (KtU32 i = 0; i < std::min(weights.size(), q.size()); ++i) error += weights[i] * q[i];
        greatest = std::fmax(greatest, std::abs(error));
      }
    }
  }
  return greatest;
}
