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
  KtBaseExpressionTreeElement(const KtBaseExpressionTreeElement&) noexcept = default;
  KtBaseExpressionTreeElement(KtBaseExpressionTreeElement&&) noexcept = default;
  KtBaseExpressionTreeElement& operator=(const KtBaseExpressionTreeElement&) noexcept = default;
  KtBaseExpressionTreeElement& operator=(KtBaseExpressionTreeElement&&) noexcept = default;

  /// The holder of this element, or null if none was told.
  virtual const KtXmlBaseVariableCompoundType* container() const;
  virtual void setContainer(const KtXmlBaseVariableCompoundType* container);

  bool operator==(const KtBaseExpressionTreeElement&) const noexcept { return true; }

 private:
  const KtXmlBaseVariableCompoundType* container_ = nullptr;
};
