// The library under its public interface, as a user's program calls it.
#include "DynamicsSubject.h"
#include "ktManipulator/ktManipulator.h"

namespace {

using mechanisms::kBase;

KtVector vector(const mechanisms::Vector& v) {
  return {v[0], v[1], v[2]};
}
KtOrientation orientation(const mechanisms::Quaternion& q) {
  return {q[0], q[1], q[2], q[3]};
}

KtRigidBodyMassProperties massProperties(const mechanisms::Inertia& inertia) {
  const mechanisms::Vector& moments = inertia.principalMoments;
  KtRigidBodyMassProperties properties(inertia.mass, KtVector(),
                                       {moments[0], moments[1], moments[2], 0.0, 0.0, 0.0});
  properties.transformBy({vector(inertia.center), orientation(inertia.axes)});
  return properties;
}

KtManipulatorLink link(const mechanisms::Mechanism& mechanism, std::size_t index) {
  const mechanisms::Body& body = mechanism.bodies[index];
  KtDenavitHartenberg joint;
  joint.setJointType(KtDenavitHartenberg::kRotational);
  joint.setDhType(KtDenavitHartenberg::kGeneral);
  joint.setPrecursor({vector(body.position), orientation(body.orientation)});
  KtManipulatorLink result;
  result.setLabel("link" + std::to_string(index));
  result.setLinkKinematics(joint);
  result.setMassProperties(massProperties(body.inertia));
  for (std::size_t i = index + 1; i < mechanism.bodies.size(); ++i) {
    if (mechanism.bodies[i].parent == index) result.addChild(link(mechanism, i));
  }
  return result;
}

KtStatedSystem makeSystem(const mechanisms::Mechanism& mechanism) {
  KtIndividualManipulator manipulator;
  manipulator.setLabel(mechanism.name);
  manipulator.setIsFixedBase(mechanism.fixedBase);
  if (!mechanism.fixedBase) manipulator.setMassProperties(massProperties(mechanism.base));
  for (std::size_t i = 0; i < mechanism.bodies.size(); ++i) {
    if (mechanism.bodies[i].parent == kBase) manipulator.addChild(link(mechanism, i));
  }
  manipulator.mapManipulator();
  KtStatedSystem system;
  system.setFromManipulator(manipulator);
  KtSystemEnvironment environment;
  environment.setUpGravityVector(KtVector(0.0, 0.0, mechanisms::kGravity));
  system.setEnvironment(environment);
  return system;
}

struct LibraryState {
  KtPositionState position;
  KtVelocityState velocity;
  KtAccelerationState acceleration;  // with gravity
  KtManipulatorTorque torque;

  explicit LibraryState(const mechanisms::State& s) {
    position.setCoordSysXForm({vector(s.position), orientation(s.orientation)});
    velocity.setGeneralVelocity({vector(s.linearVelocity), vector(s.angularVelocity)});
    const KtVector upGravity(0.0, 0.0, mechanisms::kGravity);
    acceleration.setGeneralAcceleration(
        {vector(s.linearAcceleration) + upGravity, vector(s.angularAcceleration)});
    torque.setGeneralForce({vector(s.force), vector(s.moment)});
    for (std::size_t i = 0; i < s.q.size(); ++i) {
      position.jointPositions().pushBack(s.q[i]);
      velocity.jointVelocities().pushBack(s.qDot[i]);
      acceleration.jointAccelerations().pushBack(s.qDotDot[i]);
      torque.jointTorques().pushBack(s.torque[i]);
    }
  }
};

void append(Numbers& numbers, const KtVector& v) {
  numbers.insert(numbers.end(), {v.x, v.y, v.z});
}
// As a matrix, row by row.
void append(Numbers& numbers, const KtOrientation& r) {
  const KtVector x = r * KtVector(1.0, 0.0, 0.0);
  const KtVector y = r * KtVector(0.0, 1.0, 0.0);
  const KtVector z = r * KtVector(0.0, 0.0, 1.0);
  append(numbers, KtVector(x.x, y.x, z.x));
  append(numbers, KtVector(x.y, y.y, z.y));
  append(numbers, KtVector(x.z, y.z, z.z));
}

class Library : public Subject {
 public:
  Library(const mechanisms::Mechanism& mechanism, const States& states)
      : system_(makeSystem(mechanism)),
        manipulator_(system_.system().manipulators()[0]),
        states_(states.begin(), states.end()) {
    for (KtU32 i = 0; i < manipulator_.jointDof(); ++i) {
      links_.push_back(manipulator_.linkByIndex(i));
    }
    torqueTool_.setManipulator(&manipulator_);
    torqueTool_.setTotalTorqueType(kTotalTorqueOfLinks);
    massMatrixTool_.setManipulator(&manipulator_);
    massMatrixTool_.setIsFixedBase(manipulator_.isFixedBase());
    external_.resize(manipulator_.jointDof());
    gravity_.resize(manipulator_.jointDof());
    gravity_.setGeneralAcceleration({system_.environment().upGravityVector(), KtVector()});
  }

  bool offers(Operation) const override { return true; }

