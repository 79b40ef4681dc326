#pragma once

#include "ktManipulator/foundation/containers/KtBaseExpressionTreeContainer.h"
#include "ktManipulator/foundation/function/KtBaseScalarFunction.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The holder of one scalar function. It accepts `KtLinearScalarFunction`.
class KT_EXPORT KtScalarFunctionContainer
    : public KtXmlPersistent<KtScalarFunctionContainer,
                             KtBaseExpressionTreeContainer<KtBaseScalarFunction>> {
 public:
  void registerComponentCreators() override;

  /// The value of the function; 0 for an empty holder.
  virtual double evaluate(double x) const;
  /// The derivative of the function; 0 for an empty holder.
  virtual double derivative(double x) const;

  bool operator==(const KtScalarFunctionContainer&) const = default;
  static const KtToken& classToken();
};

extern template class KtBaseExpressionTreeContainer<KtBaseScalarFunction>;
