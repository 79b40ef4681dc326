#pragma once

#include "ktManipulator/foundation/shape/KtRoundExtent.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A solid circular cylinder about the z axis of its frame, centred at the frame's origin.
class KT_EXPORT KtCylinderShape : public KtXmlPersistent<KtCylinderShape, KtRoundExtent> {
 public:
  using KtXmlPersistent::KtXmlPersistent;
  KtShapeValues shapeType() const override { return kCylinder; }

  bool operator==(const KtCylinderShape&) const = default;
  static const KtToken& classToken();

 protected:
  KtVector ownSupport(const KtVector& direction) const override;
  void ownPoints(std::vector<KtVector>& points) const override;
  void clip(Kt::detail::LineClip& line) const override;
  KtVolumeMoments ownMoments() const override;
  bool ownContains(const KtVector& point) const override;
};
