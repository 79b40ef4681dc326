#include "ktManipulator/foundation/xml/KtXmlFactory.h"

#include "ktManipulator/foundation/xml/KtToken.h"

KtXmlObject* KtXmlFactory::newObjectFromToken(const KtToken& token) const {
  const auto found = creators_.find(token.text());
  return found == creators_.end() ? nullptr : found->second();
}

void KtXmlFactory::registerCreator(const KtToken& token, Creator creator) {
  creators_[token.text()] = creator;
}
