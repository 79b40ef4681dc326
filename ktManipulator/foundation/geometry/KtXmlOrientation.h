#pragma once

#include "ktManipulator/foundation/geometry/KtOrientation.h"
#include "ktManipulator/foundation/tokens/KtFoundationTokens.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The persistent form of a `KtOrientation`, usable wherever one is. In a file it is the text
/// "w x y z".
class KT_EXPORT KtXmlOrientation : public KtXmlPersistent<KtXmlOrientation>, public KtOrientation {
 public:
  /// The identity.
  KtXmlOrientation() noexcept = default;
  /// From an orientation.
  KtXmlOrientation(const KtOrientation& q) noexcept : KtOrientation(q) {}  // NOLINT
  KtXmlOrientation(const KtXmlOrientation&) noexcept = default;
  KtXmlOrientation& operator=(const KtXmlOrientation&) noexcept = default;
  KtXmlOrientation& operator=(const KtOrientation& q) noexcept {
    KtOrientation::operator=(q);
    return *this;
  }

  bool read(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;
  void writeSchema(KtXmlSchema& schema) const override;

  bool operator==(const KtXmlOrientation& q) const noexcept { return KtOrientation::operator==(q); }
  bool operator==(const KtOrientation& q) const noexcept { return KtOrientation::operator==(q); }

  /// The shared value that stands for nothing: a default-constructed object.
  static const KtXmlOrientation& nullObject() {
    static const KtXmlOrientation theNullObject;
    return theNullObject;
  }
  static const KtToken& classToken() { return KtFoundCommon::KtOrientationToken; }
};
