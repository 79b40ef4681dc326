#pragma once

#include "ktManipulator/foundation/core/KtOnDemand.h"
#include "ktManipulator/foundation/xml/KtXmlComponentMap.h"
#include "ktManipulator/foundation/xml/KtXmlObject.h"

namespace Kt::detail {

/// The three tables of a compound object.
struct XmlTables {
  KtXmlComponentMap components;
  KtXmlComponentMap attributes;
  KtXmlComponentMap specialDescriptors;
};

}  // namespace Kt::detail

/// An object that is made of named components.
///
/// `registerComponents` lists the components; the order of its calls is the order of the elements
/// in a file. It runs on first need (the first read, write or schema), so an object that is only
/// copied, compared and computed with has no tables. On reading, the order of the elements is free,
/// and components that the file doesn't mention keep their values. An element or attribute that no
/// component claims is reported and skipped; the reading goes on, and its result is false.
class KT_EXPORT KtXmlCompoundType : public KtXmlObject {
 public:
  void accept(KtXmlObjectVisitor* visitor) const override;
  /// Builds the tables anew by `registerComponents`.
  void xmlInit() override;
  bool read(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;
  void writeSchema(KtXmlSchema& schema) const override;

  /// Reads the attributes of the element in hand; false if one was unknown or wrong.
  virtual bool readAttributes(KtXmlReader& reader);
  /// Reads the child elements, up to the end of the element in hand; false if one was wrong.
  virtual bool readElements(KtXmlReader& reader);
  /// Writes the attributes that are not read-only, in order.
  virtual bool writeAttributes(KtXmlWriter& writer) const;
  /// Writes the components that are not read-only, each in an element named by the token under
  /// which it was registered, in order.
  virtual bool writeElements(KtXmlWriter& writer) const;
  /// Declares what `writeAttributes` writes.
  virtual void writeSchemaAttributes(KtXmlSchema& schema) const;
  /// Declares what `writeElements` writes.
  virtual void writeSchemaElements(KtXmlSchema& schema) const;
  /// Registers every component, those of the base class first. Runs on first need, also for a
  /// constant object that is written: whatever it changes beside the tables must be mutable.
  virtual void registerComponents();
  /// Registers a member under the name of its element.
  virtual void registerComponent(const KtToken& token, KtXmlObject* component);
  /// Registers a member that is read but never written: an element of an older form of the file.
  virtual void registerComponentReadOnly(const KtToken& token, KtXmlObject* component);
  /// The registered components.
  virtual const KtXmlComponentMap& componentMap() const;
  /// Registers a member under the name of an attribute.
  virtual void registerAttributeComponent(const KtToken& token, KtXmlObject* component);
  /// Registers a member that is read from an attribute but never written.
  virtual void registerAttributeComponentReadOnly(const KtToken& token, KtXmlObject* component);
  /// The registered attributes.
  virtual const KtXmlComponentMap& attributeComponentMap();
  /// Further names of elements, each with the member that reads it: names that a member had in
  /// older files. Empty unless a class adds to it in `registerComponents`.
  virtual KtXmlComponentMap& specialDescriptorMap();
  /// Whether any component is registered.
  virtual bool hasChildren() const;
  /// Whether any attribute is registered.
  virtual bool hasAttributes() const;
  /// Lets the component of that name read the element in hand. A name that no component claims
  /// goes to `readValueFromSpecialToken`.
  virtual bool readValueFromToken(const KtToken& token, KtXmlReader& reader);
  /// The same through the special descriptors; an unknown name is reported and gives false.
  virtual bool readValueFromSpecialToken(const KtToken& token, KtXmlReader& reader);
  /// Lets the attribute component of that name read the attribute in hand.
  virtual bool readAttributeFromToken(const KtToken& token, KtXmlReader& reader);
  /// A new empty table; the caller owns it.
  virtual KtXmlComponentMap* newComponentMap() const;
  /// A new empty table; the caller owns it.
  virtual KtXmlComponentMap* newSpecialDescriptorMap();
  /// Sees to it that the object has its table of components, which is empty when new.
  virtual void createComponentMap() const;
  /// Sees to it that the object has its table of attributes.
  virtual void createAttributeComponentMap();
  /// Sees to it that the object has its table of special descriptors.
  virtual void createSpecialDescriptorMap();
  /// Whether a component of that name is registered and is never written.
  virtual bool isReadOnlyComponent(KtToken token) const;
  /// Whether an attribute of that name is registered and is never written.
  virtual bool isReadOnlyAttribute(KtToken token) const;

  bool operator==(const KtXmlCompoundType&) const noexcept { return true; }

 protected:
  KtXmlCompoundType() noexcept = default;
  KtXmlCompoundType(const KtXmlCompoundType&) noexcept = default;
  KtXmlCompoundType(KtXmlCompoundType&&) noexcept = default;
  KtXmlCompoundType& operator=(const KtXmlCompoundType&) noexcept = default;
  KtXmlCompoundType& operator=(KtXmlCompoundType&&) noexcept = default;

 private:
  const Kt::detail::XmlTables& tables() const;

  // Pointers into this very object, built on first need.
  mutable KtOnDemand<Kt::detail::XmlTables> tables_;
};
