#pragma once

#include "ktManipulator/foundation/containers/KtXmlVariableVectorType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/kinematics/KtBaseGeneralBoundObject.h"

/// A list of bodies that ride on frames of closed linkages. It accepts the four classes of bodies
/// of `KtQuadrilateralTypeLink`.
class KT_EXPORT KtGeneralBoundObjectVector
    : public KtXmlPersistent<KtGeneralBoundObjectVector,
                             KtXmlVariableVectorType<KtBaseGeneralBoundObject>> {
 public:
  using KtXmlPersistent::KtXmlPersistent;
  KtGeneralBoundObjectVector() = default;

  void registerComponentCreators() override;

  bool operator==(const KtGeneralBoundObjectVector&) const = default;
  static const KtToken& classToken() { return KtManip::KtGeneralBoundObjectVectorToken; }
};

extern template class KtXmlVariableVectorType<KtBaseGeneralBoundObject>;
