#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlEnumType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/core/KtAngle.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/inertia/KtJointMotion.h"
#include "ktManipulator/kinematics/KtLinkKinematics.h"

/// A rotational or prismatic joint by the parameters of Denavit and Hartenberg: link length a,
/// offset d (both in m), twist alpha and joint angle theta (both in rad).
///
/// With Rx, Rz rotations and Tx, Tz translations along an axis, the transformation is
///
///     paul          Rz(theta) Tz(d) Tx(a) Rx(alpha)
///     craig         Tx(a) Rx(alpha) Rz(theta) Tz(d)
///     general       precursor Rz(q), or precursor Tz(q)
///
/// and for generalPaul and generalCraig the precursor times that of paul and craig. The joint
/// parameter q takes the place of theta at a rotational and of d at a prismatic joint: what is
/// stored there is ignored. An offset of the joint's zero goes into the precursor.
///
/// In the DH frame's axes, the joint's axis is (0, sin alpha, cos alpha) for the paul types and
/// z for the others.
///
/// A joint type or DH type that is none of these is reported at each use.
///
/// @see R. P. Paul, Robot Manipulators, MIT Press 1981, ch. 2; J. J. Craig, Introduction to
///      Robotics, 3rd ed., Pearson 2005, ch. 3
class KT_EXPORT KtDenavitHartenberg
    : public KtXmlPersistent<KtDenavitHartenberg, KtLinkKinematics> {
 public:
  /// How the link moves.
  enum JointType : KtU32 {
    kRotational = 0,  ///< q is an angle.
    kPrismatic = 1    ///< q is a length.
  };
  /// Which convention the parameters follow.
  enum DhType : KtU32 {
    kPaul = 0,          ///< Frame at the outboard joint's axis.
    kGeneralPaul = 1,   ///< The same behind a precursor.
    kCraig = 2,         ///< Frame at the link's own joint's axis.
    kGeneralCraig = 3,  ///< The same behind a precursor.
    kGeneral = 4        ///< A precursor and a motion along its z; a, d, alpha, theta play no part.
  };

  KtDenavitHartenberg() { refreshMotion(); }

  bool read(KtXmlReader& reader) override;
  void xmlInit() override;
  void registerComponents() override;

  using KtLinkKinematics::approxEq;
  /// Kept until another q is asked for or a parameter is set. `scaleBy`, `read`, and `transformBy`
  /// on a type with a precursor leave what is kept: set the joint's type, for instance to what it
  /// is, to be rid of it. A copy starts without.
  const KtCoordinateSystemTransformation& calculateTransform(double q) const override;
  /// Post-multiplies t by the joint transformation at q, but for the type general: there the joint
  /// transformation replaces t.
  void transformBy(KtCoordinateSystemTransformation& t, double q) const override;
  /// Exact.
  const KtGeneralMotion& calculateVelocity(double q, double qDot) const override;
  /// Exact.
  const KtGeneralMotion& calculateAcceleration(double q, double qDot,
                                               double qDotDot) const override;
  /// At a rotational joint the distance doesn't depend on q but for the paul types, where twice the
  /// link length is added; at a prismatic one it is the larger of those at the limits.
  double upperBoundDhFrameDistance(const KtJointActuator& actuator) const override;
  bool addChildArbdToParent(KtArticulatedBodyDynamics& parent,
                            const KtArticulatedBodyDynamics& child, double q, double inertia,
                            double torque) const override;
  void scaleBy(double factor) override;
  /// Makes a paul or craig link general of its kind, and multiplies the precursor by t on its left.
  void transformBy(const KtCoordinateSystemTransformation& t) override;
  double jointParameterScalability() const override;
  /// Makes a paul or craig link general of its kind, and multiplies the precursor by t on its
  /// right.
  void changeInboardFrameBy(const KtCoordinateSystemTransformation& t) override;

  /// Ties the words of the joint types to their values.
  virtual void registerJointTypeEnumerations();
  /// Ties the words of the DH types to their values.
  virtual void registerDhTypeEnumerations();
  /// A `JointType`.
  virtual unsigned int jointType() const { return jointType_; }
  virtual void setJointType(unsigned int type);
  /// A `DhType`.
  virtual unsigned int dhType() const { return dhType_; }
  virtual void setDhType(unsigned int type);
  /// The fixed inboard transformation of the general types.
  virtual const KtCoordinateSystemTransformation& precursor() const { return precursor_; }
  virtual void setPrecursor(const KtCoordinateSystemTransformation& t);
  /// Joint angle of a prismatic joint.
  virtual const KtAngle& dhTheta() const { return theta_.value(); }
  virtual void setDhTheta(const KtAngle& theta);
  /// Link offset of a rotational joint, m.
  virtual double dhD() const { return d_; }
  virtual void setDhD(double d);
  /// Link length, m.
  virtual double dhA() const { return a_; }
  virtual void setDhA(double a);
  /// Link twist.
  virtual const KtAngle& dhAlpha() const { return alpha_.value(); }
  virtual void setDhAlpha(const KtAngle& alpha);
  /// The motion of the DH frame at a unit of joint rate, which doesn't depend on q. A bad type
  /// leaves `motion` as it was.
  virtual void getUnitFrameMotion(KtGeneralMotion& motion, double q) const;
  /// The acceleration of the DH frame, in its axes, when the joint moves but does not accelerate.
  ///
  /// @param qDot         joint rate
  /// @param omega        angular velocity of the inboard frame
  /// @param linearBase   acceleration that the inboard frame gives the DH frame's origin
  /// @param angularBase  angular acceleration of the inboard frame
  /// @param result       the sum of the bases and the terms of Coriolis and the centripetal force;
  ///                     a bad type leaves it as it was
  virtual void accelerationFromJointVelocity(double qDot, const KtVector& omega,
                                             const KtVector& linearBase,
                                             const KtVector& angularBase,
                                             KtGeneralMotion& result) const;
  /// Whether the types are equal and the precursors and the four parameters differ by no more than
  /// the tolerance. The primary frames are not compared.
  virtual bool approxEq(const KtDenavitHartenberg& other, double tolerance) const;

  /// The motion of the DH frame, for passes over many links; null for a bad type.
  const Kt::detail::JointMotion* jointMotion() const noexcept {
    return hasMotion_ ? &motion_ : nullptr;
  }

  /// Exact equality of the primary frames, the types, the precursor and the parameters.
  bool operator==(const KtDenavitHartenberg& other) const;
  /// An example of typical numbers, prismatic and of type paul. The primary frame's quaternion is
  /// not of unit length.
  static KtDenavitHartenberg defaultObject();
  static const KtToken& classToken() { return KtManip::KtDenavitHartenbergToken; }

 private:
  bool isPaul() const noexcept { return dhType_ == kPaul || dhType_ == kGeneralPaul; }
  bool isCraig() const noexcept { return dhType_ == kCraig || dhType_ == kGeneralCraig; }
  // The joint's axis in the outboard frame. Answers false after the report of a bad DH type.
  bool getAxis(KtVector& axis, const char* operation) const;
  void generalise();
  void refreshAngles();
  void refreshMotion() noexcept;
  // The transformation without its precursor, of a paul or craig type. A bad joint type is reported
  // and leaves the arguments as they were.
  void getJointTransform(double q, KtVector& p, KtOrientation& r) const;

  // Written to files
  KtXmlEnumType<KtU32> jointType_;
  KtXmlEnumType<KtU32> dhType_;
  KtCoordinateSystemTransformation precursor_;
  KtXmlBasicType<KtReal> a_;
  KtXmlBasicType<KtReal> d_;
  KtXmlBasicType<KtAngle> alpha_;
  KtXmlBasicType<KtAngle> theta_;
  // Computed from them
  double sinAlpha_ = 0.0;
  double cosAlpha_ = 1.0;
  double sinHalfAlpha_ = 0.0;
  double cosHalfAlpha_ = 1.0;
  double halfAlphaSign_ = 1.0;  // of the larger of the two above
  double sinHalfTheta_ = 0.0;
  double cosHalfTheta_ = 1.0;
  Kt::detail::JointMotion motion_;
  bool hasMotion_ = false;
};

extern template class KtXmlVectorType<KtDenavitHartenberg>;
