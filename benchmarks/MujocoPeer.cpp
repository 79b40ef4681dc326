// MuJoCo. Only the stages that an operation needs are called, so that no contact, constraint,
// sensor or actuator takes time. A step is its whole `mj_step`, with these switched off; joints
// have no damping, without which its Euler integration isn't implicit in the velocities.
//
// The coordinates of a free joint are the velocity of the base's origin in the world's axes and its
// angular velocity in its own; they come before those of the joints.
#include <mujoco/mujoco.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

#include "DynamicsSubject.h"

namespace {

using mechanisms::kBase;

std::string text(std::span<const double> values) {
  std::string result;
  for (const double x : values) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.17g ", x);
    result += buffer;
  }
  return result;
}

std::string text(const mechanisms::Inertia& inertia) {
  return "<inertial pos='" + text(inertia.center) + "' quat='" + text(inertia.axes) + "' mass='" +
         text({&inertia.mass, 1}) + "' diaginertia='" + text(inertia.principalMoments) + "'/>";
}

// The description of a mechanism as files that include each other: a file may nest only so deep.
class Description {
 public:
  explicit Description(const mechanisms::Mechanism& mechanism) : mechanism_(mechanism) {
    std::string world = "<worldbody>";
    if (!mechanism.fixedBase) world += "<body><freejoint/>" + text(mechanism.base);
    world += bodies(kBase, 0);
    if (!mechanism.fixedBase) world += "</body>";
    files_.push_back("<mujoco><compiler angle='radian'/><option gravity='0 0 " + text({&kDown, 1}) +
                     "'/>" + world + "</worldbody></mujoco>");
  }

  mjModel* load() const {
    const auto folder = std::make_unique<mjVFS>();
    mj_defaultVFS(folder.get());
    for (std::size_t i = 0; i < files_.size(); ++i) {
      mj_makeEmptyFileVFS(folder.get(), fileName(i).c_str(), static_cast<int>(files_[i].size()));
      std::memcpy(folder->filedata[i], files_[i].data(), files_[i].size());
    }
    char error[500] = "";
    mjModel* model =
        mj_loadXML(fileName(files_.size() - 1).c_str(), folder.get(), error, sizeof error);
    mj_deleteVFS(folder.get());
    if (model == nullptr) {
      std::fprintf(stderr, "MuJoCo: %s\n", error);
      std::exit(1);
    }
    return model;
  }

 private:
  static constexpr double kDown = -mechanisms::kGravity;
  static constexpr int kGreatestDepth = 50;

  static std::string fileName(std::size_t i) { return "part" + std::to_string(i) + ".xml"; }

  std::string bodies(std::size_t parent, int depth) {
    std::string result;
    for (std::size_t i = 0; i < mechanism_.bodies.size(); ++i) {
      const mechanisms::Body& body = mechanism_.bodies[i];
      if (body.parent != parent) continue;
      result += "<body pos='" + text(body.position) + "' quat='" + text(body.orientation) +
                "'><joint type='hinge' axis='0 0 1'/>" + text(body.inertia);
      if (depth < kGreatestDepth) {
        result += bodies(i, depth + 1);
      } else {
        const std::string below = bodies(i, 0);
        result += "<include file='" + fileName(files_.size()) + "'/>";
        files_.push_back("<mujocoinclude>" + below + "</mujocoinclude>");
      }
      result += "</body>";
    }
    return result;
  }

  const mechanisms::Mechanism& mechanism_;
  std::vector<std::string> files_;
};

struct MujocoState {
  std::vector<double> q, qDot, qDotDot, force;
  double rotation[9];  // of the base

  MujocoState(const mechanisms::State& s, bool fixedBase) {
    mju_quat2Mat(rotation, s.orientation.data());
    if (!fixedBase) {
      append(q, s.position);
      append(q, s.orientation);
      appendMotion(qDot, s.linearVelocity, s.angularVelocity);
      appendMotion(qDotDot, s.linearAcceleration, s.angularAcceleration);
      mechanisms::Vector worldForce;
      mju_rotVecMat(worldForce.data(), s.force.data(), rotation);
      append(force, worldForce);
      append(force, s.moment);
    }
    append(q, s.q);
    append(qDot, s.qDot);
    append(qDotDot, s.qDotDot);
    append(force, s.torque);
  }

