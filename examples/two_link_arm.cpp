// Builds an arm of two links in code, writes it to a file, and compares it with the handwritten
// file models/two-link-arm.xml, which describes the same arm.

#include <cstdio>
#include <string>

#include "ktManipulator/ktManipulator.h"

namespace {

// A body with a mass, kg, a centre of mass, m, and an inertia about that point, kg m^2.
KtRigidBodyMassProperties body(double mass, const KtVector& center, const KtSecondMoment& inertia) {
  KtRigidBodyMassProperties properties(mass, KtVector(), inertia);
  properties.transformBy(center);
  return properties;
}

// A capsule around the x axis from 0 to 0.5 m.
KtCapsuleShape tube(double radius) {
  return KtCapsuleShape(KtCapsule(KtLineSegment({0.0, 0.0, 0.0}, {0.5, 0.0, 0.0}), radius));
}

// A rotational joint in Craig's convention: it rotates about the z axis of its own frame.
KtDenavitHartenberg hinge(double a, double alpha) {
  KtDenavitHartenberg joint;
  joint.setJointType(KtDenavitHartenberg::kRotational);
  joint.setDhType(KtDenavitHartenberg::kCraig);
  joint.setDhA(a);
  joint.setDhAlpha(KtAngle(alpha));
  return joint;
}

// A geared motor; the torque limit is on the motor side.
KtJointActuator motor(double inertia, double gearRatio, double lower, double upper, double maxRate,
                      double maxTorque) {
  KtJointActuator actuator;
  actuator.setInertia(inertia);
  actuator.setGearRatio(gearRatio);
  actuator.setLowerLimit(lower);
  actuator.setUpperLimit(upper);
  actuator.setMaxOutputRate(maxRate);
  actuator.setMinTorque(-maxTorque);
  actuator.setMaxTorque(maxTorque);
  return actuator;
}

KtManipulatorLink forearm() {
  KtManipulatorLink link;
  link.setLabel("forearm");
  link.setLinkKinematics(hinge(0.5, 0.0));
  link.setMassProperties(body(2.0, {0.25, 0.0, 0.0}, {0.004, 0.0625, 0.0625, 0.0, 0.0, 0.0}));
  link.addMassProperties("gripper",
                         body(0.5, {0.5, 0.0, 0.0}, {0.0005, 0.0005, 0.0005, 0.0, 0.0, 0.0}));
  KtBoxShape housing({0.5, 0.08, 0.08}, KtCoordinateSystemTransformation(KtVector(0.25, 0.0, 0.0)));
  housing.setIdentifier("housing");
  housing.setSurfaceLabel("aluminium");
  housing.addBoundingVolume(tube(0.06));
  link.setShape(housing);
  link.setJointActuator(motor(0.00005, 80.0, -2.5, 2.5, 4.0, 0.25));
  KtDamperProperties damper;
  damper.setDamperConstant(0.5);
  damper.setWeightingFactors(KtDamperProperties::Reals(1, 1.0));
  damper.setAssociatedJoints(KtDamperProperties::Labels(1, std::string("forearm")));
  link.setDamperProperties(damper);
  link.addNamedPoint("camera", KtVector(0.4, 0.0, 0.07));
  const double half = 0.7071067811865476;
  link.addNamedFrame("grip", {KtVector(0.6, 0.0, 0.0), KtOrientation(half, 0.0, half, 0.0)});
  return link;
}

KtManipulatorLink upperArm() {
  KtManipulatorLink link;
  link.setLabel("upper arm");
  link.setLinkKinematics(hinge(0.0, 1.5707963267948966));
  link.setMassProperties(body(4.0, {0.25, 0.0, 0.0}, {0.01, 0.0625, 0.0625, 0.0, 0.0, 0.0}));
  KtCapsuleShape shape = tube(0.05);
  shape.setIdentifier("tube");
  shape.setSurfaceLabel("aluminium");
  link.setShape(shape);
  link.setJointActuator(motor(0.0001, 100.0, -0.5, 2.5, 3.0, 0.6));
  KtSpringProperties spring;
  spring.setSpringConstant(8.0);
  spring.setWeightingFactors(KtSpringProperties::Reals(1, 1.0));
  spring.setSpringOffsets(KtSpringProperties::Reals(1, 1.5707963267948966));
  spring.setAssociatedJoints(KtSpringProperties::Labels(1, std::string("upper arm")));
  link.setSpringProperties(spring);
  link.addChild(forearm());  // a copy: complete a link before it becomes a child
  return link;
}

KtIndividualManipulator arm() {
  KtIndividualManipulator arm;
  arm.setLabel("two-link arm");
  arm.setCoordSysXForm(KtCoordinateSystemTransformation(KtVector(0.0, 0.0, 0.5)));
  KtCylinderShape pedestal(0.1, 0.4, KtCoordinateSystemTransformation(KtVector(0.0, 0.0, -0.3)));
  pedestal.setIdentifier("pedestal");
  arm.setShape(pedestal);
  KtDataMap aluminium, metal;
  aluminium.add("ktSurfaceTensionSpringConstant", 20000.0);
  aluminium.add("ktSurfaceTensionDamperConstant", 50.0);
  metal.add("ktSurfaceTensionSpringConstant", 50000.0);
  KtSurfaceMap surfaces;
  surfaces.add(std::string("aluminium"), aluminium);
  surfaces.add(std::string("metal"), metal);
  arm.setSurfaces(surfaces);
  arm.addChild(upperArm());
  KtManipulatorSelfCollisionLinkMap pairs;
  pairs.setLinkCollisionCanditateByIdentifier("forearm", "two-link arm", true);
  arm.setSelfCollisionLinkMap(pairs);
  return arm;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s WRITTEN.xml DESCRIBED.xml\n", argv[0]);
    return 2;
  }

  KtStatedSystem scene;
  scene.setFromManipulator(arm());  // the joints stand in the middle of their ranges
  KtSystemEnvironment environment;
  environment.setUpGravityVector({0.0, 0.0, 9.81});
  scene.setEnvironment(environment);
  KtPositionState position = scene.state().positionStates()[0];
  position.jointPositions()[0] = 0.5;
  position.jointPositions()[1] = -1.0;
  scene.setIndividualPositionState(0, position);
  if (!KtXmlWriter::writeFile(argv[1], scene)) return 1;

  KtStatedSystem described;
  if (!KtXmlReader::readFile(argv[2], described)) return 1;  // messages say why
  const bool same = described == scene;
  std::printf("%s and %s describe %s\n", argv[1], argv[2], same ? "the same" : "DIFFERENT arms");
  return same ? 0 : 1;
}
