/// @file
/// What lists and sets share: the count attribute, and the two forms of their elements.
#pragma once

#include <cstddef>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/core/KtTypes.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlTokens.h"

class KtXmlWriter;

namespace Kt::detail {

/// What the count attribute of the element in hand announces.
struct XmlCount {
  long expected = 0;        ///< The announced number of elements; 0 without the attribute.
  bool refused = false;     ///< No container can have so many; reported.
  std::size_t reserve = 0;  ///< For how many elements memory may be set aside now.
};

/// Reads the attributes of the element in hand.
///
/// @param elementBytes  memory that one element takes in its container
KT_EXPORT XmlCount readXmlCount(KtXmlReader& reader, std::size_t elementBytes);

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
