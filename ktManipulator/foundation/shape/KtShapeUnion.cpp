#include "ktManipulator/foundation/shape/KtShapeUnion.h"

#include "ktManipulator/foundation/shape/KtExtentUnion.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

template class KtXmlVariableVectorType<KtShape>;

const KtToken& KtShapeVector::classToken() {
  return KtGeom::KtMembersToken;
}

void KtShapeVector::registerComponentCreators() {
  KtExtentUnion::registerExtents(*this);
  registerComponentCreator(KtExtentUnion::classToken(), KtExtentUnion::creator);
  registerComponentCreator(KtShapeUnion::classToken(), KtShapeUnion::creator);
}

const KtToken& KtShapeUnion::classToken() {
  return KtGeom::KtShapeUnionToken;
}

void KtShapeUnion::registerComponents() {
  KtBaseUnion::registerComponents();
  registerComponent(KtGeom::KtMembersToken, &members_);
}

const KtShape* KtShapeUnion::member(KtU32 index) const {
  return index < members_.size() ? members_.vectorContainer()[index] : nullptr;
}

KtShape* KtShapeUnion::member(KtU32 index) {
  return index < members_.size() ? members_.vectorContainer()[index] : nullptr;
}

void KtShapeUnion::boundingVolumes(ShapeVector& volumes, const KtU32& level) const {
  if (boundingVolumeLevel() < level && outerBoundingVolume() != nullptr) {
    outerBoundingVolume()->boundingVolumes(volumes, level);
    return;
  }
  forEachMember(*this, [&](const KtShape& one) { one.boundingVolumes(volumes, level); });
}

KtU32 KtShapeUnion::numberOfShapes() const {
  KtU32 count = 0;
  forEachMember(*this, [&](const KtShape& one) {
    for (const KtShape* shape = &one; shape != nullptr; shape = shape->outerBoundingVolume()) {
      count += shape->numberOfShapes();
    }
  });
  return count;
}

void KtShapeUnion::mapShapes(KtU32& count, const KtManipulatorLink* link, ShapeTable& table,
                             ShapeVector& shapes) {
  setLink(link);
  if (!identifier().empty()) table[identifier()] = this;
  forEachMember(*this, [&](KtShape& one) { one.mapShapes(count, link, table, shapes); });
  if (KtShape* next = outerBoundingVolume()) next->mapShapes(count, link, table, shapes);
}

void KtShapeUnion::mapBoundingVolumeLevels(KtU32& level) {
  KtBaseUnion::mapBoundingVolumeLevels(level);
  forEachMember(*this, [](KtShape& one) {
    KtU32 own = 0;
    one.mapBoundingVolumeLevels(own);
  });
}

bool KtShapeUnion::setSurfaceProperties(const std::string& label, const KtDataMap& data) {
  bool taken = KtBaseUnion::setSurfaceProperties(label, data);
  forEachMember(*this,
                [&](KtShape& one) { taken = one.setSurfaceProperties(label, data) || taken; });
  return taken;
}

void KtShapeUnion::boundingCapsules(std::vector<KtCapsule>& capsules,
                                    std::vector<KtU32>& identifiers) const {
  forEachMember(*this, [&](const KtShape& one) { one.boundingCapsules(capsules, identifiers); });
}
