#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

TEST(VirtualOrder, CollisionMapsKeepTheirs) {
  using S = KtManipulatorSelfCollisionLinkMap;
  expectOrder("KtManipulatorSelfCollisionLinkMap", kMap + 1,
              {slotOf(&S::buildMapFromSystem), slotOf(&S::setLinkCollisionCanditateByIdentifier),
               slotOf(&S::linkCollisionCanditateByIdentifier),
               slotOf(&S::setAllAsCollisionCandidates), slotOf(&S::unsetAllAsCollisionCandidates)});
  using X = KtSystemCollisionExclusionMap;
  using ByLabel = bool (X::*)(KtU32, const KtString&, KtU32, const KtString&) const;
  using ByIndex = bool (X::*)(KtU32, KtU32, KtU32, KtU32) const;
  expectOrder(
      "KtSystemCollisionExclusionMap", kCompound + 1,
      {slotOf(&X::excludeLinkCollisionCandidate), slotOf(&X::excludeLinkCollisionCandidates),
       slotOf(&X::excludeManipulatorCollisionCandidates),
       slotOf(&X::removeLinkCollisionExclusionCandidate),
       slotOf(&X::removeLinkCollisionExclusionCandidates),
       slotOf(&X::removeManipulatorCollisionExclusionCandidates), slotOf(&X::buildMapFromSystem),
       slotOf(static_cast<ByLabel>(&X::isLinkCollisionCandidateExcluded)),
       slotOf(static_cast<ByIndex>(&X::isLinkCollisionCandidateExcluded))});
}

}  // namespace
