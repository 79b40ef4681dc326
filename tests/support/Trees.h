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
inline KtManipulatorLink randomTree(const std::string& prefix, int count, int& next) {
  KtManipulatorLink top = randomLink(prefix + std::to_string(next++));
  while (count > 0) {
    const int part = 1 + static_cast<int>(sampling::uniform(0.0, 0.999 * count));
    top.addChild(randomTree(prefix, part - 1, next));
    count -= part;
  }
  return top;
}

/// A manipulator with `count` links.
inline KtIndividualManipulator randomManipulator(int count) {
  int next = 0;
  KtIndividualManipulator manipulator;
  const KtManipulatorLink top = randomTree("link", count, next);
  manipulator.setLabel("base");
  manipulator.setMassProperties(top.massProperties());
  manipulator.setChildLinks(top.childLinks());
  return manipulator;
}

}  // namespace trees
