/// @file
/// What the records of a link's velocities and of its accelerations are made of.
#pragma once

#include <array>

#include "ktManipulator/foundation/containers/KtXmlFlagMask.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"

namespace Kt::detail {

/// Six motions, each with a flag that tells whether it holds. Files have the first three of them.
class LinkMotions {
 public:
  /// Motion i.
  const KtGeneralMotion& operator[](unsigned i) const noexcept { return motions_[i]; }
  /// Whether motion i holds.
  bool valid(unsigned i) const noexcept { return valid_.test(i); }
  /// Sets motion i and marks it as valid.
  void set(unsigned i, const KtGeneralMotion& motion) noexcept {
    motions_[i] = motion;
    valid_.set(i);
  }
  /// The same from its two parts.
  void set(unsigned i, const KtVector& linear, const KtVector& angular) noexcept {
    motions_[i].setLinear(linear);
    motions_[i].setAngular(angular);
    valid_.set(i);
  }
  /// Sets what `valid` answers.
  void setValid(unsigned i, bool valid) noexcept { valid_.set(i, valid); }
  /// Makes those motions invalid that files don't have.
  void invalidateUnpersisted() noexcept { valid_.clearUnpersisted(); }
  /// Makes all motions invalid.
  void invalidateAll() noexcept { valid_.clear(); }

  /// Motion i as a component of the owner, for `registerComponents`.
  KtXmlObject* motionComponent(unsigned i) { return &motions_[i]; }
  /// The flag of motion i as a component of the owner.
  KtXmlObject* validComponent(unsigned i) { return valid_.component(i); }

  /// Exact equality of what files have.
  bool operator==(const LinkMotions& other) const noexcept {
    return valid_ == other.valid_ && motions_[0] == other.motions_[0] &&
           motions_[1] == other.motions_[1] && motions_[2] == other.motions_[2];
  }

 private:
  KtXmlFlagMask<3> valid_;
  std::array<KtGeneralMotion, 6> motions_;
};

}  // namespace Kt::detail
