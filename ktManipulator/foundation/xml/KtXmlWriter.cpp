#include "ktManipulator/foundation/xml/KtXmlWriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <sstream>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/xml/KtToken.h"
#include "ktManipulator/foundation/xml/KtXmlObject.h"
#include "ktManipulator/foundation/xml/KtXmlTokens.h"

namespace {

constexpr std::size_t kBufferBytes = 1 << 16;
constexpr std::size_t kLineLength = 100;
constexpr std::size_t kDeepestIndentation = 24;
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// Length in bytes of the UTF-8 character at the start of the text if XML 1.0 allows it, else 0.
std::size_t characterLength(std::string_view text) noexcept {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return lead >= 0x20 || lead == '\t' || lead == '\n' || lead == '\r' ? 1 : 0;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
  unsigned code = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return 0;
    code = code << 6 | (byte(i) & 0x3FU);
  }
  const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return overlong || surrogate || code > 0x10FFFF || code == 0xFFFE || code == 0xFFFF ? 0 : length;
}

bool isXmlName(std::string_view name) noexcept {
  const auto letter = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0xC2;
  };
  if (name.empty() || !letter(name[0])) return false;
  for (const char c : name) {
    const bool further = (c >= '0' && c <= '9') || c == '-' || c == '.';
    if (!letter(c) && !further && (static_cast<unsigned char>(c) < 0x80)) return false;
  }
  return true;
}

}  // namespace

KtXmlWriter::KtXmlWriter(const std::string& fileName, std::ostream& stream)
    : fileName_(fileName), stream_(stream) {
  buffer_.reserve(kBufferBytes + 256);
}

KtXmlWriter::~KtXmlWriter() {
  while (depth_ > 0) endElement();
  if (!buffer_.empty() || flushedOnLine_ > 0) put("\n");
  flush();
  try {
    stream_.flush();
  } catch (...) {
    // Nothing more can be done about it here.
  }
}

void KtXmlWriter::put(std::string_view text) {
  buffer_.append(text);
  if (buffer_.size() >= kBufferBytes) flush();
}

void KtXmlWriter::flush() {
  if (!buffer_.empty()) {
    try {
      stream_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    } catch (...) {
      // A caller may have told the stream to throw; its state says the same.
    }
    flushedOnLine_ += buffer_.size() - lineStart_;
    lineStart_ = 0;
    buffer_.clear();
  }
  if (!stream_ && !failed_) {
    failed_ = true;
    reportError("the document can't be written");
  }
}

void KtXmlWriter::newLine(std::size_t depth) {
  buffer_.push_back('\n');
  lineStart_ = buffer_.size();
  flushedOnLine_ = 0;
  // Deeper than this, indentation helps nobody, and would come to outweigh the document.
  buffer_.append(2 * std::min<std::size_t>(depth, kDeepestIndentation), ' ');
}

void KtXmlWriter::closeStartTag() {
  if (inAttribute_) endAttribute();
  if (startTagOpen_) buffer_.push_back('>');
  startTagOpen_ = false;
}

void KtXmlWriter::endAttribute() {
  buffer_.push_back('"');
  inAttribute_ = false;
}

void KtXmlWriter::beginObjectElement(const KtToken& token) {
  open(token);
}
void KtXmlWriter::beginElement(const KtToken& token) {
  open(token);
}

void KtXmlWriter::open(const KtToken& token) {
  closeStartTag();
  std::string_view name = token.localName();
  const std::string_view space = token.namespaceName();
  if (!isXmlName(name)) {
    reportError("\"" + token.text() + "\" is no name for an element");
    name = "unnamed";
  }
  const bool group = token == KtXml::KtGroupToken;
  if (depth_ == 0) {
    if (rootWritten_) reportError("a document has one root element only");
    rootWritten_ = true;
    put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    newLine(0);
  } else {
    Element& parent = elements_[depth_ - 1];
    // The values of a list stand on its line, and mixed content takes no white space.
    if (!group && !parent.hasText) {
      parent.multiLine = true;
      newLine(depth_);
    }
  }
  if (depth_ == elements_.size()) elements_.emplace_back();
  Element& element = elements_[depth_++];
  element.hasText = element.multiLine = false;
  element.group = group;
  const bool foreign = !space.empty() && space != KtXml::namespaceName;
  element.name = foreign ? "x:" : "";
  element.name += name;
  put("<");
  put(element.name);
  if (depth_ == 1) {
    put(" xmlns=\"");
    put(KtXml::namespaceName);
    put("\"");
  }
  if (foreign) {
    put(" xmlns:x=\"");
    putEscaped(space, true);
    put("\"");
  }
  startTagOpen_ = true;
}

void KtXmlWriter::beginAttribute(const KtToken& token) {
  if (inAttribute_) endAttribute();
  if (!startTagOpen_ || !isXmlName(token.localName())) {
    reportError("the attribute \"" + token.text() + "\" can't be written here");
    return;
  }
  put(" ");
  put(token.localName());
  put("=\"");
  inAttribute_ = true;
}

