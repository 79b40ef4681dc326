#include "ktManipulator/foundation/xml/KtXmlTokens.h"

namespace KtXml {

const KtToken KtAddLibrariesToken = qualifiedToken("addLibraries");
const KtToken KtCountToken("count");
const KtToken KtElementToken = qualifiedToken("element");
const KtToken KtFirstToken = qualifiedToken("first");
const KtToken KtGroupToken = qualifiedToken("group");
const KtToken KtKeyToken = qualifiedToken("key");
const KtToken KtMapTypeToken = qualifiedToken("map");
const KtToken KtPairTypeToken = qualifiedToken("pair");
const KtToken KtSecondToken = qualifiedToken("second");
const KtToken KtSetTypeToken = qualifiedToken("set");
const KtToken KtValueToken = qualifiedToken("value");
const KtToken KtVectorTypeToken = qualifiedToken("vector");
const KtToken KtBasicTypeToken = qualifiedToken("basic");
const KtToken KtEnumTypeToken = qualifiedToken("enum");

}  // namespace KtXml
