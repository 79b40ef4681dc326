#pragma once

#include "ktManipulator/constraints/KtBaseStateConstraint.h"
#include "ktManipulator/foundation/function/KtMultivariableConstraintContainer.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"

/// A state constraint given by a constraint of many variables, which are the joint positions in
/// the order of the manipulator's link indices.
class KT_EXPORT KtMultivariableJointStateConstraint
    : public KtXmlPersistent<KtMultivariableJointStateConstraint, KtBaseStateConstraint> {
 public:
  void registerComponents() override;
  /// The value of the constraint's function; 0 without one.
  double evaluate(const KtPositionState& position) const override;
  /// The partial derivatives as the constraint gives them; no entries without one. The flag is not
  /// read, and the gradient buffer is neither used nor changed.
  const std::vector<double>& gradient(const KtPositionState& position,
                                      bool normalized) const override;

  /// The constraint, or null by default; owned by this object.
  virtual const KtBaseMultivariableConstraint* constraint() const {
    return constraint_.topElement();
  }
  virtual KtBaseMultivariableConstraint* constraint() { return constraint_.topElement(); }
  /// Makes the constraint a copy of the argument.
  virtual void setConstraint(const KtBaseMultivariableConstraint& constraint) {
    constraint_.setTopElement(constraint);
  }

  /// Exact equality, also of the gradient buffers.
  bool operator==(const KtMultivariableJointStateConstraint&) const = default;
  static const KtToken& classToken() { return KtManip::KtMultivariableJointStateConstraintToken; }

 private:
  KtMultivariableConstraintContainer constraint_;
};
