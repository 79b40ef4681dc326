#pragma once

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"

/// The last distance of a pair of links, and when it was found: a plain value.
///
/// Each manipulator of the pair has a stamp, which changes whenever it may have moved. The distance
/// holds as long as both stamps are those that are noted here.
class KT_EXPORT KtLinkProximityData {
 public:
  /// What no manipulator's stamp ever is: a distance with it was never found.
  static constexpr KtU32 kNever = 0xFFFFFFFFU;

  /// The distance of the two links, m. 0 by default.
  double distance() const noexcept { return distance_; }
  virtual void setDistance(double distance) { distance_ = distance; }
  /// The stamp of the first link's manipulator when the distance was found. `kNever` by default.
  KtU32 updateTime1() const noexcept { return updateTime1_; }
  virtual void setUpdateTime1(KtU32 stamp) { updateTime1_ = stamp; }
  /// The stamp of the second link's manipulator when the distance was found. `kNever` by default.
  KtU32 updateTime2() const noexcept { return updateTime2_; }
  virtual void setUpdateTime2(KtU32 stamp) { updateTime2_ = stamp; }

  virtual ~KtLinkProximityData() = default;

 private:
  double distance_ = 0.0;
  KtU32 updateTime1_ = kNever;
  KtU32 updateTime2_ = kNever;
};
