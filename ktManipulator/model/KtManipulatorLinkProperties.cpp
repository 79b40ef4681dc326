// What a link physically is: shapes, mass, limits, named points and frames, and how they scale and
// move.
#include <algorithm>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/function/KtLinearMultivariableConstraint.h"
#include "ktManipulator/foundation/shape/KtExtentUnion.h"
#include "ktManipulator/foundation/shape/KtShapeUnion.h"
#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/model/KtManipulatorSystem.h"
#include "ktManipulator/model/KtStatedSystem.h"

namespace {

void report(const char* message) {
  Kt::Print::instance().write(Kt::Print::kError, "%s", message);
}

// A link's tables give shapes to be read; the shapes are the link's own all the same.
KtShape* own(const KtShape* shape) {
  return const_cast<KtShape*>(shape);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

}  // namespace

// Shapes

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

// The volumes that go, or come, are numbered: the tables must not outlive them.
bool KtManipulatorLink::addBoundingVolume(KtShape::KtShapeValues type) {
  const bool added = memberShapeContainer_.addBoundingVolume(type);
  if (added) mapShapes();
  return added;
}

void KtManipulatorLink::deleteBoundingVolumes() {
  forgetShapeTables();  // which mapShapes doesn't where the link references other shapes
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
  // Bounding volumes were fitted anew, to shapes that may be those of a referenced link.
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

// Mass

const KtRigidBodyMassProperties& KtManipulatorLink::baseMassProperties() const {
  return baseMassProperties_;
}

void KtManipulatorLink::setBaseMassProperties(const KtRigidBodyMassProperties& properties) {
  baseMassProperties_ = properties;
  updateMassProperties();
  updateDHMassProperties();
}

void KtManipulatorLink::setMassProperties(const KtRigidBodyMassProperties& properties) {
  baseMassProperties_ = properties;
  clearMassPropertiesMap();
}

const KtManipulatorLink::MassMap& KtManipulatorLink::massPropertiesMap() const {
  return massPropertiesMap_;
}

void KtManipulatorLink::setMassPropertiesMap(const MassMap& map) {
  massPropertiesMap_ = map;
  updateMassProperties();
  updateDHMassProperties();
}

void KtManipulatorLink::clearMassPropertiesMap() {
  massPropertiesMap_ = MassMap();
  totalMassProperties_ = baseMassProperties_;
  updateDHMassProperties();
}

void KtManipulatorLink::addMassProperties(const std::string& name,
                                          const KtRigidBodyMassProperties& properties) {
  massPropertiesMap_.add(name, properties);
  updateMassProperties();
  updateDHMassProperties();
}

bool KtManipulatorLink::deleteMassProperties(const std::string& name) {
  if (!massPropertiesMap_.erase(name)) return false;
  updateMassProperties();
  updateDHMassProperties();
  return true;
}

void KtManipulatorLink::updateMassProperties() {
  totalMassProperties_ = baseMassProperties_;
  for (const auto& [name, properties] : massPropertiesMap_.mapContainer()) {
    totalMassProperties_ += properties;
  }
}

void KtManipulatorLink::updateDHMassProperties() {
  massPropertiesInDHFrame_ = totalMassProperties_;
  massPropertiesInDHFrame_.transformBy(primaryFrame());
}

bool KtManipulatorLink::attachments(const KtStatedSystemStruct* asker) const {
  if (asker == nullptr || asker->statedSystem == nullptr) return false;
  const KtManipulatorAttachmentMap& map = asker->statedSystem->system().manipulatorAttachmentMap();
  if (map.mapContainer().empty()) return false;
  Scratch& s = scratch();
  return map.getDependentManipulatorsAndOffsets(asker->manipulatorIndex, label(), s.dependents,
                                                s.offsets);
}

const KtRigidBodyMassProperties& KtManipulatorLink::massProperties(
    const KtStatedSystemStruct* asker) const {
  if (!attachments(asker)) return totalMassProperties_;
  Scratch& s = scratch();
  s.massProperties = totalMassProperties_;
  const auto& manipulators = asker->statedSystem->system().manipulators();
  for (std::size_t i = 0; i < s.dependents.size(); ++i) {
    if (s.dependents[i] >= manipulators.size()) continue;
    KtRigidBodyMassProperties attached = manipulators[s.dependents[i]].massProperties(nullptr);
    attached.transformBy(s.offsets[static_cast<KtU32>(i)]);
    s.massProperties += attached;
  }
  return s.massProperties;
}

const KtRigidBodyMassProperties& KtManipulatorLink::massPropertiesInDHFrame(
    const KtStatedSystemStruct* asker) const {
  if (!attachments(asker)) return massPropertiesInDHFrame_;
  Scratch& s = scratch();
  s.massPropertiesInDHFrame = massPropertiesInDHFrame_;
  const auto& manipulators = asker->statedSystem->system().manipulators();
  for (std::size_t i = 0; i < s.dependents.size(); ++i) {
    if (s.dependents[i] >= manipulators.size()) continue;
    KtRigidBodyMassProperties attached = manipulators[s.dependents[i]].massProperties(nullptr);
    attached.transformBy(primaryFrame() * s.offsets[static_cast<KtU32>(i)]);
    s.massPropertiesInDHFrame += attached;
  }
  return s.massPropertiesInDHFrame;
}

void KtManipulatorLink::estimateMassProperties() {
  constexpr double kDensity = 2700.0;  // of aluminium
  if (const KtShape* shape = topShape(); shape != nullptr) {
    const KtCapsule capsule = shape->boundingCapsule();
    setMassProperties(
        KtRigidBodyMassProperties::uniformSolidCapsule(kDensity * capsule.volume(), capsule));
  } else {
    report("KtManipulatorLink::estimateMassProperties-->Shape container is empty\n");
    setMassProperties(KtRigidBodyMassProperties::defaultObject());
  }
}

bool KtManipulatorLink::replaceMassProperties(const std::string& label,
                                              const KtRigidBodyMassProperties& properties) {
  if (label == this->label()) {
    setMassProperties(properties);
    return false;
  }
  for (KtManipulatorLink& child : childLinks_.elements()) {
    if (child.replaceMassProperties(label, properties)) return true;
  }
  return false;
}

// Joint

const KtJointActuator& KtManipulatorLink::jointActuator() const {
  return jointActuator_;
}

void KtManipulatorLink::setJointActuator(const KtJointActuator& actuator) {
  jointActuator_ = actuator;
  jointActuator_.setManipulatorLink(this);  // the assignment took over the other's
  updateDefaultLimitConstraints();
}

bool KtManipulatorLink::replaceJointActuator(const std::string& label,
                                             const KtJointActuator& actuator) {
  if (label == this->label()) {
    setJointActuator(actuator);
    return false;
  }
  for (KtManipulatorLink& child : childLinks_.elements()) {
    if (child.replaceJointActuator(label, actuator)) return true;
  }
  return false;
}

bool KtManipulatorLink::setJointLimit(const std::string& label, bool lower, double value) {
  if (label == this->label()) {
    if (lower) {
      jointActuator_.setLowerLimit(value);
    } else {
      jointActuator_.setUpperLimit(value);
    }
    updateDefaultLimitConstraints();
    return true;
  }
  for (KtManipulatorLink& child : childLinks_.elements()) {
    if (child.setJointLimit(label, lower, value)) return true;
  }
  return false;
}

void KtManipulatorLink::makeLimitConstraint(LimitConstraint& limit, double constant,
                                            double coefficient) const {
  KtLinearMultivariableConstraint constraint;
  constraint.setConstant(constant);
  const KtU32 index = linkIndex();
  if (index < KtLinearMultivariableConstraint::kMostVariables) {
    constraint.setCoefficient(index, coefficient);
  }
  limit.constraint.setConstraint(constraint);
  limit.made = true;
}

const KtBaseStateConstraint& KtManipulatorLink::limitConstraint(
    const KtStateConstraintContainer& container, LimitConstraint& limit, double constant,
    double coefficient) const {
  if (container.topElement() != nullptr) return *container.topElement();
  if (!limit.made) makeLimitConstraint(limit, constant, coefficient);
  return limit.constraint;
}

const KtBaseStateConstraint& KtManipulatorLink::upperLimitConstraint() const {
  return limitConstraint(upperLimitContainer_, defaultUpperLimit_.require(),
                         jointActuator_.upperLimit(), -1.0);
}

const KtBaseStateConstraint& KtManipulatorLink::lowerLimitConstraint() const {
  return limitConstraint(lowerLimitContainer_, defaultLowerLimit_.require(),
                         -jointActuator_.lowerLimit(), 1.0);
}

void KtManipulatorLink::setUpperLimitConstraint(const KtBaseStateConstraint& constraint) {
  upperLimitContainer_.setTopElement(constraint);
}

void KtManipulatorLink::setLowerLimitConstraint(const KtBaseStateConstraint& constraint) {
  lowerLimitContainer_.setTopElement(constraint);
}

// Those that were never asked for are made when they are.
void KtManipulatorLink::updateDefaultLimitConstraints() {
  LimitConstraint* upper = defaultUpperLimit_.get();
  if (upper != nullptr && upper->made && upperLimitContainer_.topElement() == nullptr) {
    makeLimitConstraint(*upper, jointActuator_.upperLimit(), -1.0);
  }
  LimitConstraint* lower = defaultLowerLimit_.get();
  if (lower != nullptr && lower->made && lowerLimitContainer_.topElement() == nullptr) {
    makeLimitConstraint(*lower, -jointActuator_.lowerLimit(), 1.0);
  }
}

const KtSpringProperties& KtManipulatorLink::springProperties() const {
  return springProperties_;
}
void KtManipulatorLink::setSpringProperties(const KtSpringProperties& properties) {
  springProperties_ = properties;
}
const KtDamperProperties& KtManipulatorLink::damperProperties() const {
  return damperProperties_;
}
void KtManipulatorLink::setDamperProperties(const KtDamperProperties& properties) {
  damperProperties_ = properties;
}

bool KtManipulatorLink::isConstrained() const {
  return isConstrained_;
}
void KtManipulatorLink::setIsConstrained(bool value) {
  isConstrained_ = value;
}

// Named points and frames

const KtManipulatorLink::PointMap& KtManipulatorLink::namedPoints() const {
  return namedPoints_;
}
void KtManipulatorLink::setNamedPoints(const PointMap& points) {
  namedPoints_ = points;
}

bool KtManipulatorLink::lookupNamedPoint(const std::string& name, KtVector& point) const {
  const KtXmlVector* found = namedPoints_.lookupPointer(name);
  if (found != nullptr) point = *found;
  return found != nullptr;
}

void KtManipulatorLink::addNamedPoint(const std::string& name, const KtVector& point) {
  if (namedPoints_.lookupPointer(name) != nullptr) {
    report("KtManipulatorLink::addNamedPoint point already exists\n");
  } else {
    namedPoints_.add(name, point);
  }
}

const KtManipulatorLink::FrameMap& KtManipulatorLink::namedFrames() const {
  return namedFrames_;
}
void KtManipulatorLink::setNamedFrames(const FrameMap& frames) {
  namedFrames_ = frames;
}

bool KtManipulatorLink::lookupNamedFrame(const std::string& name,
                                         KtCoordinateSystemTransformation& frame) const {
  const KtCoordinateSystemTransformation* found = namedFrames_.lookupPointer(name);
  if (found != nullptr) frame = *found;
  return found != nullptr;
}

void KtManipulatorLink::addNamedFrame(const std::string& name,
                                      const KtCoordinateSystemTransformation& frame) {
  if (namedFrames_.lookupPointer(name) != nullptr) {
    report("KtManipulatorLink::addNamedFrame frame already exists\n");
  } else {
    namedFrames_.add(name, frame);
  }
}

// Scaling, moving, replacing

void KtManipulatorLink::scaleBy(double factor) {
  scaleIndividualLinkBy(factor);
  for (KtManipulatorLink& child : childLinks_.elements()) child.scaleBy(factor);
}

// The total mass is left as it was, and so the mass in the DH frame is that one, moved.
void KtManipulatorLink::scaleIndividualLinkBy(double factor) {
  memberShapeContainer_.scaleBy(factor);
  baseMassProperties_.scaleBy(factor);
  KtCoordinateSystemTransformation frame = primaryFrame();
  frame.setTranslation(frame.translation() * factor);
  linkKinematicsContainer_.setPrimaryFrame(frame);
  updateDHMassProperties();
  linkKinematicsContainer_.scaleBy(factor);
  const double scalability = linkKinematicsContainer_.jointParameterScalability();
  if (scalability != 0.0) {
    jointActuator_.scaleBy(factor, factor * scalability + (1.0 - scalability));
    updateDefaultLimitConstraints();
  }
}

void KtManipulatorLink::transformLinkTreeBy(const KtCoordinateSystemTransformation& t) {
  linkKinematicsContainer_.transformBy(t);
}

void KtManipulatorLink::transformComponentsBy(KtCoordinateSystemTransformation t) {
  baseMassProperties_.transformBy(t);
  memberShapeContainer_.transformBy(t);
}

bool KtManipulatorLink::transformPrimaryFrame(const KtCoordinateSystemTransformation& frame) {
  // The total mass stays as it was, and so the mass in the DH frame is that one in the new frame
  // until updateMassProperties and updateDHMassProperties: programs rely on the order.
  transformComponentsBy(frame.inverse() * primaryFrame());
  setPrimaryFrame(frame);
  return true;
}

void KtManipulatorLink::copyLinkProperties(KtManipulatorLink& target) const {
  target.setLabel(label());
  target.setDamperProperties(damperProperties());
  target.setJointActuator(jointActuator());
  target.setLinkKinematicsContainer(linkKinematicsContainer());
  target.setMassProperties(massProperties(nullptr));
  target.setSpringProperties(springProperties());
  KtLinkReferenceDescription description = linkReferenceDescription();
  description.setIsShapeReferenced(false);
  target.setLinkReferenceDescription(description);
  target.setShapeContainer(shapeContainer());
}

bool KtManipulatorLink::replaceLinkProperties(const std::string& label,
                                              const KtManipulatorLink& source, bool withShape) {
  if (label != this->label()) {
    for (KtManipulatorLink& child : childLinks_.elements()) {
      if (child.replaceLinkProperties(label, source, withShape)) return true;
    }
    return false;
  }
  setDamperProperties(source.damperProperties());
  setJointActuator(source.jointActuator());
  setLinkKinematicsContainer(source.linkKinematicsContainer());
  setMassProperties(source.massProperties(nullptr));
  setSpringProperties(source.springProperties());
  setNamedPoints(source.namedPoints());
  setNamedFrames(source.namedFrames());
  upperLimitContainer_ = source.upperLimitContainer_;
  lowerLimitContainer_ = source.lowerLimitContainer_;
  // The default constraints are made for this link's own place in the state.
  updateDefaultLimitConstraints();
  if (!withShape) return true;
  // Found first: the source may be this link, or use its shapes.
  const KtShapeContainer& shapes = source.shapeContainer();
  linkReferenceDescription_.setIsShapeReferenced(false);
  referenceLink_ = this;
  setShapeContainer(shapes);
  return true;
}
