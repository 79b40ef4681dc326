/// @file
/// The text and binary form of values that are a fixed number of reals.
#pragma once

#include <cstddef>
#include <istream>
#include <ostream>
#include <span>

#include "ktManipulator/foundation/core/KtExport.h"

class KtXmlReader;
class KtXmlSchema;
class KtXmlWriter;

namespace Kt::detail {

/// Reads the text of the element in hand as exactly so many reals; otherwise a message, false, and
/// the values unchanged.
KT_EXPORT bool readReals(KtXmlReader& reader, std::span<double> values);
/// Writes reals as the text of the element in hand.
KT_EXPORT bool writeReals(KtXmlWriter& writer, std::span<const double> values);
/// Declares a text of so many reals.
KT_EXPORT void describeReals(KtXmlSchema& schema, std::size_t count);

/// Reads reals in the machine's byte order; false, and the values unchanged, at a cut-off stream.
KT_EXPORT bool readBinary(std::istream& stream, std::span<double> values);
/// Writes reals in the machine's byte order.
KT_EXPORT bool writeBinary(std::ostream& stream, std::span<const double> values);

}  // namespace Kt::detail
