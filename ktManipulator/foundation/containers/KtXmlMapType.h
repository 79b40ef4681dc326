#pragma once

#include <iterator>
#include <map>
#include <string>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/xml/KtXmlObjectVisitor.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

/// A persistent map with unique keys, ordered by `operator<` of the key.
///
/// In a file each entry is a child "element" with two children, "key" and "value". A key that comes
/// twice keeps the later value. An entry without content ends the reading of the map; anything else
/// that is not an entry is reported and makes `read` false, but for stray text, which is reported
/// and passed over. What was read stays.
///
/// @tparam K  persistent type of the keys, ordered by `operator<`
/// @tparam V  persistent type of the values
template <class K, class V>
class KT_EXPORT KtXmlMapType : public KtXmlPersistent<KtXmlMapType<K, V>> {
 public:
  /// The type of the keys.
  using KeyType = K;
  /// The type of the values.
  using MappedType = V;

  /// The empty map.
  KtXmlMapType() = default;
  /// A map of one entry.
  KtXmlMapType(const K& key, const V& value) { entries_.emplace(key, value); }

  void accept(KtXmlObjectVisitor* visitor) const override { visitor->visit(this); }  ///< Visits it.
  bool read(KtXmlReader& reader) override;               ///< See `KtXmlObject::read`.
  bool write(KtXmlWriter& writer) const override;        ///< See `KtXmlObject::write`.
  void writeSchema(KtXmlSchema& schema) const override;  ///< See `KtXmlObject::writeSchema`.

  /// Copies the value of the key and gives true; false, and the argument unchanged, for an unknown
  /// key.
  virtual bool lookup(const K& key, V& value) const {
    const V* found = lookupPointer(key);
    if (found != nullptr) value = *found;
    return found != nullptr;
  }
  /// The value of the key, or null.
  virtual const V* lookupPointer(const K& key) const {
    const auto found = entries_.find(key);
    return found == entries_.end() ? nullptr : &found->second;
  }
  virtual V* lookupPointer(const K& key) {
    const auto found = entries_.find(key);
    return found == entries_.end() ? nullptr : &found->second;
  }
  /// Adds an entry, or assigns over the value that the key has.
  virtual void add(const K& key, const V& value) { entries_.insert_or_assign(key, value); }
  /// Removes the entry of the key; false if there is none.
  virtual bool erase(const K& key) { return entries_.erase(key) != 0; }
  /// Removes all entries.
  virtual void clear() { entries_.clear(); }
  /// The entries, in key order.
  virtual const std::map<K, V>& mapContainer() const { return entries_; }
  virtual std::map<K, V>& mapContainer() { return entries_; }
  /// Position of the key in key order; false, and the position at the size, for an unknown key.
  virtual bool keyIndex(const K& key, KtU32& index) const {
    index = 0;
    for (const auto& entry : entries_) {
      if (entry.first == key) return true;
      ++index;
    }
    return false;
  }
  /// Copies the key at a position in key order; false if there is no such position.
  virtual bool indexKey(const KtU32& index, K& key) const {
    if (index >= entries_.size()) return false;
    key = std::next(entries_.begin(), index)->first;
    return true;
  }
  /// How many entries there are.
  virtual KtU32 size() const { return static_cast<KtU32>(entries_.size()); }

  bool operator==(const KtXmlMapType& other) const { return entries_ == other.entries_; }

  static const KtToken& classToken() { return KtXml::KtMapTypeToken; }

 private:
  static bool reportInvalid(KtXmlReader& reader) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtXmlMapType Error: file not valid.\n\tKey map format not correct.\n\tFile: %s\n\tLine: "
        "%d",
        reader.fileName(), reader.lineCount());
    reader.countError();
    return false;
  }
  bool readEntries(KtXmlReader& reader);

  std::map<K, V> entries_;
};

template <class K, class V>
bool KtXmlMapType<K, V>::read(KtXmlReader& reader) {
  const bool ok = KtXmlObject::read(reader);
  entries_.clear();
  if (!ok) return false;
  if (reader.currentEvent() == KtXmlReader::kEmpty) return true;
  const unsigned mark = reader.mark();
  const bool valid = readEntries(reader);
  // Reading may have stopped midway; the owner's next member stands behind this element's end.
  reader.finishElement(mark);
  return valid;
}

template <class K, class V>
bool KtXmlMapType<K, V>::readEntries(KtXmlReader& reader) {
  K key;
  V value;
  const unsigned mark = reader.mark();
  for (;;) {
    if (reader.nextChild(mark) != KtXmlReader::kStart) return true;
    if (reader.currentToken() != KtXml::KtElementToken) {
      reportInvalid(reader);
      Kt::Print::instance().write(Kt::Print::kError, "\tExpected %s but received %s.",
                                  KtXml::KtElementToken.text().c_str(),
                                  reader.currentToken().text().c_str());
      return false;
    }
    const unsigned entryMark = reader.mark();
    if (reader.nextChild(entryMark) != KtXmlReader::kStart) return reportInvalid(reader);
    reader.readChild(key);
    V& held = entries_[key];
    held = value;
    switch (reader.nextChild(entryMark)) {
      case KtXmlReader::kStart:
        reader.readChild(held);
        break;
      case KtXmlReader::kEmpty:
        break;
      default:
        return reportInvalid(reader);
    }
    if (reader.nextChild(entryMark) != KtXmlReader::kEnd) return reportInvalid(reader);
  }
}

template <class K, class V>
bool KtXmlMapType<K, V>::write(KtXmlWriter& writer) const {
  bool ok = KtXmlObject::write(writer);
  for (const auto& [key, value] : entries_) {
    writer.beginElement(KtXml::KtElementToken);
    writer.beginElement(KtXml::KtKeyToken);
    ok = key.write(writer) && ok;
    // A key without content could not be read back.
    writer.forceContent();
    writer.endElement();
    writer.beginElement(KtXml::KtValueToken);
    ok = value.write(writer) && ok;
    writer.endElement();
    writer.endElement();
  }
  return ok;
}

template <class K, class V>
void KtXmlMapType<K, V>::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  schema.beginElement(KtXml::KtElementToken, KtXmlSchema::kAnyNumber);
  schema.beginElement(KtXml::KtKeyToken, KtXmlSchema::kExactlyOne);
  K().writeSchema(schema);
  schema.endElement();
  schema.beginElement(KtXml::KtValueToken, KtXmlSchema::kExactlyOne);
  V().writeSchema(schema);
  schema.endElement();
  schema.endElement();
}

extern template class KtXmlMapType<KtXmlBasicType<std::string>, KtXmlBasicType<unsigned int>>;
extern template class KtXmlMapType<KtXmlBasicType<std::string>, KtXmlBasicType<bool>>;
extern template class KtXmlMapType<KtXmlBasicType<std::string>,
                                   KtXmlMapType<KtXmlBasicType<std::string>, KtXmlBasicType<bool>>>;
