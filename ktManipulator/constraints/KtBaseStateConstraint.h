#pragma once

#include <vector>

#include "ktManipulator/foundation/xml/KtBaseExpressionTreeElement.h"

class KtPositionState;

/// A real function of a manipulator's joint positions that is meant to be not negative.
class KT_EXPORT KtBaseStateConstraint : public KtBaseExpressionTreeElement {
 public:
  /// The value of the function; the constraint holds where it is at least 0.
  virtual double evaluate(const KtPositionState& position) const = 0;
  /// The partial derivatives by the joint positions. The reference holds until the next call on
  /// this object.
  ///
  /// @param normalized  whether the caller asks for a gradient of length 1; a derived class may
  ///                    leave it unread
  virtual const std::vector<double>& gradient(const KtPositionState& position,
                                              bool normalized) const = 0;
  /// Scales the gradient buffer to length 1. One that is empty, zero or not a number stays.
  virtual void normalizeGradient() const;

  /// Exact equality of the gradient buffers, which belong to the value: a copy carries its own.
  bool operator==(const KtBaseStateConstraint&) const = default;

 protected:
  /// Where a derived class may keep its gradient. Not written to files. Empty by default.
  mutable std::vector<double> gradientBuffer_;
};
