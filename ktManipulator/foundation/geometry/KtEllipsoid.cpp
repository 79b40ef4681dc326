#include "ktManipulator/foundation/geometry/KtEllipsoid.h"

#include "ktManipulator/foundation/geometry/KtXmlRecordImpl.h"

template class KtXmlRecord<KtEllipsoid>;
