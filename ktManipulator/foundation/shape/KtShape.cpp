#include "ktManipulator/foundation/shape/KtShape.h"

#include <array>
#include <cmath>
#include <utility>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/shape/KtBoxShape.h"
#include "ktManipulator/foundation/shape/KtCapsuleShape.h"
#include "ktManipulator/foundation/shape/KtConvexPolyhedron.h"
#include "ktManipulator/foundation/shape/KtShapeContainer.h"
#include "ktManipulator/foundation/shape/KtSphereShape.h"
#include "ktManipulator/foundation/shape/algorithms/KtBoundingVolumeFit.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

KtVector KtConvexPart::support(const KtVector& direction) const {
  if (!isTriangle()) return shape_ != nullptr ? shape_->support(direction) : KtVector();
  const double d0 = corners_[0].dot(direction);
  const double d1 = corners_[1].dot(direction);
  const double d2 = corners_[2].dot(direction);
  return d0 >= d1 ? (d0 >= d2 ? corners_[0] : corners_[2]) : (d1 >= d2 ? corners_[1] : corners_[2]);
}

double KtConvexPart::margin() const {
  return isTriangle() || shape_ == nullptr ? 0.0 : shape_->margin();
}

KtShape::KtShape() : surfaceLabel_(std::string("metal")) {}
KtShape::~KtShape() = default;

KtShape::KtShape(const KtShape& other)
    : KtBaseExpressionTreeElement(other),
      identifier_(other.identifier_),
      surfaceLabel_(other.surfaceLabel_),
      surfaces_(other.surfaces_),
      takesContactForces_(other.takesContactForces_) {
  if (other.outerBoundingVolume() == nullptr) return;
  outer_ = std::make_unique<KtShapeContainer>(*other.outer_);
  linkOuter();
}

KtShape& KtShape::operator=(const KtShape& other) {
  if (this == &other) return *this;
  // The other may be a part of this shape, or this a part of the other: its volumes are copied
  // before anything changes, and a part lives on until the derived class has copied its members.
  std::unique_ptr<KtShape> volume;
  if (const KtShape* next = other.outerBoundingVolume()) {
    volume.reset(static_cast<KtShape*>(next->clone()));
  }
  const bool fromPart = holds(other);
  KtBaseExpressionTreeElement::operator=(other);
  identifier_ = other.identifier_;
  surfaceLabel_ = other.surfaceLabel_;
  surfaces_ = other.surfaces_;
  takesContactForces_ = other.takesContactForces_;
  if (fromPart) replaced_ = std::make_unique<KtShapeContainer>(std::move(*outer_));
  if (volume != nullptr || outer_ != nullptr) {
    outer().setAndDeleteTopElementPointer(volume.release());
  }
  linkOuter();
  return *this;
}

bool KtShape::holds(const KtShape& part) const {
  const KtShape* next = outerBoundingVolume();
  return next != nullptr && (next == &part || next->holds(part));
}

bool KtShape::operator==(const KtShape& other) const {
  const KtShape* mine = outerBoundingVolume();
  const KtShape* others = other.outerBoundingVolume();
  return identifier_ == other.identifier_ && surfaceLabel_ == other.surfaceLabel_ &&
         surfaces_ == other.surfaces_ && takesContactForces_ == other.takesContactForces_ &&
         (mine == nullptr || others == nullptr ? mine == others : mine->equality(others));
}

bool KtShape::read(KtXmlReader& reader) {
  const bool ok = KtBaseExpressionTreeElement::read(reader);
  linkOuter();
  return ok;
}

void KtShape::registerComponents() {
  KtBaseExpressionTreeElement::registerComponents();
  registerComponent(KtManip::KtIdentifierToken, &identifier_);
  registerComponent(KtGeom::KtSurfaceLabelToken, &surfaceLabel_);
  registerComponent(KtGeom::KtSurfacesToken, &surfaces_);
  registerComponent(KtGeom::KtTakesContactForcesToken, &takesContactForces_);
  registerComponent(KtGeom::KtBoundingVolumeToken, &outer());
}

// The holder stays once it is made: the component table points to it.
KtShapeContainer& KtShape::outer() const {
  if (outer_ == nullptr) outer_ = std::make_unique<KtShapeContainer>();
  return *outer_;
}

const KtShape& KtShape::outermost() const {
  const KtShape* shape = this;
  while (const KtShape* next = shape->outerBoundingVolume()) shape = next;
  return *shape;
}

