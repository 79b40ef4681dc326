/// @file
/// What the holders of polymorphic members share.
#pragma once

#include <memory>

#include "ktManipulator/foundation/containers/KtXmlBaseVariableCompoundType.h"
#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/xml/KtXmlFactory.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace Kt::detail {

/// A copy of the object as a pointer to its base `E`; null for null.
template <class E>
E* cloneAs(const E* object) {
  return object != nullptr ? dynamic_cast<E*>(object->clone()) : nullptr;
}

/// A new object of a tag: by the holder's creators, or else by the reader's factory; null if
/// neither knows a class derived from `E`.
///
/// An object of a foreign class that the holder's own creator makes is not deleted: who registers
/// such a creator may well keep what it makes.
template <class E>
E* makeHeld(const KtXmlBaseVariableCompoundType& holder, const KtToken& token,
            KtXmlReader& reader) {
  if (auto* element = dynamic_cast<E*>(holder.newObjectFromToken(token))) return element;
  if (reader.factory() == nullptr) return nullptr;
  std::unique_ptr<KtXmlObject> object(reader.factory()->newObjectFromToken(token));
  auto* element = dynamic_cast<E*>(object.get());
  if (element != nullptr) static_cast<void>(object.release());
  return element;
}

/// Writes a held object into a child that is named after its class.
inline bool writeHeld(KtXmlWriter& writer, const KtXmlObject& object) {
  writer.beginObjectElement(object.token());
  const bool ok = object.write(writer);
  writer.endElement();
  return ok;
}

}  // namespace Kt::detail
