#include "ktManipulator/constraints/KtStateConstraintContainer.h"

#include "ktManipulator/constraints/KtMultivariableJointStateConstraint.h"

template class KtBaseExpressionTreeContainer<KtBaseStateConstraint>;

void KtStateConstraintContainer::registerComponentCreators() {
  registerComponentCreator(KtMultivariableJointStateConstraint::classToken(),
                           KtMultivariableJointStateConstraint::creator);
}
