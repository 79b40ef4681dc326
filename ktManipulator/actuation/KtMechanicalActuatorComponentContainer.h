#pragma once

#include "ktManipulator/actuation/KtMechanicalActuatorComponent.h"
#include "ktManipulator/foundation/containers/KtXmlVariableElementType.h"

/// The holder of the mechanical side of a joint actuator. It accepts
/// `KtMechanicalActuatorComponent`.
class KT_EXPORT KtMechanicalActuatorComponentContainer
    : public KtXmlPersistent<KtMechanicalActuatorComponentContainer,
                             KtXmlVariableElementType<KtMechanicalActuatorComponent>> {
 public:
  void registerComponentCreators() override;

  /// `KtJointMechanics::outputTorque` of the component; an empty holder gives the command.
  virtual double outputTorque(double command, double load, KtManipulatorActiveState& active) const;
  /// `KtJointMechanics::linearTorque` of the component; 0 for an empty holder.
  virtual double linearTorque(KtManipulatorActiveState& active) const;

  bool operator==(const KtMechanicalActuatorComponentContainer&) const = default;
  static const KtToken& classToken();
};

extern template class KtXmlVariableElementType<KtMechanicalActuatorComponent>;
