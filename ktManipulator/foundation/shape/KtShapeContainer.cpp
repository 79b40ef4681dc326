#include "ktManipulator/foundation/shape/KtShapeContainer.h"

#include "ktManipulator/foundation/shape/KtExtentUnion.h"
#include "ktManipulator/foundation/shape/KtShapeUnion.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

template class KtBaseExpressionTreeContainer<KtShape>;

const KtToken& KtShapeContainer::classToken() {
  return KtGeom::KtShapeContainerToken;
}

void KtShapeContainer::registerComponentCreators() {
  KtExtentUnion::registerExtents(*this);
  registerComponentCreator(KtExtentUnion::classToken(), KtExtentUnion::creator);
  registerComponentCreator(KtShapeUnion::classToken(), KtShapeUnion::creator);
}

void KtShapeContainer::scaleBy(double factor) {
  if (KtShape* shape = topElement()) shape->scaleBy(factor);
}

void KtShapeContainer::transformBy(const KtCoordinateSystemTransformation& t) {
  if (KtShape* shape = topElement()) shape->transformBy(t);
}

bool KtShapeContainer::addBoundingVolume(KtShape::KtShapeValues type) {
  KtShape* shape = topElement();
  return shape != nullptr && shape->addBoundingVolume(type);
}

void KtShapeContainer::deleteBoundingVolumes() {
  if (KtShape* shape = topElement()) shape->deleteBoundingVolumes();
}

const KtShape* KtShapeContainer::intersectLineSegment(const KtLineSegment& segment,
                                                      KtShapePointEvent& event,
                                                      const KtU32& level) const {
  const KtShape* shape = topElement();
  double distance = 0.0;
  const KtShape* met =
      shape != nullptr ? shape->intersectLineSegment(segment, level, distance) : nullptr;
  if (met != nullptr) {
    event.setDistance(distance);
    event.setIsImpacted(true);
  }
  return met;
}
