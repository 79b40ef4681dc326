#pragma once

#include <functional>
#include <map>
#include <string>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/core/KtOnDemand.h"
#include "ktManipulator/foundation/xml/KtToken.h"
#include "ktManipulator/foundation/xml/KtXmlObject.h"

/// A holder of objects whose concrete class is chosen by element name.
///
/// A concrete holder lists the classes that it accepts in `registerComponentCreators`, which runs
/// before the first element is read. The order of the child elements is the order of the objects.
/// A child that can't be read is reported and skipped; the reading goes on, and its result is
/// false.
class KT_EXPORT KtXmlBaseVariableCompoundType : public KtXmlObject {
 public:
  /// Makes a new default-constructed object, which the caller owns.
  using Creator = KtXmlObject* (*)();
  /// Names that a file lists to ask for further classes.
  using LibraryList = KtXmlVectorType<KtXmlBasicType<std::string>>;

  /// Enters the creators anew by `registerComponentCreators`.
  void xmlInit() override;
  /// Hands each child element to `readValueFromToken`.
  bool read(KtXmlReader& reader) override;
  /// Writes the list of libraries, when there is one.
  bool write(KtXmlWriter& writer) const override;
  /// Declares any number of children of the accepted classes.
  void writeSchema(KtXmlSchema& schema) const override;

  /// Registers the classes that this holder accepts.
  virtual void registerComponentCreators() = 0;
  /// Registers one class by its name, in place of an earlier one of that name.
  virtual void registerComponentCreator(const KtToken& token, KtXmlObject* (*creator)());
  /// The object made by the creator that is registered for the name, owned by the caller; null for
  /// an unknown name.
  virtual KtXmlObject* newObjectFromToken(const KtToken& token) const;
  /// The libraries that the file asked for.
  virtual const LibraryList& addLibraries() const;
  virtual void setAddLibraries(const LibraryList& libraries);
  /// The creators by the text of their names.
  virtual const std::map<std::string, Creator>& creatorMap() const;
  /// Reads the element in hand, whose name decides what it becomes.
  virtual bool readValueFromToken(const KtToken& token, KtXmlReader& reader);
  /// Called after a list of libraries was read: lets each of the named libraries add its creators.
  ///
  /// A file never loads code: a name counts only if the program has registered it with
  /// `registerLibrary`. An unknown name is reported.
  virtual void processLibraries();

  /// Makes a library known to the process: a name, and a function that registers the library's
  /// classes with the holder that it is given.
  static void registerLibrary(const std::string& name,
                              std::function<void(KtXmlBaseVariableCompoundType&)> library);

  /// Two holders without regard to what they hold: equal when they ask for the same libraries.
  bool operator==(const KtXmlBaseVariableCompoundType&) const = default;

 protected:
  KtXmlBaseVariableCompoundType() = default;
  KtXmlBaseVariableCompoundType(const KtXmlBaseVariableCompoundType&) = default;
  KtXmlBaseVariableCompoundType(KtXmlBaseVariableCompoundType&&) = default;
  KtXmlBaseVariableCompoundType& operator=(const KtXmlBaseVariableCompoundType&) = default;
  KtXmlBaseVariableCompoundType& operator=(KtXmlBaseVariableCompoundType&&) = default;

  /// Reads the list of libraries from the element in hand and processes it.
  bool readLibraries(KtXmlReader& reader);

 private:
  LibraryList addLibraries_;
  mutable KtOnDemand<std::map<std::string, Creator>> creators_;
};
