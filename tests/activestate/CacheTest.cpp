#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <memory>

#include "ktManipulator/ktManipulator.h"
#include "support/KtLogCapture.h"
#include "support/Trees.h"

namespace {

using namespace sampling;
using trees::Mechanism;
using Active = KtManipulatorActiveState;
using Caches = Seeded;
// Bit for bit: also the sign of zeros counts.
using Bits = std::vector<std::uint64_t>;

struct Collector {
  Bits bits;
  Collector& operator<<(double x) {
    bits.push_back(std::bit_cast<std::uint64_t>(x));
    return *this;
  }
  Collector& operator<<(const KtVector& v) { return *this << v.x << v.y << v.z; }
  Collector& operator<<(const KtGeneralMotion& m) { return *this << m.linear() << m.angular(); }
  Collector& operator<<(const KtGeneralForce& f) { return *this << f.force() << f.moment(); }
  Collector& operator<<(const KtCoordinateSystemTransformation& t) {
    for (unsigned i = 0; i < 4; ++i) *this << t.orientation()[i];
    return *this << t.translation();
  }
  Collector& operator<<(const KtReArray& a) {
    for (KtU32 i = 0; i < a.rows(); ++i) {
      for (KtU32 j = 0; j < a.columns(); ++j) *this << a[i][j];
    }
    return *this;
  }
  Collector& operator<<(const KtManipulatorTorque& t) {
    for (const double x : t.jointTorques().vectorContainer()) *this << x;
    return *this << t.generalForce();
  }
};

// What can be asked of a mechanism in an active state. Most queries take a link, the base too.
struct Query {
  const char* name;
  std::function<void(const Mechanism&, const KtManipulatorLink&, Active&, Collector&)> ask;
};

template <class... Arguments>
using OfLink = const KtGeneralMotion& (KtManipulatorLink::*)(Active&, Arguments...) const;
Query motionQuery(const char* name, OfLink<> operation) {
  return {name, [=](const Mechanism&, const KtManipulatorLink& link, Active& a, Collector& out) {
            out << (link.*operation)(a);
          }};
}
Query motionQuery(const char* name, OfLink<const KtStatedSystemStruct*> operation) {
  return {name, [=](const Mechanism&, const KtManipulatorLink& link, Active& a, Collector& out) {
            out << (link.*operation)(a, nullptr);
          }};
}

// Queries of links, whose answers are kept.
std::vector<Query> linkQueries() {
  using L = KtManipulatorLink;
  using M = Mechanism;
  return {
      {"dhFrame", [](const M&, const L& link, Active& a,
                     Collector& out) { out << link.dhFrameInSystem(a.activePositionState()); }},
      {"primaryFrame",
       [](const M&, const L& link, Active& a, Collector& out) {
         out << link.primaryFrameInSystem(a.activePositionState());
       }},
      motionQuery("localVelocity", &L::dhFrameVelocityInLocal),
      motionQuery("systemVelocity", &L::dhFrameVelocityInSystem),
      motionQuery("primaryVelocity", &L::primaryFrameVelocityInSystem),
      motionQuery("comVelocity", &L::comVelocityInLocal),
      motionQuery("acceleration", &L::dhFrameAccelerationInLocal),
      motionQuery("comAcceleration", &L::comAccelerationInLocal),
      motionQuery("momentum", &L::spatialMomentumInLocal),
      motionQuery("momentumRate", &L::spatialMomentumRateInLocal),
      motionQuery("compositeMomentum", &L::compositeSpatialMomentumInLocal),
      motionQuery("compositeMomentumRate", &L::compositeSpatialMomentumRateInLocal),
      {"force", [](const M& m, const L& link, Active& a,
                   Collector& out) { out << link.dhFrameForceInLocal(m.external, a, nullptr); }},
      {"crbi",
       [](const M&, const L& link, Active& a, Collector& out) {
         KtReArray array;
         link.crbi(a, nullptr).getArray(array);
         out << array;
       }},
      {"arbd",
       [](const M& m, const L& link, Active& a, Collector& out) {
         const KtArticulatedBodyDynamics& d = link.arbd(m.external, m.torque, a, nullptr);
         KtReArray array;
         d.getInertiaArray(array);
         out << array << d.bias();
       }},
      {"arbi",
       [](const M& m, const L& link, Active& a, Collector& out) {
         out << link.arbiSupplementalDhFrameAccelerationInLocal(m.external, m.torque, a, nullptr);
         if (link.linkIndex() == ktBaseIndex) return;
         out << link.arbiJointAcceleration(m.external, m.torque, a, nullptr);
       }},
  };
}

// Queries of tools, which are answered anew each time on what links keep. The pointers' objects
// serve all calls, so that what a tool keeps is under test too.
std::vector<Query> toolQueries() {
  using L = KtManipulatorLink;
  using M = Mechanism;
  const auto mass = std::make_shared<KtMassMatrixTool>();
  const auto total = std::make_shared<KtTotalTorqueTool>();
  const auto gravity = std::make_shared<KtGravitationalTorqueTool>();
  const auto crbi = std::make_shared<KtCrbiAccelerationTool>();
  return {
      {"massMatrix",
       [=](const M& m, const L&, Active& a, Collector& out) {
         mass->setManipulator(&m.arm());
         out << mass->massMatrix(a, nullptr) << mass->extendedMassMatrixInBase(a, nullptr)
             << mass->extendedMassMatrixInSystem(a, nullptr);
       }},
      {"torques",
       [=](const M& m, const L&, Active& a, Collector& out) {
         total->setManipulator(&m.arm());
         out << total->torques(m.external, a, nullptr);
       }},
      {"gravity",
       [=](const M& m, const L& link, Active& a, Collector& out) {
         gravity->setManipulator(&m.arm());
         out << gravity->gravitationalTorques(a, nullptr);
         if (link.linkIndex() == ktBaseIndex) return;
         out << gravity->gravitationalTorqueGradient(link.linkIndex(), a, nullptr);
       }},
      {"crbiAcceleration",
       [=](const M& m, const L&, Active& a, Collector& out) {
         KtAccelerationState result;
         crbi->acceleration(m.stated, m.arm(), m.torque, m.external, result, a, true);
         for (const double x : result.jointAccelerations().vectorContainer()) out << x;
         out << result.generalAcceleration();
       }},
  };
}

const KtManipulatorLink& randomLinkOf(const Mechanism& m) {
  const auto i = static_cast<KtU32>(uniform(0.0, m.joints() + 0.999));
  return i < m.joints() ? m.link(i) : static_cast<const KtManipulatorLink&>(m.arm());
}

// One active state goes through mechanisms of other sizes, copies, and any order of setters and
// queries.
TEST_F(Caches, AnswerAsAFreshStateDoes) {
  std::vector<Query> queries = linkQueries();
  for (Query& query : toolQueries()) queries.push_back(query);
  std::vector<Mechanism> mechanisms;
  for (const bool fixed : {true, false}) {
    for (const int links : {1, 6, 6, 15}) {
      mechanisms.emplace_back(trees::randomMechanismArm(links, fixed, {.screws = true}));
    }
  }
  Active active;
  const Mechanism* m = nullptr;
  KtPositionState position;
  KtVelocityState velocity;
  KtAccelerationState acceleration;
  std::string steps;
  const KtLogCapture log;
  const auto pick = [](std::size_t count) {
    return static_cast<std::size_t>(uniform(0.0, 0.999 * static_cast<double>(count)));
  };
  for (int step = 0; step < 6000; ++step) {
    if (step % 200 == 0) {
      m = &mechanisms[pick(mechanisms.size())];
      position = m->position;
      velocity = m->velocity;
      acceleration = m->acceleration(true);
      active.setPositionState(position);
      active.setVelocityState(velocity);
      active.setAccelerationState(acceleration);
      active.setActuatorState(m->active().actuatorState());
      // Another mechanism in an equal state would be taken for the same.
      active.invalidateAll();
      steps.clear();
    }
    switch (pick(18)) {
      case 0:
        position.jointPositions()[static_cast<KtU32>(pick(m->joints()))].value() *= 0.9;
        active.setPositionState(position);
        steps += "position ";
        break;
      case 1:
        position.setCoordSysXForm(randomTransformation());
        active.setPositionState(position);
        steps += "base ";
        break;
      case 2:
        velocity.jointVelocities()[static_cast<KtU32>(pick(m->joints()))] = uniform();
        active.setVelocityState(velocity);
        steps += "velocity ";
        break;
      case 3:
        acceleration = m->acceleration(true);
        active.setAccelerationState(acceleration);
        steps += "acceleration ";
        break;
      case 4:
        active.setPositionState(m->position);
        active.setPositionState(position);
        steps += "there and back ";
        break;
      case 5: {
        const Active copy(active);
        active.invalidateAll();
        active = copy;
        steps += "copy ";
        break;
      }
      default: {
        const Query& query = queries[pick(queries.size())];
        const KtManipulatorLink& link = randomLinkOf(*m);
        steps += query.name + (" of " + std::to_string(static_cast<int>(link.linkIndex())) + ", ");
        Active fresh;
        fresh.setPositionState(position);
        fresh.setVelocityState(velocity);
        fresh.setAccelerationState(acceleration);
        fresh.setActuatorState(active.actuatorState());
        Collector expected, actual;
        query.ask(*m, link, fresh, expected);
        query.ask(*m, link, active, actual);
        ASSERT_EQ(actual.bits, expected.bits) << m->joints() << " joints: " << steps;
      }
    }
  }
  EXPECT_EQ(log.text(), "");
}

// A joint that counts how often it is evaluated.
class CountingJoint : public KtXmlPersistent<CountingJoint, KtLinkKinematics> {
  using T = KtCoordinateSystemTransformation;

