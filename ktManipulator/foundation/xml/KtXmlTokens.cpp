#include "ktManipulator/foundation/xml/KtXmlTokens.h"

namespace KtXml {

namespace {
KtToken qualified(const char* localName) {
  return KtToken(std::string(namespaceName) + localName);
}
}  // namespace

const KtToken KtAddLibrariesToken = qualified("addLibraries");
const KtToken KtCountToken("count");
const KtToken KtElementToken = qualified("element");
const KtToken KtFirstToken = qualified("first");
const KtToken KtGroupToken = qualified("group");
const KtToken KtKeyToken = qualified("key");
const KtToken KtMapTypeToken = qualified("map");
const KtToken KtPairTypeToken = qualified("pair");
const KtToken KtSecondToken = qualified("second");
const KtToken KtSetTypeToken = qualified("set");
const KtToken KtValueToken = qualified("value");
const KtToken KtVectorTypeToken = qualified("vector");
const KtToken KtBasicTypeToken = qualified("basic");
const KtToken KtEnumTypeToken = qualified("enum");

}  // namespace KtXml
