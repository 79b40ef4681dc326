#include "ktManipulator/simulation/KtSimulation.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "ktManipulator/constraints/KtLinearStateEqualityConstraint.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtAsker.h"
#include "ktManipulator/propagation/KtPropagationDescriptor.h"
#include "ktManipulator/simulation/KtMechanicalEnergy.h"

namespace {

std::string textOf(double value) {
  char digits[32];
  return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

std::string shortTextOf(double value) {
  char digits[32];
  return {digits,
          std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 6).ptr};
}

void note(KtSimulation::Event& event, double time) {
  if (event.count++ == 0) event.first = time;
}

// NaN if a value isn't finite, and else what was there: 0 to begin with.
void addIfNotFinite(double& sum, double value) {
  sum += value - value;
}

void addBase(double& sum, const KtPositionState& position, const KtVelocityState& velocity) {
  const KtVector& place = position.coordSysXForm().translation();
  for (const double value : {place.x, place.y, place.z}) addIfNotFinite(sum, value);
  const KtGeneralMotion& motion = velocity.generalVelocity();
  for (unsigned k = 0; k < 6; ++k) addIfNotFinite(sum, motion[k]);
}

}  // namespace

KtSimulation::KtSimulation(const KtStatedSystem& system, Method method)
    : system_(system), state_(system.state()), upGravity_(system.environment().upGravityVector()) {
  const auto& all = manipulators();
  const auto count = static_cast<KtU32>(all.size());
  fitState();
  articulated_.resize(count);
  composite_.resize(count);
  commands_.resize(count);
  external_.resize(count);
  active_.setNonredundantState(state_);
  firstJoints_.push_back(0);
  for (KtU32 m = 0; m < count; ++m) {
    const bool constrained = all[m].stateEqualityConstraints().doc() > 0;
    isComposite_.push_back(method == Method::kComposite ||
                           (method == Method::kAutomatic && constrained));
    accelerations_.push_back(KtAccelerationState::zeroCompatibleState(state_.velocityStates()[m]));
    commands_[m].jointTorques().resize(all[m].jointDof());
    external_[m].resize(all[m].jointDof());
    addJoints(m);
  }
  gravity_ = accelerations_;
  setUpGravity(upGravity_);
  torques_.assign(joints_.size(), 0.0);
  lastStep_.limits.reserve(joints_.size());
  lastStep_.rates.reserve(joints_.size());
  lastStep_.stopped.reserve(count);
  lastStep_.collided.reserve(count);
  startMotors();
}

void KtSimulation::addJoints(KtU32 m) {
  const auto& all = manipulators();
  for (const KtManipulatorLink* link : all[m].links()) {
    if (link == nullptr) continue;
    const KtJointActuator& actuator = link->jointActuator();
    joints_.push_back({m, link->linkIndex(),
                       (all.size() > 1 ? all[m].label() + '/' : "") + link->label(), Event(),
                       Event()});
    bounds_.push_back({actuator.lowerLimit(), actuator.upperLimit(), actuator.maxOutputRate(),
                       actuator.gearRatio(), link->linkIndex(), actuator.isRigid()});
    someAreFlexible_ = someAreFlexible_ || !actuator.isRigid();
  }
  firstJoints_.push_back(joints_.size());
}

// A state that fits is left as it is, to the last bit.
void KtSimulation::fitState() {
  const auto& all = manipulators();
  const auto& positions = state_.positionStates();
  const auto& velocities = state_.velocityStates();
  bool fits = positions.size() == all.size() && velocities.size() == all.size();
  for (KtU32 m = 0; fits && m < all.size(); ++m) {
    fits = positions[m].jointPositions().size() == all[m].jointDof() &&
           velocities[m].jointVelocities().size() == all[m].jointDof();
  }
  if (!fits) system_.rightSizeState(state_);
}

void KtSimulation::startMotors() {
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    cache(m).setAccelerationState(gravity_[m]);
    for (const KtManipulatorLink* link : manipulators()[m].links()) {
      if (link != nullptr) link->jointActuator().initializeActuatorStates(cache(m));
    }
  }
}

void KtSimulation::setUpGravity(const KtVector& upGravity) {
  upGravity_ = upGravity;
  for (KtAccelerationState& gravity : gravity_) {
    gravity.setGeneralAcceleration({upGravity, KtVector()});
  }
  isEvaluated_ = false;
}

bool KtSimulation::setTorques(std::span<const double> torques) {
  if (torques.size() != joints_.size()) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtSimulation::setTorques(): %zu torques for %zu joints\n",
                                torques.size(), joints_.size());
    return false;
  }
  law_ = nullptr;
  std::copy(torques.begin(), torques.end(), torques_.begin());
  commandTorques(torques_);
  isEvaluated_ = false;
  return true;
}

