#include "ktManipulator/foundation/geometry/KtLineSegment.h"

#include "ktManipulator/foundation/xml/KtXmlRecordImpl.h"

template class KtXmlRecord<KtLineSegment>;
