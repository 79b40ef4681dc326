#include "ktManipulator/foundation/core/KtPrint.h"

#include <cstdarg>
#include <cstdio>
#include <sstream>
#include <utility>

namespace Kt {

/// Collects one message and delivers it when flushed.
class Print::MessageStream : public std::ostream {
 public:
  explicit MessageStream(Print& print) : std::ostream(nullptr), buffer_(print) { rdbuf(&buffer_); }

  void begin(PrintType type, const std::string& context) {
    static const std::ios unformatted(nullptr);
    buffer_.type = type;
    copyfmt(unformatted);
    clear();
    if (!context.empty()) *this << context << ": ";
    buffer_.prefixLength = buffer_.view().size();
  }

 private:
  struct Buffer : std::stringbuf {
    explicit Buffer(Print& p) : print(p) {}
    int sync() override {
      const std::string text = str();
      str({});
      // A context without a message is no message.
      if (text.size() > std::exchange(prefixLength, 0)) print.deliver(type, text);
      return 0;
    }
    Print& print;
    PrintType type = kError;
    std::size_t prefixLength = 0;
  };
  Buffer buffer_;
};

Print& Print::instance() {
  // Never destroyed: objects that live as long as the process may still report while it ends.
  static Print* const print = new Print;
  return *print;
}

Print::Print() : stream_(std::make_unique<MessageStream>(*this)) {}
Print::~Print() = default;

void Print::write(PrintType type, const char* format, ...) {
  stream_->flush();
  std::va_list arguments;
  va_start(arguments, format);
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  deliver(type, text);
}

std::ostream& Print::ostream(PrintType type, const std::string& context) {
  stream_->flush();
  stream_->begin(type, context);
  return *stream_;
}

Print::Sink Print::setSink(Sink sink) {
  stream_->flush();
  return std::exchange(sink_, std::move(sink));
}

void Print::deliver(PrintType type, const std::string& text) {
  if (sink_) {
    sink_(type, text);
    return;
  }
  std::fputs(text.c_str(), stderr);
  if (text.empty() || text.back() != '\n') std::fputc('\n', stderr);
}

}  // namespace Kt
