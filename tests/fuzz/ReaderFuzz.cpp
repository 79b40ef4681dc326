// Reads any bytes as a document of whatever class its root element names. Beyond what the
// sanitizers see, an object that was read must survive another trip through a document.

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sstream>

#include "support/Samples.h"

namespace {

KtToken rootOf(const std::string& text) {
  std::istringstream stream(text);
  KtXmlReader reader("fuzz", stream);
  reader.nextEvent();
  return reader.currentToken();
}

void readAs(const KtXmlObject& kind, const std::string& text) {
  std::unique_ptr<KtXmlObject> object(kind.newObject());
  if (!KtXmlReader::readString(text, *object)) {
    // A damaged document may have emptied a holder that a new object fills, which no document can
    // say: what it says instead has to last.
    const std::string damaged = KtXmlWriter::writeString(*object);
    object.reset(kind.newObject());
    KtXmlReader::readString(damaged, *object);
  }
  const std::string written = KtXmlWriter::writeString(*object);
  const std::unique_ptr<KtXmlObject> copy(object->clone());
  const std::unique_ptr<KtXmlObject> back(kind.newObject());
  KtXmlReader::readString(written, *back);
  if (KtXmlWriter::writeString(*back) != written || KtXmlWriter::writeString(*copy) != written) {
    std::cerr << "changed on the way:\n" << written << KtXmlWriter::writeString(*back);
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Made once: samples cost more than reading does.
  static const std::vector<std::unique_ptr<KtXmlObject>> kinds = [] {
    Kt::Print::instance().setSink([](Kt::Print::PrintType, const std::string&) {});
    std::vector<std::unique_ptr<KtXmlObject>> all;
    for (const Sample& sample : allSamples()) all.emplace_back(sample.make()->newObject());
    return all;
  }();
  const std::string text(reinterpret_cast<const char*>(data), size);
  const KtToken root = rootOf(text);
  bool known = false;
  for (const auto& kind : kinds) {
    if (kind->token() != root) continue;
    known = true;
    readAs(*kind, text);
  }
  if (!known) readAs(SampleNode(), text);
  return 0;
}
