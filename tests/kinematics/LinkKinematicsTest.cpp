#include "support/Differences.h"
#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using Dh = KtDenavitHartenberg;
using Quad = KtQuadrilateralTypeLink;

constexpr double kPi = std::numbers::pi;

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

// A random link of every joint type and convention.
template <class Check>
void forAllDh(Check&& check) {
  for (const unsigned jointType : {Dh::kRotational, Dh::kPrismatic}) {
    for (const unsigned dhType :
         {Dh::kPaul, Dh::kGeneralPaul, Dh::kCraig, Dh::kGeneralCraig, Dh::kGeneral}) {
      SCOPED_TRACE(testing::Message() << "joint type " << jointType << ", DH type " << dhType);
      check(randomDh(jointType, dhType));
    }
  }
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

void expectNear(const KtGeneralMotion& actual, const KtGeneralMotion& expected, double tolerance) {
  for (unsigned i = 0; i < 6; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << i;
}

// The sign of the quaternion is that of the rule which divides by the component that the signs of
// the two cosines choose: that component is positive.
TEST(LinkKinematics, TransformIsThatOfItsConventionInAllQuadrants) {
  forAllDh([](Dh link) {
    for (int i = -9; i <= 9; ++i) {
      for (int j = -9; j <= 9; ++j) {
        // Multiples of a quarter turn and values beside them.
        const double q = i % 2 != 0 ? i / 2 * kPi / 2 : i * kPi / 4 + uniform(-0.7, 0.7);
        link.setDhAlpha(j % 2 != 0 ? j / 2 * kPi / 2 : j * kPi / 4 + uniform(-0.7, 0.7));
        const T expected = elementary(link, q);
        ASSERT_TRUE(link.calculateTransform(q).approxEq(expected, 1e-14)) << q;
        const bool plain = link.dhType() == Dh::kPaul || link.dhType() == Dh::kCraig;
        if (plain && link.jointType() == Dh::kRotational) {
          const bool twisted = link.dhAlpha().cosine() < 0.0;
          const unsigned largest = std::cos(q) <= 0.0 ? (twisted ? 2 : 3) : (twisted ? 1 : 0);
          ASSERT_GT(link.calculateTransform(q).orientation()[largest], 0.0) << q;
        }
        const T before = randomTransformation();
        T outer = before;
        link.transformBy(outer, q);
        const bool replaces = link.dhType() == Dh::kGeneral;
        ASSERT_TRUE(outer.approxEq(replaces ? expected : before * expected, 1e-13)) << q;
      }
    }
  });
}

TEST(LinkKinematics, MotionsOfAllModelsAreDifferencesOfTheTransform) {
  // The fixed slider's rate stands in the axes of the base side.
  const auto check = [](const KtLinkKinematics& link, double q, double tolerance, bool turned) {
    const double qDot = uniform(), qDotDot = uniform();
    const auto path = [&](double t) {
      return link.calculateTransform(q + qDot * t + 0.5 * qDotDot * t * t);
    };
    KtGeneralMotion velocity = differences::velocity(path);
    KtGeneralMotion acceleration = differences::acceleration(path);
    if (!turned) {
      velocity.setLinear(KtVector::xVector(qDot));
      acceleration.setLinear(KtVector::xVector(qDotDot));
    }
    expectNear(link.calculateVelocity(q, qDot), velocity, tolerance);
    expectNear(link.calculateAcceleration(q, qDot, qDotDot), acceleration, 10 * tolerance);
  };
  for (int trial = 0; trial < 20; ++trial) {
    forAllDh([&](const Dh& link) { check(link, uniform(-4.0, 4.0), 1e-6, true); });
    check(trees::randomQuadrilateral(Quad::kFixedSlider), uniform(-0.2, 0.2), 2e-4, false);
    check(trees::randomQuadrilateral(Quad::kPivotedSlider), uniform(-0.2, 0.2), 2e-4, true);
  }
}

TEST(LinkKinematics, TransformIsKeptUntilASetterOrACopy) {
  Dh link = randomDh(Dh::kRotational, Dh::kGeneralCraig);
  const T before = link.calculateTransform(0.5);
  // These leave what is kept.
  link.scaleBy(2.0);
  link.KtLinkKinematics::setPrimaryFrame(randomTransformation());
  static_cast<KtLinkKinematics&>(link).transformBy(randomTransformation());
  EXPECT_EQ(link.calculateTransform(0.5), before);
  // A copy and an assignment start afresh, and so does every setter.
  const auto expectAfresh = [&link](const Dh& fresh) {
    EXPECT_TRUE(fresh.calculateTransform(0.5).approxEq(elementary(link, 0.5), 1e-13));
  };
  expectAfresh(Dh(link));
  Dh assigned;
  assigned.calculateTransform(0.5);
  assigned = link;
  expectAfresh(assigned);
  const T t = randomTransformation();
  for (const std::function<void()>& set : std::vector<std::function<void()>>{
           [&] { link.setJointType(Dh::kPrismatic); }, [&] { link.setDhTheta(0.3); },
           [&] { link.setJointType(Dh::kRotational); }, [&] { link.setDhType(Dh::kPaul); },
           [&] { link.setDhA(3.0); }, [&] { link.setDhD(-2.0); }, [&] { link.setDhAlpha(1.2); },
           [&] { link.setDhType(Dh::kGeneral); }, [&] { link.setPrecursor(t); },
           [&] { link.changeInboardFrameBy(t); }}) {
    set();
    expectAfresh(link);
  }
}

// A transformation of another q in between doesn't mix the two positions' loops.
TEST(LinkKinematics, QuadrilateralKeepsItsLoopWithItsTransform) {
  for (const unsigned type : {Quad::kFixedSlider, Quad::kPivotedSlider}) {
    const Quad link = trees::randomQuadrilateral(type), untouched = link;
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

TEST(LinkKinematics, MovingTheInboardReferenceMovesTheTransform) {
  const T t = randomTransformation();
  forAllDh([&t](Dh link) {
    const unsigned dhType = link.dhType();
    // By its own precursor, which a paul or craig link loses on the way.
    const bool hasPrecursor = isGeneralised(dhType) || dhType == Dh::kGeneral;
    const T precursor = link.precursor();
    Dh own = link;
    own.transformBy(own.precursor());
    EXPECT_EQ(own.precursor(), precursor * (hasPrecursor ? precursor : T()));
    if (!hasPrecursor) link.setPrecursor(T());
    const T inner = link.precursor().inverse() * link.calculateTransform(0.4);
    Dh moved = link;
    moved.transformBy(t);
    EXPECT_TRUE(moved.calculateTransform(0.4).approxEq(t * link.calculateTransform(0.4), 1e-13));
    EXPECT_EQ(moved.dhType(), dhType == Dh::kPaul    ? Dh::kGeneralPaul
                              : dhType == Dh::kCraig ? Dh::kGeneralCraig
                                                     : dhType);
    const T changed = link.precursor() * t * inner;
    link.changeInboardFrameBy(t);
    EXPECT_TRUE(link.calculateTransform(0.4).approxEq(changed, 1e-13));
  });
  KtScrewTypeLink screw;
  screw.setPrecursor(randomTransformation());
  Quad quad = trees::randomQuadrilateral(Quad::kFixedSlider);
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

TEST(LinkKinematics, AccelerationFromJointVelocityHoldsInATurningInboardFrame) {
  forAllDh([](const Dh& link) {
    const double q = uniform(-3.0, 3.0), qDot = uniform();
    const KtVector spin = randomVector();  // of the inboard frame about its fixed origin
    const auto path = [&](double t) {
      return rotation(spin.mag() * t, spin.unitVector()) * link.calculateTransform(q + qDot * t);
    };
    const T here = link.calculateTransform(q);
    const KtOrientation toLocal = here.orientation().inverse();
    const KtVector linearBase = toLocal * spin.cross(spin.cross(here.translation()));
    KtGeneralMotion result;
    link.accelerationFromJointVelocity(qDot, toLocal * spin, linearBase, KtVector(), result);
    expectNear(result, differences::acceleration(path), 1e-5);
  });
}

TEST(LinkKinematics, ScalingScalesLengthsAndKeepsAngles) {
  const auto scaledBy = [](T t, double factor) {
    t.setTranslation(t.translation() * factor);
    return t;
  };
  forAllDh([&](const Dh& link) {
    Dh scaled = link;
    scaled.scaleBy(2.5);
    const double q = 0.7 * std::pow(2.5, link.jointParameterScalability());
    EXPECT_TRUE(
        scaled.calculateTransform(q).approxEq(scaledBy(link.calculateTransform(0.7), 2.5), 1e-13));
  });
  for (const unsigned type : {Quad::kFixedSlider, Quad::kPivotedSlider}) {
    const Quad link = trees::randomQuadrilateral(type);
    Quad scaled = link;
    scaled.scaleBy(2.5);
    for (const auto frame : {&Quad::frameBTransform, &Quad::frameCTransform}) {
      EXPECT_TRUE((scaled.*frame)(0.25).approxEq(scaledBy((link.*frame)(0.1), 2.5), 1e-12));
    }
    EXPECT_EQ(scaled.jointParameterScalability(), 1.0);
  }
}

TEST(LinkKinematics, BoundOfTheDistanceHoldsOverTheRange) {
  KtJointActuator actuator;
  actuator.setLowerLimit(-1.5);
  actuator.setUpperLimit(2.5);
  for (int trial = 0; trial < 20; ++trial) {
    forAllDh([&](const Dh& link) {
      const double bound = link.upperBoundDhFrameDistance(actuator);
      double largest = 0.0;
      for (double q = -1.5; q <= 2.5; q += 0.05) {
        largest = std::max(largest, link.calculateTransform(q).translation().mag());
      }
      // With a precursor the Craig form's bound is that of the upper limit alone.
      if (link.dhType() != Dh::kGeneralCraig) {
        EXPECT_GE(bound, largest - 1e-12);
      }
      EXPECT_LE(bound, largest + 2.0 * std::abs(link.dhA()) + 1e-12);
    });
  }
  actuator.setLowerLimit(-2.0);
  actuator.setUpperLimit(1.0);
  EXPECT_EQ(KtScrewTypeLink().upperBoundDhFrameDistance(actuator), 2.0);
  EXPECT_EQ(trees::randomQuadrilateral(Quad::kFixedSlider).upperBoundDhFrameDistance(actuator),
            0.0);
}

// The sides of the four-bar have their lengths, at every position that closes.
TEST(LinkKinematics, QuadrilateralCloses) {
  for (const unsigned type : {Quad::kFixedSlider, Quad::kPivotedSlider}) {
    const Quad link = trees::randomQuadrilateral(type);
    const T outer = link.precursor().inverse();
    for (double q = -0.3; q <= 0.3; q += 0.05) {
      const double length = link.nominalLength() + q;
      const bool fixed = type == Quad::kFixedSlider;
      const KtVector pivot = (outer * link.frameATransform(q)).translation();
      const T dh = outer * link.calculateTransform(q);
      const T b = outer * link.frameBTransform(q), c = outer * link.frameCTransform(q);
      EXPECT_TRUE(
          pivot.approxEq({fixed ? length : link.oppositeLength(), 0.0, link.zDistanceA()}, 1e-12));
      EXPECT_TRUE(dh.translation().approxEq(pivot, 1e-12));
      // The far end of the link's side, from the pivot and from the far corner.
      const KtVector end(b.translation().x, b.translation().y, 0.0);
      const KtVector corner(0.0, link.d1Length(), 0.0);
      EXPECT_NEAR((end - corner).mag(), fixed ? link.oppositeLength() : length, 1e-12);
      EXPECT_TRUE((dh * KtVector(link.d2Length(), 0.0, -link.zDistanceA())).approxEq(end, 1e-12));
      EXPECT_NEAR(b.translation().z, link.zDistanceB(), 1e-12);
      EXPECT_TRUE(b.orientation().xAxis().approxEq((end - corner).unitVector(), 1e-12));
      EXPECT_TRUE(c.approxEq(dh * T(KtVector(-length, 0.0, 0.0)), 1e-12));
    }
  }
}

TEST(LinkKinematics, QuadrilateralsBranchesAndBadLengths) {
  // It closes as a square, or folded onto its sides; the larger cosine is the square's.
  Quad square;
  for (auto set : {&Quad::setNominalLength, &Quad::setD1Length, &Quad::setD2Length,
                   &Quad::setOppositeLength}) {
    (square.*set)(1.0);
  }
  const KtVector x = square.calculateTransform(0.0).orientation().xAxis();
  EXPECT_TRUE(x.approxEq({0.0, 1.0, 0.0}, 1e-12)) << x.x << " " << x.y;

  Quad link = trees::randomQuadrilateral(Quad::kFixedSlider);
  const T before = link.calculateTransform(0.1);
  link.setZDistanceA(7.0);
  EXPECT_EQ(link.calculateTransform(0.1), before);
  link.setD1Length(0.55);
  EXPECT_FALSE(link.calculateTransform(0.1) == before);
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
  // A side b of length 0 has no direction: frame B is turned a quarter back from the link.
  Quad copy = link;
  copy.setPrecursor(T());
  copy.setNominalLength(0.4);
  copy.setD1Length(0.3);
  copy.setD2Length(0.5);
  copy.setOppositeLength(0.0);
  EXPECT_TRUE(copy.frameBTransform(0.0).orientation().xAxis().approxEq({0.6, 0.8, 0.0}, 1e-7));
  const KtLogCapture log;
  link.setOppositeLength(9.0);
  EXPECT_TRUE(std::isfinite(link.calculateTransform(0.0).translation().mag()));
  link.setJointType(5);
  link.calculateTransform(0.0);
  link.frameATransform(0.0);
  link.frameBTransform(0.0);
  link.calculateAcceleration(0.0, 1.0, 1.0);
  std::string said = "KtQuadrilateralTypeLink::transformBy()-Invalid joint position\n";
  for (const char* operation : {"transformBy", "frameATransform", "frameBTransform",
                                "calculateVelocity", "calculateAcceleration"}) {
    said += std::string("KtQuadrilateralTypeLink::") + operation + "() bad joint type:\n";
  }
  EXPECT_EQ(log.errors(), said);
  // An empty model has no angle, but every frame of it is a rotation.
  EXPECT_EQ(Quad().calculateTransform(0.0).orientation(), KtOrientation());
}

TEST(LinkKinematics, BadTypesAreReportedAndChangeNothing) {
  const struct {
    unsigned jointType, dhType;
    const char* what;
  } cases[] = {{7, Dh::kPaul, "joint"}, {7, Dh::kGeneral, "joint"}, {Dh::kRotational, 9, "D-H"}};
  for (const auto& bad : cases) {
    const Dh link = randomDh(bad.jointType, bad.dhType);
    const auto said = [&bad](const std::string& operation) {
      return "KtDenavitHartenberg::" + operation + "() bad " + bad.what + " type:\n";
    };
    const KtLogCapture log;
    EXPECT_EQ(link.calculateTransform(0.5), T());
    const KtGeneralMotion before = randomMotion();
    KtGeneralMotion motion = before;
    link.getUnitFrameMotion(motion, 0.5);
    link.accelerationFromJointVelocity(1.0, randomVector(), randomVector(), randomVector(), motion);
    EXPECT_EQ(motion, before);
    EXPECT_EQ(link.calculateAcceleration(0.5, 1.0, 1.0), KtGeneralMotion());
    EXPECT_EQ(log.text(), said("calculateTransform") + said("getUnitFrameMotion") +
                              said("accelerationFromJointVelocity") +
                              said("accelerationFromJointVelocity"));
  }
  Dh link;
  link.setJointType(7);
  const KtLogCapture log;
  EXPECT_EQ(link.jointParameterScalability(), 0.0);
  EXPECT_EQ(link.upperBoundDhFrameDistance(KtJointActuator()), 0.0);
  EXPECT_EQ(log.text(),
            "KtDenavitHartenberg::jointParameterScalability(): unknown joint type (7)."
            "KtDenavitHartenberg::upperBoundDhFrameDistance-->Joint Type (7) unknown");
}

TEST(LinkKinematics, AlikeIsWhatDiffersByNoMoreThanTheTolerance) {
  const Dh link = randomDh(Dh::kRotational, Dh::kGeneralPaul);
  Dh changed[] = {link, link, link, link, link};
  changed[0].setDhA(link.dhA() + 0.25);
  changed[1].setDhD(link.dhD() - 0.25);
  changed[2].setDhAlpha(link.dhAlpha() + 0.25);
  changed[3].setDhTheta(link.dhTheta() - 0.25);
  changed[4].setPrecursor(T(KtVector(0.0, 0.25, 0.0)) * link.precursor());
  for (const Dh& other : changed) {
    EXPECT_TRUE(link.approxEq(other, 0.2500001) && !link.approxEq(other, 0.249));
  }
  const Quad quad = trees::randomQuadrilateral(Quad::kFixedSlider);
  // Of another type no model is alike.
  for (const auto set : {&Dh::setJointType, &Dh::setDhType}) {
    Dh other = link;
    (other.*set)(9);
    EXPECT_FALSE(link.approxEq(other, 99.0));
  }
  Quad pivoted = quad;
  pivoted.setJointType(Quad::kPivotedSlider);
  EXPECT_FALSE(quad.approxEq(pivoted, 9.0));
}

TEST(LinkKinematics, ScrewTurnsWithItsTravel) {
  KtScrewTypeLink screw;
  EXPECT_TRUE(screw.calculateTransform(0.25).approxEq(
      T({0.0, 0.0, 0.25}, KtOrientation::zRotation(kPi / 2)), 1e-15));
  screw.setPitch(0.5);
  const T t = randomTransformation();
  screw.setPrecursor(t);
  EXPECT_EQ(screw.calculateTransform(0.0), t);
  // It has the motions by differences of the base class, which at a moving joint are mere noise.
  const KtGeneralMotion unit({0.0, 0.0, 1.0}, {0.0, 0.0, kPi});
  expectNear(screw.calculateVelocity(0.3, 2.0), 2.0 * unit, 1e-6);
  expectNear(screw.calculateAcceleration(0.3, 0.0, 1.0), unit, 1e-6);
  expectNear(screw.calculateAcceleration(0.3, 1.0, 1.0), unit, 10.0);
}

TEST(LinkKinematics, AnEmptyHolderAnswers) {
  KtLinkKinematicsContainer holder;
  KtArticulatedBodyDynamics parent;
  const KtLogCapture log;
  T t;
  EXPECT_FALSE(holder.transformBy(t, 1.0) || holder.transformBy(t) ||
               holder.addChildArbdToParent(parent, parent, 1.0, 1.0, 1.0));
  holder.scaleBy(2.0);
  holder.setPrimaryFrame(T());
  EXPECT_EQ(log.text(), "");
  holder.setPrimaryFrame(randomTransformation());
  EXPECT_EQ(log.errors(), "KtLinkKinematicsContainer::setPrimaryFrame-->Null container\n");
  EXPECT_EQ(&holder.calculateTransform(1.0), &KtLinkKinematicsContainer::m_theIdentity);
  EXPECT_EQ(&holder.calculateVelocity(1.0, 1.0), &KtLinkKinematicsContainer::m_theNullMotion);
  EXPECT_EQ(holder.torqueRequiredToExert(1.0, KtGeneralForce({1.0, 1.0, 1.0}, {})), 0.0);
  // Every model has a parent to join to.
  for (const unsigned type : {Quad::kFixedSlider, Quad::kPivotedSlider}) {
    holder.setTopElement(trees::randomQuadrilateral(type));
    EXPECT_TRUE(holder.addChildArbdToParent(parent, parent, 0.1, 1.0, 1.0));
  }
}

const KtQuadrilateralTypeLink kLinkages[] = {trees::randomQuadrilateral(0),
                                             trees::randomQuadrilateral(1)};

struct Scene {
  Arm arm;
  Active activeState;
};

const T kBase(KtVector(-0.5, 0.3, 0.7), KtOrientation::xRotation(0.6));
constexpr double kPosition = 0.05;

// A boom at the root, which stands somewhere, and a link of another kind below it.
Scene sceneOf(unsigned type) {
  KtManipulatorLink other;
  other.setLabel("other");
  other.setLinkKinematics(KtDenavitHartenberg::defaultObject());
  KtManipulatorLink boom;
  boom.setLabel("boom");
  boom.setLinkKinematics(kLinkages[type]);
  boom.addChild(other);
  Scene scene;
  scene.arm.addChild(boom);
  KtPositionState positions;
  positions.setJointPositions({2, kPosition});
  positions.setCoordSysXForm(kBase);
  scene.activeState.setPositionState(positions);
  return scene;
}

TEST(GeneralBoundObject, RidesOnItsFrameOfTheLinkage) {
  const T frame(KtVector(0.1, 0.2, 0.3), KtOrientation::zRotation(0.4));
  const auto check = [&](auto body, unsigned type, const T& seat) {
    body.setPrimaryFrame(frame);
    body.setlinkIdentifier("boom");
    Scene scene = sceneOf(type);
    const T& location = body.locationInSystem(scene.activeState, scene.arm);
    EXPECT_TRUE(location.approxEq(kBase * seat * frame, 1e-12)) << body.token().text();
  };
  const auto& [fixed, pivoted] = kLinkages;
  const T pivot = fixed.frameATransform(kPosition);
  check(KtQuadrilateralFixedSliderJointOAObject(), 0, pivot);
  check(KtQuadrilateralFixedSliderJointCBObject(), 0, fixed.frameBTransform(kPosition));
  check(KtQuadrilateralPivotedSliderJointBObject(), 1, pivoted.frameBTransform(kPosition));
  check(KtQuadrilateralPivotedSliderJointCObject(), 1, pivoted.frameCTransform(kPosition));
}

TEST(GeneralBoundObject, RepeatsItsLastPlaceWhereNothingFits) {
  KtQuadrilateralPivotedSliderJointBObject body;
  const std::string name = "KtQuadrilateralPivotedSliderJointBObject::location - ";
  Scene scene = sceneOf(1);
  body.setlinkIdentifier("boom");
  const T before = body.locationInSystem(scene.activeState, scene.arm);
  EXPECT_NE(before, T());
  const auto expectMessage = [&](Scene& in, const std::string& message) {
    const KtLogCapture log;
    EXPECT_EQ(body.locationInSystem(in.activeState, in.arm), before);
    EXPECT_EQ(log.errors(), name + message);
  };
  body.setlinkIdentifier("nobody");
  expectMessage(scene, "invalid link identifier.\n");
  body.setlinkIdentifier("other");
  expectMessage(scene, "link kinematics must be of type KtQuadrilateralTypeLink.\n");
  body.setlinkIdentifier("boom");
  Scene fixed = sceneOf(0);
  expectMessage(fixed, "incompatible joint type. PIVOTED_SLIDER expected.\n");
  scene.activeState.setPositionState(KtPositionState());
  expectMessage(scene, "out of range index.\n");
}

}  // namespace
