#pragma once

#include "ktManipulator/foundation/containers/KtBaseExpressionTreeContainer.h"
#include "ktManipulator/foundation/function/KtBaseMultivariableConstraint.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The holder of one constraint of many variables. It accepts `KtLinearMultivariableConstraint`.
class KT_EXPORT KtMultivariableConstraintContainer
    : public KtXmlPersistent<KtMultivariableConstraintContainer,
                             KtBaseExpressionTreeContainer<KtBaseMultivariableConstraint>> {
 public:
  void registerComponentCreators() override;

  /// The value of the constraint's function; 0 for an empty holder.
  virtual double evaluate(const KtBaseMultivariableConstraint::Variables& x) const;
  /// Its partial derivatives; no entries for an empty holder. The reference holds until the next
  /// call on this object.
  virtual const std::vector<double>& gradient(
      const KtBaseMultivariableConstraint::Variables& x) const;

  bool operator==(const KtMultivariableConstraintContainer&) const = default;
  static const KtToken& classToken();
};

extern template class KtBaseExpressionTreeContainer<KtBaseMultivariableConstraint>;
