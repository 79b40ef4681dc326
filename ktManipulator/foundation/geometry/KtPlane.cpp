#include "ktManipulator/foundation/geometry/KtPlane.h"

#include "ktManipulator/foundation/geometry/KtXmlRecordImpl.h"

template class KtXmlRecord<KtPlane>;
