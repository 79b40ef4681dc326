#include "ktManipulator/foundation/xml/KtBaseExpressionTreeElement.h"

const KtXmlBaseVariableCompoundType* KtBaseExpressionTreeElement::container() const {
  return container_;
}

void KtBaseExpressionTreeElement::setContainer(const KtXmlBaseVariableCompoundType* container) {
  container_ = container;
}
