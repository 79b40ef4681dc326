#include "ktManipulator/foundation/xml/KtXmlReader.h"

#include <expat.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <unordered_map>
#include <vector>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/xml/KtXmlObject.h"
#include "ktManipulator/foundation/xml/KtXmlTokens.h"

namespace {

constexpr int kChunkBytes = 1 << 16;
constexpr int kLargestChunkBytes = 1 << 29;
// A digit and a blank are the least that describes an element of a list, and its memory is a small
// multiple of its text: a real takes 12 times the bytes of the shortest one.
constexpr std::size_t kLeastBytesPerElement = 2;
constexpr std::size_t kMemoryPerByte = 32;
// What a stream that doesn't tell its length is taken to have in store.
constexpr std::size_t kUnknownLength = std::size_t{1} << 20;
// Stands between namespace and local name in the parser's names; no name can contain it.
constexpr char kSeparator = '\n';

constexpr bool isBlank(char c) noexcept {
  return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

bool isBlank(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](char c) { return isBlank(c); });
}

struct StringHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const noexcept {
    return std::hash<std::string_view>{}(text);
  }
};

}  // namespace

/// Parses one chunk of the document at a time into a queue of events.
struct KtXmlReader::Impl {
  struct Attribute {
    const KtToken* name;
    std::string value;
  };
  struct QueuedEvent {
    unsigned kind;
    int line;
    const KtToken* name;     // elements
    std::size_t begin, end;  // a range of `text`, or of `attributes` for the start of an element
  };

