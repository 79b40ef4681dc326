#include "Energy.h"

#include "Support.h"

double kineticEnergy(const KtIndividualManipulator& manipulator, KtManipulatorActiveState& active,
                     const KtStatedSystemStruct* asker) {
  const KtU32 joints = manipulator.jointDof();
  const auto& q = active.positionState().jointPositions();
  const auto& rates = active.velocityState().jointVelocities();
  double twice = 0.0;
  for (KtU32 i = 0; i <= joints; ++i) {
    const KtManipulatorLink& link = linkAt(manipulator, i);
    const KtGeneralMotion& momentum = link.spatialMomentumInLocal(active, asker);
    const KtGeneralMotion& velocity = link.comVelocityInLocal(active, asker);
    twice += momentum.linear().dot(velocity.linear()) + momentum.angular().dot(velocity.angular());
  }
  for (KtU32 i = 0; i < joints; ++i) {
    const double rate = rates[i];
    twice += manipulator.linkByIndex(i)->jointActuator().effectiveInertia(q[i]) * rate * rate;
  }
  return 0.5 * twice;
}

double weightEnergy(const KtIndividualManipulator& manipulator, KtManipulatorActiveState& active,
                    const KtVector& upGravity) {
  double energy = 0.0;
  for (KtU32 i = 0; i <= manipulator.jointDof(); ++i) {
    const KtManipulatorLink& link = linkAt(manipulator, i);
    const KtRigidBodyMassProperties& mass = link.massPropertiesInDHFrame(nullptr);
    KtVector center;
    mass.getCenterOfMass(center);
    center = link.dhFrameInSystem(active.activePositionState()) * center;
    energy += mass.massValue() * upGravity.dot(center);
  }
  return energy;
}

double springEnergy(const KtIndividualManipulator& manipulator,
                    const KtManipulatorActiveState& active) {
  double energy = 0.0;
  for (KtU32 i = 0; i < manipulator.jointDof(); ++i) {
    const KtManipulatorLink& link = *manipulator.linkByIndex(i);
    const KtSpringProperties& spring = link.springProperties();
    if (spring.springConstant() == 0.0 || spring.associatedJoints().size() != 1 ||
        spring.weightingFactors().size() != 1 || spring.springOffsets().size() != 1 ||
        manipulator.linkByIdentifier(spring.associatedJoints()[0]) != &link) {
      continue;
    }
    const double stretch = active.positionState().jointPositions()[i] - spring.springOffsets()[0];
    energy += 0.5 * spring.springConstant() * spring.weightingFactors()[0] * stretch * stretch;
  }
  return energy;
}
