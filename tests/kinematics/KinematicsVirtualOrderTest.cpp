#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

using T = KtCoordinateSystemTransformation;

constexpr std::size_t kLinkKinematics = kTreeElement + 16;

TEST(VirtualOrder, KinematicsKeepsIts) {
  using K = KtLinkKinematics;
  expectOrder("KtLinkKinematics", kTreeElement + 1, &K::approxEq, &K::primaryFrame,
              &K::primaryFrameInverse, &K::setPrimaryFrame, &K::calculateTransform,
              taking<T&, double>(&K::transformBy), &K::calculateVelocity, &K::calculateAcceleration,
              &K::unitAccelerationTorque, &K::torqueRequiredToExert, &K::upperBoundDhFrameDistance,
              &K::addChildArbdToParent, &K::scaleBy, taking<const T&>(&K::transformBy),
              &K::jointParameterScalability, &K::changeInboardFrameBy);
  using D = KtDenavitHartenberg;
  expectOrder("KtDenavitHartenberg", kLinkKinematics + 1, &D::registerJointTypeEnumerations,
              &D::registerDhTypeEnumerations, &D::jointType, &D::setJointType, &D::dhType,
              &D::setDhType, &D::precursor, &D::setPrecursor, &D::dhTheta, &D::setDhTheta, &D::dhD,
              &D::setDhD, &D::dhA, &D::setDhA, &D::dhAlpha, &D::setDhAlpha, &D::getUnitFrameMotion,
              &D::accelerationFromJointVelocity, taking<const D&, double>(&D::approxEq));
  using S = KtScrewTypeLink;
  expectOrder("KtScrewTypeLink", kLinkKinematics + 1, &S::precursor, &S::setPrecursor, &S::pitch,
              &S::setPitch, taking<const S&, double>(&S::approxEq));
  using Q = KtQuadrilateralTypeLink;
  expectOrder("KtQuadrilateralTypeLink", kLinkKinematics + 1, &Q::registerJointTypeEnumerations,
              &Q::jointType, &Q::setJointType, &Q::precursor, &Q::setPrecursor, &Q::nominalLength,
              &Q::setNominalLength, &Q::d1Length, &Q::setD1Length, &Q::d2Length, &Q::setD2Length,
              &Q::oppositeLength, &Q::setOppositeLength, &Q::zDistanceA, &Q::setZDistanceA,
              &Q::zDistanceB, &Q::setZDistanceB, &Q::zDistanceC, &Q::setZDistanceC,
              taking<const Q&, double>(&Q::approxEq), &Q::frameATransform, &Q::frameBTransform,
              &Q::frameCTransform);
}

TEST(VirtualOrder, ArticulatedBodiesKeepTheirs) {
  using I = KtArticulatedBodyInertia;
  using M = KtGeneralMotion;
  using F = KtGeneralForce;
  expectOrder(
      "KtArticulatedBodyInertia", kCompound + 1, taking<const T&>(&I::transformBy),
      taking<const KtOrientation&>(&I::transformBy), taking<const KtVector&>(&I::transformBy),
      &I::transformBy2, taking<const I&, const M&, double>(&I::joinWith),
      taking<const I&, const M&, double, F&, double&>(&I::joinWith), &I::setToTransformedValue,
      &I::calculateForce, &I::calculateForceSparse, &I::calculateAcceleration, &I::linearMatrix,
      &I::angularMatrix, &I::crossMatrix, &I::isRigid, &I::set, &I::setFromRigidBody,
      &I::setFromArray, &I::getArray, &I::approxEq);
  using D = KtArticulatedBodyDynamics;
  expectOrder("KtArticulatedBodyDynamics", kCompound + 1, taking<const T&>(&D::transformBy),
              taking<const KtOrientation&>(&D::transformBy),
              taking<const KtVector&>(&D::transformBy), &D::joinWith, &D::setToTransformedValue,
              &D::calculateForce, &D::calculateAcceleration, &D::inertia, &D::setInertia,
              &D::setInertiaFromRigidBody, &D::bias, &D::setBias, &D::set, &D::setInertiaFromArray,
              &D::getInertiaArray, &D::approxEq);
}

}  // namespace
