#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <tuple>

#include "ktManipulator/ktManipulator.h"
#include "support/Random.h"

namespace {

using CollisionMap = sampling::Seeded;
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

std::size_t draw(std::size_t count) {
  return std::uniform_int_distribution<std::size_t>(0, count - 1)(sampling::generator());
}

TEST_F(CollisionMap, IdentifiersAreOrderedByManipulatorThenBytes) {
  const std::array<Link, 6> ascending = {
      {{0, "z"}, {1, ""}, {1, "a"}, {1, "aa"}, {1, "b"}, {1, "\xC3\xA9"}}};
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      const KtManipulatorLinkIdentifier a(ascending[i].first, ascending[i].second);
      const KtManipulatorLinkIdentifier b(ascending[j].first, ascending[j].second);
      EXPECT_EQ(a < b, i < j);
      EXPECT_EQ(a == b, i == j);
    }
  }
  EXPECT_TRUE(KtManipulatorLinkIndex(0, ktBaseIndex) < KtManipulatorLinkIndex(1, 0));
  EXPECT_TRUE(KtManipulatorLinkIndex(1, 2) < KtManipulatorLinkIndex(1, 3));
  EXPECT_FALSE(KtManipulatorLinkIndex(1, 2) < KtManipulatorLinkIndex(0, 3));
}

TEST_F(CollisionMap, WithinAManipulatorEveryPairStartsAsNoCandidate) {
  KtManipulatorSelfCollisionLinkMap map;
  map.setLinkCollisionCanditateByIdentifier("Z", "root", true);
  map.setLinkCollisionCanditateByIdentifier("gone", "Z", true);
  map.buildMapFromSystem(manipulator());
  KtU32 entries = 0;
  for (const auto& [first, inner] : map.mapContainer()) {
    for (const auto& [second, flag] : inner.mapContainer()) {
      EXPECT_FALSE(second < first) << "a pair stands under its smaller label";
      ++entries;
    }
  }
  EXPECT_EQ(entries, 16U) << "5 * 6 / 2 pairs, and the one of a link that is gone";
  for (const std::string& a : kLabels) {
    for (const std::string& b : kLabels) {
      bool flag = true;
      EXPECT_TRUE(map.linkCollisionCanditateByIdentifier(a, b, flag));
      EXPECT_FALSE(flag);
    }
  }
  bool flag = false;
  EXPECT_FALSE(map.linkCollisionCanditateByIdentifier("gone", "root", flag));
  EXPECT_TRUE(map.linkCollisionCanditateByIdentifier("Z", "gone", flag));
  EXPECT_TRUE(flag);
  EXPECT_FALSE(map.linkHasExclusionCandidate("gone"));
}

TEST_F(CollisionMap, WithinAManipulatorFlagsFollowEveryEdit) {
  KtManipulatorSelfCollisionLinkMap map;
  std::map<std::pair<std::string, std::string>, bool> model;  // both orders of each pair
  for (int edit = 0; edit < 300; ++edit) {
    const std::string& a = kLabels[draw(5)];
    const std::string& b = kLabels[draw(5)];
    const bool value = draw(2) == 1;
    if (draw(12) == 0) {
      value ? map.setAllAsCollisionCandidates() : map.unsetAllAsCollisionCandidates();
      for (auto& entry : model) entry.second = value;
    } else {
      map.setLinkCollisionCanditateByIdentifier(a, b, value);
      model[{a, b}] = model[{b, a}] = value;
    }
    const auto found = model.find({kLabels[draw(5)], kLabels[draw(5)]});
    if (found == model.end()) continue;
    bool flag = !found->second;
    EXPECT_TRUE(
        map.linkCollisionCanditateByIdentifier(found->first.first, found->first.second, flag));
    EXPECT_EQ(flag, found->second);
    EXPECT_EQ(map.linkHasExclusionCandidate(a), std::ranges::any_of(model, [&](const auto& entry) {
                return !entry.second && entry.first.first == a;
              }));
  }
}

// The exclusions as a plain list of every pair of sides, a side being a whole manipulator ("*") or
// a link. The sixth label names no link.
class ExclusionModel {
 public:
  KtSystemCollisionExclusionMap map;
  std::set<std::pair<Link, Link>> pairs;

