#include "ktManipulator/model/KtManipulatorSystem.h"

#include <algorithm>

#include "ktManipulator/collision/KtShapeKeys.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/kinematics/KtDenavitHartenberg.h"

KtManipulatorSystem::KtManipulatorSystem(const KtManipulatorSystem& other)
    : KtXmlPersistent(other),
      environment_(other.environment_),
      manipulators_(other.manipulators_),
      linkInteractionsVector_(other.linkInteractionsVector_),
      collisionExclusionMap_(other.collisionExclusionMap_),
      manipulatorAttachmentMap_(other.manipulatorAttachmentMap_),
      collisionDetectionPrecisionLevel_(other.collisionDetectionPrecisionLevel_) {
  mapAll();
}

KtManipulatorSystem& KtManipulatorSystem::operator=(const KtManipulatorSystem& other) {
  if (this == &other) return *this;
  KtXmlPersistent::operator=(other);
  environment_ = other.environment_;
  manipulators_ = other.manipulators_;
  linkInteractionsVector_ = other.linkInteractionsVector_;
  collisionExclusionMap_ = other.collisionExclusionMap_;
  manipulatorAttachmentMap_ = other.manipulatorAttachmentMap_;
  collisionDetectionPrecisionLevel_ = other.collisionDetectionPrecisionLevel_;
  mapAll();
  return *this;
}

bool KtManipulatorSystem::read(KtXmlReader& reader) {
  const bool good = KtXmlPersistent::read(reader);
  mapManipulators();
  computeCollisionDetectionPrecisionLevel();
  collisionExclusionMap_.buildMapFromSystem(*this);
  return good;
}

void KtManipulatorSystem::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtManip::KtEnvironmentToken, &environment_);
  registerComponent(KtManip::KtManipulatorsToken, &manipulators_);
  registerComponent(KtManip::KtLinkInteractionsVectorToken, &linkInteractionsVector_);
  registerComponent(KtManip::KtSystemCollisionExclusionMapToken, &collisionExclusionMap_);
  registerComponent(KtManip::KtManipulatorAttachmentMapToken, &manipulatorAttachmentMap_);
}

bool KtManipulatorSystem::operator==(const KtManipulatorSystem& other) const {
  return KtXmlCompoundType::operator==(other) && manipulators_ == other.manipulators_ &&
         environment_ == other.environment_ &&
         linkInteractionsVector_ == other.linkInteractionsVector_ &&
         collisionExclusionMap_ == other.collisionExclusionMap_ &&
         manipulatorAttachmentMap_ == other.manipulatorAttachmentMap_ &&
         collisionDetectionPrecisionLevel_ == other.collisionDetectionPrecisionLevel_;
}

void KtManipulatorSystem::mapAll() {
  mapManipulators();
  collisionExclusionMap_.buildMapFromSystem(*this);
}

void KtManipulatorSystem::mapManipulators() {
  for (KtU32 i = 0; i < manipulators_.size(); ++i) {
    manipulators_[i].setManipulatorIndex(i);
    manipulators_[i].configureManipulatorReference(manipulators_);
  }
}

// Manipulators

const KtXmlVectorType<KtIndividualManipulator>& KtManipulatorSystem::manipulators() const {
  return manipulators_;
}

KtU32 KtManipulatorSystem::numberOfManipulators() const {
  return manipulators_.size();
}

const KtIndividualManipulator* KtManipulatorSystem::manipulatorByIdentifier(
    const std::string& label) const {
  for (const KtIndividualManipulator& manipulator : manipulators_.elements()) {
    if (manipulator.label() == label) return &manipulator;
  }
  return nullptr;
}

void KtManipulatorSystem::setManipulators(const ManipulatorVector& manipulators) {
  manipulators_ = manipulators;
  mapAll();
}

void KtManipulatorSystem::addManipulator(const KtIndividualManipulator& manipulator) {
  manipulators_.pushBack(manipulator);
  mapAll();
}

void KtManipulatorSystem::setFromIndividualManipulator(const KtIndividualManipulator& manipulator) {
  // Build the new list first: the manipulator may be in the old one.
  manipulators_ = ManipulatorVector(1, manipulator);
  linkInteractionsVector_.clear();
  mapAll();
}

bool KtManipulatorSystem::exchangeManipulator(KtU32 index,
                                              const KtIndividualManipulator& manipulator) {
  if (index >= manipulators_.size() || !aboutToModifyManipulator(index)) return false;
  manipulators_[index] = manipulator;
  mapAll();
  return true;
}

