/// @file
/// The binary form of counts and lists of reals, in the machine's byte order. What is read may come
/// from anywhere: memory is asked for only as numbers arrive, whatever the count announces.
#pragma once

#include <istream>
#include <ostream>

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"

namespace Kt::detail {

/// Reads a count, 4 bytes; false, and the count unchanged, at a cut-off stream.
KT_EXPORT bool readBinaryCount(std::istream& stream, KtU32& count);
/// Writes what `readBinaryCount` reads.
KT_EXPORT void writeBinaryCount(std::ostream& stream, KtU32 count);

/// Reads a count and so many reals, 8 bytes each; false, and the list unchanged, at a cut-off
/// stream.
KT_EXPORT bool readBinaryList(std::istream& stream, KtXmlVectorType<KtXmlBasicType<double>>& list);
/// Writes what `readBinaryList` reads.
KT_EXPORT void writeBinaryList(std::ostream& stream,
                               const KtXmlVectorType<KtXmlBasicType<double>>& list);

}  // namespace Kt::detail
