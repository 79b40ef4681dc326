#pragma once

#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"

class KtPropagationResultData;
class KtStatedSystem;
class KtSystemActiveState;

/// A condition that a manipulator carries and that is asked after each step of a propagation: where
/// it is satisfied, the manipulator takes back its positions of before the step.
class KT_EXPORT KtBaseStoppingCriterion : public KtXmlCompoundType {
 public:
  /// What the results of a step say where the criterion is satisfied.
  virtual const KtString& descriptiveText() const = 0;
  /// Whether the criterion is satisfied.
  ///
  /// @param activeState       as the caller left it, behind a collision check in the new state
  /// @param statedSystem      the system; its own state is new already where it is propagated
  /// @param time              the time at the end of the step, s
  /// @param manipulatorIndex  the manipulator that carries the criterion
  /// @param result            where a satisfied criterion registers its text
  virtual bool stop(KtSystemActiveState& activeState, const KtStatedSystem& statedSystem,
                    const KtReal& time, KtU32 manipulatorIndex,
                    KtPropagationResultData& result) const = 0;

  bool operator==(const KtBaseStoppingCriterion&) const = default;
};
