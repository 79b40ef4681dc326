#pragma once

#include <string>
#include <utility>

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"

class KtIndividualManipulator;
class KtManipulatorActiveState;
class KtVelocityState;

/// A passive damper on a joint. It acts on a weighted sum over joints that are named by their
/// links, so that one damper can couple several joints. Its two lists are parallel.
class KT_EXPORT KtDamperProperties : public KtXmlPersistent<KtDamperProperties, KtXmlCompoundType> {
 public:
  /// One real for each joint.
  using Reals = KtXmlVectorType<KtXmlBasicType<double>>;
  /// One link identifier for each joint.
  using Labels = KtXmlVectorType<KtXmlBasicType<std::string>>;

  void registerComponents() override;

  /// The damping, by which the weighted sum is multiplied once; 0 by default.
  virtual double damperConstant() const { return damperConstant_; }
  virtual void setDamperConstant(double value) { damperConstant_ = value; }
  /// The weight of each joint; empty by default.
  virtual const Reals& weightingFactors() const { return weightingFactors_; }
  virtual void setWeightingFactors(Reals factors) { weightingFactors_ = std::move(factors); }
  /// The identifiers of the joints' links; empty by default.
  virtual const Labels& associatedJoints() const { return associatedJoints_; }
  virtual void setAssociatedJoints(Labels identifiers) {
    associatedJoints_ = std::move(identifiers);
  }
  /// The damping times the weighted sum of the joints' rates. It has the sign of the rate: who
  /// applies it takes the opposite.
  ///
  /// Lists of differing lengths are reported and give 0. An identifier that the manipulator doesn't
  /// know is reported and its joint left out, at each call. A joint without an entry in the state,
  /// such as that of the root, counts as 0.
  virtual double torque(const KtIndividualManipulator& manipulator,
                        const KtVelocityState& state) const;
  /// The same for the velocity state of an active state.
  virtual double torque(const KtIndividualManipulator& manipulator,
                        const KtManipulatorActiveState& active) const;

  /// Whether no joint is associated, and no list has an entry.
  bool isEmpty() const noexcept {
    return associatedJoints_.elements().empty() && weightingFactors_.elements().empty();
  }

  bool operator==(const KtDamperProperties&) const = default;
  static const KtToken& classToken();

 private:
  KtXmlBasicType<double> damperConstant_;
  Reals weightingFactors_;
  Labels associatedJoints_;
};
