#include "ktManipulator/state/KtPositionState.h"

#include <algorithm>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/state/KtJointVector.h"
#include "ktManipulator/state/KtStateBinary.h"

template class KtXmlVectorType<KtPositionState>;

void KtPositionState::registerComponents() {
  registerComponent(KtManip::KtJointPositionsToken, &jointPositions_);
  registerComponent(KtFoundCommon::KtCoordinateSystemTransformToken, &coordSysXForm_);
}

bool KtPositionState::approxEq(const KtPositionState& other, double tolerance) const {
  return coordSysXForm_.approxEq(other.coordSysXForm_, tolerance) &&
         Kt::detail::approxEqual(jointPositions_, other.jointPositions_, tolerance);
}

bool KtPositionState::readBin(std::istream& stream) {
  KtCoordinateSystemTransformation frame;
  if (!frame.readBin(stream) || !Kt::detail::readBinaryList(stream, jointPositions_)) return false;
  coordSysXForm_ = frame;
  return true;
}

bool KtPositionState::writeBin(std::ostream& stream) const {
  if (!coordSysXForm_.writeBin(stream)) return false;
  Kt::detail::writeBinaryList(stream, jointPositions_);
  return true;
}

bool KtPositionState::linearInterpolation(const KtPositionState& state1,
                                          const KtPositionState& state2, const double& f) {
  const double factor = f;  // f may refer to a joint of this state
  const KtU32 count1 = state1.jointPositions_.size();
  const KtU32 count2 = state2.jointPositions_.size();
  if (count1 != count2) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtPositionState::linearInterpolation(): the two joint-position "
                                "sizes (%u and %u) do not match",
                                count1, count2);
  }
  Kt::detail::interpolate(state1.jointPositions_, state2.jointPositions_, factor,
                          std::min(count1, count2), jointPositions_);
  coordSysXForm_.interpolation(state1.coordSysXForm_, state2.coordSysXForm_, factor);
  return count1 == count2;
}
