#include "ktManipulator/foundation/function/KtLinearMultivariableConstraint.h"

#include <algorithm>

#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

const KtToken& KtLinearMultivariableConstraint::classToken() {
  return KtFoundCommon::KtLinearMultivariableConstraintToken;
}

void KtLinearMultivariableConstraint::registerComponents() {
  KtBaseMultivariableConstraint::registerComponents();
  registerComponent(KtFoundCommon::KtConstantToken, &constant_);
  registerComponent(KtFoundCommon::KtCoefficientsToken, &coefficients_);
}

double KtLinearMultivariableConstraint::evaluate(const Variables& x) const {
  const auto& values = x.vectorContainer();
  const auto& weights = coefficients_.vectorContainer();
  double sum = constant_;
  for (std::size_t i = 0; i < std::min(values.size(), weights.size()); ++i) {
    sum += weights[i] * values[i];
  }
  return sum;
}

const std::vector<double>& KtLinearMultivariableConstraint::gradient(const Variables& x) const {
  const auto& weights = coefficients_.vectorContainer();
  gradient_.assign(x.size(), 0.0);
  std::copy_n(weights.begin(), std::min(weights.size(), gradient_.size()), gradient_.begin());
  return gradient_;
}

double KtLinearMultivariableConstraint::constant() const {
  return constant_;
}
void KtLinearMultivariableConstraint::setConstant(double value) {
  constant_ = value;
}

const KtLinearMultivariableConstraint::Variables& KtLinearMultivariableConstraint::coefficients()
    const {
  return coefficients_;
}

void KtLinearMultivariableConstraint::setCoefficients(const Variables& coefficients) {
  coefficients_ = coefficients;
}

bool KtLinearMultivariableConstraint::setCoefficient(KtU32 position, double value) {
  if (position >= kMostVariables) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtLinearMultivariableConstraint::setCoefficient(): position (%u) out of range.\n",
        position);
    return false;
  }
  coefficients_.resizeToAtLeast(position + 1);
  coefficients_[position] = value;
  return true;
}
