// The time step of one manipulator.
#include <algorithm>
#include <typeinfo>

#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/state/KtAccelerationState.h"
#include "ktManipulator/state/KtPositionState.h"
#include "ktManipulator/state/KtVelocityState.h"

namespace {

// Every step reads the limits of each joint. It avoids virtual calls if no derived class overrides
// them. Comparing addresses of types may miss an equal type; then the virtual call is used.
template <class Cls, class Object>
bool isPlain(const Object& object) {
  return &typeid(object) == &typeid(Cls);
}

// The limits of a joint.
struct Bounds {
  double lower, upper, rate;
};

[[gnu::noinline]] Bounds askedBounds(const KtJointActuator& actuator) {
  return {actuator.lowerLimit(), actuator.upperLimit(), actuator.maxOutputRate()};
}

// Actuator and container are stored by value, so their classes are known and need no virtual call.
inline Bounds boundsOf(const KtManipulatorLink& link) {
  using Mechanics = KtMechanicalActuatorComponent;
  using Holder = KtMechanicalActuatorComponentContainer;
  if (!isPlain<KtManipulatorLink>(link)) return askedBounds(link.jointActuator());
  const KtJointActuator& actuator = link.actuator();
  const Mechanics* part =
      actuator.KtJointActuator::mechanicalComponentContainer().Holder::element();
  if (part == nullptr || !isPlain<Mechanics>(*part)) return askedBounds(actuator);
  return {part->Mechanics::lowerLimit(), part->Mechanics::upperLimit(),
          part->Mechanics::maxOutputRate()};
}

// The same as `linkByIndex`.
class Links {
 public:
  explicit Links(const KtIndividualManipulator& manipulator)
      : manipulator_(manipulator),
        isPlain_(isPlain<KtIndividualManipulator>(manipulator)),
        table_(manipulator.links()) {}

  const KtManipulatorLink* operator[](KtU32 index) const {
    if (!isPlain_) return manipulator_.linkByIndex(index);
    return index < table_.size() ? table_[index] : nullptr;
  }

 private:
  const KtIndividualManipulator& manipulator_;
  const bool isPlain_;
  const KtIndividualManipulator::LinkTable& table_;
};

}  // namespace

void KtIndividualManipulator::propagateVelocityState(const KtAccelerationState& acceleration,
                                                     double dt, KtVelocityState& velocity) const {
  const auto& accelerations = acceleration.jointAccelerations().elements();
  auto& rates = velocity.jointVelocities().elements();
  const std::size_t count = std::min({std::size_t{jointDof()}, accelerations.size(), rates.size()});
  const Links links(*this);
  for (KtU32 i = 0; i < count; ++i) {
    double rate = dt * accelerations[i] + rates[i];
    if (const KtManipulatorLink* link = links[i]; link != nullptr) {
      const double most = boundsOf(*link).rate;
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
  const auto& rates = velocity.jointVelocities().elements();
  auto& positions = position.jointPositions().elements();
  const std::size_t count = std::min({std::size_t{jointDof()}, rates.size(), positions.size()});
  const Links links(*this);
  for (KtU32 i = 0; i < count; ++i) {
    double q = dt * rates[i] + positions[i];
    if (const KtManipulatorLink* link = links[i]; link != nullptr) {
      const Bounds bounds = boundsOf(*link);
      const auto stopAt = [&](double limit) {
        result.setHitJointLimit(true);
        result.setLinkIndexAtJointLimit(link->linkIndex());
        q = limit;
      };
      if (q > bounds.upper) stopAt(bounds.upper);
      if (bounds.lower > q) stopAt(bounds.lower);
    }
    positions[i] = q;
  }
  const KtGeneralMotion& base = velocity.generalVelocity();
  KtOrientation orientation = position.coordSysXForm().orientation();
  orientation.integrateReferenceFrameAngularVelocity(base.angular(), dt);
  position.setCoordSysXForm(
      {position.coordSysXForm().translation() + base.linear() * dt, orientation});
}