void KtSimulation::setTorqueLaw(TorqueLaw law) {
  law_ = std::move(law);
  isEvaluated_ = false;
}

void KtSimulation::commandTorques(std::span<const double> torques) {
  for (std::size_t j = 0; j < joints_.size(); ++j) {
    const Joint& joint = joints_[j];
    const double ratio = bounds_[j].ratio;
    double command = ratio != 0.0 ? torques[j] / ratio : 0.0;
    const KtManipulatorLink& link = *manipulators()[joint.manipulator].linkByIndex(joint.link);
    if (const auto* converter = link.jointActuator().powerConverterContainer().element()) {
      converter->limitOutputTorque(command);
    }
    commands_[joint.manipulator].jointTorques()[joint.link] = command;
  }
}

bool KtSimulation::setExternalForce(KtU32 manipulator, KtU32 link, const KtGeneralForce& force) {
  if (manipulator >= manipulators().size() ||
      (link != ktBaseIndex && link >= manipulators()[manipulator].jointDof())) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtSimulation::setExternalForce(): no link %u of manipulator %u\n",
                                link, manipulator);
    return false;
  }
  if (link == ktBaseIndex) {
    external_[manipulator].setBaseForce(force);
  } else {
    external_[manipulator][link] = force;
  }
  isForced_ = true;
  isEvaluated_ = false;
  return true;
}

void KtSimulation::clearExternalForces() {
  for (KtManipulatorExternalForce& force : external_) force.setToZeros();
  isForced_ = false;
  isEvaluated_ = false;
}

void KtSimulation::setCollisions(Collisions collisions, KtU32 boundingVolumeLevel,
                                 double tolerance) {
  collisionMode_ = static_cast<KtU32>(collisions);
  boundingVolumeLevel_ = boundingVolumeLevel;
  collisionTolerance_ = tolerance;
}

void KtSimulation::setCollisions(Collisions collisions, const KtPropagationDescriptor& descriptor) {
  setCollisions(descriptor.checkForCollisions() ? collisions : Collisions::kIgnored,
                descriptor.collisionDetectionFidelity(), descriptor.collisionDetectionTolerance());
}

void KtSimulation::setState(const KtManipulatorSystemState& state) {
  state_ = state;
  fitState();
  active_.setNonredundantState(state_);
  startMotors();
  isShown_ = false;
  isEvaluated_ = false;
  if (keepsBalance_) setKeepsBalance(true);
}

bool KtSimulation::hasManipulator(const char* operation, KtU32 m) const {
  if (m < manipulators().size()) return true;
  Kt::Print::instance().write(Kt::Print::kError, "KtSimulation::%s(): no manipulator %u\n",
                              operation, m);
  return false;
}

KtManipulatorActiveState& KtSimulation::active(KtU32 manipulator) {
  if (!hasManipulator("active", manipulator)) return noActive_ = KtManipulatorActiveState();
  show();
  return cache(manipulator);
}

const KtAccelerationState& KtSimulation::acceleration(KtU32 manipulator) {
  if (!hasManipulator("acceleration", manipulator)) return noAcceleration_;
  evaluate();
  return accelerations_[manipulator];
}

// Friction goes by the motors' rates, which nothing but their owner keeps up with the joints'.
void KtSimulation::show() {
  if (isShown_) return;
  isShown_ = true;
  active_.setNonredundantState(state_);
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    KtManipulatorActiveState& active = cache(m);
    const auto& positions = active.positionState().jointPositions().elements();
    const auto& rates = active.velocityState().jointVelocities().elements();
    auto& motorPositions = active.actuatorState().motorPositions().elements();
    auto& motorRates = active.actuatorState().motorVelocities().elements();
    for (const Bounds& joint : boundsOf(m)) {
      if (!joint.isRigid || joint.link >= motorPositions.size()) continue;
      motorPositions[joint.link] = positions[joint.link] * joint.ratio;
      motorRates[joint.link] = rates[joint.link] * joint.ratio;
    }
  }
}

const KtManipulatorExternalForce& KtSimulation::forcesOn(KtU32 m) const {
  const auto& between = active_.generalForceVector().elements();
  if (m >= between.size()) return external_[m];
  return isForced_ ? sums_[m] : between[m];
}

