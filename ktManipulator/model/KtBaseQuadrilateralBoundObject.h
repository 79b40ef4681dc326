#pragma once

#include <string>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/kinematics/KtQuadrilateralTypeLink.h"
#include "ktManipulator/model/KtBaseGeneralBoundObject.h"

/// A body that rides on a frame of a link's four-bar linkage; what the classes of such bodies have
/// in common.
class KT_EXPORT KtBaseQuadrilateralBoundObject : public KtBaseGeneralBoundObject {
 public:
  void registerComponents() override;

  /// Label of the link, which must have a `KtQuadrilateralTypeLink` as its joint model.
  virtual const std::string& linkIdentifier() const { return linkIdentifier_; }
  /// Sets what `linkIdentifier()` answers.
  virtual void setlinkIdentifier(const std::string& label) { linkIdentifier_ = label; }

  /// Exact equality. The last location does not count.
  bool operator==(const KtBaseQuadrilateralBoundObject& other) const;

 protected:
  /// What a class of bodies rides on.
  struct Seat {
    const char* className;                         ///< For messages.
    KtQuadrilateralTypeLink::JointType jointType;  ///< The form of linkage that has the part.
    /// The frame, in the inboard frame of the linkage's link.
    const KtCoordinateSystemTransformation& (KtQuadrilateralTypeLink::*frame)(double q) const;
  };

  /// Does what `locationInSystem` says.
  const KtCoordinateSystemTransformation& locationOn(
      const Seat& seat, KtManipulatorActiveState& activeState,
      const KtIndividualManipulator& manipulator) const;

 private:
  KtXmlBasicType<std::string> linkIdentifier_;
  mutable KtCoordinateSystemTransformation location_;
};
