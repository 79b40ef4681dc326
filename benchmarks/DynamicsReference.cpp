// Dynamics by Kane's method: velocities, Jacobians and accelerations of the centres of mass in the
// system's axes, the mass matrix as a sum of products of Jacobians, loads as projections of
// inertial forces. No recursion over forces or inertias, which all libraries under test rely on.
//
// T. R. Kane, D. A. Levinson, Dynamics: Theory and Applications, McGraw-Hill 1985, ch. 4 and 6
#include <cmath>

#include "DynamicsSubject.h"

namespace {

using Real = long double;
using mechanisms::kBase;

struct Vec {
  Real x = 0, y = 0, z = 0;

  Vec() = default;
  Vec(Real vx, Real vy, Real vz) : x(vx), y(vy), z(vz) {}
  explicit Vec(const mechanisms::Vector& v) : x(v[0]), y(v[1]), z(v[2]) {}
  Vec operator+(const Vec& b) const { return {x + b.x, y + b.y, z + b.z}; }
  Vec operator-(const Vec& b) const { return {x - b.x, y - b.y, z - b.z}; }
  Vec operator*(Real s) const { return {x * s, y * s, z * s}; }
  Real dot(const Vec& b) const { return x * b.x + y * b.y + z * b.z; }
  Vec cross(const Vec& b) const {
    return {y * b.z - z * b.y, z * b.x - x * b.z, x * b.y - y * b.x};
  }
};

// A rotation matrix, by its columns.
struct Rot {
  Vec column[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

  Rot() = default;
  explicit Rot(const mechanisms::Quaternion& q) {
    const Real w = q[0], x = q[1], y = q[2], z = q[3];
    const Real s = 2 / (w * w + x * x + y * y + z * z);
    column[0] = {1 - s * (y * y + z * z), s * (x * y + w * z), s * (x * z - w * y)};
    column[1] = {s * (x * y - w * z), 1 - s * (x * x + z * z), s * (y * z + w * x)};
    column[2] = {s * (x * z + w * y), s * (y * z - w * x), 1 - s * (x * x + y * y)};
  }
  Vec operator*(const Vec& v) const { return column[0] * v.x + column[1] * v.y + column[2] * v.z; }
  Rot operator*(const Rot& b) const {
    Rot result;
    for (int i = 0; i < 3; ++i) result.column[i] = *this * b.column[i];
    return result;
  }
};

struct Frame {
  Rot r;
  Vec p, v, w, a, alpha;  // v and a of the origin; a without gravity
};

// What a unit of one coordinate's rate gives a body: the velocity of its centre and its rotation.
struct Partial {
  std::size_t coordinate;
  Vec linear, angular;
};

struct Kane {
  const mechanisms::Mechanism& mechanism;
  std::size_t joints, dof;
  std::vector<Frame> frames;
  std::vector<Real> mass;  // dof by dof
  std::vector<Real> load;  // of the inertial forces and gravity

  Kane(const mechanisms::Mechanism& m, const mechanisms::State& s, bool withAccelerations)
      : mechanism(m), joints(m.bodies.size()), dof(m.dof()), mass(dof * dof), load(dof) {
    Frame base{
        Rot(s.orientation), Vec(s.position), Vec(s.linearVelocity), Vec(s.angularVelocity), {}, {}};
    if (withAccelerations) {
      base.a = Vec(s.linearAcceleration);
      base.alpha = Vec(s.angularAcceleration);
    }
    for (std::size_t i = 0; i < joints; ++i) {
      const mechanisms::Body& body = m.bodies[i];
      const Frame& parent = body.parent == kBase ? base : frames[body.parent];
      const Real q = s.q[i], rate = s.qDot[i];
      Frame frame;
      Rot turn;
      turn.column[0] = {std::cos(q), std::sin(q), 0};
      turn.column[1] = {-std::sin(q), std::cos(q), 0};
      frame.r = parent.r * Rot(body.orientation) * turn;
      const Vec& axis = frame.r.column[2];
      const Vec arm = parent.r * Vec(body.position);
      frame.p = parent.p + arm;
      frame.v = parent.v + parent.w.cross(arm);
      frame.a = parent.a + parent.alpha.cross(arm) + parent.w.cross(parent.w.cross(arm));
      frame.w = parent.w + axis * rate;
      frame.alpha = parent.alpha + parent.w.cross(axis) * rate;
      if (withAccelerations) frame.alpha = frame.alpha + axis * s.qDotDot[i];
      frames.push_back(frame);
    }
    for (std::size_t i = 0; i < joints; ++i) add(m.bodies[i].inertia, frames[i], i, base);
    if (!m.fixedBase) add(m.base, base, kBase, base);
  }

