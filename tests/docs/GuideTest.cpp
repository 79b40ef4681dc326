// The guides show files, programs and messages. What they show must be what there is.

#include <regex>

#include "support/Testing.h"

namespace {

std::string textOf(const std::filesystem::path& path) {
  std::ifstream stream(path);
  EXPECT_TRUE(stream) << path;
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

// Lines without their indentation, empty ones left out.
std::string withoutIndentation(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t begin = line.find_first_not_of(' ');
    if (begin != std::string::npos) result += line.substr(begin) + "\n";
  }
  return result;
}

const std::string kModel = KT_SOURCE_FOLDER "/examples/models/two-link-arm.xml";

struct Guide {
  explicit Guide(const std::string& name) : text(textOf(KT_SOURCE_FOLDER "/" + name)) {}

  // The blocks of a kind of code.
  std::vector<std::string> blocks(const std::string& kind) const {
    const std::string fence = "```" + kind + "\n";
    std::vector<std::string> found;
    for (std::size_t at = text.find(fence); at != std::string::npos; at = text.find(fence, at)) {
      at += fence.size();
      found.push_back(text.substr(at, text.find("```", at) - at));
    }
    return found;
  }

  std::string text;
};

TEST(Guides, ShowProgramsThatAreExamples) {
  std::string examples;
  for (const auto& entry : std::filesystem::directory_iterator(KT_SOURCE_FOLDER "/examples")) {
    if (entry.path().extension() == ".cpp") examples += withoutIndentation(textOf(entry.path()));
  }
  const struct {
    const char* name;
    std::size_t blocks;
  } guides[] = {{"docs/describing-a-model.md", 6},
                {"docs/states-and-systems.md", 5},
                {"docs/motion-and-forces.md", 7},
                {"docs/a-simulation-step.md", 6},
                {"README.md", 1}};
  for (const auto& [name, count] : guides) {
    const auto blocks = Guide(name).blocks("cpp");
    EXPECT_EQ(blocks.size(), count) << name;
    for (const std::string& block : blocks) {
      EXPECT_NE(examples.find(withoutIndentation(block)), std::string::npos) << name << "\n"
                                                                             << block;
    }
  }
}

TEST(Guides, ShowAFileFromTheFirstLineToTheLast) {
  std::string shown;
  for (const std::string& block : Guide("docs/describing-a-model.md").blocks("xml")) shown += block;
  EXPECT_EQ(withoutIndentation(shown), withoutIndentation(textOf(kModel)));
}

TEST(Guides, ShowElementsOfALinkThatAreRead) {
  const auto snippets = Guide("docs/describing-a-model.md").blocks("xml snippet");
  EXPECT_EQ(snippets.size(), 4U);
  for (const std::string& snippet : snippets) {
    const KtLogCapture log;
    KtManipulatorLink link;
    EXPECT_TRUE(KtXmlReader::readString("<manipulatorLink>" + snippet + "</manipulatorLink>", link))
        << snippet;
    EXPECT_EQ(log.text(), "");
    EXPECT_FALSE(link == KtManipulatorLink()) << snippet;
  }
}

// The rows of the table: | `what the file says` | `what stands instead` | `message` |
TEST(Guides, ShowTheMessagesThatAReaderGives) {
  const std::string guide = Guide("docs/describing-a-model.md").text;
  const std::string model = textOf(kModel);
  const std::regex row(R"(\n\| `([^`]*)` \| `([^`]*)` \| `([^`]*)` \|)");
  int count = 0;
  for (std::sregex_iterator at(guide.begin(), guide.end(), row), end; at != end; ++at) {
    const std::string original = (*at)[1], mistake = (*at)[2], message = (*at)[3];
    SCOPED_TRACE(mistake);
    std::string text = model;
    const std::size_t place = text.find(original);
    ASSERT_NE(place, std::string::npos) << original;
    text.replace(place, original.size(), mistake);

    const KtLogCapture log;
    std::istringstream stream(text);
    KtXmlReader reader("two-link-arm.xml", stream);
    KtStatedSystem scene;
    reader.readDocument(scene);
    EXPECT_TRUE(log.contains(message)) << log.text();
    // One of them is shown with file and line.
    if (++count == 1) {
      EXPECT_NE(guide.find("    " + log.text()), std::string::npos) << log.text();
    }
  }
  EXPECT_EQ(count, 11);
}

// What a command prints on both streams, line by line.
[[maybe_unused]] std::vector<std::string> linesOf(const std::string& command) {
  std::vector<std::string> lines;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return lines;
  char buffer[4096];
  while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) {
    lines.emplace_back(buffer);
    if (lines.back().ends_with('\n')) lines.back().pop_back();
  }
  EXPECT_EQ(pclose(pipe), 0) << command;
  return lines;
}

