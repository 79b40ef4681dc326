#include "ktManipulator/foundation/function/KtLinearScalarFunction.h"

#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

const KtToken& KtLinearScalarFunction::classToken() {
  return KtFoundCommon::KtLinearScalarFunctionToken;
}

void KtLinearScalarFunction::registerComponents() {
  KtBaseScalarFunction::registerComponents();
  registerComponent(KtFoundCommon::KtStartValueToken, &startValue_);
  registerComponent(KtFoundCommon::KtEndValueToken, &endValue_);
}

double KtLinearScalarFunction::evaluate(double x) const {
  // This form takes both end values exactly.
  return startValue_ * (1.0 - x) + endValue_ * x;
}

double KtLinearScalarFunction::derivative(double) const {
  return endValue_ - startValue_;
}
double KtLinearScalarFunction::startValue() const {
  return startValue_;
}
void KtLinearScalarFunction::setStartValue(double value) {
  startValue_ = value;
}
double KtLinearScalarFunction::endValue() const {
  return endValue_;
}
void KtLinearScalarFunction::setEndValue(double value) {
  endValue_ = value;
}
