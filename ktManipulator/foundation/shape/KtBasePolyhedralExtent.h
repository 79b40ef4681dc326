#pragma once

#include <memory>
#include <vector>

#include "ktManipulator/foundation/shape/KtFramedExtent.h"
#include "ktManipulator/foundation/shape/KtXmlMeshLists.h"

namespace Kt::detail {
class MeshIndex;
}

/// An extent that is made of vertices, given in its frame. Copies share the vertices, and what is
/// computed from them, until one of them is changed.
class KT_EXPORT KtBasePolyhedralExtent : public KtFramedExtent {
 public:
  KtBasePolyhedralExtent();
  ~KtBasePolyhedralExtent() override;
  KtBasePolyhedralExtent(const KtBasePolyhedralExtent&);
  KtBasePolyhedralExtent& operator=(const KtBasePolyhedralExtent&);

  bool read(KtXmlReader& reader) override;
  void registerComponents() override;
  bool isEmpty() const override { return vertices().empty(); }
  bool isSolid() const override;
  bool axisAlignedBoundingBox(const KtCoordinateSystemTransformation& t,
                              KtAxisAlignedBoundingBox& box) const override;

  /// The vertices, in the frame of the extent.
  const std::vector<KtVector>& vertices() const noexcept { return vertices_.values(); }
  /// The triangles between them.
  virtual const std::vector<std::array<KtU32, 3>>& triangles() const = 0;

  bool operator==(const KtBasePolyhedralExtent& other) const {
    return KtFramedExtent::operator==(other) && vertices_ == other.vertices_;
  }

 protected:
  KtVector ownSupport(const KtVector& direction) const override;
  void ownPoints(std::vector<KtVector>& points) const override;
  KtVolumeMoments ownMoments() const override;
  void scaleSizes(double factor) override;
  void mirror() override;
  void truncateSizes(double precision) override;

  /// Computes what follows from the vertices (and triangles) as they are now, or empties the extent
  /// where they can't be used.
  ///
  /// @return false, and a message, if the extent was emptied
  virtual bool rebuild() = 0;
  /// What `rebuild` computed; null if there are no triangles.
  const Kt::detail::MeshIndex* index() const noexcept { return index_.get(); }
  /// Computes the index from the present vertices and triangles.
  void makeIndex();
  /// Sets the vertices alone.
  void assignVertices(std::vector<KtVector> values) { vertices_.set(std::move(values)); }

 private:
  template <class Change>
  void changeVertices(Change&& change);

  KtXmlVertexList vertices_;
  std::shared_ptr<const Kt::detail::MeshIndex> index_;
};
