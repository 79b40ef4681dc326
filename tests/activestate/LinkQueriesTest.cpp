#include "support/Differences.h"
#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using Reals = KtPositionState::JointVector;

// Of a derived class it isn't known that the joint moves as the plain one does.
class Derived : public KtXmlPersistent<Derived, KtDenavitHartenberg> {
 public:
  bool operator==(const Derived&) const = default;
};

// A tree on a smooth course through time 0, at which its rates and accelerations are known. The
// base's frame in the system takes a random course too, if it is to move.
struct Course {
  Arm arm;
  KtU32 count;
  Reals q, rates, accelerations;
  T base = randomTransformation();
  KtGeneralMotion baseVelocity, baseAcceleration;

  // With joints of one kind, or of all. Screws have no rate: their acceleration comes from second
  // differences, which have noise where a joint moves.
  explicit Course(KtU32 links, bool moves = true, bool allKinds = false)
      : arm(trees::randomMechanismArm(static_cast<int>(links), false,
                                      {.pivotedSliders = allKinds, .screws = allKinds})),
        count(links) {
    KtDenavitHartenberg fixed;
    fixed.setPrimaryFrame(randomTransformation());
    arm.setLinkKinematics(fixed);
    arm.setMassProperties(arm.massProperties(nullptr));  // follows the primary frame by that
    for (KtU32 i = 0; i < count; ++i) {
      const auto* joint = arm.linkByIndex(i)->linkKinematicsContainer().topElement();
      const auto* plain = dynamic_cast<const KtDenavitHartenberg*>(joint);
      if (plain != nullptr && allKinds && uniform() < 0.0) {
        Derived derived;
        static_cast<KtDenavitHartenberg&>(derived) = *plain;
        Link* link = arm.linkByIdentifier(arm.linkByIndex(i)->label());
        link->setLinkKinematics(derived);
        joint = link->linkKinematicsContainer().topElement();
      }
      q.pushBack(uniform(-0.1, 0.1));
      rates.pushBack(dynamic_cast<const KtScrewTypeLink*>(joint) ? 0.0 : uniform(-0.5, 0.5));
      accelerations.pushBack(uniform(-0.5, 0.5));
    }
    if (!moves) return;
    baseVelocity = randomMotion();
    baseAcceleration = randomMotion();
  }

  KtPositionState positions(double t) const {
    KtPositionState state;
    Reals joints = q;
    for (KtU32 i = 0; i < count; ++i) {
      const double rise = i < accelerations.size() ? accelerations[i].value() : 0.0;
      joints[i] = q[i] + rates[i] * t + rise * t * t / 2;
    }
    state.setJointPositions(joints);
    const KtGeneralMotion path = baseVelocity * t + baseAcceleration * (t * t / 2);
    KtOrientation turn;
    const double angle = path.angular().mag();
    if (angle > 0.0) turn.setFromAngleAxis(angle, path.angular() / angle);
    state.setCoordSysXForm(arm.coordSysXForm().inverse() *
                           T(base.translation() + path.linear(), turn * base.orientation()));
    return state;
  }
  Active present() const {
    Active active;
    active.setPositionState(positions(0.0));
    KtVelocityState velocity;
    velocity.setJointVelocities(rates);
    velocity.setGeneralVelocity(baseVelocity);
    active.setVelocityState(velocity);
    KtAccelerationState acceleration;
    acceleration.setJointAccelerations(accelerations);
    acceleration.setGeneralAcceleration(baseAcceleration);
    active.setAccelerationState(acceleration);
    return active;
  }
  // The course of a frame that is fixed to a link's DH frame.
  differences::Path path(const Link& link, const T& frame = {}) const {
    return [this, &link, frame](double t) {
      Active then;
      then.setPositionState(positions(t));
      return link.dhFrameInSystem(then.activePositionState()) * frame;
    };
  }
  // All links, the base last.
  std::vector<const Link*> links() const {
    std::vector<const Link*> all;
    for (KtU32 i = 0; i < count; ++i) all.push_back(arm.linkByIndex(i));
    all.push_back(&arm);
    return all;
  }
};

// How far first and second differences may be off, against 1 and what they differ from.
constexpr double kFirst = 1e-6;
constexpr double kSecond = 1e-5;

bool near(const KtVector& actual, const KtVector& expected, double tolerance) {
  return (actual - expected).mag() <= tolerance * (1.0 + expected.mag());
}
bool near(const KtGeneralMotion& actual, const KtGeneralMotion& expected, double tolerance) {
  return near(actual.linear(), expected.linear(), tolerance) &&
         near(actual.angular(), expected.angular(), tolerance);
}

