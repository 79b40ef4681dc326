#include "support/Testing.h"

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
    const std::string a = kLabels[pick(5)];
    const std::string b = pick(9) == 0 ? "new" : kLabels[pick(5)];
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
    KtManipulatorLinkIndex ia;
    KtManipulatorLinkIndex ib;
    if (model.map.convertToManipulatorLinkIndex(system, {a.first, a.second}, ia) &&
        model.map.convertToManipulatorLinkIndex(system, {b.first, b.second}, ib)) {
      EXPECT_EQ(model.map.isLinkCollisionCandidateExcluded(ia.manipulatorIndex(), ia.linkIndex(),
                                                           ib.manipulatorIndex(), ib.linkIndex()),
                expected);
    }
    bool ofManipulator = false;
    bool ofLink = false;
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

}  // namespace
