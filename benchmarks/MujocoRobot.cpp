#include <mujoco/mujoco.h>
#include <tinyxml2.h>

#include <Eigen/Dense>
#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <sstream>

#include "RobotPeers.h"

namespace {

using Eigen::Vector3d;

Vector3d vectorOf(const tinyxml2::XMLElement* element, const char* attribute) {
  Vector3d v = Vector3d::Zero();
  const char* text = element == nullptr ? nullptr : element->Attribute(attribute);
  if (text != nullptr) std::istringstream(text) >> v[0] >> v[1] >> v[2];
  return v;
}

// MuJoCo keeps an inertia as principal moments and axes, and finds the axes to about 1e-6 only. So
// they are computed anew from the file: the same mechanism for both sides.
void sharpen(const tinyxml2::XMLElement& link, mjModel& model) {
  const int body = mj_name2id(&model, mjOBJ_BODY, link.Attribute("name"));
  const auto* inertial = link.FirstChildElement("inertial");
  if (body <= 0 || inertial == nullptr) return;
  const auto* inertia = inertial->FirstChildElement("inertia");
  const auto entry = [&](const char* name) { return inertia->DoubleAttribute(name); };
  Eigen::Matrix3d tensor;
  tensor << entry("ixx"), entry("ixy"), entry("ixz"), entry("ixy"), entry("iyy"), entry("iyz"),
      entry("ixz"), entry("iyz"), entry("izz");
  const Vector3d rpy = vectorOf(inertial->FirstChildElement("origin"), "rpy");
  const Eigen::Quaterniond turn = Eigen::AngleAxisd(rpy[2], Vector3d::UnitZ()) *
                                  Eigen::AngleAxisd(rpy[1], Vector3d::UnitY()) *
                                  Eigen::AngleAxisd(rpy[0], Vector3d::UnitX());
  const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(tensor);
  Eigen::Matrix3d axes = solver.eigenvectors();
  if (axes.determinant() < 0.0) axes.col(0) = -axes.col(0);
  const Eigen::Quaterniond principal(turn * Eigen::Quaterniond(axes));
  const double quaternion[] = {principal.w(), principal.x(), principal.y(), principal.z()};
  for (int i = 0; i < 4; ++i) model.body_iquat[4 * body + i] = quaternion[i];
  for (int i = 0; i < 3; ++i) model.body_inertia[3 * body + i] = solver.eigenvalues()[i];
  // What it concluded from the old axes.
  model.body_sameframe[body] = 0;
  model.body_simple[body] = 0;
  for (int i = 0; i < model.body_dofnum[body]; ++i) {
    model.dof_simplenum[model.body_dofadr[body] + i] = 0;
  }
}

// The file as MuJoCo can read it here: without meshes, and for a free base with the joint that
// frees it. Joints by the links that they move.
bool prepare(const RobotQuestion& question, const std::string& to, tinyxml2::XMLDocument& document,
             std::map<std::string, std::string>& joints) {
  if (document.LoadFile(question.file.c_str()) != tinyxml2::XML_SUCCESS) return false;
  tinyxml2::XMLElement& robot = *document.RootElement();
  // A body for each link, and inertias that no body has are taken, to be put right later.
  auto* compiler = robot.InsertNewChildElement("mujoco")->InsertNewChildElement("compiler");
  compiler->SetAttribute("fusestatic", "false");
  compiler->SetAttribute("balanceinertia", "true");
  std::map<std::string, bool> isRoot;
  for (auto* link = robot.FirstChildElement("link"); link != nullptr;
       link = link->NextSiblingElement("link")) {
    isRoot[link->Attribute("name")] = true;
    for (const char* name : {"visual", "collision"}) {
      while (auto* child = link->FirstChildElement(name)) link->DeleteChild(child);
    }
  }
  for (auto* joint = robot.FirstChildElement("joint"); joint != nullptr;
       joint = joint->NextSiblingElement("joint")) {
    const char* child = joint->FirstChildElement("child")->Attribute("link");
    isRoot[child] = false;
    joints[child] = joint->Attribute("name");
  }
  if (question.freeBase) {
    // It takes a link of that name for what doesn't move.
    const std::string base = "the base", world = "world";
    for (auto* e = robot.FirstChildElement(); e != nullptr; e = e->NextSiblingElement()) {
      auto* named = std::string(e->Name()) == "joint" ? e->FirstChildElement("parent") : e;
      const char* key = named == e ? "name" : "link";
      if (const char* name = named->Attribute(key); name != nullptr && isRoot[name]) {
        named->SetAttribute(key, base.c_str());
      }
    }
    robot.InsertNewChildElement("link")->SetAttribute("name", world.c_str());
    auto* joint = robot.InsertNewChildElement("joint");
    joint->SetAttribute("name", "the free joint");
    joint->SetAttribute("type", "floating");
    joint->InsertNewChildElement("parent")->SetAttribute("link", world.c_str());
    joint->InsertNewChildElement("child")->SetAttribute("link", base.c_str());
  }
  return document.SaveFile(to.c_str()) == tinyxml2::XML_SUCCESS;
}

}  // namespace

