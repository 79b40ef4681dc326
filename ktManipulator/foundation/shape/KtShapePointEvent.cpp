#include "ktManipulator/foundation/shape/KtShapePointEvent.h"

#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

const KtToken& KtShapePointEvent::classToken() {
  return KtGeom::KtShapePointEventToken;
}

void KtShapePointEvent::registerComponents() {
  KtXmlCompoundType::registerComponents();
  registerComponent(KtGeom::KtDistanceToken, &distance_);
  registerComponent(KtGeom::KtIsImpactedToken, &isImpacted_);
}

void KtShapePointEvent::xmlInit() {
  KtXmlCompoundType::xmlInit();
}
