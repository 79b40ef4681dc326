/// @file
/// What the records of a link's velocities and of its accelerations have in common.
#pragma once

#include <array>

#include "ktManipulator/foundation/containers/KtXmlFlagMask.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

namespace Kt::detail {

/// Six motions of a link, each with a flag that tells whether it holds. Files have the first three
/// of them.
///
/// @tparam State  the class of the record, which is derived from this
template <class State>
class LinkMotions : public KtXmlPersistent<State, KtXmlCompoundType> {
 public:
  /// Reads the state, valid flags included; motions that files don't have get invalid. See
  /// `KtXmlObject::read`.
  bool read(KtXmlReader& reader) override {
    const bool good = KtXmlCompoundType::read(reader);
    valid_.clearUnpersisted();
    return good;
  }

  /// Whether the motion of the DH frame in its own axes holds.
  bool localDhValid() const noexcept { return valid_.test(kDhFrameInLocal); }
  void setLocalDhValid(bool valid) noexcept { valid_.set(kDhFrameInLocal, valid); }
  /// Whether the motion of the DH frame in system axes holds.
  bool systemDhValid() const noexcept { return valid_.test(kDhFrameInSystem); }
  void setSystemDhValid(bool valid) noexcept { valid_.set(kDhFrameInSystem, valid); }
  /// Whether the motion of the primary frame holds.
  bool systemPrimaryValid() const noexcept { return valid_.test(kPrimaryFrameInSystem); }
  void setSystemPrimaryValid(bool valid) noexcept { valid_.set(kPrimaryFrameInSystem, valid); }
  /// Whether the motion of the centre of mass holds.
  bool localComValid() const noexcept { return valid_.test(kComInLocal); }
  void setLocalComValid(bool valid) noexcept { valid_.set(kComInLocal, valid); }
  /// Makes all six motions invalid.
  void invalidateAll() noexcept { valid_.clear(); }

  /// Exact equality of what files have.
  bool operator==(const LinkMotions& other) const {
    return KtXmlCompoundType::operator==(other) && valid_ == other.valid_ &&
           motions_[0] == other.motions_[0] && motions_[1] == other.motions_[1] &&
           motions_[2] == other.motions_[2];
  }

 protected:
  /// Which of the motions.
  enum Motion : unsigned {
    kDhFrameInLocal,
    kDhFrameInSystem,
    kPrimaryFrameInSystem,
    kComInLocal,
    kMomentum,
    kCompositeMomentum
  };

  /// A motion.
  const KtGeneralMotion& motion(Motion which) const noexcept { return motions_[which]; }
  /// Sets a motion and marks it as valid.
  void setMotion(Motion which, const KtGeneralMotion& motion) noexcept {
    motions_[which] = motion;
    valid_.set(which);
  }
  void setMotion(Motion which, const KtVector& linear, const KtVector& angular) noexcept {
    motions_[which].setLinear(linear);
    motions_[which].setAngular(angular);
    valid_.set(which);
  }
  /// Whether a motion holds.
  bool motionValid(Motion which) const noexcept { return valid_.test(which); }
  void setMotionValid(Motion which, bool valid) noexcept { valid_.set(which, valid); }
  /// Registers the motions that files have, under their names, and their flags.
  void registerMotions(const KtToken& dhFrameInLocal, const KtToken& dhFrameInSystem,
                       const KtToken& primaryFrameInSystem) {
    this->registerComponent(dhFrameInLocal, &motions_[kDhFrameInLocal]);
    this->registerComponent(dhFrameInSystem, &motions_[kDhFrameInSystem]);
    this->registerComponent(primaryFrameInSystem, &motions_[kPrimaryFrameInSystem]);
    this->registerComponent(KtManip::KtLocalDhValidToken, valid_.component(kDhFrameInLocal));
    this->registerComponent(KtManip::KtSystemDhValidToken, valid_.component(kDhFrameInSystem));
    this->registerComponent(KtManip::KtSystemPrimaryValidToken,
                            valid_.component(kPrimaryFrameInSystem));
  }

 private:
  KtXmlFlagMask<3> valid_;
  std::array<KtGeneralMotion, 6> motions_;
};

}  // namespace Kt::detail
