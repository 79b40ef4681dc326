#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "ktManipulator/activestate/KtSystemActiveState.h"
#include "ktManipulator/dynamics/KtArbiAccelerationTool.h"
#include "ktManipulator/dynamics/KtCrbiAccelerationTool.h"
#include "ktManipulator/model/KtStatedSystem.h"
#include "ktManipulator/simulation/KtEnergyBalance.h"
#include "ktManipulator/simulation/KtLimitImpact.h"

class KtPropagationDescriptor;

/// A system in motion: it owns a state and all that a step needs, and carries the state on in time
/// under gravity, joint torques, external forces and the forces between links.
///
///     KtSimulation simulation(scene);
///     for (int i = 1; i <= 1000; ++i) simulation.stepTo(i * 1e-3);
///
/// One step computes the accelerations of the present state and calls
/// `KtStatedSystem::propagateTo`: a semi-implicit Euler step, of first order. Nothing is allocated
/// once sizes have settled.
///
/// The stated system is not held: it must outlive the simulation, and stay as it is. Its state is
/// where the simulation starts; it is not changed. To take over where a simulation ended:
/// `scene.setState(simulation.state())`. A simulation belongs to one thread at a time.
///
/// Springs, dampers, friction, stoppers and the inertias of rotors act. Where a joint is rigid, its
/// motor's position and rate follow those of the joint. Where it is not, the motor is carried on
/// beside, from rest against its link. Currents and pressures of power converters are not
/// simulated.
class KT_EXPORT KtSimulation {
 public:
  /// How accelerations are found.
  enum class Method {
    kAutomatic,    ///< Composite for manipulators with equality constraints, else articulated.
    kArticulated,  ///< `KtArbiAccelerationTool`, which leaves equality constraints out.
    kComposite     ///< `KtCrbiAccelerationTool`, which honours them.
  };
  /// What becomes of the rate of a joint that is stopped at a limit.
  enum class Limits {
    kKeepRates,  ///< It stays, and grows while the joint is pushed; see `propagateTo`.
    kStopRates   ///< An inelastic impact takes it, which the rest of the mechanism feels.
  };
  /// What a collision takes back; see `KtStatedSystem::propagateTo`.
  enum class Collisions {
    kIgnored,          ///< Nothing is checked.
    kTakeBackAll,      ///< The positions of all manipulators.
    kTakeBackCollided  ///< The positions of those that collide.
  };
  /// How often something happened, and when first.
  struct Event {
    std::uint64_t count = 0;  ///< steps
    double first = 0.0;       ///< the time at the end of the first of them, s
  };
  /// One joint, in the order of manipulators and link indices.
  struct Joint {
    KtU32 manipulator = 0;  ///< its index
    KtU32 link = 0;         ///< the index of its link
    /// The label of the link, behind the manipulator's label and a slash where there is more than
    /// one manipulator.
    std::string name;
    Event limit;  ///< Steps that took it against a limit.
    Event rate;   ///< Steps in which its rate was cut to the greatest.
  };
  /// A description that stopping criteria of a manipulator registered.
  struct Stop {
    KtU32 manipulator = 0;    ///< its index
    std::string description;  ///< as the criteria that were satisfied in one step registered it
    Event event;              ///< Steps that it was registered in.
  };
  /// What the last step met. Joints are places in `joints()`, manipulators indices.
  struct Step {
    bool isFinite = true;         ///< Whether time and new state are.
    std::vector<KtU32> limits;    ///< Joints that were stopped at a limit.
    std::vector<KtU32> rates;     ///< Joints whose rates were cut to the greatest.
    std::vector<KtU32> stopped;   ///< Manipulators with a satisfied stopping criterion.
    std::vector<KtU32> collided;  ///< Manipulators that collided.
    /// Whether it met nothing.
    bool isFree() const noexcept {
      return isFinite && limits.empty() && rates.empty() && stopped.empty() && collided.empty();
    }
  };
  /// Gives joint torques in a state; see `setTorqueLaw`.
  using TorqueLaw =
      std::function<void(const KtManipulatorSystemState& state, std::span<double> torques)>;

  /// Starts from the state of a system, with the gravity of its environment and without torques. A
  /// state that doesn't fit the system is made to by `KtStatedSystem::rightSizeState`.
  explicit KtSimulation(const KtStatedSystem& system, Method method = Method::kAutomatic);
  /// A temporary system would end before the simulation does, so none is accepted.
  explicit KtSimulation(KtStatedSystem&&, Method = Method::kAutomatic) = delete;
  KtSimulation(const KtSimulation&) = delete;
  KtSimulation& operator=(const KtSimulation&) = delete;

