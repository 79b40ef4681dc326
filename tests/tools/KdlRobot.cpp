#include <console_bridge/console.h>
#include <urdf_model/model.h>
#include <urdf_parser/urdf_parser.h>

#include <Eigen/Dense>
#include <kdl/tree.hpp>
#include <kdl/treeidsolver_recursive_newton_euler.hpp>

#include "tools/RobotPeers.h"

namespace {

KDL::Frame frameOf(const urdf::Pose& pose) {
  const urdf::Rotation& r = pose.rotation;
  return {KDL::Rotation::Quaternion(r.x, r.y, r.z, r.w),
          KDL::Vector(pose.position.x, pose.position.y, pose.position.z)};
}

KDL::RigidBodyInertia inertiaOf(const urdf::Link& link) {
  if (!link.inertial) return KDL::RigidBodyInertia::Zero();
  const urdf::Inertial& i = *link.inertial;
  return frameOf(i.origin) *
         KDL::RigidBodyInertia(i.mass, KDL::Vector::Zero(),
                               KDL::RotationalInertia(i.ixx, i.iyy, i.izz, i.ixy, i.ixz, i.iyz));
}

void addBelow(KDL::Tree& tree, const urdf::ModelInterface& model, const urdf::Link& link,
              std::string& whyNot) {
  for (const urdf::JointSharedPtr& j : link.child_joints) {
    const urdf::Link& child = *model.getLink(j->child_link_name);
    const KDL::Frame frame = frameOf(j->parent_to_joint_origin_transform);
    const KDL::Vector axis = frame.M * KDL::Vector(j->axis.x, j->axis.y, j->axis.z);
    KDL::Joint joint(j->name, KDL::Joint::Fixed);
    if (j->type == urdf::Joint::PRISMATIC) {
      joint = KDL::Joint(j->name, frame.p, axis, KDL::Joint::TransAxis);
    } else if (j->type == urdf::Joint::REVOLUTE || j->type == urdf::Joint::CONTINUOUS) {
      joint = KDL::Joint(j->name, frame.p, axis, KDL::Joint::RotAxis);
    } else if (j->type != urdf::Joint::FIXED) {
      whyNot = "it has no joints like " + j->name;
    }
    tree.addSegment(KDL::Segment(child.name, joint, frame, inertiaOf(child)), link.name);
    addBelow(tree, model, child, whyNot);
  }
}

}  // namespace

RobotAnswers askKdl(const RobotQuestion& question) {
  RobotAnswers answers;
  console_bridge::noOutputHandler();  // it warns of colours
  const urdf::ModelInterfaceSharedPtr model = urdf::parseURDFFile(question.file);
  console_bridge::restorePreviousOutputHandler();
  if (model == nullptr) {
    answers.whyNot = "the file can't be read";
    return answers;
  }
  // The tree's own root has no mass. A free base hangs on slides along and hinges about the axes.
  const urdf::Link& root = *model->getRoot();
  KDL::Tree tree("the outside");
  std::vector<std::string> joints;
  std::string last = "the outside";
  if (question.freeBase) {
    for (const auto type : {KDL::Joint::TransX, KDL::Joint::TransY, KDL::Joint::TransZ,
                            KDL::Joint::RotX, KDL::Joint::RotY, KDL::Joint::RotZ}) {
      joints.push_back("base " + std::to_string(joints.size()));
      tree.addSegment(KDL::Segment(joints.back(), KDL::Joint(joints.back(), type)), last);
      last = joints.back();
    }
  }
  tree.addSegment(KDL::Segment(root.name, KDL::Joint("base", KDL::Joint::Fixed),
                               KDL::Frame::Identity(), inertiaOf(root)),
                  last);
  addBelow(tree, *model, root, answers.whyNot);
  if (!answers.whyNot.empty()) return answers;

  answers.mass = 0.0;
  for (const auto& [name, element] : tree.getSegments()) {
    answers.mass += element.segment.getInertia().getMass();
  }
  const std::size_t six = joints.size(), n = question.links.size(), all = six + n;
  joints.insert(joints.end(), question.links.begin(), question.links.end());
  std::vector<unsigned> at;
  for (const std::string& name : joints) at.push_back(tree.getSegment(name)->second.q_nr);

  const auto torques = [&](const std::vector<double>& qd, std::size_t unit, double g) {
    const unsigned size = tree.getNrOfJoints();
    KDL::JntArray position(size), rate(size), acceleration(size), torque(size);
    for (std::size_t i = 0; i < n; ++i) position(at[six + i]) = question.q[i];
    for (std::size_t i = 0; i < qd.size(); ++i) rate(at[six + i]) = qd[i];
    if (unit < all) acceleration(at[unit]) = 1.0;
    KDL::TreeIdSolver_RNE solver(tree, KDL::Vector(0.0, 0.0, -g));
    solver.CartToJnt(position, rate, acceleration, KDL::WrenchMap(), torque);
    Eigen::VectorXd result(static_cast<Eigen::Index>(all));
    for (std::size_t i = 0; i < all; ++i) result[static_cast<Eigen::Index>(i)] = torque(at[i]);
    return result;
  };
  const Eigen::VectorXd weights = torques({}, all, 9.81);
  Eigen::MatrixXd mass(all, all);
  for (std::size_t i = 0; i < all; ++i)
    mass.col(static_cast<Eigen::Index>(i)) = torques({}, i, 0.0);
  Eigen::VectorXd net = -torques(question.qd, all, 9.81);
  for (std::size_t i = 0; i < n; ++i) net[static_cast<Eigen::Index>(six + i)] += question.tau[i];
  const Eigen::VectorXd acceleration = mass.ldlt().solve(net);

  for (std::size_t i = six; i < six + all; ++i) {
    // Those of the joints, then those of the base, which the lists here have first.
    answers.accelerations.push_back(acceleration[static_cast<Eigen::Index>(i % all)]);
  }
  for (std::size_t i = six; i < all; ++i) {
    answers.gravityTorques.push_back(weights[static_cast<Eigen::Index>(i)]);
    for (std::size_t k = six; k < all; ++k) {
      answers.massMatrix.push_back(
          mass(static_cast<Eigen::Index>(i), static_cast<Eigen::Index>(k)));
    }
  }
  return answers;
}
