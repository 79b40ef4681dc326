#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

class KtReArray;
class KtVelocityState;

/// How one manipulator accelerates: its base, and its joints.
///
/// A plain value that knows no manipulator and fits one by its size alone.
class KT_EXPORT KtAccelerationState
    : public KtXmlPersistent<KtAccelerationState, KtXmlCompoundType> {
 public:
  /// One real for each link but the root, by `linkIndex`.
  using JointVector = KtXmlVectorType<KtXmlBasicType<double>>;

  void registerComponents() override;

  /// The joint accelerations, rad/s^2 or m/s^2. Empty by default.
  virtual const JointVector& jointAccelerations() const { return jointAccelerations_; }
  virtual JointVector& jointAccelerations() { return jointAccelerations_; }
  virtual void setJointAccelerations(const JointVector& accelerations) {
    jointAccelerations_ = accelerations;
  }
  /// Sets the joint accelerations from the first column of an array, one for each of its rows. An
  /// array that has rows but no column changes nothing.
  virtual void setJointAccelerations(const KtReArray& accelerations);
  /// The acceleration of the base, m/s^2 and rad/s^2. Zero by default.
  virtual const KtGeneralMotion& generalAcceleration() const { return generalAcceleration_; }
  virtual KtGeneralMotion& generalAcceleration() { return generalAcceleration_; }
  virtual void setGeneralAcceleration(const KtGeneralMotion& acceleration) {
    generalAcceleration_ = acceleration;
  }
  /// Sets the number of joints. Those that are new get 0, those that stay keep their values.
  virtual void resize(KtU32 count) { jointAccelerations_.resize(count); }
  /// Whether there are as many joints, and no number differs by more than the tolerance.
  virtual bool approxEq(const KtAccelerationState& other, double tolerance) const;

  /// A state without acceleration for as many joints as the velocity state has.
  static KtAccelerationState zeroCompatibleState(const KtVelocityState& velocity);

  bool operator==(const KtAccelerationState&) const = default;
  static const KtToken& classToken() { return KtManip::KtAccelerationStateToken; }

 private:
  JointVector jointAccelerations_;
  KtGeneralMotion generalAcceleration_;
};

extern template class KtXmlVectorType<KtAccelerationState>;
