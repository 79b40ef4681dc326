#include "support/Samples.h"
#include "support/Testing.h"

namespace {

using RealVector = KtXmlVectorType<Real>;
using TextVector = KtXmlVectorType<Text>;

std::string nested(std::size_t levels) {
  std::string text = "<sampleNode>";
  for (std::size_t i = 0; i < levels; ++i) text += "<children count='1'><element>";
  text += "<label>innermost</label>";
  for (std::size_t i = 0; i < levels; ++i) text += "</element></children>";
  return text + "</sampleNode>";
}

TEST(BadInput, EveryCutIsNoticed) {
  const KtLogCapture log;
  for (const Sample& sample : allSamples()) {
    SCOPED_TRACE(sample.name);
    const auto original = sample.make();
    std::string text = KtXmlWriter::writeString(*original);
    while (text.back() == '\n') text.pop_back();
    for (std::size_t length = 0; length < text.size(); length += 1 + length / 40) {
      const std::unique_ptr<KtXmlObject> object(original->newObject());
      ASSERT_FALSE(KtXmlReader::readString(text.substr(0, length), *object)) << length;
    }
  }
}

// No assertion but the sanitizers' and the bound on memory: whatever the bytes are, reading ends.
TEST(BadInput, RandomDamageIsSurvived) {
  KtLogCapture log;
  std::mt19937_64 random(20240501);
  for (const Sample& sample : allSamples()) {
    SCOPED_TRACE(sample.name);
    log.clear();  // its own memory is not what is bounded here
    const auto original = sample.make();
    const std::string text = KtXmlWriter::writeString(*original);
    for (int round = 0; round < 200; ++round) {
      std::string damaged = text;
      for (int i = 0; i < 3; ++i) {
        const std::size_t at = random() % damaged.size();
        switch (random() % 3) {
          case 0:
            damaged.erase(at, random() % 20);
            break;
          case 1:
            damaged.insert(at, damaged.substr(random() % damaged.size(), 15));
            break;
          default:
            damaged[at] =
                random() % 2 == 0 ? static_cast<char>(random()) : "<>/\"0 &;"[random() % 8];
        }
        if (damaged.empty()) damaged = "x";
      }
      const std::unique_ptr<KtXmlObject> object(original->newObject());
      const Allocations allocations;
      KtXmlReader::readString(damaged, *object);
      ASSERT_LT(allocations.largest(), std::size_t{1} << 20) << damaged;
      // What was read can be copied, compared and written.
      const std::unique_ptr<KtXmlObject> copy(object->clone());
      KtXmlWriter::writeString(*copy);
    }
  }
}

TEST(BadInput, CountsThatLieSetNoMemoryAside) {
  for (const auto& [count, possible] : {std::pair{"1000000000", true},
                                        {"1073741823", true},
                                        {"1073741824", false},
                                        {"9223372036854775807", false},
                                        {"-1", false},
                                        {"4294967295", false}}) {
    SCOPED_TRACE(count);
    KtLogCapture log;
    const std::string text = std::string(" count='") + count + "'><group>1</group></";
    // The owner's next member is read all the same.
    KtXmlPairType<RealVector, Real> pair(RealVector(2), 0.0);
    const Allocations allocations;
    EXPECT_EQ(
        KtXmlReader::readString("<pair><first" + text + "first><second>3</second></pair>", pair),
        possible);
    EXPECT_LT(allocations.largest(), std::size_t{1} << 20);
    EXPECT_EQ(pair.first().size(), possible ? 1U : 0U);
    EXPECT_EQ(pair.second(), 3.0);
    const std::string complaint = "text:1: a container can't have the announced ";
    EXPECT_EQ(log.contains(complaint + count), !possible);
    log.clear();
    SampleFunctionVector functions;
    EXPECT_FALSE(KtXmlReader::readString("<sampleFunctionVector" + text + "sampleFunctionVector>",
                                         functions));
    EXPECT_EQ(log.contains(complaint + count), !possible) << log.text();
  }
  // Many lies are no more worth than one.
  std::string lies = "<vector count='20000'>";
  for (int i = 0; i < 20000; ++i) lies += "<element count='1000000000'><group>1</group></element>";
  {
    const KtLogCapture log;
    const Allocations allocations;
    KtXmlVectorType<RealVector> lists;
    EXPECT_TRUE(KtXmlReader::readString(lies + "</vector>", lists));
    std::size_t reserved = 0;
    for (const auto& one : lists.vectorContainer()) reserved += one.vectorContainer().capacity();
    EXPECT_LT(reserved * sizeof(Real), 40 * lies.size());
  }
  // A correct count causes one allocation for the elements.
  RealVector list(20000, Real(0.5));
  const std::string text = KtXmlWriter::writeString(list);
  std::istringstream stream(text);
  KtXmlReader reader("text", stream);
  RealVector back;
  const std::size_t bytes = 20000 * sizeof(Real);
  const Allocations allocations;
  EXPECT_TRUE(reader.readDocument(back));
  EXPECT_EQ(allocations.largest(), bytes);
  EXPECT_EQ(back.vectorContainer().capacity(), 20000U);
  EXPECT_EQ(back, list);
}

TEST(BadInput, ValuesThatAreNoneKeepWhatWasThere) {
  std::string wide = "\xFE\xFF";
  for (const char c : std::string("<sampleNode><label>wide</label></sampleNode>")) {
    wide += std::string(1, '\0') + c;
  }
  struct Row {
    std::string text, message, label = "kept";
  };
  std::vector<Row> rows = {
      {"", "text:1: no element found"},
      {"<sampleNode>\n\n<weight>1.5x</weight></sampleNode>", "text:3: \"1.5x\" is not a number"},
      {"<otherNode/>", "expected the root element <sampleNode> but received <otherNode>"},
      {"<sampleNode/><more/>", "text:1: junk after document element"},
      {"<sampleNode kind='-1'/>", "\"-1\" is not an unsigned integer"},
      {"<sampleNode kind='4294967296'/>", "\"4294967296\" is not an unsigned"},
      {"<sampleNode sort='1'/>", "\"sort\" is not an attribute of sampleNode"},
      {"<!DOCTYPE sampleNode [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;'>"
       "<!ENTITY c SYSTEM 'file:///etc/passwd'>]>"
       "<sampleNode><label>&b;&c;</label></sampleNode>",
       "a document type declaration is not accepted"},
      {"<?xml version='1.0' encoding='EBCDIC'?><sampleNode/>", "encoding"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?>"
       "<sampleNode><label>caf\xE9</label></sampleNode>",
       "", "caf\xC3\xA9"},
      {"\xEF\xBB\xBF<sampleNode><label><![CDATA[<&]]></label></sampleNode>", "", "<&"},
      {wide, "", "wide"}};
  for (const std::string number : {"", "0x10", "1,5", "nan"}) {
    rows.push_back({"<sampleNode><weight>" + number + "</weight></sampleNode>",
                    "\"" + number + "\" is not a number"});
  }
  for (const auto& [content, message] : std::initializer_list<std::pair<const char*, const char*>>{
           {"<label>&undefined;</label>", "undefined entity"},
           {"<label>caf\xE9</label>", "not well-formed"},
           {"<weight/>", "\"\" is not a number"},
           {"<weight>1<b/>2</weight>", "<b> stands in a text"},
           {"<mode>flying</mode>", "\"flying\" is none of: idle, running"},
           {"<wieght>1</wieght>", "<wieght> is not an element of sampleNode"},
           {"stray<weight>3</weight>", "text where elements"},
           {"<motion><linear>1 2</linear></motion>", "expected 3 numbers but received 2"},
           {"<motion><linear>1 2 3 4</linear></motion>", "expected 3 numbers but received 4"},
           {"<motion><angle>1</angle></motion>", "<angle> is not an element of generalVelocity"}}) {
    rows.push_back({std::string("<sampleNode>") + content + "</sampleNode>", message});
  }
  for (const auto& [text, message, label] : rows) {
    SCOPED_TRACE(text);
    const KtLogCapture log;
    SampleNode node;
    node.label = std::string("kept");
    node.weight = 3.0;
    node.kind = 2U;
    EXPECT_EQ(KtXmlReader::readString(text, node), message.empty());
    EXPECT_TRUE(message.empty() ? log.text().empty() : log.contains(message)) << log.text();
    EXPECT_EQ(node.label, label);
    EXPECT_EQ(node.weight, 3.0);
    EXPECT_EQ(node.kind, 2U);
    EXPECT_EQ(node.motion, KtGeneralMotion());
  }
  const KtLogCapture log;
  RealVector list;
  EXPECT_FALSE(
      KtXmlReader::readString("<vector count='4'><group>1\n2\nthree\n4</group></vector>", list));
  EXPECT_THAT(list.vectorContainer(), ElementsAre(1.0, 2.0, 0.0, 4.0));
  EXPECT_EQ(log.text(), "text:3: \"three\" is not a number\n");
  // Beyond the range of a double a number is still one.
  EXPECT_TRUE(KtXmlReader::readString(
      "<vector count='5'><group>1e999 -1e999 1e-999 +2 .5</group></vector>", list));
  EXPECT_THAT(list.vectorContainer(), ElementsAre(HUGE_VAL, -HUGE_VAL, 0.0, 2.0, 0.5));
}

TEST(BadInput, NestingHasALimit) {
  SampleNode node;
  EXPECT_TRUE(KtXmlReader::readString(nested(1000), node));
  const SampleNode* innermost = &node;
  while (innermost->children.size() != 0) innermost = &innermost->children[0];
  EXPECT_EQ(innermost->label, "innermost");

  const KtLogCapture log;
  EXPECT_FALSE(KtXmlReader::readString(nested(50000), node));
  EXPECT_TRUE(log.contains("elements are nested deeper than 3000 levels"));
  EXPECT_FALSE(KtXmlReader::readString(std::string(100000, '<'), node));
  std::string unknown;
  for (int i = 0; i < 100000; ++i) unknown += "<a>";
  EXPECT_FALSE(KtXmlReader::readString("<sampleNode>" + unknown, node));
}

TEST(BadInput, DocumentsThatCantBeRead) {
  const KtLogCapture log;
  Real value;
  EXPECT_FALSE(KtXmlReader::readFile("/no/such/file.xml", value));
  EXPECT_TRUE(log.contains("/no/such/file.xml:1: the document can't be opened"));
  EXPECT_FALSE(KtXmlReader::readFile(testing::TempDir(), value));
  EXPECT_TRUE(log.contains("can't be read"));
  // A reader that is asked on says that there is nothing.
  KtXmlReader reader("/no/such/file.xml");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(reader.nextEvent(), KtXmlReader::kNone);
  EXPECT_TRUE(reader.failed());
}

TEST(BadInput, OneLongWordIsReadInLinearTime) {
  // Scanned anew at every chunk these would take minutes.
  const KtLogCapture log;
  const std::string longText(20000000, 'x');
  Real value;
  EXPECT_TRUE(KtXmlReader::readString("<!--" + longText + "--><basic>1</basic>", value));
  EXPECT_TRUE(KtXmlReader::readString("<basic a='" + longText + "'>2</basic>", value));
  EXPECT_EQ(value, 2.0);
  EXPECT_FALSE(KtXmlReader::readString("<basic><" + longText + "/></basic>", value));
}

TEST(BadInput, StreamsThatThrowAreSurvived) {
  const KtLogCapture log;
  std::istringstream in("<basic>4</basic>");
  in.exceptions(std::ios::failbit | std::ios::badbit | std::ios::eofbit);
  Real value;
  EXPECT_TRUE(KtXmlReader("in", in).readDocument(value));
  EXPECT_EQ(value, 4.0);
  std::ofstream out("/dev/full");
  out.exceptions(std::ios::failbit | std::ios::badbit);
  EXPECT_FALSE(KtXmlWriter("out", out).writeDocument(RealVector(100000)));
  EXPECT_TRUE(log.contains("out: the document can't be written"));
}

// The parser hands out a document in pieces; a value may lie across any border between them.
TEST(BadInput, ValuesSurviveTheBordersOfPieces) {
  for (std::size_t shift = 0; shift < 30; ++shift) {
    KtXmlPairType<RealVector, TextVector> lists, back;
    std::mt19937_64 random(shift);
    for (int i = 0; i < 12000; ++i) {
      lists.first().pushBack(static_cast<double>(random()) / 3.0);
      lists.second().pushBack(i % 2 == 0 ? "two \"words\" " + std::to_string(random())
                                         : "plain\\word");
    }
    std::string text = KtXmlWriter::writeString(lists);
    text.insert(text.find("<pair"), "<!--" + std::string(shift, '.') + "-->");
    EXPECT_TRUE(KtXmlReader::readString(text, back));
    EXPECT_EQ(back, lists);
  }
}

}  // namespace
