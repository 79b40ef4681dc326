#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"

#include "ktManipulator/foundation/geometry/KtXmlRecordImpl.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"

template class KtXmlRecord<KtGeneralMotion>;

void KtGeneralMotion::copyFromArray(const KtReArray& array) noexcept {
  if (array.rows() < 6 || array.columns() < 1) return;
  linear_ = KtVector(array[0][0], array[1][0], array[2][0]);
  angular_ = KtVector(array[3][0], array[4][0], array[5][0]);
}

bool KtGeneralMotion::readBin(std::istream& stream) {
  double reals[6];
  if (!Kt::detail::readBinary(stream, reals)) return false;
  linear_ = KtVector(reals[0], reals[1], reals[2]);
  angular_ = KtVector(reals[3], reals[4], reals[5]);
  return true;
}

bool KtGeneralMotion::writeBin(std::ostream& stream) const {
  const double reals[6] = {linear_.x, linear_.y, linear_.z, angular_.x, angular_.y, angular_.z};
  return Kt::detail::writeBinary(stream, reals);
}