void KtSimulation::evaluate() {
  if (isEvaluated_) return;
  show();
  const auto& all = manipulators();
  const auto count = static_cast<KtU32>(all.size());
  if (law_) {
    law_(state_, torques_);
    commandTorques(torques_);
  }
  isEvaluated_ = true;
  // The forces between links depend on velocities, too.
  active_.setGeneralForceValid(false);
  for (KtU32 m = 0; m < count; ++m) cache(m).setAccelerationState(gravity_[m]);
  system_.system().processLinkInteractions(active_, state_.time(), commands_);
  const auto& between = std::as_const(active_).generalForceVector();
  if (isForced_ && between.size() > 0) {
    sums_.resize(count);
    for (KtU32 m = 0; m < std::min(count, between.size()); ++m) {
      sums_[m] = between[m];
      sums_[m].resize(all[m].jointDof());
      sums_[m].setBaseForce(between[m].baseForce() + external_[m].baseForce());
      for (KtU32 i = 0; i < all[m].jointDof(); ++i) sums_[m][i] += external_[m][i];
    }
  }
  for (KtU32 m = 0; m < count; ++m) {
    KtManipulatorActiveState& active = cache(m);
    if (isComposite_[m]) {
      composite_[m].acceleration(system_, all[m], commands_[m], forcesOn(m), accelerations_[m],
                                 active, true);
    } else {
      articulated_[m].acceleration(system_, all[m], commands_[m], forcesOn(m), accelerations_[m],
                                   active, true);
    }
    active.setAccelerationState(accelerations_[m]);
  }
  if (!someAreFlexible_) return;
  for (std::size_t j = 0; j < joints_.size(); ++j) {
    if (bounds_[j].isRigid) continue;
    const Joint& joint = joints_[j];
    const KtManipulatorLink& link = *all[joint.manipulator].linkByIndex(joint.link);
    const auto* mechanics = link.jointActuator().mechanicalComponentContainer().element();
    mechanics->acceleration(commands_[joint.manipulator].jointTorques()[joint.link],
                            cache(joint.manipulator));
  }
}

bool KtSimulation::stepTo(double time) {
  lastStep_.isFinite = std::isfinite(time);
  lastStep_.limits.clear();
  lastStep_.rates.clear();
  lastStep_.stopped.clear();
  lastStep_.collided.clear();
  for (KtPropagationResultData& result : results_.elements()) result.reset();
  if (!lastStep_.isFinite) {
    complaint_ = "the time of the step is not finite";
    return false;
  }
  evaluate();
  const double dt = time - state_.time();
  // A check for collisions sets the new state in the caches.
  if (keepsBalance_ || collisionMode_ != 0) before_ = state_;
  if (keepsBalance_) balanceForces(dt);
  system_.propagateTo(time, state_, results_, active_, collisionMode_, 1.0, boundingVolumeLevel_,
                      collisionTolerance_);
  isShown_ = false;
  isEvaluated_ = false;
  if (someAreFlexible_) stepMotors(dt);
  noteEvents(time, dt);
  if (!checkFinite()) {
    lastStep_.isFinite = false;
    complain(time);
    return false;
  }
  if (keepsBalance_) balanceEvents(dt);
  if (limits_ == Limits::kStopRates && !lastStep_.limits.empty()) stopAtLimits();
  return true;
}

// As the joints: rates first.
void KtSimulation::stepMotors(double dt) {
  for (std::size_t j = 0; j < joints_.size(); ++j) {
    if (bounds_[j].isRigid) continue;
    KtActuatorState& motors = cache(joints_[j].manipulator).actuatorState();
    double& rate = motors.motorVelocities()[joints_[j].link].value();
    rate += dt * motors.motorAccelerations()[joints_[j].link];
    motors.motorPositions()[joints_[j].link].value() += dt * rate;
  }
}

const KtPositionState& KtSimulation::positionBefore(KtU32 m) const {
  return collisionMode_ != 0 ? before_.positionStates()[m]
                             : active_.manipulatorActiveStateVector()[m].positionState();
}

const KtVelocityState& KtSimulation::velocityBefore(KtU32 m) const {
  return collisionMode_ != 0 ? before_.velocityStates()[m]
                             : active_.manipulatorActiveStateVector()[m].velocityState();
}

// The records tell one joint for each manipulator. What the step did to the others follows from the
// state before it.
void KtSimulation::noteEvents(double time, double dt) {
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    const auto& rates = state_.velocityStates()[m].jointVelocities().elements();
    const bool someHit = results_[m].hitJointLimit();
    KtU32 j = static_cast<KtU32>(firstJoints_[m]);
    for (const Bounds& joint : boundsOf(m)) {
      const double rate = rates[joint.link];
      if (std::abs(rate) == joint.fastest) {
        const double before = velocityBefore(m).jointVelocities()[joint.link];
        const double acceleration = accelerations_[m].jointAccelerations()[joint.link];
        if (std::abs(dt * acceleration + before) > joint.fastest) {
          note(joints_[j].rate, time);
          lastStep_.rates.push_back(j);
        }
      }
      if (someHit) {
        const double free = dt * rate + positionBefore(m).jointPositions()[joint.link];
        if (free > joint.upper || joint.lower > free) {
          note(joints_[j].limit, time);
          lastStep_.limits.push_back(j);
        }
      }
      ++j;
    }
    if (results_[m].collisionOccurred()) lastStep_.collided.push_back(m);
    if (results_[m].hitGeneralStoppingCriterion()) lastStep_.stopped.push_back(m);
  }
  if (!lastStep_.stopped.empty()) noteStops(time);
}

