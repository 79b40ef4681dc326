#pragma once

#include <array>
#include <vector>

#include "ktManipulator/collision/KtShapeKeys.h"
#include "ktManipulator/foundation/geometry/KtCoordinateSystemTransformation.h"
#include "ktManipulator/foundation/geometry/KtGeneralMotion.h"

class KtManipulatorLink;

/// The record of one pair of shapes that collide: what the geometry found in this step, and what
/// friction has to remember from step to step.
///
/// The pair has two sides, 1 and 2. Operations that take a shape's key act on the side of that
/// shape; with the key of neither shape they change nothing and read side 1.
class KT_EXPORT KtShapeCollisionData {
 public:
  /// What the contact does.
  enum KtFrictionMode : KtU32 {
    kStatic = 0,        ///< The surfaces stick to each other.
    kKinetic = 1,       ///< They slide.
    kFirstContact = 2,  ///< They have just met: the state of a new record.
  };

  /// A record of no pair.
  KtShapeCollisionData() = default;
  /// The record of a pair: the first key is side 1, the second side 2.
  KtShapeCollisionData(const KtShapeKey& key1, const KtShapeKey& key2) {
    sides_[0].key = key1;
    sides_[1].key = key2;
  }

  /// The two shapes.
  KtShapeProximityKey key() const noexcept { return {sides_[0].key, sides_[1].key}; }
  /// Exchanges the two sides in everything that the record holds, the direction of the normal and
  /// of the line of action included.
  void swapSides() noexcept;

  /// The link of side 1, or null.
  const KtManipulatorLink* link1Pointer() const noexcept { return sides_[0].link; }
  /// The link of side 2, or null.
  const KtManipulatorLink* link2Pointer() const noexcept { return sides_[1].link; }
  /// Sets the link of a shape's side; not owned.
  void setLinkPointer(const KtShapeKey& key, const KtManipulatorLink* link) noexcept {
    if (Side* side = find(key)) side->link = link;
  }
  /// Manipulator index of side 1.
  KtU32 manipulatorOneID() const noexcept { return sides_[0].key.manipulatorIndex; }
  /// Manipulator index of side 2.
  KtU32 manipulatorTwoID() const noexcept { return sides_[1].key.manipulatorIndex; }
  /// Shape index of side 1.
  KtU32 shapeOneID() const noexcept { return sides_[0].key.shapeIndex; }
  /// Shape index of side 2.
  KtU32 shapeTwoID() const noexcept { return sides_[1].key.shapeIndex; }

  /// Closest vertex of side 1, where it is a polyhedron.
  const KtU32& closestPointIndex1() const noexcept { return sides_[0].closestPointIndex; }
  /// Closest vertex of side 2, where it is a polyhedron.
  const KtU32& closestPointIndex2() const noexcept { return sides_[1].closestPointIndex; }
  /// Sets the closest vertex of a shape's side.
  void setClosestPointIndex(const KtShapeKey& key, KtU32 index) noexcept {
    if (Side* side = find(key)) side->closestPointIndex = index;
  }

  /// Unit vector from side 1 towards side 2, in system axes.
  const KtVector& collisionNormal() const noexcept { return collisionNormal_; }
  void setCollisionNormal(const KtVector& normal) noexcept { collisionNormal_ = normal; }
  /// The contact point in the primary frame of side 1, m.
  const KtVector& contactPointRel1() const noexcept { return sides_[0].contactPointRel; }
  /// The contact point in the primary frame of side 2, m.
  const KtVector& contactPointRel2() const noexcept { return sides_[1].contactPointRel; }
  /// Sets the contact point in the primary frame of a shape's side.
  void setContactPointRel(const KtShapeKey& key, const KtVector& point) noexcept {
    if (Side* side = find(key)) side->contactPointRel = point;
  }
  /// Distance of the two shapes, m; zero or negative where they penetrate.
  double separationDistance() const noexcept { return separationDistance_; }
  void setSeparationDistance(double distance) noexcept { separationDistance_ = distance; }

  /// How many penetration points there are on each side.
  KtU32 numPenetrationPoints() const noexcept {
    return static_cast<KtU32>(penetrationPoints_.size());
  }
  /// A penetration point in the primary frame of a side, m; the zero vector if there is no such
  /// point.
  ///
  /// @param side  0 for side 1, 1 for side 2
  const KtVector& penetrationPointPrimary(KtU32 side, KtU32 index) const noexcept {
    return side < 2 && index < penetrationPoints_.size() ? penetrationPoints_[index][side]
                                                         : KtVector::zeroVector();
  }
  /// The same for the side of a shape.
  const KtVector& getPenetrationPointShapePrimary(const KtShapeKey& key,
                                                  KtU32 index) const noexcept {
    return penetrationPointPrimary(sideOf(key), index);
  }
  /// Removes all penetration points.
  void clearPenetrationPoints() noexcept { penetrationPoints_.clear(); }
  /// Adds a penetration point, given in the primary frames of side 1 and of side 2.
  void addPenetrationPoint(const KtVector& point1, const KtVector& point2) {
    penetrationPoints_.push_back({point1, point2});
  }

