#include "ktManipulator/ktManipulator.h"
#include "support/VirtualSlots.h"

namespace {

using T = KtCoordinateSystemTransformation;
using ToPath = void (KtLinkKinematics::*)(T&, double) const;
using ToFrame = void (KtLinkKinematics::*)(const T&);

constexpr std::size_t kLinkKinematics = kTreeElement + 16;

TEST(VirtualOrder, KinematicsKeepsIts) {
  using K = KtLinkKinematics;
  expectOrder("KtLinkKinematics", kTreeElement + 1, &K::approxEq, &K::primaryFrame,
              &K::primaryFrameInverse, &K::setPrimaryFrame, &K::calculateTransform,
              static_cast<ToPath>(&K::transformBy), &K::calculateVelocity,
              &K::calculateAcceleration, &K::unitAccelerationTorque, &K::torqueRequiredToExert,
              &K::upperBoundDhFrameDistance, &K::addChildArbdToParent, &K::scaleBy,
              static_cast<ToFrame>(&K::transformBy), &K::jointParameterScalability,
              &K::changeInboardFrameBy);
  using D = KtDenavitHartenberg;
  expectOrder("KtDenavitHartenberg", kLinkKinematics + 1, &D::registerJointTypeEnumerations,
              &D::registerDhTypeEnumerations, &D::jointType, &D::setJointType, &D::dhType,
              &D::setDhType, &D::precursor, &D::setPrecursor, &D::dhTheta, &D::setDhTheta, &D::dhD,
              &D::setDhD, &D::dhA, &D::setDhA, &D::dhAlpha, &D::setDhAlpha, &D::getUnitFrameMotion,
              &D::accelerationFromJointVelocity,
              static_cast<bool (D::*)(const D&, double) const>(&D::approxEq));
  using S = KtScrewTypeLink;
  expectOrder("KtScrewTypeLink", kLinkKinematics + 1, &S::precursor, &S::setPrecursor, &S::pitch,
              &S::setPitch, static_cast<bool (S::*)(const S&, double) const>(&S::approxEq));
  using Q = KtQuadrilateralTypeLink;
  expectOrder("KtQuadrilateralTypeLink", kLinkKinematics + 1, &Q::registerJointTypeEnumerations,
              &Q::jointType, &Q::setJointType, &Q::precursor, &Q::setPrecursor, &Q::nominalLength,
              &Q::setNominalLength, &Q::d1Length, &Q::setD1Length, &Q::d2Length, &Q::setD2Length,
              &Q::oppositeLength, &Q::setOppositeLength, &Q::zDistanceA, &Q::setZDistanceA,
              &Q::zDistanceB, &Q::setZDistanceB, &Q::zDistanceC, &Q::setZDistanceC,
              static_cast<bool (Q::*)(const Q&, double) const>(&Q::approxEq), &Q::frameATransform,
              &Q::frameBTransform, &Q::frameCTransform);
}

TEST(VirtualOrder, ArticulatedBodiesKeepTheirs) {
  using I = KtArticulatedBodyInertia;
  using M = KtGeneralMotion;
  using F = KtGeneralForce;
  expectOrder("KtArticulatedBodyInertia", kCompound + 1,
              static_cast<void (I::*)(const T&)>(&I::transformBy),
              static_cast<void (I::*)(const KtOrientation&)>(&I::transformBy),
              static_cast<void (I::*)(const KtVector&)>(&I::transformBy), &I::transformBy2,
              static_cast<void (I::*)(const I&, const M&, double)>(&I::joinWith),
              static_cast<void (I::*)(const I&, const M&, double, F&, double&)>(&I::joinWith),
              &I::setToTransformedValue, &I::calculateForce, &I::calculateForceSparse,
              &I::calculateAcceleration, &I::linearMatrix, &I::angularMatrix, &I::crossMatrix,
              &I::isRigid, &I::set, &I::setFromRigidBody, &I::setFromArray, &I::getArray,
              &I::approxEq);
  using D = KtArticulatedBodyDynamics;
  expectOrder("KtArticulatedBodyDynamics", kCompound + 1,
              static_cast<void (D::*)(const T&)>(&D::transformBy),
              static_cast<void (D::*)(const KtOrientation&)>(&D::transformBy),
              static_cast<void (D::*)(const KtVector&)>(&D::transformBy), &D::joinWith,
              &D::setToTransformedValue, &D::calculateForce, &D::calculateAcceleration, &D::inertia,
              &D::setInertia, &D::setInertiaFromRigidBody, &D::bias, &D::setBias, &D::set,
              &D::setInertiaFromArray, &D::getInertiaArray, &D::approxEq);
}

}  // namespace
