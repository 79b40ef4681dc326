#include <console_bridge/console.h>
#include <urdf_model/model.h>
#include <urdf_parser/urdf_parser.h>

#include <Eigen/Dense>
#include <kdl/tree.hpp>
#include <kdl/treeidsolver_recursive_newton_euler.hpp>

#include "RobotPeers.h"

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

  double mass = 0.0;
  for (const auto& [name, element] : tree.getSegments()) {
    mass += element.segment.getInertia().getMass();
  }
  const std::size_t six = joints.size(), n = question.links.size(), all = six + n;
  joints.insert(joints.end(), question.links.begin(), question.links.end());
  std::vector<unsigned> at;
  for (const std::string& name : joints) at.push_back(tree.getSegment(name)->second.q_nr);

  using List = std::vector<double>;
  const auto torques = [&](const List& rates, const List& accelerations, double g) {
    const unsigned size = tree.getNrOfJoints();
    KDL::JntArray position(size), rate(size), acceleration(size), torque(size);
    for (std::size_t i = 0; i < n; ++i) position(at[six + i]) = question.q[i];
    for (std::size_t i = 0; i < all; ++i) rate(at[i]) = rates[i];
    for (std::size_t i = 0; i < all; ++i) acceleration(at[i]) = accelerations[i];
    KDL::TreeIdSolver_RNE solver(tree, KDL::Vector(0.0, 0.0, -g));
    solver.CartToJnt(position, rate, acceleration, KDL::WrenchMap(), torque);
    Eigen::VectorXd result(static_cast<Eigen::Index>(all));
    for (std::size_t i = 0; i < all; ++i) result[static_cast<Eigen::Index>(i)] = torque(at[i]);
    return result;
  };
  // The base is at rest, and its lists come first here.
  const auto whole = [six](List list) {
    list.insert(list.begin(), six, 0.0);
    return list;
  };
  const auto inOrder = [six](const Eigen::VectorXd& v) {
    List list(v.begin() + static_cast<long>(six), v.end());
    list.insert(list.end(), v.begin(), v.begin() + static_cast<long>(six));
    return list;
  };
  const List none(all, 0.0), rates = whole(question.qd);
  Eigen::MatrixXd matrix(all, all);
  for (std::size_t i = 0; i < all; ++i) {
    List unit = none;
    unit[i] = 1.0;
    matrix.col(static_cast<Eigen::Index>(i)) = torques(none, unit, 0.0);
  }
  const List pushes = whole(question.tau);
  const Eigen::VectorXd net =
      Eigen::Map<const Eigen::VectorXd>(pushes.data(), static_cast<Eigen::Index>(all)) -
      torques(rates, none, 9.81);
  const auto joint = Eigen::seqN(static_cast<Eigen::Index>(six), n);
  const Eigen::MatrixXd ofJoints = matrix(joint, joint);
  answers.lists["mass"] = {mass};
  answers.lists["gravity"] = inOrder(torques(none, none, 9.81));
  answers.lists["mass matrix"] = List(ofJoints.data(), ofJoints.data() + ofJoints.size());
  answers.lists["inverse dynamics"] = inOrder(torques(rates, whole(question.qdd), 9.81));
  answers.lists["forward dynamics"] = inOrder(matrix.ldlt().solve(net));
  return answers;
}
