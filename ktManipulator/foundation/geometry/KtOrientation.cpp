#include "ktManipulator/foundation/geometry/KtOrientation.h"

void KtOrientation::getAngleAxis(double& angle, KtVector& axis) const noexcept {
  const KtVector u(q_[1], q_[2], q_[3]);
  const double s = u.mag();
  if (!(s > 0.0)) {
    angle = 0.0;
    axis = KtVector::xVector(1.0);
    return;
  }
  // The arc tangent stays exact near 0 and pi, where an arc cosine loses half the digits.
  const double sign = q_[0] < 0.0 ? -1.0 : 1.0;
  angle = 2.0 * std::atan2(s, sign * q_[0]);
  axis = u * (sign / s);
}

void KtOrientation::setFromDcmColumns(const KtVector& c0, const KtVector& c1,
                                      const KtVector& c2) noexcept {
  const double squares[4] = {1.0 + c0.x + c1.y + c2.z, 1.0 + c0.x - c1.y - c2.z,
                             1.0 - c0.x + c1.y - c2.z, 1.0 - c0.x - c1.y + c2.z};
  int largest = 0;
  for (int i = 1; i < 4; ++i) {
    if (squares[i] > squares[largest]) largest = i;
  }
  switch (largest) {
    case 0:
      *this = {squares[0], c1.z - c2.y, c2.x - c0.z, c0.y - c1.x};
      break;
    case 1:
      *this = {c1.z - c2.y, squares[1], c0.y + c1.x, c2.x + c0.z};
      break;
    case 2:
      *this = {c2.x - c0.z, c0.y + c1.x, squares[2], c1.z + c2.y};
      break;
    default:
      *this = {c0.y - c1.x, c2.x + c0.z, c1.z + c2.y, squares[3]};
      break;
  }
  normalize();
}

void KtOrientation::integrateReferenceFrameAngularVelocity(const KtVector& omega,
                                                           double dt) noexcept {
  const double angle = omega.mag() * dt;
  // sin(angle/2) / |omega|, with its limit for a small angle: no division by a vanishing rate.
  const double half = 0.5 * angle;
  const double scale =
      0.5 * dt * (std::abs(half) < 1e-4 ? 1.0 - half * half / 6.0 : std::sin(half) / half);
  const KtVector u = omega * scale;
  *this = KtOrientation(std::cos(half), u.x, u.y, u.z) * *this;
  normalize();
}

bool KtOrientation::approxEq(const KtOrientation& other, double tolerance) const noexcept {
  bool same = true;
  bool opposite = true;
  for (int i = 0; i < 4; ++i) {
    same = same && KtMath::approxEq(q_[i], other.q_[i], tolerance);
    opposite = opposite && KtMath::approxEq(q_[i], -other.q_[i], tolerance);
  }
  return same || opposite;
}