  void add(const mechanisms::Inertia& inertia, const Frame& frame, std::size_t body,
           const Frame& base) {
    const Vec arm = frame.r * Vec(inertia.center);
    const Vec center = frame.p + arm;
    const Rot axes = frame.r * Rot(inertia.axes);
    const auto tensorTimes = [&](const Vec& x) {
      Vec sum;
      for (std::size_t k = 0; k < 3; ++k) {
        sum = sum + axes.column[k] * (axes.column[k].dot(x) * inertia.principalMoments[k]);
      }
      return sum;
    };
    std::vector<Partial> partials;
    for (std::size_t j = body; j != kBase; j = mechanism.bodies[j].parent) {
      const Vec& axis = frames[j].r.column[2];
      partials.push_back({j, axis.cross(center - frames[j].p), axis});
    }
    for (std::size_t k = 0; k < 3 && !mechanism.fixedBase; ++k) {
      const Vec& axis = base.r.column[k];
      partials.push_back({joints + k, axis, {}});
      partials.push_back({joints + 3 + k, axis.cross(center - base.p), axis});
    }
    const Vec acceleration = frame.a + frame.alpha.cross(arm) + frame.w.cross(frame.w.cross(arm)) +
                             Vec(0, 0, mechanisms::kGravity);
    const Vec force = acceleration * inertia.mass;
    const Vec moment = tensorTimes(frame.alpha) + frame.w.cross(tensorTimes(frame.w));
    for (const Partial& a : partials) {
      load[a.coordinate] += a.linear.dot(force) + a.angular.dot(moment);
      const Vec linear = a.linear * inertia.mass;
      const Vec angular = tensorTimes(a.angular);
      for (const Partial& b : partials) {
        mass[a.coordinate * dof + b.coordinate] += linear.dot(b.linear) + angular.dot(b.angular);
      }
    }
  }

