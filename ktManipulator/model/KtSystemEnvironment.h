#pragma once

#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtXmlVector.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// What surrounds the manipulators of a system. No operation of the library acts on it by itself:
/// a program takes from here what it hands on.
class KT_EXPORT KtSystemEnvironment
    : public KtXmlPersistent<KtSystemEnvironment, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// The frame of the system in the world; the identity by default.
  virtual const KtCoordinateSystemTransformation& coordSysXForm() const { return coordSysXForm_; }
  virtual void setCoordSysXForm(const KtCoordinateSystemTransformation& t) { coordSysXForm_ = t; }
  /// The acceleration against which a body at rest is held up, upwards, m/s^2; zero by default.
  virtual const KtXmlVector& upGravityVector() const { return upGravityVector_; }
  virtual void setUpGravityVector(const KtXmlVector& gravity) { upGravityVector_ = gravity; }

  bool operator==(const KtSystemEnvironment&) const = default;
  static const KtToken& classToken() { return KtManip::KtEnvironmentToken; }

 private:
  KtCoordinateSystemTransformation coordSysXForm_;
  KtXmlVector upGravityVector_;
};
