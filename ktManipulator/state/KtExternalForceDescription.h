#pragma once

#include "ktManipulator/foundation/geometry/KtGeneralForce.h"
#include "ktManipulator/foundation/geometry/KtLineSegment.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The external force on one link, to be shown as an arrow.
///
/// It is derived from other data and has a flag that tells whether it is up to date. Nothing of it
/// is written to files, and as equality is that of what files hold, any two are equal.
class KT_EXPORT KtExternalForceDescription
    : public KtXmlPersistent<KtExternalForceDescription, KtXmlCompoundType> {
 public:
  /// Whether the force is up to date. False by default.
  virtual bool valid() const { return valid_; }
  virtual void setValid(bool valid) { valid_ = valid; }

  /// The force, N, and its moment about the origin of the frame that it is given in, N m.
  const KtGeneralForce& externalLinkForce() const noexcept { return externalLinkForce_; }
  void setExternalLinkForce(const KtGeneralForce& force) noexcept { externalLinkForce_ = force; }
  /// The point that the force acts on, m. The other operations don't look at it.
  const KtVector& forceApplicationPoint() const noexcept { return forceApplicationPoint_; }
  void setForceApplicationPoint(const KtVector& point) noexcept { forceApplicationPoint_ = point; }
  /// A segment on the line of action: from its point closest to the origin, (F x M) / (F . F) for
  /// force F and moment M, on by F, a metre for each newton.
  ///
  /// @return the segment, kept in this object until the next call; `m_TheNullLineSegment` if the
  ///         force is exactly zero or not valid
  const KtLineSegment& representativeForceVector() const;

  /// Always true.
  bool operator==(const KtExternalForceDescription&) const noexcept { return true; }
  static const KtToken& classToken() { return KtManip::KtExternalForceDescriptionToken; }

  /// The shared segment of length 0 at the origin.
  static const KtLineSegment m_TheNullLineSegment;

 private:
  KtGeneralForce externalLinkForce_;
  KtVector forceApplicationPoint_;
  bool valid_ = false;
  // Filled by a constant operation
  mutable KtLineSegment representativeForceVector_;
};
