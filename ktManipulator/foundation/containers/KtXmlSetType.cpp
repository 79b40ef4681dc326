#include "ktManipulator/foundation/containers/KtXmlSetType.h"

template class KtXmlSetType<KtXmlBasicType<unsigned int>>;
