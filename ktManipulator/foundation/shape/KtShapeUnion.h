#pragma once

#include "ktManipulator/foundation/containers/KtXmlVariableVectorType.h"
#include "ktManipulator/foundation/shape/KtBaseUnion.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A persistent list of shapes. It accepts every kind of shape of the library.
class KT_EXPORT KtShapeVector
    : public KtXmlPersistent<KtShapeVector, KtXmlVariableVectorType<KtShape>> {
 public:
  void registerComponentCreators() override;
  bool operator==(const KtShapeVector&) const = default;
  static const KtToken& classToken();
};

/// Several shapes side by side: each has a number in the link, an identifier, a surface and
/// bounding volumes of its own. The union itself has no number; its identifier finds it all the
/// same.
class KT_EXPORT KtShapeUnion : public KtXmlPersistent<KtShapeUnion, KtBaseUnion> {
 public:
  void registerComponents() override;
  void boundingVolumes(ShapeVector& volumes, const KtU32& level) const override;
  KtU32 numberOfShapes() const override;
  void mapShapes(KtU32& count, const KtManipulatorLink* link, ShapeTable& table,
                 ShapeVector& shapes) override;
  void mapBoundingVolumeLevels(KtU32& level) override;
  bool setSurfaceProperties(const std::string& label, const KtDataMap& data) override;
  void boundingCapsules(std::vector<KtCapsule>& capsules,
                        std::vector<KtU32>& identifiers) const override;
  KtU32 numberOfMembers() const override { return members_.size(); }
  const KtShape* member(KtU32 index) const override;
  KtShape* member(KtU32 index) override;

  /// The members.
  const KtShapeVector& members() const noexcept { return members_; }
  void setMembers(const KtShapeVector& members) { members_ = members; }
  /// Adds a copy of a shape.
  void addMember(const KtShape& shape) { members_.pushBack(shape); }

  bool operator==(const KtShapeUnion&) const = default;
  static const KtToken& classToken();

 private:
  KtShapeVector members_;
};

extern template class KtXmlVariableVectorType<KtShape>;
