#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

TEST(VirtualOrder, AttachmentsKeepTheirs) {
  using M = KtManipulatorAttachmentMap;
  expectOrder("KtManipulatorAttachmentMap", kMap + 1,
              {slotOf(&M::attachManipulator), slotOf(&M::removeManipulatorAttachment),
               slotOf(&M::getDependentManipulatorInfo), slotOf(&M::dependentManipulators),
               slotOf(&M::getDependentManipulatorsAndOffsets), slotOf(&M::calculateBaseLocations)});
  using A = KtLinkAttachment;
  expectOrder("KtLinkAttachment", kCompound + 1,
              {slotOf(&A::manipulatorIndex), slotOf(&A::setManipulatorIndex),
               slotOf(&A::linkIdentifier), slotOf(&A::setLinkIdentifier), slotOf(&A::frame),
               slotOf(&A::setFrame), slotOf(&A::calculatePlacement), slotOf(&A::calculateVelocity),
               slotOf(&A::calculateAcceleration)});
}

}  // namespace
