#pragma once

#include "ktManipulator/collision/KtShapeKeys.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

class KtManipulatorSystem;

/// The boxes around the links of a system, numbered by intervals.
///
/// Manipulator k owns as many intervals as it has joints, and one for its root, behind those of all
/// manipulators before it. Within them link j has interval j, and the root the last one. Nothing of
/// it is written to files, and as equality is that of what files hold, any two are equal.
class KT_EXPORT KtSystemActiveBoundingBoxState
    : public KtXmlPersistent<KtSystemActiveBoundingBoxState, KtXmlCompoundType> {
 public:
  /// Finds the link of an interval.
  ///
  /// @param key  receives the indices of manipulator and link, `ktBaseIndex` for a root, with no
  ///             shape; unchanged for an interval beyond the last one
  virtual void intervalIDtoShapeKeyID(const KtU32& interval, const KtManipulatorSystem& system,
                                      KtShapeStateCacheKey& key) const;
  /// Finds the interval of a key's link.
  ///
  /// @param interval  receives it; unchanged for a key of no link of the system
  virtual void shapeKeyIDToIntervalID(KtShapeStateCacheKey key, const KtManipulatorSystem& system,
                                      KtU32& interval) const;
  /// Whether the boxes have been built. False by default.
  virtual bool isInitialized() const { return isInitialized_; }
  virtual void setIsInitialized(bool value) { isInitialized_ = value; }
  /// Notes that links may have moved. The boxes stay until they are asked for.
  virtual void invalidateAll() { positionsCurrent_ = false; }
  /// Sets what `tolerance()` answers. Boxes that have been built grow when their links move.
  virtual void setTolerance(const KtReal& tolerance) { tolerance_ = tolerance; }
  /// By how much every box is enlarged on each side, m. 0 by default.
  virtual double tolerance() const { return tolerance_; }

  /// Always true.
  bool operator==(const KtSystemActiveBoundingBoxState&) const noexcept { return true; }
  static const KtToken& classToken() { return KtManip::KtSystemActiveBoundingBoxStateToken; }

 private:
  bool isInitialized_ = false;
  bool positionsCurrent_ = false;
  double tolerance_ = 0.0;
};
