// The shapes of a link and their surfaces.
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/shape/KtExtentUnion.h"
#include "ktManipulator/foundation/shape/KtShapeUnion.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

namespace {

void report(const char* message) {
  Kt::Print::instance().write(Kt::Print::kError, "%s", message);
}

// The tables of a link have const pointers, but the link owns the shapes.
KtShape* own(const KtShape* shape) {
  return const_cast<KtShape*>(shape);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

}  // namespace

const KtShapeContainer& KtManipulatorLink::shapeContainer() const {
  return referenceLink_ == this ? memberShapeContainer_ : referenceLink_->shapeContainer();
}

const KtShapeContainer& KtManipulatorLink::memberShapeContainer() const {
  return memberShapeContainer_;
}

void KtManipulatorLink::setShapeContainer(const KtShapeContainer& container) {
  memberShapeContainer_ = container;
  forgetShapeTables();
  mapShapes();
}

void KtManipulatorLink::setShape(const KtShape& shape) {
  memberShapeContainer_.setTopElement(shape);
  forgetShapeTables();
  mapShapes();
}

void KtManipulatorLink::setFromShape(const KtShape& shape) {
  memberShapeContainer_.setTopElement(shape);
  forgetShapeTables();
  setLinkKinematicsContainer(KtLinkKinematicsContainer());
  setJointActuator(KtJointActuator::defaultObject());
  setLabel("shape");
  setMassProperties(KtRigidBodyMassProperties::defaultObject());
}

void KtManipulatorLink::setFromShapeContainer(const KtShapeContainer& container) {
  if (const KtShape* shape = container.topElement(); shape != nullptr) setFromShape(*shape);
}

bool KtManipulatorLink::mapShapes() {
  if (linkReferenceDescription_.isShapeReferenced()) return true;
  forgetShapeTables();
  KtU32 count = 0;
  if (KtShape* shape = memberShapeContainer_.topElement(); shape != nullptr) {
    shape->mapShapes(count, this, shapeTable_, shapeVector_);
    KtU32 level = 0;
    shape->mapBoundingVolumeLevels(level);
  }
  setNumShapes(count);
  return true;
}

void KtManipulatorLink::forgetShapeTables() {
  shapeTable_.clear();
  shapeVector_.clear();
}

void KtManipulatorLink::setNumShapes(KtU32 count) {
  numShapes_ = count;
}

KtU32 KtManipulatorLink::numShapes() const {
  return referenceLink_ == this ? numShapes_ : referenceLink_->numShapes();
}

KtU32 KtManipulatorLink::numberOfShapes() const {
  KtU32 count = 0;
  for (const KtShape* shape = topShape(); shape != nullptr; shape = shape->outerBoundingVolume()) {
    count += shape->numberOfShapes();
  }
  return count;
}

const KtShape* KtManipulatorLink::shapeByIndex(const KtU32& index) const {
  if (referenceLink_ != this) return referenceLink_->shapeByIndex(index);
  return index < shapeVector_.size() ? shapeVector_[index] : nullptr;
}

const KtShape* KtManipulatorLink::shapeByIdentifier(const std::string& identifier) const {
  if (referenceLink_ != this) return referenceLink_->shapeByIdentifier(identifier);
  const auto found = shapeTable_.find(identifier);
  return found != shapeTable_.end() ? found->second : nullptr;
}

KtU32 KtManipulatorLink::numShapesInPhysicalRepresentation() const {
  const KtShape* shape = topShape();
  if (shape == nullptr) return 0;
  if (shape->shapeType() != KtShape::kUnion) return 1;
  const auto* whole = dynamic_cast<const KtBaseUnion*>(shape);
  return whole != nullptr ? whole->numberOfMembers() : 0;
}

const KtShape* KtManipulatorLink::getNthNonBoundingShape(KtU32 n) const {
  const KtShape* shape = topShape();
  if (shape == nullptr || shape->shapeType() != KtShape::kUnion) return shape;
  const auto* whole = dynamic_cast<const KtShapeUnion*>(shape);
  return whole != nullptr ? whole->member(n) : nullptr;
}

const KtBasePhysicalExtent& KtManipulatorLink::physicalExtent() const {
  if (const KtShape* shape = topShape(); shape != nullptr) return shape->physicalExtent();
  report("KtManipulatorLink::physicalExtent()-->empty shape container\n");
  return m_theDummyPhysicalExtent;
}

void KtManipulatorLink::boundingVolumes(KtShape::ShapeVector& volumes, const KtU32& level) const {
  const KtShape* shape = memberShapeContainer_.topElement();
  if (shape != nullptr) shape->boundingVolumes(volumes, level);
}

// Bounding volumes are numbered, too, so adding or removing one invalidates the tables.
bool KtManipulatorLink::addBoundingVolume(KtShape::KtShapeValues type) {
  const bool added = memberShapeContainer_.addBoundingVolume(type);
  if (added) mapShapes();
  return added;
}

void KtManipulatorLink::deleteBoundingVolumes() {
  forgetShapeTables();  // mapShapes doesn't do it if the link references other shapes
  memberShapeContainer_.deleteBoundingVolumes();
  mapShapes();
}

void KtManipulatorLink::deleteAllBoundingVolumes() {
  for (KtManipulatorLink& child : childLinks_.elements()) child.deleteAllBoundingVolumes();
  deleteBoundingVolumes();
}

bool KtManipulatorLink::setSurfacesByShapeID(const KtU32& shapeIndex,
                                             const KtSurfaceMap& surfaces) {
  if (referenceLink_ != this) return referenceLink_->setSurfacesByShapeID(shapeIndex, surfaces);
  if (shapeIndex >= shapeVector_.size()) return false;
  own(shapeVector_[shapeIndex])->setSurfaces(surfaces);
  return true;
}

bool KtManipulatorLink::setSurfaces(const std::string& label, const KtU32& shapeIndex,
                                    const KtSurfaceMap& surfaces) {
  if (label == this->label()) return setSurfacesByShapeID(shapeIndex, surfaces);
  for (KtManipulatorLink& child : childLinks_.elements()) {
    if (child.setSurfaces(label, shapeIndex, surfaces)) return true;
  }
  return false;
}

bool KtManipulatorLink::setSurfaceProperties(const std::string& surfaceLabel,
                                             const KtDataMap& data) {
  bool taken = false;
  for (const KtShape* shape : shapeVector_) {
    taken = own(shape)->setSurfaceProperties(surfaceLabel, data) || taken;
  }
  return taken;
}

bool KtManipulatorLink::lookup(const std::string& label, const KtDataMap*& data) const {
  const KtShape* shape = topShape();
  if (shape == nullptr) return false;
  if (shape->lookup(label, data)) return true;
  return manipulator_ != nullptr && manipulator_->lookup(label, data);
}

void KtManipulatorLink::truncateValues(const double& precision) {
  for (KtU32 i = 0; i < numShapesInPhysicalRepresentation(); ++i) {
    auto* extent = dynamic_cast<KtBasePhysicalExtent*>(own(getNthNonBoundingShape(i)));
    if (extent != nullptr) extent->truncateValues(precision);
  }
  // Bounding volumes were recomputed, maybe for the shapes of a referenced link.
  KtManipulatorLink* owner = this;
  while (owner->referenceLink_ != owner) owner = owner->referenceLink_;
  owner->forgetShapeTables();
  owner->mapShapes();
}

void KtManipulatorLink::optimizeForRendering() {}

void KtManipulatorLink::recursiveOptimizeForRendering() {
  optimizeForRendering();
  for (KtManipulatorLink& child : childLinks_.elements()) {
    child.recursiveOptimizeForRendering();
  }
}
