#include "ImportModel.h"

#include <urdf_model/joint.h>
#include <urdf_model/link.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <set>

#include "ktManipulator/constraints/KtLinearStateEqualityConstraint.h"
#include "ktManipulator/foundation/shape/KtBoxShape.h"
#include "ktManipulator/foundation/shape/KtCylinderShape.h"
#include "ktManipulator/foundation/shape/KtShapeUnion.h"
#include "ktManipulator/foundation/shape/KtSphereShape.h"
#include "ktManipulator/kinematics/KtDenavitHartenberg.h"

namespace {

// Below this rate of a joint, rad/s or m/s, its dry friction holds it; a URDF file doesn't say.
constexpr double kStickingRate = 1e-3;

KtVector vectorOf(const urdf::Vector3& v) {
  return {v.x, v.y, v.z};
}

KtCoordinateSystemTransformation frameOf(const urdf::Pose& pose) {
  const urdf::Rotation& r = pose.rotation;
  return {vectorOf(pose.position), KtOrientation(r.w, r.x, r.y, r.z)};
}

// A rotation that takes z to a direction: the one by the least angle, or, where that is more than a
// right one, half a turn about x before one from -z.
KtOrientation turnFromZ(const KtVector& direction) {
  KtVector a = direction.unitVector();
  const bool below = a.z < 0.0;
  if (below) a = -a;
  // About z x a, by the angle whose half has the cosine sqrt((1 + a.z) / 2).
  KtOrientation turn(1.0 + a.z, -a.y, a.x, 0.0);
  turn.normalize();
  // Whatever takes z to a takes -z to -a.
  return below ? turn * KtOrientation(0.0, 1.0, 0.0, 0.0) : turn;
}

// The inverse, without the negative zeros that nobody wants to read in a file.
KtCoordinateSystemTransformation turnedBack(const KtOrientation& r) {
  return KtOrientation(r[0], 0.0 - r[1], 0.0 - r[2], 0.0 - r[3]);
}

KtRigidBodyMassProperties massOf(const urdf::Inertial& inertial) {
  KtRigidBodyMassProperties mass;
  // As given: what isn't a body's inertia is for `inspect` to tell, not to be changed here.
  mass.set(KtNonNegReal(inertial.mass), KtVector(),
           KtSecondMoment(inertial.ixx, inertial.iyy, inertial.izz, inertial.ixy, inertial.ixz,
                          inertial.iyz),
           false);
  mass.transformBy(frameOf(inertial.origin));
  return mass;
}

std::unique_ptr<KtShape> shapeOf(const urdf::Geometry& geometry,
                                 const KtCoordinateSystemTransformation& frame) {
  switch (geometry.type) {
    case urdf::Geometry::BOX:
      return std::make_unique<KtBoxShape>(vectorOf(static_cast<const urdf::Box&>(geometry).dim),
                                          frame);
    case urdf::Geometry::SPHERE:
      return std::make_unique<KtSphereShape>(frame.translation(),
                                             static_cast<const urdf::Sphere&>(geometry).radius);
    case urdf::Geometry::CYLINDER: {
      const auto& cylinder = static_cast<const urdf::Cylinder&>(geometry);
      return std::make_unique<KtCylinderShape>(cylinder.radius, cylinder.length, frame);
    }
    default:
      return nullptr;  // the document has no others
  }
}

void addShapes(const urdf::Link& source, const KtCoordinateSystemTransformation& frame,
               std::vector<std::unique_ptr<KtShape>>& shapes) {
  const std::size_t count = source.collision_array.size();
  for (std::size_t i = 0; i < count; ++i) {
    const urdf::Collision& collision = *source.collision_array[i];
    std::unique_ptr<KtShape> shape =
        shapeOf(*collision.geometry, frame * frameOf(collision.origin));
    if (shape == nullptr) continue;
    const std::string number = count == 1 ? "" : " " + std::to_string(i + 1);
    shape->setIdentifier(collision.name.empty() ? source.name + number : collision.name);
    shapes.push_back(std::move(shape));
  }
}

KtDenavitHartenberg jointModel(KtDenavitHartenberg::JointType type,
                               const KtCoordinateSystemTransformation& precursor,
                               const KtCoordinateSystemTransformation& primaryFrame) {
  KtDenavitHartenberg model;
  model.setJointType(type);
  model.setDhType(KtDenavitHartenberg::kGeneral);
  model.setPrecursor(precursor);
  model.setPrimaryFrame(primaryFrame);
  return model;
}

class Importer {
 public:
  Importer(const urdf::ModelInterface& model, const ImportDocument& document,
           const ImportOptions& options, std::vector<ImportFinding>& notTaken)
      : model_(model), document_(document), options_(options), notTaken_(notTaken) {}

