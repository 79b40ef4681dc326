#pragma once

/// The spatial arithmetic of the library on bare structs, to measure against.
namespace plain {

struct Vector {
  double x, y, z;
};
struct Quaternion {
  double w, x, y, z;
};
struct Transformation {
  Vector p;
  Quaternion q;
};
struct Spatial {
  Vector linear, angular;
};

inline Vector operator+(Vector a, Vector b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vector operator*(Vector a, double s) {
  return {a.x * s, a.y * s, a.z * s};
}
inline Vector cross(Vector a, Vector b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline Vector rotate(Quaternion q, Vector v) {
  const Vector u{q.x, q.y, q.z};
  const Vector t = cross(u, v) * 2.0;
  return v + t * q.w + cross(u, t);
}
inline Quaternion operator*(Quaternion a, Quaternion b) {
  return {
      a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z, a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
      a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x, a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w};
}
inline Transformation operator*(const Transformation& a, const Transformation& b) {
  return {a.p + rotate(a.q, b.p), a.q * b.q};
}
inline Spatial motion(const Transformation& x, const Spatial& m) {
  const Vector angular = rotate(x.q, m.angular);
  return {rotate(x.q, m.linear) + cross(x.p, angular), angular};
}
inline Spatial force(const Transformation& x, const Spatial& f) {
  const Vector linear = rotate(x.q, f.linear);
  return {linear, rotate(x.q, f.angular) + cross(x.p, linear)};
}

}  // namespace plain
