#pragma once

#include <map>
#include <string>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/xml/KtXmlObject.h"

class KtToken;

/// A table of creator functions by element name. A reader may hold one, and holders of polymorphic
/// members ask it for names that they don't know themselves.
class KT_EXPORT KtXmlFactory {
 public:
  /// Makes a new default-constructed object, which the caller owns.
  using Creator = KtXmlObject* (*)();

  virtual ~KtXmlFactory() = default;

  /// A new object of the class that the name belongs to, owned by the caller; null for an unknown
  /// name.
  virtual KtXmlObject* newObjectFromToken(const KtToken& token) const;

  /// The creator of a name in such a table, or null. The name of an element in the library's
  /// namespace fits an entry without a namespace too; see `KtXml::isNamedBy`.
  static Creator findCreator(const std::map<std::string, Creator>& creators, const KtToken& token);

  /// Enters a creator, in place of an earlier one of that name.
  void registerCreator(const KtToken& token, Creator creator);
  /// The creators by the text of their names.
  const std::map<std::string, Creator>& creatorMap() const noexcept { return creators_; }

 private:
  std::map<std::string, Creator> creators_;
};
