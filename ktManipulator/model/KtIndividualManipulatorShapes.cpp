// Surfaces and bounding volumes of a whole manipulator.
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

namespace {

KtSurfaceMap oneSurface(const std::string& label, const KtDataMap& data) {
  KtSurfaceMap surfaces;
  surfaces.add(label, data);
  return surfaces;
}

}  // namespace

const KtSurfaceMap& KtIndividualManipulator::surfaces() const {
  return surfaces_;
}
void KtIndividualManipulator::setSurfaces(const KtSurfaceMap& surfaces) {
  surfaces_ = surfaces;
}

bool KtIndividualManipulator::lookup(const std::string& label, const KtDataMap*& data) const {
  data = surfaces_.lookupPointer(label);
  return data != nullptr;
}

bool KtIndividualManipulator::setSurfaceProperties(const std::string& surfaceLabel,
                                                   const KtDataMap& data) {
  const KtDataMap* found = nullptr;
  if (!lookup(surfaceLabel, found)) return false;
  surfaces_.add(surfaceLabel, data);
  return true;
}

bool KtIndividualManipulator::setSurfacesByIDs(KtU32 linkIndex, KtU32 shapeIndex,
                                               const KtSurfaceMap& surfaces) {
  const KtManipulatorLink* link = linkByIndex(linkIndex);
  if (link == nullptr) return false;
  const std::string label = link->label();
  for (KtManipulatorLink& child : ownChildLinks().elements()) {
    if (child.setSurfaces(label, shapeIndex, surfaces)) return true;
  }
  return false;
}

void KtIndividualManipulator::truncateValues(const double& precision) {
  for (const KtManipulatorLink* link : linkTable_) {
    if (link == nullptr) continue;
    // The table has const pointers, but this manipulator owns the links.
    const_cast<KtManipulatorLink*>(link)  // NOLINT(cppcoreguidelines-pro-type-const-cast)
        ->truncateValues(precision);
  }
}

void KtIndividualManipulator::addBoundingVolumesToLinks(KtShape::KtShapeValues type) {
  for (KtU32 i = 0; i <= jointDof(); ++i) {
    const KtManipulatorLink* found = linkByIndex(i < jointDof() ? i : ktBaseIndex);
    if (found == nullptr || found->linkReferenceDescription().isShapeReferenced()) continue;
    const KtShape* shape = found->shapeContainer().topElement();
    if (shape == nullptr) continue;
    if (type == KtShape::kBox) {
      while (shape != nullptr && shape->shapeType() != type) shape = shape->outerBoundingVolume();
      if (shape != nullptr) continue;  // the shape already has a box
    }
    const_cast<KtManipulatorLink*>(found)  // NOLINT(cppcoreguidelines-pro-type-const-cast)
        ->addBoundingVolume(type);
  }
}

void KtIndividualManipulator::addCapsuleBoundingVolumeToLinks() {
  addBoundingVolumesToLinks(KtShape::kCapsule);
}
void KtIndividualManipulator::addSphereBoundingVolumeToLinks() {
  addBoundingVolumesToLinks(KtShape::kSphere);
}
void KtIndividualManipulator::addBoundingBoxToLinks() {
  addBoundingVolumesToLinks(KtShape::kBox);
}
void KtIndividualManipulator::addConvexHullToLinks() {
  addBoundingVolumesToLinks(KtShape::kConvexHull);
}

void KtIndividualManipulator::simplifyLinkShapesWithCapsules(const KtDataMap& data) {
  deleteAllBoundingVolumes();
  addCapsuleBoundingVolumeToLinks();
  simplifyLinkShapesWithBoundingVolumes(data, true);
}

void KtIndividualManipulator::simplifyLinkShapesWithConvexHulls(const KtDataMap& data) {
  deleteAllBoundingVolumes();
  addConvexHullToLinks();
  simplifyLinkShapesWithBoundingVolumes(data, true);
}

void KtIndividualManipulator::simplifyLinkShapesWithBoundingVolumes(const KtDataMap& data,
                                                                    bool keepUnbounded) {
  static const std::string kLabel = "Bounding";
  for (const auto& [label, link] : labelTable_) {
    if (link == nullptr) continue;
    const KtShape* shape = link->shapeContainer().topElement();
    if (shape == nullptr) continue;
    if (const KtShape* volume = shape->outerBoundingVolume(); volume != nullptr) {
      KtShapeContainer simple;
      simple.setTopElement(*volume);
      simple.topElement()->setSurfaceLabel(kLabel);
      simple.topElement()->setSurfaces(oneSurface(kLabel, data));
      link->setShape(*simple.topElement());
    } else if (!keepUnbounded) {
      link->setShapeContainer(KtShapeContainer());
    }
  }
}

bool KtIndividualManipulator::setBoundingVolume(const std::string& label, const KtShape& shape,
                                                const KtDataMap* data) {
  const KtManipulatorLink* link = linkByIdentifier(label);
  if (link == nullptr) return false;
  KtManipulatorLink changed;
  link->copyLinkProperties(changed);
  changed.deleteBoundingVolumes();
  KtShapeContainer container = changed.shapeContainer();
  KtShape* top = container.topElement();
  if (top == nullptr) return false;  // nothing to be bounded
  top->addBoundingVolume(shape);
  KtShape* volume = top->outerBoundingVolume();
  const std::string surface = top->surfaceLabel();
  KtDataMap properties;
  if (data != nullptr) {
    properties = *data;
  } else {
    properties = KtDataMap::boundingColor();
    const KtDataMap* own = nullptr;
    if (top->lookup(surface, own)) {
      for (const KtToken* key : {&KtFoundCommon::KtSurfaceTensionSpringConstantToken,
                                 &KtManip::KtSurfaceTensionDamperConstantToken}) {
        double value = 0.0;
        if (own->lookup(key->text(), value)) properties.add(key->text(), value);
      }
    }
  }
  volume->setSurfaceLabel(surface);
  volume->setSurfaces(oneSurface(surface, properties));
  changed.setShapeContainer(container);
  return replaceLinkProperties(label, changed, true);
}
