#include "ktManipulator/foundation/xml/KtXmlComponentMap.h"

#include <algorithm>

#include "ktManipulator/foundation/xml/KtXmlTokens.h"

void KtXmlComponentMap::add(const KtToken& token, KtXmlObject* component, bool readOnly) {
  if (const Entry* present = find(token)) {
    entries_[static_cast<std::size_t>(present - entries_.data())] = {token, component, readOnly};
  } else {
    entries_.push_back({token, component, readOnly});
  }
}

const KtXmlComponentMap::Entry* KtXmlComponentMap::find(const KtToken& token) const noexcept {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return KtXml::isNamedBy(token, entry.token);
  });
  return found == entries_.end() ? nullptr : &*found;
}
