// The guides show files, programs and messages. What they show must be what there is.

#include <regex>

#include "support/Testing.h"

namespace {

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

std::string guideOf(const std::string& name) {
  return textOf(KT_SOURCE_FOLDER "/" + name);
}

// The blocks of a kind of code.
std::vector<std::string> blocksOf(const std::string& guide, const std::string& kind) {
  const std::string text = guideOf(guide), fence = "```" + kind + "\n";
  std::vector<std::string> found;
  for (std::size_t at = text.find(fence); at != std::string::npos; at = text.find(fence, at)) {
    at += fence.size();
    found.push_back(text.substr(at, text.find("```", at) - at));
  }
  return found;
}

TEST(Guides, ShowProgramsThatAreExamples) {
  std::string examples;
  for (const auto& entry : std::filesystem::directory_iterator(KT_SOURCE_FOLDER "/examples")) {
    if (entry.path().extension() == ".cpp") examples += withoutIndentation(textOf(entry.path()));
  }
  for (const auto& [name, count] : {std::pair("docs/describing-a-model.md", 6U),
                                    {"docs/states-and-systems.md", 5U},
                                    {"docs/motion-and-forces.md", 7U},
                                    {"docs/a-simulation-step.md", 6U},
                                    {"README.md", 1U}}) {
    const auto blocks = blocksOf(name, "cpp");
    EXPECT_EQ(blocks.size(), count) << name;
    for (const std::string& block : blocks)
      EXPECT_THAT(examples, HasSubstr(withoutIndentation(block)));
  }
}

TEST(Guides, ShowAFileFromTheFirstLineToTheLast) {
  std::string shown;
  for (const std::string& block : blocksOf("docs/describing-a-model.md", "xml")) shown += block;
  EXPECT_EQ(withoutIndentation(shown), withoutIndentation(textOf(kModel)));
}

TEST(Guides, ShowElementsOfALinkThatAreRead) {
  const auto snippets = blocksOf("docs/describing-a-model.md", "xml snippet");
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
  const std::string guide = guideOf("docs/describing-a-model.md");
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

// What a command prints on both streams.
[[maybe_unused]] std::string outputOf(const std::string& command) {
  std::string text;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  for (int c = 0; pipe != nullptr && (c = std::fgetc(pipe)) != EOF;) text += static_cast<char>(c);
  EXPECT_TRUE(pipe != nullptr && pclose(pipe) == 0) << command;
  return text;
}

#ifdef KT_SIMULATION_STEP
TEST(Guides, ShowTheFiguresThatAnExampleMeasures) {
  std::filesystem::create_directories(KT_TEST_OUTPUT);
  const std::string guide = guideOf("docs/a-simulation-step.md");
  std::istringstream printed(outputOf(KT_SIMULATION_STEP " " KT_SOURCE_FOLDER
                                                         "/examples/models " KT_TEST_OUTPUT
                                                         "/guide-half-way.xml"));
  int figures = 0;
  for (std::string line; std::getline(printed, line);) {
    if (!line.starts_with("    ")) continue;
    EXPECT_THAT(guide, HasSubstr("\n" + line + "\n"));
    ++figures;
  }
  EXPECT_EQ(figures, 4);
}
#endif

#ifdef KTMANIP
// The same words, and the same numbers but for rounding: what is zero prints as 1e-17 or so.
void expectAlike(const std::string& shown, const std::string& printed) {
  const std::regex separator(R"([(),])");
  std::istringstream left(std::regex_replace(shown, separator, " "));
  std::istringstream right(std::regex_replace(printed, separator, " "));
  for (std::string a, b; left >> a, right >> b, left || right; a.clear(), b.clear()) {
    // What is no number throws.
    if (a == b) continue;
    EXPECT_NEAR(std::stod(a), std::stod(b), 1e-12) << printed;
  }
}

// A line "    $ ktmanip ..." is a command, the indented lines behind it are what it prints.
TEST(Guides, ShowWhatTheCommandLineToolPrints) {
  const std::filesystem::path folder = KT_TEST_OUTPUT "/command-line";
  std::filesystem::create_directories(folder);
  std::filesystem::copy(
      KT_SOURCE_FOLDER "/examples/models", folder,
      std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing);
  const std::string guide = guideOf("docs/the-command-line-tool.md"), prompt = "\n    $ ktmanip ";
  int commands = 0;
  for (auto at = guide.find(prompt); at != std::string::npos; at = guide.find(prompt, at)) {
    std::istringstream lines(guide.substr(at += prompt.size()));
    std::string command, shown;
    std::getline(lines, command);
    for (std::string line; std::getline(lines, line) && (line.empty() || line[0] == ' ');) {
      shown += line + "\n";
    }
    expectAlike(shown, outputOf("cd " + folder.string() + " && " KTMANIP " " + command));
    ++commands;
  }
  EXPECT_EQ(commands, 2);
}
#endif

TEST(ExampleModels, AreReadAndComeBackWithoutAMessage) {
  int count = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(KT_SOURCE_FOLDER "/examples/models")) {
    if (entry.path().extension() != ".xml") continue;  // a robot to import
    SCOPED_TRACE(entry.path().filename().string());
    ++count;
    const KtLogCapture log;
    KtStatedSystem scene, back;
    EXPECT_TRUE(KtXmlReader::readFile(entry.path().string(), scene));
    EXPECT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(scene), back));
    EXPECT_EQ(log.text(), "");
    EXPECT_TRUE(back == scene);
    EXPECT_EQ(scene.environment().upGravityVector(), KtVector(0.0, 0.0, 9.81));
    ASSERT_EQ(scene.system().numberOfManipulators(), 1U);
    const Arm& arm = scene.system().manipulators()[0];
    const auto& positions = scene.state().positionStates()[0].jointPositions();
    for (KtU32 i = 0; i < arm.jointDof(); ++i) {
      const KtJointActuator& actuator = arm.linkByIndex(i)->jointActuator();
      EXPECT_LE(actuator.lowerLimit(), positions[i]);
      EXPECT_GE(actuator.upperLimit(), positions[i]);
      EXPECT_LT(actuator.minOutputTorque(), actuator.maxOutputTorque());
    }
  }
  EXPECT_EQ(count, 3);
}

TEST(Version, IsThatOfTheBuild) {
  std::ostringstream project;
  project << "project(ktManipulator VERSION " << ktVersion << ' ';
  EXPECT_THAT(textOf(KT_SOURCE_FOLDER "/CMakeLists.txt"), HasSubstr(project.str()));
}

}  // namespace
