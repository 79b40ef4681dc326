#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

TEST(VirtualOrder, AttachmentsKeepTheirs) {
  using M = KtManipulatorAttachmentMap;
  expectOrder("KtManipulatorAttachmentMap", kMap + 1, &M::attachManipulator,
              &M::removeManipulatorAttachment, &M::getDependentManipulatorInfo,
              &M::dependentManipulators, &M::getDependentManipulatorsAndOffsets,
              &M::calculateBaseLocations);
  using A = KtLinkAttachment;
  expectOrder("KtLinkAttachment", kCompound + 1, &A::manipulatorIndex, &A::setManipulatorIndex,
              &A::linkIdentifier, &A::setLinkIdentifier, &A::frame, &A::setFrame,
              &A::calculatePlacement, &A::calculateVelocity, &A::calculateAcceleration);
}

}  // namespace
