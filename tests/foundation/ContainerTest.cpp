#include "support/Samples.h"
#include "support/Testing.h"

namespace {

template <class Container>
bool readInto(Container& container, const std::string& text) {
  return KtXmlReader::readString(text, container);
}

std::vector<double> values(const KtXmlVectorType<Real>& list) {
  return {list.vectorContainer().begin(), list.vectorContainer().end()};
}

TEST(VectorType, ReadsEveryForm) {
  const struct {
    std::string text;
    std::vector<double> values;
    std::string miscount = {}, error = {};
  } rows[] = {
      {" count='2'><group>1 2</group>", {1, 2}},
      {" count='2'><group>1 <!-- c -->2</group>", {1, 2}},
      {" count='1'><group>1&#50;3</group>", {123}},
      {" count='0'>", {}},
      {" count='2'><element>1</element><other>2</other>", {1, 2}},
      {" count='4'><group>1 2</group><element>1</element><group>4</group>", {1, 2, 1, 4}},
      {" count='3'><group>1 2 3 4</group>", {1, 2, 3, 4}, "3, actual -- 4"},
      {"><group>1</group>", {1}, "0, actual -- 1"},
      {" count='x'><group>1</group>", {1}, "0, actual -- 1"},
      {" count='5'>", {}, "5, actual -- 0"},
      {" count='5'/>", {}},  // not checked
      {"/>", {}},
      {" count='1'><group/><element>4</element>", {4}, "", "should be in data mode\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    const KtLogCapture log;
    KtXmlVectorType<Real> list(7, 7.0);
    const std::string end = row.text.ends_with("/>") ? "" : "</vector>";
    EXPECT_TRUE(readInto(list, "\n<vector" + row.text + end));
    EXPECT_EQ(values(list), row.values);
    std::string said;
    if (!row.miscount.empty()) {
      said = "KtXmlVectorType Error: array size not equal to attribute value -- " + row.miscount +
             "\nFilename: text, Line count: 2\n";
    }
    if (!row.error.empty()) said = "KtXmlVectorType Error: XML parser " + row.error;
    EXPECT_EQ(log.text(), said);
  }
}

TEST(VectorType, EditsAndRefuses) {
  KtLogCapture log;
  KtXmlVectorType<U32> list;
  for (KtU32 i = 0; i < 5; ++i) list.pushBack(i);
  EXPECT_TRUE(list.leftRotate(2));
  EXPECT_FALSE(list.leftRotate(5));
  EXPECT_THAT(list.vectorContainer(), ElementsAre(2U, 3U, 4U, 0U, 1U));
  EXPECT_TRUE(list.erase(2, 2) && list.erase(1, 3) && list.erase(0));
  EXPECT_THAT(list.vectorContainer(), ElementsAre(0U, 1U));
  list.append(list);
  list.resizeToAtLeast(3);
  list.resize(5);
  EXPECT_THAT(list.vectorContainer(), ElementsAre(0U, 1U, 0U, 1U, 0U));
  EXPECT_EQ(log.text(), "");
  EXPECT_FALSE(list.erase(5) || list.erase(2, 6) || list.erase(3, 2));
  EXPECT_EQ(log.errors(),
            "KtXmlVectorType<ElementType>::erase(): index (5) exceeds vector size (5).\n"
            "index (6) exceeds vector size ( 5).\n"
            "first (3) is bigger than last (2).\n");
}

TEST(VectorType, StreamsPieceByPiece) {
  const auto stream = [](auto list, const auto& appended) {
    std::ostringstream text;
    KtXmlWriter* writer = nullptr;
    EXPECT_FALSE(list.writeBodyToStream(writer) || list.writeFooterToStream(writer) ||
                 list.appendElementToStream(writer, appended));
    EXPECT_TRUE(list.writeHeaderToStream(text, writer, "out", list.token()));
    EXPECT_TRUE(list.writeBodyToStream(writer));
    EXPECT_TRUE(list.appendElementToStream(writer, appended));
    EXPECT_TRUE(list.writeFooterToStream(writer));
    EXPECT_EQ(writer, nullptr);
    return text.str();
  };
  const KtLogCapture log;
  KtXmlVectorType<Real> back;
  EXPECT_TRUE(readInto(back, stream(KtXmlVectorType<Real>(2, 1.0), 3.0)));
  EXPECT_THAT(values(back), ElementsAre(1, 1, 3));
  EXPECT_TRUE(log.contains("-- 2, actual -- 3"));
  SampleFunctionVector functions;
  functions.pushBack(KtLinearScalarFunction(1.0, 2.0));
  SampleFunctionVector read;
  EXPECT_TRUE(readInto(read, stream(functions, KtLinearScalarFunction(3.0, 4.0))));
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[1].evaluate(1.0), 4.0);
}

TEST(SetType, CollapsesDuplicates) {
  const KtLogCapture log;
  KtXmlSetType<U32> set(U32(99U));
  EXPECT_TRUE(readInto(set, "<set count='2'><group>5 3 5</group></set>"));
  EXPECT_THAT(set.setContainer(), ElementsAre(3U, 5U));
  EXPECT_EQ(log.errors(),
            "(no error) KtXmlSetType Error: set size not equal to attribute value -- 2, actual -- "
            "3\n");
  EXPECT_TRUE(set.erase(3U) && !set.erase(3U) && !set.find(3U));
}

using TextToReal = KtXmlMapType<Text, Real>;

TEST(MapType, ReadsWhatItCan) {
  const std::string a = "<element><key>a</key><value>1</value></element>";
  const std::string b = "<element><key>b</key><value>2</value></element>";
  using Values = std::map<std::string, double>;
  const struct {
    const char* what;
    std::string entries;
    bool ok;
    Values values;
  } rows[] = {
      {"later value wins", a + "<element><key>a</key><value>2</value></element>", true, {{"a", 2}}},
      {"value without content", a + "<element><key>a</key><value/></element>", true, {{"a", 0}}},
      {"entry without content ends it", a + "<element/>" + b, true, {{"a", 1}}},
      {"wrong tag", a + "<entry/><entry></entry>", true, {{"a", 1}}},
      {"wrong tag with content", a + "<entry>x</entry>", false, {{"a", 1}}},
      {"key without content", "<element><key/><value>1</value></element>", false, {}},
      {"no value", "<element><key>a</key></element>", false, {{"a", 0}}},
      {"too much", "<element><key>a</key><value>1</value><value/></element>", false, {{"a", 1}}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const KtLogCapture log;
    // Abandoned midway or not, what stands behind the map must still be read.
    KtXmlPairType<TextToReal, Real> pair;
    EXPECT_EQ(readInto(pair, "<pair><first>" + row.entries + "</first><second>7</second></pair>"),
              row.ok);
    Values read;
    for (const auto& [key, value] : pair.first().mapContainer()) read[key.value()] = value;
    EXPECT_EQ(read, row.values);
    EXPECT_EQ(pair.second(), 7.0);
    EXPECT_EQ(log.contains("KtXmlMapType Error: file not valid.\n\tKey map format not "
                           "correct.\n\tFile: text\n\tLine: 1"),
              !row.ok);
  }
  const KtLogCapture log;
  TextToReal map;
  EXPECT_FALSE(readInto(map, "<map><entry>x</entry></map>"));
  EXPECT_EQ(log.messages().back().text, "\tExpected " + KtXml::KtElementToken.text() +
                                            " but received " + KtManip::ns.text() + "entry.");
}

TEST(MapType, LooksUp) {
  TextToReal map(std::string("b"), 2.0);
  map.add(std::string("a"), 1.0);
  map.add(std::string("b"), 3.0);
  Real value = 7.0;
  EXPECT_TRUE(map.lookup(std::string("b"), value) && !map.lookup(std::string("c"), value));
  EXPECT_EQ(value, 3.0);
  KtU32 index = 7;
  EXPECT_TRUE(!map.keyIndex(std::string("c"), index) && map.keyIndex(std::string("b"), index));
  EXPECT_EQ(index, 1U);
  Text back;
  EXPECT_TRUE(map.indexKey(1, back) && back == "b" && !map.indexKey(2, back));
  EXPECT_TRUE(map.erase(std::string("a")) && !map.erase(std::string("a")));
}

TEST(PairType, ComplainsAboutOtherChildrenAndGoesOn) {
  const KtLogCapture log;
  KtXmlPairType<Text, Real> pair(std::string("kept"), 1.0);
  EXPECT_FALSE(readInto(pair, "<pair><third>x</third><second>2</second></pair>"));
  EXPECT_EQ(pair.first(), "kept");
  EXPECT_EQ(pair.second(), 2.0);
  EXPECT_EQ(log.text(),
            "KtXmlPairType Error: file not valid.\n\tFormat not correct.\n\tFile: text\n\tLine: 1"
            "\tExpected " +
                KtXml::KtFirstToken.text() + " or " + KtXml::KtSecondToken.text() +
                " but received " + KtManip::ns.text() + "third.");
  EXPECT_TRUE(readInto(pair, "<pair/>"));
  EXPECT_EQ(pair.second(), 2.0);
}

TEST(VariableVector, KeepsTheRulesOfOwnership) {
  KtLogCapture log;
  SampleFunctionVector list;
  for (int i = 0; i < 4; ++i) list.pushBack(KtLinearScalarFunction(i, 10 * i));
  const SampleFunctionVector copy = list;
  EXPECT_EQ(copy, list);
  EXPECT_TRUE(list.exchange(0, list[3]));
  EXPECT_EQ(list[0].evaluate(1.0), 30.0);
  EXPECT_FALSE(list == copy);
  EXPECT_TRUE(list.erase(1, 3) && list.erase(0));
  list.resize(5);
  EXPECT_EQ(list.size(), 1U) << "never grows";
  KtLinearScalarFunction function(7.0, 8.0);
  list.assign(3, function);
  list.resize(2);
  EXPECT_EQ(list.size(), 2U);
  EXPECT_EQ(log.text(), "");

  EXPECT_FALSE(list.exchange(2, function));
  EXPECT_FALSE(list.erase(2) || list.erase(2, 2) || list.erase(0, 3));
  EXPECT_EQ(list[9].evaluate(0.0), 7.0);
  EXPECT_EQ(log.errors(),
            "KtXmlVariableVectorType<ElementType>::exchange: bad index, 2\n"
            "KtXmlVariableVectorType<ElementType>::erase: bad index, 2\n"
            "KtXmlVariableVectorType<ElementType>::erase: bad first/last indices: 2/2\n"
            "KtXmlVariableVectorType<ElementType>::erase: bad first/last indices: 0/3\n"
            "KtXmlVariableVectorType<ElementType>::operator[]: bad index\n"
            "Will attempt to return the first vector element.\n");

  const SampleFunctionVector nulls(2);
  EXPECT_FALSE(nulls == nulls);
  EXPECT_FALSE(nulls.equality(&nulls));
  EXPECT_EQ(nulls[0].evaluate(1.0), 0.0) << "an object beside the list stands in";
}

TEST(VariableHolders, ReportUnknownTags) {
  const std::string known = "<linearScalarFunction><endValue>2</endValue></linearScalarFunction>";
  const auto said = [](const std::string& cls) {
    return cls + "::readValueFromToken() error:\n\t\"" + KtManip::ns.text() +
           "mystery\" tag not registered.\n";
  };
  KtLogCapture log;
  SampleFunctionVector list;
  EXPECT_FALSE(readInto(list, "<sampleFunctionVector count='3'>" + known +
                                  "<mystery><deep/></mystery>" + known +
                                  "</sampleFunctionVector>"));
  EXPECT_EQ(list.size(), 2U) << "what can be read is read";
  EXPECT_EQ(log.text(), said("KtXmlVariableVectorType"));
  log.clear();
  SampleFunctionHolder holder;
  EXPECT_FALSE(
      readInto(holder, "<sampleFunctionHolder>" + known + "<mystery/></sampleFunctionHolder>"));
  EXPECT_EQ(holder.element(), nullptr);
  EXPECT_EQ(log.text(), said("KtXmlVariableElementType"));
}

TEST(LabelMap, IsSymmetricAndRefuses) {
  KtLogCapture log;
  KtLabelAssociatedRealMap map;
  map.addLabel("a");
  map.addLabel("b");
  map.addLabel("a");
  EXPECT_TRUE(map.setValue("a", "b", 0.5));
  EXPECT_EQ(map.value("b", "a"), 0.5);
  EXPECT_EQ(map.valueByIndex(0, 1), 0.5);
  EXPECT_EQ(map.value("b", "b"), 0.0);
  EXPECT_EQ(log.text(), "");
  EXPECT_FALSE(map.setValue("a", "x", 1.0));
  EXPECT_EQ(map.value("x", "a"), 0.0);
  EXPECT_EQ(map.valueByIndex(0, 2), 0.0);
  EXPECT_FALSE(map.setValueByIndex(0, 2, 1.0));
  EXPECT_EQ(log.errors(),
            "KtLabelAssociatedMap::setValue-->label (a) does not exist"
            "KtLabelAssociatedMap::value-->label does not exist"
            "KtLabelAssociatedMap::setLinkCollisionCanditate link value (2) exceeds link map "
            "dimension\n"
            "KtLabelAssociatedMap::setValueByIndex value (2) exceeds link map dimension\n");

  KtLabelAssociatedMap<KtXmlBasicType<bool>> sized;
  sized.resize(2);
  EXPECT_TRUE(sized.setValueByIndex(2, 2, true) && !sized.setValueByIndex(3, 0, true));
  EXPECT_EQ(sized.value("null", "null"), true);
}

}  // namespace
