// Reads a file with mistakes and receives the messages, writes a schema for other programs, and
// visits all objects of a file.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "ktManipulator/ktManipulator.h"

namespace {

void check(bool holds, const char* what) {
  std::printf("%s %s\n", holds ? "as said:" : "NOT AS SAID:", what);
  if (!holds) std::exit(1);
}

// Receives the library's messages during its lifetime.
class Messages {
 public:
  Messages()
      : before_(Kt::Print::instance().setSink(
            [this](Kt::Print::PrintType type, const std::string& text) {
              if (type >= Kt::Print::kDiagnostic) texts_.push_back(text);
            })) {}
  ~Messages() { Kt::Print::instance().setSink(before_); }
  Messages(const Messages&) = delete;
  Messages& operator=(const Messages&) = delete;

  const std::vector<std::string>& texts() const { return texts_; }

 private:
  std::vector<std::string> texts_;
  Kt::Print::Sink before_;
};

// Counts the links of the object that it visits.
class LinkCounter : public KtXmlObjectVisitor {
 public:
  bool visitObject(const KtXmlObject* object) override {
    if (dynamic_cast<const KtManipulatorLink*>(object) != nullptr) ++count;
    return true;
  }
  int count = 0;
};

std::string textOf(const std::string& fileName) {
  std::ifstream stream(fileName);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : "examples/models";
  const std::string schema = argc > 2 ? argv[2] : "stated-system.xsd";
  const std::string text = textOf(folder + "/two-link-arm.xml");
  KtStatedSystem scene;
  check(KtXmlReader::readString(text, scene), "the file is good");
  LinkCounter links;
  scene.accept(&links);
  check(links.count == 3, "it holds a base and two links");

  std::string broken = text;
  broken.replace(broken.find("<mass>4<"), 8, "<mass>four<");
  broken.replace(broken.find("<a>0.5</a>"), 10, "<b>0.5</b>");
  {
    const Messages messages;
    KtStatedSystem read;
    const bool good = KtXmlReader::readString(broken, read);
    for (const std::string& message : messages.texts()) std::printf("  %s", message.c_str());
    check(!good && messages.texts().size() == 2, "each mistake is a message to the program");
    check(read.jointDof() == 2, "what stands behind it is read all the same");
  }
  check(scene.createSchema(schema, scene.token()), "a schema of such files is written");
  check(textOf(schema).find("upGravityVector") != std::string::npos, "it knows the elements");
  return 0;
}
