// Display data of a stated system: changed and selected shapes, and transparency.
#include <algorithm>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtStatedSystem.h"

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
