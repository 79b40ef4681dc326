#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "ktManipulator/ktManipulator.h"
#include "support/Allocations.h"
#include "support/Differences.h"
#include "support/KtLogCapture.h"
#include "support/Random.h"

namespace {

using testing::HasSubstr;

using T = KtCoordinateSystemTransformation;
using Dh = KtDenavitHartenberg;
using Quad = KtQuadrilateralTypeLink;
using namespace sampling;
using LinkKinematics = Seeded;

constexpr double kPi = std::numbers::pi;
constexpr unsigned kJointTypes[] = {Dh::kRotational, Dh::kPrismatic};
constexpr unsigned kDhTypes[] = {Dh::kPaul, Dh::kGeneralPaul, Dh::kCraig, Dh::kGeneralCraig,
                                 Dh::kGeneral};

bool isGeneralised(unsigned dhType) {
  return dhType == Dh::kGeneralPaul || dhType == Dh::kGeneralCraig;
}

Dh randomDh(unsigned jointType, unsigned dhType) {
  Dh link;
  link.setJointType(jointType);
  link.setDhType(dhType);
  link.setPrecursor(randomTransformation());
  link.setDhA(uniform());
  link.setDhD(uniform());
  link.setDhAlpha(uniform(-4.0, 4.0));
  link.setDhTheta(uniform(-4.0, 4.0));
  link.setPrimaryFrame(randomTransformation());
  return link;
}

T rotation(double angle, const KtVector& axis) {
  KtOrientation r;
  r.setFromAngleAxis(angle, axis);
  return r;
}

// The transformation as the conventions define it, from elementary ones.
T elementary(const Dh& link, double q) {
  const bool rotational = link.jointType() == Dh::kRotational;
  const KtVector x(1.0, 0.0, 0.0);
  const KtVector z(0.0, 0.0, 1.0);
  if (link.dhType() == Dh::kGeneral)
    return link.precursor() * (rotational ? rotation(q, z) : T(z * q));
  const double theta = rotational ? q : double(link.dhTheta());
  const double d = rotational ? link.dhD() : q;
  const T joint = rotation(theta, z) * T(z * d);
  const T body = T(x * link.dhA()) * rotation(link.dhAlpha(), x);
  const bool paul = link.dhType() == Dh::kPaul || link.dhType() == Dh::kGeneralPaul;
  return (isGeneralised(link.dhType()) ? link.precursor() : T()) *
         (paul ? joint * body : body * joint);
}

// A four-bar that closes around q = 0.
Quad someQuadrilateral(unsigned type) {
  Quad link;
  link.setJointType(type);
  link.setPrecursor(randomTransformation());
  link.setNominalLength(type == Quad::kFixedSlider ? 1.1 : 1.4);
  link.setD1Length(0.6);
  link.setD2Length(0.5);
  link.setOppositeLength(1.3);
  link.setZDistanceA(0.2);
  link.setZDistanceB(-0.3);
  link.setZDistanceC(0.4);
  return link;
}

void expectNear(const KtGeneralMotion& actual, const KtGeneralMotion& expected, double tolerance,
                const std::string& what) {
  for (unsigned i = 0; i < 6; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << what << i;
}

std::string nameOf(const Dh& link) {
  return "joint type " + std::to_string(link.jointType()) + ", DH type " +
         std::to_string(link.dhType()) + ", component ";
}

TEST_F(LinkKinematics, TransformIsThatOfItsConventionInAllQuadrants) {
  for (const unsigned jointType : kJointTypes) {
    for (const unsigned dhType : kDhTypes) {
      for (int i = -9; i <= 9; ++i) {
        for (int j = -9; j <= 9; ++j) {
          Dh link = randomDh(jointType, dhType);
          // Multiples of a quarter turn and values beside them.
          const double q = i % 2 != 0 ? i * kPi / 4 : i * kPi / 4 + uniform(-0.7, 0.7);
          link.setDhAlpha(j % 2 != 0 ? j * kPi / 4 : j * kPi / 4 + uniform(-0.7, 0.7));
          const T& t = link.calculateTransform(q);
          ASSERT_TRUE(t.approxEq(elementary(link, q), 1e-14)) << nameOf(link) << q;
          T outer = randomTransformation();
          const T expected =
              dhType == Dh::kGeneral ? elementary(link, q) : outer * elementary(link, q);
          link.transformBy(outer, q);
          ASSERT_TRUE(outer.approxEq(expected, 1e-13)) << nameOf(link) << q;
        }
      }
    }
  }
}

// The sign of the quaternion is that of the rule which divides by the component that the signs of
// the two cosines choose: that component is positive.
TEST_F(LinkKinematics, TransformsQuaternionHasTheSignOfItsQuadrant) {
  for (int trial = 0; trial < 200; ++trial) {
    Dh link = randomDh(Dh::kRotational, trial % 2 == 0 ? Dh::kPaul : Dh::kCraig);
    const double q = trial < 40 ? (trial / 2 - 10) * kPi / 2 : uniform(-7.0, 7.0);
    const KtOrientation& r = link.calculateTransform(q).orientation();
    const bool turned = std::cos(q) <= 0.0;
    const bool twisted = link.dhAlpha().cosine() < 0.0;
    const double component = r[turned ? (twisted ? 2 : 3) : (twisted ? 1 : 0)];
    EXPECT_GT(component, 0.0) << nameOf(link) << q << " " << double(link.dhAlpha());
  }
}

TEST_F(LinkKinematics, MotionsOfAllModelsAreDifferencesOfTheTransform) {
  const auto check = [](const KtLinkKinematics& link, double q, double tolerance, bool linear,
                        const std::string& name) {
    const double qDot = uniform();
    const double qDotDot = uniform();
    const auto path = [&](double t) {
      return link.calculateTransform(q + qDot * t + 0.5 * qDotDot * t * t);
    };
    KtGeneralMotion expectedVelocity = differences::velocity(path);
    KtGeneralMotion expectedAcceleration = differences::acceleration(path);
    KtGeneralMotion actualVelocity = link.calculateVelocity(q, qDot);
    KtGeneralMotion actualAcceleration = link.calculateAcceleration(q, qDot, qDotDot);
    if (!linear) {
      for (auto* m :
           {&expectedVelocity, &expectedAcceleration, &actualVelocity, &actualAcceleration}) {
        m->setLinear(KtVector());
      }
    }
    expectNear(actualVelocity, expectedVelocity, tolerance, name + "velocity ");
    expectNear(actualAcceleration, expectedAcceleration, 10 * tolerance, name + "acceleration ");
  };
  for (int trial = 0; trial < 20; ++trial) {
    for (const unsigned jointType : kJointTypes) {
      for (const unsigned dhType : kDhTypes) {
        const Dh link = randomDh(jointType, dhType);
        check(link, uniform(-4.0, 4.0), 1e-6, true, nameOf(link));
      }
    }
    check(someQuadrilateral(Quad::kFixedSlider), uniform(-0.2, 0.2), 2e-4, false, "fixed slider ");
    check(someQuadrilateral(Quad::kPivotedSlider), uniform(-0.2, 0.2), 2e-4, true, "pivoted ");
  }
}

// The fixed slider's rate stands in the axes of the base side.
TEST_F(LinkKinematics, FixedSlidersLinearPartIsAlongTheUnturnedX) {
  const Quad link = someQuadrilateral(Quad::kFixedSlider);
  EXPECT_EQ(link.calculateVelocity(0.1, 0.7).linear(), KtVector(0.7, 0.0, 0.0));
  EXPECT_EQ(link.calculateAcceleration(0.1, 0.7, -0.3).linear(), KtVector(-0.3, 0.0, 0.0));
}

// A model that supplies its transformation alone.
TEST_F(LinkKinematics, DefaultMotionsByDifferencesAreNearTheExactOnes) {
  for (const unsigned jointType : kJointTypes) {
    for (const unsigned dhType : kDhTypes) {
      const Dh link = randomDh(jointType, dhType);
      const double q = 0.6;
      const KtGeneralMotion velocity = link.calculateVelocity(q, 0.8);
      expectNear(link.KtLinkKinematics::calculateVelocity(q, 0.8), velocity, 1e-6, nameOf(link));
      const KtGeneralMotion unit = link.calculateAcceleration(q, 0.0, 1.0);
      expectNear(link.KtLinkKinematics::calculateAcceleration(q, 0.0, 1.0), unit, 1e-6,
                 nameOf(link));
    }
  }
  KtScrewTypeLink screw;
  screw.setPitch(0.5);
  screw.setPrecursor(randomTransformation());
  expectNear(screw.calculateVelocity(0.3, 2.0), {{0.0, 0.0, 2.0}, {0.0, 0.0, 2.0 * kPi}}, 1e-6,
             "screw ");
  // At a moving joint only the size of the noise can be told.
  expectNear(screw.calculateAcceleration(0.3, 1.0, 1.0), {{0.0, 0.0, 1.0}, {0.0, 0.0, kPi}}, 10.0,
             "moving screw ");
}

TEST_F(LinkKinematics, AccelerationFromJointVelocityHoldsInATurningInboardFrame) {
  for (const unsigned jointType : kJointTypes) {
    for (const unsigned dhType : kDhTypes) {
      const Dh link = randomDh(jointType, dhType);
      const double q = uniform(-3.0, 3.0);
      const double qDot = uniform();
      const KtVector spin = randomVector();  // of the inboard frame about its fixed origin
      const auto path = [&](double t) {
        return rotation(spin.mag() * t, spin.unitVector()) * link.calculateTransform(q + qDot * t);
      };
      const T here = link.calculateTransform(q);
      const KtOrientation toLocal = here.orientation().inverse();
      const KtVector linearBase = toLocal * spin.cross(spin.cross(here.translation()));
      KtGeneralMotion result;
      link.accelerationFromJointVelocity(qDot, toLocal * spin, linearBase, KtVector(), result);
      expectNear(result, differences::acceleration(path), 1e-5, nameOf(link));
    }
  }
}

TEST_F(LinkKinematics, TorquesAreThePowerOfAUnitRate) {
  for (const unsigned jointType : kJointTypes) {
    for (const unsigned dhType : kDhTypes) {
      const Dh link = randomDh(jointType, dhType);
      const double q = uniform(-3.0, 3.0);
      const KtGeneralForce force(randomVector(), randomVector());
      const auto s =
          differences::velocity([&](double t) { return link.calculateTransform(q + t); });
      EXPECT_NEAR(link.torqueRequiredToExert(q, force),
                  s.linear().dot(force.force()) + s.angular().dot(force.moment()), 1e-7);
      KtArticulatedBodyInertia inertia;
      inertia.setFromRigidBody(KtRigidBodyMassProperties::defaultObject());
      const KtGeneralForce f = inertia.calculateForce(s);
      EXPECT_NEAR(link.unitAccelerationTorque(q, inertia),
                  s.linear().dot(f.force()) + s.angular().dot(f.moment()), 1e-6);
    }
  }
}

// What the parent sees is what remains when the joint's acceleration is eliminated from the child's
// equation of motion and that of its joint.
TEST_F(LinkKinematics, ChildsDynamicsShowThroughTheJoint) {
  const auto check = [](const KtLinkKinematics& link, double q, double tolerance) {
    KtRigidBodyMassProperties body(1.3, randomVector() * 0.1, {0.3, 0.4, 0.5, 0.01, -0.02, 0.03});
    const KtArticulatedBodyDynamics child(body, {randomVector(), randomVector()});
    const double inertia = 0.7;
    const double torque = -2.9;
    KtArticulatedBodyDynamics parent;
    ASSERT_TRUE(link.addChildArbdToParent(parent, child, q, inertia, torque));

    const T t = link.calculateTransform(q);
    const KtGeneralMotion s = link.calculateAcceleration(q, 0.0, 1.0);
    const KtGeneralMotion atParent = randomMotion();
    const KtGeneralMotion carried = t.inverse() * atParent;
    const auto along = [&s](const KtGeneralForce& f) {
      return s.linear().dot(f.force()) + s.angular().dot(f.moment());
    };
    const double rate = (torque - along(child.calculateForce(carried))) /
                        (inertia + along(child.inertia().calculateForce(s)));
    const KtGeneralForce expected = t * child.calculateForce(carried + s * rate);
    EXPECT_TRUE(parent.calculateForce(atParent).approxEq(expected, tolerance));
  };
  for (const unsigned jointType : kJointTypes) {
    for (const unsigned dhType : kDhTypes) {
      check(randomDh(jointType, dhType), uniform(-3.0, 3.0), 1e-12);
    }
  }
  check(someQuadrilateral(Quad::kPivotedSlider), 0.1, 1e-12);
  KtScrewTypeLink screw;
  screw.setPrecursor(randomTransformation());
  check(screw, 0.2, 1e-5);
}

TEST_F(LinkKinematics, TransformIsKeptUntilASetterOrACopy) {
  Dh link = randomDh(Dh::kRotational, Dh::kGeneralCraig);
  const T before = link.calculateTransform(0.5);
  EXPECT_EQ(&link.calculateTransform(0.5), &link.calculateTransform(0.5));
  // These leave what is kept.
  link.scaleBy(2.0);
  EXPECT_EQ(link.calculateTransform(0.5), before);
  link.KtLinkKinematics::setPrimaryFrame(randomTransformation());
  static_cast<KtLinkKinematics&>(link).transformBy(randomTransformation());
  EXPECT_EQ(link.calculateTransform(0.5), before);
  // A copy and an assignment start afresh.
  const Dh copy(link);
  EXPECT_TRUE(copy.calculateTransform(0.5).approxEq(elementary(link, 0.5), 1e-14));
  Dh assigned;
  assigned.calculateTransform(0.5);
  assigned = link;
  EXPECT_TRUE(assigned.calculateTransform(0.5).approxEq(elementary(link, 0.5), 1e-14));
  // So does every setter.
  const T t = randomTransformation();
  for (const std::function<void()>& set : std::vector<std::function<void()>>{
           [&] { link.setJointType(Dh::kPrismatic); }, [&] { link.setDhTheta(0.3); },
           [&] { link.setJointType(Dh::kRotational); }, [&] { link.setDhType(Dh::kPaul); },
           [&] { link.setDhA(3.0); }, [&] { link.setDhD(-2.0); }, [&] { link.setDhAlpha(1.2); },
           [&] { link.setDhType(Dh::kGeneral); }, [&] { link.setPrecursor(t); },
           [&] { link.changeInboardFrameBy(t); }}) {
    set();
    EXPECT_TRUE(link.calculateTransform(0.5).approxEq(elementary(link, 0.5), 1e-13));
  }
  const Allocations allocations;
  for (int i = 0; i < 10; ++i) {
    link.calculateTransform(0.1 * i);
    link.calculateAcceleration(0.1 * i, 1.0, 1.0);
  }
  EXPECT_EQ(allocations.count(), 0U);
}

// A transformation of another q in between doesn't mix the two positions' loops.
TEST_F(LinkKinematics, QuadrilateralKeepsItsLoopWithItsTransform) {
  for (const unsigned type : {Quad::kFixedSlider, Quad::kPivotedSlider}) {
    const Quad link = someQuadrilateral(type);
    const Quad untouched = link;
    link.calculateTransform(0.1);
    T elsewhere;
    link.transformBy(elsewhere, -0.2);
    EXPECT_EQ(link.calculateAcceleration(0.1, 0.7, 0.3),
              untouched.calculateAcceleration(0.1, 0.7, 0.3));
    link.transformBy(elsewhere, -0.2);
    EXPECT_EQ(link.frameCTransform(0.1), untouched.frameCTransform(0.1));
    link.transformBy(elsewhere, -0.2);
    EXPECT_EQ(link.frameBTransform(0.1), untouched.frameBTransform(0.1));
  }
}

// A model that puts something before the joint by overriding the composition.
class Shifted : public KtXmlPersistent<Shifted, Dh> {
 public:
  using Dh::transformBy;
  void transformBy(T& t, double q) const override {
    t *= T(KtVector(1.0, 2.0, 3.0));
    Dh::transformBy(t, q);
  }
  bool operator==(const Shifted&) const = default;
};

TEST_F(LinkKinematics, TransformGoesThroughTheOverriddenComposition) {
  for (const unsigned type : {Dh::kPaul, Dh::kGeneralCraig}) {
    const Dh link = randomDh(Dh::kRotational, type);
    Shifted shifted;
    static_cast<Dh&>(shifted) = link;
    EXPECT_TRUE(shifted.calculateTransform(0.3).approxEq(
        T(KtVector(1.0, 2.0, 3.0)) * link.calculateTransform(0.3), 1e-14));
  }
}

TEST_F(LinkKinematics, MovingTheInboardReferenceMovesTheTransform) {
  const T t = randomTransformation();
  for (const unsigned dhType : kDhTypes) {
    Dh link = randomDh(Dh::kRotational, dhType);
    if (!isGeneralised(dhType) && dhType != Dh::kGeneral) link.setPrecursor(T());
    Dh moved = link;
    moved.transformBy(t);
    EXPECT_TRUE(moved.calculateTransform(0.4).approxEq(t * link.calculateTransform(0.4), 1e-13));
    EXPECT_EQ(moved.dhType(), dhType == Dh::kPaul    ? Dh::kGeneralPaul
                              : dhType == Dh::kCraig ? Dh::kGeneralCraig
                                                     : dhType);
    Dh changed = link;
    changed.changeInboardFrameBy(t);
    const KtCoordinateSystemTransformation inner =
        link.precursor().inverse() * link.calculateTransform(0.4);
    EXPECT_TRUE(changed.calculateTransform(0.4).approxEq(link.precursor() * t * inner, 1e-13));
    // By its own precursor, which a paul or craig link loses on the way.
    Dh own = randomDh(Dh::kRotational, dhType);
    const T precursor = own.precursor();
    own.transformBy(own.precursor());
    const bool had = isGeneralised(dhType) || dhType == Dh::kGeneral;
    EXPECT_EQ(own.precursor(), precursor * (had ? precursor : T()));
  }
  KtScrewTypeLink screw;
  screw.setPrecursor(randomTransformation());
  Quad quad = someQuadrilateral(Quad::kFixedSlider);
  for (KtLinkKinematics* link :
       {static_cast<KtLinkKinematics*>(&screw), static_cast<KtLinkKinematics*>(&quad)}) {
    const T before = link->calculateTransform(0.1);
    link->transformBy(t);
    EXPECT_EQ(link->calculateTransform(0.1), before);  // kept
    EXPECT_TRUE(link->calculateTransform(0.1 + 1e-15).approxEq(t * before, 1e-12));
    const T moved = link->calculateTransform(0.2);
    link->changeInboardFrameBy(t);
    EXPECT_FALSE(link->calculateTransform(0.2).approxEq(moved, 1e-3));
  }
}

TEST_F(LinkKinematics, ScalingScalesLengthsAndKeepsAngles) {
  const double f = 2.5;
  for (const unsigned jointType : kJointTypes) {
    for (const unsigned dhType : kDhTypes) {
      const Dh link = randomDh(jointType, dhType);
      Dh scaled = link;
      scaled.scaleBy(f);
      const double q = 0.7;
      const T t = scaled.calculateTransform(q * std::pow(f, link.jointParameterScalability()));
      T expected = link.calculateTransform(q);
      expected.setTranslation(expected.translation() * f);
      EXPECT_TRUE(t.approxEq(expected, 1e-13));
    }
  }
  for (const unsigned type : {Quad::kFixedSlider, Quad::kPivotedSlider}) {
    const Quad link = someQuadrilateral(type);
    Quad scaled = link;
    scaled.scaleBy(f);
    T expected = link.frameBTransform(0.1);
    expected.setTranslation(expected.translation() * f);
    EXPECT_TRUE(scaled.frameBTransform(f * 0.1).approxEq(expected, 1e-12));
    EXPECT_EQ(scaled.zDistanceC(), f * link.zDistanceC());
    EXPECT_EQ(scaled.jointParameterScalability(), 1.0);
  }
  KtScrewTypeLink screw;
  screw.setPitch(0.5);
  screw.setPrecursor(T(KtVector(1.0, 2.0, 3.0)));
  screw.scaleBy(2.0);
  EXPECT_EQ(screw.pitch(), 0.25);
  EXPECT_EQ(screw.precursor(), T(KtVector(2.0, 4.0, 6.0)));
  screw.scaleBy(0.0);
  EXPECT_EQ(screw.pitch(), 0.25 / 1e-300);
}

TEST_F(LinkKinematics, BoundOfTheDistanceHoldsOverTheRange) {
  KtJointActuator actuator;
  actuator.setLowerLimit(-1.5);
  actuator.setUpperLimit(2.5);
  for (int trial = 0; trial < 20; ++trial) {
    for (const unsigned jointType : kJointTypes) {
      for (const unsigned dhType : {Dh::kPaul, Dh::kGeneralPaul, Dh::kCraig, Dh::kGeneral}) {
        Dh link = randomDh(jointType, dhType);
        const double bound = link.upperBoundDhFrameDistance(actuator);
        double largest = 0.0;
        for (double q = -1.5; q <= 2.5; q += 0.05) {
          largest = std::max(largest, link.calculateTransform(q).translation().mag());
        }
        EXPECT_GE(bound, largest - 1e-12) << nameOf(link);
        EXPECT_LE(bound, largest + 2.0 * std::abs(link.dhA()) + 1e-12) << nameOf(link);
      }
    }
  }
  actuator.setLowerLimit(-2.0);
  actuator.setUpperLimit(1.0);
  EXPECT_EQ(KtScrewTypeLink().upperBoundDhFrameDistance(actuator), 2.0);
  EXPECT_EQ(someQuadrilateral(Quad::kFixedSlider).upperBoundDhFrameDistance(actuator), 0.0);
}

// The sides of the four-bar have their lengths, at every position that closes.
TEST_F(LinkKinematics, QuadrilateralCloses) {
  for (const unsigned type : {Quad::kFixedSlider, Quad::kPivotedSlider}) {
    const Quad link = someQuadrilateral(type);
    const T outer = link.precursor().inverse();
    for (double q = -0.3; q <= 0.3; q += 0.05) {
      const double length = link.nominalLength() + q;
      const bool fixed = type == Quad::kFixedSlider;
      const KtVector pivot = (outer * link.frameATransform(q)).translation();
      const T dh = outer * link.calculateTransform(q);
      const T b = outer * link.frameBTransform(q);
      const T c = outer * link.frameCTransform(q);
      EXPECT_TRUE(pivot.approxEq({fixed ? length : link.oppositeLength(), 0.0, 0.2}, 1e-12));
      EXPECT_TRUE(dh.translation().approxEq(pivot, 1e-12));
      // The far end of the link's side, from the pivot and from the far corner.
      const KtVector end(b.translation().x, b.translation().y, 0.0);
      const KtVector corner(0.0, link.d1Length(), 0.0);
      EXPECT_NEAR((end - corner).mag(), fixed ? link.oppositeLength() : length, 1e-12);
      EXPECT_TRUE((dh * KtVector(link.d2Length(), 0.0, -0.2)).approxEq(end, 1e-12));
      EXPECT_NEAR(b.translation().z, -0.3, 1e-12);
      EXPECT_TRUE(b.orientation().xAxis().approxEq((end - corner).unitVector(), 1e-12));
      EXPECT_TRUE(c.approxEq(dh * T(KtVector(-length, 0.0, 0.0)), 1e-12));
    }
  }
}

TEST_F(LinkKinematics, QuadrilateralsBranchesAndBadLengths) {
  // It closes as a square, or folded onto its sides; the larger cosine is the square's.
  Quad square;
  for (auto set : {&Quad::setNominalLength, &Quad::setD1Length, &Quad::setD2Length,
                   &Quad::setOppositeLength}) {
    (square.*set)(1.0);
  }
  const KtVector x = square.calculateTransform(0.0).orientation().xAxis();
  EXPECT_TRUE(x.approxEq({0.0, 1.0, 0.0}, 1e-12)) << x.x << " " << x.y;

  Quad link = someQuadrilateral(Quad::kFixedSlider);
  const T before = link.calculateTransform(0.1);
  link.setZDistanceA(7.0);
  EXPECT_EQ(link.calculateTransform(0.1), before);
  link.setD1Length(0.55);
  EXPECT_FALSE(link.calculateTransform(0.1) == before);
  Quad copy = link;
  copy.scaleBy(3.0);
  EXPECT_FALSE(copy.calculateTransform(0.1) == link.calculateTransform(0.1));
  // Without a base side the cosine can't be divided by it; of the two mirrored loops that with the
  // larger one is taken.
  link.setNominalLength(0.0);
  for (const double opposite : {0.9, 0.4}) {
    link.setOppositeLength(opposite);
    const KtVector end = (link.precursor().inverse() * link.frameBTransform(0.0)).translation();
    EXPECT_NEAR(std::hypot(end.x, end.y - link.d1Length()), opposite, 1e-12);
    EXPECT_NEAR(std::hypot(end.x, end.y), link.d2Length(), 1e-12);
    EXPECT_GT(end.x, 0.0);
  }
  // Without d1 too the loops are mirrored: at equal cosines the second solution is taken.
  copy = link;
  copy.setPrecursor(T());
  copy.setNominalLength(-1.1);
  copy.setD1Length(0.0);
  copy.setOppositeLength(1.3);
  EXPECT_GT(copy.calculateTransform(0.0).orientation().xAxis().y, 0.0);
  // A side b of length 0 has no direction: frame B is turned a quarter back from the link.
  KtLogCapture log;
  copy.setNominalLength(0.4);
  copy.setD1Length(0.3);
  copy.setOppositeLength(0.0);
  EXPECT_TRUE(copy.frameBTransform(0.0).orientation().xAxis().approxEq({0.6, 0.8, 0.0}, 1e-7));
  log.clear();
  link.setOppositeLength(9.0);
  const T impossible = link.calculateTransform(0.0);
  EXPECT_EQ(log.text(), "KtQuadrilateralTypeLink::transformBy()-Invalid joint position\n");
  EXPECT_TRUE(std::isfinite(impossible.translation().mag()));
  log.clear();
  link.setJointType(5);
  link.calculateTransform(0.0);
  link.frameATransform(0.0);
  link.frameBTransform(0.0);
  link.calculateVelocity(0.0, 1.0);
  link.calculateAcceleration(0.0, 1.0, 1.0);
  EXPECT_EQ(log.text(),
            "KtQuadrilateralTypeLink::transformBy() bad joint type:\n"
            "KtQuadrilateralTypeLink::frameATransform() bad joint type:\n"
            "KtQuadrilateralTypeLink::frameBTransform() bad joint type:\n"
            "KtQuadrilateralTypeLink::calculateVelocity() bad joint type:\n"
            "KtQuadrilateralTypeLink::calculateVelocity() bad joint type:\n"
            "KtQuadrilateralTypeLink::calculateAcceleration() bad joint type:\n");
  // An empty model has no angle, but every frame of it is a rotation.
  EXPECT_EQ(Quad().calculateTransform(0.0).orientation(), KtOrientation());
}

TEST_F(LinkKinematics, BadTypesAreReportedAndChangeNothing) {
  const struct {
    unsigned jointType;
    unsigned dhType;
    const char* what;
  } cases[] = {{7, Dh::kPaul, "joint"}, {7, Dh::kGeneral, "joint"}, {Dh::kRotational, 9, "D-H"}};
  for (const auto& bad : cases) {
    Dh link = randomDh(bad.jointType, bad.dhType);
    const std::string end = std::string("() bad ") + bad.what + " type:\n";
    KtLogCapture log;
    EXPECT_EQ(link.calculateTransform(0.5), T());
    EXPECT_EQ(log.text(), "KtDenavitHartenberg::calculateTransform" + end);
    log.clear();
    KtGeneralMotion motion({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    const KtGeneralMotion before = motion;
    link.getUnitFrameMotion(motion, 0.5);
    link.accelerationFromJointVelocity(1.0, randomVector(), randomVector(), randomVector(), motion);
    EXPECT_EQ(motion, before);
    EXPECT_EQ(link.calculateAcceleration(0.5, 1.0, 1.0), KtGeneralMotion());
    const std::string acceleration = "KtDenavitHartenberg::accelerationFromJointVelocity" + end;
    EXPECT_EQ(log.text(),
              "KtDenavitHartenberg::getUnitFrameMotion" + end + acceleration + acceleration);
  }
  Dh link;
  link.setJointType(7);
  KtLogCapture log;
  EXPECT_EQ(link.jointParameterScalability(), 0.0);
  EXPECT_EQ(link.upperBoundDhFrameDistance(KtJointActuator()), 0.0);
  EXPECT_EQ(log.text(),
            "KtDenavitHartenberg::jointParameterScalability(): unknown joint type (7)."
            "KtDenavitHartenberg::upperBoundDhFrameDistance-->Joint Type (7) unknown");
}

TEST_F(LinkKinematics, ComparisonsLookAtWhatTheyShould) {
  const Dh link = randomDh(Dh::kRotational, Dh::kGeneralPaul);
  Dh other = link;
  other.setPrimaryFrame(randomTransformation());
  EXPECT_TRUE(link.approxEq(other, 0.0));
  EXPECT_FALSE(link == other);
  EXPECT_FALSE(static_cast<const KtLinkKinematics&>(link).approxEq(
      static_cast<const KtLinkKinematics&>(other), 1e-3));
  const T step(KtVector(0.0, 0.25, 0.0));
  for (const std::function<void(Dh&)>& change : std::vector<std::function<void(Dh&)>>{
           [](Dh& x) { x.setDhA(x.dhA() + 0.25); }, [](Dh& x) { x.setDhD(x.dhD() - 0.25); },
           [](Dh& x) { x.setDhAlpha(x.dhAlpha() + 0.25); },
           [](Dh& x) { x.setDhTheta(x.dhTheta() - 0.25); },
           [&](Dh& x) { x.setPrecursor(step * x.precursor()); }}) {
    other = link;
    change(other);
    EXPECT_TRUE(link.approxEq(other, 0.2500001));
    EXPECT_FALSE(link.approxEq(other, 0.249));
    EXPECT_FALSE(link == other);
  }
  for (const auto set : {&Dh::setJointType, &Dh::setDhType}) {
    other = link;
    (other.*set)(9);
    EXPECT_FALSE(link.approxEq(other, 99.0));
    EXPECT_FALSE(link == other);
  }

  KtScrewTypeLink fine;
  KtScrewTypeLink coarse;
  coarse.setPitch(9.0);
  EXPECT_TRUE(fine.approxEq(coarse, 0.0));
  EXPECT_FALSE(fine == coarse);

  const Quad quad = someQuadrilateral(Quad::kFixedSlider);
  Quad moved = quad;
  moved.setPrecursor(T());
  EXPECT_TRUE(quad.approxEq(moved, 0.0));
  EXPECT_FALSE(quad == moved);
  for (const auto set :
       {&Quad::setNominalLength, &Quad::setD1Length, &Quad::setD2Length, &Quad::setOppositeLength,
        &Quad::setZDistanceA, &Quad::setZDistanceB, &Quad::setZDistanceC}) {
    moved = quad;
    (moved.*set)(5.0);
    EXPECT_TRUE(quad.approxEq(moved, 6.0));
    EXPECT_FALSE(quad.approxEq(moved, 0.1));
    EXPECT_FALSE(quad == moved);
  }
  moved = quad;
  moved.setJointType(Quad::kPivotedSlider);
  EXPECT_FALSE(quad.approxEq(moved, 9.0));
  EXPECT_FALSE(quad == moved);

  const Dh example = Dh::defaultObject();
  EXPECT_EQ(example.jointType(), Dh::kPrismatic);
  EXPECT_EQ(example.dhType(), Dh::kPaul);
  EXPECT_EQ(example.primaryFrame(), T({12.0, -3.0, -4.0}, {-1.0, 2.0, -1.0, 4.0}));
}

TEST_F(LinkKinematics, ScrewTurnsWithItsTravel) {
  KtScrewTypeLink screw;
  EXPECT_TRUE(screw.calculateTransform(0.25).approxEq(
      T({0.0, 0.0, 0.25}, KtOrientation::zRotation(kPi / 2)), 1e-15));
  screw.setPitch(123.0);
  const T t = randomTransformation();
  screw.setPrecursor(t);
  EXPECT_EQ(screw.calculateTransform(0.0), t);
}

TEST_F(LinkKinematics, HolderForwardsAndAnswersWhenEmpty) {
  KtLinkKinematicsContainer holder;
  KtArticulatedBodyDynamics parent;
  KtLogCapture log;
  T t = randomTransformation();
  const T before = t;
  EXPECT_FALSE(holder.transformBy(t, 1.0));
  EXPECT_FALSE(holder.transformBy(T(KtVector(1.0, 0.0, 0.0))));
  EXPECT_FALSE(holder.addChildArbdToParent(parent, parent, 1.0, 1.0, 1.0));
  holder.scaleBy(2.0);
  holder.setPrimaryFrame(T());
  EXPECT_EQ(log.text(), "");
  holder.setPrimaryFrame(t);
  EXPECT_EQ(log.text(), "KtLinkKinematicsContainer::setPrimaryFrame-->Null container\n");
  EXPECT_EQ(t, before);
  EXPECT_EQ(holder.primaryFrame(), T());
  EXPECT_EQ(holder.primaryFrameInverse(), T());
  EXPECT_EQ(holder.calculateTransform(1.0), T());
  EXPECT_EQ(holder.calculateVelocity(1.0, 1.0), KtGeneralMotion());
  EXPECT_EQ(holder.calculateAcceleration(1.0, 1.0, 1.0), KtGeneralMotion());
  EXPECT_EQ(holder.unitAccelerationTorque(1.0, parent.inertia()), 0.0);
  EXPECT_EQ(holder.torqueRequiredToExert(1.0, KtGeneralForce({1.0, 1.0, 1.0}, {})), 0.0);
  EXPECT_EQ(holder.jointParameterScalability(), 0.0);

  // A joint that is none is reported with its place.
  log.clear();
  EXPECT_FALSE(KtXmlReader::readString(
      "<linkKinematicsContainer>\n<ball/></linkKinematicsContainer>", holder));
  EXPECT_TRUE(log.contains("2: <ball> is not an element of linkKinematicsContainer")) << log.text();

  Dh link = randomDh(Dh::kPrismatic, Dh::kPaul);
  holder.setTopElement(link);
  holder.setPrimaryFrame(t);
  EXPECT_TRUE((holder.primaryFrame() * holder.primaryFrameInverse()).approxEq(T(), 1e-15));
  EXPECT_EQ(holder.calculateTransform(0.5), link.calculateTransform(0.5));
  EXPECT_EQ(holder.calculateVelocity(0.5, 2.0), link.calculateVelocity(0.5, 2.0));
  EXPECT_EQ(holder.jointParameterScalability(), 1.0);
  holder.scaleBy(2.0);
  EXPECT_TRUE(holder.transformBy(t));
  link.scaleBy(2.0);
  link.transformBy(t);
  link.setPrimaryFrame(t);
  EXPECT_TRUE(holder.topElement()->equality(&link));
}

}  // namespace