  // What acts.

  /// Sets the acceleration upwards in the axes of the system, m/s^2, in the place of the
  /// environment's: (0, 0, 9.81) pulls along -z.
  void setUpGravity(const KtVector& upGravity);
  /// Sets the torques of the joints, N m or N, in the order of `joints()`. They hold from then on,
  /// in the place of those of a law.
  ///
  /// A torque is that at the joint: the motor's times the gear ratio. It is cut to the limits of
  /// the actuator's power converter. The gear's efficiency takes its part, and friction, stoppers,
  /// springs and dampers come on top. A joint of gear ratio 0 gets none.
  ///
  /// @return false, with a message and nothing changed, if there are not as many as joints
  bool setTorques(std::span<const double> torques);
  /// Sets what gives the torques of `setTorques` from now on: it is asked once for each state, with
  /// the torques of the last time in the list. `active` has positions and velocities of the state
  /// by then, and external forces may be set. An empty law leaves the torques as they are.
  void setTorqueLaw(TorqueLaw law);
  /// Sets the external force on a link. It holds from then on.
  ///
  /// @param manipulator  its index
  /// @param link         index of the link, or `ktBaseIndex`
  /// @param force        at the origin and in the axes of the link's DH frame
  /// @return             false, with a message and nothing changed, if there is no such link
  bool setExternalForce(KtU32 manipulator, KtU32 link, const KtGeneralForce& force);
  /// Makes all external forces zero.
  void clearExternalForces();
  /// Sets what becomes of rates at limits; `kKeepRates` at first.
  void setLimits(Limits limits) { limits_ = limits; }
  /// Sets what collisions do; `kIgnored` at first. What is checked is
  /// `KtStatedSystem::checkForCollisions`.
  ///
  /// @param boundingVolumeLevel  of the bounding volumes that are checked
  /// @param tolerance            the distance from which on links collide, m
  void setCollisions(Collisions collisions, KtU32 boundingVolumeLevel = 1, double tolerance = 0.0);
  /// The same with the values of a record; `kIgnored` where it says not to check.
  void setCollisions(Collisions collisions, const KtPropagationDescriptor& descriptor);

  // Steps.

  /// Carries the state on to a time in one step. The time may lie before that of the state, which
  /// then goes backwards. A time that is not finite leaves the state as it is.
  ///
  /// @return whether time and new state are finite; if not, `complaint` tells where. `lastStep`
  /// tells
  ///         what the step met
  bool stepTo(double time);
  /// `stepTo` by a length of time, s. Times that are sums of steps differ by rounding from their
  /// products: runs that are to be continued to the last bit call `stepTo`.
  bool step(double dt) { return stepTo(state_.time() + dt); }
  /// Goes on from another state of the system. Motors start in step with their joints, and an
  /// energy balance begins anew; torques, forces and events stay.
  void setState(const KtManipulatorSystemState& state);

  // What is asked.

  /// The stated system.
  const KtStatedSystem& system() const noexcept { return system_; }
  /// The present state.
  const KtManipulatorSystemState& state() const noexcept { return state_; }
  /// A manipulator's caches, with positions and velocities of the present state. They are there to
  /// be asked: a state that is set in them doesn't count.
  ///
  /// @param manipulator  its index; one that no manipulator has is reported and gives empty caches
  KtManipulatorActiveState& active(KtU32 manipulator = 0);
  /// A manipulator's accelerations in the present state, with the torques and forces that are set.
  ///
  /// @param manipulator  its index; one that no manipulator has is reported and gives zero, without
  ///                     joints
  const KtAccelerationState& acceleration(KtU32 manipulator = 0);
  /// What the last step met.
  const Step& lastStep() const noexcept { return lastStep_; }
  /// The records of the last step by `propagateTo`, one for each manipulator.
  const KtStatedSystem::ResultVector& results() const noexcept { return results_; }
  /// The joints, with what happened to them since the start.
  const std::vector<Joint>& joints() const noexcept { return joints_; }
  /// What stopping criteria registered since the start.
  const std::vector<Stop>& stops() const noexcept { return stops_; }
  /// What is wrong with the state, after `stepTo` has given false, such as `the motion of joint
  /// "elbow" is not finite at 0.5 s`.
  const std::string& complaint() const noexcept { return complaint_; }
  /// The most by which joint positions are off from the linear equality constraints that are
  /// honoured; 0 if there are none. They hold accelerations, and drift by rounding; a joint that is
  /// stopped at a limit, or whose rate is cut, breaks them.
  double constraintError() const;

