#pragma once

#include <istream>
#include <ostream>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

class KtReArray;

/// How one manipulator moves: its base, and its joints.
///
/// A plain value that knows no manipulator and fits one by its size alone.
class KT_EXPORT KtVelocityState : public KtXmlPersistent<KtVelocityState, KtXmlCompoundType> {
 public:
  /// One real for each link but the root, by `linkIndex`.
  using JointVector = KtXmlVectorType<KtXmlBasicType<double>>;

  void registerComponents() override;

  /// The joint velocities, rad/s or m/s. Empty by default.
  virtual const JointVector& jointVelocities() const { return jointVelocities_; }
  virtual JointVector& jointVelocities() { return jointVelocities_; }
  virtual void setJointVelocities(const JointVector& velocities) { jointVelocities_ = velocities; }
  /// Sets the joint velocities from the first column of an array, one for each of its rows. An
  /// array that has rows but no column changes nothing.
  virtual void setJointVelocities(const KtReArray& velocities);
  /// The motion of the base, m/s and rad/s. Zero by default.
  virtual const KtGeneralMotion& generalVelocity() const { return generalVelocity_; }
  virtual KtGeneralMotion& generalVelocity() { return generalVelocity_; }
  virtual void setGeneralVelocity(const KtGeneralMotion& velocity) { generalVelocity_ = velocity; }
  /// Whether there are as many joints, and no number differs by more than the tolerance.
  virtual bool approxEq(const KtVelocityState& other, double tolerance) const;
  /// Reads the base's motion in its own binary form, the count of joints (4 bytes), and the joint
  /// velocities (8 bytes each), in the byte order of the machine.
  ///
  /// @return false, and nothing changes, if the stream ends before; memory is asked for only as
  ///         numbers arrive, so that a wrong count does no harm
  virtual bool readBin(std::istream& stream);
  /// Writes what `readBin` reads.
  ///
  /// @return whether the base's motion could be written, without which nothing else is; what
  ///         happened to the rest the stream itself tells
  virtual bool writeBin(std::ostream& stream) const;
  /// Sets this to the linear interpolation between state 1 (f = 0) and state 2 (f = 1), beyond
  /// them for an f outside of [0, 1]. This state may be either of the two.
  ///
  /// @return false, with a message, if the two have different numbers of joints; unlike with a
  ///         `KtPositionState`, nothing changes then
  virtual bool linearInterpolation(const KtVelocityState& state1, const KtVelocityState& state2,
                                   const double& f);

  bool operator==(const KtVelocityState&) const = default;
  static const KtToken& classToken() { return KtManip::KtVelocityStateToken; }

 private:
  JointVector jointVelocities_;
  KtGeneralMotion generalVelocity_;
};

extern template class KtXmlVectorType<KtVelocityState>;
