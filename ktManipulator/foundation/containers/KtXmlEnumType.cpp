#include "ktManipulator/foundation/containers/KtXmlEnumType.h"

#include <algorithm>

#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlText.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

template <class T>
void KtXmlEnumType<T>::setEnumString(const T& value, const std::string& word) {
  if (words_ != nullptr) {
    const std::pair<T, std::string> entry(value, word);
    if (std::find(words_->begin(), words_->end(), entry) != words_->end()) return;
  }
  auto words = words_ != nullptr ? std::make_shared<Words>(*words_) : std::make_shared<Words>();
  const auto present = std::find_if(words->begin(), words->end(),
                                    [&](const auto& entry) { return entry.first == value; });
  if (present != words->end()) {
    present->second = word;
  } else {
    words->emplace_back(value, word);
  }
  words_ = std::move(words);
}

template <class T>
bool KtXmlEnumType<T>::parseReported(KtXmlReader& reader, std::string_view text) {
  text = Kt::detail::trimmed(text);
  std::string known;
  if (words_ != nullptr) {
    for (const auto& [value, word] : *words_) {
      if (word == text) {
        value_ = value;
        return true;
      }
      known += (known.empty() ? "" : ", ") + word;
    }
  }
  if (Kt::detail::parseUnsigned(text, value_)) return true;
  reader.reportError("\"" + Kt::detail::excerpt(text) + "\" is none of: " + known);
  return false;
}

template <class T>
bool KtXmlEnumType<T>::read(KtXmlReader& reader) {
  if (!KtXmlObject::read(reader)) return false;
  if (reader.dataMode()) {
    std::string_view text;
    return reader.nextValue(text) && parseReported(reader, text);
  }
  std::string text;
  return reader.readText(text) && parseReported(reader, text);
}

template <class T>
bool KtXmlEnumType<T>::readAttribute(KtXmlReader& reader) {
  return KtXmlObject::read(reader) && parseReported(reader, reader.attributeValue());
}

template <class T>
bool KtXmlEnumType<T>::write(KtXmlWriter& writer) const {
  if (!KtXmlObject::write(writer)) return false;
  const unsigned before = writer.errorCount();
  if (words_ != nullptr) {
    for (const auto& [value, word] : *words_) {
      if (value != value_) continue;
      if (writer.inGroup()) {
        writer.writeListText(word);
      } else {
        writer.writeText(word);
      }
      return writer.errorCount() == before;
    }
  }
  writer.writeValue(KtU32{value_});
  return writer.errorCount() == before;
}

template <class T>
void KtXmlEnumType<T>::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  if (words_ == nullptr) {
    schema.setValueType("xs:string");
    return;
  }
  std::vector<std::string> words;
  for (const auto& entry : *words_) words.push_back(entry.second);
  schema.setEnumeration(words);
}

template class KtXmlEnumType<unsigned int>;
