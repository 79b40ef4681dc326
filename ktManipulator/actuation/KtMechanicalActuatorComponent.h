#pragma once

#include "ktManipulator/actuation/KtJointMechanics.h"

/// The mechanical side of a joint actuator: a rotor with inertia and viscous friction, a gear,
/// joint limits with stoppers, stick-slip friction, and optionally a flexible coupling with
/// backlash between motor and joint. It turns a command into the torque on the joint, with its
/// dynamic quantities in the `KtActuatorState` of the active state.
class KT_EXPORT KtMechanicalActuatorComponent
    : public KtXmlPersistent<
          KtMechanicalActuatorComponent,
          KtJointMechanics<KtMechanicalActuatorComponent, KtEfficientJointMechanics>> {
 public:
  /// All parameters at their defaults.
  KtMechanicalActuatorComponent() = default;
  /// Inertia, friction coefficient, gear ratio, lower limit, upper limit, maximum output rate,
  /// stopper zone, stopper spring coefficient, stopper damping coefficient; the others at their
  /// defaults.
  using KtXmlPersistent::KtXmlPersistent;

  void registerComponents() override;

  /// A small geared motor: inertia 0.004, friction 0.001, gear ratio 40, limits of 150 to either
  /// side with stoppers of 4900 over 0.08, a rate of 1000, and 140 for the damping of the sticking
  /// joint.
  static KtMechanicalActuatorComponent defaultObject();

  /// Exact equality; the link takes no part.
  bool operator==(const KtMechanicalActuatorComponent&) const = default;
  static const KtToken& classToken();

  /// How messages name the class.
  static constexpr const char* kClassName = "KtMechanicalActuatorComponent";
  /// The dry friction is loaded by the drive and the load alone.
  static constexpr bool kFrictionSeesLinearTorque = false;
};

extern template class KtJointMechanics<KtMechanicalActuatorComponent, KtEfficientJointMechanics>;
