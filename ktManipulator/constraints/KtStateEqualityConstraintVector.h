#pragma once

#include "ktManipulator/constraints/KtBaseStateEqualityConstraint.h"
#include "ktManipulator/foundation/containers/KtXmlVariableVectorType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The equality constraints of one manipulator, as one constraint whose rows are those of all, in
/// order. It accepts `KtLinearStateEqualityConstraint`. A null entry counts as none.
class KT_EXPORT KtStateEqualityConstraintVector
    : public KtXmlPersistent<KtStateEqualityConstraintVector,
                             KtXmlVariableVectorType<KtBaseStateEqualityConstraint>> {
 public:
  using KtXmlPersistent::KtXmlPersistent;
  KtStateEqualityConstraintVector() = default;

  void registerComponentCreators() override;

  /// Does nothing: there are no components beside the entries.
  virtual void registerComponents();
  /// The sum of the constraints' `doc()`.
  virtual KtU32 doc() const;
  /// Lets every constraint change the position, in order, also behind one that failed.
  ///
  /// @return whether all gave true; true for an empty list
  virtual bool constrainPosition(const KtIndividualManipulator& manipulator,
                                 KtPositionState& position) const;
  /// The same for the velocity.
  virtual bool constrainVelocity(const KtIndividualManipulator& manipulator,
                                 const KtPositionState& position, KtVelocityState& velocity) const;
  /// The constraints' Jacobians one below the other, `doc()` rows by the manipulator's `totalDof()`
  /// columns. Each gets as many rows as its `doc()`; what its own array lacks is zero, what it has
  /// beyond is left out. The reference holds until the next call on this object.
  virtual const KtReArray& jacobian(const KtIndividualManipulator& manipulator,
                                    const KtPositionState& position) const;
  /// The same for the Jacobians' derivatives.
  virtual const KtReArray& jacobianDerivative(const KtIndividualManipulator& manipulator,
                                              const KtPositionState& position,
                                              const KtVelocityState& velocity) const;

  /// Exact equality of the constraints; the buffers take no part.
  bool operator==(const KtStateEqualityConstraintVector&) const = default;
  static const KtToken& classToken() { return KtManip::KtStateEqualityConstraintVectorToken; }

 private:
  struct Buffers {
    KtReArray jacobian;
    KtReArray derivative;
  };
  // Work space; a copy doesn't carry it.
  mutable KtOnDemand<Buffers> buffers_;
};

extern template class KtXmlVariableVectorType<KtBaseStateEqualityConstraint>;
