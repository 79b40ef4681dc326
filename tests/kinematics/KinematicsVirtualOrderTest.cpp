#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

using T = KtCoordinateSystemTransformation;
using ToPath = void (KtLinkKinematics::*)(T&, double) const;
using ToFrame = void (KtLinkKinematics::*)(const T&);

constexpr std::size_t kLinkKinematics = kTreeElement + 16;

TEST(VirtualOrder, KinematicsKeepsIts) {
  using K = KtLinkKinematics;
  expectOrder("KtLinkKinematics", kTreeElement + 1,
              {slotOf(&K::approxEq), slotOf(&K::primaryFrame), slotOf(&K::primaryFrameInverse),
               slotOf(&K::setPrimaryFrame), slotOf(&K::calculateTransform),
               slotOf(static_cast<ToPath>(&K::transformBy)), slotOf(&K::calculateVelocity),
               slotOf(&K::calculateAcceleration), slotOf(&K::unitAccelerationTorque),
               slotOf(&K::torqueRequiredToExert), slotOf(&K::upperBoundDhFrameDistance),
               slotOf(&K::addChildArbdToParent), slotOf(&K::scaleBy),
               slotOf(static_cast<ToFrame>(&K::transformBy)), slotOf(&K::jointParameterScalability),
               slotOf(&K::changeInboardFrameBy)});
  using D = KtDenavitHartenberg;
  expectOrder("KtDenavitHartenberg", kLinkKinematics + 1,
              {slotOf(&D::registerJointTypeEnumerations), slotOf(&D::registerDhTypeEnumerations),
               slotOf(&D::jointType), slotOf(&D::setJointType), slotOf(&D::dhType),
               slotOf(&D::setDhType), slotOf(&D::precursor), slotOf(&D::setPrecursor),
               slotOf(&D::dhTheta), slotOf(&D::setDhTheta), slotOf(&D::dhD), slotOf(&D::setDhD),
               slotOf(&D::dhA), slotOf(&D::setDhA), slotOf(&D::dhAlpha), slotOf(&D::setDhAlpha),
               slotOf(&D::getUnitFrameMotion), slotOf(&D::accelerationFromJointVelocity),
               slotOf(static_cast<bool (D::*)(const D&, double) const>(&D::approxEq))});
  using S = KtScrewTypeLink;
  expectOrder(
      "KtScrewTypeLink", kLinkKinematics + 1,
      {slotOf(&S::precursor), slotOf(&S::setPrecursor), slotOf(&S::pitch), slotOf(&S::setPitch),
       slotOf(static_cast<bool (S::*)(const S&, double) const>(&S::approxEq))});
  using Q = KtQuadrilateralTypeLink;
  expectOrder("KtQuadrilateralTypeLink", kLinkKinematics + 1,
              {slotOf(&Q::registerJointTypeEnumerations),
               slotOf(&Q::jointType),
               slotOf(&Q::setJointType),
               slotOf(&Q::precursor),
               slotOf(&Q::setPrecursor),
               slotOf(&Q::nominalLength),
               slotOf(&Q::setNominalLength),
               slotOf(&Q::d1Length),
               slotOf(&Q::setD1Length),
               slotOf(&Q::d2Length),
               slotOf(&Q::setD2Length),
               slotOf(&Q::oppositeLength),
               slotOf(&Q::setOppositeLength),
               slotOf(&Q::zDistanceA),
               slotOf(&Q::setZDistanceA),
               slotOf(&Q::zDistanceB),
               slotOf(&Q::setZDistanceB),
               slotOf(&Q::zDistanceC),
               slotOf(&Q::setZDistanceC),
               slotOf(static_cast<bool (Q::*)(const Q&, double) const>(&Q::approxEq)),
               slotOf(&Q::frameATransform),
               slotOf(&Q::frameBTransform),
               slotOf(&Q::frameCTransform)});
}

TEST(VirtualOrder, ArticulatedBodiesKeepTheirs) {
  using I = KtArticulatedBodyInertia;
  using M = KtGeneralMotion;
  using F = KtGeneralForce;
  expectOrder(
      "KtArticulatedBodyInertia", kCompound + 1,
      {slotOf(static_cast<void (I::*)(const T&)>(&I::transformBy)),
       slotOf(static_cast<void (I::*)(const KtOrientation&)>(&I::transformBy)),
       slotOf(static_cast<void (I::*)(const KtVector&)>(&I::transformBy)), slotOf(&I::transformBy2),
       slotOf(static_cast<void (I::*)(const I&, const M&, double)>(&I::joinWith)),
       slotOf(static_cast<void (I::*)(const I&, const M&, double, F&, double&)>(&I::joinWith)),
       slotOf(&I::setToTransformedValue), slotOf(&I::calculateForce),
       slotOf(&I::calculateForceSparse), slotOf(&I::calculateAcceleration),
       slotOf(&I::linearMatrix), slotOf(&I::angularMatrix), slotOf(&I::crossMatrix),
       slotOf(&I::isRigid), slotOf(&I::set), slotOf(&I::setFromRigidBody), slotOf(&I::setFromArray),
       slotOf(&I::getArray), slotOf(&I::approxEq)});
  using D = KtArticulatedBodyDynamics;
  expectOrder(
      "KtArticulatedBodyDynamics", kCompound + 1,
      {slotOf(static_cast<void (D::*)(const T&)>(&D::transformBy)),
       slotOf(static_cast<void (D::*)(const KtOrientation&)>(&D::transformBy)),
       slotOf(static_cast<void (D::*)(const KtVector&)>(&D::transformBy)), slotOf(&D::joinWith),
       slotOf(&D::setToTransformedValue), slotOf(&D::calculateForce),
       slotOf(&D::calculateAcceleration), slotOf(&D::inertia), slotOf(&D::setInertia),
       slotOf(&D::setInertiaFromRigidBody), slotOf(&D::bias), slotOf(&D::setBias), slotOf(&D::set),
       slotOf(&D::setInertiaFromArray), slotOf(&D::getInertiaArray), slotOf(&D::approxEq)});
}

}  // namespace
