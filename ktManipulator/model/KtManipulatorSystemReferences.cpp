#include <algorithm>
#include <string>
#include <vector>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtManipulatorSystem.h"

namespace {

bool isReference(const KtIndividualManipulator& manipulator) {
  return manipulator.manipulatorReferenceDescription().isManipulatorReferenced();
}

KtManipulatorReferenceDescription referenceTo(const KtString& label) {
  KtManipulatorReferenceDescription description;
  description.setIsManipulatorReferenced(true);
  description.setReferencedManipulatorLabel(label);
  return description;
}

}  // namespace

bool KtManipulatorSystem::aboutToModifyManipulator(const std::string& label) {
  const KtIndividualManipulator* const manipulator = manipulatorByIdentifier(label);
  return manipulator != nullptr && aboutToModifyManipulator(manipulator->manipulatorIndex());
}

bool KtManipulatorSystem::aboutToModifyManipulator(KtU32 index) {
  if (index >= manipulators_.size()) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtManipulatorSystem::aboutToModifyManipulator(): bad index "
                                "(%u).\n",
                                index);
    return false;
  }
  // In this order: manipulators that reference this one get its own reference.
  handLinksOn(index);
  if (isReference(manipulators_[index])) resolveReference(index);
  mapAll();
  return true;
}

// Redirects references from one manipulator to another.
void KtManipulatorSystem::handLinksOn(KtU32 index) {
  const KtString label = manipulators_[index].label();
  std::vector<KtU32> referrers;
  for (KtU32 k = 0; k < manipulators_.size(); ++k) {
    const auto& description = manipulators_[k].manipulatorReferenceDescription();
    if (!description.isManipulatorReferenced() ||
        description.referencedManipulatorLabel() != label) {
      continue;
    }
    if (k != index) {
      referrers.push_back(k);
    } else {
      Kt::Print::instance().write(Kt::Print::kError,
                                  "KtManipulatorSystem::aboutToModifyManipulator(): "
                                  "self-reference error for manipulator %u.\n",
                                  index);
    }
  }
  if (referrers.empty()) return;
  KtManipulatorReferenceDescription target = manipulators_[index].manipulatorReferenceDescription();
  auto next = referrers.begin();
  if (!target.isManipulatorReferenced()) {
    assignLinks(*next, index);
    target = referenceTo(manipulators_[*next].label());
    ++next;
  }
  for (; next != referrers.end(); ++next) {
    manipulators_[*next].setManipulatorReferenceDescription(target);
  }
}

// Gives a manipulator with a reference its own copy of the links.
void KtManipulatorSystem::resolveReference(KtU32 index) {
  KtString target =
      manipulators_[index].manipulatorReferenceDescription().referencedManipulatorLabel();
  // A chain of references visits no manipulator twice, unless it is a cycle.
  for (KtU32 step = 0; step < manipulators_.size(); ++step) {
    const auto& all = manipulators_.elements();
    const auto found =
        std::ranges::find_if(all, [&](const auto& m) { return m.label() == target; });
    if (found == all.end()) break;
    if (!isReference(*found)) {
      assignLinks(index, static_cast<KtU32>(found - all.begin()));
      return;
    }
    target = found->manipulatorReferenceDescription().referencedManipulatorLabel();
  }
  Kt::Print::instance().write(Kt::Print::kError,
                              "KtManipulatorSystem::aboutToModifyManipulator(): could not find "
                              "referenced manipulator %s\n.",
                              target.c_str());
}

// Makes a manipulator a copy of another one, except for the label.
void KtManipulatorSystem::assignLinks(KtU32 index, KtU32 source) {
  const KtString label = manipulators_[index].label();
  manipulators_[index] = manipulators_[source];
  manipulators_[index].setLabel(label);
}

bool KtManipulatorSystem::findAndConvertToReferences() {
  for (KtU32 i = 1; i < manipulators_.size(); ++i) {
    KtIndividualManipulator& manipulator = manipulators_[i];
    for (KtU32 j = 0; j < i; ++j) {
      const KtIndividualManipulator& earlier = manipulators_[j];
      // A label leads to the first manipulator that has it.
      if (isReference(earlier) || manipulatorByIdentifier(earlier.label()) != &earlier ||
          !manipulator.equalForReferencing(earlier)) {
        continue;
      }
      manipulator.setChildLinks({});
      manipulator.setShapeContainer({});
      manipulator.setSelfCollisionLinkMap({});
      manipulator.setManipulatorReferenceDescription(referenceTo(earlier.label()));
    }
  }
  for (KtIndividualManipulator& manipulator : manipulators_.elements()) {
    if (!isReference(manipulator)) manipulator.findAndConvertToReferences();
  }
  setManipulators(manipulators_);
  return true;
}