  KtStatedSystem import();

 private:
  // A link to be, with what it hangs on.
  struct Pending {
    std::unique_ptr<KtManipulatorLink> link;
    const urdf::Link* source;  // null for those that only help a planar joint
    std::size_t parent;
  };
  // A joint that mimics another, by the indices of the links that they move.
  struct Follower {
    KtU32 index, leader;
    double multiplier, offset;
  };
  // Stands for the base.
  static constexpr std::size_t kBase = static_cast<std::size_t>(-1);

  std::vector<urdf::JointSharedPtr> jointsOf(const urdf::Link& link) const;
  const urdf::Link& childOf(const urdf::Joint& joint) const;
  void fill(KtManipulatorLink& link, std::size_t index, const urdf::Link& source);
  void merge(KtManipulatorLink& link, const urdf::Joint& joint,
             const KtCoordinateSystemTransformation& frame);
  void addMoving(const KtManipulatorLink& parent, std::size_t index, const urdf::Joint& joint,
                 const KtCoordinateSystemTransformation& frame);
  void addPlanar(std::size_t parent, const urdf::Joint& joint,
                 const KtCoordinateSystemTransformation& inboard);
  std::size_t add(const KtDenavitHartenberg& model, std::size_t parent, const std::string& label,
                  const urdf::Link* source);
  void assemble(KtIndividualManipulator& base);
  void setActuator(KtManipulatorLink& link, const urdf::Joint& joint) const;
  const urdf::Link& findBase(KtIndividualManipulator& base,
                             KtCoordinateSystemTransformation& place);
  std::string freeLabel(std::string label);
  std::vector<Follower> followersOf(const KtIndividualManipulator& base) const;
  static void addMimics(KtIndividualManipulator& base, const std::vector<Follower>& followers);
  static void mapCollisions(KtIndividualManipulator& base);
  static KtPositionState startOf(const KtIndividualManipulator& base,
                                 const std::vector<Follower>& followers);
  void leaveOut(int line, const std::string& text) { notTaken_.push_back({line, text}); }

  const urdf::ModelInterface& model_;
  const ImportDocument& document_;
  const ImportOptions& options_;
  std::vector<ImportFinding>& notTaken_;
  std::vector<Pending> links_;          // each behind its parent
  std::set<std::string> helperLabels_;  // of those without a source
};

std::vector<urdf::JointSharedPtr> Importer::jointsOf(const urdf::Link& link) const {
  // The model sorts by name; people expect the order of their file.
  std::vector<urdf::JointSharedPtr> joints = link.child_joints;
  std::stable_sort(joints.begin(), joints.end(), [&](const auto& a, const auto& b) {
    return document_.jointLine(a->name) < document_.jointLine(b->name);
  });
  return joints;
}

const urdf::Link& Importer::childOf(const urdf::Joint& joint) const {
  return *model_.getLink(joint.child_link_name);
}

// Gives a link what the robot's link has and all that is fixed to it; the joints that move are
// added to what is to be done. Nothing here recurses: a robot may be a long chain.
void Importer::fill(KtManipulatorLink& link, std::size_t index, const urdf::Link& source) {
  struct Part {
    const urdf::Link* source;
    KtCoordinateSystemTransformation frame;
  };
  link.setMassProperties(source.inertial ? massOf(*source.inertial) : KtRigidBodyMassProperties());
  std::vector<Part> parts{{&source, {}}};
  std::vector<std::unique_ptr<KtShape>> shapes;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const Part part = parts[i];
    addShapes(*part.source, part.frame, shapes);
    for (const urdf::JointSharedPtr& joint : jointsOf(*part.source)) {
      const KtCoordinateSystemTransformation frame =
          part.frame * frameOf(joint->parent_to_joint_origin_transform);
      if (joint->type == urdf::Joint::FIXED || joint->type == urdf::Joint::FLOATING) {
        merge(link, *joint, frame);
        parts.push_back({&childOf(*joint), frame});
      } else {
        addMoving(link, index, *joint, frame);
      }
    }
  }
  if (shapes.size() == 1) {
    link.setShape(*shapes.front());
  } else if (!shapes.empty()) {
    KtShapeUnion all;
    all.setIdentifier(source.name);
    for (const auto& shape : shapes) all.addMember(*shape);
    link.setShape(all);
  }
}

