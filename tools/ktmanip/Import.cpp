#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <utility>
#include <vector>

#include "Commands.h"
#include "ImportUrdf.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace {

struct Arguments {
  std::string robot;
  std::string output;
  bool strict = false;
  bool verbose = false;
  ImportOptions options;
};

void tell(const std::string& file, const std::string& text, int line) {
  const std::string place = line > 0 ? ":" + std::to_string(line) : "";
  std::fprintf(stderr, "%s%s: %s\n", file.c_str(), place.c_str(), text.c_str());
}

// The text without the names that stand in quotation marks in it: what findings of one kind share.
std::string kindOf(const std::string& text) {
  std::string kind;
  bool inName = false;
  for (const char c : text) {
    if (c == '"') inName = !inName;
    if (!inName) kind += c;
  }
  return kind;
}

// One line for each kind of finding, with the first of the kind; all of them if verbose.
void tellNotTaken(const std::string& file, const std::vector<ImportFinding>& findings,
                  bool verbose) {
  std::map<std::string, std::vector<int>> lines;  // by kind
  for (const ImportFinding& one : findings) lines[kindOf(one.text)].push_back(one.line);
  bool isShort = false;
  for (const ImportFinding& one : findings) {
    std::string text = "not taken over: " + one.text;
    if (!verbose) {
      const std::vector<int> alike = std::exchange(lines[kindOf(one.text)], {});
      if (alike.empty()) continue;  // its kind has been told
      if (alike.size() > 1) {
        isShort = true;
        text += ", and " + std::to_string(alike.size() - 1) + " more of the kind up to line " +
                std::to_string(alike.back());
      }
    }
    tell(file, text, one.line);
  }
  if (isShort) std::fprintf(stderr, "%s: --verbose lists each of them\n", file.c_str());
}

int run(const Arguments& arguments) {
  std::error_code code;
  if (std::filesystem::equivalent(arguments.robot, arguments.output, code)) {
    std::fprintf(stderr, "%s: would be written over\n", arguments.robot.c_str());
    return 1;
  }
  const std::ifstream stream(arguments.robot, std::ios::binary);
  if (!stream || std::filesystem::is_directory(arguments.robot, code)) {
    std::fprintf(stderr, "%s: can't be read\n", arguments.robot.c_str());
    return 1;
  }
  std::ostringstream text;
  text << stream.rdbuf();
  const ImportResult result = importUrdf(text.str(), arguments.options);
  tellNotTaken(arguments.robot, result.notTaken, arguments.verbose);
  for (const ImportFinding& error : result.errors) tell(arguments.robot, error.text, error.line);
  if (!result.good) return 1;
  if (arguments.strict && !result.notTaken.empty()) {
    std::fprintf(stderr, "%s: %zu not taken over, which --strict forbids; nothing is written\n",
                 arguments.robot.c_str(), result.notTaken.size());
    return 1;
  }
  return KtXmlWriter::writeFile(arguments.output, result.system) ? 0 : 1;  // which tells why
}

}  // namespace

void addImport(CLI::App& app, int& status) {
  CLI::App* command = app.add_subcommand("import", "Makes a stated system of a robot's URDF file");
  auto arguments = std::make_shared<Arguments>();
  command->add_option("robot", arguments->robot, "the URDF file")->required();
  command->add_option("-o,--output", arguments->output, "the file of the system")->required();
  command->add_flag("--floating-base", arguments->options.floatingBase,
                    "the root link moves freely");
  command->add_option("--name", arguments->options.name,
                      "label of the manipulator, which is that of its base (default: the root "
                      "link's name)");
  command->add_flag("--strict", arguments->strict,
                    "write nothing, and fail, if anything is not taken over");
  command->add_flag("--verbose", arguments->verbose,
                    "list everything that is not taken over, also what is alike");
  command->footer(
      "A link of the system bears the name of the robot's link, its primary frame is that link's\n"
      "frame, and its joint is the one that moves it: joints are named by the links they move.\n"
      "Links on fixed joints become part of the link they hang on, their frames named frames of\n"
      "it. A planar joint becomes two slides, \"<joint> x\" and \"<joint> y\", and a hinge. A\n"
      "floating joint below a root without a body makes a free base. Joints that mimic others\n"
      "become equality constraints.\n"
      "Whatever is not taken over is listed on standard error; what differs only in names is one\n"
      "line with a count, unless --verbose is given.");
  command->callback([arguments, &status] { status = run(*arguments); });
}
