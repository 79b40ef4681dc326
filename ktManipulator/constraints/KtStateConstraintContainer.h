#pragma once

#include "ktManipulator/constraints/KtBaseStateConstraint.h"
#include "ktManipulator/foundation/containers/KtBaseExpressionTreeContainer.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The holder of one state constraint. It accepts `KtMultivariableJointStateConstraint`.
class KT_EXPORT KtStateConstraintContainer
    : public KtXmlPersistent<KtStateConstraintContainer,
                             KtBaseExpressionTreeContainer<KtBaseStateConstraint>> {
 public:
  void registerComponentCreators() override;

  bool operator==(const KtStateConstraintContainer&) const = default;
  static const KtToken& classToken() { return KtManip::KtStateConstraintContainerToken; }
};

extern template class KtBaseExpressionTreeContainer<KtBaseStateConstraint>;
