// Orocos KDL on chains. A segment of it with the joint's origin and axis and the pose at the
// joint's zero has the body's frame as its own.
#include <kdl/chain.hpp>
#include <kdl/chaindynparam.hpp>
#include <kdl/chainfdsolver_recursive_newton_euler.hpp>
#include <kdl/chainfksolvervel_recursive.hpp>
#include <kdl/chainhdsolver_vereshchagin.hpp>
#include <kdl/chainidsolver_recursive_newton_euler.hpp>

#include "DynamicsSubject.h"

namespace {

KDL::Vector vector(const mechanisms::Vector& v) {
  return {v[0], v[1], v[2]};
}
KDL::Rotation rotation(const mechanisms::Quaternion& q) {
  return KDL::Rotation::Quaternion(q[1], q[2], q[3], q[0]);
}

KDL::RigidBodyInertia bodyInertia(const mechanisms::Inertia& inertia) {
  const KDL::Rotation axes = rotation(inertia.axes);
  double tensor[3][3] = {};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      for (int k = 0; k < 3; ++k) {
        tensor[i][j] +=
            axes(i, k) * inertia.principalMoments[static_cast<std::size_t>(k)] * axes(j, k);
      }
    }
  }
  return KDL::RigidBodyInertia(inertia.mass, vector(inertia.center),
                               KDL::RotationalInertia(tensor[0][0], tensor[1][1], tensor[2][2],
                                                      tensor[0][1], tensor[0][2], tensor[1][2]));
}

KDL::Chain makeChain(const mechanisms::Mechanism& mechanism) {
  KDL::Chain chain;
  for (const mechanisms::Body& body : mechanism.bodies) {
    const KDL::Frame frame(rotation(body.orientation), vector(body.position));
    const KDL::Joint joint(frame.p, frame.M.UnitZ(), KDL::Joint::RotAxis);
    chain.addSegment(KDL::Segment(joint, frame, bodyInertia(body.inertia)));
  }
  return chain;
}

struct KdlState {
  KDL::JntArray q, qDot, qDotDot, torque;
  KDL::JntArrayVel motion;

  explicit KdlState(const mechanisms::State& s)
      : q(array(s.q)),
        qDot(array(s.qDot)),
        qDotDot(array(s.qDotDot)),
        torque(array(s.torque)),
        motion(q, qDot) {}

  static KDL::JntArray array(const std::vector<double>& values) {
    KDL::JntArray result(static_cast<unsigned>(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i) result(static_cast<unsigned>(i)) = values[i];
    return result;
  }
};

class Kdl : public Subject {
 public:
  Kdl(const mechanisms::Mechanism& mechanism, const States& states)
      : chain_(makeChain(mechanism)), states_(states.begin(), states.end()) {}

  bool offers(Operation operation) const override { return !isStep(operation); }

  void run(Operation operation, std::size_t first, std::size_t count) override {
    const auto each = [&](auto call) {
      for (std::size_t i = 0; i < count; ++i) call(states_[(first + i) % states_.size()]);
    };
    switch (operation) {
      case Operation::kForwardKinematics:
        return each([&](const KdlState& s) { kinematics_.JntToCart(s.motion, frames_); });
      case Operation::kInverseDynamics:
        return each([&](const KdlState& s) {
          inverse_.CartToJnt(s.q, s.qDot, s.qDotDot, noForces_, output_);
        });
      case Operation::kMassMatrix:
        return each([&](const KdlState& s) { parameters_.JntToMass(s.q, mass_); });
      case Operation::kArticulatedDynamics:
        return each([&](const KdlState& s) {
          articulated_.CartToJnt(s.q, s.qDot, output_, noDirection_, noAcceleration_, noForces_,
                                 s.torque, constraintTorques_);
        });
      case Operation::kMassMatrixDynamics:
        return each([&](const KdlState& s) {
          forward_.CartToJnt(s.q, s.qDot, s.torque, noForces_, output_);
        });
      case Operation::kArticulatedStep:
      case Operation::kMassMatrixStep:
        return;
    }
  }

  Numbers result(Operation operation, std::size_t /*state*/) const override {
    Numbers numbers;
    if (operation == Operation::kForwardKinematics) {
      for (const KDL::FrameVel& frame : frames_) {
        numbers.insert(numbers.end(), frame.M.R.data, frame.M.R.data + 9);
        for (const KDL::Vector& v : {frame.p.p, frame.p.v, frame.M.w}) {
          numbers.insert(numbers.end(), v.data, v.data + 3);
        }
      }
      return numbers;
    }
    const bool isMass = operation == Operation::kMassMatrix;
    for (unsigned i = 0; i < joints_; ++i) {
      if (!isMass) numbers.push_back(output_(i));
      for (unsigned j = 0; isMass && j < joints_; ++j) numbers.push_back(mass_(i, j));
    }
    return numbers;
  }

 private:
  // The solver of constrained motion, with a constraint in no direction: it takes at least one.
  static constexpr unsigned kConstraints = 1;
  static KDL::Jacobian noDirection() {
    KDL::Jacobian jacobian(kConstraints);
    jacobian.setColumn(0, KDL::Twist::Zero());
    return jacobian;
  }

  KDL::Chain chain_;
  std::vector<KdlState> states_;
  unsigned joints_ = chain_.getNrOfJoints();
  KDL::Vector gravity_{0.0, 0.0, -mechanisms::kGravity};
  KDL::Wrenches noForces_ = KDL::Wrenches(chain_.getNrOfSegments(), KDL::Wrench::Zero());
  KDL::Jacobian noDirection_ = noDirection();
  KDL::JntArray noAcceleration_{kConstraints};
  KDL::ChainFkSolverVel_recursive kinematics_{chain_};
  KDL::ChainIdSolver_RNE inverse_{chain_, gravity_};
  KDL::ChainDynParam parameters_{chain_, gravity_};
  KDL::ChainHdSolver_Vereshchagin articulated_{chain_, KDL::Twist(-gravity_, KDL::Vector::Zero()),
                                               kConstraints};
  KDL::ChainFdSolver_RNE forward_{chain_, gravity_};
  std::vector<KDL::FrameVel> frames_ = std::vector<KDL::FrameVel>(chain_.getNrOfSegments());
  KDL::JntSpaceInertiaMatrix mass_{static_cast<int>(joints_)};
  KDL::JntArray output_{joints_}, constraintTorques_{joints_};
};

}  // namespace

std::unique_ptr<Subject> makeKdl(const mechanisms::Mechanism& mechanism, const States& states) {
  for (std::size_t i = 1; i < mechanism.bodies.size(); ++i) {
    if (mechanism.bodies[i].parent != i - 1) return nullptr;
  }
  if (!mechanism.fixedBase) return nullptr;
  return std::make_unique<Kdl>(mechanism, states);
}