class LinkQueries : public testing::Test {
 protected:
  // Still and moving bases, one kind of joints and all.
  static void forCourses(const std::function<void(const Course&)>& check) {
    for (int trial = 0; trial < 8; ++trial) {
      SCOPED_TRACE(trial);
      check(Course(1 + static_cast<KtU32>(3 * trial), trial % 2 != 0, trial > 3));
    }
  }
};

TEST_F(LinkQueries, VelocitiesAndAccelerationsAreDifferencesOfFrames) {
  forCourses([](const Course& course) {
    Active active = course.present();
    auto& positions = active.activePositionState();
    for (const Link* link : course.links()) {
      SCOPED_TRACE(link->label());
      T frame;
      for (const Link* at = link; at->parentLink() != nullptr; at = at->parentLink()) {
        frame = at->linkKinematicsContainer().calculateTransform(course.q[at->linkIndex()]) * frame;
      }
      frame = course.base * frame;
      EXPECT_TRUE(link->dhFrameInSystem(positions).approxEq(frame, 1e-12));
      EXPECT_TRUE(
          link->primaryFrameInSystem(positions).approxEq(frame * link->primaryFrame(), 1e-12));
      const auto path = course.path(*link);
      EXPECT_TRUE(near(link->dhFrameVelocityInLocal(active), differences::velocity(path), kFirst));
      EXPECT_TRUE(near(link->dhFrameVelocityInSystem(active),
                       differences::outerVelocity(path, 1e-4), kFirst));
      EXPECT_TRUE(
          near(link->dhFrameAccelerationInLocal(active), differences::acceleration(path), kSecond));
      EXPECT_TRUE(near(link->primaryFrameVelocityInSystem(active),
                       differences::outerVelocity(course.path(*link, link->primaryFrame()), 1e-4),
                       kFirst));
    }
  });
}

// One body in system axes, from the motion of its centre of mass by differences.
struct Body {
  const Link* link;
  T frame;
  double mass;
  KtVector centre, velocity, acceleration, spin, spinRate;

  Body(const Course& course, const Link& body) : link(&body) {
    const Mass& properties = body.massProperties(nullptr);
    mass = properties.mass();
    KtVector c;
    properties.getCenterOfMass(c);
    const auto path = course.path(body, body.primaryFrame() * T(c, KtOrientation()));
    const T place = path(0.0);
    centre = place.translation();
    frame = course.path(body)(0.0);
    const KtGeneralMotion v = differences::velocity(path);
    const KtGeneralMotion a = differences::acceleration(path);
    // The tensor about the centre of mass, from that about the primary frame's origin.
    const auto about = [&](const KtVector& w) {
      return properties.secondMoment() * w - c.cross(w.cross(c)) * mass;
    };
    const KtOrientation& r = place.orientation();
    velocity = r * v.linear();
    acceleration = r * a.linear();
    spin = r * about(v.angular());
    spinRate = r * (about(a.angular()) + v.angular().cross(about(v.angular())));
  }
};

// The bodies of a link and all outboard of it.
void collect(const Course& course, const Link& link, std::vector<Body>& bodies) {
  bodies.emplace_back(course, link);
  for (const Link& child : link.childLinks().vectorContainer()) collect(course, child, bodies);
}

