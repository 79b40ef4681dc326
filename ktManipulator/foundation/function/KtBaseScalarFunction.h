#pragma once

#include "ktManipulator/foundation/xml/KtBaseExpressionTreeElement.h"

/// A real function of one real variable.
class KT_EXPORT KtBaseScalarFunction : public KtBaseExpressionTreeElement {
 public:
  /// The value of the function.
  virtual double evaluate(double x) const = 0;
  /// The derivative of the function.
  virtual double derivative(double x) const = 0;
};
