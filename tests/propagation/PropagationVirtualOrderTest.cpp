#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

TEST(VirtualOrder, PropagationRecordsKeepTheirs) {
  using R = KtPropagationResultData;
  expectOrder("KtPropagationResultData", kCompound + 1, &R::hitJointLimit, &R::setHitJointLimit,
              &R::hitSingularity, &R::setHitSingularity, &R::hitGeneralStoppingCriterion,
              &R::setHitGeneralStoppingCriterion, &R::satisfiedGeneralStoppingCriteriaDescription,
              &R::setSatisfiedGeneralStoppingCriteriaDescription, &R::collisionOccurred,
              &R::setCollisionOccurred, &R::setLinkIndexAtJointLimit, &R::linkIndexAtJointLimit,
              &R::collidedManipulator, &R::setCollidedManipulator, &R::collidedLink,
              &R::setCollidedLink, &R::otherCollidedLink, &R::setOtherCollidedLink,
              &R::otherCollidedManipulator, &R::setOtherCollidedManipulator,
              &R::registerGenericStoppingCriterion, &R::reset);
  using C = KtBaseStoppingCriterion;
  expectOrder("KtBaseStoppingCriterion", kCompound + 1, &C::descriptiveText, &C::stop);
  expectOrder("KtBaseLinkInteractions", kCompound + 1, &KtBaseLinkInteractions::forceBetweenLinks);
}

}  // namespace
