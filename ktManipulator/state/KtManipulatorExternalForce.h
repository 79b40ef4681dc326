#pragma once

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/geometry/KtGeneralForce.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The forces from outside on the links of one manipulator, one for each link but the root by
/// `linkIndex`, and one for the base; N and N m.
///
/// A plain value that knows no manipulator and fits one by its size alone.
class KT_EXPORT KtManipulatorExternalForce
    : public KtXmlPersistent<KtManipulatorExternalForce, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// The forces on the links. Empty by default.
  virtual const KtXmlVectorType<KtGeneralForce>& linkForces() const { return linkForces_; }
  virtual void setLinkForces(const KtXmlVectorType<KtGeneralForce>& forces) {
    linkForces_ = forces;
  }
  /// The force on the base. Zero by default.
  virtual const KtGeneralForce& baseForce() const { return baseForce_; }
  virtual void setBaseForce(const KtGeneralForce& force) { baseForce_ = force; }
  /// The force on the link of an index, that on the base for `ktBaseIndex`. An index beyond the end
  /// is reported and gives `m_theNullGeneralForce`.
  virtual const KtGeneralForce& operator[](KtU32 index) const {
    if (index < linkForces_.elements().size()) return linkForces_[index];
    return index == ktBaseIndex ? baseForce_ : outOfRange(index);
  }
  /// The same, to be changed; unguarded.
  virtual KtGeneralForce& operator[](KtU32 index) {
    return index == ktBaseIndex ? baseForce_ : linkForces_[index];
  }
  /// Sets the number of links. Those that are new get a zero force, those that stay keep theirs.
  virtual void resize(KtU32 count) { linkForces_.resize(count); }
  /// Makes all forces zero, for as many links as there are.
  virtual void setToZeros();

  bool operator==(const KtManipulatorExternalForce&) const = default;
  static const KtToken& classToken() { return KtManip::KtManipulatorExternalForceToken; }

  /// The shared zero force.
  static const KtGeneralForce m_theNullGeneralForce;

 private:
  static const KtGeneralForce& outOfRange(KtU32 index);

  KtXmlVectorType<KtGeneralForce> linkForces_;
  KtGeneralForce baseForce_;
};

extern template class KtXmlVectorType<KtManipulatorExternalForce>;
