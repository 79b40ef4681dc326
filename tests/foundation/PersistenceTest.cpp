#include "support/Samples.h"
#include "support/Testing.h"

namespace {

SampleNode someNode() {
  SampleNode node;
  node.label = std::string("first");
  node.weight = 1.5;
  node.children.resize(1);
  return node;
}

TEST(Vocabulary, IsComplete) {
  using Constants = std::vector<std::pair<std::string, const KtToken*>>;
  Constants namespaced, plain;
#define KT_NAMESPACED(constant, localName) namespaced.emplace_back(#constant, &KtManip::constant);
#define KT_PLAIN(constant, word) plain.emplace_back(#constant, &KtManip::constant);
#include "ktManipulator/foundation/tokens/KtManipTokens.def"
#undef KT_NAMESPACED
#undef KT_PLAIN
  EXPECT_EQ(namespaced.size(), 386U);
  EXPECT_EQ(plain.size(), 20U);
  std::string all;
  for (const auto& [constants, space] : {std::pair{namespaced, KtManip::ns.text()}, {plain, ""}}) {
    for (const auto& [constant, token] : constants) {
      EXPECT_EQ(token->namespaceName(), space);
      all += constant + " " + std::string(token->localName()) + "\n";
    }
  }
  // 64-bit FNV-1a over the constants and their names: none was renamed, lost or moved.
  std::uint64_t hash = 14695981039346656037U;
  for (const char c : all) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  EXPECT_EQ(hash, 13047484949623762395U);
}

TEST(Compound, TablesComeOnFirstNeedAndAreNeverCopied) {
  const Allocations allocations;
  const KtLinearMultivariableConstraint computedWith, copied = computedWith;
  EXPECT_EQ(allocations.count(), 0U);

  // The target of an assignment keeps its own tables, which lead to its own members.
  const SampleNode node = someNode();
  SampleNode target;
  KtXmlWriter::writeString(target);
  EXPECT_TRUE(target.xmlInitialized());
  auto copy = std::make_unique<SampleNode>(node);
  copy->label = std::string("second");
  target = *copy;
  copy.reset();
  EXPECT_THAT(KtXmlWriter::writeString(target), HasSubstr("second"));
  ASSERT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(node), target));
  EXPECT_EQ(target, node);
}

TEST(Compound, ElementsComeInAnyOrderAndAbsentOnesKeepTheirValues) {
  SampleNode node = someNode();
  node.motion = {{1.0, 1.0, 1.0}, {2.0, 2.0, 2.0}};
  // Without a namespace, as someone would write by hand.
  ASSERT_TRUE(KtXmlReader::readString(
      "<sampleNode kind='3'><mode>running</mode><motion><angular>7 8 9</angular></motion>"
      "<label>by hand</label><oldWeight>4</oldWeight></sampleNode>",
      node));
  EXPECT_EQ(node.kind, 3U);
  EXPECT_EQ(node.mode, 1U);
  EXPECT_EQ(node.label, "by hand");
  EXPECT_EQ(node.weight, 1.5);
  EXPECT_EQ(node.children.size(), 1U);
  EXPECT_EQ(node.motion, KtGeneralMotion({1.0, 1.0, 1.0}, {7.0, 8.0, 9.0}));
  // A value without a word is its number, in the file and in the schema.
  EXPECT_TRUE(KtXmlReader::readString("<sampleNode><mode>77</mode></sampleNode>", node));
  EXPECT_EQ(node.mode, 77U);
  EXPECT_THAT(KtXmlWriter::writeString(node), HasSubstr("<mode>77</mode>"));
  // What an older form of the file had is read, and never written.
  EXPECT_EQ(node.oldWeight, 4.0);
  EXPECT_TRUE(node.isReadOnlyComponent(SampleNode::name("oldWeight")));
  EXPECT_THAT(KtXmlWriter::writeString(node), testing::Not(HasSubstr("oldWeight")));
  // Another name that a component once had.
  ASSERT_TRUE(KtXmlReader::readString("<sampleNode><mass>9</mass></sampleNode>", node));
  EXPECT_EQ(node.weight, 9.0);
}