  explicit Impl(const std::string& documentName)
      : fileName(documentName), parser(XML_ParserCreateNS(nullptr, kSeparator)) {
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, onStart, onEnd);
    XML_SetCharacterDataHandler(parser, onText);
    XML_SetStartDoctypeDeclHandler(parser, onDoctype);
  }
  ~Impl() { XML_ParserFree(parser); }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  // What an exception in a handler would do to the parser's C frames is undefined.
  template <class Action>
  static void guarded(void* self, Action&& action) {
    auto& impl = *static_cast<Impl*>(self);
    // A parser that was stopped may still have something to tell.
    if (impl.broken) return;
    try {
      action(impl);
    } catch (...) {
      impl.fail("out of memory");
    }
  }

  static void onStart(void* self, const XML_Char* name, const XML_Char** attributes) {
    guarded(self, [&](Impl& impl) {
      if (++impl.parsedDepth > impl.depthLimit) {
        impl.fail("elements are nested deeper than " + std::to_string(impl.depthLimit) + " levels");
        return;
      }
      const std::size_t begin = impl.attributes.size();
      for (; *attributes != nullptr; attributes += 2) {
        impl.attributes.push_back({&impl.attributeName(attributes[0]), attributes[1]});
      }
      impl.queue.push_back(
          {kStart, impl.parserLine(), &impl.elementName(name), begin, impl.attributes.size()});
    });
  }

  static void onEnd(void* self, const XML_Char* name) {
    guarded(self, [&](Impl& impl) {
      --impl.parsedDepth;
      // The parser says of the end that belongs to <x/> that it takes no bytes.
      if (XML_GetCurrentByteCount(impl.parser) == 0 && !impl.queue.empty() &&
          impl.queue.back().kind == kStart) {
        impl.queue.back().kind = kEmpty;
        return;
      }
      impl.queue.push_back({kEnd, impl.parserLine(), &impl.elementName(name), 0, 0});
    });
  }

  static void onText(void* self, const XML_Char* data, int length) {
    guarded(self, [&](Impl& impl) {
      const std::size_t begin = impl.text.size();
      impl.text.append(data, static_cast<std::size_t>(length));
      if (!impl.queue.empty() && impl.queue.back().kind == kText) {
        impl.queue.back().end = impl.text.size();
      } else {
        impl.queue.push_back({kText, impl.parserLine(), nullptr, begin, impl.text.size()});
      }
    });
  }

  static void onDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    guarded(self, [](Impl& impl) { impl.fail("a document type declaration is not accepted"); });
  }

  int parserLine() const { return static_cast<int>(XML_GetCurrentLineNumber(parser)); }

  /// Ends the document here; only the first reason counts.
  void fail(const std::string& reason) {
    if (broken) return;
    broken = true;
    failLine = parserLine();
    failReason = reason;
    XML_StopParser(parser, XML_FALSE);
  }

  const KtToken& intern(std::string_view parserName, bool isElement) {
    auto& table = isElement ? elementNames : attributeNames;
    if (const auto found = table.find(parserName); found != table.end()) return found->second;
    std::string full(parserName);
    const auto separator = full.find(kSeparator);
    if (separator != std::string::npos) {
      full.erase(separator, 1);
    } else if (isElement) {
      full.insert(0, KtXml::namespaceName);
    }
    return table.emplace(parserName, KtToken(std::move(full))).first->second;
  }
  const KtToken& elementName(const XML_Char* n) { return intern(n, true); }
  const KtToken& attributeName(const XML_Char* n) { return intern(n, false); }

  /// Parses further chunks until there is an event; false at the end of the document.
  bool fill() {
    if (!queue.empty()) lastLine = queue.back().line;
    queue.clear();
    text.clear();
    attributes.clear();
    next = textBegin = textEnd = 0;
    attribute = attributeBegin = attributeEnd = 0;
    while (queue.empty() && !finished) parseChunk();
    return !queue.empty();
  }

  void parseChunk() {
    if (stream == nullptr || stream->bad() || (opened && !file.is_open())) {
      broken = finished = true;
      report(lastLine, "the document can't be opened");
      return;
    }
    void* buffer = XML_GetBuffer(parser, chunkBytes);
    std::streamsize count = 0;
    bool readable = true;
    if (buffer != nullptr) {
      try {
        // Not through the stream itself: a caller may have told it to throw.
        count = stream->rdbuf() != nullptr
                    ? stream->rdbuf()->sgetn(static_cast<char*>(buffer), chunkBytes)
                    : 0;
      } catch (...) {
        readable = false;
      }
    }
    if (!readable) {
      finished = broken = true;
      report(parserLine(), "the document can't be read");
      return;
    }
    bytesRead += static_cast<std::size_t>(count);
    const bool last = count < chunkBytes;
    const XML_Index before = XML_GetCurrentByteIndex(parser);
    if (buffer == nullptr ||
        XML_ParseBuffer(parser, static_cast<int>(count), last) != XML_STATUS_OK) {
      finished = true;
      if (!broken) {
        broken = true;
        failLine = parserLine();
        failReason = XML_ErrorString(XML_GetErrorCode(parser));
      }
    }
    if (last) finished = true;
    // The parser scans a name, attribute, comment or instruction that is not complete from its
    // start again at every chunk; larger chunks keep that linear.
    const bool stuck = XML_GetCurrentByteIndex(parser) == before;
    chunkBytes = !stuck ? kChunkBytes : std::min(2 * chunkBytes, kLargestChunkBytes);
  }

  void report(int atLine, const std::string& message) {
    ++errors;
    Kt::Print::instance().write(Kt::Print::kError, "%s:%d: %s\n", fileName.c_str(), atLine,
                                message.c_str());
  }

  /// The end of the events: says once why, if there is a why.
  unsigned finish() {
    if (broken && !failReason.empty()) {
      report(failLine, failReason);
      failReason.clear();
    }
    failedNow = broken;
    return current = kNone;
  }

  std::string_view eventText(const QueuedEvent& event) const {
    return std::string_view(text).substr(event.begin, event.end - event.begin);
  }
  std::string_view restOfText() const {
    return std::string_view(text).substr(textBegin, textEnd - textBegin);
  }

  /// Whether character data goes on in the queue; then it becomes the text in hand.
  bool continueText() {
    if (next == queue.size() && !fill()) return false;
    if (queue[next].kind != kText) return false;
    takeText(queue[next++]);
    return true;
  }
  void takeText(const QueuedEvent& event) {
    textBegin = event.begin;
    textEnd = event.end;
    line = event.line;
  }

  /// Moves over white space in data mode; false when the character data is over.
  bool skipBlanks() {
    for (;;) {
      for (; textBegin != textEnd; ++textBegin) {
        if (!isBlank(text[textBegin])) return true;
        if (text[textBegin] == '\n') ++line;
      }
      if (!continueText()) return false;
    }
  }

  std::string fileName;
  XML_Parser parser;
  std::ifstream file;
  std::istream* stream = nullptr;
  bool opened = false;  // the reader opened `file` itself
  KtXmlFactory* factory = nullptr;
  unsigned depthLimit = kDefaultDepthLimit;

  // The chunk in hand. References to the names are kept: a node-based table never moves them.
  std::vector<QueuedEvent> queue;
  std::vector<Attribute> attributes;
  std::string text;
  std::size_t next = 0;
  std::unordered_map<std::string, const KtToken, StringHash, std::equal_to<>> elementNames;
  std::unordered_map<std::string, const KtToken, StringHash, std::equal_to<>> attributeNames;

  // The parser's side of the queue.
  unsigned parsedDepth = 0;
  bool finished = false;
  bool broken = false;
  int failLine = 1;
  int lastLine = 1;
  std::string failReason;
  int chunkBytes = kChunkBytes;
  std::size_t bytesRead = 0;
  std::size_t totalBytes = 0;
  bool sizeKnown = false;
  std::size_t granted = 0;

  // The caller's side.
  unsigned current = kNone;
  unsigned depth = 0;  // elements opened and not yet closed
  int line = 1;
  const KtToken noName{""};
  const std::string noValue;
  const KtToken* name = &noName;
  std::size_t attribute = 0;
  std::size_t attributeBegin = 0;
  std::size_t attributeEnd = 0;
  std::size_t textBegin = 0;
  std::size_t textEnd = 0;
  bool dataMode = false;
  unsigned dataMark = 0;
  std::string value;
  unsigned errors = 0;
  bool failedNow = false;
};

