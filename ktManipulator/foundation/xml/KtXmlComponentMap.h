#pragma once

#include <vector>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/xml/KtToken.h"

class KtXmlObject;

/// The named components of one compound object, in the order of their registration.
class KT_EXPORT KtXmlComponentMap {
 public:
  /// A component: a member of the object that owns the table.
  struct Entry {
    KtToken token;           ///< Name of the component's element or attribute.
    KtXmlObject* component;  ///< The member; not owned.
    bool readOnly;           ///< Read when a file has it, never written.
  };

  /// Adds a component behind the others; one of the same name is replaced where it stands.
  void add(const KtToken& token, KtXmlObject* component, bool readOnly);
  /// The entry that a name of a file belongs to (see `KtXml::isNamedBy`), or null.
  const Entry* find(const KtToken& token) const noexcept;
  /// All entries, in order.
  const std::vector<Entry>& entries() const noexcept { return entries_; }
  /// How many components there are.
  std::size_t size() const noexcept { return entries_.size(); }
  /// Whether there is none.
  bool empty() const noexcept { return entries_.empty(); }

 private:
  std::vector<Entry> entries_;
};