 public:
  const T& calculateTransform(double q) const override {
    return ++transforms, joint_.calculateTransform(q);
  }
  void transformBy(T& t, double q) const override { ++transforms, joint_.transformBy(t, q); }
  const KtGeneralMotion& calculateVelocity(double q, double qDot) const override {
    return ++motions, joint_.calculateVelocity(q, qDot);
  }
  const KtGeneralMotion& calculateAcceleration(double q, double qDot,
                                               double qDotDot) const override {
    return ++motions, joint_.calculateAcceleration(q, qDot, qDotDot);
  }
  double upperBoundDhFrameDistance(const KtJointActuator&) const override { return 1.0; }
  void scaleBy(double) override {}
  void transformBy(const T&) override {}
  double jointParameterScalability() const override { return 0.0; }
  void changeInboardFrameBy(const T&) override {}
  bool operator==(const CountingJoint&) const = default;
  static const KtToken& classToken() {
    static const KtToken token("countingJoint");
    return token;
  }

  static inline int transforms = 0;
  static inline int motions = 0;

 private:
  KtDenavitHartenberg joint_;
};

// Twigs of three links, each on the second link of the one before.
Mechanism countedMechanism(int twigs, bool fixedBase) {
  KtManipulatorLink top = trees::randomLink("top");
  for (int i = twigs; i-- > 0;) {
    const std::string label = std::to_string(i);
    KtManipulatorLink links[3];
    for (int k = 0; k < 3; ++k) {
      links[k] = trees::randomLink(label + "abc"[k]);
      links[k].setLinkKinematics(CountingJoint());
      links[k].updateDHMassProperties();
    }
    links[1].addChild(links[2]);
    if (i + 1 < twigs) links[1].addChild(top);
    links[0].addChild(links[1]);
    top = links[0];
  }
  KtIndividualManipulator arm;
  arm.setIsFixedBase(fixedBase);
  arm.setMassProperties(top.massProperties());
  arm.addChild(top);
  arm.mapManipulator();
  // Positions lie between the limits.
  for (KtU32 i = 0; i < arm.jointDof(); ++i) {
    const std::string label = arm.linkByIndex(i)->label();
    arm.setJointLimit(label, true, -1.0);
    arm.setJointLimit(label, false, 1.0);
  }
  return Mechanism(arm);
}

// Asks every link, from the base or from the leaves, and counts.
Bits sweep(const Query& query, const Mechanism& m, Active& active, bool outboardFirst) {
  CountingJoint::transforms = CountingJoint::motions = 0;
  Collector answers;
  if (!outboardFirst) query.ask(m, m.arm(), active, answers);
  const KtU32 n = m.joints();
  for (KtU32 i = 0; i < n; ++i) {
    query.ask(m, m.link(outboardFirst ? n - 1 - i : i), active, answers);
  }
  return answers.bits;
}

// However long the chain, a query of all links evaluates each joint a few times, whatever link is
// asked first; asked again it evaluates none. Queries share what they are answered from.
TEST_F(Caches, AJointIsEvaluatedAFewTimes) {
  for (const bool fixed : {true, false}) {
    const Mechanism m = countedMechanism(12, fixed);
    const int n = static_cast<int>(m.joints());
    ASSERT_EQ(n, 36);
    for (const bool outboardFirst : {false, true}) {
      Active shared = m.active();
      int transforms = 0, motions = 0;
      for (const Query& query : linkQueries()) {
        SCOPED_TRACE(std::string(query.name) + (fixed ? ", fixed" : ", free"));
        Active active = m.active();
        const Bits first = sweep(query, m, active, outboardFirst);
        EXPECT_LE(CountingJoint::transforms, 2 * n);
        EXPECT_LE(CountingJoint::motions, 8 * n);
        EXPECT_GT(CountingJoint::transforms + CountingJoint::motions, 0);
        EXPECT_EQ(sweep(query, m, active, outboardFirst), first);
        EXPECT_EQ(CountingJoint::transforms + CountingJoint::motions, 0);
        sweep(query, m, shared, outboardFirst);
        transforms += CountingJoint::transforms;
        motions += CountingJoint::motions;
      }
      EXPECT_LE(transforms, 8 * n);
      EXPECT_LE(motions, 10 * n);
    }
  }
}

}  // namespace