namespace {

bool measure(std::istream& stream, std::size_t& bytes) {
  const auto here = stream.tellg();
  if (here == std::istream::pos_type(-1)) {
    stream.clear();
    return false;
  }
  stream.seekg(0, std::ios::end);
  const auto end = stream.tellg();
  stream.clear();
  stream.seekg(here);
  if (!stream || end < here) {
    stream.clear();
    return false;
  }
  bytes = static_cast<std::size_t>(end - here);
  return true;
}

}  // namespace

KtXmlReader::KtXmlReader(const std::string& fileName) : impl_(std::make_unique<Impl>(fileName)) {
  impl_->opened = true;
  impl_->file.open(fileName, std::ios::binary);
  impl_->stream = &impl_->file;
  if (impl_->file.is_open()) impl_->sizeKnown = measure(impl_->file, impl_->totalBytes);
}

KtXmlReader::KtXmlReader(const std::string& fileName, std::istream& stream)
    : impl_(std::make_unique<Impl>(fileName)) {
  impl_->stream = &stream;
  impl_->sizeKnown = measure(stream, impl_->totalBytes);
}

KtXmlReader::~KtXmlReader() = default;

unsigned KtXmlReader::nextEvent() {
  Impl& r = *impl_;
  if (r.dataMode) {
    r.dataMode = false;
    finishElement(r.dataMark);
    return r.current;
  }
  for (;;) {
    if (r.next == r.queue.size() && !r.fill()) return r.finish();
    const Impl::QueuedEvent& event = r.queue[r.next++];
    if (event.kind == kText) {
      if (isBlank(r.eventText(event))) continue;
      r.takeText(event);
      return r.current = kText;
    }
    r.line = event.line;
    r.name = event.name;
    r.attributeBegin = r.attribute = event.begin;
    r.attributeEnd = event.end;
    if (event.kind == kStart) ++r.depth;
    if (event.kind == kEnd) --r.depth;
    return r.current = event.kind;
  }
}

unsigned KtXmlReader::currentEvent() {
  return impl_->current;
}
const KtToken& KtXmlReader::currentToken() {
  return *impl_->name;
}

const KtToken& KtXmlReader::nextAttributeToken() {
  Impl& r = *impl_;
  return r.attribute < r.attributeEnd ? *r.attributes[r.attribute++].name : r.noName;
}

const std::string& KtXmlReader::attributeValue() {
  Impl& r = *impl_;
  return r.attribute > r.attributeBegin ? r.attributes[r.attribute - 1].value : r.noValue;
}

unsigned KtXmlReader::attributeCount() {
  return static_cast<unsigned>(impl_->attributeEnd - impl_->attributeBegin);
}

bool KtXmlReader::hasMoreData() {
  Impl& r = *impl_;
  if (!r.dataMode) return false;
  if (r.skipBlanks()) return true;
  r.dataMode = false;
  // What stands in a group beside values is lost to the values: say so, then leave the group.
  for (unsigned event = nextChild(r.dataMark); event == kStart || event == kEmpty;
       event = nextChild(r.dataMark)) {
    reportError("<" + std::string(currentToken().localName()) +
                "> stands among the values of a group");
    finishElement(mark());
  }
  return false;
}

void KtXmlReader::setDataMode(bool value) {
  impl_->dataMode = value;
  impl_->dataMark = impl_->depth;
}

const char* KtXmlReader::fileName() {
  return impl_->fileName.c_str();
}
int KtXmlReader::lineCount() {
  return impl_->line;
}
KtXmlFactory* KtXmlReader::factory() {
  return impl_->factory;
}
void KtXmlReader::setFactory(KtXmlFactory* factory) noexcept {
  impl_->factory = factory;
}
void KtXmlReader::setDepthLimit(unsigned levels) noexcept {
  impl_->depthLimit = levels;
}
unsigned KtXmlReader::depthLimit() const noexcept {
  return impl_->depthLimit;
}

bool KtXmlReader::readDocument(KtXmlObject& object) {
  return readDocument(object, object.token());
}

bool KtXmlReader::readDocument(KtXmlObject& object, const KtToken& root) {
  const unsigned event = nextEvent();
  if (event != kStart && event != kEmpty) return false;
  if (!KtXml::isNamedBy(currentToken(), root)) {
    reportError("expected the root element <" + std::string(root.localName()) + "> but received <" +
                std::string(currentToken().localName()) + ">");
    return false;
  }
  const bool ok = readChild(object);
  // To the end of the document: what follows the root may still be malformed.
  while (nextEvent() != kNone) {
  }
  return ok && errorCount() == 0;
}

