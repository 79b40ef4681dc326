#include "ktManipulator/foundation/function/KtScalarFunctionContainer.h"

#include "ktManipulator/foundation/function/KtLinearScalarFunction.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

template class KtBaseExpressionTreeContainer<KtBaseScalarFunction>;

const KtToken& KtScalarFunctionContainer::classToken() {
  return KtFoundCommon::KtScalarFunctionContainerToken;
}

void KtScalarFunctionContainer::registerComponentCreators() {
  registerComponentCreator(KtLinearScalarFunction::classToken(), KtLinearScalarFunction::creator);
}

double KtScalarFunctionContainer::evaluate(double x) const {
  return topElement() != nullptr ? topElement()->evaluate(x) : 0.0;
}

double KtScalarFunctionContainer::derivative(double x) const {
  return topElement() != nullptr ? topElement()->derivative(x) : 0.0;
}
