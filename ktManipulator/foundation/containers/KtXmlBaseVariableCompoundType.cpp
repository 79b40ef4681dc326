#include "ktManipulator/foundation/containers/KtXmlBaseVariableCompoundType.h"

#include <memory>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/xml/KtBaseExpressionTreeElement.h"
#include "ktManipulator/foundation/xml/KtXmlFactory.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlTokens.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace {

using Library = std::function<void(KtXmlBaseVariableCompoundType&)>;

std::map<std::string, Library>& libraries() {
  static std::map<std::string, Library> theLibraries;
  return theLibraries;
}

}  // namespace

void KtXmlBaseVariableCompoundType::xmlInit() {
  creators_.require().clear();
  registerComponentCreators();
  KtXmlObject::xmlInit();
}

bool KtXmlBaseVariableCompoundType::read(KtXmlReader& reader) {
  if (!KtXmlObject::read(reader)) return false;
  bool ok = true;
  reader.forEachChild([&] {
    if (readValueFromToken(reader.currentToken(), reader)) return;
    reader.countError();
    ok = false;
  });
  return ok;
}

bool KtXmlBaseVariableCompoundType::write(KtXmlWriter& writer) const {
  if (!KtXmlObject::write(writer)) return false;
  if (addLibraries_.size() == 0) return true;
  writer.beginElement(KtXml::KtAddLibrariesToken);
  const bool ok = addLibraries_.write(writer);
  writer.endElement();
  return ok;
}

void KtXmlBaseVariableCompoundType::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  schema.setContentModel(KtXmlSchema::kAnyNumberOfChoices);
  schema.beginElement(KtXml::KtAddLibrariesToken, KtXmlSchema::kAnyNumber);
  addLibraries_.writeSchema(schema);
  schema.endElement();
  for (const auto& [token, creator] : creatorMap()) {
    const std::unique_ptr<KtXmlObject> object(creator());
    if (auto* element = dynamic_cast<KtBaseExpressionTreeElement*>(object.get())) {
      element->setContainer(this);
    }
    schema.beginElement(KtToken(token), KtXmlSchema::kAnyNumber);
    object->writeSchema(schema);
    schema.endElement();
  }
}

void KtXmlBaseVariableCompoundType::registerComponentCreator(const KtToken& token,
                                                             KtXmlObject* (*creator)()) {
  creators_.require()[token.text()] = creator;
}

KtXmlObject* KtXmlBaseVariableCompoundType::newObjectFromToken(const KtToken& token) const {
  const Creator creator = KtXmlFactory::findCreator(creatorMap(), token);
  return creator != nullptr ? creator() : nullptr;
}

const KtXmlBaseVariableCompoundType::LibraryList& KtXmlBaseVariableCompoundType::addLibraries()
    const {
  return addLibraries_;
}

void KtXmlBaseVariableCompoundType::setAddLibraries(const LibraryList& libraries) {
  addLibraries_ = libraries;
}

const std::map<std::string, KtXmlBaseVariableCompoundType::Creator>&
KtXmlBaseVariableCompoundType::creatorMap() const {
  // All that entering the creators changes is mutable, so that this is sound for a constant object.
  if (!xmlInitialized()) const_cast<KtXmlBaseVariableCompoundType*>(this)->xmlInit();
  return creators_.require();
}

bool KtXmlBaseVariableCompoundType::readValueFromToken(const KtToken& token, KtXmlReader& reader) {
  return token == KtXml::KtAddLibrariesToken && readLibraries(reader);
}

bool KtXmlBaseVariableCompoundType::readLibraries(KtXmlReader& reader) {
  const bool ok = reader.readChild(addLibraries_);
  processLibraries();
  return ok;
}

void KtXmlBaseVariableCompoundType::processLibraries() {
  for (KtU32 i = 0; i < addLibraries_.size(); ++i) {
    const std::string& name = addLibraries_[i].value();
    const auto found = libraries().find(name);
    if (found != libraries().end()) {
      found->second(*this);
    } else {
      Kt::Print::instance().write(
          Kt::Print::kError,
          "KtXmlBaseVariableCompoundType::processLibraries() error: library \"%s\" is not known.\n",
          name.c_str());
    }
  }
}

void KtXmlBaseVariableCompoundType::registerLibrary(const std::string& name, Library library) {
  libraries()[name] = std::move(library);
}
