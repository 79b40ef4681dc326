/// @file
/// The persistent lists that meshes are made of.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// A persistent list of triples that its copies share until it is set anew. In a file it is one
/// text of all numbers. A text that is no list of whole triples is reported, gives false, and
/// leaves the list as it was.
///
/// @tparam Triple  KtVector, or an array of three indices
template <class Triple>
class KT_EXPORT KtXmlTripleList : public KtXmlPersistent<KtXmlTripleList<Triple>> {
 public:
  /// The empty list.
  KtXmlTripleList() = default;
  /// From its values.
  explicit KtXmlTripleList(std::vector<Triple> values) { set(std::move(values)); }

  bool read(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;
  void writeSchema(KtXmlSchema& schema) const override;

  /// The values; the reference holds until the list is set or read anew.
  const std::vector<Triple>& values() const noexcept {
    static const std::vector<Triple> none;
    return values_ != nullptr ? *values_ : none;
  }
  /// Copies that were made of this list keep the old values.
  void set(std::vector<Triple> values) {
    values_ =
        values.empty() ? nullptr : std::make_shared<const std::vector<Triple>>(std::move(values));
  }

  /// Exact equality of the values.
  bool operator==(const KtXmlTripleList& other) const {
    return values_ == other.values_ || values() == other.values();
  }
  static const KtToken& classToken();

 private:
  std::shared_ptr<const std::vector<Triple>> values_;
};

/// The vertices of a mesh: "x y z x y z ..." in m.
using KtXmlVertexList = KtXmlTripleList<KtVector>;
/// The triangles of a mesh: the indices of three vertices each, counter-clockwise seen from
/// outside.
using KtXmlTriangleList = KtXmlTripleList<std::array<KtU32, 3>>;

extern template class KtXmlTripleList<KtVector>;
extern template class KtXmlTripleList<std::array<KtU32, 3>>;
