#include "ktManipulator/foundation/shape/KtBaseUnion.h"

void KtBaseUnion::deleteBoundingVolumes() {
  KtBasePhysicalExtent::deleteBoundingVolumes();
  forEachMember(*this, [](KtShape& one) { one.deleteBoundingVolumes(); });
}

bool KtBaseUnion::holds(const KtShape& part) const {
  bool found = KtBasePhysicalExtent::holds(part);
  forEachMember(*this,
                [&](const KtShape& one) { found = found || &one == &part || one.holds(part); });
  return found;
}

bool KtBaseUnion::lookup(const std::string& label, const KtDataMap*& data) const {
  bool found = KtBasePhysicalExtent::lookup(label, data);
  forEachMember(*this, [&](const KtShape& one) { found = found || one.lookup(label, data); });
  return found;
}

bool KtBaseUnion::isEmpty() const {
  bool empty = true;
  forEachMember(*this, [&](const KtShape& one) { empty = empty && one.isEmpty(); });
  return empty;
}

KtVector KtBaseUnion::support(const KtVector& direction) const {
  KtVector best;
  bool any = false;
  forEachMember(*this, [&](const KtShape& one) {
    if (one.isEmpty()) return;
    // The members' margins differ, so the union has none and its members' points include theirs.
    const KtVector point = one.supportPoint(direction);
    if (!any || point.dot(direction) > best.dot(direction)) best = point;
    any = true;
  });
  return best;
}

void KtBaseUnion::boundingSpheres(std::vector<KtSphere>& spheres) const {
  forEachMember(*this, [&](const KtShape& one) { one.boundingSpheres(spheres); });
}

bool KtBaseUnion::axisAlignedBoundingBox(const KtCoordinateSystemTransformation& t,
                                         KtAxisAlignedBoundingBox& box) const {
  box = KtAxisAlignedBoundingBox();
  bool ok = true;
  KtAxisAlignedBoundingBox all;
  forEachMember(*this, [&](const KtShape& one) {
    KtAxisAlignedBoundingBox own;
    ok = (one.axisAlignedBoundingBox(t, own) || one.isEmpty()) && ok;
    all.include(own);
  });
  if (!ok || all.isEmpty()) return false;
  box = all;
  return true;
}

const KtShape* KtBaseUnion::intersectLineSegment(const KtLineSegment& segment,
                                                 double& distance) const {
  const KtShape* nearest = nullptr;
  forEachMember(*this, [&](const KtShape& one) {
    double own = 0.0;
    const KtShape* met = one.intersectLineSegment(segment, own);
    if (met == nullptr || (nearest != nullptr && own >= distance)) return;
    nearest = met;
    distance = own;
  });
  return nearest;
}

KtU32 KtBaseUnion::numberOfConvexParts() const {
  KtU32 count = 0;
  forEachMember(*this, [&](const KtShape& one) { count += one.numberOfConvexParts(); });
  return count;
}

KtConvexPart KtBaseUnion::convexPart(KtU32 index) const {
  KtConvexPart part;
  forEachMember(*this, [&](const KtShape& one) {
    const KtU32 own = one.numberOfConvexParts();
    if (index < own && part.shape() == nullptr) part = one.convexPart(index);
    index -= own;  // wraps around behind the member that has it, and is not looked at again
  });
  return part;
}

void KtBaseUnion::convexPartsInBox(const KtAxisAlignedBoundingBox& box,
                                   std::vector<KtU32>& parts) const {
  KtU32 before = 0;
  forEachMember(*this, [&](const KtShape& one) {
    const std::size_t start = parts.size();
    one.convexPartsInBox(box, parts);
    for (std::size_t i = start; i < parts.size(); ++i) parts[i] += before;
    before += one.numberOfConvexParts();
  });
}

bool KtBaseUnion::isSolid() const {
  bool any = false;
  bool solid = true;
  forEachMember(*this, [&](const KtShape& one) {
    if (!solid || one.isEmpty()) return;
    any = true;
    solid = one.physicalExtent().isSolid();
  });
  return any && solid;
}

KtVolumeMoments KtBaseUnion::volumeMoments() const {
  KtVolumeMoments moments;
  forEachMember(*this,
                [&](const KtShape& one) { moments += one.physicalExtent().volumeMoments(); });
  return moments;
}

bool KtBaseUnion::contains(const KtVector& point) const {
  bool inside = false;
  forEachMember(
      *this, [&](const KtShape& one) { inside = inside || one.physicalExtent().contains(point); });
  return inside;
}

void KtBaseUnion::scaleOwn(double factor) {
  forEachMember(*this, [factor](KtShape& one) { one.scaleBy(factor); });
}

void KtBaseUnion::transformOwn(const KtCoordinateSystemTransformation& t) {
  forEachMember(*this, [&t](KtShape& one) { one.transformBy(t); });
}

void KtBaseUnion::truncateOwn(double precision) {
  forEachMember(*this, [precision](KtShape& one) {
    if (auto* extent = dynamic_cast<KtBasePhysicalExtent*>(&one)) extent->truncateValues(precision);
  });
}