  // Solves for the accelerations by Gauss's elimination, which overwrites the matrix.
  std::vector<Real> solve(std::vector<Real> x) {
    for (std::size_t k = 0; k < dof; ++k) {
      for (std::size_t i = k + 1; i < dof; ++i) {
        const Real factor = mass[i * dof + k] / mass[k * dof + k];
        for (std::size_t j = k; j < dof; ++j) mass[i * dof + j] -= factor * mass[k * dof + j];
        x[i] -= factor * x[k];
      }
    }
    for (std::size_t i = dof; i-- > 0;) {
      for (std::size_t j = i + 1; j < dof; ++j) x[i] -= mass[i * dof + j] * x[j];
      x[i] /= mass[i * dof + i];
    }
    return x;
  }
};

void append(Numbers& numbers, const Vec& v) {
  for (const Real x : {v.x, v.y, v.z}) numbers.push_back(static_cast<double>(x));
}

// Steps of the semi-implicit Euler method: new velocities by the accelerations at the old state,
// new positions by the new velocities. A base turns about its angular velocity.
Numbers steps(const mechanisms::Mechanism& mechanism, mechanisms::State s) {
  const std::size_t joints = mechanism.bodies.size();
  s.force = s.moment = {};
  for (std::size_t k = 0; k < kStepsPerState; ++k) {
    const Numbers acceleration = referenceResult(mechanism, s, Operation::kMassMatrixDynamics);
    for (std::size_t i = 0; i < joints; ++i) {
      s.qDot[i] += kStep * acceleration[i];
      s.q[i] += kStep * s.qDot[i];
    }
    if (mechanism.fixedBase) continue;
    for (std::size_t i = 0; i < 3; ++i) {
      s.linearVelocity[i] += kStep * acceleration[joints + i];
      s.angularVelocity[i] += kStep * acceleration[joints + 3 + i];
      s.position[i] += kStep * s.linearVelocity[i];
    }
    const auto& [x, y, z] = s.angularVelocity;
    const double rate = std::sqrt(x * x + y * y + z * z);
    const double half = 0.5 * kStep * rate;
    const double scale = rate > 0.0 ? std::sin(half) / rate : 0.0;
    const mechanisms::Quaternion turn{std::cos(half), scale * x, scale * y, scale * z};
    const auto& [w0, x0, y0, z0] = s.orientation;
    const auto& [w1, x1, y1, z1] = turn;
    s.orientation = {w1 * w0 - x1 * x0 - y1 * y0 - z1 * z0, w1 * x0 + x1 * w0 + y1 * z0 - z1 * y0,
                     w1 * y0 - x1 * z0 + y1 * w0 + z1 * x0, w1 * z0 + x1 * y0 - y1 * x0 + z1 * w0};
  }
  Numbers numbers = s.q;
  if (!mechanism.fixedBase) {
    append(numbers, Vec(s.position));
    const Rot r(s.orientation);
    const Vec* c = r.column;
    append(numbers, {c[0].x, c[1].x, c[2].x});
    append(numbers, {c[0].y, c[1].y, c[2].y});
    append(numbers, {c[0].z, c[1].z, c[2].z});
  }
  const Real duration = kStep * kStepsPerState;
  for (const double rate : s.qDot) numbers.push_back(static_cast<double>(rate * duration));
  if (!mechanism.fixedBase) {
    append(numbers, Vec(s.linearVelocity) * duration);
    append(numbers, Vec(s.angularVelocity) * duration);
  }
  return numbers;
}

}  // namespace

Numbers referenceResult(const mechanisms::Mechanism& mechanism, const mechanisms::State& state,
                        Operation operation) {
  Kane kane(mechanism, state, operation == Operation::kInverseDynamics);
  Numbers numbers;
  switch (operation) {
    case Operation::kForwardKinematics:
      for (const Frame& frame : kane.frames) {
        const Vec* c = frame.r.column;
        append(numbers, {c[0].x, c[1].x, c[2].x});
        append(numbers, {c[0].y, c[1].y, c[2].y});
        append(numbers, {c[0].z, c[1].z, c[2].z});
        append(numbers, frame.p);
        append(numbers, frame.v);
        append(numbers, frame.w);
      }
      break;
    case Operation::kInverseDynamics:
      numbers.assign(kane.load.begin(), kane.load.end());
      break;
    case Operation::kMassMatrix:
      numbers.assign(kane.mass.begin(), kane.mass.end());
      break;
    case Operation::kArticulatedStep:
    case Operation::kMassMatrixStep:
      return steps(mechanism, state);
    case Operation::kArticulatedDynamics:
    case Operation::kMassMatrixDynamics: {
      std::vector<Real> x(state.torque.begin(), state.torque.end());
      if (!mechanism.fixedBase) {
        x.insert(x.end(), state.force.begin(), state.force.end());
        x.insert(x.end(), state.moment.begin(), state.moment.end());
      }
      for (std::size_t i = 0; i < kane.dof; ++i) x[i] -= kane.load[i];
      x = kane.solve(std::move(x));
      numbers.assign(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(kane.joints));
      for (std::size_t i = kane.joints; i < kane.dof; i += 3) {
        append(numbers, Rot(state.orientation) * Vec(x[i], x[i + 1], x[i + 2]));
      }
      break;
    }
  }
  return numbers;
}
