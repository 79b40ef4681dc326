#include "ktManipulator/foundation/geometry/KtGeneralForce.h"

#include "ktManipulator/foundation/geometry/KtXmlRecordImpl.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"

template class KtXmlRecord<KtGeneralForce>;
template class KtXmlVectorType<KtGeneralForce>;
template class KtXmlVectorType<KtXmlVectorType<KtGeneralForce>>;

void KtGeneralForce::copyToArray(KtReArray& array) const {
  array.resizeArray(6, 1);
  for (unsigned i = 0; i < 6; ++i) array[i][0] = (*this)[i];
}
