#include "ktManipulator/foundation/shape/KtXmlMeshLists.h"

#include <string>
#include <type_traits>

#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlText.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace {

using Indices = std::array<KtU32, 3>;

bool parse(std::string_view word, double& value) {
  return Kt::detail::parseReal(word, value);
}
bool parse(std::string_view word, KtU32& value) {
  return Kt::detail::parseUnsigned(word, value);
}
void assign(KtVector& v, const std::array<double, 3>& numbers) {
  v = {numbers[0], numbers[1], numbers[2]};
}
void assign(Indices& indices, const Indices& numbers) {
  indices = numbers;
}
std::array<double, 3> numbersOf(const KtVector& v) {
  return {v.x, v.y, v.z};
}
const Indices& numbersOf(const Indices& indices) {
  return indices;
}

}  // namespace

template <class Triple>
bool KtXmlTripleList<Triple>::read(KtXmlReader& reader) {
  if (!KtXmlObject::read(reader)) return false;
  std::string text;
  if (!reader.readText(text)) return false;
  using Numbers = std::decay_t<decltype(numbersOf(Triple()))>;
  Numbers numbers{};
  std::size_t count = 0;
  std::vector<Triple> values;
  std::string_view rest = Kt::detail::trimmed(text);
  while (!rest.empty()) {
    const std::string_view word = rest.substr(0, rest.find_first_of(" \t\n\r"));
    if (!parse(word, numbers[count % 3])) {
      reader.reportError("\"" + Kt::detail::excerpt(word) + "\" is not a number");
      return false;
    }
    if (++count % 3 == 0) assign(values.emplace_back(), numbers);
    rest.remove_prefix(word.size());
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\n\r"), rest.size()));
  }
  if (count % 3 != 0) {
    reader.reportError("expected triples of numbers but received " + std::to_string(count) +
                       " numbers");
    return false;
  }
  set(std::move(values));
  return true;
}

template <class Triple>
bool KtXmlTripleList<Triple>::write(KtXmlWriter& writer) const {
  if (!KtXmlObject::write(writer)) return false;
  for (const Triple& triple : values()) {
    for (const auto number : numbersOf(triple)) writer.writeValue(number);
  }
  return !writer.failed();
}

template <class Triple>
void KtXmlTripleList<Triple>::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  schema.setValueType(std::is_same_v<Triple, KtVector> ? "xs:double" : "xs:unsignedInt");
  schema.makeList();
}

template <class Triple>
const KtToken& KtXmlTripleList<Triple>::classToken() {
  return std::is_same_v<Triple, KtVector> ? KtGeom::KtVerticesToken : KtGeom::KtTrianglesToken;
}

template class KtXmlTripleList<KtVector>;
template class KtXmlTripleList<std::array<KtU32, 3>>;
