#pragma once

#include <vector>

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/xml/KtBaseExpressionTreeElement.h"

/// A real function of many variables that is meant to be not negative.
class KT_EXPORT KtBaseMultivariableConstraint : public KtBaseExpressionTreeElement {
 public:
  /// The list of the variables' values.
  using Variables = KtXmlVectorType<KtXmlBasicType<KtReal>>;

  /// The value of the function; the constraint holds where it is at least 0.
  virtual double evaluate(const Variables& x) const = 0;
  /// The partial derivatives, one for each variable. The reference holds until the next call on
  /// this object.
  virtual const std::vector<double>& gradient(const Variables& x) const = 0;
};
