/// @file
/// The count attribute of containers.
#pragma once

#include <cstddef>

#include "ktManipulator/foundation/core/KtExport.h"
#include "ktManipulator/foundation/core/KtTypes.h"

class KtXmlReader;
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

}  // namespace Kt::detail