// Takes over mass and frame of a link that doesn't move against the one it becomes part of.
void Importer::merge(KtManipulatorLink& link, const urdf::Joint& joint,
                     const KtCoordinateSystemTransformation& frame) {
  if (joint.type == urdf::Joint::FLOATING) {
    leaveOut(document_.jointLine(joint.name),
             "the freedom of the floating <joint> \"" + joint.name +
                 "\", which is taken as a fixed one: only a base moves freely");
  }
  const urdf::Link& child = childOf(joint);
  if (child.inertial) {
    KtRigidBodyMassProperties mass = massOf(*child.inertial);
    mass.transformBy(frame);
    link.addMassProperties(child.name, mass);
  }
  if (dynamic_cast<KtIndividualManipulator*>(&link) == nullptr) {
    link.addNamedFrame(child.name, frame);
  } else {
    leaveOut(document_.linkLine(child.name),
             "the frame of <link> \"" + child.name +
                 "\", which is fixed to the base: a base has no named frames in a file");
  }
}

std::size_t Importer::add(const KtDenavitHartenberg& model, std::size_t parent,
                          const std::string& label, const urdf::Link* source) {
  auto link = std::make_unique<KtManipulatorLink>();
  link->setLabel(label);
  link->setLinkKinematics(model);
  link->setMassProperties(KtRigidBodyMassProperties());
  links_.push_back({std::move(link), source, parent});
  return links_.size() - 1;
}

// Adds the link that a joint moves. `frame` is the joint's, in the parent's primary frame.
void Importer::addMoving(const KtManipulatorLink& parent, std::size_t index,
                         const urdf::Joint& joint, const KtCoordinateSystemTransformation& frame) {
  const KtCoordinateSystemTransformation inboard = parent.primaryFrame() * frame;
  if (joint.type == urdf::Joint::PLANAR) {
    addPlanar(index, joint, inboard);
    return;
  }
  // The DH frame turns the joint's axis onto z, and the primary frame turns it back.
  const KtOrientation turn(turnFromZ(vectorOf(joint.axis)));
  const auto type = joint.type == urdf::Joint::PRISMATIC ? KtDenavitHartenberg::kPrismatic
                                                         : KtDenavitHartenberg::kRotational;
  const std::size_t link = add(jointModel(type, inboard * turn, turnedBack(turn)), index,
                               joint.child_link_name, &childOf(joint));
  setActuator(*links_[link].link, joint);
}

// A label for a link that the robot doesn't have.
std::string Importer::freeLabel(std::string label) {
  while (model_.getLink(label) != nullptr || label == options_.name ||
         !helperLabels_.insert(label).second) {
    label += '\'';
  }
  return label;
}

void Importer::addPlanar(std::size_t parent, const urdf::Joint& joint,
                         const KtCoordinateSystemTransformation& inboard) {
  const KtOrientation turn(turnFromZ(vectorOf(joint.axis)));
  // Slides along x and then y of the plane's frame; each moves along z of its own.
  const KtOrientation toX(turnFromZ({1.0, 0.0, 0.0}));
  const KtOrientation toY(turnFromZ({0.0, 1.0, 0.0}));
  const auto slide = KtDenavitHartenberg::kPrismatic;
  const std::size_t along = add(jointModel(slide, inboard * turn * toX, turnedBack(toX)), parent,
                                freeLabel(joint.name + " x"), nullptr);
  const std::size_t across = add(jointModel(slide, turnedBack(toX) * toY, turnedBack(toY)), along,
                                 freeLabel(joint.name + " y"), nullptr);
  add(jointModel(KtDenavitHartenberg::kRotational, turnedBack(toY), turnedBack(turn)), across,
      joint.child_link_name, &childOf(joint));
}