bool KtManipulatorSystem::exchangeManipulator(const std::string& label,
                                              const KtIndividualManipulator& manipulator) {
  const KtIndividualManipulator* const old = manipulatorByIdentifier(label);
  if (old == nullptr) return false;
  const KtU32 index = old->manipulatorIndex();
  if (!aboutToModifyManipulator(label)) return false;
  manipulators_[index] = manipulator;
  mapAll();
  return true;
}

KtU32 KtManipulatorSystem::deleteManipulator(const std::string& label) {
  const KtIndividualManipulator* const manipulator = manipulatorByIdentifier(label);
  if (manipulator == nullptr) return ktUnmappedIndex;
  const KtU32 index = manipulator->manipulatorIndex();
  if (!aboutToModifyManipulator(label)) return index;
  manipulators_.erase(index);
  mapAll();
  detachWithDependents(index);
  return index;
}

bool KtManipulatorSystem::deleteManipulator(KtU32 index) {
  if (index >= manipulators_.size()) return false;
  if (!aboutToModifyManipulator(index)) return true;
  manipulators_.erase(index);
  mapAll();
  detachWithDependents(0);
  return true;
}

void KtManipulatorSystem::detachWithDependents(KtU32 index) {
  manipulatorAttachmentMap_.removeManipulatorAttachment(index);
  for (const KtU32 dependent : manipulatorAttachmentMap_.dependentManipulators(index)) {
    manipulatorAttachmentMap_.removeManipulatorAttachment(dependent);
  }
}

bool KtManipulatorSystem::mergeWith(const KtManipulatorSystem& other) {
  const KtU32 base = manipulators_.size();
  const KtU32 count = other.numberOfManipulators();
  manipulators_.append(other.manipulators_);
  mapAll();
  KtU32 parent = 0;
  KtString label;
  KtCoordinateSystemTransformation offset;
  for (KtU32 i = 0; i < count; ++i) {
    if (other.manipulatorAttachmentMap_.getDependentManipulatorInfo(i, parent, label, offset)) {
      manipulatorAttachmentMap_.attachManipulator(base + i, base + parent, label, offset);
    }
  }
  return true;
}

// Environment and interactions

const KtSystemEnvironment& KtManipulatorSystem::environment() const {
  return environment_;
}

void KtManipulatorSystem::setEnvironment(const KtSystemEnvironment& environment) {
  environment_ = environment;
}

const KtLinkInteractionsVector& KtManipulatorSystem::linkInteractionsVector() const {
  return linkInteractionsVector_;
}

void KtManipulatorSystem::setLinkInteractionsVector(const KtLinkInteractionsVector& interactions) {
  linkInteractionsVector_ = interactions;
  computeCollisionDetectionPrecisionLevel();
}

const KtSystemCollisionExclusionMap& KtManipulatorSystem::collisionExclusionMap() const {
  return collisionExclusionMap_;
}

void KtManipulatorSystem::setCollisionExclusionMap(const KtSystemCollisionExclusionMap& map) {
  collisionExclusionMap_ = map;
  collisionExclusionMap_.buildMapFromSystem(*this);
}

bool KtManipulatorSystem::canCollide(KtU32 manipulator1, KtU32 link1, KtU32 manipulator2,
                                     KtU32 link2) const {
  return !collisionExclusionMap_.isLinkCollisionCandidateExcluded(manipulator1, link1, manipulator2,
                                                                  link2);
}

const KtManipulatorAttachmentMap& KtManipulatorSystem::manipulatorAttachmentMap() const {
  return manipulatorAttachmentMap_;
}

void KtManipulatorSystem::setManipulatorAttachmentMap(const KtManipulatorAttachmentMap& map) {
  manipulatorAttachmentMap_ = map;
  KtU32 parent = 0;
  KtString label;
  KtCoordinateSystemTransformation offset;
  for (KtU32 i = 0; i < manipulators_.size(); ++i) {
    const bool stands =
        manipulatorAttachmentMap_.getDependentManipulatorInfo(i, parent, label, offset) &&
        parent < manipulators_.size() && manipulators_[parent].linkByIdentifier(label) != nullptr;
    if (!stands) manipulatorAttachmentMap_.removeManipulatorAttachment(i);
  }
}

KtU32 KtManipulatorSystem::collisionDetectionPrecisionLevel() const {
  return collisionDetectionPrecisionLevel_;
}

