#pragma once

#include <cmath>
#include <limits>

#include "ktManipulator/ktManipulator.h"

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
    KtPositionState p;
    p.jointPositions().resize(2);
    p.jointPositions()[kElbow] = position;
    active.setPositionState(p);
    KtVelocityState v;
    v.jointVelocities().resize(2);
    v.jointVelocities()[kElbow] = rate;
    active.setVelocityState(v);
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

/// The derivative of a function by central differences.
template <class Function>
double slope(Function&& f, double x, double step) {
  return (f(x + step) - f(x - step)) / (2.0 * step);
}
