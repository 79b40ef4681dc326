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

TEST(VirtualOrder, ProximityStatesKeepTheirs) {
  using P = KtManipulatorLinkProximityState;
  using Key = const KtLinkKey&;
  using Data = KtLinkProximityData;
  expectOrder("KtManipulatorLinkProximityState", 2, looking(&P::systemActiveBoundingBoxState),
              changing(&P::systemActiveBoundingBoxState), &P::setSystemActiveBoundingBoxState,
              static_cast<const Data& (P::*)(Key, Key) const>(&P::getData),
              static_cast<Data& (P::*)(Key, Key)>(&P::getData), &P::setDistance, &P::getDistance,
              &P::invalidateAll, &P::invalidate, &P::isValid, &P::setValid, &P::initialize,
              &P::setIsInitialized, &P::isInitialized);
}

}  // namespace