 private:
  static void append(std::vector<double>& list, std::span<const double> values) {
    list.insert(list.end(), values.begin(), values.end());
  }
  void appendMotion(std::vector<double>& list, const mechanisms::Vector& linear,
                    const mechanisms::Vector& angular) {
    append(list, linear);
    mechanisms::Vector local;
    mju_rotVecMatT(local.data(), angular.data(), rotation);
    append(list, local);
  }
};

class Mujoco : public Subject {
 public:
  Mujoco(const mechanisms::Mechanism& mechanism, const States& states)
      : model_(Description(mechanism).load()),
        fixedBase_(mechanism.fixedBase),
        velocities_(3 * static_cast<std::size_t>(model_->nbody)),
        output_(dof()),
        mass_(dof() * dof()) {
    model_->opt.timestep = kStep;
    model_->opt.integrator = mjINT_EULER;
    model_->opt.disableflags |= mjDSBL_CONSTRAINT | mjDSBL_EQUALITY | mjDSBL_FRICTIONLOSS |
                                mjDSBL_LIMIT | mjDSBL_CONTACT | mjDSBL_PASSIVE | mjDSBL_WARMSTART |
                                mjDSBL_ACTUATION | mjDSBL_SENSOR;
    model_->opt.enableflags = 0;
    for (const mechanisms::State& state : states) states_.emplace_back(state, fixedBase_);
  }
  ~Mujoco() override {
    mj_deleteData(data_);
    mj_deleteModel(model_);
  }
  Mujoco(const Mujoco&) = delete;
  Mujoco& operator=(const Mujoco&) = delete;

  bool offers(Operation operation) const override {
    return operation != Operation::kArticulatedDynamics;
  }

  void run(Operation operation, std::size_t first, std::size_t count) override {
    const auto each = [&](auto call) {
      for (std::size_t i = 0; i < count; ++i) call(states_[(first + i) % states_.size()]);
    };
    switch (operation) {
      case Operation::kForwardKinematics:
        return each([&](const MujocoState& s) {
          setPositions(s);
          setVelocities(s);
          computeOriginVelocities();
        });
      case Operation::kInverseDynamics:
        return each([&](const MujocoState& s) {
          setPositions(s);
          setVelocities(s);
          std::copy(s.qDotDot.begin(), s.qDotDot.end(), data_->qacc);
          mj_rne(model_, data_, 1, output_.data());
        });
      case Operation::kMassMatrix:
        return each([&](const MujocoState& s) {
          setPositions(s);
          mj_crb(model_, data_);
          mj_fullM(model_, mass_.data(), data_->qM);
        });
      case Operation::kArticulatedDynamics:
        return;
      case Operation::kMassMatrixDynamics:
        return each([&](const MujocoState& s) {
          setPositions(s);
          setVelocities(s);
          mj_crb(model_, data_);
          mj_factorM(model_, data_);
          mj_rne(model_, data_, 0, output_.data());
          for (std::size_t i = 0; i < output_.size(); ++i) output_[i] = s.force[i] - output_[i];
          mj_solveM(model_, data_, output_.data(), output_.data(), 1);
        });
      case Operation::kArticulatedStep:  // to compare with, though it is by the mass matrix
      case Operation::kMassMatrixStep:
        for (std::size_t i = 0; i < count; ++i) {
          if (i % kStepsPerState == 0) {
            begin(states_[(first + i / kStepsPerState) % states_.size()]);
          }
          mj_step(model_, data_);
        }
        return;
    }
  }

  Numbers result(Operation operation, std::size_t state) const override {
    const double* rotation = states_[state].rotation;
    if (operation == Operation::kForwardKinematics) return motions();
    if (operation == Operation::kMassMatrix) return massInBase(rotation);
    if (isStep(operation)) return stepped();
    Numbers numbers = output_;
    if (fixedBase_) return numbers;
    if (operation == Operation::kInverseDynamics) {
      mju_rotVecMatT(&numbers[0], &output_[0], rotation);  // the force, to the base's axes
    } else {
      mju_rotVecMat(&numbers[3], &output_[3], rotation);  // to the system's axes
    }
    std::rotate(numbers.begin(), numbers.begin() + 6, numbers.end());
    return numbers;
  }

 private:
  std::size_t dof() const { return static_cast<std::size_t>(model_->nv); }

