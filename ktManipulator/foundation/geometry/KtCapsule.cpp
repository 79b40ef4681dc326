#include "ktManipulator/foundation/geometry/KtCapsule.h"

#include "ktManipulator/foundation/geometry/KtXmlRecordImpl.h"

template class KtXmlRecord<KtCapsule>;
