#include <algorithm>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtStatedSystem.h"

// Through the system

const KtSystemEnvironment& KtStatedSystem::environment() const {
  return system().environment();
}

void KtStatedSystem::rightSizeState(KtManipulatorSystemState& state) const {
  system().rightSizeState(state);
}

KtSphere KtStatedSystem::absoluteBoundingSphere() const {
  return system().absoluteBoundingSphere(state_);
}

KtU32 KtStatedSystem::jointDof() const {
  return system().jointDof();
}

void KtStatedSystem::setEnvironment(const KtSystemEnvironment& environment) {
  aboutToModifySystem();
  system_->setEnvironment(environment);
}

bool KtStatedSystem::findAndConvertToReferences() {
  aboutToModifySystem();
  return system_->findAndConvertToReferences();
}

bool KtStatedSystem::setJointLimit(KtU32 index, const std::string& label, bool lower,
                                   double value) {
  aboutToModifySystem();
  return system_->setJointLimit(index, label, lower, value);
}

bool KtStatedSystem::replaceLinkProperties(KtU32 index, const std::string& label,
                                           const KtManipulatorLink& link, bool withShape) {
  aboutToModifySystem();
  return system_->replaceLinkProperties(index, label, link, withShape);
}

bool KtStatedSystem::setSurfacesByKey(const KtShapeStateCacheKey& key,
                                      const KtSurfaceMap& surfaces) {
  aboutToModifySystem();
  return system_->setSurfacesByKey(key, surfaces);
}

// Through the system, for all that share it: programs count on seeing these in every copy.

void KtStatedSystem::setCollisionExclusionMap(const KtSystemCollisionExclusionMap& map) {
  if (system_ != nullptr) system_->setCollisionExclusionMap(map);
}

void KtStatedSystem::setManipulatorAttachmentMap(const KtManipulatorAttachmentMap& map) {
  if (system_ != nullptr) system_->setManipulatorAttachmentMap(map);
}

void KtStatedSystem::truncateValues(const double& precision) {
  if (system_ != nullptr) system_->truncateValues(precision);
}

bool KtStatedSystem::setSelfCollisionMap(const KtManipulatorSelfCollisionLinkMap& map,
                                         const KtU32& index) {
  return system_ != nullptr && system_->setSelfCollisionMap(map, index);
}

// Lookups

bool KtStatedSystem::lookupManipulatorIndexFromLabel(const std::string& label, KtU32& index) const {
  const auto& all = system().manipulators().elements();
  const auto found = std::ranges::find_if(all, [&](const auto& m) { return m.label() == label; });
  if (found == all.end()) return false;
  index = static_cast<KtU32>(found - all.begin());
  return true;
}

const KtShape* KtStatedSystem::shapeByKey(const KtShapeStateCacheKey& key) const {
  const KtManipulatorSystem& all = system();
  if (key.manipulatorIndex() >= all.numberOfManipulators()) return nullptr;
  const KtManipulatorLink* const link =
      all.manipulators()[key.manipulatorIndex()].linkByIndex(key.linkIndex());
  return link != nullptr ? link->shapeByIndex(key.shapeIndex()) : nullptr;
}

// Display

const KtStatedSystem::ShapeKeyVector& KtStatedSystem::modifiedShapeKeyVec() const {
  return modifiedShapeKeyVec_;
}

KtStatedSystem::ShapeKeyVector& KtStatedSystem::modifiedShapeKeyVec() {
  return modifiedShapeKeyVec_;
}

void KtStatedSystem::setModifiedShapeKeyVec(const ShapeKeyVector& keys) {
  modifiedShapeKeyVec_ = keys;
}

void KtStatedSystem::addModifiedShapeKeyVec(const KtShapeStateCacheKey& key) {
  if (key == KtShapeStateCacheKey::nullObject()) return;
  if (std::ranges::find(modifiedShapeKeyVec_, key) != modifiedShapeKeyVec_.end()) return;
  modifiedShapeKeyVec_.push_back(key);
}

const KtStatedSystem::ShapeKeyVector& KtStatedSystem::selectedShapeKeyVector() const {
  return selectedShapeKeyVector_;
}

void KtStatedSystem::setSelectedShapeKeyVector(const ShapeKeyVector& keys) {
  selectedShapeKeyVector_ = keys;
}

bool KtStatedSystem::isTransparentDisplay() const {
  return isTransparentDisplay_;
}

void KtStatedSystem::setIsTransparentDisplay(bool value) const {
  isTransparentDisplay_ = value;
}

double KtStatedSystem::transparencyAlpha() const {
  return transparencyAlpha_;
}

void KtStatedSystem::setTransparencyAlpha(double alpha) {
  transparencyAlpha_ = alpha;
}

bool KtStatedSystem::isSelectionDataChanged() const {
  return isSelectionDataChanged_;
}

void KtStatedSystem::setIsSelectionDataChanged(bool value) const {
  isSelectionDataChanged_ = value;
}

void KtStatedSystem::changeAmbientAlpha(const KtShapeStateCacheKey& key, const double& alpha) {
  changeAlpha("ktAmbientAlpha", key, alpha);
}

void KtStatedSystem::changeDiffuseAlpha(const KtShapeStateCacheKey& key, const double& alpha) {
  changeAlpha("ktDiffuseAlpha", key, alpha);
}

void KtStatedSystem::changeSpecularAlpha(const KtShapeStateCacheKey& key, const double& alpha) {
  changeAlpha("ktSpecularAlpha", key, alpha);
}

void KtStatedSystem::changeEmissionAlpha(const KtShapeStateCacheKey& key, const double& alpha) {
  changeAlpha("ktEmissionAlpha", key, alpha);
}

void KtStatedSystem::changeAlpha(const char* property, const KtShapeStateCacheKey& key,
                                 double alpha) {
  const KtShape* const shape = shapeByKey(key);
  if (shape == nullptr) return;
  const std::string surface = "0";
  KtSurfaceMap surfaces = shape->surfaces();
  KtDataMap data;
  surfaces.lookup(surface, data);
  double value = 0.0;
  data.lookup(property, value);
  Kt::Print& log = Kt::Print::instance();
  log.write(Kt::Print::kError, "\n%s: %f\n", property, value);
  data.add(property, alpha);
  data.lookup(property, value);
  log.write(Kt::Print::kError, "\nNew Alpha: %f\n", value);
  surfaces.add(surface, data);
  setSurfacesByKey(key, surfaces);
}