void KtShape::linkOuter() {
  for (KtShape* shape = this; KtShape* next = shape->outerBoundingVolume(); shape = next) {
    next->inner_ = shape;
    next->level_ = shape->level_ + 1;
  }
}

const KtShape* KtShape::outerBoundingVolume() const {
  return outer_ != nullptr ? std::as_const(*outer_).topElement() : nullptr;
}

KtShape* KtShape::outerBoundingVolume() {
  return outer_ != nullptr ? outer_->topElement() : nullptr;
}

std::unique_ptr<KtShape> KtShape::newBoundingVolume(KtShapeValues type) const {
  std::vector<KtSphere> spheres;
  boundingSpheres(spheres);
  if (!Kt::detail::areUsable(spheres)) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtShape::addBoundingVolume(): the %s has no point, or one that is "
                                "not finite.\n",
                                std::string(token().localName()).c_str());
    return nullptr;
  }
  switch (type) {
    case kSphere: {
      const KtSphere sphere = Kt::detail::smallestSphere(spheres);
      return std::make_unique<KtSphereShape>(sphere.center(), sphere.radius());
    }
    case kCapsule:
      return std::make_unique<KtCapsuleShape>(boundingCapsule());
    case kBox: {
      const Kt::detail::OrientedBox box = Kt::detail::smallBox(spheres);
      return std::make_unique<KtBoxShape>(box.size, box.frame);
    }
    case kConvexHull: {
      auto hull = std::make_unique<KtConvexPolyhedron>();
      hull->setFromPoints(Kt::detail::pointsAround(spheres));
      return hull;
    }
    default:
      break;
  }
  Kt::Print::instance().write(Kt::Print::kError,
                              "KtShape::addBoundingVolume(): type %u is no bounding volume.\n",
                              static_cast<unsigned>(type));
  return nullptr;
}

bool KtShape::addBoundingVolume(KtShapeValues type) {
  KtShape& last = const_cast<KtShape&>(outermost());  // this is not constant, so neither is that
  std::unique_ptr<KtShape> volume = last.newBoundingVolume(type);
  if (volume == nullptr) return false;
  volume->setSurfaceLabel(last.surfaceLabel());
  if (const KtDataMap* own = last.defaultSurface()) {
    KtDataMap data = *own;
    for (const auto& [key, value] : KtDataMap::boundingColor().mapContainer()) data.add(key, value);
    volume->setSurfaces(KtSurfaceMap(last.surfaceLabel(), data));
  }
  volume->takesContactForces_ = last.takesContactForces_;
  last.outer().setAndDeleteTopElementPointer(volume.release());
  last.linkOuter();
  return true;
}

void KtShape::addBoundingVolume(const KtShape& volume) {
  KtShape& last = const_cast<KtShape&>(outermost());
  last.outer().setTopElement(volume);
  last.linkOuter();
}

void KtShape::deleteBoundingVolumes() {
  if (outer_ != nullptr) outer_->setAndDeleteTopElementPointer(nullptr);
}

void KtShape::refitBoundingVolumes() {
  KtShape* next = outerBoundingVolume();
  if (next == nullptr) return;
  const KtShapeValues type = next->shapeType();
  if (type == kSphere || type == kCapsule || type == kBox || type == kConvexHull) {
    if (std::unique_ptr<KtShape> fitted = newBoundingVolume(type)) {
      fitted->setIdentifier(next->identifier());
      fitted->setSurfaceLabel(next->surfaceLabel());
      fitted->setSurfaces(next->surfaces());
      fitted->takesContactForces_ = next->takesContactForces_;
      fitted->outer_ = std::move(next->outer_);
      outer().setAndDeleteTopElementPointer(fitted.release());
      linkOuter();
    }
  }
  outerBoundingVolume()->refitBoundingVolumes();
}

void KtShape::boundingVolumes(ShapeVector& volumes, const KtU32& level) const {
  const KtShape* shape = this;
  while (shape->level_ < level && shape->outerBoundingVolume() != nullptr) {
    shape = shape->outerBoundingVolume();
  }
  volumes.push_back(shape);
}

