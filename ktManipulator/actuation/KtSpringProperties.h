#pragma once

#include <string>
#include <utility>

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"

class KtIndividualManipulator;
class KtManipulatorActiveState;
class KtPositionState;

/// A passive spring on a joint. It acts on a weighted sum over joints that are named by their
/// links, so that one spring can couple several joints. Its three lists are parallel.
class KT_EXPORT KtSpringProperties : public KtXmlPersistent<KtSpringProperties, KtXmlCompoundType> {
 public:
  /// One real for each joint.
  using Reals = KtXmlVectorType<KtXmlBasicType<double>>;
  /// One link identifier for each joint.
  using Labels = KtXmlVectorType<KtXmlBasicType<std::string>>;

  void registerComponents() override;

  /// The stiffness, by which the weighted sum is multiplied once; 0 by default.
  virtual double springConstant() const { return springConstant_; }
  virtual void setSpringConstant(double value) { springConstant_ = value; }
  /// The weight of each joint; empty by default.
  virtual const Reals& weightingFactors() const { return weightingFactors_; }
  virtual void setWeightingFactors(Reals factors) { weightingFactors_ = std::move(factors); }
  /// The position at which each joint is at rest; empty by default.
  virtual const Reals& springOffsets() const { return springOffsets_; }
  virtual void setSpringOffsets(Reals offsets) { springOffsets_ = std::move(offsets); }
  /// The identifiers of the joints' links; empty by default.
  virtual const Labels& associatedJoints() const { return associatedJoints_; }
  virtual void setAssociatedJoints(Labels identifiers) {
    associatedJoints_ = std::move(identifiers);
  }
  /// The stiffness times the weighted sum of the joints' positions less their offsets. It has the
  /// sign of the displacement: who applies it takes the opposite.
  ///
  /// Lists of differing lengths are reported and give 0. An identifier that the manipulator doesn't
  /// know is reported and its joint left out, at each call. A joint without an entry in the state,
  /// such as that of the root, counts as 0.
  virtual double torque(const KtIndividualManipulator& manipulator,
                        const KtPositionState& state) const;
  /// The same for the position state of an active state.
  virtual double torque(const KtIndividualManipulator& manipulator,
                        const KtManipulatorActiveState& active) const;

  /// Whether no joint is associated, and no list has an entry.
  bool isEmpty() const noexcept {
    return associatedJoints_.elements().empty() && weightingFactors_.elements().empty() &&
           springOffsets_.elements().empty();
  }

  bool operator==(const KtSpringProperties&) const = default;
  static const KtToken& classToken();

 private:
  KtXmlBasicType<double> springConstant_;
  Reals weightingFactors_;
  Reals springOffsets_;
  Labels associatedJoints_;
};
