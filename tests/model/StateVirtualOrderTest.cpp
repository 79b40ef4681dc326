#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

using Joints = KtXmlVectorType<KtXmlBasicType<double>>;
using T = KtCoordinateSystemTransformation;

TEST(VirtualOrder, StatesKeepTheirs) {
  using P = KtPositionState;
  expectOrder("KtPositionState", kCompound + 1,
              static_cast<const Joints& (P::*)() const>(&P::jointPositions),
              static_cast<Joints& (P::*)()>(&P::jointPositions), &P::setJointPositions,
              static_cast<const T& (P::*)() const>(&P::coordSysXForm),
              static_cast<T& (P::*)()>(&P::coordSysXForm), &P::setCoordSysXForm, &P::approxEq,
              &P::readBin, &P::writeBin, &P::linearInterpolation);
  using V = KtVelocityState;
  using M = KtGeneralMotion;
  expectOrder("KtVelocityState", kCompound + 1,
              static_cast<const Joints& (V::*)() const>(&V::jointVelocities),
              static_cast<Joints& (V::*)()>(&V::jointVelocities),
              static_cast<void (V::*)(const Joints&)>(&V::setJointVelocities),
              static_cast<void (V::*)(const KtReArray&)>(&V::setJointVelocities),
              static_cast<const M& (V::*)() const>(&V::generalVelocity),
              static_cast<M& (V::*)()>(&V::generalVelocity), &V::setGeneralVelocity, &V::approxEq,
              &V::readBin, &V::writeBin, &V::linearInterpolation);
  using A = KtAccelerationState;
  expectOrder("KtAccelerationState", kCompound + 1,
              static_cast<const Joints& (A::*)() const>(&A::jointAccelerations),
              static_cast<Joints& (A::*)()>(&A::jointAccelerations),
              static_cast<void (A::*)(const Joints&)>(&A::setJointAccelerations),
              static_cast<void (A::*)(const KtReArray&)>(&A::setJointAccelerations),
              static_cast<const M& (A::*)() const>(&A::generalAcceleration),
              static_cast<M& (A::*)()>(&A::generalAcceleration), &A::setGeneralAcceleration,
              &A::resize, &A::approxEq);
  using S = KtManipulatorSystemState;
  using Ps = KtXmlVectorType<P>;
  using Vs = KtXmlVectorType<V>;
  expectOrder("KtManipulatorSystemState", kCompound + 1, &S::mergeWith,
              static_cast<const Ps& (S::*)() const>(&S::positionStates),
              static_cast<Ps& (S::*)()>(&S::positionStates), &S::setPositionStates,
              static_cast<const Vs& (S::*)() const>(&S::velocityStates),
              static_cast<Vs& (S::*)()>(&S::velocityStates), &S::setVelocityStates,
              &S::zeroVelocityStates, &S::time, &S::setTime, &S::approxEq, &S::readBin,
              &S::writeBin, &S::linearInterpolation, &S::linearFactorInterpolation,
              &S::checkCompatibleState, &S::validateTopLevelDimensions,
              &S::validateLowLevelDimensions);
}

TEST(VirtualOrder, LoadsKeepTheirs) {
  using F = KtGeneralForce;
  using Q = KtManipulatorTorque;
  expectOrder("KtManipulatorTorque", kCompound + 1,
              static_cast<const Joints& (Q::*)() const>(&Q::jointTorques),
              static_cast<Joints& (Q::*)()>(&Q::jointTorques),
              static_cast<void (Q::*)(const Joints&)>(&Q::setJointTorques),
              static_cast<void (Q::*)(const KtReArray&)>(&Q::setJointTorques),
              static_cast<const F& (Q::*)() const>(&Q::generalForce),
              static_cast<F& (Q::*)()>(&Q::generalForce), &Q::setGeneralForce);
  using E = KtManipulatorExternalForce;
  expectOrder("KtManipulatorExternalForce", kCompound + 1, &E::linkForces, &E::setLinkForces,
              &E::baseForce, &E::setBaseForce,
              static_cast<const F& (E::*)(KtU32) const>(&E::operator[]),
              static_cast<F& (E::*)(KtU32)>(&E::operator[]), &E::resize, &E::setToZeros);
  using D = KtExternalForceDescription;
  expectOrder("KtExternalForceDescription", kCompound + 1, &D::valid, &D::setValid);
}

TEST(VirtualOrder, StateConstraintsKeepTheirs) {
  using B = KtBaseStateConstraint;
  expectOrder("KtBaseStateConstraint", kTreeElement + 1, &B::evaluate, &B::gradient,
              &B::normalizeGradient);
  using J = KtMultivariableJointStateConstraint;
  using C = KtBaseMultivariableConstraint;
  expectOrder("KtMultivariableJointStateConstraint", kTreeElement + 4,
              static_cast<const C* (J::*)() const>(&J::constraint),
              static_cast<C* (J::*)()>(&J::constraint), &J::setConstraint);
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
