#include "ktManipulator/model/KtIndividualManipulator.h"

KtIndividualManipulator::KtIndividualManipulator() {
  mapManipulator();
}

KtIndividualManipulator::KtIndividualManipulator(const KtIndividualManipulator& other)
    : KtXmlPersistent(other), isFixedBase_(other.isFixedBase_) {
  mapManipulator();
}

KtIndividualManipulator& KtIndividualManipulator::operator=(const KtIndividualManipulator& other) {
  if (this != &other) {
    KtXmlPersistent::operator=(other);
    isFixedBase_ = other.isFixedBase_;
    mapManipulator();
  }
  return *this;
}

bool KtIndividualManipulator::read(KtXmlReader& reader) {
  const bool good = KtManipulatorLink::read(reader);
  mapManipulator();
  return good;
}

void KtIndividualManipulator::registerComponents() {
  KtManipulatorLink::registerComponents();
  registerComponent(KtManip::KtIsFixedBaseToken, &isFixedBase_);
}

void KtIndividualManipulator::addChild(const KtManipulatorLink& link) {
  KtManipulatorLink::addChild(link);
  mapManipulator();
}

KtManipulatorLink* KtIndividualManipulator::linkByIdentifier(const std::string& label) const {
  const auto found = labelTable_.find(label);
  return found != labelTable_.end() ? found->second : nullptr;
}

const KtManipulatorLink* KtIndividualManipulator::linkByIndex(KtU32 index) const {
  if (index == ktBaseIndex) return this;
  return index < linkTable_.size() ? linkTable_[index] : nullptr;
}

bool KtIndividualManipulator::mapManipulator() {
  linkTable_.clear();
  labelTable_.clear();
  linkIndex_ = ktBaseIndex;
  labelTable_[label()] = this;
  bool good = true;
  for (KtU32 i = 0; i < childLinks_.size(); ++i) {
    good = childLinks_[i].mapLinks(linkTable_, labelTable_) && good;
  }
  return good;
}

bool KtIndividualManipulator::operator==(const KtIndividualManipulator& other) const {
  return KtManipulatorLink::operator==(other) && isFixedBase_ == other.isFixedBase_;
}
