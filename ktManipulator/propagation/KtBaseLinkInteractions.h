#pragma once

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/state/KtManipulatorExternalForce.h"
#include "ktManipulator/state/KtManipulatorTorque.h"

class KtManipulatorSystem;
class KtSystemActiveState;

/// A force law between links that is no joint: a spring between two frames, a latch, contact.
class KT_EXPORT KtBaseLinkInteractions : public KtXmlCompoundType {
 public:
  /// Adds the forces of this law to those on the links.
  ///
  /// @param activeState  the state; may be filled further
  /// @param system       the manipulators
  /// @param time         the present time, s
  /// @param torques      the joint torques, one record per manipulator
  /// @param forces       one record per manipulator, of as many links as that has; the force on
  /// each
  ///                     link is in the link's DH frame
  virtual void forceBetweenLinks(KtSystemActiveState& activeState,
                                 const KtManipulatorSystem& system, const KtReal& time,
                                 const KtXmlVectorType<KtManipulatorTorque>& torques,
                                 KtXmlVectorType<KtManipulatorExternalForce>& forces) const = 0;

  bool operator==(const KtBaseLinkInteractions&) const = default;
};
