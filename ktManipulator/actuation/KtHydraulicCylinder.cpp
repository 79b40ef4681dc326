#include "ktManipulator/actuation/KtHydraulicCylinder.h"

#include <algorithm>
#include <cmath>

#include "ktManipulator/foundation/core/KtMath.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

const KtToken& KtHydraulicCylinder::classToken() {
  return KtManip::KtHydraulicCylinderToken;
}

void KtHydraulicCylinder::registerComponents() {
  KtBasePowerConverter::registerComponents();
  registerComponent(KtManip::KtFluidBulkModulusToken, &fluidBulkModulus_);
  registerComponent(KtManip::KtFluidDensityToken, &fluidDensity_);
  registerComponent(KtManip::KtSupplyPressureToken, &supplyPressure_);
  registerComponent(KtManip::KtDrainPressureToken, &drainPressure_);
  registerComponent(KtManip::KtDischargeCoefficientToken, &dischargeCoefficient_);
  registerComponent(KtManip::KtFlowAreaGradientToken, &flowAreaGradient_);
  registerComponent(KtManip::KtMaxValveOpeningToken, &maximumValveOpening_);
  registerComponent(KtManip::KtEffectiveArea1Token, &effectiveArea1_);
  registerComponent(KtManip::KtEffectiveArea2Token, &effectiveArea2_);
  registerComponent(KtManip::KtFluidVolume1Token, &fluidVolume1_);
  registerComponent(KtManip::KtFluidVolume2Token, &fluidVolume2_);
  registerComponent(KtManip::KtMaxFluidLengthToken, &maximumFluidLength_);
}

double KtHydraulicCylinder::outputTorque(double /*input*/, KtActuatorState& state) const {
  const KtU32 i = linkIndex();
  if (i >= state.powerConverterStates().size()) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtHydraulicCylinder::outputTorque - index out of range\n");
    return 0.0;
  }
  const auto& pressures = state.powerConverterStates()[i].elements();
  double force =
      pressures.size() < 2 ? 0.0 : pressures[0] * effectiveArea1_ - pressures[1] * effectiveArea2_;
  limitOutputTorque(force);
  return force;
}

void KtHydraulicCylinder::computeStateDerivatives(double input, KtActuatorState& state,
                                                  Derivatives& derivatives) const {
  if (fluidDensity_ == 0.0 || fluidVolume1_ == 0.0 || fluidVolume2_ == 0.0) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtHydraulicCylinder::computeStateDerivatives - potentially divided by zeroo\n");
    return;
  }
  if (!hasStateEntries(state)) {
    Kt::Print::instance().write(
        Kt::Print::kError, "KtHydraulicCylinder::computeStateDerivatives - index out of range\n");
    return;
  }
  const KtU32 i = linkIndex();
  const auto& pressures = state.powerConverterStates()[i].elements();
  if (pressures.size() < 2) return;
  // Taken before the resizing: the caller may have the derivatives written into the state.
  const double p1 = pressures[0];
  const double p2 = pressures[1];
  const double position = state.motorPositions()[i];
  const double rate = state.motorVelocities()[i];
  derivatives.resize(2);

  double flow1 = 0.0;  // into chamber 1
  double flow2 = 0.0;  // out of chamber 2
  if (input > 0.0) {
    const double opening = std::min<double>(input, maximumValveOpening_);
    flow1 = flowThrough(opening, supplyPressure_ - p1);
    flow2 = flowThrough(opening, p2 - drainPressure_);
  } else if (input < 0.0) {
    const double opening = std::max<double>(input, -maximumValveOpening_);
    flow1 = flowThrough(opening, p1 - drainPressure_);
    flow2 = flowThrough(opening, supplyPressure_ - p2);
  }
  derivatives[0] = fluidBulkModulus_ / (effectiveArea1_ * position + fluidVolume1_) *
                   (flow1 - effectiveArea1_ * rate);
  const double length2 = std::max(maximumFluidLength_ - position, 0.0);
  derivatives[1] = fluidBulkModulus_ / (effectiveArea2_ * length2 + fluidVolume2_) *
                   (effectiveArea2_ * rate - flow2);
}

double KtHydraulicCylinder::flowThrough(double opening, double pressureDifference) const {
  const double speed = KtMath::sqrt(2.0 * std::abs(pressureDifference) / fluidDensity_);
  const double flow = dischargeCoefficient_ * flowAreaGradient_ * opening * speed;
  return pressureDifference < 0.0 ? -flow : flow;
}
