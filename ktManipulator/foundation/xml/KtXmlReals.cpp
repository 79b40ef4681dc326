#include "ktManipulator/foundation/xml/KtXmlReals.h"

#include <algorithm>
#include <array>
#include <string>

#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlText.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace Kt::detail {

namespace {
constexpr std::size_t kMostReals = 16;
}

bool readReals(KtXmlReader& reader, std::span<double> values) {
  std::string text;
  if (!reader.readText(text)) return false;
  std::array<double, kMostReals> parsed{};
  std::string_view rest = text;
  std::size_t count = 0;
  for (rest = trimmed(rest); !rest.empty(); rest = trimmed(rest)) {
    const std::string_view word = rest.substr(0, rest.find_first_of(" \t\n\r"));
    double value = 0.0;
    if (!parseReal(word, value)) {
      reader.reportError("\"" + excerpt(word) + "\" is not a number");
      return false;
    }
    if (count < values.size()) parsed[count] = value;
    ++count;
    rest.remove_prefix(word.size());
  }
  if (count != values.size()) {
    reader.reportError("expected " + std::to_string(values.size()) + " numbers but received " +
                       std::to_string(count));
    return false;
  }
  std::copy_n(parsed.begin(), values.size(), values.begin());
  return true;
}

bool writeReals(KtXmlWriter& writer, std::span<const double> values) {
  for (const double value : values) writer.writeValue(value);
  return !writer.failed();
}

void describeReals(KtXmlSchema& schema, std::size_t count) {
  schema.setValueType("xs:double");
  schema.makeList(static_cast<KtU32>(count));
}

bool readBinary(std::istream& stream, std::span<double> values) {
  std::array<double, kMostReals> read{};
  const auto bytes = static_cast<std::streamsize>(values.size_bytes());
  stream.read(reinterpret_cast<char*>(read.data()), bytes);
  if (!stream || stream.gcount() != bytes) return false;
  std::copy_n(read.begin(), values.size(), values.begin());
  return true;
}

bool writeBinary(std::ostream& stream, std::span<const double> values) {
  stream.write(reinterpret_cast<const char*>(values.data()),
               static_cast<std::streamsize>(values.size_bytes()));
  return static_cast<bool>(stream);
}

}  // namespace Kt::detail
