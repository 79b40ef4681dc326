#include "ktManipulator/constraints/KtBaseStateConstraint.h"

#include "ktManipulator/foundation/core/KtMath.h"

void KtBaseStateConstraint::normalizeGradient() const {
  double square = 0.0;
  for (const double x : gradientBuffer_) square += x * x;
  if (!(square > 0.0)) return;
  const double length = KtMath::sqrt(square);
  for (double& x : gradientBuffer_) x /= length;
}
