#include "ktManipulator/foundation/geometry/KtXmlVector.h"

#include "ktManipulator/foundation/containers/KtXmlMapType.h"
#include "ktManipulator/foundation/xml/KtXmlReals.h"

bool KtXmlVector::read(KtXmlReader& reader) {
  if (!KtXmlObject::read(reader)) return false;
  double reals[3] = {x, y, z};
  const bool ok = Kt::detail::readReals(reader, reals);
  *this = KtVector(reals[0], reals[1], reals[2]);
  return ok;
}

bool KtXmlVector::write(KtXmlWriter& writer) const {
  const double reals[3] = {x, y, z};
  return KtXmlObject::write(writer) && Kt::detail::writeReals(writer, reals);
}

void KtXmlVector::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  Kt::detail::describeReals(schema, 3);
}

template class KtXmlVectorType<KtXmlVector>;
template class KtXmlMapType<KtXmlBasicType<std::string>, KtXmlVector>;