RobotAnswers askMujoco(const RobotQuestion& question) {
  RobotAnswers answers;
  std::map<std::string, std::string> joints;
  const std::string file = std::filesystem::temp_directory_path() /
                           ("mujoco-" + std::filesystem::path(question.file).filename().string());
  tinyxml2::XMLDocument document;
  if (!prepare(question, file, document, joints)) {
    answers.whyNot = "the file can't be read";
    return answers;
  }
  char error[500] = "";
  const std::unique_ptr<mjModel, decltype(&mj_deleteModel)> model(
      mj_loadXML(file.c_str(), nullptr, error, sizeof error), mj_deleteModel);
  if (model == nullptr) {
    answers.whyNot = error;
    return answers;
  }
  for (const auto* link = document.RootElement()->FirstChildElement("link"); link != nullptr;
       link = link->NextSiblingElement("link")) {
    sharpen(*link, *model);
  }
  model->opt.disableflags |= mjDSBL_CONSTRAINT | mjDSBL_PASSIVE;
  model->opt.enableflags |= mjENBL_ENERGY;
  const std::unique_ptr<mjData, decltype(&mj_deleteData)> data(mj_makeData(model.get()),
                                                               mj_deleteData);
  std::vector<int> at, bodies;
  for (std::size_t i = 0; i < question.links.size(); ++i) {
    const int joint = mj_name2id(model.get(), mjOBJ_JOINT, joints[question.links[i]].c_str());
    if (joint < 0) {
      answers.whyNot = "it has no joint " + joints[question.links[i]];
      return answers;
    }
    at.push_back(model->jnt_dofadr[joint]);
    bodies.push_back(model->jnt_bodyid[joint]);
    data->qpos[model->jnt_qposadr[joint]] = question.q[i];
  }
  std::vector<int> all = at;  // those of the base too
  if (question.freeBase) {
    const int base = model->jnt_dofadr[mj_name2id(model.get(), mjOBJ_JOINT, "the free joint")];
    for (int i = 0; i < 6; ++i) all.push_back(base + i);
  }
  auto& lists = answers.lists;
  const auto take = [](std::vector<double>& list, const mjtNum* from, const std::vector<int>& of) {
    for (const int i : of) list.push_back(from[i]);
  };
  mj_forward(model.get(), data.get());
  take(lists["gravity"], data->qfrc_bias, all);
  std::vector<mjtNum> mass(static_cast<std::size_t>(model->nv) *
                           static_cast<std::size_t>(model->nv));
  mj_fullM(model.get(), mass.data(), data->qM);
  for (const int i : at) take(lists["mass matrix"], mass.data() + i * model->nv, at);
  for (std::size_t i = 0; i < at.size(); ++i) {
    data->qvel[at[i]] = question.qd[i];
    data->qfrc_applied[at[i]] = question.tau[i];
  }
  mj_forward(model.get(), data.get());
  take(lists["forward dynamics"], data->qacc, all);
  for (const int body : bodies) {
    take(lists["positions"], data->xpos + 3 * body, {0, 1, 2});
    take(lists["axes"], data->xmat + 9 * body, {0, 3, 6, 1, 4, 7, 2, 5, 8});
    mjtNum velocity[6];  // with the angular part first
    mj_objectVelocity(model.get(), data.get(), mjOBJ_XBODY, body, velocity, 0);
    take(lists["velocities"], velocity, {3, 4, 5, 0, 1, 2});
  }
  if (question.freeBase) {
    // It counts no mass that is fixed to the outside.
    lists["mass"] = {0.0};
    for (int i = 0; i < model->nbody; ++i) lists["mass"][0] += model->body_mass[i];
    take(lists["centre of mass"], data->subtree_com, {0, 1, 2});
    take(lists["energies"], data->energy, {1, 0});
  }
  std::fill_n(data->qacc, model->nv, 0.0);
  for (std::size_t i = 0; i < at.size(); ++i) data->qacc[at[i]] = question.qdd[i];
  mj_inverse(model.get(), data.get());
  take(lists["inverse dynamics"], data->qfrc_inverse, all);
  return answers;
}
