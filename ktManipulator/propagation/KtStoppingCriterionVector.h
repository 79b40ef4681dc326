#pragma once

#include "ktManipulator/foundation/containers/KtXmlMapType.h"
#include "ktManipulator/foundation/containers/KtXmlVariableVectorType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/propagation/KtBaseStoppingCriterion.h"

/// A list of stopping criteria.
class KT_EXPORT KtStoppingCriterionVector
    : public KtXmlPersistent<KtStoppingCriterionVector,
                             KtXmlVariableVectorType<KtBaseStoppingCriterion>> {
 public:
  using KtXmlPersistent::KtXmlPersistent;
  KtStoppingCriterionVector() = default;

  void registerComponentCreators() override;

  bool operator==(const KtStoppingCriterionVector&) const = default;
  static const KtToken& classToken() { return KtManip::KtStoppingCriterionVectorToken; }
};

extern template class KtXmlVariableVectorType<KtBaseStoppingCriterion>;
extern template class KtXmlMapType<KtXmlBasicType<std::string>, KtStoppingCriterionVector>;
