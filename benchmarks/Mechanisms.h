#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <string>
#include <utility>
#include <vector>

/// Mechanisms and states that the dynamics benchmarks hand to every library alike: plain numbers,
/// random but the same in every run.
namespace mechanisms {

using Vector = std::array<double, 3>;
/// A unit quaternion (w, x, y, z).
using Quaternion = std::array<double, 4>;

/// The acceleration of gravity, m/s^2, towards negative z of the system.
constexpr double kGravity = 9.81;
/// Parent of the bodies that hang on the base.
constexpr std::size_t kBase = static_cast<std::size_t>(-1);

/// The inertia of a body, in the body's frame.
struct Inertia {
  double mass = 0.0;          ///< kg
  Vector center{};            ///< Centre of mass, m.
  Quaternion axes{};          ///< Of the principal frame.
  Vector principalMoments{};  ///< About the centre of mass, kg m^2.
};

/// A body behind a revolute joint. Its pose in the parent's frame is Trans(position)
/// Rot(orientation) RotZ(q).
struct Body {
  std::size_t parent = kBase;
  Vector position{};  ///< m
  Quaternion orientation{};
  Inertia inertia;
};

/// A tree of bodies, in pre-order: a body's subtree follows it without a gap.
struct Mechanism {
  std::string name;
  bool fixedBase = true;
  Inertia base;  ///< Of a free base.
  std::vector<Body> bodies;

  /// Degrees of freedom, those of a free base included.
  std::size_t dof() const { return bodies.size() + (fixedBase ? 0 : 6); }
};

/// Everything that an operation may ask for. The base's motion is that of its origin, in the
/// system's axes; its accelerations are without gravity. Its load is about its origin, in its axes.
struct State {
  Vector position{};
  Quaternion orientation{1.0, 0.0, 0.0, 0.0};
  Vector linearVelocity{}, angularVelocity{};
  Vector linearAcceleration{}, angularAcceleration{};
  Vector force{}, moment{};
  std::vector<double> q, qDot, qDotDot, torque;
};

/// Random numbers that are the same with every compiler.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  double uniform(double from, double to) {
    return from + (to - from) * (static_cast<double>(engine_() >> 11) * 0x1p-53);
  }
  Vector vector(double bound) {
    return {uniform(-bound, bound), uniform(-bound, bound), uniform(-bound, bound)};
  }
  Vector direction() {
    Vector v;
    double squared = 0.0;
    do {
      v = vector(1.0);
      squared = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
    } while (squared > 1.0 || squared < 0.01);
    for (double& x : v) x /= std::sqrt(squared);
    return v;
  }
  Quaternion quaternion() {
    const double half = uniform(0.0, std::numbers::pi);
    const Vector axis = direction();
    const double s = std::sin(half);
    return {std::cos(half), s * axis[0], s * axis[1], s * axis[2]};
  }
  std::vector<double> list(std::size_t count, double bound) {
    std::vector<double> values(count);
    for (double& x : values) x = uniform(-bound, bound);
    return values;
  }
  /// That of a solid ellipsoid of random proportions, about as large as `size`.
  Inertia inertia(double mass, double size) {
    Inertia result;
    result.mass = mass * uniform(0.7, 1.4);
    result.center = vector(0.5 * size);
    result.axes = quaternion();
    double squares[3];
    for (double& x : squares) x = std::pow(size * uniform(0.3, 0.8), 2);
    for (std::size_t i = 0; i < 3; ++i) {
      result.principalMoments[i] =
          result.mass / 5.0 * (squares[(i + 1) % 3] + squares[(i + 2) % 3]);
    }
    return result;
  }

 private:
  std::mt19937_64 engine_;
};

/// Hangs a chain of joints on a body; answers its last body.
inline std::size_t addChain(Mechanism& mechanism, std::size_t parent, int joints, double mass,
                            double length, Random& random) {
  for (int i = 0; i < joints; ++i) {
    Body body;
    body.parent = parent;
    body.position = random.direction();
    for (double& x : body.position) x *= length;
    body.orientation = random.quaternion();
    body.inertia = random.inertia(mass, length);
    parent = mechanism.bodies.size();
    mechanism.bodies.push_back(body);
  }
  return parent;
}

inline Mechanism chain(std::string name, int joints, double mass, double length) {
  Random random(static_cast<std::uint64_t>(joints));
  Mechanism mechanism;
  mechanism.name = std::move(name);
  addChain(mechanism, kBase, joints, mass, length, random);
  return mechanism;
}

/// A free base with a trunk of 4 joints, on which two arms of 7 joints hang, and two legs of 7.
inline Mechanism tree32() {
  Random random(32);
  Mechanism mechanism;
  mechanism.name = "tree32";
  mechanism.fixedBase = false;
  mechanism.base = random.inertia(10.0, 0.3);
  const std::size_t trunk = addChain(mechanism, kBase, 4, 4.0, 0.15, random);
  addChain(mechanism, trunk, 7, 1.5, 0.15, random);
  addChain(mechanism, trunk, 7, 1.5, 0.15, random);
  addChain(mechanism, kBase, 7, 3.0, 0.2, random);
  addChain(mechanism, kBase, 7, 3.0, 0.2, random);
  return mechanism;
}

inline std::vector<Mechanism> all() {
  return {chain("chain7", 7, 3.0, 0.3), tree32(), chain("chain100", 100, 0.5, 0.1)};
}

inline std::vector<State> randomStates(const Mechanism& mechanism, std::size_t count) {
  const std::size_t joints = mechanism.bodies.size();
  Random random(1000 + joints);
  std::vector<State> states(count);
  for (State& state : states) {
    if (!mechanism.fixedBase) {
      state.position = random.vector(1.0);
      state.orientation = random.quaternion();
      state.linearVelocity = random.vector(1.0);
      state.angularVelocity = random.vector(1.0);
      state.linearAcceleration = random.vector(1.0);
      state.angularAcceleration = random.vector(1.0);
      state.force = random.vector(10.0);
      state.moment = random.vector(10.0);
    }
    state.q = random.list(joints, std::numbers::pi);
    state.qDot = random.list(joints, 1.0);
    state.qDotDot = random.list(joints, 1.0);
    state.torque = random.list(joints, 10.0);
  }
  return states;
}

}  // namespace mechanisms
