#include "ktManipulator/constraints/KtStateConstraintVector.h"

#include "ktManipulator/constraints/KtMultivariableJointStateConstraint.h"

template class KtXmlVariableVectorType<KtBaseStateConstraint>;

void KtStateConstraintVector::registerComponentCreators() {
  registerComponentCreator(KtMultivariableJointStateConstraint::classToken(),
                           KtMultivariableJointStateConstraint::creator);
}
