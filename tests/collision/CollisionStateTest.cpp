#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using Link = std::pair<KtU32, std::string>;

// Labels whose order by bytes differs from that by signed characters and by length.
const std::array<std::string, 5> kLabels = {"root", "b", "ba", "\xC3\xA9", "Z"};

// A root and four links, of which the second has the third as its child.
KtIndividualManipulator manipulator() {
  KtIndividualManipulator root;
  root.setLabel(kLabels[0]);
  std::array<KtManipulatorLink, 4> links;
  for (std::size_t i = 0; i < links.size(); ++i) links[i].setLabel(kLabels[i + 1]);
  links[1].addChild(links[2]);
  for (const std::size_t i : {0U, 1U, 3U}) root.addChild(links[i]);
  return root;
}

TEST(CollisionMap, WithinAManipulatorFlagsFollowEveryEdit) {
  KtManipulatorSelfCollisionLinkMap map;
  map.setLinkCollisionCanditateByIdentifier("Z", "root", true);
  map.setLinkCollisionCanditateByIdentifier("gone", "Z", true);
  map.buildMapFromSystem(manipulator());
  // All pairs start as no candidates, and those of a link that is gone stay. Both orders of each.
  std::map<std::pair<std::string, std::string>, bool> model = {{{"gone", "Z"}, true},
                                                               {{"Z", "gone"}, true}};
  for (const auto& a : kLabels) {
    for (const auto& b : kLabels) model[{a, b}] = false;
  }
  EXPECT_FALSE(map.linkHasExclusionCandidate("gone"));
  for (int round = 0; round < 300; ++round) {
    for (const auto& [pair, value] : model) {
      bool flag = !value;
      EXPECT_TRUE(map.linkCollisionCanditateByIdentifier(pair.first, pair.second, flag));
      EXPECT_EQ(flag, value);
    }
    const std::string a = kLabels[pick(5)], b = pick(9) == 0 ? "new" : kLabels[pick(5)];
    EXPECT_EQ(map.linkHasExclusionCandidate(a), std::ranges::any_of(model, [&](const auto& entry) {
                return !entry.second && entry.first.first == a;
              }));
    const bool value = pick(2) == 1;
    if (pick(12) == 0) {
      value ? map.setAllAsCollisionCandidates() : map.unsetAllAsCollisionCandidates();
      for (auto& entry : model) entry.second = value;
    } else {
      map.setLinkCollisionCanditateByIdentifier(a, b, value);
      model[{a, b}] = model[{b, a}] = value;
    }
  }
  bool flag = true;
  EXPECT_FALSE(map.linkCollisionCanditateByIdentifier("gone", "root", flag));
  std::size_t entries = 0;
  for (const auto& [first, inner] : map.mapContainer()) {
    EXPECT_FALSE(inner.mapContainer().begin()->first < first) << "stored under the smaller label";
    entries += inner.size();
  }
  EXPECT_EQ(entries, (model.size() + kLabels.size()) / 2) << "each pair stands once";
}

// The exclusions as a plain list of pairs of sides, each in both orders. A side is a link or, with
// the label "*", a whole manipulator. The label "ghost" names no link.
struct ExclusionModel {
  KtSystemCollisionExclusionMap map;
  std::set<std::pair<Link, Link>> pairs;

  void edit(const Link& a, const Link& b, bool adds) {
    using Map = KtSystemCollisionExclusionMap;
    if (a.second == "*" && b.second != "*") return edit(b, a, adds);
    const auto ask = [this, adds](auto add, auto remove, const auto&... sides) {
      return adds ? (map.*add)(sides...) : (map.*remove)(sides...);
    };
    const bool done =
        a.second == "*" ? ask(&Map::excludeManipulatorCollisionCandidates,
                              &Map::removeManipulatorCollisionExclusionCandidates, a.first, b.first)
        : b.second == "*"
            ? ask(&Map::excludeLinkCollisionCandidates,
                  &Map::removeLinkCollisionExclusionCandidates, a.first, a.second, b.first)
            : ask(&Map::excludeLinkCollisionCandidate, &Map::removeLinkCollisionExclusionCandidate,
                  a.first, a.second, b.first, b.second);
    EXPECT_EQ(done, a.first != b.first);
    for (const auto& pair : {std::pair(a, b), std::pair(b, a)}) {
      if (adds && done) pairs.insert(pair);
      if (!adds) pairs.erase(pair);
    }
  }
  bool excluded(const Link& a, const Link& b) const {
    const Link allOfA(a.first, "*");
    const Link allOfB(b.first, "*");
    return pairs.contains({allOfA, allOfB}) || pairs.contains({a, allOfB}) ||
           pairs.contains({allOfA, b}) || pairs.contains({a, b});
  }
};

