#pragma once

#include "ktManipulator/state/KtPositionState.h"
#include "ktManipulator/state/KtVelocityState.h"

/// The state of all manipulators of a system at one time.
///
/// It is whole if there are as many velocity states as position states, and each has as many joints
/// as its counterpart; the two validate operations restore this. A plain value that knows no system
/// and fits one by its sizes alone.
class KT_EXPORT KtManipulatorSystemState
    : public KtXmlPersistent<KtManipulatorSystemState, KtXmlCompoundType> {
 public:
  /// Reads the state, then makes it whole by `validateTopLevelDimensions` and
  /// `validateLowLevelDimensions`.
  ///
  /// @return the result of the reading alone: a state that was repaired counts as read
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Appends the manipulators of another state, which may be this one. The time stays.
  ///
  /// @return true
  virtual bool mergeWith(const KtManipulatorSystemState& other);
  /// The positions by manipulator. Empty by default.
  virtual const KtXmlVectorType<KtPositionState>& positionStates() const { return positionStates_; }
  virtual KtXmlVectorType<KtPositionState>& positionStates() { return positionStates_; }
  virtual void setPositionStates(const KtXmlVectorType<KtPositionState>& states) {
    positionStates_ = states;
  }
  /// The velocities by manipulator. Empty by default.
  virtual const KtXmlVectorType<KtVelocityState>& velocityStates() const { return velocityStates_; }
  virtual KtXmlVectorType<KtVelocityState>& velocityStates() { return velocityStates_; }
  virtual void setVelocityStates(const KtXmlVectorType<KtVelocityState>& states) {
    velocityStates_ = states;
  }
  /// Brings everything to rest: all velocities become 0, the sizes stay.
  virtual void zeroVelocityStates();
  /// The time, s. 0 by default.
  virtual double time() const { return time_; }
  virtual void setTime(double time) { time_ = time; }
  /// Whether all counts are equal and no number differs by more than the tolerance.
  ///
  /// @param withTime  whether the times are compared too
  virtual bool approxEq(const KtManipulatorSystemState& other, double tolerance,
                        bool withTime) const;
  /// Reads the time (8 bytes), the count of position states (4 bytes), each of them, and the same
  /// for the velocity states, in the byte order of the machine. Lists grow only as states arrive,
  /// so that a wrong count does no harm; once a state has had the sizes, reading asks for no
  /// memory.
  ///
  /// @return whether the time and all position states were there. At false the position states are
  ///         those that were complete, and the velocity states are as before (if not even the
  ///         count was there, nothing changes). At true the velocity states are those that were
  ///         complete: whether all were is not told, but `validateTopLevelDimensions` finds out.
  virtual bool readBin(std::istream& stream);
  /// Writes what `readBin` reads.
  ///
  /// @return whether every position state's `writeBin` gave true; at the first that does not the
  ///         writing ends. What happened to the rest the stream itself tells.
  virtual bool writeBin(std::ostream& stream) const;
  /// Sets this to the interpolation between two states at a time, beyond them for a time outside
  /// of theirs.
  ///
  /// State 1 is assigned first: if this state is state 2, the result is state 1 at the asked time,
  /// and false.
  ///
  /// @return false if the two are of the same time; the result is state 1 at the asked time then
  virtual bool linearInterpolation(const KtManipulatorSystemState& state1,
                                   const KtManipulatorSystemState& state2,
                                   const double& targetTime);
  /// Sets this to the interpolation between state 1 (f = 0) and state 2 (f = 1), beyond them for an
  /// f outside of [0, 1]: each position and velocity state by its `linearInterpolation`, the time
  /// linearly. This state may be either of the two.
  ///
  /// There are as many velocity states as in state 1. State 2 ought to have no fewer; where it has,
  /// the rest is that of state 1.
  ///
  /// @return false, with a message and nothing changed, if the numbers of position states differ
  virtual bool linearFactorInterpolation(const KtManipulatorSystemState& state1,
                                         const KtManipulatorSystemState& state2, const double& f);
  /// Whether the other has as many position and velocity states, and each of them as many joints.
  virtual bool checkCompatibleState(const KtManipulatorSystemState& other) const;
  /// Makes the velocity states as many as the position states: those in excess are dropped, those
  /// that miss are `KtVelocityState::nullObject()`. A repair is reported.
  ///
  /// @return whether nothing had to change
  virtual bool validateTopLevelDimensions();
  /// Gives each velocity state as many joints as its position state has. If one is wrong, which is
  /// reported, all are rebuilt, from the old motion of the base, the old joint velocities as far as
  /// they go, and 0 for the rest.
  ///
  /// To be called behind `validateTopLevelDimensions`; a velocity state that is missing counts as
  /// one without joints.
  ///
  /// @return whether nothing had to change
  virtual bool validateLowLevelDimensions();

  /// Exact equality, also of the time.
  bool operator==(const KtManipulatorSystemState&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorSystemStateToken; }

 private:
  KtXmlVectorType<KtPositionState> positionStates_;
  KtXmlVectorType<KtVelocityState> velocityStates_;
  KtXmlBasicType<double> time_;
};

extern template class KtXmlVectorType<KtManipulatorSystemState>;
