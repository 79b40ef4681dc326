#pragma once

#include <string>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"

class KtToken;
class KtXmlObjectVisitor;
class KtXmlReader;
class KtXmlSchema;
class KtXmlWriter;

namespace Kt::detail {

/// What the persistence layer remembers of one object. It belongs to the object and not to its
/// value: a copy starts anew, an assignment leaves the target's as it is.
class XmlFlags {
 public:
  bool xmlInitialized = false;
  bool specified = false;

  constexpr XmlFlags() noexcept = default;
  constexpr XmlFlags(const XmlFlags&) noexcept {}
  constexpr XmlFlags& operator=(const XmlFlags&) noexcept { return *this; }
};

}  // namespace Kt::detail

/// Root of all persistent types: an object that can copy, compare, read and write itself through a
/// pointer to this base.
///
/// Derived classes come by the usual operations through `KtXmlPersistent`. An object belongs to
/// one thread at a time.
class KT_EXPORT KtXmlObject {
 public:
  virtual ~KtXmlObject() = default;

  /// Hands this object to the visitor, with its static type.
  virtual void accept(KtXmlObjectVisitor* visitor) const;
  /// A copy of the most derived object; the caller owns it.
  virtual KtXmlObject* clone() const = 0;
  /// Prepares the object for reading and writing. Runs by itself on first need, also for a constant
  /// object that is written: whatever it changes must be mutable.
  virtual void xmlInit();
  /// Reads the object. Entered with the object's own element in hand, left with that element's end
  /// consumed. What the element doesn't mention keeps its value.
  ///
  /// The base form prepares the object and marks it as specified; it consumes nothing.
  ///
  /// @return false if something was wrong (a message has been given); the base form: false once the
  ///         document turned out to be not well-formed
  virtual bool read(KtXmlReader& reader);
  /// Reads the object from the attribute last reached; false for a type that has no text form.
  virtual bool readAttribute(KtXmlReader& reader);
  /// Writes the object's content into the element in hand. The base form prepares the object and
  /// writes nothing.
  ///
  /// @return false if something could not be written
  virtual bool write(KtXmlWriter& writer) const;
  /// Describes what `write` writes. The base form prepares the object and declares nothing.
  virtual void writeSchema(KtXmlSchema& schema) const;
  /// Writes a W3C XML Schema into a file, for documents with this object in the root element.
  ///
  /// @param fileName  file to write; a failure to do so is reported
  /// @param root      name of the root element
  /// @return          whether the file was written
  virtual bool createSchema(const std::string& fileName, const KtToken& root) const;
  /// Whether `xmlInit` has run.
  virtual bool xmlInitialized() const;
  virtual void setXmlInitialized(bool value);
  /// Whether the object has been read from a document. Copies start unspecified.
  virtual bool specified() const;
  virtual void setSpecified(bool value);
  /// Whether the object is a single value with a text form.
  virtual bool isBasicType() const;
  /// Whether the object equals a new one of its class.
  virtual bool equalsDefault() const;
  /// Whether the other is of this object's class (or of one derived from it) and has the same
  /// value, compared as this object's class; false for a null pointer.
  virtual bool equality(const KtXmlObject* other) const = 0;
  /// A new default-constructed object of the most derived class; the caller owns it.
  virtual KtXmlObject* newObject() const = 0;
  /// The name of the class in files.
  virtual const KtToken& token() const = 0;

  /// The root has no value of its own, so two of them never differ. To compare whole objects
  /// through the base use `equality`.
  bool operator==(const KtXmlObject&) const noexcept { return true; }

 protected:
  KtXmlObject() noexcept = default;
  KtXmlObject(const KtXmlObject&) noexcept = default;
  KtXmlObject(KtXmlObject&&) noexcept = default;
  KtXmlObject& operator=(const KtXmlObject&) noexcept = default;
  KtXmlObject& operator=(KtXmlObject&&) noexcept = default;

 private:
  // Mutable: writing prepares a constant object on first need.
  mutable Kt::detail::XmlFlags flags_;
};