TEST_F(LinkQueries, MomentaAndForcesAreSumsOverTheBodies) {
  forCourses([](const Course& course) {
    Active active = course.present();
    KtManipulatorExternalForce external;
    external.resize(course.count);
    for (const Link* link : course.links()) {
      external[link->linkIndex()] = {randomVector(), randomVector()};
    }
    const KtVector point = randomVector();
    for (const Link* link : course.links()) {
      SCOPED_TRACE(link->label());
      std::vector<Body> bodies;
      collect(course, *link, bodies);
      const KtOrientation toLocal = bodies[0].frame.orientation().inverse();
      KtGeneralMotion momentum, rate;
      KtGeneralForce force;
      KtVector moment;
      for (const Body& body : bodies) {
        const KtVector inertial = body.acceleration * body.mass;
        momentum += {body.velocity * body.mass, body.spin};
        rate += {inertial, body.spinRate};
        moment += (body.centre - point).cross(inertial);
        const KtVector origin = bodies[0].frame.translation();
        const KtGeneralForce& load = external[body.link->linkIndex()];
        const KtVector push = body.frame.orientation() * load.force();
        force += {inertial - push, body.spinRate + (body.centre - origin).cross(inertial) -
                                       body.frame.orientation() * load.moment() -
                                       (body.frame.translation() - origin).cross(push)};
      }
      // Of a leaf they are its own. Angular parts are added as they stand, each about its own
      // body's centre.
      EXPECT_TRUE(near(link->compositeSpatialMomentumInLocal(active, nullptr), toLocal * momentum,
                       kSecond));
      EXPECT_TRUE(near(link->compositeSpatialMomentumRateInLocal(active, nullptr), toLocal * rate,
                       kSecond));
      KtVector actualMoment(7.0, 7.0, 7.0);
      link->computeMomentFromLinearAcceleration(point, active, actualMoment, nullptr);
      EXPECT_TRUE(near(actualMoment, moment, kSecond));
      const KtGeneralForce& actual = link->dhFrameForceInLocal(external, active, nullptr);
      EXPECT_TRUE(near(actual.force(), toLocal * force.force(), kSecond));
      EXPECT_TRUE(near(actual.moment(), toLocal * force.moment(), kSecond));
    }
  });
}

// About the point, the bodies' weight less what accelerates them has no moment along the plane.
TEST_F(LinkQueries, ZeroMomentPointCarriesTheWholeTree) {
  for (const bool weighs : {false, true}) {
    Course course(7);
    course.base.setTranslation(KtVector());
    Active active = course.present();
    const KtVector gravity = weighs ? KtVector(0.3, -0.4, -9.0) : KtVector();
    const KtPlane plane(randomVector(), KtVector(0.1, 0.2, 2.0));
    std::vector<Body> bodies;
    collect(course, course.arm, bodies);
    KtVector point;
    if (weighs) {
      course.arm.computeZeroMomentPoint(gravity, plane, active, point, nullptr);
    } else {
      course.arm.computeZeroMomentPoint(plane, active, point, nullptr);
    }
    KtVector moment, weighted;
    double mass = 0.0;
    for (const Body& body : bodies) {
      moment +=
          (body.centre - point).cross((gravity - body.acceleration) * body.mass) - body.spinRate;
      weighted += body.centre * body.mass;
      mass += body.mass;
    }
    EXPECT_NEAR(plane.normalVector().dot(point - plane.basePoint()), 0.0, 1e-12);
    EXPECT_TRUE(
        near(plane.normalVector().cross(moment), KtVector(), kSecond * (1.0 + moment.mag())));
    EXPECT_TRUE(near(course.arm.getCenterOfMassInSystem(active), weighted / mass, 1e-12));
  }
  // Nothing accelerates and nothing weighs: no point is singled out.
  Course still(3, false);
  still.rates = still.accelerations = Reals(3, 0.0);
  Active active = still.present();
  const KtVector before = randomVector();
  KtVector point = before;
  still.arm.computeZeroMomentPoint(KtPlane(), active, point, nullptr);
  EXPECT_EQ(point, before);
}

// However it was found: it may have been set.
TEST_F(LinkQueries, AJointAccelerationMovesItsLink) {
  for (int trial = 0; trial < 10; ++trial) {
    const trees::Mechanism m(trees::randomMechanismArm(2, true));
    Active active = m.active();
    active.activeArticulationState().setSupplementalJointAcceleration(0, 3.0);
    EXPECT_TRUE(near(
        m.link(0).arbiSupplementalDhFrameAccelerationInLocal(m.external, m.torque, active, nullptr),
        m.link(0).linkKinematicsContainer().calculateAcceleration(m.position.jointPositions()[0],
                                                                  0.0, 3.0),
        1e-12));
  }
}

// A link by itself, with an index.
class Loose : public KtXmlPersistent<Loose, Link> {
 public:
  Loose() = default;
  explicit Loose(const Link& link) {
    static_cast<Link&>(*this) = link;
    setLinkIndex(0);
  }
  bool operator==(const Loose&) const = default;
};

