#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "ktManipulator/foundation/core/KtExport.h"

namespace Kt {

/// The log: every message of the library goes through the one object that `instance()` yields.
///
/// Messages go to standard error unless a program installs a sink. Nothing in the library depends
/// on whether a message is shown. Not thread-safe, like the rest of the library.
class KT_EXPORT Print {
 public:
  /// How much a message matters.
  enum PrintType {
    kDebug = 0,       ///< For developers of the library.
    kTrace = 1,       ///< Progress of a long operation.
    kNote = 2,        ///< Worth knowing, nothing is wrong.
    kDiagnostic = 3,  ///< Details that follow a failure, such as file and line.
    kError = 4        ///< A bad call or bad data.
  };

  /// Receives a message with its type; the text is complete and as the library wrote it, with a
  /// trailing newline only where the message has one.
  using Sink = std::function<void(PrintType type, const std::string& text)>;

  /// The process-wide log.
  static Print& instance();

  /// Writes a printf-style message.
  void write(PrintType type, const char* format, ...)
#if defined(__GNUC__) || defined(__clang__)
      __attribute__((format(printf, 3, 4)))
#endif
      ;

  /// A stream to write a message to. The message is handed to the sink, behind the context and
  /// ": ", when the stream is flushed (`std::flush`, `std::endl`) and at the next call on the log.
  ///
  /// @param context  signature of the calling function as text; an empty one is left out
  std::ostream& ostream(PrintType type, const std::string& context);

  /// Replaces the sink and returns the one before; an empty sink means standard error.
  Sink setSink(Sink sink);

  Print(const Print&) = delete;
  Print& operator=(const Print&) = delete;

 private:
  Print();
  ~Print();

  void deliver(PrintType type, const std::string& text);

  class MessageStream;
  std::unique_ptr<MessageStream> stream_;
  Sink sink_;
};

}  // namespace Kt
