#include "ktManipulator/propagation/KtLinkInteractionsVector.h"

template class KtXmlVariableVectorType<KtBaseLinkInteractions>;

// The library has no force law yet.
void KtLinkInteractionsVector::registerComponentCreators() {}