TEST(CollisionMap, BetweenManipulatorsAnswersAreThoseOfAPlainList) {
  // The third manipulator of the entries is none of the system.
  const KtXmlVectorType<KtIndividualManipulator> system(2, manipulator());
  const auto drawLink = [] {
    const std::size_t i = pick(6);
    return Link(pick(3), i < 5 ? kLabels[i] : "ghost");
  };
  const auto sideOf = [](const Link& link) { return pick(3) == 0 ? Link(link.first, "*") : link; };
  ExclusionModel model;
  KtU32 seen[2] = {0, 0};
  for (int round = 0; round < 1000; ++round) {
    Link a = drawLink(), b = drawLink();
    model.edit(sideOf(a), sideOf(b), pick(5) < 2);
    model.map.buildMapFromManipulators(system);
    if (pick(2) == 0) a = drawLink(), b = drawLink();
    const bool expected = model.excluded(a, b);
    ++seen[expected ? 1 : 0];
    EXPECT_EQ(model.map.isLinkCollisionCandidateExcluded(a.first, a.second, b.first, b.second),
              expected);
    KtManipulatorLinkIndex ia, ib;
    if (model.map.convertToManipulatorLinkIndex(system, {a.first, a.second}, ia) &&
        model.map.convertToManipulatorLinkIndex(system, {b.first, b.second}, ib)) {
      EXPECT_EQ(model.map.isLinkCollisionCandidateExcluded(ia.manipulatorIndex(), ia.linkIndex(),
                                                           ib.manipulatorIndex(), ib.linkIndex()),
                expected);
    }
    bool ofManipulator = false, ofLink = false;
    for (const auto& [first, second] : model.pairs) {
      ofManipulator |= first == Link(a.first, "*") && second.second == "*";
      ofLink |= first == a;
    }
    EXPECT_EQ(model.map.manipulatorHasExclusionCandidate(a.first), ofManipulator);
    EXPECT_EQ(model.map.linkHasExclusionCandidate(a.first, a.second), ofLink);
  }
  EXPECT_GT(seen[0], 100U);
  EXPECT_GT(seen[1], 100U);
  EXPECT_FALSE(model.map == KtSystemCollisionExclusionMap());
  while (!model.pairs.empty()) {
    const auto pair = *model.pairs.begin();
    model.edit(pair.first, pair.second, false);
  }
  EXPECT_TRUE(model.map == KtSystemCollisionExclusionMap()) << "what is taken back leaves no trace";
}

TEST(CollisionMap, LinksThatAreMissingAreLeftOut) {
  const KtXmlVectorType<KtIndividualManipulator> system(2, manipulator());
  const KtSystemCollisionExclusionMap map;
  KtXmlSetType<KtManipulatorLinkIdentifier> names;
  names.add({0, "root"});
  names.add({1, "ba"});
  std::set<KtManipulatorLinkIndex> indices = {{7, 7}};
  EXPECT_TRUE(map.obtainManipulatorLinkIndices(system, names, indices));
  EXPECT_EQ(indices, (std::set<KtManipulatorLinkIndex>{{0, ktBaseIndex}, {1, 1}}));
  names.add({2, "ba"});
  EXPECT_FALSE(map.obtainManipulatorLinkIndices(system, names, indices));
  EXPECT_EQ(indices.size(), 2U);
}

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
  const KtLinkKey own{0, ktBaseIndex}, first{1, ktBaseIndex}, second{2, ktBaseIndex};
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
