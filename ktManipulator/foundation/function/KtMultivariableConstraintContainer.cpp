#include "ktManipulator/foundation/function/KtMultivariableConstraintContainer.h"

#include "ktManipulator/foundation/function/KtLinearMultivariableConstraint.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

template class KtBaseExpressionTreeContainer<KtBaseMultivariableConstraint>;

const KtToken& KtMultivariableConstraintContainer::classToken() {
  return KtManip::KtMultivariableConstraintContainerToken;
}

void KtMultivariableConstraintContainer::registerComponentCreators() {
  registerComponentCreator(KtLinearMultivariableConstraint::classToken(),
                           KtLinearMultivariableConstraint::creator);
}

double KtMultivariableConstraintContainer::evaluate(
    const KtBaseMultivariableConstraint::Variables& x) const {
  return topElement() != nullptr ? topElement()->evaluate(x) : 0.0;
}

const std::vector<double>& KtMultivariableConstraintContainer::gradient(
    const KtBaseMultivariableConstraint::Variables& x) const {
  static const std::vector<double> none;
  return topElement() != nullptr ? topElement()->gradient(x) : none;
}
