#include "ktManipulator/foundation/containers/KtXmlList.h"

#include <algorithm>
#include <cstdlib>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace Kt::detail {

namespace {

// What a container of 32-bit pointers can hold at most; files keep to it on every platform.
constexpr long kLargestCount = 0x3fffffff;

}  // namespace

XmlCount readXmlCount(KtXmlReader& reader, std::size_t elementBytes) {
  XmlCount count;
  for (unsigned i = 0, attributes = reader.attributeCount(); i < attributes; ++i) {
    if (reader.nextAttributeToken() != KtXml::KtCountToken) continue;
    count.expected = std::strtol(reader.attributeValue().c_str(), nullptr, 10);
    count.refused = count.expected < 0 || count.expected > kLargestCount;
    if (count.refused) {
      reader.reportError("a container can't have the announced " + reader.attributeValue() +
                         " elements");
      return count;
    }
  }
  if (reader.currentEvent() != KtXmlReader::kEmpty) {
    count.reserve = reader.grantMemory(static_cast<std::size_t>(count.expected), elementBytes);
  }
  return count;
}

bool writeXmlCount(KtXmlWriter& writer, std::size_t count) {
  writer.beginAttribute(KtXml::KtCountToken);
  return KtXmlBasicType<KtU32>(static_cast<KtU32>(count)).write(writer);
}

}  // namespace Kt::detail
