#pragma once

#include <string>
#include <vector>

#include "ktManipulator/foundation/core/KtPrint.h"

/// Collects the messages of the log while it lives.
class KtLogCapture {
 public:
  struct Message {
    Kt::Print::PrintType type;
    std::string text;
    bool operator==(const Message&) const = default;
  };

  KtLogCapture()
      : before_(Kt::Print::instance().setSink(
            [this](Kt::Print::PrintType type, const std::string& text) {
              messages_.push_back({type, text});
            })) {}
  ~KtLogCapture() { Kt::Print::instance().setSink(before_); }
  KtLogCapture(const KtLogCapture&) = delete;
  KtLogCapture& operator=(const KtLogCapture&) = delete;

  const std::vector<Message>& messages() const { return messages_; }
  /// All texts, one behind the other.
  std::string text() const {
    std::string all;
    for (const auto& message : messages_) all += message.text;
    return all;
  }
  /// The same, with a mark before each that is no error.
  std::string errors() const {
    std::string all;
    for (const auto& message : messages_) {
      all += (message.type == Kt::Print::kError ? "" : "(no error) ") + message.text;
    }
    return all;
  }
  bool contains(const std::string& part) const { return text().find(part) != std::string::npos; }
  void clear() { messages_.clear(); }

 private:
  std::vector<Message> messages_;
  Kt::Print::Sink before_;
};