// From the base outwards: a link is copied, with all below it, when it becomes a child, and here
// there is nothing below it yet.
void Importer::assemble(KtIndividualManipulator& base) {
  std::vector<std::vector<std::size_t>> children(links_.size());
  std::vector<std::size_t> ofBase;
  for (std::size_t i = 0; i < links_.size(); ++i) {
    (links_[i].parent == kBase ? ofBase : children[links_[i].parent]).push_back(i);
  }
  std::vector<KtManipulatorLink*> placed(links_.size());
  const auto adopt = [&](KtManipulatorLink& parent, const std::vector<std::size_t>& list) {
    for (const std::size_t child : list) {
      parent.addChild(*links_[child].link);
      links_[child].link.reset();
    }
    // All of them first, as adding one moves the others.
    auto& places = const_cast<KtXmlVectorType<KtManipulatorLink>&>(parent.childLinks());
    for (KtU32 i = 0; i < list.size(); ++i) placed[list[i]] = &places[i];
  };
  adopt(base, ofBase);
  for (std::size_t i = 0; i < links_.size(); ++i) adopt(*placed[i], children[i]);
}

void Importer::setActuator(KtManipulatorLink& link, const urdf::Joint& joint) const {
  KtMechanicalActuatorComponent mechanics;
  KtJointActuator actuator;
  if (joint.limits) {
    if (joint.type != urdf::Joint::CONTINUOUS) {
      mechanics.setLowerLimit(joint.limits->lower);
      mechanics.setUpperLimit(joint.limits->upper);
    }
    if (joint.limits->velocity > 0.0) mechanics.setMaxOutputRate(joint.limits->velocity);
    actuator.setMinTorque(0.0 - joint.limits->effort);
    actuator.setMaxTorque(joint.limits->effort);
  }
  if (joint.dynamics) {
    mechanics.setFrictionCoefficient(joint.dynamics->damping);
    mechanics.setStaticCoulombFriction(joint.dynamics->friction);
    if (joint.dynamics->friction > 0.0) mechanics.setLimitingVelocityStickRegion(kStickingRate);
  }
  actuator.setMechanicalComponent(mechanics);
  link.setJointActuator(actuator);
}

// The link that the base is. A floating joint between a root that is nothing but a place, or
// several fixed to each other, and the rest of the robot makes a free base of the rest.
const urdf::Link& Importer::findBase(KtIndividualManipulator& base,
                                     KtCoordinateSystemTransformation& place) {
  const urdf::Link& root = *model_.getRoot();
  base.setIsFixedBase(!options_.floatingBase);
  KtCoordinateSystemTransformation at;
  std::vector<const urdf::Link*> places;
  for (const urdf::Link* link = &root;
       !link->inertial && link->collision_array.empty() && link->child_joints.size() == 1;) {
    const urdf::Joint& joint = *link->child_joints.front();
    places.push_back(link);
    at = at * frameOf(joint.parent_to_joint_origin_transform);
    link = &childOf(joint);
    if (joint.type == urdf::Joint::FIXED) continue;
    if (joint.type != urdf::Joint::FLOATING) break;
    for (const urdf::Link* gone : places) {
      leaveOut(document_.linkLine(gone->name), "<link> \"" + gone->name +
                                                   "\", from which the base moves freely: the "
                                                   "system's frame stands for it");
    }
    base.setIsFixedBase(false);
    place = at;
    return *link;
  }
  return root;
}

