// Uses the installed library as any program would: values, a class of its own, and a document that
// is written and read back.

#include <iostream>
#include <numbers>
#include <string>

#include "ktManipulator/ktManipulator.h"

namespace {

const KtToken markToken("http://example.org/marks#mark");
const KtToken placeToken("http://example.org/marks#place");

/// A persistent class that the library does not know, with names of its own.
class Mark : public KtXmlPersistent<Mark, KtXmlCompoundType> {
 public:
  void registerComponents() override { registerComponent(placeToken, &place); }
  static const KtToken& classToken() { return markToken; }
  bool operator==(const Mark&) const = default;

  KtCoordinateSystemTransformation place;
};

int failures = 0;

void expect(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "Does not hold: " << what << "\n";
  ++failures;
}

}  // namespace

int main() {
  Mark mark;
  mark.place = {KtVector(1, 2, 3), KtOrientation::zRotation(std::numbers::pi / 2)};
  expect((mark.place * KtVector(1, 0, 0)).approxEq(KtVector(1, 3, 3), 1e-15),
         "a quarter turn about z takes x to y");
  expect((mark.place * mark.place.inverse()).approxEq(KtCoordinateSystemTransformation(), 1e-15),
         "a transformation times its inverse is the identity");

  const std::string text = KtXmlWriter::writeString(mark);
  Mark back;
  expect(KtXmlReader::readString(text, back), "what was written can be read");
  expect(back.equality(&mark), "what was read equals what was written");
  expect(!back.equality(&mark.place), "objects of different classes are not equal");

  // Messages reach a sink of this program.
  std::string messages;
  Kt::Print::instance().setSink(
      [&](Kt::Print::PrintType, const std::string& message) { messages += message; });
  expect(!KtXmlReader::readString(text.substr(0, text.size() / 2), back),
         "a document that is cut off is refused");
  expect(!messages.empty(), "a refusal gives a message");
  Kt::Print::instance().setSink({});

  if (failures != 0) std::cerr << "The document was:\n" << text;
  return failures == 0 ? 0 : 1;
}
