#pragma once

#include "ktManipulator/foundation/core/KtOnDemand.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"
#include "ktManipulator/foundation/xml/KtBaseExpressionTreeElement.h"

class KtAccelerationState;
class KtIndividualManipulator;
class KtPositionState;
class KtVelocityState;

/// A relation among the motions of a manipulator's base and joints that must hold at all times,
/// J z = const with the Jacobian J of the constraint.
///
/// z is the manipulator's velocity: for a fixed base the joint velocities by link index; for a free
/// base the six of the base's motion, linear first, and then the joints.
class KT_EXPORT KtBaseStateEqualityConstraint : public KtBaseExpressionTreeElement {
 public:
  /// Number of rows: the degrees of freedom that the constraint takes.
  virtual KtU32 doc() const = 0;
  /// Moves the position to where the constraint holds; false if that failed.
  virtual bool constrainPosition(const KtIndividualManipulator& manipulator,
                                 KtPositionState& position) const = 0;
  /// Changes the velocity so that the constraint holds; false if that failed.
  virtual bool constrainVelocity(const KtIndividualManipulator& manipulator,
                                 const KtPositionState& position,
                                 KtVelocityState& velocity) const = 0;
  /// Changes the acceleration so that the constraint holds; false if that failed.
  virtual bool constrainAcceleration(const KtIndividualManipulator& manipulator,
                                     const KtPositionState& position,
                                     const KtVelocityState& velocity,
                                     KtAccelerationState& acceleration) const = 0;
  /// The Jacobian, `doc()` rows by the manipulator's `totalDof()` columns. The reference holds
  /// until the next call on this object.
  virtual const KtReArray& jacobian(const KtIndividualManipulator& manipulator,
                                    const KtPositionState& position) const = 0;
  /// The Jacobian's derivative by time, of the same shape. The reference holds until the next call
  /// on this object.
  virtual const KtReArray& jacobianDerivative(const KtIndividualManipulator& manipulator,
                                              const KtPositionState& position,
                                              const KtVelocityState& velocity) const = 0;

  /// Exact equality; the buffers take no part.
  bool operator==(const KtBaseStateEqualityConstraint&) const = default;

 protected:
  // Work space of derived classes: neither written nor compared, and not carried by a copy.

  /// Where a derived class keeps its Jacobian. Empty at first.
  KtReArray& jacobianBuffer() const { return buffers_.require().jacobian; }
  /// Where a derived class keeps its Jacobian's derivative. Empty at first.
  KtReArray& jacobianDerivativeBuffer() const { return buffers_.require().derivative; }

 private:
  struct Buffers {
    KtReArray jacobian;
    KtReArray derivative;
  };
  mutable KtOnDemand<Buffers> buffers_;
};
