#include "ktManipulator/propagation/KtStoppingCriterionVector.h"

template class KtXmlVariableVectorType<KtBaseStoppingCriterion>;
template class KtXmlMapType<KtXmlBasicType<std::string>, KtStoppingCriterionVector>;

// No class of the library is a criterion so far.
void KtStoppingCriterionVector::registerComponentCreators() {}
