#pragma once

#include <vector>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

class KtIndividualManipulator;
class KtManipulatorActiveState;

/// A frame that is fixed to a link, for constraints that need a point on a mechanism.
///
/// The caller passes the manipulator to each computing operation; this object only stores the index
/// for the caller. All results are in system axes.
class KT_EXPORT KtLinkAttachment : public KtXmlPersistent<KtLinkAttachment, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// Position of the manipulator in its system; 0 by default.
  virtual KtU32 manipulatorIndex() const { return manipulatorIndex_; }
  virtual void setManipulatorIndex(KtU32 index) { manipulatorIndex_ = index; }
  /// Label of the link; empty by default.
  virtual const KtString& linkIdentifier() const { return linkIdentifier_.value(); }
  virtual void setLinkIdentifier(const KtString& label) { linkIdentifier_ = label; }
  /// The frame in the link's primary frame; the identity by default.
  virtual const KtCoordinateSystemTransformation& frame() const { return frame_; }
  virtual void setFrame(const KtCoordinateSystemTransformation& frame) { frame_ = frame; }
  /// The pose of the frame in the system.
  ///
  /// @param placement  receives the pose; unchanged, with a message, if there is no such link
  virtual void calculatePlacement(const KtIndividualManipulator& manipulator,
                                  KtManipulatorActiveState& activeState,
                                  KtCoordinateSystemTransformation& placement) const;
  /// The velocity of the frame's origin, m/s, and the angular velocity, rad/s; both zero if the
  /// manipulator has no such link.
  ///
  /// @param velocity    is resized to `startIndex` + 6 entries; the last six receive the linear
  ///                    part and then the angular part
  /// @param startIndex  index of the first of the six entries
  virtual void calculateVelocity(const KtIndividualManipulator& manipulator,
                                 KtManipulatorActiveState& activeState,
                                 std::vector<double>& velocity, KtU32 startIndex) const;
  /// The acceleration of the frame's origin, m/s^2, and the angular acceleration, rad/s^2; both
  /// zero if the manipulator has no such link.
  ///
  /// @param acceleration  is extended to `startIndex` + 6 entries if it is shorter; the six from
  ///                      `startIndex` on receive the linear part and then the angular part
  /// @param startIndex    index of the first of the six entries
  virtual void calculateAcceleration(const KtIndividualManipulator& manipulator,
                                     KtManipulatorActiveState& activeState,
                                     std::vector<double>& acceleration, KtU32 startIndex) const;

  bool operator==(const KtLinkAttachment&) const = default;
  static const KtToken& classToken() { return KtManip::KtLinkAttachmentToken; }

 private:
  KtXmlBasicType<KtU32> manipulatorIndex_;
  KtXmlBasicType<KtString> linkIdentifier_;
  KtCoordinateSystemTransformation frame_;
};