  void edit() {
    const Link a(static_cast<KtU32>(draw(3)), label());
    const Link b(static_cast<KtU32>(draw(3)), label());
    const Link allOfA(a.first, "*");
    const Link allOfB(b.first, "*");
    const bool differ = a.first != b.first;
    const bool adds = draw(5) < 2;
    using Map = KtSystemCollisionExclusionMap;
    switch (draw(3)) {
      case 0: {
        const auto edit = adds ? &Map::excludeManipulatorCollisionCandidates
                               : &Map::removeManipulatorCollisionExclusionCandidates;
        EXPECT_EQ((map.*edit)(a.first, b.first), differ);
        if (differ) change(allOfA, allOfB, adds);
        break;
      }
      case 1: {
        const auto edit = adds ? &Map::excludeLinkCollisionCandidates
                               : &Map::removeLinkCollisionExclusionCandidates;
        EXPECT_EQ((map.*edit)(a.first, a.second, b.first), differ);
        if (differ) change(a, allOfB, adds);
        break;
      }
      default: {
        const auto edit = adds ? &Map::excludeLinkCollisionCandidate
                               : &Map::removeLinkCollisionExclusionCandidate;
        EXPECT_EQ((map.*edit)(a.first, a.second, b.first, b.second), differ);
        if (differ) change(a, b, adds);
      }
    }
  }
  bool excluded(const Link& a, const Link& b) const {
    if (a.first == b.first) return false;
    const Link allOfA(a.first, "*");
    const Link allOfB(b.first, "*");
    return pairs.contains({allOfA, allOfB}) || pairs.contains({a, allOfB}) ||
           pairs.contains({allOfA, b}) || pairs.contains({a, b});
  }
  static std::string label() {
    const std::size_t i = draw(6);
    return i < 5 ? kLabels[i] : "ghost";
  }

 private:
  void change(const Link& a, const Link& b, bool adds) {
    for (const auto& pair : {std::pair(a, b), std::pair(b, a)}) {
      if (adds) {
        pairs.insert(pair);
      } else {
        pairs.erase(pair);
      }
    }
  }
};

TEST_F(CollisionMap, BetweenManipulatorsAnswersAreThoseOfAPlainList) {
  // The third manipulator of the entries is none of the system.
  const KtXmlVectorType<KtIndividualManipulator> system(2, manipulator());
  ExclusionModel model;
  KtU32 seen[2] = {0, 0};
  for (int round = 0; round < 400; ++round) {
    model.edit();
    model.map.buildMapFromManipulators(system);
    for (KtU32 m1 = 0; m1 < 3; ++m1) {
      for (KtU32 m2 = 0; m2 < 3; ++m2) {
        const Link a(m1, ExclusionModel::label());
        const Link b(m2, ExclusionModel::label());
        const bool expected = model.excluded(a, b);
        ++seen[expected ? 1 : 0];
        EXPECT_EQ(model.map.isLinkCollisionCandidateExcluded(m1, a.second, m2, b.second), expected);
        if (m1 == 2 || m2 == 2 || a.second == "ghost" || b.second == "ghost") continue;
        EXPECT_EQ(model.map.isLinkCollisionCandidateExcluded(
                      m1, system[m1].linkByIdentifier(a.second)->linkIndex(), m2,
                      system[m2].linkByIdentifier(b.second)->linkIndex()),
                  expected);
      }
    }
    const Link link(static_cast<KtU32>(draw(3)), ExclusionModel::label());
    bool ofManipulator = false;
    bool ofLink = false;
    for (const auto& [a, b] : model.pairs) {
      ofManipulator |= a == Link(link.first, "*") && b.second == "*";
      ofLink |= a == link;
    }
    EXPECT_EQ(model.map.manipulatorHasExclusionCandidate(link.first), ofManipulator);
    EXPECT_EQ(model.map.linkHasExclusionCandidate(link.first, link.second), ofLink);
  }
  EXPECT_GT(seen[0], 300U);
  EXPECT_GT(seen[1], 300U);
  model.map.removeAllExclusionCandidates();
  EXPECT_TRUE(model.map == KtSystemCollisionExclusionMap());
}

TEST_F(CollisionMap, TakenBackExclusionsLeaveNoTrace) {
  KtSystemCollisionExclusionMap map;
  map.excludeManipulatorCollisionCandidates(3, 1);
  map.excludeLinkCollisionCandidates(1, "b", 0);
  map.excludeLinkCollisionCandidate(1, "b", 0, "Z");
  EXPECT_FALSE(map == KtSystemCollisionExclusionMap());
  map.removeManipulatorCollisionExclusionCandidates(1, 3);
  map.removeLinkCollisionExclusionCandidates(1, "b", 0);
  map.removeLinkCollisionExclusionCandidate(0, "Z", 1, "b");
  EXPECT_TRUE(map == KtSystemCollisionExclusionMap());
}

TEST_F(CollisionMap, IndicesAreThoseOfTheLastCompiling) {
  KtXmlVectorType<KtIndividualManipulator> system(2, manipulator());
  KtSystemCollisionExclusionMap map;
  map.excludeLinkCollisionCandidate(1, "root", 0, "Z");
  EXPECT_FALSE(map.isLinkCollisionCandidateExcluded(0, 3U, 1, ktBaseIndex));
  map.buildMapFromManipulators(system);
  EXPECT_TRUE(map.isLinkCollisionCandidateExcluded(0, 3U, 1, ktBaseIndex));
  const KtSystemCollisionExclusionMap copy(map);
  system[1].setLabel("renamed");
  system[1].mapManipulator();
  map.buildMapFromManipulators(system);
  EXPECT_FALSE(map.isLinkCollisionCandidateExcluded(0, 3U, 1, ktBaseIndex));
  EXPECT_TRUE(copy.isLinkCollisionCandidateExcluded(0, 3U, 1, ktBaseIndex));
  EXPECT_TRUE(copy == map) << "what is compiled does not count";

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
