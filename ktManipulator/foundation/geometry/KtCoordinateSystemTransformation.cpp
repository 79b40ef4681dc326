#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"

#include "ktManipulator/foundation/containers/KtXmlMapType.h"
#include "ktManipulator/foundation/geometry/KtXmlRecordImpl.h"

template class KtXmlRecord<KtCoordinateSystemTransformation>;
template class KtXmlMapType<KtXmlBasicType<std::string>, KtCoordinateSystemTransformation>;

const KtCoordinateSystemTransformation& KtCoordinateSystemTransformation::identity() {
  static const KtCoordinateSystemTransformation theIdentity;
  return theIdentity;
}

void KtCoordinateSystemTransformation::interpolation(const KtCoordinateSystemTransformation& a,
                                                     const KtCoordinateSystemTransformation& b,
                                                     double s) noexcept {
  const KtVector p = a.p_ + (b.p_ - a.p_) * s;
  // The rotation from a to b, taken by the fraction s of its angle, which is at most half a turn.
  double angle = 0.0;
  KtVector axis;
  (a.r_.inverse() * b.r_).getAngleAxis(angle, axis);
  KtOrientation step;
  step.setFromAngleAxis(angle * s, axis);
  KtOrientation r = a.r_ * step;
  r.normalize();
  p_ = p;
  r_ = r;
}

bool KtCoordinateSystemTransformation::readBin(std::istream& stream) {
  double reals[7];
  if (!Kt::detail::readBinary(stream, reals)) return false;
  p_ = {reals[0], reals[1], reals[2]};
  r_ = {reals[3], reals[4], reals[5], reals[6]};
  return true;
}

bool KtCoordinateSystemTransformation::writeBin(std::ostream& stream) const {
  const double reals[7] = {p_.x, p_.y, p_.z, r_[0], r_[1], r_[2], r_[3]};
  return Kt::detail::writeBinary(stream, reals);
}
