/// @file
/// Operations on lists of joint values that the state records share.
#pragma once

#include <algorithm>

#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/core/KtMath.h"
#include "ktManipulator/foundation/matrix/KtReArray.h"

namespace Kt::detail {

/// Whether two lists are equally long and no pair differs by more than the tolerance.
inline bool approxEqual(const KtXmlVectorType<KtXmlBasicType<double>>& a,
                        const KtXmlVectorType<KtXmlBasicType<double>>& b, double tolerance) {
  return std::ranges::equal(a.elements(), b.elements(),
                            [=](double x, double y) { return KtMath::approxEq(x, y, tolerance); });
}

/// Makes a list the first `count` entries of (1 - f) a + f b. It may be a or b.
inline void interpolate(const KtXmlVectorType<KtXmlBasicType<double>>& a,
                        const KtXmlVectorType<KtXmlBasicType<double>>& b, double f, KtU32 count,
                        KtXmlVectorType<KtXmlBasicType<double>>& out) {
  out.resize(count);
  const auto* x = a.elements().data();
  const auto* y = b.elements().data();
  auto* z = out.elements().data();
  for (KtU32 i = 0; i < count; ++i) z[i] = (1.0 - f) * x[i] + f * y[i];
}

/// Makes a list the first column of an array. An array that has rows but no column changes nothing.
inline void setFromColumn(const KtReArray& array, KtXmlVectorType<KtXmlBasicType<double>>& out) {
  const KtU32 count = array.rows();
  if (count > 0 && array.columns() == 0) return;
  out.resize(count);
  auto* z = out.elements().data();
  for (KtU32 i = 0; i < count; ++i) z[i] = array[i][0];
}

}  // namespace Kt::detail