  void run(Operation operation, std::size_t first, std::size_t count) override {
    const auto each = [&](auto call) {
      for (std::size_t i = 0; i < count; ++i) call(states_[(first + i) % states_.size()]);
    };
    switch (operation) {
      case Operation::kForwardKinematics:
        return each([&](const LibraryState& s) {
          active_.setPositionState(s.position);
          active_.setVelocityState(s.velocity);
          for (const KtManipulatorLink* one : links_) {
            one->dhFrameInSystem(active_.activePositionState());
            one->dhFrameVelocityInSystem(active_);
          }
        });
      case Operation::kInverseDynamics:
        return each([&](const LibraryState& s) {
          active_.setPositionState(s.position);
          active_.setVelocityState(s.velocity);
          active_.setAccelerationState(s.acceleration);
          torque_ = &torqueTool_.torques(external_, active_, nullptr);
        });
      case Operation::kMassMatrix:
        return each([&](const LibraryState& s) {
          active_.setPositionState(s.position);
          mass_ = manipulator_.isFixedBase()
                      ? &massMatrixTool_.massMatrix(active_, nullptr)
                      : &massMatrixTool_.extendedMassMatrixInBase(active_, nullptr);
        });
      case Operation::kArticulatedDynamics:
        return each([&](const LibraryState& s) {
          arbiTool_.acceleration(system_, manipulator_, s.position, s.velocity, s.torque, external_,
                                 acceleration_, nullptr, true);
        });
      case Operation::kMassMatrixDynamics:
        return each([&](const LibraryState& s) {
          crbiTool_.acceleration(system_, manipulator_, s.position, s.velocity, s.torque, external_,
                                 acceleration_, nullptr, true);
        });
      case Operation::kArticulatedStep:
        return run(arbiTool_, first, count);
      case Operation::kMassMatrixStep:
        return run(crbiTool_, first, count);
    }
  }

  Numbers result(Operation operation, std::size_t /*state*/) const override {
    Numbers numbers;
    switch (operation) {
      case Operation::kForwardKinematics:
        for (KtU32 i = 0; i < links_.size(); ++i) appendMotion(numbers, i);
        break;
      case Operation::kInverseDynamics:
        for (const double x : torque_->jointTorques().vectorContainer()) numbers.push_back(x);
        if (manipulator_.isFixedBase()) break;
        append(numbers, torque_->generalForce().force());
        append(numbers, torque_->generalForce().moment());
        break;
      case Operation::kMassMatrix:
        for (KtU32 i = 0; i < mass_->rows(); ++i) {
          numbers.insert(numbers.end(), (*mass_)[i], (*mass_)[i] + mass_->columns());
        }
        break;
      case Operation::kArticulatedDynamics:
      case Operation::kMassMatrixDynamics:
        for (const double x : acceleration_.jointAccelerations().vectorContainer()) {
          numbers.push_back(x);
        }
        if (manipulator_.isFixedBase()) break;
        append(numbers, acceleration_.generalAcceleration().linear());
        append(numbers, acceleration_.generalAcceleration().angular());
        break;
      case Operation::kArticulatedStep:
      case Operation::kMassMatrixStep:
        appendState(numbers);
        break;
    }
    return numbers;
  }

 private:
  // Steps with the accelerations of a tool, as a user's loop makes them.
  template <class Tool>
  void run(Tool& tool, std::size_t first, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (i % kStepsPerState == 0) {
        const LibraryState& start = states_[(first + i / kStepsPerState) % states_.size()];
        state_.positionStates().assign(1, start.position);
        state_.velocityStates().assign(1, start.velocity);
        state_.setTime(0.0);
        jointTorques_.setJointTorques(start.torque.jointTorques());
      }
      stepState_.setNonredundantState(state_);
      KtManipulatorActiveState& active = stepState_.manipulatorActiveStateVector()[0];
      active.setAccelerationState(gravity_);
      tool.acceleration(system_, manipulator_, jointTorques_, external_, acceleration_, active,
                        true);
      active.setAccelerationState(acceleration_);
      system_.propagateTo(state_.time() + kStep, state_, stepResults_, stepState_);
    }
  }

  void appendState(Numbers& numbers) const {
    const KtPositionState& position = state_.positionStates()[0];
    const KtVelocityState& velocity = state_.velocityStates()[0];
    const double duration = kStep * kStepsPerState;
    for (const double q : position.jointPositions().vectorContainer()) numbers.push_back(q);
    if (!manipulator_.isFixedBase()) {
      append(numbers, position.coordSysXForm().translation());
      append(numbers, position.coordSysXForm().orientation());
    }
    for (const double rate : velocity.jointVelocities().vectorContainer()) {
      numbers.push_back(rate * duration);
    }
    if (!manipulator_.isFixedBase()) {
      append(numbers, velocity.generalVelocity().linear() * duration);
      append(numbers, velocity.generalVelocity().angular() * duration);
    }
  }
  void appendMotion(Numbers& numbers, KtU32 i) const {
    const auto& frame = active_.activePositionState().linkPositionStates()[i].dhFrame();
    append(numbers, frame.orientation());
    append(numbers, frame.translation());
    const KtGeneralMotion& motion = std::as_const(active_)
                                        .activeVelocityState()
                                        .linkVelocityStates()[i]
                                        .dhFrameVelocityInSystem();
    append(numbers, motion.linear());
    append(numbers, motion.angular());
  }

  KtStatedSystem system_;
  const KtIndividualManipulator& manipulator_;
  std::vector<const KtManipulatorLink*> links_;
  std::vector<LibraryState> states_;
  KtManipulatorActiveState active_;
  KtTotalTorqueTool torqueTool_;
  KtMassMatrixTool massMatrixTool_;
  KtArbiAccelerationTool arbiTool_;
  KtCrbiAccelerationTool crbiTool_;
  KtManipulatorExternalForce external_;
  const KtManipulatorTorque* torque_ = nullptr;
  const KtReArray* mass_ = nullptr;
  KtAccelerationState acceleration_;
  // Of steps
  KtManipulatorSystemState state_;
  KtSystemActiveState stepState_;
  KtStatedSystem::ResultVector stepResults_;
  KtManipulatorTorque jointTorques_;
  KtAccelerationState gravity_;  // alone
};

}  // namespace

std::unique_ptr<Subject> makeLibrary(const mechanisms::Mechanism& mechanism, const States& states) {
  return std::make_unique<Library>(mechanism, states);
}
