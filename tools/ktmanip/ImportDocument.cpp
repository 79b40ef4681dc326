#include "ImportDocument.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <string_view>

#include "Numbers.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"

using tinyxml2::XMLElement;
using tinyxml2::XMLNode;

namespace {

enum Content { kAnything, kText, kReal, kNotNegative, kThreeReals, kThreeNotNegative };

// So many links one behind the other are read back from a file: each nests two elements deeper.
constexpr std::size_t kLongestRow = 1400;
static_assert(2 * kLongestRow < KtXmlReader::kDefaultDepthLimit);

bool isOneOf(const std::string& word, std::initializer_list<const char*> words) {
  return std::any_of(words.begin(), words.end(), [&](const char* w) { return word == w; });
}

std::string attribute(const XMLElement& element, const char* name) {
  const char* value = element.Attribute(name);
  return value == nullptr ? std::string() : value;
}

std::string childAttribute(const XMLElement& element, const char* child, const char* name) {
  const XMLElement* found = element.FirstChildElement(child);
  return found == nullptr ? std::string() : attribute(*found, name);
}

// Takes attributes apart that hold several numbers. The URDF library knows only the blank.
constexpr const char* kSpace = " \t\r\n";

std::string withBlanks(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return std::strchr(kSpace, c) != nullptr; }, ' ');
  text.erase(text.find_last_not_of(' ') + 1);
  return text.erase(0, text.find_first_not_of(' '));
}

std::string quoted(const std::string& text) {
  return '"' + text + '"';
}

// An element as a message names it: with the attribute that tells it from others of its kind.
std::string nameOf(const XMLElement& element) {
  std::string result = std::string("<") + element.Name() + ">";
  for (const char* key : {"name", "filename", "reference", "link"}) {
    if (const char* value = element.Attribute(key)) return result + ' ' + quoted(value);
  }
  return result;
}

// What is wrong with an attribute's value; empty if nothing is.
std::string complaint(const std::string& text, Content content) {
  if (content == kAnything || content == kText) {
    if (content == kText && text.empty()) return "is empty";
    return isWritable(text) ? "" : "has characters that no system's file can have";
  }
  std::vector<double> values;
  std::string wrong;
  if (!readNumbers(text, kSpace, values, wrong))
    return "has " + quoted(wrong) + ", no finite number";
  const std::size_t expected = content == kThreeReals || content == kThreeNotNegative ? 3 : 1;
  if (values.size() != expected) {
    return "has " + std::to_string(values.size()) + " numbers, not " + std::to_string(expected);
  }
  const bool mayBeNegative = content == kReal || content == kThreeReals;
  if (!mayBeNegative && *std::min_element(values.begin(), values.end()) < 0.0) {
    return "is negative";
  }
  return "";
}

}  // namespace

struct ImportDocument::AttributeRule {
  const char* name;
  Content content = kAnything;
  bool required = false;
};

struct ImportDocument::ElementRule {
  const char* name;
  std::vector<AttributeRule> attributes;
  std::vector<ElementRule> children;
  bool required = false;
  bool many = false;
};

// What is taken over. Whatever isn't here is left out and told.
const ImportDocument::ElementRule& ImportDocument::robotRule() {
  static const ElementRule origin{
      "origin", {{"xyz", kThreeReals}, {"rpy", kThreeReals}}, {}, false, false};
  static const ElementRule geometry{
      "geometry",
      {},
      {{"box", {{"size", kThreeNotNegative, true}}, {}},
       {"sphere", {{"radius", kNotNegative, true}}, {}},
       {"cylinder", {{"radius", kNotNegative, true}, {"length", kNotNegative, true}}, {}}},
      true};
  static const ElementRule inertial{"inertial",
                                    {},
                                    {origin,
                                     {"mass", {{"value", kNotNegative, true}}, {}, true},
                                     {"inertia",
                                      {{"ixx", kReal, true},
                                       {"ixy", kReal, true},
                                       {"ixz", kReal, true},
                                       {"iyy", kReal, true},
                                       {"iyz", kReal, true},
                                       {"izz", kReal, true}},
                                      {},
                                      true}}};
  static const ElementRule link{
      "link",
      {{"name", kText, true}},
      {inertial, {"collision", {{"name"}}, {origin, geometry}, false, true}},
      false,
      true};
  static const ElementRule joint{
      "joint",
      {{"name", kText, true}, {"type", kText, true}},
      {origin,
       {"parent", {{"link", kText, true}}, {}, true},
       {"child", {{"link", kText, true}}, {}, true},
       {"axis", {{"xyz", kThreeReals, true}}, {}},
       {"limit",
        {{"lower", kReal}, {"upper", kReal}, {"effort", kReal, true}, {"velocity", kReal, true}},
        {}},
       {"dynamics", {{"damping", kReal}, {"friction", kNotNegative}}, {}},
       {"mimic", {{"joint", kText, true}, {"multiplier", kReal}, {"offset", kReal}}, {}}},
      false,
      true};
  static const ElementRule robot{"robot", {{"name", kAnything, true}, {"version"}}, {link, joint}};
  return robot;
}

