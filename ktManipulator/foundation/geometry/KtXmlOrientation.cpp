#include "ktManipulator/foundation/geometry/KtXmlOrientation.h"

#include "ktManipulator/foundation/xml/KtXmlReals.h"

bool KtXmlOrientation::read(KtXmlReader& reader) {
  if (!KtXmlObject::read(reader)) return false;
  double reals[4] = {(*this)[0], (*this)[1], (*this)[2], (*this)[3]};
  const bool ok = Kt::detail::readReals(reader, reals);
  *this = KtOrientation(reals[0], reals[1], reals[2], reals[3]);
  return ok;
}

bool KtXmlOrientation::write(KtXmlWriter& writer) const {
  const double reals[4] = {(*this)[0], (*this)[1], (*this)[2], (*this)[3]};
  return KtXmlObject::write(writer) && Kt::detail::writeReals(writer, reals);
}

void KtXmlOrientation::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  Kt::detail::describeReals(schema, 4);
}
