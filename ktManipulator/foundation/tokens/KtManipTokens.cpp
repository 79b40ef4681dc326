#include "ktManipulator/foundation/tokens/KtManipTokens.h"

#include "ktManipulator/foundation/xml/KtXmlTokens.h"

namespace KtManip {

namespace {

KtToken namespaced(const KtToken& space, const char* localName) {
  KtToken token = space;
  token += localName;
  return token;
}

}  // namespace

const KtToken ns(KtXml::namespaceName);

#define KT_NAMESPACED(constant, localName) const KtToken constant = namespaced(ns, localName);
#define KT_PLAIN(constant, word) const KtToken constant(word);
#include "ktManipulator/foundation/tokens/KtManipTokens.def"
#undef KT_NAMESPACED
#undef KT_PLAIN

}  // namespace KtManip
