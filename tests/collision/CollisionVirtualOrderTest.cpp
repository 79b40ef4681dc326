#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

TEST(VirtualOrder, CollisionMapsKeepTheirs) {
  using S = KtManipulatorSelfCollisionLinkMap;
  expectOrder("KtManipulatorSelfCollisionLinkMap", kMap + 1, &S::buildMapFromSystem,
              &S::setLinkCollisionCanditateByIdentifier, &S::linkCollisionCanditateByIdentifier,
              &S::setAllAsCollisionCandidates, &S::unsetAllAsCollisionCandidates);
  using X = KtSystemCollisionExclusionMap;
  using ByLabel = bool (X::*)(KtU32, const KtString&, KtU32, const KtString&) const;
  using ByIndex = bool (X::*)(KtU32, KtU32, KtU32, KtU32) const;
  expectOrder("KtSystemCollisionExclusionMap", kCompound + 1, &X::excludeLinkCollisionCandidate,
              &X::excludeLinkCollisionCandidates, &X::excludeManipulatorCollisionCandidates,
              &X::removeLinkCollisionExclusionCandidate, &X::removeLinkCollisionExclusionCandidates,
              &X::removeManipulatorCollisionExclusionCandidates, &X::buildMapFromSystem,
              static_cast<ByLabel>(&X::isLinkCollisionCandidateExcluded),
              static_cast<ByIndex>(&X::isLinkCollisionCandidateExcluded));
}

}  // namespace
