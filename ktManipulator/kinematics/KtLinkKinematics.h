#pragma once

#include "ktManipulator/foundation/core/KtCacheFlag.h"
#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"
#include "ktManipulator/foundation/xml/KtBaseExpressionTreeElement.h"

class KtArticulatedBodyDynamics;
class KtArticulatedBodyInertia;
class KtGeneralForce;
class KtJointActuator;

/// The joint model of a link: how the link's frame moves relative to its inboard neighbour's, as a
/// function of one joint parameter q, a length in m or an angle in rad.
///
/// The frame in which the joint transformation ends is the link's DH frame. Transformations are
/// given as the DH frame in the inboard frame, T_inboard_dh. Motions are those of the DH frame
/// relative to the inboard frame, in the DH frame's axes at its origin.
///
/// A model has to supply the transformation only: velocity and acceleration have defaults by
/// differences. Results are kept in the object and returned by reference: a reference holds until
/// the next call on the same object. Constant operations write them, so that an object belongs to
/// one thread at a time.
class KT_EXPORT KtLinkKinematics : public KtBaseExpressionTreeElement {
 public:
  /// Also brings the inverse of the primary frame up to date.
  bool read(KtXmlReader& reader) override;
  void registerComponents() override;

  /// Whether the primary frames are equal within a tolerance; see
  /// `KtCoordinateSystemTransformation::approxEq`.
  virtual bool approxEq(const KtLinkKinematics& other, double tolerance) const;
  /// The link's primary frame, in which its shapes and mass properties are given, in its DH frame.
  virtual const KtCoordinateSystemTransformation& primaryFrame() const { return primaryFrame_; }
  /// The inverse of `primaryFrame()`.
  virtual const KtCoordinateSystemTransformation& primaryFrameInverse() const {
    return primaryFrameInverse_;
  }
  /// Sets the primary frame and its inverse.
  virtual void setPrimaryFrame(const KtCoordinateSystemTransformation& frame);
  /// The DH frame in the inboard frame at q.
  virtual const KtCoordinateSystemTransformation& calculateTransform(double q) const = 0;
  /// Post-multiplies t by the joint transformation at q.
  virtual void transformBy(KtCoordinateSystemTransformation& t, double q) const = 0;
  /// The velocity of the DH frame relative to the inboard frame.
  ///
  /// This default takes the forward difference of `calculateTransform` over a step of 1e-08. It is
  /// good to about the root of the machine's precision, but not where the transformation's
  /// quaternion changes its sign within the step.
  ///
  /// @param q     joint parameter
  /// @param qDot  its rate
  virtual const KtGeneralMotion& calculateVelocity(double q, double qDot) const;
  /// The acceleration of the DH frame with the inboard frame at rest.
  ///
  /// This default takes forward differences of `calculateVelocity` over steps of 1e-08. At a moving
  /// joint that is a second difference of the transformation: it is noisy, with errors of the order
  /// of the velocity squared.
  virtual const KtGeneralMotion& calculateAcceleration(double q, double qDot, double qDotDot) const;
  /// The joint torque (or force) that accelerates an inertia, given in the DH frame, by a unit of
  /// joint acceleration: s . I s, with s the unit motion.
  virtual double unitAccelerationTorque(double q, const KtArticulatedBodyInertia& inertia) const;
  /// The joint torque (or force) that holds a force given in the DH frame at its origin: the power
  /// of the force at a unit of joint rate.
  virtual double torqueRequiredToExert(double q, const KtGeneralForce& force) const;
  /// An upper bound for the distance in m between the origins of the DH frame and the inboard
  /// frame, over the actuator's range.
  virtual double upperBoundDhFrameDistance(const KtJointActuator& actuator) const = 0;
  /// Adds a child's articulated dynamics, seen through this joint, to its parent's.
  ///
  /// @param parent   dynamics in the inboard frame
  /// @param child    dynamics in the DH frame
  /// @param q        joint parameter
  /// @param inertia  the joint's own inertia, which is added to the child's along the joint
  /// @param torque   the joint's torque (or force)
  /// @return whether anything was added
  virtual bool addChildArbdToParent(KtArticulatedBodyDynamics& parent,
                                    const KtArticulatedBodyDynamics& child, double q,
                                    double inertia, double torque) const;
  /// Scales the model's lengths. The primary frame stays.
  virtual void scaleBy(double factor) = 0;
  /// Moves the inboard reference: the transformation becomes t times what it was.
  virtual void transformBy(const KtCoordinateSystemTransformation& t) = 0;
  /// The power of a length scale with which q scales: 1 for a length, 0 for an angle.
  virtual double jointParameterScalability() const = 0;
  /// Inserts a transformation behind the model's fixed inboard part.
  virtual void changeInboardFrameBy(const KtCoordinateSystemTransformation& t) = 0;

  /// Exact equality of the primary frames.
  bool operator==(const KtLinkKinematics& other) const {
    return primaryFrame_ == other.primaryFrame_ &&
           primaryFrameInverse_ == other.primaryFrameInverse_;
  }

 protected:
  KtLinkKinematics() = default;

  /// Sets `resultTransform_` to the joint transformation at q, from the identity.
  void transformIdentityBy(double q) const {
    resultTransform_.setToIdentity();
    transformBy(resultTransform_, q);
  }
  /// `resultTransform_`, computed first unless it was for this q and is still valid.
  template <class Compute>
  const KtCoordinateSystemTransformation& keptTransform(double q, Compute&& compute) const {
    if (transformValid_ && q == lastJointParameter_) return resultTransform_;
    lastJointParameter_ = q;
    compute();
    transformValid_ = true;
    return resultTransform_;
  }

  // Results of constant operations, good until the next call.
  mutable KtCoordinateSystemTransformation resultTransform_;  ///< Of `calculateTransform`.
  mutable KtGeneralMotion resultVelocity_;                    ///< Of `calculateVelocity`.
  mutable KtGeneralMotion resultAcceleration_;                ///< Of `calculateAcceleration`.
  // The state of resultTransform_, for models that keep it
  mutable double lastJointParameter_ = 0.0;  ///< The q that it was computed for.
  mutable KtCacheFlag transformValid_;       ///< Whether nothing has changed since.

 private:
  // Written to files
  KtCoordinateSystemTransformation primaryFrame_;
  // Computed from it
  KtCoordinateSystemTransformation primaryFrameInverse_;
};
