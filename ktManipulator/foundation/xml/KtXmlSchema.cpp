#include "ktManipulator/foundation/xml/KtXmlSchema.h"

#include <cxxabi.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>
#include <typeindex>

#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/xml/KtToken.h"
#include "ktManipulator/foundation/xml/KtXmlObject.h"
#include "ktManipulator/foundation/xml/KtXmlTokens.h"

/// A declaration: of an element, an attribute or a named type.
struct KtXmlSchema::Node {
  std::string name;
  bool isType = false;
  KtU32 occurrence = kExactlyOne;
  ContentModel model = kSequence;
  std::string typeName;   // of a named type
  std::string valueType;  // of a simple type
  bool isList = false;
  KtU32 listLength = 0;
  std::vector<std::string> words;
  std::vector<std::unique_ptr<Node>> children;
  std::vector<std::unique_ptr<Node>> attributes;

  bool isSimple() const { return !valueType.empty() || !words.empty(); }
};

struct KtXmlSchema::State {
  State(const std::string& name, std::ostream& out) : fileName(name), stream(out) {
    open.push_back(&document);
  }

  std::string uniqueTypeName(const std::type_info& type) {
    int status = 0;
    char* demangled = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
    std::string name = demangled != nullptr ? demangled : type.name();
    std::free(demangled);
    for (char& c : name) {
      if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
    }
    const auto taken = [this](const std::string& text) {
      return std::any_of(typeNames.begin(), typeNames.end(),
                         [&](const auto& entry) { return entry.second == text; });
    };
    while (taken(name)) name += '_';
    return name;
  }

  void writeSimpleType(const Node& node, const std::string& indent) const {
    stream << indent << "<xs:simpleType>\n";
    if (!node.words.empty()) {
      // A value that has no word stands as its number.
      stream << indent << "  <xs:union memberTypes=\"xs:unsignedInt\">\n"
             << indent << "    <xs:simpleType>\n"
             << indent << "      <xs:restriction base=\"xs:string\">\n";
      for (const auto& word : node.words) {
        stream << indent << "        <xs:enumeration value=\"" << escaped(word) << "\"/>\n";
      }
      stream << indent << "      </xs:restriction>\n"
             << indent << "    </xs:simpleType>\n"
             << indent << "  </xs:union>\n";
    } else if (node.listLength == 0) {
      stream << indent << "  <xs:list itemType=\"" << node.valueType << "\"/>\n";
    } else {
      stream << indent << "  <xs:restriction>\n"
             << indent << "    <xs:simpleType>\n"
             << indent << "      <xs:list itemType=\"" << node.valueType << "\"/>\n"
             << indent << "    </xs:simpleType>\n"
             << indent << "    <xs:length value=\"" << node.listLength << "\"/>\n"
             << indent << "  </xs:restriction>\n";
    }
    stream << indent << "</xs:simpleType>\n";
  }

  void writeComplexType(const Node& node, const std::string& indent) const {
    stream << indent << "<xs:complexType";
    if (node.isType) stream << " name=\"" << node.name << "\"";
    stream << ">\n";
    if (!node.children.empty()) {
      const char* model = node.model == kSequence ? "sequence"
                          : node.model == kAll    ? "all"
                                                  : "choice";
      stream << indent << "  <xs:" << model
             << (node.model == kAnyNumberOfChoices ? " minOccurs=\"0\" maxOccurs=\"unbounded\""
                                                   : "")
             << ">\n";
      for (const auto& child : node.children) {
        writeElement(*child, indent + "    ", node.model == kAnyNumberOfChoices);
      }
      stream << indent << "  </xs:" << model << ">\n";
    }
    for (const auto& attribute : node.attributes) {
      stream << indent << "  <xs:attribute name=\"" << attribute->name << "\"";
      if (attribute->words.empty()) {
        stream << " type=\"" << attribute->valueType << "\"/>\n";
      } else {
        stream << ">\n";
        writeSimpleType(*attribute, indent + "    ");
        stream << indent << "  </xs:attribute>\n";
      }
    }
    stream << indent << "</xs:complexType>\n";
  }

