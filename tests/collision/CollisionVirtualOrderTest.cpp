#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

TEST(VirtualOrder, CollisionMapsKeepTheirs) {
  using S = KtManipulatorSelfCollisionLinkMap;
  expectOrder("KtManipulatorSelfCollisionLinkMap", kMap + 1, &S::buildMapFromSystem,
              &S::setLinkCollisionCanditateByIdentifier, &S::linkCollisionCanditateByIdentifier,
              &S::setAllAsCollisionCandidates, &S::unsetAllAsCollisionCandidates);
  using X = KtSystemCollisionExclusionMap;
  expectOrder(
      "KtSystemCollisionExclusionMap", kCompound + 1, &X::excludeLinkCollisionCandidate,
      &X::excludeLinkCollisionCandidates, &X::excludeManipulatorCollisionCandidates,
      &X::removeLinkCollisionExclusionCandidate, &X::removeLinkCollisionExclusionCandidates,
      &X::removeManipulatorCollisionExclusionCandidates, &X::buildMapFromSystem,
      taking<KtU32, const KtString&, KtU32, const KtString&>(&X::isLinkCollisionCandidateExcluded),
      taking<KtU32, KtU32, KtU32, KtU32>(&X::isLinkCollisionCandidateExcluded));
}

TEST(VirtualOrder, ProximityStatesKeepTheirs) {
  using P = KtManipulatorLinkProximityState;
  expectOrder("KtManipulatorLinkProximityState", 2, constant(&P::systemActiveBoundingBoxState),
              variable(&P::systemActiveBoundingBoxState), &P::setSystemActiveBoundingBoxState,
              constant(&P::getData), variable(&P::getData), &P::setDistance, &P::getDistance,
              &P::invalidateAll, &P::invalidate, &P::isValid, &P::setValid, &P::initialize,
              &P::setIsInitialized, &P::isInitialized);
}

}  // namespace
