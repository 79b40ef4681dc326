#include "ktManipulator/propagation/KtStoppingCriterionVector.h"

template class KtXmlVariableVectorType<KtBaseStoppingCriterion>;
template class KtXmlMapType<KtXmlBasicType<std::string>, KtStoppingCriterionVector>;

// The library has no stopping criterion yet.
void KtStoppingCriterionVector::registerComponentCreators() {}