#ifdef KT_SIMULATION_STEP
TEST(Guides, ShowTheFiguresThatAnExampleMeasures) {
  std::filesystem::create_directories(KT_TEST_OUTPUT);
  const std::string guide = Guide("docs/a-simulation-step.md").text;
  int figures = 0;
  for (const std::string& line :
       linesOf(KT_SIMULATION_STEP " " KT_SOURCE_FOLDER "/examples/models " KT_TEST_OUTPUT
                                  "/guide-half-way.xml")) {
    if (!line.starts_with("    ")) continue;
    EXPECT_NE(guide.find("\n" + line + "\n"), std::string::npos) << line;
    ++figures;
  }
  EXPECT_EQ(figures, 4);
}
#endif

#ifdef KTMANIP
// The same words, and the same numbers but for rounding: what is zero prints as 1e-17 or so.
void expectAlike(const std::string& shown, const std::string& printed) {
  const std::regex separator(R"([ (),]+)");
  const auto words = [&](const std::string& line) {
    return std::vector<std::string>(
        std::sregex_token_iterator(line.begin(), line.end(), separator, -1),
        std::sregex_token_iterator());
  };
  const auto left = words(shown), right = words(printed);
  ASSERT_EQ(left.size(), right.size()) << shown << "\n" << printed;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (left[i] == right[i]) continue;
    char *endLeft = nullptr, *endRight = nullptr;
    const double x = std::strtod(left[i].c_str(), &endLeft);
    const double y = std::strtod(right[i].c_str(), &endRight);
    EXPECT_TRUE(*endLeft == 0 && *endRight == 0) << shown << "\n" << printed;
    EXPECT_NEAR(x, y, 1e-12) << printed;
  }
}

// A line "    $ ktmanip ..." is a command, the indented lines behind it are what it prints.
TEST(Guides, ShowWhatTheCommandLineToolPrints) {
  const std::filesystem::path folder = KT_TEST_OUTPUT "/command-line";
  std::filesystem::create_directories(folder);
  std::filesystem::copy(
      KT_SOURCE_FOLDER "/examples/models", folder,
      std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing);
  std::istringstream guide(Guide("docs/the-command-line-tool.md").text);
  const std::string prompt = "    $ ktmanip ";
  std::vector<std::string> printed;
  bool inOutput = false;
  int commands = 0;
  for (std::string line; std::getline(guide, line);) {
    if (line.starts_with(prompt)) {
      printed = linesOf("cd " + folder.string() + " && " KTMANIP " " + line.substr(prompt.size()));
      while (!printed.empty() && printed.back().empty()) printed.pop_back();
      inOutput = true;
      ++commands;
    } else if (inOutput && (line.empty() || line.starts_with("    "))) {
      if (printed.empty()) {
        EXPECT_EQ(line, "");
        inOutput = false;
      } else {
        expectAlike(line.empty() ? "" : line.substr(4), printed.front());
        printed.erase(printed.begin());
      }
    } else {
      EXPECT_FALSE(inOutput) << line;
    }
  }
  EXPECT_EQ(commands, 2);
}
#endif

}  // namespace
