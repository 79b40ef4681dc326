#pragma once

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/state/KtStatedSystemStruct.h"

class KtIndividualManipulator;

/// What the tools that compute matrices and torques of one manipulator have in common: the
/// manipulator, and an active state of their own.
///
/// Queries come in two forms. One takes an active state; the other a pointer to one, which may be
/// null: the tool's own state answers then, with the positions given to `setPositionState`. Results
/// are kept in the tool and returned by reference: a reference holds until the tool's next query.
/// A tool belongs to one thread at a time.
class KT_EXPORT KtManipulatorTool {
 public:
  virtual ~KtManipulatorTool() = default;

  /// The manipulator that is asked about; null by default. Not owned.
  virtual const KtIndividualManipulator* manipulator() const { return manipulator_; }
  /// Sets the manipulator, resizes the results and makes invalid what the tool's own state has
  /// cached. The manipulator has to live as long as the tool is asked.
  virtual void setManipulator(const KtIndividualManipulator* manipulator) {
    manipulator_ = manipulator;
    if (ownWasAsked_) own_.invalidateAll();
    ownWasAsked_ = false;
  }
  /// Sets the positions of the tool's own state.
  virtual void setPositionState(const KtPositionState& state) { own_.setPositionState(state); }

 protected:
  KtManipulatorTool() = default;
  KtManipulatorTool(const KtManipulatorTool&) = default;             ///< A copy.
  KtManipulatorTool& operator=(const KtManipulatorTool&) = default;  ///< Takes over a copy.

  /// The state pointed to, or the tool's own for a null pointer.
  KtManipulatorActiveState& stateOrOwn(KtManipulatorActiveState* state) {
    if (state != nullptr) return *state;
    ownWasAsked_ = true;
    return own_;
  }

  const KtIndividualManipulator* manipulator_ = nullptr;  ///< Not owned.
  KtManipulatorActiveState own_;                          ///< For a null pointer.

 private:
  bool ownWasAsked_ = false;
};
