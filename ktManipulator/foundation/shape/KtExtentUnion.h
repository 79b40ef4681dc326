#pragma once

#include "ktManipulator/foundation/containers/KtXmlVariableVectorType.h"
#include "ktManipulator/foundation/shape/KtBaseUnion.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A persistent list of extents. It accepts every kind of extent that is no union.
class KT_EXPORT KtExtentVector
    : public KtXmlPersistent<KtExtentVector, KtXmlVariableVectorType<KtBasePhysicalExtent>> {
 public:
  void registerComponentCreators() override;
  bool operator==(const KtExtentVector&) const = default;
  static const KtToken& classToken();
};

/// Several extents as one shape: it has one number in its link and one surface. What its members
/// say of surfaces, identifiers and bounding volumes plays no part.
class KT_EXPORT KtExtentUnion : public KtXmlPersistent<KtExtentUnion, KtBaseUnion> {
 public:
  void registerComponents() override;
  bool lookup(const std::string& label, const KtDataMap*& data) const override {
    return KtShape::lookup(label, data);
  }
  using KtShape::intersectLineSegment;
  const KtShape* intersectLineSegment(const KtLineSegment& segment,
                                      double& distance) const override {
    return KtBaseUnion::intersectLineSegment(segment, distance) != nullptr ? this : nullptr;
  }
  KtConvexPart convexPart(KtU32 index) const override;
  KtU32 numberOfMembers() const override { return members_.size(); }
  const KtShape* member(KtU32 index) const override;
  KtShape* member(KtU32 index) override;

  /// The members.
  const KtExtentVector& members() const noexcept { return members_; }
  void setMembers(const KtExtentVector& members) { members_ = members; }
  /// Adds a copy of an extent.
  void addMember(const KtBasePhysicalExtent& extent) { members_.pushBack(extent); }

  /// Registers every kind of extent that is no union with a holder.
  static void registerExtents(KtXmlBaseVariableCompoundType& holder);

  bool operator==(const KtExtentUnion&) const = default;
  static const KtToken& classToken();

 private:
  KtExtentVector members_;
};

extern template class KtXmlVariableVectorType<KtBasePhysicalExtent>;