void KtXmlWriter::endElement() {
  if (depth_ == 0) {
    reportError("there is no open element to be closed");
    return;
  }
  if (inAttribute_) endAttribute();
  const Element& element = elements_[--depth_];
  if (startTagOpen_) {
    put("/>");
    startTagOpen_ = false;
    return;
  }
  if (element.multiLine && !element.hasText) newLine(depth_);
  put("</");
  put(element.name);
  put(">");
}

void KtXmlWriter::forceContent() {
  closeStartTag();
}

bool KtXmlWriter::inGroup() const noexcept {
  return depth_ > 0 && elements_[depth_ - 1].group && !inAttribute_;
}

void KtXmlWriter::writeText(std::string_view text) {
  if (inAttribute_) {
    putEscaped(text, true);
    return;
  }
  if (depth_ == 0) {
    reportError("a text can't stand outside of the root element");
    return;
  }
  closeStartTag();
  elements_[depth_ - 1].hasText = true;
  putEscaped(text, false);
}

void KtXmlWriter::writeListText(std::string_view text) {
  const bool plain =
      !text.empty() && text[0] != '"' && text.find_first_of(" \t\n\r") == std::string_view::npos;
  if (!beginValue(text.size())) return;
  if (plain) {
    putEscaped(text, false);
    return;
  }
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted.push_back('\\');
    quoted.push_back(c);
  }
  quoted.push_back('"');
  putEscaped(quoted, false);
}

bool KtXmlWriter::beginValue(std::size_t length) {
  if (inAttribute_) return true;
  if (depth_ == 0) {
    reportError("a value can't stand outside of the root element");
    return false;
  }
  closeStartTag();
  Element& element = elements_[depth_ - 1];
  if (element.hasText) {
    const std::size_t column = flushedOnLine_ + buffer_.size() - lineStart_;
    if (column + length >= kLineLength) {
      buffer_.push_back('\n');
      lineStart_ = buffer_.size();
      flushedOnLine_ = 0;
    } else {
      buffer_.push_back(' ');
    }
  }
  element.hasText = true;
  return true;
}

void KtXmlWriter::writeWord(std::string_view word) {
  if (beginValue(word.size())) put(word);
}

void KtXmlWriter::writeValue(double value) {
  char text[32];
  std::size_t length = 0;
  if (std::isfinite(value)) {
    length = static_cast<std::size_t>(std::to_chars(text, text + sizeof text, value).ptr - text);
    writeWord({text, length});
  } else {
    // The words of XML Schema.
    writeWord(std::isnan(value) ? "NaN" : value > 0.0 ? "INF" : "-INF");
  }
}

void KtXmlWriter::writeValue(KtU32 value) {
  char text[16];
  const auto end = std::to_chars(text, text + sizeof text, value);
  writeWord({text, static_cast<std::size_t>(end.ptr - text)});
}

void KtXmlWriter::putEscaped(std::string_view text, bool inAttribute) {
  bool replaced = false;
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i];
    const std::size_t length = characterLength(text.substr(i));
    if (length != 1) {
      replaced = replaced || length == 0;
      put(length == 0 ? kReplacement : text.substr(i, length));
      i += length == 0 ? 1 : length;
      continue;
    }
    ++i;
    switch (c) {
      case '&':
        put("&amp;");
        break;
      case '<':
        put("&lt;");
        break;
      case '>':
        put("&gt;");
        break;
      case '\r':
        put("&#13;");
        break;
      case '"':
        put(inAttribute ? "&quot;" : "\"");
        break;
      case '\t':
        put(inAttribute ? "&#9;" : "\t");
        break;
      case '\n':
        put(inAttribute ? "&#10;" : "\n");
        break;
      default:
        put({&c, 1});
        break;
    }
  }
  if (replaced) reportError("a text has characters that can't stand in XML; they were replaced");
}

bool KtXmlWriter::writeDocument(const KtXmlObject& object) {
  beginObjectElement(object.token());
  const bool ok = object.write(*this);
  while (depth_ > 0) endElement();
  put("\n");
  flush();
  lineStart_ = flushedOnLine_ = 0;
  return ok && errors_ == 0;
}

bool KtXmlWriter::writeFile(const std::string& fileName, const KtXmlObject& object) {
  std::ofstream stream(fileName, std::ios::binary);
  bool ok = false;
  {
    KtXmlWriter writer(fileName, stream);
    ok = writer.writeDocument(object);
  }
  stream.close();
  if (ok && !stream) {
    ok = false;
    Kt::Print::instance().write(Kt::Print::kError, "%s: the document can't be written\n",
                                fileName.c_str());
  }
  return ok;
}

std::string KtXmlWriter::writeString(const KtXmlObject& object) {
  std::ostringstream stream;
  KtXmlWriter("text", stream).writeDocument(object);
  return std::move(stream).str();
}

void KtXmlWriter::reportError(const std::string& message) {
  ++errors_;
  Kt::Print::instance().write(Kt::Print::kError, "%s: %s\n", fileName_.c_str(), message.c_str());
}
