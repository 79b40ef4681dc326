#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// What the proximity computations of a whole system share.
class KT_EXPORT KtSystemProcessingParameters
    : public KtXmlPersistent<KtSystemProcessingParameters, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// The bound on the iterations of one distance computation of convex shapes; 120 by default.
  virtual KtU32 maxGJKIterations() const { return maxGJKIterations_; }
  virtual void setMaxGJKIterations(KtU32 count) { maxGJKIterations_ = count; }

  bool operator==(const KtSystemProcessingParameters&) const = default;
  static const KtToken& classToken() { return KtManip::KtSystemProcessingParametersToken; }

 private:
  KtXmlBasicType<KtU32> maxGJKIterations_{120U};
};
