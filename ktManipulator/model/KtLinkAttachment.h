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
/// The operations that compute take the manipulator from their caller: the index in this object is
/// for the caller alone. All results are in system axes.
class KT_EXPORT KtLinkAttachment : public KtXmlPersistent<KtLinkAttachment, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// Position of the manipulator in its system; 0 by default.
  virtual KtU32 manipulatorIndex() const { return manipulatorIndex_; }
  /// Sets what `manipulatorIndex()` answers.
  virtual void setManipulatorIndex(KtU32 index) { manipulatorIndex_ = index; }
  /// Label of the link; empty by default.
  virtual const KtString& linkIdentifier() const { return linkIdentifier_.value(); }
  /// Sets what `linkIdentifier()` answers.
  virtual void setLinkIdentifier(const KtString& label) { linkIdentifier_ = label; }
  /// The frame in the link's primary frame; the identity by default.
  virtual const KtCoordinateSystemTransformation& frame() const { return frame_; }
  /// Sets what `frame()` answers.
  virtual void setFrame(const KtCoordinateSystemTransformation& frame) { frame_ = frame; }
  /// Where the frame stands in the system.
  ///
  /// @param placement  receives it; stays, with a message, if the manipulator has no such link
  virtual void calculatePlacement(const KtIndividualManipulator& manipulator,
                                  KtManipulatorActiveState& activeState,
                                  KtCoordinateSystemTransformation& placement) const;
  /// The velocity of the frame's origin, m/s, and the angular velocity, rad/s; both zero if the
  /// manipulator has no such link.
  ///
  /// @param velocity    is cut or filled up to `startIndex` + 6 entries, of which the last six
  ///                    receive the linear and then the angular part
  /// @param startIndex  where the six begin
  virtual void calculateVelocity(const KtIndividualManipulator& manipulator,
                                 KtManipulatorActiveState& activeState,
                                 std::vector<double>& velocity, KtU32 startIndex) const;
  /// The acceleration of the frame's origin, m/s^2, and the angular acceleration, rad/s^2; both
  /// zero if the manipulator has no such link.
  ///
  /// @param acceleration  is filled up to `startIndex` + 6 entries if it is shorter; the six from
  ///                      there on receive the linear and then the angular part
  /// @param startIndex    where the six begin
  virtual void calculateAcceleration(const KtIndividualManipulator& manipulator,
                                     KtManipulatorActiveState& activeState,
                                     std::vector<double>& acceleration, KtU32 startIndex) const;

  /// Exact equality.
  bool operator==(const KtLinkAttachment&) const = default;
  /// Name of the class in files.
  static const KtToken& classToken() { return KtManip::KtLinkAttachmentToken; }

 private:
  KtXmlBasicType<KtU32> manipulatorIndex_;
  KtXmlBasicType<KtString> linkIdentifier_;
  KtCoordinateSystemTransformation frame_;
};
