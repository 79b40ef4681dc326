#pragma once

#include "ktManipulator/foundation/containers/KtBaseExpressionTreeContainer.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/kinematics/KtLinkKinematics.h"

/// The holder of a link's joint model. It accepts `KtDenavitHartenberg`, `KtScrewTypeLink` and
/// `KtQuadrilateralTypeLink`, and forwards to the model what it is asked.
///
/// An empty holder answers as a link that is fixed to its inboard neighbour: frames and
/// transformation are the identity, motions and torques zero, and changes do nothing. The objects
/// that it then refers to are shared and constant.
class KT_EXPORT KtLinkKinematicsContainer
    : public KtXmlPersistent<KtLinkKinematicsContainer,
                             KtBaseExpressionTreeContainer<KtLinkKinematics>> {
 public:
  /// The identity: what an empty holder refers to.
  static const KtCoordinateSystemTransformation m_theIdentity;
  /// Zero: what an empty holder refers to.
  static const KtGeneralMotion m_theNullMotion;

  void registerComponentCreators() override;

  /// See `KtLinkKinematics`.
  virtual const KtCoordinateSystemTransformation& primaryFrame() const;
  /// See `KtLinkKinematics`.
  virtual const KtCoordinateSystemTransformation& primaryFrameInverse() const;
  /// See `KtLinkKinematics`. An empty holder reports any frame but the identity.
  virtual void setPrimaryFrame(const KtCoordinateSystemTransformation& frame);
  /// See `KtLinkKinematics`.
  virtual const KtCoordinateSystemTransformation& calculateTransform(double q) const;
  /// See `KtLinkKinematics`.
  ///
  /// @return whether there is a model
  virtual bool transformBy(KtCoordinateSystemTransformation& t, double q) const;
  /// See `KtLinkKinematics`.
  ///
  /// @return whether there is a model
  virtual bool transformBy(const KtCoordinateSystemTransformation& t);
  /// See `KtLinkKinematics`.
  virtual const KtGeneralMotion& calculateVelocity(double q, double qDot) const;
  /// See `KtLinkKinematics`.
  virtual const KtGeneralMotion& calculateAcceleration(double q, double qDot, double qDotDot) const;
  /// See `KtLinkKinematics`.
  virtual double unitAccelerationTorque(double q, const KtArticulatedBodyInertia& inertia) const;
  /// See `KtLinkKinematics`.
  virtual double torqueRequiredToExert(double q, const KtGeneralForce& force) const;
  /// See `KtLinkKinematics`.
  virtual void scaleBy(double factor);
  /// See `KtLinkKinematics`.
  virtual bool addChildArbdToParent(KtArticulatedBodyDynamics& parent,
                                    const KtArticulatedBodyDynamics& child, double q,
                                    double inertia, double torque) const;
  /// See `KtLinkKinematics`.
  virtual double jointParameterScalability() const;

  bool operator==(const KtLinkKinematicsContainer&) const = default;
  static const KtToken& classToken() { return KtManip::KtLinkKinematicsContainerToken; }
};

extern template class KtBaseExpressionTreeContainer<KtLinkKinematics>;
