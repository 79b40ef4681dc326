// Which links of a manipulator may collide.
#include <algorithm>
#include <map>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

namespace {

void reportNullPairs(const std::vector<const KtManipulatorLink*>& links) {
  for (std::size_t i = 0; i < links.size(); ++i) {
    for (std::size_t j = 0; j < links.size(); ++j) {
      if (links[i] != nullptr && links[j] != nullptr) continue;
      Kt::Print::instance().write(Kt::Print::kError, "Invalid link pointer [%d][%d]",
                                  static_cast<int>(i), static_cast<int>(j));
    }
  }
}

}  // namespace

const KtManipulatorSelfCollisionLinkMap& KtIndividualManipulator::selfCollisionLinkMap() const {
  return selfCollisionLinkMap_;
}

void KtIndividualManipulator::setSelfCollisionLinkMap(
    const KtManipulatorSelfCollisionLinkMap& map) {
  selfCollisionLinkMap_ = map;
  mapLinkCollisionCandidates();
}

void KtIndividualManipulator::buildSelfCollisionLinkMap() {
  selfCollisionLinkMap_.buildMapFromSystem(*this);
  mapLinkCollisionCandidates();
}

const KtLinkCollisionTable& KtIndividualManipulator::linkCollisionTest() const {
  return linkCollisionTable_;
}

// From the entries of the map to the pairs of links: the pairs are many more. A derived class may
// have no link for an index.
void KtIndividualManipulator::mapLinkCollisionCandidates() {
  const std::size_t joints = jointDof();
  linkCollisionTable_.reset(joints + 1);
  std::vector<const KtManipulatorLink*> links(joints + 1, this);
  for (std::size_t i = 0; i < joints; ++i) links[i] = linkByIndex(static_cast<KtU32>(i));
  if (std::ranges::find(links, nullptr) != links.end()) reportNullPairs(links);
  if (selfCollisionLinkMap_.size() == 0) return;
  std::multimap<std::string, std::size_t> indices;
  for (std::size_t i = 0; i <= joints; ++i) {
    if (links[i] != nullptr) indices.emplace(links[i]->label(), i);
  }
  for (const auto& [label1, others] : selfCollisionLinkMap_.mapContainer()) {
    const auto [begin1, end1] = indices.equal_range(label1.value());
    if (begin1 == end1) continue;
    for (const auto& [label2, candidate] : others.mapContainer()) {
      // A file may have an entry under the larger label, where no lookup of a pair finds it.
      if (!candidate || label2 < label1) continue;
      const auto [begin2, end2] = indices.equal_range(label2.value());
      for (auto i = begin1; i != end1; ++i) {
        for (auto j = begin2; j != end2; ++j) {
          linkCollisionTable_.set(i->second, j->second);
          linkCollisionTable_.set(j->second, i->second);
        }
      }
    }
  }
}

bool KtIndividualManipulator::canCollide(KtU32 link1, KtU32 link2) const {
  const auto size = static_cast<KtU32>(linkCollisionTable_.size());
  if (link1 == ktBaseIndex) link1 = size - 1;
  if (link2 == ktBaseIndex) link2 = size - 1;
  if (link1 == link2) return false;
  if (link1 < size && link2 < size) return linkCollisionTable_.test(link1, link2);
  Kt::Print::instance().write(
      Kt::Print::kError,
      "KtIndividualManipulator::canCollide(): indices (%d,%d) out of range.  Returning False.\n",
      static_cast<int>(link1), static_cast<int>(link2));
  return false;
}

void KtIndividualManipulator::intersectLineSegmentWithManipulator(
    const KtLineSegment& /*segment*/, KtManipulatorPointEvent& /*event*/,
    KtManipulatorActiveState* /*activeState*/, KtU32 /*level*/) const {}