TEST(Compound, ForeignNamesStayApart) {
  const KtLogCapture log;
  SampleNode node;
  EXPECT_FALSE(KtXmlReader::readString(
      "<sampleNode xmlns:o='http://other/ns#'><o:weight>9</o:weight></sampleNode>", node));
  EXPECT_EQ(node.weight, 0.0);
  // A token of another namespace is written with a prefix and comes back as the same token.
  const KtToken foreign("http://other/ns#thing");
  std::ostringstream stream;
  {
    KtXmlWriter writer("text", stream);
    writer.beginObjectElement(foreign);
    Real(2.0).write(writer);
  }
  std::istringstream back(stream.str());
  Real value;
  EXPECT_TRUE(KtXmlReader("text", back).readDocument(value, foreign)) << stream.str();
  EXPECT_EQ(value, 2.0);
}

TEST(Compound, EqualityLooksAtTheClass) {
  const KtLabelAssociatedRealMap real;
  const KtLabelAssociatedMap<Real> base;
  EXPECT_TRUE(base.equality(&real)) << "a derived object compares as the base";
  EXPECT_FALSE(real.equality(&base));
  EXPECT_EQ(real.token(), KtManip::KtLabelAssociatedRealMapToken);
}

TEST(Holder, KeepsTheRulesOfOwnership) {
  KtScalarFunctionContainer container;
  EXPECT_EQ(container.evaluate(0.5), 0.0);
  container.setTopElement(KtLinearScalarFunction(1.0, 3.0));
  container.setTopElement(*container.topElement());
  EXPECT_EQ(container.evaluate(2.0), 5.0);
  EXPECT_EQ(container.topElement()->container(), nullptr) << "not set by the holder";
  container.setAndDeleteTopElementPointer(nullptr);
  EXPECT_EQ(container.topElement(), nullptr);
}

TEST(Holder, AsksTheReadersFactory) {
  const std::string text =
      "<scalarFunctionContainer><sampleFunction><startValue>1</startValue>"
      "<endValue>5</endValue></sampleFunction></scalarFunctionContainer>";
  const auto read = [&](KtXmlFactory* factory, KtScalarFunctionContainer& container) {
    std::istringstream stream(text);
    KtXmlReader reader("text", stream);
    reader.setFactory(factory);
    return reader.readDocument(container);
  };
  KtScalarFunctionContainer container;
  container.setTopElement(KtLinearScalarFunction());
  EXPECT_FALSE(read(nullptr, container));
  EXPECT_EQ(container.topElement(), nullptr) << "the object before is gone all the same";
  KtXmlFactory factory;
  factory.registerCreator(SampleNode::name("sampleFunction"), KtLinearScalarFunction::creator);
  EXPECT_TRUE(read(&factory, container));
  EXPECT_EQ(container.evaluate(1.0), 5.0);
  // A class that the holder can't take.
  factory.registerCreator(SampleNode::name("sampleFunction"), KtGeneralMotion::creator);
  EXPECT_FALSE(read(&factory, container));
}

TEST(Holder, LibrariesAddClasses) {
  const KtLogCapture log;
  const std::string text =
      "<scalarFunctionContainer><addLibraries count='1'><group>extra</group></addLibraries>"
      "<extraFunction><endValue>5</endValue></extraFunction></scalarFunctionContainer>";
  KtScalarFunctionContainer container;
  EXPECT_FALSE(KtXmlReader::readString(text, container));
  EXPECT_TRUE(log.contains("\"extra\" is not known"));
  KtXmlBaseVariableCompoundType::registerLibrary(
      "extra", [](KtXmlBaseVariableCompoundType& holder) {
        holder.registerComponentCreator(SampleNode::name("extraFunction"),
                                        KtLinearScalarFunction::creator);
      });
  EXPECT_TRUE(KtXmlReader::readString(text, container));
  EXPECT_EQ(container.evaluate(1.0), 5.0);
}

