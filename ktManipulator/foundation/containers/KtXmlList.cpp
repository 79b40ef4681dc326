#include "ktManipulator/foundation/containers/KtXmlList.h"

#include <cstdlib>
#include <string>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace Kt::detail {

namespace {

// What a container of 32-bit pointers can hold at most; files keep to it on every platform.
constexpr long kLargestCount = 0x3fffffff;

}  // namespace

long readXmlCount(KtXmlReader& reader) {
  long count = 0;
  for (unsigned i = 0, attributes = reader.attributeCount(); i < attributes; ++i) {
    if (reader.nextAttributeToken() != KtXml::KtCountToken) continue;
    count = std::strtol(reader.attributeValue().c_str(), nullptr, 10);
  }
  return count;
}

bool checkXmlCount(KtXmlReader& reader, long count) {
  if (count >= 0 && count <= kLargestCount) return true;
  reader.reportError("a container can't have the announced " + std::to_string(count) + " elements");
  return false;
}

bool writeXmlCount(KtXmlWriter& writer, std::size_t count) {
  writer.beginAttribute(KtXml::KtCountToken);
  return KtXmlBasicType<KtU32>(static_cast<KtU32>(count)).write(writer);
}

}  // namespace Kt::detail
