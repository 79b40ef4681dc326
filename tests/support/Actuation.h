#pragma once

#include <cmath>
#include <initializer_list>
#include <type_traits>

#include "support/States.h"

/// A manipulator of two links below its root, with an active state that fits it: the elbow (joint
/// 1) is the joint that tests drive.
struct DrivenElbow {
  static constexpr KtU32 kElbow = 1;

  DrivenElbow() {
    manipulator.setLabel("base");
    KtManipulatorLink shoulder, forearm;
    shoulder.setLabel("shoulder");
    forearm.setLabel("elbow");
    shoulder.addChild(forearm);
    manipulator.addChild(shoulder);
    move(0.0, 0.0);
  }

  const KtManipulatorLink* elbow() const { return manipulator.linkByIdentifier("elbow"); }

  /// Sets the elbow's position, rate and acceleration; the motor stays where it is.
  void move(double position, double rate, double acceleration = 0.0) {
    active.setPositionState(states::at(states::joints({0.0, position})));
    active.setVelocityState(states::moving(states::joints({0.0, rate})));
    KtAccelerationState a;
    a.resize(2);
    a.jointAccelerations()[kElbow] = acceleration;
    active.setAccelerationState(a);
  }
  void setMotor(double position, double rate) {
    active.actuatorState().motorPositions()[kElbow] = position;
    active.actuatorState().motorVelocities()[kElbow] = rate;
  }

  KtIndividualManipulator manipulator;
  KtManipulatorActiveState active;
};

/// Calls each setter with another value below 1.5.
template <class Cls>
void setEach(Cls& object,
             std::initializer_list<void (std::type_identity_t<Cls>::*)(double)> setters) {
  double value = 0.03;
  for (const auto set : setters) (object.*set)(value += 0.0625);
}

/// Mechanics of a joint, in either form, with every parameter at a value of its own.
template <class M>
M fullMechanics() {
  M mechanics;
  setEach(mechanics,
          {&M::setKineticCoulombFrictionPercentage, &M::setInertia, &M::setFrictionCoefficient,
           &M::setGearRatio, &M::setLowerLimit, &M::setUpperLimit, &M::setMaxOutputRate,
           &M::setStopperZone, &M::setStopperSpringCoefficient, &M::setStopperDampingCoefficient,
           &M::setStaticCoulombFriction, &M::setStaticCoulombSpringCoefficient,
           &M::setStaticCoulombDamperCoefficient, &M::setLimitingVelocityStickRegion,
           &M::setJointFlexibilityStiffness, &M::setJointFlexibilityDamping, &M::setBacklash});
  mechanics.setIsRigid(false);
  return mechanics;
}

/// The derivative of a function by central differences.
template <class Function>
double slope(Function&& f, double x, double step) {
  return (f(x + step) - f(x - step)) / (2.0 * step);
}
