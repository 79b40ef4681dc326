#pragma once

#include "ktManipulator/actuation/KtBasePowerConverter.h"

/// The converter whose command is the torque. It needs no state.
class KT_EXPORT KtPassThroughPowerConverter
    : public KtXmlPersistent<KtPassThroughPowerConverter, KtBasePowerConverter> {
 public:
  KtU32 numStateVariables() const override { return 0; }
  double outputTorque(double input, KtActuatorState& state) const override;
  void computeStateDerivatives(double input, KtActuatorState& state,
                               Derivatives& derivatives) const override;

  /// Exact equality; the link takes no part.
  bool operator==(const KtPassThroughPowerConverter&) const = default;
  static const KtToken& classToken();
};
