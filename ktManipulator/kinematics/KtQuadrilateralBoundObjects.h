/// @file
/// The bodies that ride on a four-bar linkage.
#pragma once

#include <string>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/kinematics/KtBaseGeneralBoundObject.h"
#include "ktManipulator/kinematics/KtQuadrilateralTypeLink.h"

/// A body that rides on a frame of a link's four-bar linkage. The classes of such bodies differ by
/// the form of linkage that they need and by the frame that they ride on.
class KT_EXPORT KtBaseQuadrilateralBoundObject : public KtBaseGeneralBoundObject {
 public:
  void registerComponents() override;
  const KtCoordinateSystemTransformation& locationInSystem(
      KtManipulatorActiveState& activeState,
      const KtIndividualManipulator& manipulator) const override;

  /// Label of the link, which must have a `KtQuadrilateralTypeLink` as its joint model.
  virtual const std::string& linkIdentifier() const { return linkIdentifier_; }
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

  /// A body on a seat.
  explicit KtBaseQuadrilateralBoundObject(const Seat& seat) : seat_(seat) {}

 private:
  Seat seat_;
  KtXmlBasicType<std::string> linkIdentifier_;
  mutable KtCoordinateSystemTransformation location_;
};

/// The half of a fixed slider that rides on frame A of the linkage: it does not turn with the link.
class KT_EXPORT KtQuadrilateralFixedSliderJointOAObject
    : public KtXmlPersistent<KtQuadrilateralFixedSliderJointOAObject,
                             KtBaseQuadrilateralBoundObject> {
 public:
  KtQuadrilateralFixedSliderJointOAObject();  ///< A body without a shape, on no link.

  bool operator==(const KtQuadrilateralFixedSliderJointOAObject&) const = default;
  static const KtToken& classToken() {
    return KtManip::KtQuadrilateralFixedSliderJointOAObjectToken;
  }
};

/// The rod that faces a fixed slider; it rides on frame B of the linkage.
class KT_EXPORT KtQuadrilateralFixedSliderJointCBObject
    : public KtXmlPersistent<KtQuadrilateralFixedSliderJointCBObject,
                             KtBaseQuadrilateralBoundObject> {
 public:
  KtQuadrilateralFixedSliderJointCBObject();  ///< A body without a shape, on no link.

  bool operator==(const KtQuadrilateralFixedSliderJointCBObject&) const = default;
  static const KtToken& classToken() {
    return KtManip::KtQuadrilateralFixedSliderJointCBObjectToken;
  }
};

/// The half of a pivoted slider that rides on frame B of the linkage, at the far end of the link's
/// side.
class KT_EXPORT KtQuadrilateralPivotedSliderJointBObject
    : public KtXmlPersistent<KtQuadrilateralPivotedSliderJointBObject,
                             KtBaseQuadrilateralBoundObject> {
 public:
  KtQuadrilateralPivotedSliderJointBObject();  ///< A body without a shape, on no link.

  bool operator==(const KtQuadrilateralPivotedSliderJointBObject&) const = default;
  static const KtToken& classToken() {
    return KtManip::KtQuadrilateralPivotedSliderJointBObjectToken;
  }
};

/// The half of a pivoted slider that rides on frame C of the linkage.
class KT_EXPORT KtQuadrilateralPivotedSliderJointCObject
    : public KtXmlPersistent<KtQuadrilateralPivotedSliderJointCObject,
                             KtBaseQuadrilateralBoundObject> {
 public:
  KtQuadrilateralPivotedSliderJointCObject();  ///< A body without a shape, on no link.

  bool operator==(const KtQuadrilateralPivotedSliderJointCObject&) const = default;
  static const KtToken& classToken() {
    return KtManip::KtQuadrilateralPivotedSliderJointCObjectToken;
  }
};
