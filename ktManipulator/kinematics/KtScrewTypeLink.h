#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/kinematics/KtLinkKinematics.h"

/// A lead screw: the link moves along z of the precursor's frame by q, in m, and turns about it by
/// 2 pi times the pitch times q.
///
/// Velocity and acceleration are the differences of `KtLinkKinematics`; at a moving joint the
/// acceleration is noisy.
class KT_EXPORT KtScrewTypeLink : public KtXmlPersistent<KtScrewTypeLink, KtLinkKinematics> {
 public:
  void registerComponents() override;

  /// Kept until another q is asked for, or `setPitch`, `setPrecursor` or `changeInboardFrameBy` is
  /// called; other changes leave it. A copy starts without.
  const KtCoordinateSystemTransformation& calculateTransform(double q) const override;
  void transformBy(KtCoordinateSystemTransformation& t, double q) const override;
  /// The larger of the distances at the two limits; between them it is not more.
  double upperBoundDhFrameDistance(const KtJointActuator& actuator) const override;
  /// Scales the precursor's translation, and divides the pitch, so that the scaled screw makes the
  /// same turns. A factor that is not above 0 counts as 1e-300 there.
  void scaleBy(double factor) override;
  void transformBy(const KtCoordinateSystemTransformation& t) override;
  /// 1: q is a length.
  double jointParameterScalability() const override { return 1.0; }
  void changeInboardFrameBy(const KtCoordinateSystemTransformation& t) override;

  /// The fixed inboard transformation.
  virtual const KtCoordinateSystemTransformation& precursor() const { return precursor_; }
  virtual void setPrecursor(const KtCoordinateSystemTransformation& t);
  /// Turns per m.
  virtual double pitch() const { return pitch_; }
  virtual void setPitch(double turnsPerMetre);
  using KtLinkKinematics::approxEq;
  /// Whether the primary frames are equal within a tolerance. Precursor and pitch are not compared.
  virtual bool approxEq(const KtScrewTypeLink& other, double tolerance) const;

  /// Exact equality of the primary frames, the precursor and the pitch.
  bool operator==(const KtScrewTypeLink& other) const;
  static const KtToken& classToken() { return KtManip::KtScrewTypeLinkToken; }

 private:
  // Written to files
  KtCoordinateSystemTransformation precursor_;
  KtXmlBasicType<KtReal> pitch_{1.0};
};
