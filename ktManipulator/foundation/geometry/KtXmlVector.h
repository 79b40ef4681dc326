#pragma once

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The persistent form of a `KtVector`, usable wherever one is. In a file it is the text "x y z".
class KT_EXPORT KtXmlVector : public KtXmlPersistent<KtXmlVector>, public KtVector {
 public:
  /// The zero vector.
  KtXmlVector() noexcept = default;
  /// From a vector.
  KtXmlVector(const KtVector& v) noexcept : KtVector(v) {}  // NOLINT(google-explicit-constructor)
  /// From the three components.
  KtXmlVector(double xValue, double yValue, double zValue) noexcept
      : KtVector(xValue, yValue, zValue) {}
  KtXmlVector(const KtXmlVector&) noexcept = default;
  KtXmlVector& operator=(const KtXmlVector&) noexcept = default;
  KtXmlVector& operator=(const KtVector& v) noexcept {
    KtVector::operator=(v);
    return *this;
  }

  bool read(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;
  void writeSchema(KtXmlSchema& schema) const override;

  bool operator==(const KtXmlVector& v) const noexcept { return KtVector::operator==(v); }
  bool operator==(const KtVector& v) const noexcept { return KtVector::operator==(v); }

  /// The shared value that stands for nothing: a default-constructed object.
  static const KtXmlVector& nullObject() {
    static const KtXmlVector theNullObject;
    return theNullObject;
  }
  static const KtToken& classToken() { return KtFoundCommon::KtVectorToken; }
};

/// An indexed, resizable list of persistent vectors.
using KtXmlVectorVector = KtXmlVectorType<KtXmlVector>;

extern template class KtXmlVectorType<KtXmlVector>;
