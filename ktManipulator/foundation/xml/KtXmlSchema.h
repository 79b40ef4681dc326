#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"

class KtToken;
class KtXmlObject;

/// The target of `writeSchema`: collects declarations and writes them as a W3C XML Schema when it
/// is destroyed.
///
/// Declarations nest as the writing does: an element or attribute is begun, the `writeSchema` of
/// its object describes its content, and it is ended. Classes become named types, each described
/// once, so that a class may contain itself.
class KT_EXPORT KtXmlSchema {
 public:
  /// How often an element occurs.
  enum Occurrence : KtU32 {
    kExactlyOne = 1,  ///< Exactly once.
    kAnyNumber = 2    ///< Any number of times, also never.
  };

  /// How the children of an element follow each other.
  enum ContentModel {
    kSequence,            ///< In the order of their declaration.
    kAll,                 ///< In any order.
    kChoice,              ///< Only one of them.
    kAnyNumberOfChoices,  ///< Any of them, mixed, any number of times.
  };

  /// Writes to a stream, which has to outlive the schema.
  ///
  /// @param fileName  name of the document for messages
  KtXmlSchema(const std::string& fileName, std::ostream& stream);
  /// Writes the schema.
  virtual ~KtXmlSchema();
  KtXmlSchema(const KtXmlSchema&) = delete;
  KtXmlSchema& operator=(const KtXmlSchema&) = delete;

  /// Begins the declaration of an element; on the outermost level, of a document's root.
  virtual void beginElement(const KtToken& token, KtU32 occurrence);
  /// Begins the declaration of an attribute of the element in hand.
  virtual void beginAttribute(const KtToken& token);
  /// Ends the declaration begun last.
  virtual void endElement();

  /// Gives the element in hand the type that is named after the object's class.
  ///
  /// @return whether the class is not described yet. Then what follows up to `endType` describes
  /// it.
  bool beginType(const KtXmlObject& object);
  /// Ends the description that `beginType` began.
  void endType();
  /// How the children of the element or type in hand follow each other.
  void setContentModel(ContentModel model);
  /// The element or attribute in hand holds one value of a simple type of XML Schema ("xs:double").
  void setValueType(const std::string& type);
  /// The element in hand, whose value type is set, holds a list of such values, separated by white
  /// space.
  ///
  /// @param length  how many; 0 for any number
  void makeList(KtU32 length = 0);
  /// The element or attribute in hand holds one of these words, or an unsigned integer.
  void setEnumeration(const std::vector<std::string>& words);

 private:
  struct Node;
  struct State;
  std::unique_ptr<State> state_;
};
