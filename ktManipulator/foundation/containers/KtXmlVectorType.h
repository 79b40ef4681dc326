#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlList.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/xml/KtXmlObjectVisitor.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlTokens.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

/// A persistent list of values, contiguous in memory.
///
/// In a file the element has the attribute "count"; basic values stand in one child "group", other
/// elements each in a child "element". On reading, a tag other than "group" is an element whatever
/// its name; stray text is reported and passed over; a count that is not the number of elements is
/// reported, and the elements count. A count that no list can have is refused: the list stays empty
/// and `read` gives false.
///
/// @tparam E  a persistent type, default-constructible and comparable; it may be incomplete where
///            the list is declared
template <class E>
class KT_EXPORT KtXmlVectorType : public KtXmlPersistent<KtXmlVectorType<E>> {
 public:
  /// The type of what it holds.
  using ValueType = E;

  // Defaulted behind the class: inside of it they would ask for the complete element type.
  /// The empty list.
  KtXmlVectorType();
  /// A list of so many default elements.
  explicit KtXmlVectorType(KtU32 count) : elements_(count) {}
  /// A list of so many copies of the element.
  KtXmlVectorType(KtU32 count, const E& element) : elements_(count, element) {}
  KtXmlVectorType(const KtXmlVectorType& other);
  KtXmlVectorType(KtXmlVectorType&& other) noexcept;
  KtXmlVectorType& operator=(const KtXmlVectorType& other);
  KtXmlVectorType& operator=(KtXmlVectorType&& other) noexcept;
  ~KtXmlVectorType() override;

  void accept(KtXmlObjectVisitor* visitor) const override { visitor->visit(this); }
  bool read(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;
  void writeSchema(KtXmlSchema& schema) const override;

  /// Adds a copy of the element at the end.
  virtual void pushBack(const E& element) { elements_.push_back(element); }
  /// Removes element i; false and a message if there is none.
  virtual bool erase(KtU32 index);
  /// Removes the elements from first up to, not with, last; false and a message if last is beyond
  /// the end or before first.
  virtual bool erase(KtU32 first, KtU32 last);
  /// The elements, for loops that need no virtual call.
  virtual const std::vector<E>& vectorContainer() const { return elements_; }
  virtual std::vector<E>& vectorContainer() { return elements_; }
  /// Sets memory aside for so many elements.
  virtual void reserve(KtU32 count) { elements_.reserve(count); }
  /// Cuts the list or fills it up with default elements.
  virtual void resize(KtU32 count) {
    if (count != elements_.size()) elements_.resize(count);
  }
  /// Fills the list up with default elements if it is shorter.
  virtual void resizeToAtLeast(KtU32 count) {
    if (count > elements_.size()) elements_.resize(count);
  }
  /// Removes all elements.
  virtual void clear() { elements_.clear(); }
  /// Makes the list so many copies of the element.
  virtual void assign(KtU32 count, const E& element) { elements_.assign(count, element); }
  /// How many elements there are.
  virtual KtU32 size() const { return static_cast<KtU32>(elements_.size()); }
  /// Rotates so that element k comes first; false, and nothing changes, if there is none.
  virtual bool leftRotate(KtU32 k);

  // Writing piece by piece: header, any mix of body and further elements, footer.

  /// Makes a writer and opens the root element.
  ///
  /// The count in the file is the present size; elements that are appended later don't correct it.
  ///
  /// @param stream    receives the document; false if it has failed before
  /// @param writer    receives the writer, which `writeFooterToStream` deletes
  /// @param fileName  name of the document for messages
  /// @param token     name of the root element
  virtual bool writeHeaderToStream(std::ostream& stream, KtXmlWriter*& writer,
                                   const KtString& fileName, const KtToken& token) const;
  /// Writes all present elements; false for a null writer.
  virtual bool writeBodyToStream(KtXmlWriter* writer) const;
  /// Writes one further element; false for a null writer.
  virtual bool appendElementToStream(KtXmlWriter* writer, const E& element) const;
  /// Closes the root, deletes the writer and sets the pointer to null; false for a null writer.
  virtual bool writeFooterToStream(KtXmlWriter*& writer) const;
  /// Adds copies of all elements of the other list, which may be this one.
  virtual void append(const KtXmlVectorType& other);

  /// The same as `vectorContainer`, which is a virtual call where the list's exact type is not
  /// known.
  const std::vector<E>& elements() const noexcept { return elements_; }
  std::vector<E>& elements() noexcept { return elements_; }
  /// Element i; unguarded.
  const E& operator[](KtU32 index) const { return elements_[index]; }
  /// The same, to be changed.
  E& operator[](KtU32 index) { return elements_[index]; }

  bool operator==(const KtXmlVectorType& other) const { return elements_ == other.elements_; }

  static const KtToken& classToken() { return KtXml::KtVectorTypeToken; }

 private:
  std::vector<E> elements_;
};

template <class E>
KtXmlVectorType<E>::KtXmlVectorType() = default;
template <class E>
KtXmlVectorType<E>::KtXmlVectorType(const KtXmlVectorType&) = default;
template <class E>
KtXmlVectorType<E>::KtXmlVectorType(KtXmlVectorType&&) noexcept = default;
template <class E>
KtXmlVectorType<E>& KtXmlVectorType<E>::operator=(const KtXmlVectorType&) = default;
template <class E>
KtXmlVectorType<E>& KtXmlVectorType<E>::operator=(KtXmlVectorType&&) noexcept = default;
template <class E>
KtXmlVectorType<E>::~KtXmlVectorType() = default;

template <class E>
bool KtXmlVectorType<E>::read(KtXmlReader& reader) {
  if (!KtXmlObject::read(reader)) return false;
  elements_.clear();
  const long count = Kt::detail::readXmlCount(reader);
  if (!Kt::detail::checkXmlCount(reader, count)) return false;
  Kt::detail::reserveXmlCount(reader, count, elements_);
  if (reader.currentEvent() == KtXmlReader::kEmpty) return true;
  Kt::detail::readXmlElements(reader, "KtXmlVectorType", ktIsBasicType<E>,
                              [&] { elements_.emplace_back().read(reader); });
  if (static_cast<std::size_t>(count) != elements_.size()) {
    Kt::Print::instance().write(
        Kt::Print::kDiagnostic,
        "KtXmlVectorType Error: array size not equal to attribute value -- %ld, actual -- %zu\n",
        count, elements_.size());
    Kt::Print::instance().write(Kt::Print::kDiagnostic, "Filename: %s, Line count: %d\n",
                                reader.fileName(), reader.lineCount());
  }
  return true;
}

template <class E>
bool KtXmlVectorType<E>::write(KtXmlWriter& writer) const {
  bool ok = KtXmlObject::write(writer);
  ok = Kt::detail::writeXmlCount(writer, elements_.size()) && ok;
  if constexpr (ktIsBasicType<E>) {
    if (elements_.empty()) return ok;
    writer.beginElement(KtXml::KtGroupToken);
    for (const E& element : elements_) ok = element.write(writer) && ok;
    writer.endElement();
  } else {
    for (const E& element : elements_) {
      writer.beginElement(KtXml::KtElementToken);
      ok = element.write(writer) && ok;
      writer.endElement();
    }
  }
  return ok;
}

template <class E>
void KtXmlVectorType<E>::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  schema.beginAttribute(KtXml::KtCountToken);
  KtXmlBasicType<KtU32>().writeSchema(schema);
  schema.endElement();
  // Heap, so that a schema of deeply nested lists needs no stack for their elements.
  const auto element = std::make_unique<E>();
  if constexpr (ktIsBasicType<E>) {
    // One group, or, as a file may have it too, one element for each value, also none.
    schema.setContentModel(KtXmlSchema::kChoice);
    schema.beginElement(KtXml::KtGroupToken, KtXmlSchema::kExactlyOne);
    element->writeSchema(schema);
    schema.makeList();
    schema.endElement();
  }
  schema.beginElement(KtXml::KtElementToken, KtXmlSchema::kAnyNumber);
  element->writeSchema(schema);
  schema.endElement();
}

