// The guides show files, programs and messages. What they show must be what there is.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "ktManipulator/ktManipulator.h"
#include "support/KtLogCapture.h"

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
  explicit Guide(const std::string& name) : text(textOf(KT_SOURCE_FOLDER "/docs/" + name)) {}

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
  for (const char* name :
       {"describing-a-model.md", "states-and-systems.md", "motion-and-forces.md"}) {
    const auto blocks = Guide(name).blocks("cpp");
    EXPECT_GE(blocks.size(), 4U) << name;
    for (const std::string& block : blocks) {
      EXPECT_NE(examples.find(withoutIndentation(block)), std::string::npos) << name << "\n"
                                                                             << block;
    }
  }
}

TEST(Guides, ShowAFileFromTheFirstLineToTheLast) {
  std::string shown;
  for (const std::string& block : Guide("describing-a-model.md").blocks("xml")) shown += block;
  EXPECT_EQ(withoutIndentation(shown), withoutIndentation(textOf(kModel)));
}

TEST(Guides, ShowElementsOfALinkThatAreRead) {
  const auto snippets = Guide("describing-a-model.md").blocks("xml snippet");
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
  const std::string guide = Guide("describing-a-model.md").text;
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

}  // namespace
