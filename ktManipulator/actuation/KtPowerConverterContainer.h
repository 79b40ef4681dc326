#pragma once

#include "ktManipulator/actuation/KtBasePowerConverter.h"
#include "ktManipulator/foundation/containers/KtXmlVariableElementType.h"

/// The holder of one power converter. It accepts `KtPassThroughPowerConverter`,
/// `KtDcElectricMotor` and `KtHydraulicCylinder`.
class KT_EXPORT KtPowerConverterContainer
    : public KtXmlPersistent<KtPowerConverterContainer,
                             KtXmlVariableElementType<KtBasePowerConverter>> {
 public:
  void registerComponentCreators() override;

  /// `KtBasePowerConverter::numStateVariables` of the converter; 0 for an empty holder.
  virtual KtU32 numStateVariables() const;
  /// `KtBasePowerConverter::outputTorque` of the converter; 0 for an empty holder.
  virtual double outputTorque(double input, KtActuatorState& state) const;
  /// `KtBasePowerConverter::computeStateDerivatives` of the converter; an empty holder empties
  /// `derivatives`.
  virtual void computeStateDerivatives(double input, KtActuatorState& state,
                                       KtBasePowerConverter::Derivatives& derivatives) const;

  bool operator==(const KtPowerConverterContainer&) const = default;
  static const KtToken& classToken();
};

extern template class KtXmlVariableElementType<KtBasePowerConverter>;
