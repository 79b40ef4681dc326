#include "ktManipulator/foundation/matrix/KtSpatialMatrix.h"

#include <limits>
#include <span>

#include "ktManipulator/foundation/core/KtMath.h"
#include "ktManipulator/foundation/xml/KtXmlReals.h"

bool KtSpatialMatrix::read(KtXmlReader& reader) {
  return KtXmlObject::read(reader) && Kt::detail::readReals(reader, std::span(m_[0], 9));
}

bool KtSpatialMatrix::write(KtXmlWriter& writer) const {
  return KtXmlObject::write(writer) && Kt::detail::writeReals(writer, std::span(m_[0], 9));
}

void KtSpatialMatrix::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  Kt::detail::describeReals(schema, 9);
}

bool KtSpatialMatrix::choleskyDecomposition(KtSpatialMatrix& factor) const noexcept {
  constexpr double rounding = 3.0 * std::numeric_limits<double>::epsilon();
  KtSpatialMatrix l;
  bool positive = true;
  for (int j = 0; j < 3; ++j) {
    double pivot = m_[j][j];
    for (int k = 0; k < j; ++k) pivot -= l.m_[j][k] * l.m_[j][k];
    const double least = KtMath::nonZeroPos(rounding * m_[j][j]);
    if (pivot <= least) {
      l.m_[j][j] = std::sqrt(least);
      positive = false;
      continue;
    }
    positive = positive && pivot > least;  // not for NaN, which is left as it is
    l.m_[j][j] = std::sqrt(pivot);
    for (int i = j + 1; i < 3; ++i) {
      double x = m_[i][j];
      for (int k = 0; k < j; ++k) x -= l.m_[i][k] * l.m_[j][k];
      l.m_[i][j] = x / l.m_[j][j];
    }
  }
  factor = l;
  return positive;
}

bool KtSpatialMatrix::getSymmetricPositiveDefiniteInverse(KtSpatialMatrix& out) const noexcept {
  KtSpatialMatrix l;
  const bool positive = choleskyDecomposition(l);
  // L^-1, then its product L^-T L^-1.
  const double a = 1.0 / l.m_[0][0];
  const double b = 1.0 / l.m_[1][1];
  const double c = 1.0 / l.m_[2][2];
  const double ba = -l.m_[1][0] * a * b;
  const double cb = -l.m_[2][1] * b * c;
  const double ca = -(l.m_[2][0] * a + l.m_[2][1] * ba) * c;
  const double xy = ba * b + ca * cb;
  const double xz = ca * c;
  const double yz = cb * c;
  out = {a * a + ba * ba + ca * ca, xy, xz, xy, b * b + cb * cb, yz, xz, yz, c * c};
  return positive;
}
