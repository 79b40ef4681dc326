#pragma once

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/state/KtStatedSystemStruct.h"

class KtIndividualManipulator;

/// The base of the tools that compute matrices and torques of one manipulator: it holds the
/// manipulator and an active state of its own.
///
/// Each query has two forms. The first takes an active state. The second takes a pointer to one; if
/// the pointer is null, the tool uses its own state, with the positions that `setPositionState`
/// set. The tool stores its results and returns references to them, which are valid until its next
/// query. Only one thread may use a tool at a time.
class KT_EXPORT KtManipulatorTool {
 public:
  virtual ~KtManipulatorTool() = default;

  /// The manipulator that the queries are about, not owned; null by default.
  virtual const KtIndividualManipulator* manipulator() const { return manipulator_; }
  /// Sets the manipulator, resizes the results and invalidates the tool's own state. The
  /// manipulator must exist until the tool's last query.
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