TEST_F(LinkQueries, AnswersFromTheStateUntilItChanges) {
  const Course course(4);
  Active active = course.present();
  // The base's velocity in the system is the state's, whatever its entry says.
  active.activeVelocityState().setLinkDhVelocityInSystem(ktBaseIndex, randomMotion());
  EXPECT_EQ(course.arm.dhFrameVelocityInSystem(active), course.baseVelocity);

  // Frames go by the positions alone: at equal ones even another tree's stay.
  const Course other(4);
  auto& positions = active.activePositionState();
  const T frame = course.arm.linkByIndex(3)->dhFrameInSystem(positions);
  EXPECT_FALSE(active.setPositionState(course.positions(0.0)));
  EXPECT_EQ(other.arm.linkByIndex(3)->dhFrameInSystem(positions), frame);
  active.invalidateAll();
  EXPECT_NE(other.arm.linkByIndex(3)->dhFrameInSystem(positions), frame);

  // A link without a parent goes on from the frame and the velocity that it found last.
  const Loose loose(trees::randomLink("loose"));
  const auto& joint = loose.linkKinematicsContainer();
  T place;
  KtGeneralMotion motion;
  for (const double t : {0.0, 0.1, 0.2}) {
    active.setPositionState(course.positions(t));
    const double q = active.positionState().jointPositions()[0];
    place = place * joint.calculateTransform(q);
    EXPECT_TRUE(loose.dhFrameInSystem(positions).approxEq(place, 1e-12));
    motion = joint.calculateTransform(q).inverse() * motion +
             joint.calculateVelocity(q, course.rates[0]);
    EXPECT_TRUE(near(loose.dhFrameVelocityInLocal(active), motion, 1e-12));
  }
}

TEST_F(LinkQueries, PassiveTorqueAndForceOfALink) {
  const Course course(12);
  Active active = course.present();
  for (KtU32 i = 0; i < course.count; ++i) {
    const Link& link = *course.arm.linkByIndex(i);
    const KtSpringProperties& spring = link.springProperties();
    const double expected =
        spring.springOffsets().size() == 0
            ? 0.0
            : spring.springConstant() * (course.q[i] - spring.springOffsets()[0]) +
                  link.damperProperties().damperConstant() * course.rates[i];
    EXPECT_NEAR(link.totalLocalTorque(active), expected, 1e-14) << i;
  }
  const KtLogCapture log;
  EXPECT_EQ(Link().totalLocalTorque(active), 0.0);
  EXPECT_EQ(log.text(), "KtManipulatorLink::totalLocalTorque()->NULL manipulator pointer");

  KtExternalForceDescription description;
  description.setExternalLinkForce({KtVector(0.0, 0.0, 2.0), KtVector(4.0, 0.0, 0.0)});
  description.setValid(true);
  active.activeForceState().setExternalForceDescription(1, description);
  EXPECT_EQ(course.arm.linkByIndex(1)->forceVectorInLocal(active),
            KtLineSegment({0.0, 2.0, 0.0}, {0.0, 2.0, 2.0}));
}

TEST_F(LinkQueries, AttachmentsFollowTheirLink) {
  forCourses([](const Course& course) {
    Active active = course.present();
    for (const Link* link :
         {course.arm.linkByIndex(course.count / 2), static_cast<const Link*>(&course.arm)}) {
      KtLinkAttachment attachment;
      attachment.setLinkIdentifier(link->label());
      attachment.setFrame(randomTransformation());
      const auto path = course.path(*link, link->primaryFrame() * attachment.frame());
      T place;
      attachment.calculatePlacement(course.arm, active, place);
      EXPECT_TRUE(place.approxEq(path(0.0), 1e-12));
      const auto motion = [](const std::vector<double>& reals) {
        return KtGeneralMotion({reals[1], reals[2], reals[3]}, {reals[4], reals[5], reals[6]});
      };
      std::vector<double> reals;
      attachment.calculateVelocity(course.arm, active, reals, 1);
      EXPECT_TRUE(near(motion(reals), differences::outerVelocity(path, 1e-4), kFirst));
      attachment.calculateAcceleration(course.arm, active, reals, 1);
      EXPECT_TRUE(
          near(motion(reals), place.orientation() * differences::acceleration(path), kSecond));

      // A manipulator that is attached there, with a fixed frame of its own left out of the place.
      KtXmlVectorType<Arm> both(2, course.arm);
      both[1].setCoordSysXForm(randomTransformation());
      KtManipulatorAttachmentMap map;
      map.attachManipulator(1, 0, link->label(), attachment.frame());
      std::vector<KtU32> dependents;
      KtXmlVectorType<T> places;
      EXPECT_TRUE(
          map.calculateBaseLocations(0, both, active.activePositionState(), dependents, places));
      EXPECT_EQ(dependents, std::vector<KtU32>{1});
      ASSERT_EQ(places.size(), 1U);
      EXPECT_TRUE((places[0] * both[1].coordSysXForm()).approxEq(place, 1e-12));
    }
  });
}

}  // namespace
