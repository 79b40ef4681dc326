#pragma once

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// How a propagation is to check for collisions: a record for programs, which pass its values on.
/// No operation of the library reads it.
class KT_EXPORT KtPropagationDescriptor
    : public KtXmlPersistent<KtPropagationDescriptor, KtXmlCompoundType> {
 public:
  void registerComponents() override;

  /// Whether to check at all; true by default.
  virtual bool checkForCollisions() const { return checkForCollisions_; }
  virtual void setCheckForCollisions(bool value) { checkForCollisions_ = value; }
  /// The distance from which on links count as collided, m; 0.001 by default.
  virtual KtReal collisionDetectionTolerance() const { return collisionDetectionTolerance_; }
  virtual void setCollisionDetectionTolerance(KtReal distance) {
    collisionDetectionTolerance_ = distance;
  }
  /// The level of detail of the bounding volumes that are checked; 1 by default.
  virtual KtU32 collisionDetectionFidelity() const { return collisionDetectionFidelity_; }
  virtual void setCollisionDetectionFidelity(KtU32 level) { collisionDetectionFidelity_ = level; }

  bool operator==(const KtPropagationDescriptor&) const = default;
  static const KtToken& classToken() { return KtManip::KtPropagationDescriptorToken; }

 private:
  KtXmlBasicType<bool> checkForCollisions_{true};
  KtXmlBasicType<KtReal> collisionDetectionTolerance_{0.001};
  KtXmlBasicType<KtU32> collisionDetectionFidelity_{1U};
};
