#pragma once

#include <memory>
#include <vector>

#include "ktManipulator/foundation/containers/KtXmlBaseVariableCompoundType.h"
#include "ktManipulator/foundation/containers/KtXmlHolding.h"
#include "ktManipulator/foundation/containers/KtXmlList.h"

/// A persistent list of owned objects of classes derived from `E`; an entry may be null.
///
/// In a file the element has the attribute "count", null entries included, and each object stands
/// in a child named after its class; a null entry writes nothing. The count is not checked against
/// the children on reading, but one that no list can have is refused: the list stays empty and
/// `read` gives false.
///
/// Abstract: a concrete list gives the usual operations and `registerComponentCreators`.
///
/// @tparam E  an abstract persistent class
template <class E>
class KT_EXPORT KtXmlVariableVectorType : public KtXmlBaseVariableCompoundType {
 public:
  /// The common base of what is held.
  using ElementType = E;

  /// The empty list.
  KtXmlVariableVectorType() = default;
  /// A list of so many null entries.
  explicit KtXmlVariableVectorType(KtU32 count) : entries_(count, nullptr) {}
  KtXmlVariableVectorType(const KtXmlVariableVectorType& other)
      : KtXmlBaseVariableCompoundType(other) {
    cloneEntriesOf(other);
  }
  KtXmlVariableVectorType(KtXmlVariableVectorType&& other) noexcept
      : KtXmlBaseVariableCompoundType(std::move(other)), entries_(std::move(other.entries_)) {
    other.entries_.clear();
  }
  KtXmlVariableVectorType& operator=(const KtXmlVariableVectorType& other) {
    if (this == &other) return *this;
    KtXmlBaseVariableCompoundType::operator=(other);
    // Copied before anything is deleted: the other list may belong to an entry of this one.
    std::vector<E*> replaced;
    replaced.swap(entries_);
    cloneEntriesOf(other);
    for (const E* element : replaced) delete element;
    return *this;
  }
  KtXmlVariableVectorType& operator=(KtXmlVariableVectorType&& other) noexcept {
    if (this == &other) return *this;
    KtXmlBaseVariableCompoundType::operator=(std::move(other));
    entries_.swap(other.entries_);
    return *this;
  }
  ~KtXmlVariableVectorType() override { deleteFrom(0); }

  void accept(KtXmlObjectVisitor* visitor) const override { visitor->visit(this); }  ///< Visits it.
  bool read(KtXmlReader& reader) override;               ///< See `KtXmlObject::read`.
  bool write(KtXmlWriter& writer) const override;        ///< See `KtXmlObject::write`.
  void writeSchema(KtXmlSchema& schema) const override;  ///< See `KtXmlObject::writeSchema`.
  /// Makes the object of the tag, by this list's creators or the reader's factory, reads it and
  /// adds it; an unknown tag is reported and gives false.
  bool readValueFromToken(const KtToken& token, KtXmlReader& reader) override;

