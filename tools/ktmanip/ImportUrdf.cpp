#include "ImportUrdf.h"

#include <console_bridge/console.h>
#include <urdf_parser/urdf_parser.h>

#include <algorithm>
#include <exception>

#include "Numbers.h"

namespace {

// Takes what the URDF library says while it lives, instead of standard error.
class UrdfMessages : public console_bridge::OutputHandler {
 public:
  UrdfMessages() { console_bridge::useOutputHandler(this); }
  ~UrdfMessages() override { console_bridge::restorePreviousOutputHandler(); }
  UrdfMessages(const UrdfMessages&) = delete;
  UrdfMessages& operator=(const UrdfMessages&) = delete;

  void log(const std::string& text, console_bridge::LogLevel level, const char* /*file*/,
           int /*line*/) override {
    if (level >= console_bridge::CONSOLE_BRIDGE_LOG_WARN) said_.push_back({0, text});
  }
  const std::vector<ImportFinding>& said() const noexcept { return said_; }

 private:
  std::vector<ImportFinding> said_;
};

}  // namespace

ImportResult importUrdf(const std::string& text, const ImportOptions& options) {
  ImportResult result;
  const ImportDocument document(text);
  result.errors = document.errors();
  result.notTaken = document.notTaken();
  if (!result.errors.empty()) return result;

  urdf::ModelInterfaceSharedPtr model;
  {
    const UrdfMessages messages;
    try {
      model = urdf::parseURDF(document.takenText());
    } catch (const std::exception& e) {
      result.errors.push_back({0, e.what()});
    }
    if (model == nullptr || model->getRoot() == nullptr) {
      result.errors.insert(result.errors.end(), messages.said().begin(), messages.said().end());
      if (result.errors.empty()) result.errors.push_back({0, "not a robot"});
      return result;
    }
    result.notTaken.insert(result.notTaken.end(), messages.said().begin(), messages.said().end());
  }
  if (!isWritable(options.name)) {
    result.errors.push_back({0, "--name has characters that no system's file can have"});
    return result;
  }
  if (options.name != model->getRoot()->name && model->getLink(options.name) != nullptr) {
    result.errors.push_back({document.linkLine(options.name),
                             "the base can't have the name of <link> \"" + options.name + '"'});
    return result;
  }
  result.system = importModel(*model, document, options, result.notTaken);
  std::stable_sort(result.notTaken.begin(), result.notTaken.end(),
                   [](const auto& a, const auto& b) { return a.line < b.line; });
  result.good = true;
  return result;
}