void KtSimulation::noteStops(double time) {
  for (const KtU32 m : lastStep_.stopped) {
    const KtString& description = results_[m].satisfiedGeneralStoppingCriteriaDescription();
    auto found = std::find_if(stops_.begin(), stops_.end(), [&](const Stop& stop) {
      return stop.manipulator == m && stop.description == description;
    });
    if (found == stops_.end()) found = stops_.insert(found, {m, description, Event()});
    note(found->event, time);
  }
}

void KtSimulation::stopAtLimits() {
  const auto& hit = lastStep_.limits;
  if (keepsBalance_) struck_ = state_.velocityStates().elements();
  for (std::size_t k = 0; k < hit.size();) {
    const KtU32 m = joints_[hit[k]].manipulator;
    const auto& positions = state_.positionStates()[m].jointPositions().elements();
    const auto& rates = state_.velocityStates()[m].jointVelocities().elements();
    impact_.clear();
    for (; k < hit.size() && joints_[hit[k]].manipulator == m; ++k) {
      const Bounds& joint = bounds_[hit[k]];
      const bool up = joint.lower == joint.upper ? rates[joint.link] > 0.0
                                                 : positions[joint.link] == joint.upper;
      impact_.add(joint.link, up ? 1.0 : -1.0);
    }
    const Kt::detail::Asker asker(system_, m);
    impact_.apply(manipulators()[m], isComposite_[m], cache(m), asker, state_.velocityStates()[m]);
  }
  if (keepsBalance_) balanceImpact();
}

bool KtSimulation::checkFinite() const {
  double sum = 0.0;
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    const KtPositionState& position = state_.positionStates()[m];
    const KtVelocityState& velocity = state_.velocityStates()[m];
    for (const double q : position.jointPositions().elements()) addIfNotFinite(sum, q);
    for (const double rate : velocity.jointVelocities().elements()) addIfNotFinite(sum, rate);
    addBase(sum, position, velocity);
  }
  return sum == 0.0;
}

// Mostly a whole manipulator goes at once; what was fastest before tells where it began.
void KtSimulation::complain(double time) {
  const std::string at = " is not finite at " + textOf(time) + " s";
  const auto broken = std::find_if(joints_.begin(), joints_.end(), [&](const Joint& joint) {
    double sum = 0.0;
    addIfNotFinite(sum, state_.positionStates()[joint.manipulator].jointPositions()[joint.link]);
    addIfNotFinite(sum, state_.velocityStates()[joint.manipulator].jointVelocities()[joint.link]);
    return sum != 0.0;
  });
  if (broken == joints_.end()) {
    for (KtU32 m = 0; m < manipulators().size(); ++m) {
      double sum = 0.0;
      addBase(sum, state_.positionStates()[m], state_.velocityStates()[m]);
      if (sum == 0.0) continue;
      complaint_ = "the motion of the base of \"" + manipulators()[m].label() + '"' + at;
      return;
    }
    return;
  }
  complaint_ = "the motion of joint \"" + broken->name + '"' + at;
  const Joint* fastest = nullptr;
  double greatest = 0.0;
  for (const Joint& joint : joints_) {
    if (joint.manipulator != broken->manipulator) continue;
    const double rate =
        std::abs(velocityBefore(joint.manipulator).jointVelocities()[joint.link].value());
    if (rate <= greatest) continue;
    greatest = rate;
    fastest = &joint;
  }
  if (fastest != nullptr) {
    complaint_ += "; a step before, \"" + fastest->name + "\" was the fastest, at " +
                  shortTextOf(greatest) + " per second";
  }
}

double KtSimulation::constraintError() const {
  double greatest = 0.0;
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    if (!isComposite_[m]) continue;
    const auto& q = state_.positionStates()[m].jointPositions();
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

double KtSimulation::kineticEnergy() {
  double energy = 0.0;
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    energy += KtMechanicalEnergy::kinetic(manipulators()[m], active(m), nullptr);
  }
  return energy;
}

double KtSimulation::potentialEnergy() {
  double energy = 0.0;
  for (KtU32 m = 0; m < manipulators().size(); ++m) {
    energy += KtMechanicalEnergy::weight(manipulators()[m], active(m), upGravity_) +
              KtMechanicalEnergy::springs(manipulators()[m], active(m));
  }
  return energy;
}
