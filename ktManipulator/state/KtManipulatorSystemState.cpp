#include "ktManipulator/state/KtManipulatorSystemState.h"

#include <algorithm>
#include <span>

#include "ktManipulator/foundation/core/KtMath.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/xml/KtXmlReals.h"
#include "ktManipulator/state/KtStateBinary.h"

template class KtXmlVectorType<KtManipulatorSystemState>;

namespace {

void report(const char* text) {
  Kt::Print::instance().write(Kt::Print::kError, "%s", text);
}

template <class State>
bool approxEqual(const KtXmlVectorType<State>& a, const KtXmlVectorType<State>& b,
                 double tolerance) {
  return std::ranges::equal(a.elements(), b.elements(), [=](const State& x, const State& y) {
    return x.approxEq(y, tolerance);
  });
}

// Reads states into the existing ones, to reuse their memory, and truncates the list after the last
// complete one.
template <class State>
bool readStates(std::istream& stream, KtU32 count, std::vector<State>& states) {
  KtU32 read = 0;
  while (read < count) {
    if (read == states.size()) states.emplace_back();
    if (!states[read].readBin(stream)) break;
    ++read;
  }
  states.resize(read);
  return read == count;
}

}  // namespace

bool KtManipulatorSystemState::read(KtXmlReader& reader) {
  const bool good = KtXmlPersistent::read(reader);
  validateTopLevelDimensions();
  validateLowLevelDimensions();
  return good;
}

void KtManipulatorSystemState::registerComponents() {
  registerComponent(KtManip::KtPositionStatesToken, &positionStates_);
  registerComponent(KtManip::KtVelocityStatesToken, &velocityStates_);
  registerComponent(KtManip::KtTimeToken, &time_);
}

bool KtManipulatorSystemState::mergeWith(const KtManipulatorSystemState& other) {
  positionStates_.append(other.positionStates_);
  velocityStates_.append(other.velocityStates_);
  return true;
}

void KtManipulatorSystemState::zeroVelocityStates() {
  for (KtVelocityState& state : velocityStates_.elements()) {
    state.setGeneralVelocity(KtGeneralMotion::nullObject());
    std::ranges::fill(state.jointVelocities().elements(), 0.0);
  }
}

bool KtManipulatorSystemState::approxEq(const KtManipulatorSystemState& other, double tolerance,
                                        bool withTime) const {
  if (withTime && !KtMath::approxEq(time_, other.time_, tolerance)) return false;
  if (positionStates_.size() != other.positionStates_.size() ||
      velocityStates_.size() != other.velocityStates_.size()) {
    return false;
  }
  return approxEqual(positionStates_, other.positionStates_, tolerance) &&
         approxEqual(velocityStates_, other.velocityStates_, tolerance);
}

bool KtManipulatorSystemState::readBin(std::istream& stream) {
  double time = 0.0;
  KtU32 count = 0;
  if (!Kt::detail::readBinary(stream, std::span(&time, 1)) ||
      !Kt::detail::readBinaryCount(stream, count)) {
    return false;
  }
  time_ = time;
  if (!readStates(stream, count, positionStates_.elements())) return false;
  count = 0;
  Kt::detail::readBinaryCount(stream, count);
  readStates(stream, count, velocityStates_.elements());
  return true;
}

bool KtManipulatorSystemState::writeBin(std::ostream& stream) const {
  const double time = time_;
  Kt::detail::writeBinary(stream, std::span(&time, 1));
  Kt::detail::writeBinaryCount(stream, positionStates_.size());
  for (const KtPositionState& state : positionStates_.elements()) {
    if (!state.writeBin(stream)) return false;
  }
  Kt::detail::writeBinaryCount(stream, velocityStates_.size());
  for (const KtVelocityState& state : velocityStates_.elements()) state.writeBin(stream);
  return true;
}

bool KtManipulatorSystemState::linearInterpolation(const KtManipulatorSystemState& state1,
                                                   const KtManipulatorSystemState& state2,
                                                   const double& targetTime) {
  const double time = targetTime;  // may refer into this state
  *this = state1;
  const double time1 = state1.time_;
  const double time2 = state2.time_;
  const bool differ = time1 != time2;
  const double f = differ ? (time - time1) / (time2 - time1) : 0.0;
  linearFactorInterpolation(state1, state2, f);
  time_ = time;
  return differ;
}

bool KtManipulatorSystemState::linearFactorInterpolation(const KtManipulatorSystemState& state1,
                                                         const KtManipulatorSystemState& state2,
                                                         const double& f) {
  const double factor = f;  // may refer into this state
  const KtU32 count = state1.positionStates_.size();
  if (count != state2.positionStates_.size()) {
    report("KtManipulatorSystemState::linearFactorInterpolation: positionStates size mismatch.");
    return false;
  }
  positionStates_.resize(count);
  for (KtU32 i = 0; i < count; ++i) {
    positionStates_[i].linearInterpolation(state1.positionStates_[i], state2.positionStates_[i],
                                           factor);
  }
  const KtU32 velocityCount = state1.velocityStates_.size();
  const KtU32 velocityCount2 =
      state2.velocityStates_.size();  // before this, which it may be, grows
  velocityStates_.resize(velocityCount);
  for (KtU32 i = 0; i < velocityCount; ++i) {
    const KtVelocityState& velocity1 = state1.velocityStates_[i];
    velocityStates_[i].linearInterpolation(
        velocity1, i < velocityCount2 ? state2.velocityStates_[i] : velocity1, factor);
  }
  time_ = (1.0 - factor) * state1.time_ + factor * state2.time_;
  return true;
}

bool KtManipulatorSystemState::checkCompatibleState(const KtManipulatorSystemState& other) const {
  if (positionStates_.size() != other.positionStates_.size() ||
      velocityStates_.size() != other.velocityStates_.size()) {
    return false;
  }
  bool compatible = true;
  for (KtU32 i = 0; i < positionStates_.size(); ++i) {
    compatible &= positionStates_[i].jointPositions().size() ==
                  other.positionStates_[i].jointPositions().size();
  }
  for (KtU32 i = 0; i < velocityStates_.size(); ++i) {
    compatible &= velocityStates_[i].jointVelocities().size() ==
                  other.velocityStates_[i].jointVelocities().size();
  }
  return compatible;
}

bool KtManipulatorSystemState::validateTopLevelDimensions() {
  if (positionStates_.size() == velocityStates_.size()) return true;
  report(
      "KtManipulatorSystemState::validateTopLevelDimensions(): number of position states does not "
      "match the velocity states--correcting.\n");
  velocityStates_.resize(positionStates_.size());
  return false;
}

bool KtManipulatorSystemState::validateLowLevelDimensions() {
  const auto& positions = positionStates_.elements();
  auto& velocities = velocityStates_.elements();
  const auto velocityJoints = [&](std::size_t i) {
    return i < velocities.size() ? velocities[i].jointVelocities().size() : 0;
  };
  bool match = true;
  for (std::size_t i = 0; i < positions.size(); ++i) {
    if (positions[i].jointPositions().size() == velocityJoints(i)) continue;
    match = false;
    report(
        "KtManipulatorSystemState::validateLowLevelDimensions: joint positions do notmatch joint "
        "velocities--correcting.\n");
  }
  if (match) return true;
  std::vector<KtVelocityState> rebuilt(positions.size());
  for (std::size_t i = 0; i < positions.size(); ++i) {
    if (i < velocities.size()) rebuilt[i] = velocities[i];
    rebuilt[i].jointVelocities().resize(positions[i].jointPositions().size());
  }
  velocities.swap(rebuilt);
  return false;
}
