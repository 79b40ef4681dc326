#pragma once

#include <string>
#include <vector>

#include "ktManipulator/ktManipulator.h"
#include "support/Random.h"

/// Trees of links for tests.
namespace trees {

/// A link with a random joint, mass and ball, and a label.
inline KtManipulatorLink randomLink(const std::string& label) {
  using namespace sampling;
  KtDenavitHartenberg joint;
  joint.setJointType(uniform() < 0.5 ? KtDenavitHartenberg::kRotational
                                     : KtDenavitHartenberg::kPrismatic);
  joint.setDhType(static_cast<unsigned>(uniform(0.0, 4.999)));
  joint.setPrecursor(randomTransformation());
  joint.setDhA(uniform());
  joint.setDhD(uniform());
  joint.setDhAlpha(uniform(-3.0, 3.0));
  joint.setDhTheta(uniform(-3.0, 3.0));
  joint.setPrimaryFrame(randomTransformation());
  KtManipulatorLink link;
  link.setLabel(label);
  link.setLinkKinematics(joint);
  KtRigidBodyMassProperties mass(
      uniform(0.5, 2.0), KtVector(),
      {uniform(0.5, 0.6), uniform(0.5, 0.6), uniform(0.5, 0.6), 0.02, -0.03, 0.04});
  mass.transformBy(randomTransformation());
  link.setMassProperties(mass);
  return link;
}

/// A link below which `count` further ones hang at random, labelled with the prefix and a number.
template <class Make>
KtManipulatorLink randomTree(const std::string& prefix, int count, int& next, Make&& make) {
  KtManipulatorLink top = make(prefix + std::to_string(next++));
  while (count > 0) {
    const int part = 1 + static_cast<int>(sampling::uniform(0.0, 0.999 * count));
    top.addChild(randomTree(prefix, part - 1, next, make));
    count -= part;
  }
  return top;
}

/// A manipulator with `count` links.
inline KtIndividualManipulator randomManipulator(int count, const std::string& label = "base") {
  int next = 0;
  KtIndividualManipulator manipulator;
  const KtManipulatorLink top = randomTree("link", count, next, randomLink);
  manipulator.setLabel(label);
  manipulator.setMassProperties(top.massProperties());
  manipulator.setChildLinks(top.childLinks());
  return manipulator;
}

/// A manipulator that stands for another one.
inline KtIndividualManipulator referenceTo(const std::string& label, const std::string& target) {
  KtManipulatorReferenceDescription description;
  description.setIsManipulatorReferenced(true);
  description.setReferencedManipulatorLabel(target);
  KtIndividualManipulator arm;
  arm.setLabel(label);
  arm.setManipulatorReferenceDescription(description);
  return arm;
}

/// A manipulator that has no link behind its last one, and none by the name "none".
class Holed : public KtIndividualManipulator {
 public:
  using KtIndividualManipulator::mapManipulator;
  bool mapManipulator(LinkTable& links, LabelTable& labels) override {
    labels["none"] = nullptr;
    const bool good = KtIndividualManipulator::mapManipulator(links, labels);
    links.push_back(nullptr);
    return good;
  }
};

/// A system of manipulators with so many links each, roots included. All links can collide.
inline KtManipulatorSystem randomSystem(std::initializer_list<int> links) {
  KtManipulatorSystem system;
  for (const int count : links) {
    KtIndividualManipulator manipulator = randomManipulator(count);
    KtManipulatorSelfCollisionLinkMap map;
    map.buildMapFromSystem(manipulator);
    map.setAllAsCollisionCandidates();
    manipulator.setSelfCollisionLinkMap(map);
    system.addManipulator(manipulator);
  }
  return system;
}

/// What a random mechanism has besides geared joints of Denavit and Hartenberg with springs,
/// dampers and friction in their bearings.
struct Extras {
  bool pivotedSliders = true;
  bool fixedSliders = false;  ///< Motions of these are not the derivatives of their frames.
  bool screws = false;        ///< Motions of these come from differences: nine digits are lost.
};

/// A four-bar with a slider that closes for an extension of up to 0.15 to either side.
inline KtQuadrilateralTypeLink randomQuadrilateral(unsigned type) {
  KtQuadrilateralTypeLink joint;
  joint.setJointType(type);
  joint.setPrecursor(sampling::randomTransformation());
  joint.setNominalLength(type == KtQuadrilateralTypeLink::kFixedSlider ? 1.1 : 1.4);
  joint.setD1Length(sampling::uniform(0.55, 0.65));
  joint.setD2Length(sampling::uniform(0.45, 0.55));
  joint.setOppositeLength(1.3);
  joint.setZDistanceA(sampling::uniform());
  joint.setZDistanceB(sampling::uniform());
  joint.setZDistanceC(sampling::uniform());
  joint.setPrimaryFrame(sampling::randomTransformation());
  return joint;
}

/// A link with any joint and all that acts at one. Its limits are where random positions lie.
inline KtManipulatorLink randomEquippedLink(const std::string& label, const Extras& extras) {
  using namespace sampling;
  using Quad = KtQuadrilateralTypeLink;
  KtManipulatorLink link = randomLink(label);
  const KtRigidBodyMassProperties mass = link.massProperties();
  double range = 3.0;
  const double kind = uniform(0.0, 10.0);
  if (extras.pivotedSliders && kind < 1.5) {
    link.setLinkKinematics(randomQuadrilateral(Quad::kPivotedSlider));
    range = 0.15;
  } else if (extras.fixedSliders && kind > 8.5) {
    link.setLinkKinematics(randomQuadrilateral(Quad::kFixedSlider));
    range = 0.15;
  } else if (extras.screws && kind > 7.0) {
    KtScrewTypeLink screw;
    screw.setPitch(uniform(-0.3, 0.3));
    screw.setPrecursor(randomTransformation());
    screw.setPrimaryFrame(randomTransformation());
    link.setLinkKinematics(screw);
    range = 1.0;
  }
  link.setMassProperties(mass);
  KtMechanicalActuatorComponent mechanics;
  mechanics.setLowerLimit(-range);
  mechanics.setUpperLimit(range);
  mechanics.setGearRatio(uniform() < 0.0 ? uniform(20.0, 90.0) : uniform(-90.0, -20.0));
  mechanics.setInertia(uniform(0.0, 2e-4));
  mechanics.setFrictionCoefficient(uniform(0.0, 1e-4));
  mechanics.setStaticCoulombFriction(uniform(0.0, 0.01));
  mechanics.setKineticCoulombFrictionPercentage(0.7);
  mechanics.setLimitingVelocityStickRegion(1e-9);
  KtJointActuator actuator;
  actuator.setMechanicalComponent(mechanics);
  link.setJointActuator(actuator);
  if (uniform() < 0.0) {
    KtSpringProperties spring;
    spring.setSpringConstant(uniform(0.0, 5.0));
    spring.setAssociatedJoints({1, label});
    spring.setWeightingFactors({1, 1.0});
    spring.setSpringOffsets({1, uniform()});
    link.setSpringProperties(spring);
    KtDamperProperties damper;
    damper.setDamperConstant(uniform(0.0, 2.0));
    damper.setAssociatedJoints({1, label});
    damper.setWeightingFactors({1, 1.0});
    link.setDamperProperties(damper);
  }
  return link;
}

/// A manipulator of `count` equipped links, with a place of its own.
inline KtIndividualManipulator randomMechanismArm(int count, bool fixedBase, Extras extras = {}) {
  int next = 0;
  const KtManipulatorLink top = randomTree("link", count, next, [&](const std::string& label) {
    return randomEquippedLink(label, extras);
  });
  KtIndividualManipulator arm;
  arm.setLabel("base");
  arm.setIsFixedBase(fixedBase);
  arm.setMassProperties(top.massProperties());
  arm.setChildLinks(top.childLinks());
  arm.setCoordSysXForm(sampling::randomTransformation());
  return arm;
}

/// A manipulator in a system with gravity, with a random state and random loads.
class Mechanism {
 public:
  explicit Mechanism(const KtIndividualManipulator& source) {
    using namespace sampling;
    stated.addManipulator(source);
    KtSystemEnvironment environment;
    environment.setUpGravityVector(randomVector() * 10.0);
    stated.setEnvironment(environment);
    const KtU32 n = joints();
    position.setCoordSysXForm(randomTransformation());
    position.jointPositions().resize(n);
    velocity.jointVelocities().resize(n);
    torque.jointTorques().resize(n);
    external.resize(n);
    for (KtU32 i = 0; i < n; ++i) {
      const KtJointActuator& actuator = link(i).jointActuator();
      position.jointPositions()[i] = uniform(actuator.lowerLimit(), actuator.upperLimit());
      velocity.jointVelocities()[i] = uniform() * actuator.upperLimit() / 3.0;
      torque.jointTorques()[i] = uniform() * 10.0 / actuator.gearRatio();
      external[i] = {randomVector(), randomVector()};
    }
    external[ktBaseIndex] = {randomVector(), randomVector()};
    if (!arm().isFixedBase()) {
      velocity.setGeneralVelocity(randomMotion());
      torque.setGeneralForce({randomVector() * 10.0, randomVector() * 10.0});
    }
  }

