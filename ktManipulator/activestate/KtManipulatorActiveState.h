#pragma once

#include "ktManipulator/actuation/KtActuatorState.h"
#include "ktManipulator/model/KtAccelerationState.h"
#include "ktManipulator/model/KtPositionState.h"
#include "ktManipulator/model/KtVelocityState.h"

/// The state of one manipulator that queries are asked with.
class KT_EXPORT KtManipulatorActiveState
    : public KtXmlPersistent<KtManipulatorActiveState, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// The positions of the joints and the place of the base.
  virtual const KtPositionState& positionState() const { return positionState_; }
  /// Sets what `positionState()` answers, and the length of the actuator state's lists.
  ///
  /// @return false, with nothing done, if the value is the same as before
  virtual bool setPositionState(const KtPositionState& state);
  /// The rates of the joints and the velocity of the base.
  virtual const KtVelocityState& velocityState() const { return velocityState_; }
  /// Sets what `velocityState()` answers.
  ///
  /// @return false, with nothing done, if the value is the same as before
  virtual bool setVelocityState(const KtVelocityState& state);
  /// The accelerations of the joints and of the base.
  virtual const KtAccelerationState& accelerationState() const { return accelerationState_; }
  /// Sets what `accelerationState()` answers.
  virtual void setAccelerationState(const KtAccelerationState& state) {
    accelerationState_ = state;
  }
  /// The dynamic quantities of the actuators.
  virtual const KtActuatorState& actuatorState() const { return actuatorState_; }
  /// The same, to be changed.
  virtual KtActuatorState& actuatorState() { return actuatorState_; }
  /// Sets what `actuatorState()` answers.
  virtual void setActuatorState(const KtActuatorState& state) { actuatorState_ = state; }

  /// Exact equality.
  bool operator==(const KtManipulatorActiveState&) const = default;
  /// Name of the class in files.
  static const KtToken& classToken();

 private:
  KtPositionState positionState_;
  KtVelocityState velocityState_;
  KtAccelerationState accelerationState_;
  KtActuatorState actuatorState_;
};
