#include "ktManipulator/foundation/containers/KtXmlVectorType.h"

template class KtXmlVectorType<KtXmlBasicType<bool>>;
template class KtXmlVectorType<KtXmlBasicType<double>>;
template class KtXmlVectorType<KtXmlBasicType<std::string>>;
template class KtXmlVectorType<KtXmlVectorType<KtXmlBasicType<bool>>>;
template class KtXmlVectorType<KtXmlVectorType<KtXmlBasicType<double>>>;
