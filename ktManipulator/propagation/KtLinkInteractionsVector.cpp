#include "ktManipulator/propagation/KtLinkInteractionsVector.h"

template class KtXmlVariableVectorType<KtBaseLinkInteractions>;

// No class of the library is a force law so far.
void KtLinkInteractionsVector::registerComponentCreators() {}
