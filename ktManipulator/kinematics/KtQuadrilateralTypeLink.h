#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlEnumType.h"
#include "ktManipulator/foundation/core/KtCacheFlag.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/kinematics/KtLinkKinematics.h"

/// A planar four-bar of which one side is a slider, such as a hydraulic cylinder that moves a boom.
/// The joint parameter q, in m, is the slider's extension: its length is L = nominal length + q.
///
/// In the xy plane of the precursor's frame, the base side of length a leads from the origin along
/// x to the pivot of this link, from which the link's side of length d2 leads in the direction
/// theta. The side d1 leads from the origin along y. The side b joins the ends of d1 and d2. In the
/// fixed form the slider is the base side: a = L, b = opposite length; in the pivoted form it is
/// the side b = L, and a = opposite length.
///
///                  *  far end of the link's side (frame B)
///            b  .  /
///            .    / d2, theta from x
///       d1 +     /
///          |    /
///          |   /
///     ---- O--+  pivot: the DH frame; frame A
///           a
///
/// The loop closes when d1 sin(theta) - a cos(theta) = K, with
/// K = (a^2 + d1^2 + d2^2 - b^2) / (2 d2). Of the two solutions the one with the larger cosine is
/// taken, if both sines are positive, else that with the larger sine. Lengths that can't close are
/// reported, and the nearest configuration is taken. A `d2` of 0 leaves the angle undefined.
///
/// Velocities and accelerations are exact; at a dead centre of the linkage they are not finite.
/// Their linear part is, at the fixed form, along x as the slider's rate is in the precursor's
/// axes: it is not turned into the DH frame.
class KT_EXPORT KtQuadrilateralTypeLink
    : public KtXmlPersistent<KtQuadrilateralTypeLink, KtLinkKinematics> {
 public:
  /// Which side is the slider.
  enum JointType : KtU32 {
    kFixedSlider = 0,   ///< The base side: it keeps its direction.
    kPivotedSlider = 1  ///< The side that faces the base.
  };

  void xmlInit() override;
  void registerComponents() override;

  using KtLinkKinematics::approxEq;
  /// Kept until another q is asked for or a setter clears it; those of the distances along z,
  /// `scaleBy`, `read` and `transformBy` don't. A copy starts without.
  const KtCoordinateSystemTransformation& calculateTransform(double q) const override;
  /// Solves the loop and post-multiplies t by the joint transformation at q.
  void transformBy(KtCoordinateSystemTransformation& t, double q) const override;
  /// Exact.
  const KtGeneralMotion& calculateVelocity(double q, double qDot) const override;
  /// Exact.
  const KtGeneralMotion& calculateAcceleration(double q, double qDot,
                                               double qDotDot) const override;
  /// 0: no bound is known.
  double upperBoundDhFrameDistance(const KtJointActuator& actuator) const override;
  void scaleBy(double factor) override;
  void transformBy(const KtCoordinateSystemTransformation& t) override;
  /// 1: q is a length.
  double jointParameterScalability() const override { return 1.0; }
  void changeInboardFrameBy(const KtCoordinateSystemTransformation& t) override;

  /// Ties the words of the joint types to their values.
  virtual void registerJointTypeEnumerations();
  /// A `JointType`.
  virtual unsigned int jointType() const { return jointType_; }
  virtual void setJointType(unsigned int type);
  /// The fixed inboard transformation.
  virtual const KtCoordinateSystemTransformation& precursor() const { return precursor_; }
  virtual void setPrecursor(const KtCoordinateSystemTransformation& t);
  /// The slider's length at q = 0, m.
  virtual double nominalLength() const { return nominalLength_; }
  virtual void setNominalLength(double length);
  /// Length of the side d1, m.
  virtual double d1Length() const { return d1Length_; }
  virtual void setD1Length(double length);
  /// Length of the side d2, which the link carries, m.
  virtual double d2Length() const { return d2Length_; }
  virtual void setD2Length(double length);
  /// Length of the fixed side that faces the slider, m.
  virtual double oppositeLength() const { return oppositeLength_; }
  virtual void setOppositeLength(double length);
  /// Place of the DH frame and frame A along z, m.
  virtual double zDistanceA() const { return zDistanceA_; }
  /// A transformation that was stored before stays as it is.
  virtual void setZDistanceA(double distance) { zDistanceA_ = distance; }
  /// Place of frame B along z, m.
  virtual double zDistanceB() const { return zDistanceB_; }
  /// A transformation that was stored before stays as it is.
  virtual void setZDistanceB(double distance) { zDistanceB_ = distance; }
  /// A distance along z that files carry and scaling scales; no frame uses it.
  virtual double zDistanceC() const { return zDistanceC_; }
  virtual void setZDistanceC(double distance) { zDistanceC_ = distance; }
  /// Whether the primary frames and the seven lengths differ by no more than the tolerance, and the
  /// joint types are equal. The precursors are not compared.
  virtual bool approxEq(const KtQuadrilateralTypeLink& other, double tolerance) const;
  /// The frame at the pivot that doesn't turn, in the inboard frame.
  virtual const KtCoordinateSystemTransformation& frameATransform(double q) const;
  /// The frame at the far end of the side d2 whose x leads away along the side b, in the inboard
  /// frame. Kept like `calculateTransform`.
  virtual const KtCoordinateSystemTransformation& frameBTransform(double q) const;
  /// The DH frame moved by -L along its x, in the inboard frame.
  virtual const KtCoordinateSystemTransformation& frameCTransform(double q) const;

  /// The cosine that closes the loop with a sine, for a base side of length a that is not 0.
  double cosThetaFromSinTheta(double sinTheta, double a) const {
    return (sinTheta * d1Length_ - loop_.k) / a;
  }
  /// Forgets the transformations that are kept.
  void invalidateAllTransforms();

  /// Exact equality of the primary frames, the type, the precursor and the seven lengths.
  bool operator==(const KtQuadrilateralTypeLink& other) const;
  static const KtToken& classToken() { return KtManip::KtQuadrilateralTypeLinkToken; }

 private:
  // The loop at the last q that was solved.
  struct Loop {
    double length = 0.0;  // of the slider
    double sinTheta = 0.0;
    double cosTheta = 0.0;
    double thetaDot = 0.0;
    double k = 0.0;            // the loop constant K
    double denominator = 0.0;  // of the rate of theta
  };

  // Lengths of the sides a and b. Answers false after the report of a bad type.
  bool getSides(double& a, double& b, const char* operation) const;
  void solveLoop(double a, double b) const;

  // Written to files
  KtXmlEnumType<KtU32> jointType_;
  KtCoordinateSystemTransformation precursor_;
  KtXmlBasicType<KtReal> nominalLength_;
  KtXmlBasicType<KtReal> d1Length_;
  KtXmlBasicType<KtReal> d2Length_;
  KtXmlBasicType<KtReal> oppositeLength_;
  KtXmlBasicType<KtReal> zDistanceA_;
  KtXmlBasicType<KtReal> zDistanceB_;
  KtXmlBasicType<KtReal> zDistanceC_;
  // Filled by constant operations
  mutable Loop loop_;
  mutable double lastJointParameterB_ = 0.0;
  mutable KtCacheFlag frameBValid_;
  mutable KtCoordinateSystemTransformation frameA_;
  mutable KtCoordinateSystemTransformation frameB_;
  mutable KtCoordinateSystemTransformation frameC_;
};