// Changes of one manipulator

bool KtManipulatorSystem::setSelfCollisionMap(const KtManipulatorSelfCollisionLinkMap& map,
                                              const KtU32& index) {
  if (index >= manipulators_.size()) return false;
  manipulators_[index].setSelfCollisionLinkMap(map);
  return true;
}

bool KtManipulatorSystem::setSurfacesByKey(const KtShapeStateCacheKey& key,
                                           const KtSurfaceMap& surfaces) {
  const KtU32 index = key.manipulatorIndex();
  return index < numberOfManipulators() &&
         manipulators_[index].setSurfacesByIDs(key.linkIndex(), key.shapeIndex(), surfaces);
}

bool KtManipulatorSystem::setJointLimit(KtU32 index, const std::string& label, bool lower,
                                        double value) {
  if (index >= manipulators_.size()) {
    Kt::Print::instance().write(
        Kt::Print::kError, "KtManipulatorSystem::setJointLimit() - invalid manipulator index.\n");
    return false;
  }
  aboutToModifyManipulator(index);
  return manipulators_[index].setJointLimit(label, lower, value);
}

bool KtManipulatorSystem::replaceLinkProperties(KtU32 index, const std::string& label,
                                                const KtManipulatorLink& link, bool withShape) {
  if (index >= manipulators_.size()) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtManipulatorSystem::replaceLinkProperties() - invalid manipulator index.\n");
    return false;
  }
  aboutToModifyManipulator(index);
  return manipulators_[index].replaceLinkProperties(label, link, withShape);
}

void KtManipulatorSystem::truncateValues(const double& precision) {
  for (KtIndividualManipulator& manipulator : manipulators_.elements()) {
    manipulator.truncateValues(precision);
  }
}

// Queries over all manipulators

KtU32 KtManipulatorSystem::jointDof() const {
  KtU32 sum = 0;
  for (const auto& manipulator : manipulators_.elements()) sum += manipulator.jointDof();
  return sum;
}

KtU32 KtManipulatorSystem::jointDof(const KtU32& index) const {
  if (index < manipulators_.size()) return manipulators_[index].jointDof();
  Kt::Print::instance().write(Kt::Print::kError,
                              "KtManipulatorSystem::jointDof-->manipulator at index (%d) "
                              "undefined\n",
                              static_cast<int>(index));
  return 0;
}

KtU32 KtManipulatorSystem::jointAndBaseDof() const {
  KtU32 sum = 0;
  for (const auto& manipulator : manipulators_.elements()) {
    sum += manipulator.jointAndBaseDof();
  }
  return sum;
}

void KtManipulatorSystem::getNumberOfShapes(
    std::vector<std::vector<std::vector<int>>>& counters) const {
  counters.resize(manipulators_.size());
  for (KtU32 i = 0; i < manipulators_.size(); ++i) {
    const KtIndividualManipulator& manipulator = manipulators_[i];
    counters[i].resize(manipulator.jointDof() + std::size_t{1});
    for (KtU32 row = 0; row < counters[i].size(); ++row) {
      const KtManipulatorLink* const link =
          manipulator.linkByIndex(row == 0 ? ktBaseIndex : row - 1);
      if (link != nullptr) counters[i][row].resize(link->numberOfShapes());
    }
  }
}

bool KtManipulatorSystem::getCraigDhParameters(std::vector<std::vector<double>>& parameters) const {
  parameters.clear();
  for (const KtIndividualManipulator& original : manipulators_.elements()) {
    // A copy has only links of its own, and renumbers them.
    const KtIndividualManipulator manipulator(original);
    for (KtU32 i = 0; i < manipulator.jointDof(); ++i) {
      std::vector<double>& row = parameters.emplace_back();
      const KtManipulatorLink* const link = manipulator.linkByIndex(i);
      if (link == nullptr) continue;
      const auto* const dh =
          dynamic_cast<const KtDenavitHartenberg*>(link->linkKinematicsContainer().topElement());
      if (dh == nullptr) continue;
      const bool isCraig =
          dh->dhType() == KtDenavitHartenberg::kCraig ||
          (dh->dhType() == KtDenavitHartenberg::kGeneralCraig &&
           dh->precursor().approxEq(KtCoordinateSystemTransformation::nullObject(), 1e-10));
      if (isCraig) row = {dh->dhA(), dh->dhAlpha(), dh->dhD()};
    }
  }
  return true;
}
