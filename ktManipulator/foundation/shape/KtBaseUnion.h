#pragma once

#include "ktManipulator/foundation/shape/KtBasePhysicalExtent.h"

/// Several shapes together as one. What it answers follows from its members.
class KT_EXPORT KtBaseUnion : public KtBasePhysicalExtent {
 public:
  KtShapeValues shapeType() const override { return kUnion; }
  void deleteBoundingVolumes() override;
  bool holds(const KtShape& part) const override;
  bool lookup(const std::string& label, const KtDataMap*& data) const override;
  bool isEmpty() const override;
  bool isConvex() const override { return false; }
  KtVector support(const KtVector& direction) const override;
  void boundingSpheres(std::vector<KtSphere>& spheres) const override;
  bool axisAlignedBoundingBox(const KtCoordinateSystemTransformation& t,
                              KtAxisAlignedBoundingBox& box) const override;
  using KtShape::intersectLineSegment;
  const KtShape* intersectLineSegment(const KtLineSegment& segment,
                                      double& distance) const override;
  KtU32 numberOfConvexParts() const override;
  KtConvexPart convexPart(KtU32 index) const override;
  void convexPartsInBox(const KtAxisAlignedBoundingBox& box,
                        std::vector<KtU32>& parts) const override;
  bool isSolid() const override;
  KtVolumeMoments volumeMoments() const override;
  bool contains(const KtVector& point) const override;

  /// How many members there are.
  virtual KtU32 numberOfMembers() const = 0;
  /// Member i, or null if there is none.
  virtual const KtShape* member(KtU32 index) const = 0;
  virtual KtShape* member(KtU32 index) = 0;

  bool operator==(const KtBaseUnion&) const = default;

 protected:
  void scaleOwn(double factor) override;
  void transformOwn(const KtCoordinateSystemTransformation& t) override;
  void truncateOwn(double precision) override;

  /// Calls a function for every member.
  template <class Self, class Visit>
  static void forEachMember(Self& self, Visit&& visit) {
    for (KtU32 i = 0, count = self.numberOfMembers(); i < count; ++i) {
      if (auto* one = self.member(i)) visit(*one);
    }
  }
};
