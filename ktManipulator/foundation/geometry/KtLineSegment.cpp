#include "ktManipulator/foundation/geometry/KtLineSegment.h"

#include "ktManipulator/foundation/geometry/KtXmlRecordImpl.h"

template class KtXmlRecord<KtLineSegment>;
