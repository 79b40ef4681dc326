#include "ktManipulator/foundation/matrix/KtSecondMoment.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "ktManipulator/foundation/xml/KtXmlReals.h"

namespace {

constexpr double kLeastRatio = 1e-15;    // of a valid tensor's least eigenvalue to its largest
constexpr double kTriangleSlack = 1e-9;  // relative to the largest eigenvalue
constexpr double kRaisedRatio = 1e-9;    // the ratio to which a repair raises the least
constexpr double kPointInertia = 1e-9;   // kg m^2, for what has no extent
constexpr double kNothing = 1e-250;      // entries up to this are no inertia
constexpr double kNotFinite = 1e250;     // entries from this on are no number

struct Principal {
  double values[3];
  KtVector axes[3];  // right-handed
};

// Largest magnitude among the six numbers; infinite if one is NaN or beyond the bound.
double magnitude(const double (&j)[6]) {
  double largest = 0.0;
  for (const double x : j) {
    if (!(std::abs(x) < kNotFinite)) return std::numeric_limits<double>::infinity();
    largest = std::max(largest, std::abs(x));
  }
  return largest;
}

// Jacobi's method: rotates one product after the other away, each by the smaller of the possible
// angles, so that axes near the principal ones stay where they are. G. H. Golub, C. F. Van Loan,
// Matrix Computations, 4th edition 2013, section 8.5.
Principal principal(const double (&j)[6], double scale) {
  double a[3][3] = {{j[0], j[3], j[4]}, {j[3], j[1], j[5]}, {j[4], j[5], j[2]}};
  Principal result{{}, {KtVector::xVector(1.0), KtVector::yVector(1.0), KtVector::zVector(1.0)}};
  constexpr int pairs[3][3] = {{0, 1, 2}, {0, 2, 1}, {1, 2, 0}};  // and the index left over
  const double negligible = 4.0 * std::numeric_limits<double>::epsilon() * scale;
  // Converges quadratically, in a handful of sweeps.
  for (int sweep = 0; sweep < 30; ++sweep) {
    if (std::max({std::abs(a[0][1]), std::abs(a[0][2]), std::abs(a[1][2])}) <= negligible) break;
    for (const auto& [p, q, r] : pairs) {
      if (a[p][q] == 0.0) continue;
      const double cotangent = (a[q][q] - a[p][p]) / (2.0 * a[p][q]);  // of twice the angle
      const double t = (cotangent < 0.0 ? -1.0 : 1.0) /
                       (std::abs(cotangent) + std::sqrt(cotangent * cotangent + 1.0));
      const double c = 1.0 / std::sqrt(t * t + 1.0);
      const double s = t * c;
      a[p][p] -= t * a[p][q];
      a[q][q] += t * a[p][q];
      a[p][q] = a[q][p] = 0.0;
      const double rp = a[r][p];
      const double rq = a[r][q];
      a[r][p] = a[p][r] = c * rp - s * rq;
      a[r][q] = a[q][r] = s * rp + c * rq;
      const KtVector axis = result.axes[p];
      result.axes[p] = axis * c - result.axes[q] * s;
      result.axes[q] = axis * s + result.axes[q] * c;
    }
  }
  for (int i = 0; i < 3; ++i) result.values[i] = a[i][i];
  return result;
}

// Projects eigenvalues, with c the largest and a the least, onto the cone of those that keep the
// triangle rule: onto its face c = a + b or, from beyond the end of that face, onto the edge
// (0, t, t).
void keepTriangle(double& a, double& b, double& c) {
  const double missing = c - (a + b);
  if (missing <= 0.0) return;
  if (b <= 2.0 * a + c) {
    const double step = missing / 3.0;
    a += step;
    b += step;
    c -= step;
  } else {
    a = 0.0;
    b = c = 0.5 * (b + c);
  }
}

}  // namespace

bool KtSecondMoment::read(KtXmlReader& reader) {
  return KtXmlObject::read(reader) && Kt::detail::readReals(reader, j_);
}

bool KtSecondMoment::write(KtXmlWriter& writer) const {
  return KtXmlObject::write(writer) && Kt::detail::writeReals(writer, j_);
}

void KtSecondMoment::writeSchema(KtXmlSchema& schema) const {
  KtXmlObject::writeSchema(schema);
  Kt::detail::describeReals(schema, 6);
}

void KtSecondMoment::principalOrientation(KtOrientation& r) const {
  r = KtOrientation();
  const double scale = magnitude(j_);
  if (!std::isfinite(scale)) return;
  const Principal p = principal(j_, scale);
  r.setFromDcmColumns(p.axes[0], p.axes[1], p.axes[2]);
}

bool KtSecondMoment::approxEq(const KtSecondMoment& other, double tolerance) const {
  for (int i = 0; i < 6; ++i) {
    if (!KtMath::approxEq(j_[i], other.j_[i], tolerance)) return false;
  }
  return true;
}

bool KtSecondMoment::isValid() const noexcept {
  const double scale = magnitude(j_);
  if (!(scale > kNothing) || !std::isfinite(scale)) return false;
  Principal p = principal(j_, scale);
  std::sort(p.values, p.values + 3);
  const auto [a, b, c] = p.values;
  return a > 0.0 && a >= kLeastRatio * c && c <= a + b + kTriangleSlack * c;
}

void KtSecondMoment::makeValid() noexcept {
  if (isValid()) return;
  const double scale = magnitude(j_);
  if (std::isfinite(scale)) {
    Principal p = principal(j_, scale);
    double* order[3] = {&p.values[0], &p.values[1], &p.values[2]};
    std::sort(order, order + 3, [](const double* x, const double* y) { return *x < *y; });
    double& largest = *order[2];
    keepTriangle(*order[0], *order[1], largest);
    for (double& value : p.values) value = std::max(value, kRaisedRatio * largest);
    KtSecondMoment repaired;
    for (int i = 0; i < 3; ++i) {
      const KtVector& u = p.axes[i];
      repaired += KtSecondMoment(u.x * u.x, u.y * u.y, u.z * u.z, u.x * u.y, u.x * u.z, u.y * u.z) *
                  p.values[i];
    }
    *this = repaired;
  }
  if (!isValid()) set(kPointInertia, kPointInertia, kPointInertia, 0.0, 0.0, 0.0);
}
