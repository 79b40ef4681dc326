/// @file
/// The element names of the persistence layer: the structural tags of containers and the one
/// attribute that files have.
#pragma once

#include "ktManipulator/foundation/xml/KtToken.h"

/// Names that the persistence layer itself writes and reads.
namespace KtXml {

/// The XML namespace of every element that the library writes. An element of a file without a
/// namespace counts as one of this namespace, so that a file written by hand may leave it out.
inline constexpr const char* namespaceName = "http://ktmanipulator.org/namespace/mn#";

/// The token of a local name in that namespace.
inline KtToken qualifiedToken(const char* localName) {
  return KtToken(std::string(namespaceName) + localName);
}

/// Whether an element or attribute of a file is the one that a token names. Beside equal names, the
/// name of an element in the library's namespace fits a token without a namespace: in a file such a
/// token can't be told from one of that namespace.
inline bool isNamedBy(const KtToken& inFile, const KtToken& token) noexcept {
  return inFile == token || (token.namespaceName().empty() && inFile.localName() == token.text() &&
                             inFile.namespaceName() == namespaceName);
}

KT_EXPORT extern const KtToken KtAddLibrariesToken;  ///< "addLibraries"
KT_EXPORT extern const KtToken KtCountToken;         ///< Attribute "count", without a namespace
KT_EXPORT extern const KtToken KtElementToken;       ///< "element"
KT_EXPORT extern const KtToken KtFirstToken;         ///< "first"
KT_EXPORT extern const KtToken KtGroupToken;         ///< "group"
KT_EXPORT extern const KtToken KtKeyToken;           ///< "key"
KT_EXPORT extern const KtToken KtMapTypeToken;       ///< "map"
KT_EXPORT extern const KtToken KtPairTypeToken;      ///< "pair"
KT_EXPORT extern const KtToken KtSecondToken;        ///< "second"
KT_EXPORT extern const KtToken KtSetTypeToken;       ///< "set"
KT_EXPORT extern const KtToken KtValueToken;         ///< "value"
KT_EXPORT extern const KtToken KtVectorTypeToken;    ///< "vector"
KT_EXPORT extern const KtToken KtBasicTypeToken;     ///< "basic": a single value
KT_EXPORT extern const KtToken KtEnumTypeToken;      ///< "enum": a single enumeration value

}  // namespace KtXml
