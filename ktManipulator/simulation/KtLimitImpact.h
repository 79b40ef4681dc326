/// @file
/// What becomes of rates where joints hit their limits.
#pragma once

#include <cstddef>
#include <vector>

#include "ktManipulator/dynamics/KtMassMatrixTool.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"

class KtIndividualManipulator;
class KtManipulatorActiveState;
class KtVelocityState;
struct KtStatedSystemStruct;

namespace Kt::detail {

/// An impact without rebound: impulses between links take the rates of joints that stand at limits
/// and still move outwards, so that no energy comes from it. It keeps its work arrays, so that it
/// asks for no memory once it has met an impact of as many joints and limits.
class LimitImpact {
 public:
  /// Forgets the limits of the last impact.
  void clear() { stops_.clear(); }
  /// Adds a limit that a joint stands at.
  ///
  /// @param joint    index of the joint's link
  /// @param outwards  1 at an upper limit, -1 at a lower one
  void add(KtU32 joint, double outwards) { stops_.push_back({joint, outwards}); }
  /// Changes velocities by the impact.
  ///
  /// @param manipulator  the manipulator
  /// @param constrained  whether its equality constraints hold during the impact
  /// @param active       the positions
  /// @param asker        the system whose attached manipulators count as well; may be null
  /// @param velocity     in: before the impact. Out: behind it
  void apply(const KtIndividualManipulator& manipulator, bool constrained,
             KtManipulatorActiveState& active, const KtStatedSystemStruct* asker,
             KtVelocityState& velocity);

 private:
  struct Stop {
    KtU32 joint;
    double outwards;
  };
  void takeRates(const KtIndividualManipulator& manipulator, const KtVelocityState& velocity);
  void listConditions(const KtIndividualManipulator& manipulator, bool constrained,
                      const KtManipulatorActiveState& active);
  void sweep();

  std::vector<Stop> stops_;
  KtMassMatrixTool massMatrixTool_;
  KtReArray mass_, factor_;
  KtReArray conditions_;  // a row for each, those of limits first
  KtReArray responses_;   // a column for each: what a unit of its impulse does to the rates
  std::vector<double> rates_;
  std::vector<double> impulses_;
};

}  // namespace Kt::detail
