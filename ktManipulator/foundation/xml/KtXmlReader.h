#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <string>
#include <string_view>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"

class KtToken;
class KtXmlFactory;
class KtXmlObject;

/// A pull reader over one XML document.
///
/// The document is parsed piece by piece, in UTF-8, UTF-16, ISO-8859-1 or US-ASCII. Whatever is
/// wrong with it is reported with file and line and counted. A document that is not well-formed, is
/// nested deeper than `depthLimit()` or has a document type declaration (the road of entity
/// attacks) ends the events at that place; what was read before stays.
///
/// An element without a namespace counts as one of the library's own namespace.
class KT_EXPORT KtXmlReader {
 public:
  /// Kinds of events.
  enum Event : unsigned {
    kNone = 0,   ///< The document is over, or broken.
    kStart = 1,  ///< Start of an element with content; `<x></x>` has content too.
    kEnd = 2,    ///< End of an element.
    kEmpty = 3,  ///< Element without content, `<x/>`: start and end in one.
    kText = 4    ///< Character data that is more than white space.
  };

  /// Deepest nesting of elements that is read unless `setDepthLimit` says otherwise.
  static constexpr unsigned kDefaultDepthLimit = 3000;

  /// Opens a file. A file that can't be opened is reported at the first event.
  explicit KtXmlReader(const std::string& fileName);
  /// Reads a stream, which has to outlive the reader.
  ///
  /// @param fileName  name of the document for messages
  KtXmlReader(const std::string& fileName, std::istream& stream);
  virtual ~KtXmlReader();
  KtXmlReader(const KtXmlReader&) = delete;
  KtXmlReader& operator=(const KtXmlReader&) = delete;

  /// Moves to the next event and returns its kind. White space between elements and comments are
  /// no events.
  virtual unsigned nextEvent();
  /// Kind of the event in hand.
  virtual unsigned currentEvent();
  /// Name of the element in hand.
  virtual const KtToken& currentToken();
  /// Moves to the next attribute of the element in hand and returns its name; an empty name behind
  /// the last one.
  virtual const KtToken& nextAttributeToken();
  /// Text of the attribute last reached.
  virtual const std::string& attributeValue();
  /// How many attributes the element in hand has, namespace declarations not counted.
  virtual unsigned attributeCount();
  /// In data mode, whether a further value stands in the character data. When there is none, the
  /// end of the group is consumed and data mode is left; outside of data mode false.
  virtual bool hasMoreData();
  /// Enters data mode, in which the white-space separated values of the character data in hand are
  /// read one by one by the `read` of a basic type; or leaves it.
  virtual void setDataMode(bool value);
  /// Name of the document, for messages.
  virtual const char* fileName();
  /// Line of the event or value in hand, from 1.
  virtual int lineCount();
  /// The table of creators that holders ask for names they don't know, or null.
  virtual KtXmlFactory* factory();

  /// Sets the table of creators, which is not owned and may be null.
  void setFactory(KtXmlFactory* factory) noexcept;
  /// Deepest nesting of elements that is read. Reading recurses with the nesting, so a program
  /// that raises the limit has to provide the stack.
  void setDepthLimit(unsigned levels) noexcept;
  /// Deepest nesting of elements that is read.
  unsigned depthLimit() const noexcept;

  /// Reads a whole document into an object, up to the end of the document.
  ///
  /// @param object  receives the content of the root element, which must be named `object.token()`
  /// @return        whether nothing at all was wrong with the document. When false, messages have
  ///                been given, and the object holds what could be read.
  bool readDocument(KtXmlObject& object);
  /// The same with the root element named as given.
  bool readDocument(KtXmlObject& object, const KtToken& root);
  /// Reads a file into an object; see `readDocument`.
  static bool readFile(const std::string& fileName, KtXmlObject& object);
  /// Reads a text into an object; see `readDocument`. Messages name the document "text".
  static bool readString(const std::string& text, KtXmlObject& object);

  // What the `read` operations of persistent types need beside the events.

  /// Marks the element in hand (at a start or an element without content) for `finishElement`.
  unsigned mark() const noexcept;
  /// Consumes what is left of the marked element, its end included; nothing if that has happened.
  void finishElement(unsigned mark);
  /// Moves to the next child of the marked element, over and with complaints about character data.
  ///
  /// @return `kStart` or `kEmpty` with the child in hand; `kEnd` when the element's end has been
  ///         consumed; `kNone` at the end of a broken document
  unsigned nextChild(unsigned mark);
  /// Calls a function for every child of the element in hand, with the child in hand, and consumes
  /// what it left over of the child; at the end the element's end has been consumed.
  template <class ReadChild>
  void forEachChild(ReadChild&& readOne) {
    const unsigned own = mark();
    for (unsigned event = nextChild(own); event == kStart || event == kEmpty;
         event = nextChild(own)) {
      const unsigned child = mark();
      readOne();
      finishElement(child);
    }
  }
  /// Lets the object read the element in hand and consumes what it left over of it.
  bool readChild(KtXmlObject& object);

  /// Whether values are read one by one from a group.
  bool dataMode() const noexcept;
  /// Reads the next value in data mode; false when there is none. A value ends at white space; one
  /// that begins with a quotation mark ends at the closing one, with white space inside and a
  /// backslash before a quotation mark or a backslash. The view holds until the next call on the
  /// reader.
  bool nextValue(std::string_view& value);
  /// Reads the character data of the element in hand, and its end. Child elements are complained
  /// about and left out.
  ///
  /// @return false if there were child elements, or if the document broke off
  bool readText(std::string& text);
  /// How much memory may be set aside now for elements that a count announces: what the rest of the
  /// document can fill, out of an allowance for the whole document that grows with its bytes. A
  /// file can announce anything, at any number of places.
  ///
  /// @param count         announced number of elements
  /// @param elementBytes  memory that one of them takes
  /// @return              for how many elements memory may be set aside
  std::size_t grantMemory(std::size_t count, std::size_t elementBytes) noexcept;

  /// Reports "file:line: message" as an error and counts it.
  void reportError(const std::string& message);
  /// Counts an error that was reported elsewhere.
  void countError() noexcept;
  /// How many errors were counted so far.
  unsigned errorCount() const noexcept;
  /// Whether the document turned out to be unreadable: no further events come.
  bool failed() const noexcept;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};
