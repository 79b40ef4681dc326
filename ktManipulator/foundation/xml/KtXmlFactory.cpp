#include "ktManipulator/foundation/xml/KtXmlFactory.h"

#include "ktManipulator/foundation/xml/KtXmlTokens.h"

KtXmlObject* KtXmlFactory::newObjectFromToken(const KtToken& token) const {
  const Creator creator = findCreator(creators_, token);
  return creator != nullptr ? creator() : nullptr;
}

KtXmlFactory::Creator KtXmlFactory::findCreator(const std::map<std::string, Creator>& creators,
                                                const KtToken& token) {
  auto found = creators.find(token.text());
  if (found == creators.end() && token.namespaceName() == KtXml::namespaceName) {
    found = creators.find(std::string(token.localName()));
  }
  return found == creators.end() ? nullptr : found->second;
}

void KtXmlFactory::registerCreator(const KtToken& token, Creator creator) {
  creators_[token.text()] = creator;
}