bool KtXmlReader::readFile(const std::string& fileName, KtXmlObject& object) {
  return KtXmlReader(fileName).readDocument(object);
}

bool KtXmlReader::readString(const std::string& text, KtXmlObject& object) {
  std::istringstream stream(text);
  return KtXmlReader("text", stream).readDocument(object);
}

unsigned KtXmlReader::mark() const noexcept {
  return impl_->current == kEmpty ? impl_->depth + 1 : impl_->depth;
}

void KtXmlReader::finishElement(unsigned mark) {
  Impl& r = *impl_;
  r.dataMode = false;
  while (r.depth >= mark && nextEvent() != kNone) {
  }
}

unsigned KtXmlReader::nextChild(unsigned mark) {
  Impl& r = *impl_;
  bool complained = false;
  while (r.depth >= mark) {
    const unsigned event = nextEvent();
    if (event != kText) return event;
    if (!complained) reportError("text where elements are expected");
    complained = true;
  }
  return kEnd;
}

bool KtXmlReader::readChild(KtXmlObject& object) {
  const unsigned childMark = mark();
  const bool ok = object.read(*this);
  finishElement(childMark);
  return ok;
}

bool KtXmlReader::dataMode() const noexcept {
  return impl_->dataMode;
}

bool KtXmlReader::nextValue(std::string_view& value) {
  Impl& r = *impl_;
  if (!r.dataMode || !r.skipBlanks()) return false;
  if (r.text[r.textBegin] != '"') {
    const std::string_view rest = r.restOfText();
    const std::size_t length = rest.find_first_of(" \n\t\r");
    if (length != std::string_view::npos) {
      value = rest.substr(0, length);
      r.textBegin += length;
      return true;
    }
    // The value reaches the end of what has been parsed and may go on behind it.
    r.value.assign(rest);
    r.textBegin = r.textEnd;
    while (r.continueText()) {
      const std::string_view more = r.restOfText();
      const std::size_t used = std::min(more.find_first_of(" \n\t\r"), more.size());
      r.value.append(more.substr(0, used));
      r.textBegin += used;
      if (used < more.size()) break;
    }
    value = r.value;
    return true;
  }
  r.value.clear();
  bool escaped = false;
  ++r.textBegin;
  for (;;) {
    while (r.textBegin != r.textEnd) {
      const char c = r.text[r.textBegin++];
      if (c == '\n') ++r.line;
      if (escaped || (c != '"' && c != '\\')) {
        r.value.push_back(c);
        escaped = false;
      } else if (c == '\\') {
        escaped = true;
      } else {
        value = r.value;
        return true;
      }
    }
    if (!r.continueText()) break;
  }
  reportError("a quoted value has no closing quotation mark");
  value = r.value;
  return true;
}

bool KtXmlReader::readText(std::string& text) {
  Impl& r = *impl_;
  text.clear();
  if (r.current != kStart) return true;
  const unsigned element = mark();
  bool ok = true;
  for (;;) {
    while (r.continueText()) text.append(r.restOfText());
    const unsigned event = nextEvent();
    if (event == kStart || event == kEmpty) {
      reportError("<" + std::string(currentToken().localName()) + "> stands in a text");
      finishElement(mark());
      ok = false;
      continue;
    }
    if (event == kNone) return false;
    if (r.depth < element) return ok;
  }
}

std::size_t KtXmlReader::grantMemory(std::size_t count, std::size_t elementBytes) noexcept {
  Impl& r = *impl_;
  // What was read as the present chunk may not have been handed out yet.
  const auto chunk = static_cast<std::size_t>(r.chunkBytes);
  const std::size_t handedOut = r.bytesRead - std::min(r.bytesRead, chunk);
  const std::size_t total = r.sizeKnown ? r.totalBytes : r.bytesRead + kUnknownLength;
  const std::size_t remaining = total - std::min(total, handedOut);
  const std::size_t allowance = kMemoryPerByte * total;
  const std::size_t left = allowance - std::min(allowance, r.granted);
  elementBytes = std::max<std::size_t>(elementBytes, 1);
  count = std::min({count, remaining / kLeastBytesPerElement, left / elementBytes});
  r.granted += count * elementBytes;
  return count;
}

void KtXmlReader::reportError(const std::string& message) {
  impl_->report(impl_->line, message);
}
void KtXmlReader::countError() noexcept {
  ++impl_->errors;
}
unsigned KtXmlReader::errorCount() const noexcept {
  return impl_->errors;
}
bool KtXmlReader::failed() const noexcept {
  return impl_->failedNow;
}
