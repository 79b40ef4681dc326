#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"

class KtToken;
class KtXmlObject;

/// A push writer of one XML document in UTF-8: indented, with short lists on one line, reals in the
/// shortest form that reads back to the same bits.
///
/// What can't stand in XML (control characters, bytes that are no UTF-8, a name that is no XML
/// name) is replaced or left out, reported and counted; so is a stream that fails.
class KT_EXPORT KtXmlWriter {
 public:
  /// Writes to a stream, which has to outlive the writer.
  ///
  /// @param fileName  name of the document for messages
  KtXmlWriter(const std::string& fileName, std::ostream& stream);
  /// Finishes the document: closes what is open and flushes.
  virtual ~KtXmlWriter();
  KtXmlWriter(const KtXmlWriter&) = delete;
  KtXmlWriter& operator=(const KtXmlWriter&) = delete;

  /// Opens an element named after an object's class, or the document's root.
  virtual void beginObjectElement(const KtToken& token);
  /// Opens an element of a component or of a container's structure.
  virtual void beginElement(const KtToken& token);
  /// Starts an attribute of the element just opened; the next value or text becomes its value.
  virtual void beginAttribute(const KtToken& token);
  /// Closes the element opened last.
  virtual void endElement();

  // What the `write` operations of persistent types need beside the structure.

  /// Writes a text: the value of the attribute begun, or character data of the element in hand.
  void writeText(std::string_view text);
  /// Writes one of a list of texts, in quotation marks where it could not be told from its
  /// neighbours otherwise.
  void writeListText(std::string_view text);
  /// Writes a number; further numbers and list texts in the same element follow behind a blank, or
  /// on the next line when the present one is full.
  void writeValue(double value);
  /// Writes an unsigned integer in the same way.
  void writeValue(KtU32 value);
  /// Writes a word without white space in the same way.
  void writeWord(std::string_view word);
  /// Whether the element in hand is a group of values.
  bool inGroup() const noexcept;
  /// Gives the element in hand a start and an end tag even if nothing is written into it.
  void forceContent();

  /// Writes a whole document with the object in a root element named by its token.
  ///
  /// @return whether all was written
  bool writeDocument(const KtXmlObject& object);
  /// Writes an object into a file; see `writeDocument`. A file that can't be written is reported.
  static bool writeFile(const std::string& fileName, const KtXmlObject& object);
  /// An object as the text of a document.
  static std::string writeString(const KtXmlObject& object);

  /// Hands everything written so far to the stream.
  void flush();
  /// Reports "document: message" as an error and counts it.
  void reportError(const std::string& message);
  /// How many errors were counted so far.
  unsigned errorCount() const noexcept { return errors_; }
  /// Whether the stream takes no more.
  bool failed() const noexcept { return failed_; }

 private:
  struct Element {
    std::string name;
    bool hasText = false;
    bool multiLine = false;  // some child stands on a line of its own
    bool group = false;
  };

  void open(const KtToken& token);
  void closeStartTag();
  void newLine(std::size_t depth);
  void put(std::string_view text);
  void putEscaped(std::string_view text, bool inAttribute);
  bool beginValue(std::size_t length);
  void endAttribute();

  std::string fileName_;
  std::ostream& stream_;
  std::string buffer_;
  std::vector<Element> elements_;  // the open ones are the first depth_; the rest is for reuse
  std::size_t depth_ = 0;
  std::size_t lineStart_ = 0;  // where the present line starts in the buffer, if it is in there
  std::size_t flushedOnLine_ = 0;
  bool rootWritten_ = false;
  bool startTagOpen_ = false;
  bool inAttribute_ = false;
  bool failed_ = false;
  unsigned errors_ = 0;
};
