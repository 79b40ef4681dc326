/// @file
/// What lists and sets share: the count attribute, and the two forms of their elements.
#pragma once

#include <cstddef>
#include <exception>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlTokens.h"

class KtXmlWriter;

namespace Kt::detail {

/// The number that the count attribute of the element in hand announces; 0 without the attribute.
KT_EXPORT long readXmlCount(KtXmlReader& reader);

/// Whether a list can have so many elements; reported if not.
KT_EXPORT bool checkXmlCount(KtXmlReader& reader, long count);

/// Sets memory aside in a vector for the announced elements, as far as the document's bytes justify
/// it and the machine has it.
template <class Vector>
void reserveXmlCount(KtXmlReader& reader, long count, Vector& vector) {
  if (reader.currentEvent() == KtXmlReader::kEmpty) return;
  try {
    vector.reserve(
        reader.grantMemory(static_cast<std::size_t>(count), sizeof(typename Vector::value_type)));
  } catch (const std::exception&) {
    // Only speed is lost: the elements that are really there may fit all the same.
  }
}

/// Writes the count attribute of the element just opened.
KT_EXPORT bool writeXmlCount(KtXmlWriter& writer, std::size_t count);

/// Reads the children of the element in hand as the elements of a list: those of a group of values
/// one by one, any other child as one element.
///
/// @param className  for the message that is given for a group without values
/// @param isBasic    whether the elements are single values
/// @param readOne    reads the element in hand
template <class ReadOne>
void readXmlElements(KtXmlReader& reader, const char* className, bool isBasic, ReadOne&& readOne) {
  reader.forEachChild([&] {
    if (!(reader.currentToken() == KtXml::KtGroupToken)) {
      readOne();
      return;
    }
    if (isBasic && reader.currentEvent() == KtXmlReader::kStart &&
        reader.nextEvent() == KtXmlReader::kText) {
      reader.setDataMode(true);
      while (reader.hasMoreData()) readOne();
    } else {
      Kt::Print::instance().write(Kt::Print::kError,
                                  "%s Error: XML parser should be in data mode\n", className);
    }
  });
}

}  // namespace Kt::detail