  /// Puts a changed copy of the arm in its place, in the same state.
  void replaceArm(const KtIndividualManipulator& arm) {
    const KtSystemEnvironment environment = stated.environment();
    stated = KtStatedSystem();
    stated.addManipulator(arm);
    stated.setEnvironment(environment);
  }
  const KtIndividualManipulator& arm() const { return stated.system().manipulators()[0]; }
  KtU32 joints() const { return arm().jointDof(); }
  const KtManipulatorLink& link(KtU32 i) const { return *arm().linkByIndex(i); }
  /// Gravity at the base, with random joint accelerations or none.
  KtAccelerationState acceleration(bool moving = false) const {
    KtAccelerationState result = KtAccelerationState::zeroCompatibleState(velocity);
    if (moving) {
      for (auto& a : result.jointAccelerations().vectorContainer()) a = sampling::uniform();
      if (!arm().isFixedBase()) result.setGeneralAcceleration(sampling::randomMotion());
    }
    result.generalAcceleration().setLinear(result.generalAcceleration().linear() +
                                           stated.environment().upGravityVector());
    return result;
  }
  /// An active state in which motors move with their joints.
  KtManipulatorActiveState active(const KtAccelerationState& accelerations) const {
    KtManipulatorActiveState state;
    state.setPositionState(position);
    state.setVelocityState(velocity);
    state.setAccelerationState(accelerations);
    for (KtU32 i = 0; i < joints(); ++i) link(i).jointActuator().initializeActuatorStates(state);
    return state;
  }
  KtManipulatorActiveState active() const { return active(acceleration()); }

  KtStatedSystem stated;
  KtPositionState position;
  KtVelocityState velocity;
  KtManipulatorTorque torque;
  KtManipulatorExternalForce external;
};

}  // namespace trees
