#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/function/KtBaseScalarFunction.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The linear function that takes the start value at 0 and the end value at 1. It goes on beyond
/// both.
class KT_EXPORT KtLinearScalarFunction
    : public KtXmlPersistent<KtLinearScalarFunction, KtBaseScalarFunction> {
 public:
  /// The zero function.
  KtLinearScalarFunction() = default;
  /// From the values at 0 and at 1.
  KtLinearScalarFunction(double startValue, double endValue)
      : startValue_(startValue), endValue_(endValue) {}

  void registerComponents() override;
  double evaluate(double x) const override;
  double derivative(double x) const override;

  /// The value at 0.
  virtual double startValue() const;
  virtual void setStartValue(double value);
  /// The value at 1.
  virtual double endValue() const;
  virtual void setEndValue(double value);

  bool operator==(const KtLinearScalarFunction&) const = default;
  static const KtToken& classToken();
  /// From 0 to 1: the identity.
  static KtLinearScalarFunction defaultObject() { return {0.0, 1.0}; }

 private:
  KtXmlBasicType<KtReal> startValue_;
  KtXmlBasicType<KtReal> endValue_;
};