  /// Entry i. A bad index or a null entry is reported and gives the first entry; a list that has
  /// none gives an object of one of its classes that is no part of the list. Only a list that
  /// accepts no class at all has nothing to give; don't ask it.
  virtual const E& operator[](KtU32 index) const { return *entry(index); }
  virtual E& operator[](KtU32 index) { return *entry(index); }
  /// Replaces entry i by a copy of the element; false and a message if there is no such entry.
  virtual bool exchange(KtU32 index, const E& element);
  /// Removes entry i; false and a message if there is none.
  virtual bool erase(KtU32 index);
  /// Removes the entries from first up to, not with, last; false and a message unless
  /// first < last <= size.
  virtual bool erase(KtU32 first, KtU32 last);
  /// Adds a copy of the element at the end.
  virtual void pushBack(const E& element) { entries_.push_back(Kt::detail::cloneAs<E>(&element)); }
  /// The entries; owned by the list.
  virtual const std::vector<E*>& vectorContainer() const { return entries_; }
  /// Sets memory aside for so many entries.
  virtual void reserve(KtU32 count) { entries_.reserve(count); }
  /// Deletes the entries from n on; a number that is not below the size does nothing.
  virtual void resize(KtU32 count) {
    if (count < entries_.size()) deleteFrom(count);
  }
  /// Deletes all entries.
  virtual void clear() { deleteFrom(0); }
  /// Makes the list so many copies of the element, which must not be one of its own.
  virtual void assign(KtU32 count, E& element);
  /// How many entries there are, null ones included.
  virtual KtU32 size() const { return static_cast<KtU32>(entries_.size()); }
  /// Makes a writer and opens the root element; see `KtXmlVectorType`.
  virtual bool writeHeaderToStream(std::ostream& stream, KtXmlWriter*& writer,
                                   const KtString& fileName, const KtToken& token) const;
  /// Writes all present entries; false for a null writer.
  virtual bool writeBodyToStream(KtXmlWriter* writer) const;
  /// Writes one further element; false for a null writer.
  virtual bool appendElementToStream(KtXmlWriter* writer, const E& element) const;
  /// Closes the root, deletes the writer and sets the pointer to null; false for a null writer.
  virtual bool writeFooterToStream(KtXmlWriter*& writer) const;

  /// Entry by entry, each compared by its `equality`. A null entry on either side makes the lists
  /// unequal, so a list with one is not even equal to itself.
  bool operator==(const KtXmlVariableVectorType& other) const;

 private:
  E* entry(KtU32 index) const;
  void deleteFrom(std::size_t first) noexcept {
    for (std::size_t i = first; i < entries_.size(); ++i) delete entries_[i];
    entries_.resize(first);
  }
  void cloneEntriesOf(const KtXmlVariableVectorType& other) {
    entries_.reserve(other.entries_.size());
    for (const E* element : other.entries_) entries_.push_back(Kt::detail::cloneAs<E>(element));
  }

  std::vector<E*> entries_;
  mutable KtOnDemand<std::unique_ptr<E>> standIn_;
};

template <class E>
bool KtXmlVariableVectorType<E>::read(KtXmlReader& reader) {
  deleteFrom(0);
  const long count = Kt::detail::readXmlCount(reader);
  if (!Kt::detail::checkXmlCount(reader, count)) return false;
  Kt::detail::reserveXmlCount(reader, count, entries_);
  return KtXmlBaseVariableCompoundType::read(reader);
}

template <class E>
bool KtXmlVariableVectorType<E>::write(KtXmlWriter& writer) const {
  bool ok = Kt::detail::writeXmlCount(writer, entries_.size());
  ok = KtXmlBaseVariableCompoundType::write(writer) && ok;
  for (const E* element : entries_) {
    if (element != nullptr) ok = Kt::detail::writeHeld(writer, *element) && ok;
  }
  return ok;
}

template <class E>
void KtXmlVariableVectorType<E>::writeSchema(KtXmlSchema& schema) const {
  schema.beginAttribute(KtXml::KtCountToken);
  KtXmlBasicType<KtU32>().writeSchema(schema);
  schema.endElement();
  KtXmlBaseVariableCompoundType::writeSchema(schema);
}

template <class E>
bool KtXmlVariableVectorType<E>::readValueFromToken(const KtToken& token, KtXmlReader& reader) {
  if (token == KtXml::KtAddLibrariesToken) {
    readLibraries(reader);
    return true;
  }
  std::unique_ptr<E> element(Kt::detail::makeHeld<E>(*this, token, reader));
  if (element == nullptr) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtXmlVariableVectorType::readValueFromToken() error:\n\t\"%s\" "
                                "tag not registered.\n",
                                token.text().c_str());
    return false;
  }
  element->read(reader);
  entries_.push_back(element.get());
  element.release();
  return true;
}