  // Energies.

  /// The kinetic energy of all manipulators in the present state, J; see
  /// `KtMechanicalEnergy::kinetic`.
  double kineticEnergy();
  /// The energy of the weight of all manipulators, and of their springs, in the present state, J;
  /// see `KtMechanicalEnergy`.
  double potentialEnergy();
  /// Sets whether steps keep accounts of what changes the energy; they don't at first. The accounts
  /// start from here. They change no state, and take some time.
  void setKeepsBalance(bool keeps);
  /// The accounts since `setKeepsBalance`; all zero without it.
  ///
  /// In each step, forces work along the mean of the rates before and behind them. What the base of
  /// an attached manipulator gets from its parent is part of the remainder.
  KtEnergyBalance energyBalance();

 private:
  // What a step asks of a joint.
  struct Bounds {
    double lower, upper, fastest, ratio;
    KtU32 link;
    bool isRigid;
  };
  std::span<const Bounds> boundsOf(KtU32 m) const {
    return {bounds_.data() + firstJoints_[m], bounds_.data() + firstJoints_[m + 1]};
  }
  const std::vector<KtIndividualManipulator>& manipulators() const {
    return system_.system().manipulators().elements();
  }
  KtManipulatorActiveState& cache(KtU32 m) {
    return active_.manipulatorActiveStateVector().elements()[m];
  }
  const KtManipulatorExternalForce& forcesOn(KtU32 m) const;
  const KtPositionState& positionBefore(KtU32 m) const;
  const KtVelocityState& velocityBefore(KtU32 m) const;
  bool hasManipulator(const char* operation, KtU32 m) const;
  void addJoints(KtU32 m);
  void fitState();
  void startMotors();
  void show();
  void evaluate();
  void commandTorques(std::span<const double> torques);
  void stepMotors(double dt);
  void noteEvents(double time, double dt);
  void noteStops(double time);
  void stopAtLimits();
  bool checkFinite() const;
  void complain(double time);

  // Of the balance
  bool isPushed() const;
  double energyIn(KtU32 m, const KtPositionState& position, const KtVelocityState& velocity,
                  bool withPotential);
  double energyNow();
  void balanceForces(double dt);
  void balanceJoints(KtU32 m, double dt);
  void balanceLinks(KtU32 m, double dt);
  void balanceEvents(double dt);
  void balanceImpact();

  const KtStatedSystem& system_;
  KtManipulatorSystemState state_;
  KtVector upGravity_;
  Limits limits_ = Limits::kKeepRates;
  KtU32 collisionMode_ = 0;
  KtU32 boundingVolumeLevel_ = 1;
  double collisionTolerance_ = 0.0;
  TorqueLaw law_;
  bool isForced_ = false;         // by external forces
  bool someAreFlexible_ = false;  // of the joints
  bool keepsBalance_ = false;
  bool isShown_ = false;      // whether the caches have the state
  bool isEvaluated_ = false;  // whether the accelerations are those of the state

  KtSystemActiveState active_;
  std::vector<Joint> joints_;
  std::vector<Bounds> bounds_;                // by joint
  std::vector<std::size_t> firstJoints_;      // by manipulator, and the number of all
  std::vector<bool> isComposite_;             // by manipulator, as are the next
  std::vector<KtAccelerationState> gravity_;  // at rest
  std::vector<KtAccelerationState> accelerations_;
  std::vector<KtManipulatorExternalForce> external_;  // by the caller
  std::vector<KtManipulatorExternalForce> sums_;      // with those between links
  KtXmlVectorType<KtManipulatorTorque> commands_;     // of motors
  std::vector<KtArbiAccelerationTool> articulated_;
  std::vector<KtCrbiAccelerationTool> composite_;
  KtStatedSystem::ResultVector results_;
  Kt::detail::LimitImpact impact_;
  std::vector<double> torques_;  // of the law

  Step lastStep_;
  std::vector<Stop> stops_;
  std::string complaint_;
  KtManipulatorSystemState before_;  // where a step needs it
  // Answers for a manipulator that there isn't
  KtManipulatorActiveState noActive_;
  KtAccelerationState noAcceleration_;

  // Of the balance
  KtEnergyBalance balance_;
  std::vector<KtVelocityState> free_;             // without cuts of rates, by manipulator
  std::vector<KtVelocityState> struck_;           // before impacts
  std::vector<KtManipulatorActiveState> probes_;  // by manipulator
  KtPositionState clamped_, unclamped_;
};
