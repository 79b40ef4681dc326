#pragma once

#include <tinyxml2.h>

#include <map>
#include <set>
#include <string>
#include <vector>

/// Something to tell about a line of a robot's file.
struct ImportFinding {
  int line = 0;
  std::string text;
};

/// The text of a URDF file, checked: what is wrong with it, what of it has no place in a stated
/// system, and the rest, of which a model can be made.
///
/// The URDF library ignores what it doesn't know, and names no lines. Here every element and
/// attribute is either one that is taken over or is found.
class ImportDocument {
 public:
  /// Parses and checks a text.
  explicit ImportDocument(const std::string& text);

  /// What is wrong; a document with errors is not to be used. In the order of the lines.
  const std::vector<ImportFinding>& errors() const noexcept { return errors_; }
  /// What is not taken over, in the order of the lines.
  const std::vector<ImportFinding>& notTaken() const noexcept { return notTaken_; }
  /// The text without what is not taken over.
  std::string takenText() const;
  /// The line of a link or a joint; 0 if there is none of that name.
  int linkLine(const std::string& name) const { return lineOf(links_, name); }
  /// See `linkLine`.
  int jointLine(const std::string& name) const { return lineOf(joints_, name); }

 private:
  using Elements = std::map<std::string, tinyxml2::XMLElement*>;
  struct AttributeRule;
  struct ElementRule;

  static const ElementRule& robotRule();
  static int lineOf(const Elements& elements, const std::string& name);

  void error(const tinyxml2::XMLNode& node, const std::string& text);
  void leaveOut(const tinyxml2::XMLNode& node, const std::string& text);
  void leaveOut(tinyxml2::XMLElement& parent, const char* child, const std::string& reason);
  void checkElement(tinyxml2::XMLElement& element, const ElementRule& rule,
                    const std::string& where);
  void checkAttributes(tinyxml2::XMLElement& element, const ElementRule& rule,
                       const std::string& where);
  void checkCollisions(tinyxml2::XMLElement& link);
  void checkJoint(tinyxml2::XMLElement& joint);
  void checkMimic(tinyxml2::XMLElement& joint);
  void checkTree();
  void collect(const char* kind, Elements& elements);

  tinyxml2::XMLDocument document_;
  std::vector<ImportFinding> errors_;
  std::vector<ImportFinding> notTaken_;
  Elements links_;
  Elements joints_;
  std::set<const tinyxml2::XMLElement*> bereft_;  // something in them was left out
};
