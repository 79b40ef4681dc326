#include "ktManipulator/state/KtVelocityState.h"

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/state/KtJointVector.h"
#include "ktManipulator/state/KtStateBinary.h"

template class KtXmlVectorType<KtVelocityState>;

void KtVelocityState::registerComponents() {
  registerComponent(KtManip::KtJointVelocitiesToken, &jointVelocities_);
  registerComponent(KtFoundCommon::KtGeneralVelocityToken, &generalVelocity_);
}

void KtVelocityState::setJointVelocities(const KtReArray& velocities) {
  Kt::detail::setFromColumn(velocities, jointVelocities_);
}

bool KtVelocityState::approxEq(const KtVelocityState& other, double tolerance) const {
  return generalVelocity_.approxEq(other.generalVelocity_, tolerance) &&
         Kt::detail::approxEqual(jointVelocities_, other.jointVelocities_, tolerance);
}

bool KtVelocityState::readBin(std::istream& stream) {
  KtGeneralMotion motion;
  if (!motion.readBin(stream) || !Kt::detail::readBinaryList(stream, jointVelocities_)) {
    return false;
  }
  generalVelocity_ = motion;
  return true;
}

bool KtVelocityState::writeBin(std::ostream& stream) const {
  if (!generalVelocity_.writeBin(stream)) return false;
  Kt::detail::writeBinaryList(stream, jointVelocities_);
  return true;
}

bool KtVelocityState::linearInterpolation(const KtVelocityState& state1,
                                          const KtVelocityState& state2, const double& f) {
  const double factor = f;  // f may refer to a joint of this state
  const KtU32 count = state1.jointVelocities_.size();
  if (count != state2.jointVelocities_.size()) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtVelocityState::linearInterpolation "
                                "velocityState1.jointVelocities() size mismatch.");
    return false;
  }
  Kt::detail::interpolate(state1.jointVelocities_, state2.jointVelocities_, factor, count,
                          jointVelocities_);
  generalVelocity_ = state2.generalVelocity_ * factor + state1.generalVelocity_ * (1.0 - factor);
  return true;
}
