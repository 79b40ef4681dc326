#pragma once

#include <set>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlList.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

/// A persistent set, ordered by `operator<` of the element.
///
/// In a file it looks like a `KtXmlVectorType`. Elements that come twice collapse on reading; the
/// count is compared with the number of elements read, which is reported when it differs.
///
/// @tparam E  a persistent type, ordered by `operator<`
template <class E>
class KT_EXPORT KtXmlSetType : public KtXmlPersistent<KtXmlSetType<E>> {
 public:
  /// The type of what it holds.
  using ValueType = E;

  /// The empty set.
  KtXmlSetType() = default;
  /// A set of one element.
  explicit KtXmlSetType(const E& element) { elements_.insert(element); }

  bool read(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;
  void writeSchema(KtXmlSchema& schema) const override { KtXmlVectorType<E>().writeSchema(schema); }

  /// Whether the element is in the set.
  virtual bool find(const E& element) const { return elements_.count(element) != 0; }
  /// Removes all elements.
  virtual void clear() { elements_.clear(); }
  /// How many elements there are.
  virtual KtU32 size() const { return static_cast<KtU32>(elements_.size()); }
  /// Adds an element; one that is there already changes nothing.
  virtual void add(const E& element) { elements_.insert(element); }
  /// Removes an element; false if it was not there.
  virtual bool erase(const E& element) { return elements_.erase(element) != 0; }
  /// The elements, in order.
  virtual const std::set<E>& setContainer() const { return elements_; }

  bool operator==(const KtXmlSetType& other) const { return elements_ == other.elements_; }

  static const KtToken& classToken() { return KtXml::KtSetTypeToken; }

 private:
  std::set<E> elements_;
};

template <class E>
bool KtXmlSetType<E>::read(KtXmlReader& reader) {
  if (!KtXmlObject::read(reader)) return false;
  elements_.clear();
  const long count = Kt::detail::readXmlCount(reader);
  if (reader.currentEvent() == KtXmlReader::kEmpty) return true;
  // Read over and over: what an element's file leaves out it has from the one before.
  E scratch;
  scratch.xmlInit();
  std::size_t number = 0;
  Kt::detail::readXmlElements(reader, "KtXmlSetType", ktIsBasicType<E>, [&] {
    scratch.read(reader);
    elements_.insert(scratch);
    ++number;
  });
  if (count < 0 || static_cast<std::size_t>(count) != number) {
    Kt::Print::instance().write(
        Kt::Print::kDiagnostic,
        "KtXmlSetType Error: set size not equal to attribute value -- %ld, actual -- %zu\n", count,
        number);
  }
  return true;
}

template <class E>
bool KtXmlSetType<E>::write(KtXmlWriter& writer) const {
  bool ok = KtXmlObject::write(writer);
  ok = Kt::detail::writeXmlCount(writer, elements_.size()) && ok;
  if (ktIsBasicType<E> && !elements_.empty()) writer.beginElement(KtXml::KtGroupToken);
  for (const E& element : elements_) {
    if (!ktIsBasicType<E>) writer.beginElement(KtXml::KtElementToken);
    ok = element.write(writer) && ok;
    if (!ktIsBasicType<E>) writer.endElement();
  }
  if (ktIsBasicType<E> && !elements_.empty()) writer.endElement();
  return ok;
}

extern template class KtXmlSetType<KtXmlBasicType<unsigned int>>;
