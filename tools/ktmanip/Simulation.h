#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "ktManipulator/activestate/KtSystemActiveState.h"
#include "ktManipulator/dynamics/KtArbiAccelerationTool.h"
#include "ktManipulator/dynamics/KtCrbiAccelerationTool.h"
#include "ktManipulator/dynamics/KtMassMatrixTool.h"
#include "ktManipulator/model/KtStatedSystem.h"

/// How accelerations are found.
enum class SimulationMethod {
  kAutomatic,    ///< Composite for manipulators with equality constraints, else articulated.
  kArticulated,  ///< `KtArbiAccelerationTool`, which leaves equality constraints out.
  kComposite     ///< `KtCrbiAccelerationTool`
};

/// How often something happened, and when first.
struct SimulationEvent {
  std::uint64_t count = 0;
  double first = 0.0;  ///< s

  /// Notes that it happened.
  void note(double time) {
    if (count++ == 0) first = time;
  }
};

/// A system in motion under given joint torques.
///
/// It takes the state of a stated system and carries it on step by step: `computeAccelerations`,
/// then `stepTo`. The stated system must outlive it and stay as it is. Once sizes have settled,
/// neither allocates.
///
/// The joints get a torque as their links feel it behind the gear, cut to the limits of their
/// actuators' power converters; its efficiency, and friction, stoppers, springs and dampers come on
/// top. The converters themselves (currents, pressures) are not simulated. Rotors of joints that
/// are not rigid are carried on beside, from rest against their links.
class Simulation {
 public:
  /// One joint, in the order of manipulators and link indices.
  struct Joint {
    KtU32 manipulator = 0;
    KtU32 index = 0;  ///< of the link
    std::string name;
    bool isAtLimit = false;  ///< Whether the last step took it against a limit.
    SimulationEvent limit;   ///< Steps against a limit.
    SimulationEvent rate;    ///< Steps in which its rate was cut to the greatest.
    const KtJointActuator* actuator = nullptr;
    const KtMechanicalActuatorComponent* mechanics = nullptr;
    double lower = 0.0, upper = 0.0, fastest = 0.0, ratio = 1.0;
    bool isRigid = true;  ///< Or without mechanics.
  };
  /// A description that stopping criteria of a manipulator registered.
  struct Stop {
    std::string manipulator;  ///< its label
    std::string description;
    SimulationEvent event;
  };

  /// @param upGravity  in the place of the environment's, m/s^2
  Simulation(const KtStatedSystem& system, SimulationMethod method, const KtVector& upGravity);

  /// Whether joints lose their rates at limits; false at first: then they keep them, and go on to
  /// gather rate there, as the library's step has it. They lose them by impulses between links, as
  /// in an inelastic impact, so that no energy comes from it.
  void setStopsAtLimits(bool stops) { stopsAtLimits_ = stops; }
  /// Sets the torques of the joints, N m or N, which hold from then on; 0 at first.
  void setTorques(const std::vector<double>& torques);
  /// Computes the accelerations of the present state.
  void computeAccelerations();
  /// Carries the state on to a later time under the accelerations that were computed last.
  ///
  /// @return whether the new state is finite; if not, `complaint` tells where
  bool stepTo(double time);

  /// The present state.
  const KtManipulatorSystemState& state() const { return state_; }
  /// The stated system.
  const KtStatedSystem& system() const { return system_; }
  /// The manipulators.
  const std::vector<KtIndividualManipulator>& manipulators() const {
    return system_.system().manipulators().elements();
  }
  /// A manipulator's caches; they hold for the present state after `computeAccelerations`.
  KtManipulatorActiveState& active(KtU32 manipulator) {
    return active_.manipulatorActiveStateVector()[manipulator];
  }
  /// A manipulator's accelerations, by `computeAccelerations`.
  const KtAccelerationState& acceleration(KtU32 manipulator) const {
    return accelerations_[manipulator];
  }
  /// Kinetic energy of all manipulators, J; of the state of `computeAccelerations`.
  double kineticEnergy();
  /// Potential energy of weights and springs of all manipulators, J; likewise.
  double potentialEnergy();
  /// How far the joint positions are off from the linear equality constraints that act, at the
  /// most; 0 if there are none. They hold accelerations, and drift by rounding; a joint that stops
  /// at a limit, or whose rate is cut, breaks them.
  double constraintError() const;
  /// The joints.
  const std::vector<Joint>& joints() const { return joints_; }
  /// The names of the joints: the label of the link, behind the manipulator's label and a slash
  /// where there is more than one manipulator.
  std::vector<std::string> jointNames() const;
  /// What stopping criteria registered.
  const std::vector<Stop>& stops() const { return stops_; }
  /// What is wrong with the state, after `stepTo` has given false.
  const std::string& complaint() const { return complaint_; }

 private:
  std::span<Joint> jointsOf(KtU32 manipulator) {
    return {joints_.data() + firstJoints_[manipulator],
            joints_.data() + firstJoints_[manipulator + 1]};
  }
  void setMotors();
  void stepMotors(double dt);
  void noteEvents(double time, double dt);
  bool checkFinite(double time);
  void stopAtLimits(KtU32 manipulator);

  const KtStatedSystem& system_;
  KtVector upGravity_;
  KtManipulatorSystemState state_;
  KtSystemActiveState active_;
  std::vector<Joint> joints_;
  std::vector<std::size_t> firstJoints_;      // by manipulator, and the number of all
  std::vector<bool> isComposite_;             // by manipulator
  std::vector<KtAccelerationState> gravity_;  // at rest, by manipulator
  std::vector<KtAccelerationState> accelerations_;
  KtXmlVectorType<KtManipulatorTorque> torques_;  // commands
  std::vector<KtManipulatorExternalForce> none_;
  std::vector<KtArbiAccelerationTool> articulated_;
  std::vector<KtCrbiAccelerationTool> composite_;
  KtStatedSystem::ResultVector results_;
  std::vector<Stop> stops_;
  std::string complaint_;
  bool someAreFlexible_ = false;
  bool stopsAtLimits_ = false;
  KtMassMatrixTool massMatrixTool_;
};
