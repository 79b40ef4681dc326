#include "ktManipulator/foundation/containers/KtXmlMapType.h"

template class KtXmlMapType<KtXmlBasicType<std::string>, KtXmlBasicType<unsigned int>>;
template class KtXmlMapType<KtXmlBasicType<std::string>, KtXmlBasicType<bool>>;
template class KtXmlMapType<KtXmlBasicType<std::string>,
                            KtXmlMapType<KtXmlBasicType<std::string>, KtXmlBasicType<bool>>>;
