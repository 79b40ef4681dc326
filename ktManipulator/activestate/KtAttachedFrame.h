/// @file
/// The motion of a frame that is fixed to a link, from what the link answers about its own frames.
#pragma once

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"

namespace Kt::detail {

/// Whether a link answers where its frames are and how they move.
template <class Link, class Active>
concept AnswersFrames = requires(const Link& link, Active& active) {
  link.primaryFrame();
  link.primaryFrameInSystem(active.activePositionState());
  link.dhFrameInSystem(active.activePositionState());
  link.primaryFrameVelocityInSystem(active);
  link.dhFrameVelocityInLocal(active);
  link.dhFrameAccelerationInLocal(active);
};

/// Place of the frame in the system.
template <class Link, class Active>
KtCoordinateSystemTransformation attachedPlacement(const Link& link, Active& active,
                                                   const KtCoordinateSystemTransformation& frame) {
  return link.primaryFrameInSystem(active.activePositionState()) * frame;
}

/// Velocity of the frame's origin and angular velocity, in system axes.
template <class Link, class Active>
KtGeneralMotion attachedVelocity(const Link& link, Active& active,
                                 const KtCoordinateSystemTransformation& frame) {
  const KtVector r =
      link.primaryFrameInSystem(active.activePositionState()).orientation() * frame.translation();
  const KtGeneralMotion& primary = link.primaryFrameVelocityInSystem(active);
  return {primary.linear() + primary.angular().cross(r), primary.angular()};
}

/// Acceleration of the frame's origin and angular acceleration, in system axes.
template <class Link, class Active>
KtGeneralMotion attachedAcceleration(const Link& link, Active& active,
                                     const KtCoordinateSystemTransformation& frame) {
  const KtCoordinateSystemTransformation inDh = link.primaryFrame() * frame;
  const KtCoordinateSystemTransformation inSystem =
      link.dhFrameInSystem(active.activePositionState()) * inDh;
  const KtVector w = link.dhFrameVelocityInLocal(active).angular();
  KtGeneralMotion motion = inDh.inverse() * link.dhFrameAccelerationInLocal(active);
  const KtVector centripetal = w.cross(w.cross(inDh.translation()));
  motion.setLinear(motion.linear() + inDh.orientation().inverse() * centripetal);
  motion.transformBy(inSystem.orientation());
  return motion;
}

}  // namespace Kt::detail