  void writeElement(const Node& node, const std::string& indent, bool repeatedByParent) const {
    stream << indent << "<xs:element name=\"" << node.name << "\"";
    if (node.occurrence == kAnyNumber && !repeatedByParent) {
      stream << " minOccurs=\"0\" maxOccurs=\"unbounded\"";
    }
    if (!node.typeName.empty()) {
      stream << " type=\"" << node.typeName << "\"/>\n";
    } else if (node.isSimple() && node.words.empty() && !node.isList) {
      stream << " type=\"" << node.valueType << "\"/>\n";
    } else {
      stream << ">\n";
      if (node.isSimple()) {
        writeSimpleType(node, indent + "  ");
      } else {
        writeComplexType(node, indent + "  ");
      }
      stream << indent << "</xs:element>\n";
    }
  }

  void writeAll() const {
    stream << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           << "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" xmlns=\""
           << KtXml::namespaceName << "\"\n           targetNamespace=\"" << KtXml::namespaceName
           << "\" elementFormDefault=\"qualified\">\n";
    for (const auto& root : document.children) writeElement(*root, "  ", true);
    for (const auto& type : types) writeComplexType(*type, "  ");
    stream << "</xs:schema>\n" << std::flush;
  }

  static std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
      switch (c) {
        case '&':
          result += "&amp;";
          break;
        case '<':
          result += "&lt;";
          break;
        case '"':
          result += "&quot;";
          break;
        default:
          result += c;
      }
    }
    return result;
  }

  std::string fileName;
  std::ostream& stream;
  Node document;  // its children are the possible roots
  std::vector<std::unique_ptr<Node>> types;
  std::map<std::type_index, std::string> typeNames;
  std::vector<Node*> open;  // innermost last
};

KtXmlSchema::KtXmlSchema(const std::string& fileName, std::ostream& stream)
    : state_(std::make_unique<State>(fileName, stream)) {}

KtXmlSchema::~KtXmlSchema() {
  State& s = *state_;
  try {
    s.writeAll();
  } catch (...) {
    // A caller may have told the stream to throw; its state says the same.
  }
  if (!s.stream) {
    Kt::Print::instance().write(Kt::Print::kError, "%s: the schema can't be written\n",
                                s.fileName.c_str());
  }
}

void KtXmlSchema::beginElement(const KtToken& token, KtU32 occurrence) {
  auto node = std::make_unique<Node>();
  node->name = token.localName();
  node->occurrence = occurrence;
  Node* const child = node.get();
  state_->open.back()->children.push_back(std::move(node));
  state_->open.push_back(child);
}

void KtXmlSchema::beginAttribute(const KtToken& token) {
  auto node = std::make_unique<Node>();
  node->name = token.localName();
  Node* const attribute = node.get();
  state_->open.back()->attributes.push_back(std::move(node));
  state_->open.push_back(attribute);
}

void KtXmlSchema::endElement() {
  if (state_->open.size() > 1) state_->open.pop_back();
}

bool KtXmlSchema::beginType(const KtXmlObject& object) {
  State& s = *state_;
  const auto [entry, isNew] = s.typeNames.try_emplace(std::type_index(typeid(object)));
  if (isNew) entry->second = s.uniqueTypeName(typeid(object));
  s.open.back()->typeName = entry->second;
  if (!isNew) return false;
  s.types.push_back(std::make_unique<Node>());
  s.types.back()->isType = true;
  s.types.back()->name = entry->second;
  s.open.push_back(s.types.back().get());
  return true;
}

void KtXmlSchema::endType() {
  endElement();
}

void KtXmlSchema::setContentModel(ContentModel model) {
  state_->open.back()->model = model;
}

void KtXmlSchema::setValueType(const std::string& type) {
  state_->open.back()->valueType = type;
}

void KtXmlSchema::makeList(KtU32 length) {
  Node& node = *state_->open.back();
  // Texts may be quoted and enumeration words are texts: no item type of XML Schema fits them.
  if (node.valueType == "xs:string" || !node.words.empty()) {
    node.valueType = "xs:string";
    node.words.clear();
    return;
  }
  node.isList = true;
  node.listLength = length;
}

void KtXmlSchema::setEnumeration(const std::vector<std::string>& words) {
  state_->open.back()->words = words;
}