  void setPositions(const MujocoState& s) {
    std::copy(s.q.begin(), s.q.end(), data_->qpos);
    mj_kinematics(model_, data_);
    mj_comPos(model_, data_);
  }
  void setVelocities(const MujocoState& s) {
    std::copy(s.qDot.begin(), s.qDot.end(), data_->qvel);
    mj_comVel(model_, data_);
  }
  void begin(const MujocoState& s) {
    data_->time = 0.0;
    std::copy(s.q.begin(), s.q.end(), data_->qpos);
    std::copy(s.qDot.begin(), s.qDot.end(), data_->qvel);
    std::copy(s.force.begin(), s.force.end(), data_->qfrc_applied);
    if (!fixedBase_) std::fill_n(data_->qfrc_applied, 6, 0.0);
  }
  Numbers stepped() const {
    const double duration = kStep * kStepsPerState;
    const int base = fixedBase_ ? 0 : 6;
    Numbers numbers(data_->qpos + base + (fixedBase_ ? 0 : 1), data_->qpos + model_->nq);
    double rotation[9];
    if (!fixedBase_) {
      mju_quat2Mat(rotation, data_->qpos + 3);
      numbers.insert(numbers.end(), data_->qpos, data_->qpos + 3);
      numbers.insert(numbers.end(), rotation, rotation + 9);
    }
    for (int i = base; i < model_->nv; ++i) numbers.push_back(data_->qvel[i] * duration);
    if (!fixedBase_) {
      double angular[3];
      mju_rotVecMat(angular, data_->qvel + 3, rotation);
      for (int i = 0; i < 3; ++i) numbers.push_back(data_->qvel[i] * duration);
      for (const double rate : angular) numbers.push_back(rate * duration);
    }
    return numbers;
  }
  // Body velocities are kept about the centre of mass of the whole tree.
  void computeOriginVelocities() {
    for (int i = 1; i < model_->nbody; ++i) {
      const double* motion = data_->cvel + 6 * i;
      const double* origin = data_->xpos + 3 * i;
      const double* center = data_->subtree_com + 3 * model_->body_rootid[i];
      const double arm[3] = {origin[0] - center[0], origin[1] - center[1], origin[2] - center[2]};
      double* velocity = velocities_.data() + 3 * i;
      velocity[0] = motion[3] + motion[1] * arm[2] - motion[2] * arm[1];
      velocity[1] = motion[4] + motion[2] * arm[0] - motion[0] * arm[2];
      velocity[2] = motion[5] + motion[0] * arm[1] - motion[1] * arm[0];
    }
  }

  Numbers motions() const {
    Numbers numbers;
    const auto append = [&](const double* values, int count) {
      numbers.insert(numbers.end(), values, values + count);
    };
    for (int i = fixedBase_ ? 1 : 2; i < model_->nbody; ++i) {
      append(data_->xmat + 9 * i, 9);
      append(data_->xpos + 3 * i, 3);
      append(velocities_.data() + 3 * i, 3);
      append(data_->cvel + 6 * i, 3);
    }
    return numbers;
  }

  // Turns the rows and columns of the base's linear motion, and puts the base last.
  Numbers massInBase(const double* rotation) const {
    const std::size_t n = dof();
    if (fixedBase_) return mass_;
    Numbers turned = mass_;
    for (std::size_t i = 0; i < n; ++i) mju_rotVecMatT(&turned[i * n], &mass_[i * n], rotation);
    for (std::size_t j = 0; j < n; ++j) {
      const double column[3] = {turned[j], turned[n + j], turned[2 * n + j]};
      double local[3];
      mju_rotVecMatT(local, column, rotation);
      for (std::size_t i = 0; i < 3; ++i) turned[i * n + j] = local[i];
    }
    Numbers result(n * n);
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j < n; ++j) {
        result[i * n + j] = turned[(i + 6) % n * n + (j + 6) % n];
      }
    }
    return result;
  }

  mjModel* model_;
  mjData* data_ = mj_makeData(model_);
  bool fixedBase_;
  std::vector<MujocoState> states_;
  std::vector<double> velocities_;  // of the bodies' origins
  std::vector<double> output_, mass_;
};

}  // namespace

std::unique_ptr<Subject> makeMujoco(const mechanisms::Mechanism& mechanism, const States& states) {
  return std::make_unique<Mujoco>(mechanism, states);
}
