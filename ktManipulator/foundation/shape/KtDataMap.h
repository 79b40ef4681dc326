#pragma once

#include <string>

#include "ktManipulator/foundation/containers/KtXmlMapType.h"
#include "ktManipulator/foundation/xml/KtXmlPersistent.h"

/// The properties of a surface: reals by name, such as spring and damper constants for contact or
/// the parts of a colour.
class KT_EXPORT KtDataMap
    : public KtXmlPersistent<KtDataMap,
                             KtXmlMapType<KtXmlBasicType<std::string>, KtXmlBasicType<double>>> {
 public:
  /// The map under it, with its further operations.
  using Map = KtXmlMapType<KtXmlBasicType<std::string>, KtXmlBasicType<double>>;
  using Map::add;
  using Map::lookup;

  /// Adds a property, or gives one that is there already the new value.
  void add(const std::string& key, double value) { Map::add(key, value); }
  /// Copies the value of a property; false, and the argument unchanged, if there is none.
  bool lookup(const std::string& key, double& value) const {
    const auto* found = lookupPointer(key);
    if (found != nullptr) value = found->value();
    return found != nullptr;
  }

  /// How a bounding volume is displayed: the parts of a translucent colour, each in [0, 1]. It has
  /// no properties of contact.
  static const KtDataMap& boundingColor();

  bool operator==(const KtDataMap&) const = default;
  static const KtToken& classToken();
};

/// The properties of surfaces by the label of the surface, which also names its material.
using KtSurfaceMap = KtXmlMapType<KtXmlBasicType<std::string>, KtDataMap>;

extern template class KtXmlMapType<KtXmlBasicType<std::string>, KtXmlBasicType<double>>;
extern template class KtXmlMapType<KtXmlBasicType<std::string>, KtDataMap>;
