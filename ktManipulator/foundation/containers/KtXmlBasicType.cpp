#include "ktManipulator/foundation/containers/KtXmlBasicType.h"

#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlText.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace {

using Kt::detail::parseReal;
using Kt::detail::parseUnsigned;

bool parse(std::string_view text, bool& value) {
  if (text != "true" && text != "false" && text != "1" && text != "0") return false;
  value = text == "true" || text == "1";
  return true;
}
bool parse(std::string_view text, double& value) {
  return parseReal(text, value);
}
bool parse(std::string_view text, unsigned& value) {
  return parseUnsigned(text, value);
}
bool parse(std::string_view text, std::string& value) {
  value = text;
  return true;
}
bool parse(std::string_view text, KtAngle& value) {
  double radians = 0.0;
  if (!parseReal(text, radians)) return false;
  value = radians;
  return true;
}
bool parse(std::string_view text, KtNonNegReal& value) {
  double real = 0.0;
  if (!parseReal(text, real)) return false;
  value = real;
  return true;
}

void writeOne(KtXmlWriter& writer, bool value) {
  writer.writeWord(value ? "true" : "false");
}
void writeOne(KtXmlWriter& writer, double value) {
  writer.writeValue(value);
}
void writeOne(KtXmlWriter& writer, unsigned value) {
  writer.writeValue(KtU32{value});
}
void writeOne(KtXmlWriter& writer, const std::string& value) {
  if (writer.inGroup()) {
    writer.writeListText(value);
  } else {
    writer.writeText(value);
  }
}

template <class T>
constexpr const char* schemaType() {
  if constexpr (std::same_as<T, bool>) return "xs:boolean";
  if constexpr (std::same_as<T, unsigned>) return "xs:unsignedInt";
  if constexpr (std::same_as<T, std::string>) return "xs:string";
  return "xs:double";
}

template <class T>
bool parseReported(KtXmlReader& reader, std::string_view text, T& value) {
  if constexpr (!std::same_as<T, std::string>) text = Kt::detail::trimmed(text);
  if (parse(text, value)) return true;
  constexpr const char* kind = std::same_as<T, bool>       ? "a truth value"
                               : std::same_as<T, unsigned> ? "an unsigned integer"
                                                           : "a number";
  reader.reportError("\"" + Kt::detail::excerpt(text) + "\" is not " + kind);
  return false;
}

}  // namespace

template <class T>
bool KtXmlBasicType<T>::read(KtXmlReader& reader) {
  if (!KtXmlObject::read(reader)) return false;
  if (reader.dataMode()) {
    std::string_view text;
    return reader.nextValue(text) && parseReported(reader, text, value_);
  }
  std::string text;
  return reader.readText(text) && parseReported(reader, text, value_);
}

template <class T>
bool KtXmlBasicType<T>::readAttribute(KtXmlReader& reader) {
  return KtXmlObject::read(reader) && parseReported(reader, reader.attributeValue(), value_);
}

template <class T>
bool KtXmlBasicType<T>::write(KtXmlWriter& writer) const {
  if (!KtXmlObject::write(writer)) return false;
  const unsigned before = writer.errorCount();
  writeOne(writer, value_);
  return writer.errorCount() == before;
}

template <class T>
void KtXmlBasicType<T>::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  schema.setValueType(schemaType<T>());
}

template class KtXmlBasicType<bool>;
template class KtXmlBasicType<double>;
template class KtXmlBasicType<unsigned int>;
template class KtXmlBasicType<std::string>;
template class KtXmlBasicType<KtAngle>;
template class KtXmlBasicType<KtNonNegReal>;
