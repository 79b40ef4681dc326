#include "ktManipulator/state/KtPropagationResultData.h"

template class KtXmlVectorType<KtPropagationResultData>;

const KtString KtPropagationResultData::m_theDescriptionSeparator = "; ";

void KtPropagationResultData::registerComponents() {
  registerComponent(KtManip::KtHitJointLimitToken, &hitJointLimit_);
  registerComponent(KtManip::KtHitSingularityToken, &hitSingularity_);
  registerComponent(KtManip::KtCollisionOccurredToken, &collisionOccurred_);
  registerComponent(KtManip::KtCollidedLinkToken, &collidedLink_);
  registerComponent(KtManip::KtLinkIndexAtJointLimitToken, &linkIndexAtJointLimit_);
  registerComponent(KtManip::KtOtherCollidedLinkToken, &otherCollidedLink_);
  registerComponent(KtManip::KtOtherCollidedManipulatorToken, &otherCollidedManipulator_);
  registerComponent(KtManip::KtHitGeneralStoppingCriterionToken, &hitGeneralStoppingCriterion_);
  registerComponent(KtManip::KtSatisfiedGeneralStoppingCriteriaDescriptionToken,
                    &satisfiedGeneralStoppingCriteriaDescription_);
}

void KtPropagationResultData::registerGenericStoppingCriterion(const KtString& text) {
  hitGeneralStoppingCriterion_ = true;
  KtString& all = satisfiedGeneralStoppingCriteriaDescription_.value();
  if (!all.empty()) all += m_theDescriptionSeparator;
  all += text;
}

void KtPropagationResultData::reset() {
  hitJointLimit_ = false;
  hitSingularity_ = false;
  collisionOccurred_ = false;
  if (hitGeneralStoppingCriterion_) satisfiedGeneralStoppingCriteriaDescription_.value().clear();
  hitGeneralStoppingCriterion_ = false;
}

bool KtPropagationResultData::operator==(const KtPropagationResultData& other) const {
  return KtXmlPersistent::operator==(other) && collisionOccurred_ == other.collisionOccurred_ &&
         collidedLink_ == other.collidedLink_ && otherCollidedLink_ == other.otherCollidedLink_ &&
         otherCollidedManipulator_ == other.otherCollidedManipulator_ &&
         linkIndexAtJointLimit_ == other.linkIndexAtJointLimit_ &&
         hitJointLimit_ == other.hitJointLimit_ && hitSingularity_ == other.hitSingularity_ &&
         hitGeneralStoppingCriterion_ == other.hitGeneralStoppingCriterion_ &&
         satisfiedGeneralStoppingCriteriaDescription_ ==
             other.satisfiedGeneralStoppingCriteriaDescription_;
}
