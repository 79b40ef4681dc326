/// @file
/// Definitions of `KtXmlRecord`, for sources that instantiate it.
#pragma once

#include <array>
#include <string>

#include "ktManipulator/foundation/containers/KtXmlBasicType.h"
#include "ktManipulator/foundation/geometry/KtOrientation.h"
#include "ktManipulator/foundation/geometry/KtVector.h"
#include "ktManipulator/foundation/xml/KtToken.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/foundation/xml/KtXmlReals.h"
#include "ktManipulator/foundation/xml/KtXmlRecord.h"
#include "ktManipulator/foundation/xml/KtXmlSchema.h"
#include "ktManipulator/foundation/xml/KtXmlWriter.h"

namespace Kt::detail {

inline std::array<double, 3> realsOf(const KtVector& v) {
  return {v.x, v.y, v.z};
}
inline std::array<double, 4> realsOf(const KtOrientation& q) {
  return {q[0], q[1], q[2], q[3]};
}
inline std::array<double, 1> realsOf(double value) {
  return {value};
}
inline void setFromReals(KtVector& v, const std::array<double, 3>& r) {
  v = {r[0], r[1], r[2]};
}
inline void setFromReals(KtOrientation& q, const std::array<double, 4>& r) {
  q = {r[0], r[1], r[2], r[3]};
}
inline void setFromReals(double& value, const std::array<double, 1>& r) {
  value = r[0];
}

template <class Field>
bool readField(KtXmlReader& reader, Field& field) {
  if constexpr (std::is_base_of_v<KtXmlObject, Field>) {
    return field.read(reader);
  } else if constexpr (std::is_integral_v<Field>) {
    KtXmlBasicType<KtU32> number;
    if (!number.read(reader)) return false;
    field = static_cast<Field>(number.value());
    return true;
  } else {
    auto reals = realsOf(field);
    if (!readReals(reader, reals)) return false;
    setFromReals(field, reals);
    return true;
  }
}

template <class Field>
bool writeField(KtXmlWriter& writer, const Field& field) {
  if constexpr (std::is_base_of_v<KtXmlObject, Field>) {
    return field.write(writer);
  } else if constexpr (std::is_integral_v<Field>) {
    return KtXmlBasicType<KtU32>(static_cast<KtU32>(field)).write(writer);
  } else {
    return writeReals(writer, realsOf(field));
  }
}

template <class Field>
void describeField(KtXmlSchema& schema, const Field& field) {
  if constexpr (std::is_base_of_v<KtXmlObject, Field>) {
    field.writeSchema(schema);
  } else if constexpr (std::is_integral_v<Field>) {
    KtXmlBasicType<KtU32>().writeSchema(schema);
  } else if constexpr (std::is_same_v<Field, double>) {
    KtXmlBasicType<double>().writeSchema(schema);
  } else {
    describeReals(schema, realsOf(field).size());
  }
}

}  // namespace Kt::detail

template <class Cls>
bool KtXmlRecord<Cls>::read(KtXmlReader& reader) {
  if (!KtXmlObject::read(reader)) return false;
  bool ok = true;
  for (unsigned i = 0, count = reader.attributeCount(); i < count; ++i) {
    const KtToken& name = reader.nextAttributeToken();
    // Attributes of other vocabularies, such as xsi:schemaLocation, may stand anywhere.
    if (!name.namespaceName().empty()) continue;
    reader.reportError("\"" + name.text() + "\" is not an attribute of " +
                       std::string(this->token().localName()));
    ok = false;
  }
  reader.forEachChild([&] {
    const KtToken& name = reader.currentToken();
    bool known = false;
    Cls::forEachField(static_cast<Cls&>(*this), [&](const KtToken& token, auto& field) {
      if (known || !(token == name)) return;
      known = true;
      ok = Kt::detail::readField(reader, field) && ok;
    });
    if (!known) {
      reader.reportError("<" + std::string(name.localName()) + "> is not an element of " +
                         std::string(this->token().localName()));
      ok = false;
    }
  });
  return ok && !reader.failed();
}

template <class Cls>
bool KtXmlRecord<Cls>::write(KtXmlWriter& writer) const {
  if (!KtXmlObject::write(writer)) return false;
  bool ok = true;
  Cls::forEachField(static_cast<const Cls&>(*this), [&](const KtToken& token, const auto& field) {
    writer.beginElement(token);
    ok = Kt::detail::writeField(writer, field) && ok;
    writer.endElement();
  });
  return ok;
}

template <class Cls>
void KtXmlRecord<Cls>::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  if (!schema.beginType(*this)) return;
  schema.setContentModel(KtXmlSchema::kAll);
  Cls::forEachField(static_cast<const Cls&>(*this), [&](const KtToken& token, const auto& field) {
    schema.beginElement(token, KtXmlSchema::kExactlyOne);
    Kt::detail::describeField(schema, field);
    schema.endElement();
  });
  schema.endType();
}
