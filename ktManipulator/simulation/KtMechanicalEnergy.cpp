#include "ktManipulator/simulation/KtMechanicalEnergy.h"

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/model/KtIndividualManipulator.h"
#include "ktManipulator/simulation/KtOwnSpring.h"

namespace {

// Asks each link, the base first.
template <class Ask>
void forEachLink(const KtIndividualManipulator& manipulator, Ask&& ask) {
  ask(static_cast<const KtManipulatorLink&>(manipulator));
  for (const KtManipulatorLink* link : manipulator.links()) {
    if (link != nullptr) ask(*link);
  }
}

}  // namespace

double KtMechanicalEnergy::kinetic(const KtIndividualManipulator& manipulator,
                                   KtManipulatorActiveState& active,
                                   const KtStatedSystemStruct* asker) {
  double twice = 0.0;
  forEachLink(manipulator, [&](const KtManipulatorLink& link) {
    const KtGeneralMotion& momentum = link.spatialMomentumInLocal(active, asker);
    const KtGeneralMotion& velocity = link.comVelocityInLocal(active, asker);
    twice += momentum.linear().dot(velocity.linear()) + momentum.angular().dot(velocity.angular());
  });
  const auto& positions = active.positionState().jointPositions().elements();
  const auto& rates = active.velocityState().jointVelocities().elements();
  for (const KtManipulatorLink* link : manipulator.links()) {
    if (link == nullptr) continue;
    const KtU32 i = link->linkIndex();
    if (i >= positions.size() || i >= rates.size()) continue;
    const double rate = rates[i];
    twice += link->jointActuator().effectiveInertia(positions[i]) * rate * rate;
  }
  return 0.5 * twice;
}

double KtMechanicalEnergy::weight(const KtIndividualManipulator& manipulator,
                                  KtManipulatorActiveState& active, const KtVector& upGravity) {
  double energy = 0.0;
  forEachLink(manipulator, [&](const KtManipulatorLink& link) {
    const KtRigidBodyMassProperties& mass = link.massPropertiesInDHFrame(nullptr);
    KtVector center;
    mass.getCenterOfMass(center);
    center = link.dhFrameInSystem(active.activePositionState()) * center;
    energy += mass.massValue() * upGravity.dot(center);
  });
  return energy;
}

double KtMechanicalEnergy::springs(const KtIndividualManipulator& manipulator,
                                   const KtManipulatorActiveState& active) {
  const auto& positions = active.positionState().jointPositions().elements();
  double energy = 0.0;
  for (const KtManipulatorLink* link : manipulator.links()) {
    if (link == nullptr || !Kt::detail::hasOwnSpring(manipulator, *link)) continue;
    if (link->linkIndex() >= positions.size()) continue;
    const KtSpringProperties& spring = link->springProperties();
    const double stretch = positions[link->linkIndex()] - spring.springOffsets()[0];
    energy += 0.5 * spring.springConstant() * spring.weightingFactors()[0] * stretch * stretch;
  }
  return energy;
}
