#include "ktManipulator/foundation/shape/KtRoundExtent.h"

#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"

void KtRoundExtent::registerComponents() {
  KtFramedExtent::registerComponents();
  registerComponent(KtGeom::KtRadiusToken, &radius_);
  registerComponent(KtGeom::KtHeightToken, &height_);
}

void KtRoundExtent::scaleSizes(double factor) {
  radius_ = KtNonNegReal(radius() * factor);
  height_ = KtNonNegReal(height() * factor);
}

void KtRoundExtent::truncateSizes(double precision) {
  radius_ = KtNonNegReal(truncated(radius(), precision));
  height_ = KtNonNegReal(truncated(height(), precision));
}