  /// The contact point in the primary frame of side 1, m.
  const KtVector& collisionPointPrimaryObject1() const noexcept {
    return sides_[0].collisionPointPrimary;
  }
  /// The contact point in the primary frame of side 2, m.
  const KtVector& collisionPointPrimaryObject2() const noexcept {
    return sides_[1].collisionPointPrimary;
  }
  /// Sets the contact point in the primary frame of a shape's side.
  void setCollisionPointPrimaryObject(const KtShapeKey& key, const KtVector& point) noexcept {
    if (Side* side = find(key)) side->collisionPointPrimary = point;
  }
  /// Unit vector from the penetration point of side 2 to that of side 1, in system axes.
  const KtVector& lineOfAction() const noexcept { return lineOfAction_; }
  void setLineOfAction(const KtVector& direction) noexcept { lineOfAction_ = direction; }

  /// Velocity of the primary frame of side 1 in this step.
  const KtGeneralMotion& velocityPrimaryObject1() const noexcept { return sides_[0].velocity; }
  /// Velocity of the primary frame of side 2 in this step.
  const KtGeneralMotion& velocityPrimaryObject2() const noexcept { return sides_[1].velocity; }
  /// Velocity of the primary frame of a shape's side in this step.
  const KtGeneralMotion& velocityPrimaryObject(const KtShapeKey& key) const noexcept {
    return sides_[sideOf(key)].velocity;
  }
  /// Sets the velocity of this step of a shape's side.
  void setVelocityPrimaryObject(const KtShapeKey& key, const KtGeneralMotion& velocity) noexcept {
    if (Side* side = find(key)) side->velocity = velocity;
  }
  /// Velocity of the primary frame of side 1 in the step before.
  const KtGeneralMotion& lastVelocityPrimaryObject1() const noexcept {
    return sides_[0].lastVelocity;
  }
  /// Velocity of the primary frame of side 2 in the step before.
  const KtGeneralMotion& lastVelocityPrimaryObject2() const noexcept {
    return sides_[1].lastVelocity;
  }
  /// Sets the velocity of the step before of a shape's side.
  void setLastVelocityPrimaryObject(const KtShapeKey& key,
                                    const KtGeneralMotion& velocity) noexcept {
    if (Side* side = find(key)) side->lastVelocity = velocity;
  }

  /// What the contact does.
  KtFrictionMode frictionMode() const noexcept { return frictionMode_; }
  void setFrictionMode(KtFrictionMode mode) noexcept { frictionMode_ = mode; }
  /// Where a static contact began, in the primary frame of side 1, m.
  const KtVector& staticStartCollisionPointInPrimary1() const noexcept {
    return sides_[0].staticStartPoint;
  }
  /// Where a static contact began, in the primary frame of side 2, m.
  const KtVector& staticStartCollisionPointInPrimary2() const noexcept {
    return sides_[1].staticStartPoint;
  }
  void setStaticStartCollisionPointInPrimary1(const KtVector& point) noexcept {
    sides_[0].staticStartPoint = point;
  }
  void setStaticStartCollisionPointInPrimary2(const KtVector& point) noexcept {
    sides_[1].staticStartPoint = point;
  }
  /// The primary frame of side 1 in the system when a static contact began.
  const KtCoordinateSystemTransformation& staticStartPrimaryFrame1InSystem() const noexcept {
    return sides_[0].staticStartFrame;
  }
  /// The primary frame of side 2 in the system when a static contact began.
  const KtCoordinateSystemTransformation& staticStartPrimaryFrame2InSystem() const noexcept {
    return sides_[1].staticStartFrame;
  }
  void setStaticStartPrimaryFrame1InSystem(const KtCoordinateSystemTransformation& t) noexcept {
    sides_[0].staticStartFrame = t;
  }
  void setStaticStartPrimaryFrame2InSystem(const KtCoordinateSystemTransformation& t) noexcept {
    sides_[1].staticStartFrame = t;
  }

 private:
  struct Side {
    KtShapeKey key;
    const KtManipulatorLink* link = nullptr;
    KtU32 closestPointIndex = 0;
    KtVector contactPointRel;
    KtVector collisionPointPrimary;
    KtGeneralMotion velocity;
    KtGeneralMotion lastVelocity;
    KtVector staticStartPoint;
    KtCoordinateSystemTransformation staticStartFrame;
  };

  KtU32 sideOf(const KtShapeKey& key) const noexcept { return key == sides_[1].key ? 1U : 0U; }
  Side* find(const KtShapeKey& key) noexcept {
    Side& side = sides_[sideOf(key)];
    return side.key == key ? &side : nullptr;
  }

  std::array<Side, 2> sides_;
  KtVector collisionNormal_;
  KtVector lineOfAction_;
  double separationDistance_ = 0.0;
  std::vector<std::array<KtVector, 2>> penetrationPoints_;
  KtFrictionMode frictionMode_ = kFirstContact;
};
