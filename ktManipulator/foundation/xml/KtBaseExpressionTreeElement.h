#pragma once

#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"

class KtXmlBaseVariableCompoundType;

/// Base of the polymorphic members that a `KtBaseExpressionTreeContainer` holds.
///
/// It knows the holder that it was told of. The pointer is not owned, is copied as it is, and takes
/// no part in comparison.
class KT_EXPORT KtBaseExpressionTreeElement : public KtXmlCompoundType {
 public:
  KtBaseExpressionTreeElement() noexcept = default;
  /// A copy.
  KtBaseExpressionTreeElement(const KtBaseExpressionTreeElement&) noexcept = default;
  /// Takes over the other's value.
  KtBaseExpressionTreeElement(KtBaseExpressionTreeElement&&) noexcept = default;
  /// Assigns a value.
  KtBaseExpressionTreeElement& operator=(const KtBaseExpressionTreeElement&) noexcept = default;
  /// Takes over the other's value.
  KtBaseExpressionTreeElement& operator=(KtBaseExpressionTreeElement&&) noexcept = default;

  /// The holder of this element, or null if none was told.
  virtual const KtXmlBaseVariableCompoundType* container() const;
  /// Sets what `container()` answers.
  virtual void setContainer(const KtXmlBaseVariableCompoundType* container);

  /// Exact equality.
  bool operator==(const KtBaseExpressionTreeElement&) const noexcept { return true; }

 private:
  const KtXmlBaseVariableCompoundType* container_ = nullptr;
};
