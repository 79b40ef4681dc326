#include "support/Samples.h"
#include "support/Testing.h"

namespace {

class RoundTrip : public testing::TestWithParam<Sample> {
 protected:
  static void SetUpTestSuite() {
    KtXmlBaseVariableCompoundType::registerLibrary("sampleLibrary",
                                                   [](KtXmlBaseVariableCompoundType&) {});
  }
};

TEST_P(RoundTrip, KeepsEveryElement) {
  const KtLogCapture log;
  auto original = GetParam().make();
  const std::unique_ptr<KtXmlObject> back(original->newObject());
  ASSERT_FALSE(original->equality(back.get())) << "a sample at its default shows nothing";
  EXPECT_FALSE(original->equalsDefault());
  EXPECT_TRUE(back->equalsDefault());

  // A default object comes back, and what stands in a file replaces what an object held.
  const std::string defaults = KtXmlWriter::writeString(*back);
  EXPECT_TRUE(KtXmlReader::readString(defaults, *back)) << defaults;
  EXPECT_TRUE(back->equality(std::unique_ptr<KtXmlObject>(original->newObject()).get()))
      << defaults;
  const std::string text = KtXmlWriter::writeString(*original);
  EXPECT_TRUE(KtXmlReader::readString(text, *back)) << text;
  EXPECT_TRUE(back->equality(original.get())) << text;
  EXPECT_TRUE(back->specified());
  EXPECT_EQ(KtXmlWriter::writeString(*back), text);

  // Once more into an object that holds something already.
  EXPECT_TRUE(KtXmlReader::readString(text, *back)) << text;
  EXPECT_TRUE(back->equality(original.get())) << text;

  // A copy is whole and independent.
  const std::unique_ptr<KtXmlObject> copy(original->clone());
  EXPECT_FALSE(copy->xmlInitialized()) << "a copy has no tables of its own yet";
  EXPECT_TRUE(copy->equality(original.get()));
  EXPECT_FALSE(copy->equality(nullptr));
  EXPECT_EQ(copy->token(), original->token());
  original.reset();
  EXPECT_EQ(KtXmlWriter::writeString(*copy), text);
  EXPECT_EQ(log.text(), "");
}

// Whatever number is changed, two objects are equal if they write the same.
TEST_P(RoundTrip, EqualityLooksAtEveryNumber) {
  const KtLogCapture log;
  const auto original = GetParam().make();
  const std::string text = KtXmlWriter::writeString(*original);
  const auto isDigit = [&text](std::size_t at) { return text[at] >= '0' && text[at] <= '9'; };
  for (std::size_t at = text.find("?>"); at < text.size(); ++at) {
    if (!isDigit(at) || isDigit(at - 1)) continue;
    std::string changed = text;
    changed[at] = text[at] == '9' ? '8' : static_cast<char>(text[at] + 1);
    const std::unique_ptr<KtXmlObject> object(original->newObject());
    KtXmlReader::readString(changed, *object);
    EXPECT_EQ(object->equality(original.get()), KtXmlWriter::writeString(*object) == text)
        << changed.substr(at < 40 ? 0 : at - 40, 60);
  }
}

// No component of a sample is at its default, and a new object that takes over one of them alone
// is no longer equal to a new one.
TEST_P(RoundTrip, EqualityLooksAtEveryComponent) {
  const auto original = GetParam().make();
  const auto* compound = dynamic_cast<const KtXmlCompoundType*>(original.get());
  if (compound == nullptr) return;
  const std::unique_ptr<KtXmlObject> fresh(original->newObject());
  const auto& entries = compound->componentMap().entries();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].readOnly) continue;
    SCOPED_TRACE(entries[i].token.text());
    const std::string text = KtXmlWriter::writeString(*entries[i].component);
    const std::unique_ptr<KtXmlObject> changed(fresh->clone());
    const auto& components = dynamic_cast<const KtXmlCompoundType&>(*changed).componentMap();
    ASSERT_EQ(components.size(), entries.size());
    KtXmlObject& component = *components.entries()[i].component;
    EXPECT_NE(KtXmlWriter::writeString(component), text) << "is at its default";
    EXPECT_TRUE(KtXmlReader::readString(text, component));
    EXPECT_EQ(KtXmlWriter::writeString(component), text);
    EXPECT_FALSE(changed->equality(fresh.get())) << "isn't compared";
  }
}

// The elements of each class stand in a list, in the order of files.
TEST_P(RoundTrip, HasTheElementsOfTheList) {
  const auto object = GetParam().make();
  const auto* compound = dynamic_cast<const KtXmlCompoundType*>(object.get());
  if (compound == nullptr) return;
  std::string elements = "\n" + GetParam().name;
  for (const auto& entry : compound->componentMap().entries()) {
    elements += " " + std::string(entry.token.localName());
  }
  static const std::string list = "\n" + textOf(KT_SOURCE_FOLDER "/tests/foundation/elements.txt");
  EXPECT_NE(list.find(elements + "\n"), std::string::npos) << elements;
}

TEST_P(RoundTrip, SchemaAcceptsWhatIsWritten) {
#ifdef KT_XMLLINT
  const auto original = GetParam().make();
  const auto folder = std::filesystem::path(KT_TEST_OUTPUT) / "schemas";
  std::filesystem::create_directories(folder);
  const std::string stem = (folder / GetParam().name).string();
  ASSERT_TRUE(original->createSchema(stem + ".xsd", original->token()));
  ASSERT_TRUE(KtXmlWriter::writeFile(stem + ".xml", *original));
  const auto lint = [&](const std::string& document) {
    const std::string command = KT_XMLLINT " --noout --nonet --schema " + stem + ".xsd ";
    return std::system((command + document + " 2>" + stem + ".log").c_str());
  };
  EXPECT_EQ(lint(stem + ".xml"), 0) << std::ifstream(stem + ".log").rdbuf();
  // The check is worth something only if the schema refuses a document that is wrong.
  std::ofstream(stem + ".bad.xml")
      << "<" << original->token().localName() << " xmlns=\"" << KtXml::namespaceName
      << "\"><surprise/></" << original->token().localName() << ">";
  EXPECT_NE(lint(stem + ".bad.xml"), 0);
#else
  GTEST_SKIP() << "xmllint is not installed";
#endif
}

INSTANTIATE_TEST_SUITE_P(AllClasses, RoundTrip, testing::ValuesIn(allSamples()),
                         [](const auto& one) { return one.param.name; });

}  // namespace
