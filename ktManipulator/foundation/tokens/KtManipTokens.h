/// @file
/// The vocabulary: the names of all elements in the library's files.
#pragma once

#include "ktManipulator/foundation/xml/KtToken.h"

/// Element names and words of the library's files. They are made while the library loads, in the
/// order in which they stand in `KtManipTokens.def`, and never change.
namespace KtManip {

/// The namespace of the vocabulary; every element name is this followed by its local name.
KT_EXPORT extern const KtToken ns;

#define KT_NAMESPACED(constant, localName) KT_EXPORT extern const KtToken constant;  ///< Private.
#define KT_PLAIN(constant, word) KT_EXPORT extern const KtToken constant;            ///< Private.
#include "ktManipulator/foundation/tokens/KtManipTokens.def"
#undef KT_NAMESPACED
#undef KT_PLAIN

}  // namespace KtManip
