#pragma once

#include "ktManipulator/foundation/function/KtBaseMultivariableConstraint.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The constraint that a constant plus a weighted sum of the variables is at least 0.
///
/// Coefficients and variables are paired by position; where one list is shorter the other's rest
/// doesn't count.
class KT_EXPORT KtLinearMultivariableConstraint
    : public KtXmlPersistent<KtLinearMultivariableConstraint, KtBaseMultivariableConstraint> {
 public:
  /// The most variables that a constraint can weigh.
  static constexpr KtU32 kMostVariables = 1U << 24;

  void registerComponents() override;
  double evaluate(const Variables& x) const override;
  const std::vector<double>& gradient(const Variables& x) const override;

  /// The constant.
  virtual double constant() const;
  virtual void setConstant(double value);
  /// The coefficients by the position of their variables.
  virtual const Variables& coefficients() const;
  virtual void setCoefficients(const Variables& coefficients);
  /// Sets the coefficient of one variable; those before it that were not set are 0. A position of
  /// `kMostVariables` or more, such as the index of a link that was never mapped, is reported,
  /// gives false, and changes nothing.
  virtual bool setCoefficient(KtU32 position, double value);

  bool operator==(const KtLinearMultivariableConstraint& other) const {
    return constant_ == other.constant_ && coefficients_ == other.coefficients_;
  }
  static const KtToken& classToken();

 private:
  KtXmlBasicType<KtReal> constant_;
  Variables coefficients_;

  // Work space of gradient().
  mutable std::vector<double> gradient_;
};