template <class E>
E* KtXmlVariableVectorType<E>::entry(KtU32 index) const {
  if (index < entries_.size() && entries_[index] != nullptr) return entries_[index];
  Kt::Print::instance().write(Kt::Print::kError,
                              "KtXmlVariableVectorType<ElementType>::operator[]: bad index\n"
                              "Will attempt to return the first vector element.\n");
  if (!entries_.empty() && entries_.front() != nullptr) return entries_.front();
  std::unique_ptr<E>& standIn = standIn_.require();
  for (auto creator = creatorMap().begin(); standIn == nullptr && creator != creatorMap().end();
       ++creator) {
    std::unique_ptr<KtXmlObject> made(creator->second());
    standIn.reset(dynamic_cast<E*>(made.get()));
    if (standIn != nullptr) static_cast<void>(made.release());
  }
  return standIn.get();
}

template <class E>
bool KtXmlVariableVectorType<E>::exchange(KtU32 index, const E& element) {
  if (index >= entries_.size()) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtXmlVariableVectorType<ElementType>::exchange: bad index, %u\n",
                                index);
    return false;
  }
  // Cloned first: the element may be the very entry.
  E* const copy = Kt::detail::cloneAs<E>(&element);
  delete entries_[index];
  entries_[index] = copy;
  return true;
}

template <class E>
bool KtXmlVariableVectorType<E>::erase(KtU32 index) {
  if (index >= entries_.size()) {
    Kt::Print::instance().write(
        Kt::Print::kError, "KtXmlVariableVectorType<ElementType>::erase: bad index, %u\n", index);
    return false;
  }
  delete entries_[index];
  entries_.erase(entries_.begin() + index);
  return true;
}

template <class E>
bool KtXmlVariableVectorType<E>::erase(KtU32 first, KtU32 last) {
  if (first >= last || last > entries_.size()) {
    Kt::Print::instance().write(
        Kt::Print::kError,
        "KtXmlVariableVectorType<ElementType>::erase: bad first/last indices: %u/%u\n", first,
        last);
    return false;
  }
  for (KtU32 i = first; i < last; ++i) delete entries_[i];
  entries_.erase(entries_.begin() + first, entries_.begin() + last);
  return true;
}

template <class E>
void KtXmlVariableVectorType<E>::assign(KtU32 count, E& element) {
  deleteFrom(0);
  entries_.reserve(count);
  for (KtU32 i = 0; i < count; ++i) entries_.push_back(Kt::detail::cloneAs<E>(&element));
}

template <class E>
bool KtXmlVariableVectorType<E>::writeHeaderToStream(std::ostream& stream, KtXmlWriter*& writer,
                                                     const KtString& fileName,
                                                     const KtToken& token) const {
  if (stream.fail()) return false;
  writer = new KtXmlWriter(fileName, stream);
  writer->beginObjectElement(token);
  Kt::detail::writeXmlCount(*writer, entries_.size());
  return KtXmlBaseVariableCompoundType::write(*writer);
}

template <class E>
bool KtXmlVariableVectorType<E>::writeBodyToStream(KtXmlWriter* writer) const {
  if (writer == nullptr) return false;
  for (const E* element : entries_) {
    if (element != nullptr) Kt::detail::writeHeld(*writer, *element);
  }
  return true;
}

template <class E>
bool KtXmlVariableVectorType<E>::appendElementToStream(KtXmlWriter* writer,
                                                       const E& element) const {
  if (writer == nullptr) return false;
  Kt::detail::writeHeld(*writer, element);
  return true;
}

template <class E>
bool KtXmlVariableVectorType<E>::writeFooterToStream(KtXmlWriter*& writer) const {
  if (writer == nullptr) return false;
  writer->endElement();
  delete writer;
  writer = nullptr;
  return true;
}

template <class E>
bool KtXmlVariableVectorType<E>::operator==(const KtXmlVariableVectorType& other) const {
  if (!KtXmlBaseVariableCompoundType::operator==(other)) return false;
  if (entries_.size() != other.entries_.size()) return false;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i] == nullptr || other.entries_[i] == nullptr) return false;
    if (!entries_[i]->equality(other.entries_[i])) return false;
  }
  return true;
}
