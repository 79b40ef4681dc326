#pragma once

#include "ktManipulator/constraints/KtBaseStateConstraint.h"
#include "ktManipulator/foundation/containers/KtXmlVariableVectorType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A list of state constraints. It accepts `KtMultivariableJointStateConstraint`.
class KT_EXPORT KtStateConstraintVector
    : public KtXmlPersistent<KtStateConstraintVector,
                             KtXmlVariableVectorType<KtBaseStateConstraint>> {
 public:
  using KtXmlPersistent::KtXmlPersistent;
  KtStateConstraintVector() = default;

  void registerComponentCreators() override;

  bool operator==(const KtStateConstraintVector&) const = default;
  static const KtToken& classToken() { return KtManip::KtStateConstraintVectorToken; }
};

extern template class KtXmlVariableVectorType<KtBaseStateConstraint>;
