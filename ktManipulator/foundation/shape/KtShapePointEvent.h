#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// Where a line segment meets a shape for the first time.
class KT_EXPORT KtShapePointEvent : public KtXmlPersistent<KtShapePointEvent, KtXmlCompoundType> {
 public:
  void registerComponents() override;
  void xmlInit() override;

  /// Distance of the point from the segment's first end, m; 0 for a segment that starts inside.
  virtual const double& distance() const { return distance_.value(); }
  virtual void setDistance(const double& distance) { distance_ = distance; }
  /// Whether anything was met.
  virtual const bool& isImpacted() const { return isImpacted_.value(); }
  virtual void setIsImpacted(const bool& value) { isImpacted_ = value; }

  bool operator==(const KtShapePointEvent&) const = default;
  static const KtToken& classToken();

 private:
  KtXmlBasicType<double> distance_;
  KtXmlBasicType<bool> isImpacted_;
};