template <class E>
bool KtXmlVectorType<E>::erase(KtU32 index) {
  if (index >= elements_.size()) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtXmlVectorType<ElementType>::erase(): index (%u) exceeds vector size (%zu).\n", index,
        elements_.size());
    return false;
  }
  elements_.erase(elements_.begin() + index);
  return true;
}

template <class E>
bool KtXmlVectorType<E>::erase(KtU32 first, KtU32 last) {
  if (last > elements_.size()) {
    Kt::Print::instance().write(Kt::Print::kError, "index (%u) exceeds vector size ( %zu).\n", last,
                                elements_.size());
    return false;
  }
  if (last < first) {
    Kt::Print::instance().write(Kt::Print::kError, "first (%u) is bigger than last (%u).\n", first,
                                last);
    return false;
  }
  elements_.erase(elements_.begin() + first, elements_.begin() + last);
  return true;
}

template <class E>
bool KtXmlVectorType<E>::leftRotate(KtU32 k) {
  if (k >= elements_.size()) return false;
  std::rotate(elements_.begin(), elements_.begin() + k, elements_.end());
  return true;
}

template <class E>
bool KtXmlVectorType<E>::writeHeaderToStream(std::ostream& stream, KtXmlWriter*& writer,
                                             const KtString& fileName, const KtToken& token) const {
  if (stream.fail()) return false;
  writer = new KtXmlWriter(fileName, stream);
  writer->beginObjectElement(token);
  KtXmlObject::write(*writer);
  Kt::detail::writeXmlCount(*writer, elements_.size());
  if (ktIsBasicType<E>) writer->beginElement(KtXml::KtGroupToken);
  return true;
}

template <class E>
bool KtXmlVectorType<E>::writeBodyToStream(KtXmlWriter* writer) const {
  if (writer == nullptr) return false;
  for (const E& element : elements_) appendElementToStream(writer, element);
  return true;
}

template <class E>
bool KtXmlVectorType<E>::appendElementToStream(KtXmlWriter* writer, const E& element) const {
  if (writer == nullptr) return false;
  if (!ktIsBasicType<E>) writer->beginElement(KtXml::KtElementToken);
  element.write(*writer);
  if (!ktIsBasicType<E>) writer->endElement();
  return true;
}

template <class E>
bool KtXmlVectorType<E>::writeFooterToStream(KtXmlWriter*& writer) const {
  if (writer == nullptr) return false;
  if (ktIsBasicType<E>) writer->endElement();
  writer->endElement();
  delete writer;
  writer = nullptr;
  return true;
}

template <class E>
void KtXmlVectorType<E>::append(const KtXmlVectorType& other) {
  // By index and with memory set aside first: the other list may be this one.
  const std::size_t count = other.elements_.size();
  elements_.reserve(elements_.size() + count);
  for (std::size_t i = 0; i < count; ++i) elements_.push_back(other.elements_[i]);
}

extern template class KtXmlVectorType<KtXmlBasicType<bool>>;
extern template class KtXmlVectorType<KtXmlBasicType<double>>;
extern template class KtXmlVectorType<KtXmlBasicType<std::string>>;
extern template class KtXmlVectorType<KtXmlVectorType<KtXmlBasicType<bool>>>;
extern template class KtXmlVectorType<KtXmlVectorType<KtXmlBasicType<double>>>;
