#include "ktManipulator/foundation/geometry/KtEllipsoid.h"

#include "ktManipulator/foundation/xml/KtXmlRecordImpl.h"

template class KtXmlRecord<KtEllipsoid>;
