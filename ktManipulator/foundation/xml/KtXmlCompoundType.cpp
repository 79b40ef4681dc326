#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"

#include "ktManipulator/foundation/xml/KtXmlObjectVisitor.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlTokens.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

void KtXmlCompoundType::accept(KtXmlObjectVisitor* visitor) const {
  visitor->visit(this);
}

void KtXmlCompoundType::xmlInit() {
  tables_.require() = {};
  registerComponents();
  KtXmlObject::xmlInit();
}

const Kt::detail::XmlTables& KtXmlCompoundType::tables() const {
  // All that building the tables changes is mutable, so that this is sound for a constant object.
  if (!xmlInitialized()) const_cast<KtXmlCompoundType*>(this)->xmlInit();
  return tables_.require();
}

bool KtXmlCompoundType::read(KtXmlReader& reader) {
  if (!KtXmlObject::read(reader)) return false;
  const bool attributesRead = readAttributes(reader);
  const bool elementsRead = readElements(reader);
  return attributesRead && elementsRead && !reader.failed();
}

bool KtXmlCompoundType::readAttributes(KtXmlReader& reader) {
  bool ok = true;
  for (unsigned i = 0, count = reader.attributeCount(); i < count; ++i) {
    // A reference into the reader would not survive a component that reads on.
    const KtToken token = reader.nextAttributeToken();
    ok = readAttributeFromToken(token, reader) && ok;
  }
  return ok;
}

bool KtXmlCompoundType::readElements(KtXmlReader& reader) {
  bool ok = true;
  reader.forEachChild([&] { ok = readValueFromToken(reader.currentToken(), reader) && ok; });
  return ok;
}

bool KtXmlCompoundType::write(KtXmlWriter& writer) const {
  if (!KtXmlObject::write(writer)) return false;
  const bool attributesWritten = writeAttributes(writer);
  const bool elementsWritten = writeElements(writer);
  return attributesWritten && elementsWritten;
}

bool KtXmlCompoundType::writeAttributes(KtXmlWriter& writer) const {
  bool ok = true;
  for (const auto& entry : tables().attributes.entries()) {
    if (entry.readOnly) continue;
    writer.beginAttribute(entry.token);
    ok = entry.component->write(writer) && ok;
  }
  return ok;
}

bool KtXmlCompoundType::writeElements(KtXmlWriter& writer) const {
  bool ok = true;
  for (const auto& entry : componentMap().entries()) {
    if (entry.readOnly) continue;
    writer.beginElement(entry.token);
    ok = entry.component->write(writer) && ok;
    writer.endElement();
  }
  return ok;
}

void KtXmlCompoundType::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  if (!schema.beginType(*this)) return;
  schema.setContentModel(KtXmlSchema::kAll);
  writeSchemaAttributes(schema);
  writeSchemaElements(schema);
  schema.endType();
}

void KtXmlCompoundType::writeSchemaAttributes(KtXmlSchema& schema) const {
  for (const auto& entry : tables().attributes.entries()) {
    if (entry.readOnly) continue;
    schema.beginAttribute(entry.token);
    entry.component->writeSchema(schema);
    schema.endElement();
  }
}

void KtXmlCompoundType::writeSchemaElements(KtXmlSchema& schema) const {
  for (const auto& entry : componentMap().entries()) {
    if (entry.readOnly) continue;
    schema.beginElement(entry.token, KtXmlSchema::kExactlyOne);
    entry.component->writeSchema(schema);
    schema.endElement();
  }
}

void KtXmlCompoundType::registerComponents() {}

void KtXmlCompoundType::registerComponent(const KtToken& token, KtXmlObject* component) {
  tables_.require().components.add(token, component, false);
}

void KtXmlCompoundType::registerComponentReadOnly(const KtToken& token, KtXmlObject* component) {
  tables_.require().components.add(token, component, true);
}

const KtXmlComponentMap& KtXmlCompoundType::componentMap() const {
  return tables().components;
}

void KtXmlCompoundType::registerAttributeComponent(const KtToken& token, KtXmlObject* component) {
  tables_.require().attributes.add(token, component, false);
}

void KtXmlCompoundType::registerAttributeComponentReadOnly(const KtToken& token,
                                                           KtXmlObject* component) {
  tables_.require().attributes.add(token, component, true);
}

const KtXmlComponentMap& KtXmlCompoundType::attributeComponentMap() {
  return tables().attributes;
}

KtXmlComponentMap& KtXmlCompoundType::specialDescriptorMap() {
  // Not through tables(): a class fills this table while it registers.
  return tables_.require().specialDescriptors;
}

bool KtXmlCompoundType::hasChildren() const {
  return !tables().components.empty();
}
bool KtXmlCompoundType::hasAttributes() const {
  return !tables().attributes.empty();
}

bool KtXmlCompoundType::readValueFromToken(const KtToken& token, KtXmlReader& reader) {
  if (const auto* entry = componentMap().find(token)) return entry->component->read(reader);
  return readValueFromSpecialToken(token, reader);
}

bool KtXmlCompoundType::readValueFromSpecialToken(const KtToken& token, KtXmlReader& reader) {
  if (const auto* entry = specialDescriptorMap().find(token)) return entry->component->read(reader);
  reader.reportError("<" + std::string(token.localName()) + "> is not an element of " +
                     std::string(this->token().localName()));
  return false;
}

bool KtXmlCompoundType::readAttributeFromToken(const KtToken& token, KtXmlReader& reader) {
  // In a file an attribute stands without the namespace of its element.
  const auto* entry = tables().attributes.find(token);
  if (entry == nullptr && token.namespaceName().empty()) {
    entry = tables().attributes.find(KtToken(KtXml::namespaceName + token.text()));
  }
  if (entry != nullptr) return entry->component->readAttribute(reader);
  // Attributes of other vocabularies, such as xsi:schemaLocation, may stand anywhere.
  if (!token.namespaceName().empty()) return true;
  reader.reportError("\"" + token.text() + "\" is not an attribute of " +
                     std::string(this->token().localName()));
  return false;
}

KtXmlComponentMap* KtXmlCompoundType::newComponentMap() const {
  return new KtXmlComponentMap;
}
KtXmlComponentMap* KtXmlCompoundType::newSpecialDescriptorMap() {
  return new KtXmlComponentMap;
}
void KtXmlCompoundType::createComponentMap() const {
  tables_.require();
}
void KtXmlCompoundType::createAttributeComponentMap() {
  tables_.require();
}
void KtXmlCompoundType::createSpecialDescriptorMap() {
  tables_.require();
}

bool KtXmlCompoundType::isReadOnlyComponent(KtToken token) const {
  const auto* entry = tables().components.find(token);
  return entry != nullptr && entry->readOnly;
}

bool KtXmlCompoundType::isReadOnlyAttribute(KtToken token) const {
  const auto* entry = tables().attributes.find(token);
  return entry != nullptr && entry->readOnly;
}
