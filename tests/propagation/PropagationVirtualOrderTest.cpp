#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

TEST(VirtualOrder, PropagationRecordsKeepTheirs) {
  using R = KtPropagationResultData;
  expectOrder("KtPropagationResultData", kCompound + 1,
              {slotOf(&R::hitJointLimit),
               slotOf(&R::setHitJointLimit),
               slotOf(&R::hitSingularity),
               slotOf(&R::setHitSingularity),
               slotOf(&R::hitGeneralStoppingCriterion),
               slotOf(&R::setHitGeneralStoppingCriterion),
               slotOf(&R::satisfiedGeneralStoppingCriteriaDescription),
               slotOf(&R::setSatisfiedGeneralStoppingCriteriaDescription),
               slotOf(&R::collisionOccurred),
               slotOf(&R::setCollisionOccurred),
               slotOf(&R::setLinkIndexAtJointLimit),
               slotOf(&R::linkIndexAtJointLimit),
               slotOf(&R::collidedManipulator),
               slotOf(&R::setCollidedManipulator),
               slotOf(&R::collidedLink),
               slotOf(&R::setCollidedLink),
               slotOf(&R::otherCollidedLink),
               slotOf(&R::setOtherCollidedLink),
               slotOf(&R::otherCollidedManipulator),
               slotOf(&R::setOtherCollidedManipulator),
               slotOf(&R::registerGenericStoppingCriterion),
               slotOf(&R::reset)});
  using C = KtBaseStoppingCriterion;
  expectOrder("KtBaseStoppingCriterion", kCompound + 1,
              {slotOf(&C::descriptiveText), slotOf(&C::stop)});
  expectOrder("KtBaseLinkInteractions", kCompound + 1,
              {slotOf(&KtBaseLinkInteractions::forceBetweenLinks)});
}

}  // namespace
