#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// What one manipulator met in one step of a propagation. The indices have a meaning only where the
/// flag that belongs to them is set.
class KT_EXPORT KtPropagationResultData
    : public KtXmlPersistent<KtPropagationResultData, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// Whether a joint was stopped at its limit.
  virtual bool hitJointLimit() const { return hitJointLimit_; }
  virtual void setHitJointLimit(bool value) { hitJointLimit_ = value; }
  /// Whether a singular position was met.
  virtual bool hitSingularity() const { return hitSingularity_; }
  virtual void setHitSingularity(bool value) { hitSingularity_ = value; }
  /// Whether one of the manipulator's stopping criteria was satisfied.
  virtual bool hitGeneralStoppingCriterion() const { return hitGeneralStoppingCriterion_; }
  virtual void setHitGeneralStoppingCriterion(bool value) { hitGeneralStoppingCriterion_ = value; }
  /// The descriptions of the satisfied criteria, joined by `m_theDescriptionSeparator`.
  virtual const KtString& satisfiedGeneralStoppingCriteriaDescription() const {
    return satisfiedGeneralStoppingCriteriaDescription_.value();
  }
  virtual void setSatisfiedGeneralStoppingCriteriaDescription(const KtString& text) {
    satisfiedGeneralStoppingCriteriaDescription_ = text;
  }
  /// Whether the manipulator collided.
  virtual bool collisionOccurred() const { return collisionOccurred_; }
  virtual void setCollisionOccurred(bool value) { collisionOccurred_ = value; }
  /// Sets what `linkIndexAtJointLimit()` answers.
  virtual void setLinkIndexAtJointLimit(const KtU32& index) { linkIndexAtJointLimit_ = index; }
  /// Index of the link whose joint was stopped at its limit; 1000 until one was recorded.
  virtual KtU32 linkIndexAtJointLimit() const { return linkIndexAtJointLimit_; }
  /// Index of the manipulator that collided. Not written to files.
  virtual KtU32 collidedManipulator() const { return collidedManipulator_; }
  virtual void setCollidedManipulator(KtU32 index) { collidedManipulator_ = index; }
  /// Index of its link that collided, `ktBaseIndex` for the root.
  virtual KtU32 collidedLink() const { return collidedLink_; }
  virtual void setCollidedLink(KtU32 index) { collidedLink_ = index; }
  /// Index of the link that it collided with.
  virtual KtU32 otherCollidedLink() const { return otherCollidedLink_; }
  virtual void setOtherCollidedLink(KtU32 index) { otherCollidedLink_ = index; }
  /// Index of the manipulator that it collided with, which may be itself.
  virtual KtU32 otherCollidedManipulator() const { return otherCollidedManipulator_; }
  virtual void setOtherCollidedManipulator(KtU32 index) { otherCollidedManipulator_ = index; }
  /// Records a satisfied criterion: sets the flag and appends the text to the descriptions.
  virtual void registerGenericStoppingCriterion(const KtString& text);
  /// Clears the flags, and the descriptions if the flag of the stopping criteria was set: a text
  /// that was set without the flag stays. The indices keep their values.
  virtual void reset();

  /// Exact equality of what files hold: of all but `collidedManipulator()`.
  bool operator==(const KtPropagationResultData& other) const;
  static const KtToken& classToken() { return KtManip::KtPropagationResultDataToken; }

  /// What stands between two descriptions, "; ".
  static const KtString m_theDescriptionSeparator;

 private:
  KtXmlBasicType<bool> collisionOccurred_;
  KtU32 collidedManipulator_ = 0;
  KtXmlBasicType<KtU32> collidedLink_;
  KtXmlBasicType<KtU32> otherCollidedLink_;
  KtXmlBasicType<KtU32> otherCollidedManipulator_;
  KtXmlBasicType<KtU32> linkIndexAtJointLimit_{1000U};
  KtXmlBasicType<bool> hitJointLimit_;
  KtXmlBasicType<bool> hitSingularity_;
  KtXmlBasicType<bool> hitGeneralStoppingCriterion_;
  KtXmlBasicType<KtString> satisfiedGeneralStoppingCriteriaDescription_;
};

extern template class KtXmlVectorType<KtPropagationResultData>;
