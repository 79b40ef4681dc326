#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using Proximity = KtManipulatorLinkProximityState;

constexpr auto kLinks = {3, 1, 4};  // of each manipulator, roots included

// Every link of a system, roots included.
std::vector<KtLinkKey> linksOf(const KtManipulatorSystem& system) {
  std::vector<KtLinkKey> keys;
  for (KtU32 k = 0; k < system.numberOfManipulators(); ++k) {
    for (KtU32 j = 0; j < system.manipulators()[k].jointDof(); ++j) keys.push_back({k, j});
    keys.push_back({k, ktBaseIndex});
  }
  return keys;
}

TEST(ProximityStates, HoldThePairsThatCanCollide) {
  KtManipulatorSystem system = trees::randomSystem(kLinks);
  KtSystemCollisionExclusionMap exclusions;
  exclusions.excludeManipulatorCollisionCandidates(0, 1);
  exclusions.excludeLinkCollisionCandidate(0, "link1", 2, "link2");
  system.setCollisionExclusionMap(exclusions);
  Proximity state;
  EXPECT_FALSE(state.initialize(3, system));
  EXPECT_FALSE(state.isInitialized());
  const std::vector<KtLinkKey> links = linksOf(system);
  std::size_t present = 0;
  for (KtU32 own = 0; own < 3; ++own) {
    state.getData({9, 9}, {9, 8});  // of another system
    ASSERT_TRUE(state.initialize(own, system));
    EXPECT_FALSE(state.setValid({9, 9}, {9, 8}));
    for (const KtLinkKey& a : links) {
      for (const KtLinkKey& b : links) {
        const bool expected =
            a.manipulatorIndex == own &&
            (b.manipulatorIndex == own
                 ? a.linkIndex <= b.linkIndex &&
                       system.manipulators()[own].canCollide(a.linkIndex, b.linkIndex)
                 : system.canCollide(own, a.linkIndex, b.manipulatorIndex, b.linkIndex));
        EXPECT_FALSE(state.isValid(a, b)) << "a new entry was never computed";
        EXPECT_EQ(state.setValid(a, b), expected);
        EXPECT_EQ(state.isValid(a, b), expected);
        present += expected ? 1 : 0;
      }
    }
  }
  EXPECT_GT(present, 0U);
}

TEST(ProximityStates, MovesOutdateThePairsOfTheirManipulator) {
  const KtLinkKey own{0, ktBaseIndex};
  const KtLinkKey first{1, ktBaseIndex};
  const KtLinkKey second{2, ktBaseIndex};
  Proximity state;
  EXPECT_FALSE(state.setDistance(own, first, 1.0)) << "no entry yet";
  EXPECT_EQ(state.getDistance(own, first), 0.0) << "made by asking";
  EXPECT_TRUE(state.setDistance(own, first, 1.0));
  EXPECT_FALSE(state.isValid(own, first)) << "no manipulator has a stamp yet";
  state.initialize(0, trees::randomSystem(kLinks));
  ASSERT_TRUE(state.setDistance(own, first, 1.0) && state.setDistance(own, second, 2.0));
  EXPECT_FALSE(state.isValid(first, own)) << "the other order is another pair";
  const Proximity copy(state);
  state.invalidate(3);
  EXPECT_TRUE(state.isValid(own, first));
  state.invalidate(2);
  EXPECT_TRUE(state.isValid(own, first));
  EXPECT_FALSE(state.isValid(own, second));
  EXPECT_EQ(state.getDistance(own, second), 2.0) << "outdated, not cleared";
  EXPECT_TRUE(state.setValid(own, second) && state.isValid(own, second));
  state.invalidateAll();
  EXPECT_FALSE(state.isValid(own, first) || state.isValid(own, second));
  EXPECT_TRUE(copy.isValid(own, second)) << "a copy has its own entries and stamps";
}

TEST(ProximityStates, IntervalsAndKeysAreInverse) {
  const KtManipulatorSystem system = trees::randomSystem(kLinks);
  const KtSystemActiveBoundingBoxState boxes;
  KtU32 expected = 0;
  KtShapeStateCacheKey key;
  for (const KtLinkKey& link : linksOf(system)) {
    KtU32 interval = ktUnmappedIndex;
    boxes.shapeKeyIDToIntervalID({link.manipulatorIndex, link.linkIndex, 4U}, system, interval);
    EXPECT_EQ(interval, expected);
    boxes.intervalIDtoShapeKeyID(expected, system, key);
    EXPECT_EQ(key, KtShapeStateCacheKey(link.manipulatorIndex, link.linkIndex));
    ++expected;
  }
  const KtShapeStateCacheKey last = key;
  boxes.intervalIDtoShapeKeyID(expected, system, key);
  EXPECT_EQ(key, last) << "beyond the last";
  boxes.shapeKeyIDToIntervalID({3U, 0U}, system, expected);
  boxes.shapeKeyIDToIntervalID({0U, 77U}, system, expected);
  EXPECT_EQ(expected, linksOf(system).size()) << "no such link";
}

}  // namespace
