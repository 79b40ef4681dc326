#pragma once

#include "ktManipulator/foundation/containers/KtXmlVariableVectorType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/propagation/KtBaseLinkInteractions.h"

/// A list of force laws between links.
class KT_EXPORT KtLinkInteractionsVector
    : public KtXmlPersistent<KtLinkInteractionsVector,
                             KtXmlVariableVectorType<KtBaseLinkInteractions>> {
 public:
  using KtXmlPersistent::KtXmlPersistent;
  KtLinkInteractionsVector() = default;

  void registerComponentCreators() override;

  bool operator==(const KtLinkInteractionsVector&) const = default;
  static const KtToken& classToken() { return KtManip::KtLinkInteractionsVectorToken; }
};

extern template class KtXmlVariableVectorType<KtBaseLinkInteractions>;
