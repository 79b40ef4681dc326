#include "ktManipulator/foundation/xml/KtXmlObject.h"

#include <fstream>
#include <memory>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/xml/KtXmlObjectVisitor.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace {

// All that preparing an object changes is mutable, so that this is sound for a constant object.
void prepare(const KtXmlObject& object) {
  if (!object.xmlInitialized()) const_cast<KtXmlObject&>(object).xmlInit();
}

}  // namespace

void KtXmlObject::accept(KtXmlObjectVisitor* visitor) const {
  visitor->visit(this);
}

void KtXmlObject::xmlInit() {
  setXmlInitialized(true);
}

bool KtXmlObject::read(KtXmlReader& reader) {
  prepare(*this);
  setSpecified(true);
  return !reader.failed();
}

bool KtXmlObject::readAttribute(KtXmlReader&) {
  return false;
}

bool KtXmlObject::write(KtXmlWriter& writer) const {
  prepare(*this);
  return !writer.failed();
}

void KtXmlObject::writeSchema(KtXmlSchema&) const {
  prepare(*this);
}

bool KtXmlObject::createSchema(const std::string& fileName, const KtToken& root) const {
  std::ofstream stream(fileName);
  {
    KtXmlSchema schema(fileName, stream);
    schema.beginElement(root, KtXmlSchema::kExactlyOne);
    writeSchema(schema);
    schema.endElement();
  }
  stream.close();
  if (stream) return true;
  Kt::Print::instance().write(Kt::Print::kError, "%s: the schema could not be written.\n",
                              fileName.c_str());
  return false;
}

bool KtXmlObject::xmlInitialized() const {
  return flags_.xmlInitialized;
}
void KtXmlObject::setXmlInitialized(bool value) {
  flags_.xmlInitialized = value;
}
bool KtXmlObject::specified() const {
  return flags_.specified;
}
void KtXmlObject::setSpecified(bool value) {
  flags_.specified = value;
}
bool KtXmlObject::isBasicType() const {
  return false;
}

bool KtXmlObject::equalsDefault() const {
  const std::unique_ptr<KtXmlObject> fresh(newObject());
  return equality(fresh.get());
}