std::vector<Importer::Follower> Importer::followersOf(const KtIndividualManipulator& base) const {
  std::map<std::string, KtU32> indices;
  for (KtU32 i = 0; i < base.jointDof(); ++i) indices[base.linkByIndex(i)->label()] = i;
  std::vector<Follower> followers;
  for (const auto& [label, index] : indices) {
    const urdf::LinkConstSharedPtr link = model_.getLink(label);
    if (link == nullptr || link->parent_joint->mimic == nullptr) continue;
    const urdf::JointMimic& mimic = *link->parent_joint->mimic;
    const std::string& leader = model_.getJoint(mimic.joint_name)->child_link_name;
    followers.push_back({index, indices.at(leader), mimic.multiplier, mimic.offset});
  }
  std::sort(followers.begin(), followers.end(),
            [](const Follower& a, const Follower& b) { return a.index < b.index; });
  return followers;
}

void Importer::addMimics(KtIndividualManipulator& base, const std::vector<Follower>& followers) {
  KtStateEqualityConstraintVector constraints;
  for (const Follower& f : followers) {
    KtLinearStateEqualityConstraint::Row weights(base.jointDof());
    weights[f.index] = 1.0;
    weights[f.leader] = -f.multiplier;
    KtLinearStateEqualityConstraint constraint;
    constraint.setJointWeights(KtLinearStateEqualityConstraint::Rows(1, weights));
    constraint.setWeightedSums(KtLinearStateEqualityConstraint::Row(1, f.offset));
    constraints.pushBack(constraint);
  }
  base.setStateEqualityConstraints(constraints);
}

// The pairs that a user may make candidates: only links with shapes can collide, and a map of all
// links would be the largest part of a long robot's file.
void Importer::mapCollisions(KtIndividualManipulator& base) {
  std::vector<std::string> labels;
  if (base.numberOfShapes() > 0) labels.push_back(base.label());
  for (KtU32 i = 0; i < base.jointDof(); ++i) {
    const KtManipulatorLink& link = *base.linkByIndex(i);
    if (link.numberOfShapes() > 0) labels.push_back(link.label());
  }
  KtManipulatorSelfCollisionLinkMap map;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    for (std::size_t k = 0; k <= i; ++k) {
      map.setLinkCollisionCanditateByIdentifier(labels[i], labels[k], false);
    }
  }
  base.setSelfCollisionLinkMap(map);
}

KtPositionState Importer::startOf(const KtIndividualManipulator& base,
                                  const std::vector<Follower>& followers) {
  const KtU32 joints = base.jointDof();
  KtPositionState position;
  auto& q = position.jointPositions();
  q.resize(joints);
  for (KtU32 i = 0; i < joints; ++i) {
    const KtJointActuator& actuator = base.linkByIndex(i)->jointActuator();
    q[i] = std::fmax(actuator.lowerLimit(), std::fmin(actuator.upperLimit(), 0.0));
  }
  // A follower may follow a follower: each round settles those that stand one further.
  for (std::size_t round = 0; round < followers.size(); ++round) {
    for (const Follower& f : followers) q[f.index] = f.multiplier * q[f.leader] + f.offset;
  }
  return position;
}

KtStatedSystem Importer::import() {
  KtIndividualManipulator base;
  KtCoordinateSystemTransformation place;
  const urdf::Link& source = findBase(base, place);
  base.setLabel(source.name);
  fill(base, kBase, source);
  for (std::size_t i = 0; i < links_.size(); ++i) {
    if (links_[i].source != nullptr) fill(*links_[i].link, i, *links_[i].source);
  }
  assemble(base);
  if (!options_.name.empty()) base.setLabel(options_.name);
  base.mapManipulator();
  const std::vector<Follower> followers = followersOf(base);
  addMimics(base, followers);
  KtPositionState position = startOf(base, followers);
  position.setCoordSysXForm(place);
  mapCollisions(base);
  base.fitAbsoluteBoundingSphere();

  KtStatedSystem result;
  result.setFromManipulator(base);
  KtSystemEnvironment environment;
  environment.setUpGravityVector({0.0, 0.0, 9.81});
  result.setEnvironment(environment);
  result.setIndividualPositionState(0, position);
  return result;
}

}  // namespace

KtStatedSystem importModel(const urdf::ModelInterface& model, const ImportDocument& document,
                           const ImportOptions& options, std::vector<ImportFinding>& notTaken) {
  return Importer(model, document, options, notTaken).import();
}
