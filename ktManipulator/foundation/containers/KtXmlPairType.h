#pragma once

#include <utility>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/xml/KtXmlObjectVisitor.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

/// A persistent pair of values.
///
/// In a file they stand in the children "first" and "second"; one that is missing keeps its value,
/// any other child is reported and makes `read` false; stray text is reported and passed over.
///
/// @tparam A  persistent type of the first value
/// @tparam B  persistent type of the second value
template <class A, class B>
class KT_EXPORT KtXmlPairType : public KtXmlPersistent<KtXmlPairType<A, B>> {
 public:
  /// Two default values.
  KtXmlPairType() = default;
  /// From two values.
  KtXmlPairType(const A& first, const B& second) : pair_(first, second) {}

  void accept(KtXmlObjectVisitor* visitor) const override { visitor->visit(this); }
  bool read(KtXmlReader& reader) override;
  bool write(KtXmlWriter& writer) const override;
  void writeSchema(KtXmlSchema& schema) const override;

  /// The first value.
  virtual const A& first() const { return pair_.first; }
  virtual A& first() { return pair_.first; }
  virtual void setFirst(const A& value) { pair_.first = value; }
  /// The second value.
  virtual const B& second() const { return pair_.second; }
  virtual B& second() { return pair_.second; }
  virtual void setSecond(const B& value) { pair_.second = value; }
  /// Sets both values.
  virtual void set(const A& first, const B& second) {
    pair_.first = first;
    pair_.second = second;
  }
  /// Both values.
  virtual const std::pair<A, B>& pairContainer() const { return pair_; }
  virtual std::pair<A, B>& pairContainer() { return pair_; }

  bool operator==(const KtXmlPairType& other) const {
    return pair_.first == other.pair_.first && pair_.second == other.pair_.second;
  }

  static const KtToken& classToken() { return KtXml::KtPairTypeToken; }

 private:
  std::pair<A, B> pair_;
};

/// Lexicographic order, for pairs of ordered values. No member: some compilers instantiate members
/// together with their class whether the values have an order or not.
template <class A, class B>
requires requires(const A& a, const B& b) {
  a < a;
  b < b;
}
bool operator<(const KtXmlPairType<A, B>& x, const KtXmlPairType<A, B>& y) {
  if (x.first() < y.first()) return true;
  return !(y.first() < x.first()) && x.second() < y.second();
}

template <class A, class B>
bool KtXmlPairType<A, B>::read(KtXmlReader& reader) {
  if (!KtXmlObject::read(reader)) return false;
  if (reader.currentEvent() == KtXmlReader::kEmpty) return true;
  bool ok = true;
  reader.forEachChild([&] {
    if (reader.currentToken() == KtXml::KtFirstToken) {
      pair_.first.xmlInit();
      pair_.first.read(reader);
    } else if (reader.currentToken() == KtXml::KtSecondToken) {
      pair_.second.xmlInit();
      pair_.second.read(reader);
    } else {
      Kt::Print::instance().write(
          Kt::Print::kError,
          "KtXmlPairType Error: file not valid.\n\tFormat not correct.\n\tFile: %s\n\tLine: %d",
          reader.fileName(), reader.lineCount());
      Kt::Print::instance().write(Kt::Print::kError, "\tExpected %s or %s but received %s.",
                                  KtXml::KtFirstToken.text().c_str(),
                                  KtXml::KtSecondToken.text().c_str(),
                                  reader.currentToken().text().c_str());
      reader.countError();
      ok = false;
    }
  });
  return ok;
}

template <class A, class B>
bool KtXmlPairType<A, B>::write(KtXmlWriter& writer) const {
  bool ok = KtXmlObject::write(writer);
  writer.beginElement(KtXml::KtFirstToken);
  ok = pair_.first.write(writer) && ok;
  writer.endElement();
  writer.beginElement(KtXml::KtSecondToken);
  ok = pair_.second.write(writer) && ok;
  writer.endElement();
  return ok;
}

template <class A, class B>
void KtXmlPairType<A, B>::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  schema.beginElement(KtXml::KtFirstToken, KtXmlSchema::kExactlyOne);
  pair_.first.writeSchema(schema);
  schema.endElement();
  schema.beginElement(KtXml::KtSecondToken, KtXmlSchema::kExactlyOne);
  pair_.second.writeSchema(schema);
  schema.endElement();
}
