#pragma once

#include "ktManipulator/ktManipulator.h"
#include "support/Random.h"

/// States of manipulators for tests: joints as given or random, bases anywhere.
namespace states {

using Joints = KtXmlVectorType<KtXmlBasicType<double>>;

inline Joints joints(const std::vector<double>& values) {
  Joints list;
  for (const double value : values) list.pushBack(value);
  return list;
}
inline Joints randomJoints(KtU32 count) {
  Joints list(count);
  for (auto& value : list.vectorContainer()) value = sampling::uniform();
  return list;
}
inline std::vector<double> valuesOf(const Joints& list) {
  return {list.vectorContainer().begin(), list.vectorContainer().end()};
}

inline KtPositionState at(const Joints& positions) {
  KtPositionState state;
  state.setJointPositions(positions);
  state.setCoordSysXForm(sampling::randomTransformation());
  return state;
}
inline KtVelocityState moving(const Joints& velocities) {
  KtVelocityState state;
  state.setJointVelocities(velocities);
  state.setGeneralVelocity(sampling::randomMotion());
  return state;
}

/// A state with so many joints in each position state, and in each velocity state.
inline KtManipulatorSystemState random(const std::vector<KtU32>& positionCounts,
                                       const std::vector<KtU32>& velocityCounts, double time) {
  KtManipulatorSystemState state;
  for (const KtU32 n : positionCounts) state.positionStates().pushBack(at(randomJoints(n)));
  for (const KtU32 n : velocityCounts) state.velocityStates().pushBack(moving(randomJoints(n)));
  state.setTime(time);
  return state;
}

}  // namespace states
