#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

using Joints = KtXmlVectorType<KtXmlBasicType<double>>;
using T = KtCoordinateSystemTransformation;

TEST(VirtualOrder, StatesKeepTheirs) {
  using P = KtPositionState;
  expectOrder("KtPositionState", kCompound + 1, constant(&P::jointPositions),
              variable(&P::jointPositions), &P::setJointPositions, constant(&P::coordSysXForm),
              variable(&P::coordSysXForm), &P::setCoordSysXForm, &P::approxEq, &P::readBin,
              &P::writeBin, &P::linearInterpolation);
  using V = KtVelocityState;
  expectOrder("KtVelocityState", kCompound + 1, constant(&V::jointVelocities),
              variable(&V::jointVelocities), taking<const Joints&>(&V::setJointVelocities),
              taking<const KtReArray&>(&V::setJointVelocities), constant(&V::generalVelocity),
              variable(&V::generalVelocity), &V::setGeneralVelocity, &V::approxEq, &V::readBin,
              &V::writeBin, &V::linearInterpolation);
  using A = KtAccelerationState;
  expectOrder("KtAccelerationState", kCompound + 1, constant(&A::jointAccelerations),
              variable(&A::jointAccelerations), taking<const Joints&>(&A::setJointAccelerations),
              taking<const KtReArray&>(&A::setJointAccelerations),
              constant(&A::generalAcceleration), variable(&A::generalAcceleration),
              &A::setGeneralAcceleration, &A::resize, &A::approxEq);
  using S = KtManipulatorSystemState;
  expectOrder("KtManipulatorSystemState", kCompound + 1, &S::mergeWith,
              constant(&S::positionStates), variable(&S::positionStates), &S::setPositionStates,
              constant(&S::velocityStates), variable(&S::velocityStates), &S::setVelocityStates,
              &S::zeroVelocityStates, &S::time, &S::setTime, &S::approxEq, &S::readBin,
              &S::writeBin, &S::linearInterpolation, &S::linearFactorInterpolation,
              &S::checkCompatibleState, &S::validateTopLevelDimensions,
              &S::validateLowLevelDimensions);
}

TEST(VirtualOrder, LoadsKeepTheirs) {
  using Q = KtManipulatorTorque;
  expectOrder("KtManipulatorTorque", kCompound + 1, constant(&Q::jointTorques),
              variable(&Q::jointTorques), taking<const Joints&>(&Q::setJointTorques),
              taking<const KtReArray&>(&Q::setJointTorques), constant(&Q::generalForce),
              variable(&Q::generalForce), &Q::setGeneralForce);
  using E = KtManipulatorExternalForce;
  expectOrder("KtManipulatorExternalForce", kCompound + 1, &E::linkForces, &E::setLinkForces,
              &E::baseForce, &E::setBaseForce, constant(&E::operator[]), variable(&E::operator[]),
              &E::resize, &E::setToZeros);
  using D = KtExternalForceDescription;
  expectOrder("KtExternalForceDescription", kCompound + 1, &D::valid, &D::setValid);
}

TEST(VirtualOrder, StateConstraintsKeepTheirs) {
  using B = KtBaseStateConstraint;
  expectOrder("KtBaseStateConstraint", kTreeElement + 1, &B::evaluate, &B::gradient,
              &B::normalizeGradient);
  using J = KtMultivariableJointStateConstraint;
  expectOrder("KtMultivariableJointStateConstraint", kTreeElement + 4, constant(&J::constraint),
              variable(&J::constraint), &J::setConstraint);
  using E = KtBaseStateEqualityConstraint;
  expectOrder("KtBaseStateEqualityConstraint", kTreeElement + 1, &E::doc, &E::constrainPosition,
              &E::constrainVelocity, &E::constrainAcceleration, &E::jacobian,
              &E::jacobianDerivative);
  using L = KtLinearStateEqualityConstraint;
  expectOrder("KtLinearStateEqualityConstraint", kTreeElement + 7, &L::jointWeights,
              &L::setJointWeights, &L::baseWeights, &L::setBaseWeights, &L::weightedSums,
              &L::setWeightedSums);
  using V = KtStateEqualityConstraintVector;
  const std::size_t lastOfList =
      slotOf(&KtXmlVariableVectorType<KtBaseStateEqualityConstraint>::writeFooterToStream);
  expectOrder("KtStateEqualityConstraintVector", lastOfList + 1, &V::registerComponents, &V::doc,
              &V::constrainPosition, &V::constrainVelocity, &V::jacobian, &V::jacobianDerivative);
}

}  // namespace
