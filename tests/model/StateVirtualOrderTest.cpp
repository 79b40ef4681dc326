#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

using Joints = KtXmlVectorType<KtXmlBasicType<double>>;
using T = KtCoordinateSystemTransformation;

TEST(VirtualOrder, StatesKeepTheirs) {
  using P = KtPositionState;
  expectOrder(
      "KtPositionState", kCompound + 1,
      {slotOf(static_cast<const Joints& (P::*)() const>(&P::jointPositions)),
       slotOf(static_cast<Joints& (P::*)()>(&P::jointPositions)), slotOf(&P::setJointPositions),
       slotOf(static_cast<const T& (P::*)() const>(&P::coordSysXForm)),
       slotOf(static_cast<T& (P::*)()>(&P::coordSysXForm)), slotOf(&P::setCoordSysXForm),
       slotOf(&P::approxEq), slotOf(&P::readBin), slotOf(&P::writeBin),
       slotOf(&P::linearInterpolation)});
  using V = KtVelocityState;
  using M = KtGeneralMotion;
  expectOrder("KtVelocityState", kCompound + 1,
              {slotOf(static_cast<const Joints& (V::*)() const>(&V::jointVelocities)),
               slotOf(static_cast<Joints& (V::*)()>(&V::jointVelocities)),
               slotOf(static_cast<void (V::*)(const Joints&)>(&V::setJointVelocities)),
               slotOf(static_cast<void (V::*)(const KtReArray&)>(&V::setJointVelocities)),
               slotOf(static_cast<const M& (V::*)() const>(&V::generalVelocity)),
               slotOf(static_cast<M& (V::*)()>(&V::generalVelocity)),
               slotOf(&V::setGeneralVelocity), slotOf(&V::approxEq), slotOf(&V::readBin),
               slotOf(&V::writeBin), slotOf(&V::linearInterpolation)});
  using A = KtAccelerationState;
  expectOrder("KtAccelerationState", kCompound + 1,
              {slotOf(static_cast<const Joints& (A::*)() const>(&A::jointAccelerations)),
               slotOf(static_cast<Joints& (A::*)()>(&A::jointAccelerations)),
               slotOf(static_cast<void (A::*)(const Joints&)>(&A::setJointAccelerations)),
               slotOf(static_cast<void (A::*)(const KtReArray&)>(&A::setJointAccelerations)),
               slotOf(static_cast<const M& (A::*)() const>(&A::generalAcceleration)),
               slotOf(static_cast<M& (A::*)()>(&A::generalAcceleration)),
               slotOf(&A::setGeneralAcceleration), slotOf(&A::resize), slotOf(&A::approxEq)});
  using S = KtManipulatorSystemState;
  using Ps = KtXmlVectorType<P>;
  using Vs = KtXmlVectorType<V>;
  expectOrder(
      "KtManipulatorSystemState", kCompound + 1,
      {slotOf(&S::mergeWith), slotOf(static_cast<const Ps& (S::*)() const>(&S::positionStates)),
       slotOf(static_cast<Ps& (S::*)()>(&S::positionStates)), slotOf(&S::setPositionStates),
       slotOf(static_cast<const Vs& (S::*)() const>(&S::velocityStates)),
       slotOf(static_cast<Vs& (S::*)()>(&S::velocityStates)), slotOf(&S::setVelocityStates),
       slotOf(&S::zeroVelocityStates), slotOf(&S::time), slotOf(&S::setTime), slotOf(&S::approxEq),
       slotOf(&S::readBin), slotOf(&S::writeBin), slotOf(&S::linearInterpolation),
       slotOf(&S::linearFactorInterpolation), slotOf(&S::checkCompatibleState),
       slotOf(&S::validateTopLevelDimensions), slotOf(&S::validateLowLevelDimensions)});
}

TEST(VirtualOrder, LoadsKeepTheirs) {
  using F = KtGeneralForce;
  using Q = KtManipulatorTorque;
  expectOrder("KtManipulatorTorque", kCompound + 1,
              {slotOf(static_cast<const Joints& (Q::*)() const>(&Q::jointTorques)),
               slotOf(static_cast<Joints& (Q::*)()>(&Q::jointTorques)),
               slotOf(static_cast<void (Q::*)(const Joints&)>(&Q::setJointTorques)),
               slotOf(static_cast<void (Q::*)(const KtReArray&)>(&Q::setJointTorques)),
               slotOf(static_cast<const F& (Q::*)() const>(&Q::generalForce)),
               slotOf(static_cast<F& (Q::*)()>(&Q::generalForce)), slotOf(&Q::setGeneralForce)});
  using E = KtManipulatorExternalForce;
  expectOrder(
      "KtManipulatorExternalForce", kCompound + 1,
      {slotOf(&E::linkForces), slotOf(&E::setLinkForces), slotOf(&E::baseForce),
       slotOf(&E::setBaseForce), slotOf(static_cast<const F& (E::*)(KtU32) const>(&E::operator[])),
       slotOf(static_cast<F& (E::*)(KtU32)>(&E::operator[])), slotOf(&E::resize),
       slotOf(&E::setToZeros)});
  using D = KtExternalForceDescription;
  expectOrder("KtExternalForceDescription", kCompound + 1,
              {slotOf(&D::valid), slotOf(&D::setValid)});
}

TEST(VirtualOrder, StateConstraintsKeepTheirs) {
  using B = KtBaseStateConstraint;
  expectOrder("KtBaseStateConstraint", kTreeElement + 1,
              {slotOf(&B::evaluate), slotOf(&B::gradient), slotOf(&B::normalizeGradient)});
  using J = KtMultivariableJointStateConstraint;
  using C = KtBaseMultivariableConstraint;
  expectOrder("KtMultivariableJointStateConstraint", kTreeElement + 4,
              {slotOf(static_cast<const C* (J::*)() const>(&J::constraint)),
               slotOf(static_cast<C* (J::*)()>(&J::constraint)), slotOf(&J::setConstraint)});
  using E = KtBaseStateEqualityConstraint;
  expectOrder(
      "KtBaseStateEqualityConstraint", kTreeElement + 1,
      {slotOf(&E::doc), slotOf(&E::constrainPosition), slotOf(&E::constrainVelocity),
       slotOf(&E::constrainAcceleration), slotOf(&E::jacobian), slotOf(&E::jacobianDerivative)});
  using L = KtLinearStateEqualityConstraint;
  expectOrder("KtLinearStateEqualityConstraint", kTreeElement + 7,
              {slotOf(&L::jointWeights), slotOf(&L::setJointWeights), slotOf(&L::baseWeights),
               slotOf(&L::setBaseWeights), slotOf(&L::weightedSums), slotOf(&L::setWeightedSums)});
  using V = KtStateEqualityConstraintVector;
  const std::size_t lastOfList =
      slotOf(&KtXmlVariableVectorType<KtBaseStateEqualityConstraint>::writeFooterToStream);
  expectOrder(
      "KtStateEqualityConstraintVector", lastOfList + 1,
      {slotOf(&V::registerComponents), slotOf(&V::doc), slotOf(&V::constrainPosition),
       slotOf(&V::constrainVelocity), slotOf(&V::jacobian), slotOf(&V::jacobianDerivative)});
}

}  // namespace
