#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/geometry/KtGeneralForce.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

class KtReArray;

/// What drives one manipulator: the loads of its joints, and the one on its base.
///
/// A plain value that knows no manipulator and fits one by its size alone.
class KT_EXPORT KtManipulatorTorque
    : public KtXmlPersistent<KtManipulatorTorque, KtXmlCompoundType> {
 public:
  /// One real for each link but the root, by `linkIndex`.
  using JointVector = KtXmlVectorType<KtXmlBasicType<double>>;

  void registerComponents() override;

  /// The joint torques or forces, N m or N. Empty by default.
  virtual const JointVector& jointTorques() const { return jointTorques_; }
  virtual JointVector& jointTorques() { return jointTorques_; }
  virtual void setJointTorques(const JointVector& torques) { jointTorques_ = torques; }
  /// Sets the joint torques from the first column of an array, one for each of its rows. An array
  /// that has rows but no column changes nothing.
  virtual void setJointTorques(const KtReArray& torques);
  /// The load on the base, N and N m. Zero by default.
  virtual const KtGeneralForce& generalForce() const { return generalForce_; }
  virtual KtGeneralForce& generalForce() { return generalForce_; }
  virtual void setGeneralForce(const KtGeneralForce& force) { generalForce_ = force; }

  bool operator==(const KtManipulatorTorque&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorTorqueToken; }

  /// A shared torque of no joints and a zero load.
  static const KtManipulatorTorque m_theNullManipulatorTorque;

 private:
  JointVector jointTorques_;
  KtGeneralForce generalForce_;
};

extern template class KtXmlVectorType<KtManipulatorTorque>;
