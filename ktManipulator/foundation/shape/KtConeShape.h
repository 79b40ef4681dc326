#pragma once

#include "ktManipulator/foundation/shape/KtRoundExtent.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A solid circular cone about the z axis of its frame: the base in the xy plane around the origin,
/// the tip at the height.
class KT_EXPORT KtConeShape : public KtXmlPersistent<KtConeShape, KtRoundExtent> {
 public:
  using KtXmlPersistent::KtXmlPersistent;
  KtShapeValues shapeType() const override { return kCone; }

  bool operator==(const KtConeShape&) const = default;
  static const KtToken& classToken();

 protected:
  KtVector ownSupport(const KtVector& direction) const override;
  void ownPoints(std::vector<KtVector>& points) const override;
  void clip(Kt::detail::LineClip& line) const override;
  KtVolumeMoments ownMoments() const override;
  bool ownContains(const KtVector& point) const override;
  void mirror() override;
};
