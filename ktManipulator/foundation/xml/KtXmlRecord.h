#pragma once

#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// Persistence of a small value with a fixed list of fields, without a table per object: such
/// values pass through inner loops and hold no memory beyond themselves.
///
/// `Cls` lists its fields once, in file order, in a function that takes constant and other objects:
/// @code
///   template <class Self, class Visit>
///   static void forEachField(Self& self, Visit&& visit) {
///     visit(KtFoundCommon::KtLinearToken, self.linear_);
///   }
/// @endcode
/// A field is a persistent object, a vector, an orientation, a real or an integer. In a file it
/// stands in a child of its name; children come in any order, and those that are missing keep their
/// values. An unknown child is reported, skipped, and makes `read` false.
///
/// The members are defined in `KtXmlRecordImpl.h`, for the one source that instantiates the class.
template <class Cls>
class KT_EXPORT KtXmlRecord : public KtXmlPersistent<Cls, KtXmlObject> {
 public:
  /// Reads the object; see `KtXmlObject::read`.
  bool read(KtXmlReader& reader) override;
  /// Writes the object; see `KtXmlObject::write`.
  bool write(KtXmlWriter& writer) const override;
  /// Describes what `write` writes.
  void writeSchema(KtXmlSchema& schema) const override;

  /// The shared value that stands for nothing: an object as the default constructor
  /// makes it.
  static const Cls& nullObject() {
    static const Cls theNullObject;
    return theNullObject;
  }
  /// Equality of what this base holds, which is nothing.
  bool operator==(const KtXmlRecord&) const noexcept { return true; }
};
