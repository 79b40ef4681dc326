#include "ktManipulator/foundation/containers/KtLabelAssociatedMap.h"

template class KtLabelAssociatedMap<KtXmlBasicType<double>>;
template class KtLabelAssociatedMap<KtXmlBasicType<bool>>;