ImportDocument::ImportDocument(const std::string& text) {
  if (document_.Parse(text.c_str(), text.size()) != tinyxml2::XML_SUCCESS) {
    std::string what = document_.ErrorName();  // like XML_ERROR_MISMATCHED_ELEMENT
    if (what.rfind("XML_", 0) == 0) what.erase(0, 4);
    std::replace(what.begin(), what.end(), '_', ' ');
    std::transform(what.begin(), what.end(), what.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    errors_.push_back({document_.ErrorLineNum(), "not well-formed: " + what});
    return;
  }
  XMLElement* robot = document_.RootElement();
  if (robot == nullptr || std::strcmp(robot->Name(), "robot") != 0) {
    errors_.push_back({robot == nullptr ? 1 : robot->GetLineNum(), "the root is not <robot>"});
    return;
  }
  for (const XMLNode* node = document_.FirstChild(); node != nullptr; node = node->NextSibling()) {
    if (node->ToUnknown() != nullptr) {
      leaveOut(*node, std::string("<!") + node->Value() + ">");
    } else if (node->ToElement() != nullptr && node != robot) {
      error(*node, std::string("a second root, <") + node->Value() + ">");
    }
  }
  checkElement(*robot, robotRule(), "");
  if (errors_.empty()) {
    collect("link", links_);
    collect("joint", joints_);
    for (auto& [name, link] : links_) checkCollisions(*link);
    for (auto& [name, joint] : joints_) checkJoint(*joint);
    for (auto& [name, joint] : joints_) checkMimic(*joint);
    checkTree();
  }
  const auto byLine = [](const ImportFinding& a, const ImportFinding& b) {
    return a.line < b.line;
  };
  std::stable_sort(errors_.begin(), errors_.end(), byLine);
  std::stable_sort(notTaken_.begin(), notTaken_.end(), byLine);
}

std::string ImportDocument::takenText() const {
  tinyxml2::XMLPrinter printer(nullptr, true);
  document_.RootElement()->Accept(&printer);
  return printer.CStr();
}

int ImportDocument::lineOf(const Elements& elements, const std::string& name) {
  const auto found = elements.find(name);
  return found == elements.end() ? 0 : found->second->GetLineNum();
}

void ImportDocument::error(const XMLNode& node, const std::string& text) {
  errors_.push_back({node.GetLineNum(), text});
}

void ImportDocument::leaveOut(const XMLNode& node, const std::string& text) {
  notTaken_.push_back({node.GetLineNum(), text});
}

void ImportDocument::leaveOut(XMLElement& parent, const char* child, const std::string& reason) {
  XMLElement* found = parent.FirstChildElement(child);
  if (found == nullptr) return;
  leaveOut(*found, nameOf(*found) + " in " + nameOf(parent) + reason);
  parent.DeleteChild(found);
}

void ImportDocument::checkElement(XMLElement& element, const ElementRule& rule,
                                  const std::string& where) {
  const std::string here = nameOf(element) + (where.empty() ? "" : " in " + where);
  // That the robot is in the file goes without saying.
  const bool isRobot = &element == document_.RootElement();
  const std::string inHere = isRobot ? "" : " in " + here;
  checkAttributes(element, rule, here);
  std::set<std::string> seen;
  for (XMLNode *node = element.FirstChild(), *next = nullptr; node != nullptr; node = next) {
    next = node->NextSibling();
    if (node->ToText() != nullptr) {
      leaveOut(*node, "text" + inHere);
      element.DeleteChild(node);
      continue;
    }
    XMLElement* child = node->ToElement();
    if (child == nullptr) continue;
    const auto found =
        std::find_if(rule.children.begin(), rule.children.end(),
                     [&](const ElementRule& r) { return std::strcmp(r.name, child->Name()) == 0; });
    if (found == rule.children.end()) {
      leaveOut(*child, nameOf(*child) + inHere);
      element.DeleteChild(child);
      bereft_.insert(&element);
    } else if (!found->many && !seen.insert(child->Name()).second) {
      leaveOut(*child, "a second " + nameOf(*child) + inHere);
      element.DeleteChild(child);
    } else {
      checkElement(*child, *found, isRobot ? "" : here);
    }
  }
  for (const ElementRule& child : rule.children) {
    if (child.required && seen.count(child.name) == 0) {
      error(element, here + " has no <" + child.name + ">");
    }
  }
}

void ImportDocument::checkAttributes(XMLElement& element, const ElementRule& rule,
                                     const std::string& where) {
  std::vector<std::string> unknown;
  for (const auto* a = element.FirstAttribute(); a != nullptr; a = a->Next()) {
    const auto found =
        std::find_if(rule.attributes.begin(), rule.attributes.end(),
                     [&](const AttributeRule& r) { return std::strcmp(r.name, a->Name()) == 0; });
    if (found == rule.attributes.end()) {
      if (std::strncmp(a->Name(), "xmlns", 5) == 0) continue;
      notTaken_.push_back(
          {a->GetLineNum(), std::string("attribute ") + a->Name() + " of " + where});
      unknown.emplace_back(a->Name());
    } else if (const std::string what = complaint(a->Value(), found->content); !what.empty()) {
      errors_.push_back({a->GetLineNum(), std::string(a->Name()) + " of " + where + ' ' + what});
    } else if (found->content != kAnything && found->content != kText) {
      element.SetAttribute(a->Name(), withBlanks(a->Value()).c_str());
    }
  }
  for (const std::string& name : unknown) element.DeleteAttribute(name.c_str());
  for (const AttributeRule& a : rule.attributes) {
    if (a.required && element.Attribute(a.name) == nullptr) {
      error(element, where + " has no " + a.name);
    }
  }
}

void ImportDocument::collect(const char* kind, Elements& elements) {
  for (XMLElement* e = document_.RootElement()->FirstChildElement(kind); e != nullptr;
       e = e->NextSiblingElement(kind)) {
    const auto [found, isNew] = elements.emplace(attribute(*e, "name"), e);
    if (!isNew) {
      error(*e, "a second " + nameOf(*e) + "; the first is in line " +
                    std::to_string(found->second->GetLineNum()));
    }
  }
}

void ImportDocument::checkCollisions(XMLElement& link) {
  for (XMLElement *e = link.FirstChildElement("collision"), *next = nullptr; e != nullptr;
       e = next) {
    next = e->NextSiblingElement("collision");
    XMLElement* geometry = e->FirstChildElement("geometry");
    XMLElement* shape = geometry->FirstChildElement();
    if (shape == nullptr) {
      // A shape of a kind that isn't imported has been told already.
      if (bereft_.count(geometry) == 0) {
        leaveOut(*e, nameOf(*e) + " in " + nameOf(link) + ", which has no shape");
      }
      link.DeleteChild(e);
    } else if (shape->NextSiblingElement() != nullptr) {
      error(*geometry, "<geometry> in " + nameOf(link) + " has more than one shape");
    }
  }
}

void ImportDocument::checkJoint(XMLElement& joint) {
  const std::string type = attribute(joint, "type");
  const std::string kind = ": a " + type + " joint has none";
  if (!isOneOf(type, {"revolute", "continuous", "prismatic", "fixed", "planar", "floating"})) {
    error(joint, nameOf(joint) + " has the unknown type " + quoted(type));
    return;
  }
  for (const char* end : {"parent", "child"}) {
    const std::string link = childAttribute(joint, end, "link");
    if (links_.count(link) == 0) {
      error(*joint.FirstChildElement(end), nameOf(joint) + ": no link " + quoted(link));
    }
  }
  if (isOneOf(type, {"fixed", "floating"})) leaveOut(joint, "axis", kind);
  if (isOneOf(type, {"fixed", "floating", "planar"})) {
    for (const char* child : {"limit", "dynamics", "mimic"}) leaveOut(joint, child, kind);
  }
  // The URDF library refuses it, though it only says nothing.
  if (const XMLElement* dynamics = joint.FirstChildElement("dynamics");
      dynamics != nullptr && dynamics->FirstAttribute() == nullptr) {
    leaveOut(joint, "dynamics", ", which says nothing");
  }
  if (const XMLElement* axis = joint.FirstChildElement("axis")) {
    std::vector<double> xyz;
    std::string wrong;
    readNumbers(attribute(*axis, "xyz"), kSpace, xyz, wrong);
    if (xyz == std::vector<double>(3, 0.0)) error(*axis, nameOf(joint) + " has the axis 0 0 0");
  }
  XMLElement* limit = joint.FirstChildElement("limit");
  if (limit == nullptr) {
    if (isOneOf(type, {"revolute", "prismatic"})) error(joint, nameOf(joint) + " has no <limit>");
    return;
  }
  if (type == "continuous") {
    for (const char* bound : {"lower", "upper"}) {
      if (limit->Attribute(bound) == nullptr) continue;
      leaveOut(*limit,
               std::string("attribute ") + bound + " of <limit> in " + nameOf(joint) + kind);
      limit->DeleteAttribute(bound);
    }
  }
  if (limit->DoubleAttribute("velocity") <= 0.0) {
    leaveOut(*limit, "attribute velocity of <limit> in " + nameOf(joint) +
                         ": a joint that may not move is taken as one without such a limit");
  }
}

void ImportDocument::checkMimic(XMLElement& joint) {
  XMLElement* mimic = joint.FirstChildElement("mimic");
  if (mimic == nullptr) return;
  // The joints that it follows, one after the other.
  std::set<std::string> followed{attribute(joint, "name")};
  for (const XMLElement* next = mimic; next != nullptr;) {
    const std::string name = attribute(*next, "joint");
    const auto found = joints_.find(name);
    if (found == joints_.end()) {
      if (next == mimic) error(*mimic, nameOf(joint) + ": no joint " + quoted(name));
      return;
    }
    if (!followed.insert(name).second) {
      error(*mimic, nameOf(joint) + " follows itself");
      return;
    }
    if (next == mimic &&
        isOneOf(attribute(*found->second, "type"), {"fixed", "planar", "floating"})) {
      leaveOut(joint, "mimic", ": joint " + quoted(name) + " has not one position");
      return;
    }
    next = found->second->FirstChildElement("mimic");
  }
}

void ImportDocument::checkTree() {
  if (!errors_.empty()) return;
  std::map<std::string, const XMLElement*> jointTo;
  for (const auto& [name, joint] : joints_) {
    const auto [other, isNew] = jointTo.emplace(childAttribute(*joint, "child", "link"), joint);
    if (!isNew) {
      error(*joint, "link " + quoted(other->first) + " is the child of joint " +
                        quoted(attribute(*other->second, "name")) + " as well as of joint " +
                        quoted(name));
    }
  }
  if (!errors_.empty()) return;
  const XMLElement* root = nullptr;
  for (const auto& [name, link] : links_) {
    if (jointTo.count(name) != 0) continue;
    if (root != nullptr) {
      error(*link, "two links without a parent, " + quoted(attribute(*root, "name")) + " and " +
                       quoted(name));
      return;
    }
    root = link;
  }
  if (root == nullptr) {
    error(*document_.RootElement(), links_.empty() ? "the robot has no link"
                                                   : "no link without a parent: the joints are a "
                                                     "loop");
    return;
  }
  // One root and one parent for each other link: what doesn't lead to the root goes round.
  std::map<std::string, std::size_t> depths{{attribute(*root, "name"), 0}};
  for (const auto& [name, link] : links_) {
    std::vector<const XMLElement*> way;  // to a link whose depth is known
    std::string at = name;
    while (depths.count(at) == 0 && way.size() <= links_.size()) {
      way.push_back(jointTo.at(at));
      at = childAttribute(*way.back(), "parent", "link");
    }
    if (way.size() > links_.size()) {
      error(*link, "link " + quoted(name) + " hangs on a loop of joints");
      return;
    }
    for (std::size_t depth = depths[at]; !way.empty(); way.pop_back()) {
      const std::string type = attribute(*way.back(), "type");
      depth += type == "planar" ? 3 : isOneOf(type, {"fixed", "floating"}) ? 0 : 1;
      depths[childAttribute(*way.back(), "child", "link")] = depth;
    }
    if (depths[name] > kLongestRow) {
      error(*link, "link " + quoted(name) + " hangs on a row of more than " +
                       std::to_string(kLongestRow) + " moving links");
      return;
    }
  }
}
