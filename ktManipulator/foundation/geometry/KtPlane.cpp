#include "ktManipulator/foundation/geometry/KtPlane.h"

#include "ktManipulator/foundation/xml/KtXmlRecordImpl.h"

template class KtXmlRecord<KtPlane>;