/// Notes every object with its description, and how deep it stands.
class Recorder : public KtXmlObjectVisitor {
 public:
  bool visitObject(const KtXmlObject*) override {
    std::string line(depth_++, ' ');
    line += description()[0] + " " + description()[1];
    lines.push_back(line);
    return line.find(stopAt) == std::string::npos || stopAt.empty();
  }
  void leaveObject() override { --depth_; }
  std::vector<std::string> lines;
  std::string stopAt;

 private:
  std::size_t depth_ = 0;
};

TEST(Visitor, WalksInFileOrder) {
  const std::string ns = KtManip::ns.text();
  Recorder compound;
  compound.stopAt = "children";
  SampleNode node = someNode();
  node.function.setTopElement(KtLinearScalarFunction());
  node.accept(&compound);
  EXPECT_THAT(
      compound.lines,
      ElementsAre("KtXmlCompoundType  (7)", " KtXmlObject " + ns + "label",
                  " KtXmlObject " + ns + "weight", " KtXmlObject " + ns + "mode",
                  " KtXmlObject " + ns + "motion", " KtXmlObject " + ns + "oldWeight",
                  " KtBaseExpressionTreeContainer " + ns + "function (1)",
                  "  KtXmlCompoundType " + ns + "element (2)",
                  "   KtXmlObject " + ns + "startValue", "   KtXmlObject " + ns + "endValue",
                  " KtXmlVectorType " + ns + "children (1)"));

  const KtLogCapture log;
  Recorder nulls;
  SampleFunctionVector(2).accept(&nulls);
  EXPECT_EQ(log.text(),
            "Visitor: KtXmlVariableVectorType 0 is non-KtXmlObject"
            "Visitor: KtXmlVariableVectorType 1 is non-KtXmlObject");
}

TEST(Writer, WritesForPeople) {
  KtXmlVectorType<Real> list(3, 0.5);
  const std::string ns = KtManip::ns.text();
  EXPECT_EQ(KtXmlWriter::writeString(list),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<vector xmlns=\"" + ns +
                "\" count=\"3\"><group>0.5 0.5 0.5</group></vector>\n");
  EXPECT_THAT(KtXmlWriter::writeString(KtGeneralMotion()),
              HasSubstr("\n  <linear>0 0 0</linear>\n"));
  // Long lists break into lines of a length that a screen shows.
  list.assign(1000, 0.125);
  std::istringstream lines(KtXmlWriter::writeString(list));
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 120U);
}

TEST(Writer, SaysWhatItCouldNotWrite) {
  const KtLogCapture log;
  EXPECT_FALSE(KtXmlWriter::writeFile("/no/such/folder/x.xml", SampleNode()));
  EXPECT_TRUE(log.contains("/no/such/folder/x.xml: the document can't be written"));
  std::ostringstream stream;
  KtXmlWriter writer("name", stream);
  Text text(std::string("a\x01 b\xFF"));
  EXPECT_FALSE(writer.writeDocument(text));
  EXPECT_TRUE(log.contains("name: a text has characters"));
  Text back;
  EXPECT_TRUE(KtXmlReader::readString(stream.str(), back));
  EXPECT_EQ(back, "a\xEF\xBF\xBD b\xEF\xBF\xBD");
  EXPECT_FALSE(SampleNode().createSchema("/no/such/folder/x.xsd", SampleNode::classToken()));
}

TEST(Log, HandsOverWholeMessages) {
  KtLogCapture log;
  auto& print = Kt::Print::instance();
  print.write(Kt::Print::kError, "%d of %s\n", 3, "four");
  print.ostream(Kt::Print::kDiagnostic, "void f()") << "one " << 2;
  print.write(Kt::Print::kError, "last");
  using Message = KtLogCapture::Message;
  EXPECT_THAT(log.messages(), ElementsAre(Message{Kt::Print::kError, "3 of four\n"},
                                          Message{Kt::Print::kDiagnostic, "void f(): one 2"},
                                          Message{Kt::Print::kError, "last"}));
  EXPECT_EQ(KtINT2STRING(4294967294U, 10), "4294967294");
}

}  // namespace
