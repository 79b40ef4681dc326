#include "ktManipulator/foundation/geometry/KtCapsule.h"

#include "ktManipulator/foundation/xml/KtXmlRecordImpl.h"

template class KtXmlRecord<KtCapsule>;
