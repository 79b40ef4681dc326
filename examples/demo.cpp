// Builds the mass properties of a robot's forearm from its parts, writes them to a file, reads them
// back, and shows that nothing was lost on the way.

#include <cstdio>
#include <iostream>

#include "ktManipulator/ktManipulator.h"

int main(int argc, char** argv) {
  const std::string fileName = argc > 1 ? argv[1] : "forearm.xml";

  // A rod along z, and a ball at its end; lengths in m, masses in kg.
  auto forearm = KtRigidBodyMassProperties::uniformSolidAxisAlignedCylinder(2.7, 0.04, 0.3);
  forearm.transformBy(KtVector(0.0, 0.0, 0.15));
  auto ball = KtRigidBodyMassProperties::uniformSolidSphere(0.5, 0.025);
  ball.transformBy(KtVector(0.0, 0.0, 0.36));
  forearm += ball;

  KtVector center;
  forearm.getCenterOfMass(center);
  std::printf("forearm: %.3f kg, centre of mass (%.4f, %.4f, %.4f) m\n",
              static_cast<double>(forearm.mass()), center.x, center.y, center.z);

  // The force that makes it turn at 1 rad/s^2 about x, and the acceleration that this force gives.
  const KtGeneralMotion acceleration({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0});
  const KtGeneralForce force = forearm.calculateForce(acceleration);
  std::printf("force for 1 rad/s^2 about x: %.4f N along y, %.4f N m about x\n", force.force().y,
              force.moment().x);
  if (!forearm.calculateAcceleration(force).approxEq(acceleration, 1e-12)) {
    std::puts("the acceleration does not come back");
    return 1;
  }

  if (!KtXmlWriter::writeFile(fileName, forearm)) return 1;
  KtRigidBodyMassProperties readBack;
  if (!KtXmlReader::readFile(fileName, readBack)) return 1;
  std::printf("wrote %s and read it back: %s\n", fileName.c_str(),
              readBack == forearm ? "the same to the last bit" : "DIFFERENT");
  std::cout << KtXmlWriter::writeString(readBack);
  return readBack == forearm ? 0 : 1;
}