void KtShape::mapShapes(KtU32& count, const KtManipulatorLink* link, ShapeTable& table,
                        ShapeVector& shapes) {
  shapeIndex_ = count++;
  link_ = link;
  if (!identifier().empty()) table[identifier()] = this;
  if (shapes.size() < count) shapes.resize(count, nullptr);
  shapes[shapeIndex_] = this;
  if (KtShape* next = outerBoundingVolume()) next->mapShapes(count, link, table, shapes);
}

void KtShape::mapBoundingVolumeLevels(KtU32& level) {
  level_ = level++;
  if (KtShape* next = outerBoundingVolume()) next->mapBoundingVolumeLevels(level);
}

bool KtShape::lookup(const std::string& label, const KtDataMap*& data) const {
  data = surfaces_.lookupPointer(label);
  return data != nullptr;
}

const KtDataMap* KtShape::defaultSurface() const {
  return surfaces_.lookupPointer(surfaceLabel_);
}

bool KtShape::setSurfaceProperties(const std::string& label, const KtDataMap& data) {
  if (label != surfaceLabel() && surfaces_.lookupPointer(label) == nullptr) return false;
  surfaces_.add(label, data);
  return true;
}

const std::string& KtShape::surfaceType(const KtU32& /*closestPointIndex*/,
                                        const KtVector& /*point*/) const {
  return surfaceLabel();
}

bool KtShape::axisAlignedBoundingBox(const KtCoordinateSystemTransformation& t,
                                     KtAxisAlignedBoundingBox& box) const {
  box = KtAxisAlignedBoundingBox();
  if (isEmpty()) return false;
  const KtOrientation toShape = t.orientation().inverse();
  const double wide = margin();
  const std::array<KtVector, 3> axes = {toShape * KtVector::xVector(1.0),
                                        toShape * KtVector::yVector(1.0),
                                        toShape * KtVector::zVector(1.0)};
  const KtVector largest(support(axes[0]).dot(axes[0]), support(axes[1]).dot(axes[1]),
                         support(axes[2]).dot(axes[2]));
  const KtVector least(support(-axes[0]).dot(axes[0]), support(-axes[1]).dot(axes[1]),
                       support(-axes[2]).dot(axes[2]));
  const KtAxisAlignedBoundingBox found(t.translation() + least - KtVector(wide, wide, wide),
                                       t.translation() + largest + KtVector(wide, wide, wide));
  if (!std::isfinite(found.size().magSquared())) return false;
  box = found;
  return true;
}

KtCapsule KtShape::boundingCapsule() const {
  std::vector<KtSphere> spheres;
  boundingSpheres(spheres);
  return Kt::detail::areUsable(spheres) ? Kt::detail::smallCapsule(spheres) : KtCapsule();
}

void KtShape::boundingCapsules(std::vector<KtCapsule>& capsules,
                               std::vector<KtU32>& identifiers) const {
  if (isEmpty()) return;
  capsules.push_back(boundingCapsule());
  identifiers.push_back(shapeIndex_);
}

KtConvexPart KtShape::convexPart(KtU32 index) const {
  return index == 0 ? KtConvexPart(*this) : KtConvexPart();
}

void KtShape::convexPartsInBox(const KtAxisAlignedBoundingBox& box,
                               std::vector<KtU32>& parts) const {
  KtAxisAlignedBoundingBox own;
  if (axisAlignedBoundingBox(KtCoordinateSystemTransformation::identity(), own) &&
      own.intersects(box)) {
    parts.push_back(0);
  }
}

void KtShape::scaleBy(double factor) {
  if (!std::isfinite(factor)) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtShape::scaleBy(): the factor %g is not finite.\n", factor);
    return;
  }
  scaleOwn(factor);
  if (KtShape* next = outerBoundingVolume()) next->scaleBy(factor);
}

void KtShape::transformBy(const KtCoordinateSystemTransformation& t) {
  transformOwn(t);
  if (KtShape* next = outerBoundingVolume()) next->transformBy(t);
}

const KtShape* KtShape::intersectLineSegment(const KtLineSegment& segment, const KtU32& level,
                                             double& distance) const {
  double ignored = 0.0;
  const KtShape* shape = &outermost();
  while (shape != this && shape->level_ > level && shape->inner_->level_ >= level) {
    // A hull without thickness meets no line, but the flat shape in it may.
    if (shape->physicalExtent().isSolid() &&
        shape->intersectLineSegment(segment, ignored) == nullptr) {
      return nullptr;
    }
    shape = shape->inner_;
  }
  return shape->intersectLineSegment(segment, distance);
}
