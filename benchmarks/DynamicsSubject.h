#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "Mechanisms.h"

/// What is measured.
enum class Operation {
  kForwardKinematics,    ///< "fk": poses and velocities of all bodies in the system.
  kInverseDynamics,      ///< "id": loads of the joints and of a free base.
  kMassMatrix,           ///< "mass": dense, with the rows of a free base.
  kArticulatedDynamics,  ///< "fd-articulated": accelerations, in time linear in the bodies.
  kMassMatrixDynamics,   ///< "fd-mass": accelerations through a factor of the mass matrix.
  kArticulatedStep,      ///< "step-articulated": a step in time with the former accelerations.
  kMassMatrixStep        ///< "step-mass": one with the latter.
};

/// Whether the operation is a step in time: of the semi-implicit Euler method, under the joint
/// torques of the state, without a load on a free base. Other than the rest, which set the state
/// in every call, it goes on from where the step before it came to.
constexpr bool isStep(Operation operation) {
  return operation == Operation::kArticulatedStep || operation == Operation::kMassMatrixStep;
}
constexpr double kStep = 1e-4;  ///< s
/// After so many steps from a state of the pool those from the next one begin.
constexpr std::size_t kStepsPerState = 64;

/// Numbers of a result, so that those of two libraries can be compared. In this order:
///
/// - forward kinematics: of each body its rotation matrix (row by row), position, linear velocity
/// of
///   its origin and angular velocity, all in the system's axes;
/// - inverse dynamics: joint torques, then force and moment on a free base, about its origin and in
///   its axes;
/// - mass matrix: row by row, joints first, then a free base's linear and angular directions, in
/// its
///   axes;
/// - forward dynamics: joint accelerations, then the linear and angular ones of a free base, in the
///   system's axes;
/// - steps: joint positions, those of a free base's origin and its rotation matrix (row by row),
///   then joint rates and the linear and angular velocity of a free base, in the system's axes, the
///   rates times the duration of `kStepsPerState` steps, which makes them comparable.
using Numbers = std::vector<double>;

/// A library with a mechanism and a pool of states in its own forms.
class Subject {
 public:
  virtual ~Subject() = default;

  /// Whether the library has the operation, for the mechanism.
  virtual bool offers(Operation operation) const = 0;
  /// Carries an operation out `count` times, setting the state included, on the states of the pool
  /// in turn, from one on. Steps begin anew at that state.
  virtual void run(Operation operation, std::size_t first, std::size_t count) = 0;
  /// The result of the run that was last, on a state.
  virtual Numbers result(Operation operation, std::size_t state) const = 0;
};

using States = std::vector<mechanisms::State>;

/// This library.
std::unique_ptr<Subject> makeLibrary(const mechanisms::Mechanism& mechanism, const States& states);
/// KDL, on chains with a fixed base; otherwise, or if it wasn't found at build, null.
std::unique_ptr<Subject> makeKdl(const mechanisms::Mechanism& mechanism, const States& states);
/// MuJoCo; null if it wasn't found at build.
std::unique_ptr<Subject> makeMujoco(const mechanisms::Mechanism& mechanism, const States& states);

/// The result of an operation by the definition of the quantities, in long double and in cubic
/// time, to judge those of the libraries.
Numbers referenceResult(const mechanisms::Mechanism& mechanism, const mechanisms::State& state,
                        Operation operation);
