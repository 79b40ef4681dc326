#include <gtest/gtest.h>

#include <bit>
#include <functional>

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
  Collector& operator<<(const KtArticulatedBodyDynamics& d) {
    KtReArray inertia;
    d.getInertiaArray(inertia);
    return *this << inertia << d.bias();
  }
};

// A link of a mechanism, or its base, that is asked for something in an active state.
struct Question {
  const Mechanism& m;
  const KtManipulatorLink& link;
  Active& active;
  Collector& out;

  bool ofBase() const { return link.linkIndex() == ktBaseIndex; }
};
using Q = const Question&;
struct Query {
  const char* name;
  std::function<void(Q)> ask;
};

std::vector<Query> linkQueries() {
  return {
      {"dhFrame", [](Q q) { q.out << q.link.dhFrameInSystem(q.active.activePositionState()); }},
      {"primaryFrame",
       [](Q q) { q.out << q.link.primaryFrameInSystem(q.active.activePositionState()); }},
      {"localVelocity", [](Q q) { q.out << q.link.dhFrameVelocityInLocal(q.active); }},
      {"systemVelocity", [](Q q) { q.out << q.link.dhFrameVelocityInSystem(q.active); }},
      {"primaryVelocity", [](Q q) { q.out << q.link.primaryFrameVelocityInSystem(q.active); }},
      {"comVelocity", [](Q q) { q.out << q.link.comVelocityInLocal(q.active, nullptr); }},
      {"acceleration", [](Q q) { q.out << q.link.dhFrameAccelerationInLocal(q.active); }},
      {"comAcceleration", [](Q q) { q.out << q.link.comAccelerationInLocal(q.active, nullptr); }},
      {"momentum", [](Q q) { q.out << q.link.spatialMomentumInLocal(q.active, nullptr); }},
      {"rate", [](Q q) { q.out << q.link.spatialMomentumRateInLocal(q.active, nullptr); }},
      {"compositeMomentum",
       [](Q q) { q.out << q.link.compositeSpatialMomentumInLocal(q.active, nullptr); }},
      {"compositeRate",
       [](Q q) { q.out << q.link.compositeSpatialMomentumRateInLocal(q.active, nullptr); }},
      {"force", [](Q q) { q.out << q.link.dhFrameForceInLocal(q.m.external, q.active, nullptr); }},
      {"crbi", [](Q q) { q.out << KtArticulatedBodyDynamics(q.link.crbi(q.active, nullptr), {}); }},
      {"arbd", [](Q q) { q.out << q.link.arbd(q.m.external, q.m.torque, q.active, nullptr); }},
      {"arbi", [](Q q) {
         q.out << q.link.arbiSupplementalDhFrameAccelerationInLocal(q.m.external, q.m.torque,
                                                                    q.active, nullptr);
         if (q.ofBase()) return;
         q.out << q.link.arbiJointAcceleration(q.m.external, q.m.torque, q.active, nullptr);
       }}};
}

const KtManipulatorLink& randomLinkOf(const Mechanism& m) {
  const auto i = static_cast<KtU32>(uniform(0.0, m.joints() + 0.999));
  return i < m.joints() ? m.link(i) : static_cast<const KtManipulatorLink&>(m.arm());
}

// One active state goes through mechanisms of other sizes, copies as a whole, by parts and by
// files, and any order of setters and queries.
TEST_F(Caches, AnswerAsAFreshStateDoes) {
  const std::vector<Query> queries = linkQueries();
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
    return static_cast<KtU32>(uniform(0.0, 0.999 * static_cast<double>(count)));
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
    const KtU32 kind = pick(20);
    if (kind == 0) position.jointPositions()[pick(m->joints())].value() *= 0.9;
    if (kind == 1) position.setCoordSysXForm(randomTransformation());
    if (kind == 2) velocity.jointVelocities()[pick(m->joints())] = uniform();
    if (kind == 3) acceleration = m->acceleration(true);
    if (kind == 4) active.setPositionState(m->position);
    if (kind <= 1 || kind == 4) active.setPositionState(position);
    if (kind == 2) active.setVelocityState(velocity);
    if (kind == 3) active.setAccelerationState(acceleration);
    const Active copy(active);
    if (kind >= 5 && kind <= 7) active.invalidateAll();
    if (kind == 5) active = copy;
    if (kind == 6) {
      active.setActivePositionState(copy.activePositionState());
      active.setActiveVelocityState(copy.activeVelocityState());
      active.setActiveAccelerationState(copy.activeAccelerationState());
      active.setActiveForceState(copy.activeForceState());
      active.setActiveMassState(copy.activeMassState());
      active.setActiveArticulationState(copy.activeArticulationState());
    }
    if (kind == 7) {
      // What a file calls valid counts until the next change only: it lacks the joint transforms.
      ASSERT_TRUE(KtXmlReader::readString(KtXmlWriter::writeString(copy), active));
      position.jointPositions()[pick(m->joints())].value() *= 0.9;
      active.setPositionState(position);
    }
    if (kind <= 7) {
      steps += "change " + std::to_string(kind) + ", ";
      continue;
    }
    const Query& query = queries[pick(queries.size())];
    const KtManipulatorLink& link = randomLinkOf(*m);
    steps += query.name + (" of " + std::to_string(link.linkIndex()) + ", ");
    Active fresh;
    fresh.setPositionState(position);
    fresh.setVelocityState(velocity);
    fresh.setAccelerationState(acceleration);
    fresh.setActuatorState(active.actuatorState());
    Collector expected, actual;
    query.ask({*m, link, fresh, expected});
    query.ask({*m, link, active, actual});
    ASSERT_EQ(actual.bits, expected.bits) << m->joints() << " joints: " << steps;
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

// All of its joints count.
Mechanism countedMechanism(int joints, bool fixedBase) {
  KtIndividualManipulator arm = trees::randomMechanismArm(joints, fixedBase);
  for (KtU32 i = 0; i < arm.jointDof(); ++i) {
    KtManipulatorLink& link = *arm.linkByIdentifier(arm.linkByIndex(i)->label());
    link.setLinkKinematics(CountingJoint());
    link.updateDHMassProperties();
  }
  return Mechanism(arm);
}

// Asks every link, from the base or from the leaves, and counts.
Bits sweep(const Query& query, const Mechanism& m, Active& active, bool outboardFirst) {
  CountingJoint::transforms = CountingJoint::motions = 0;
  Collector answers;
  if (!outboardFirst) query.ask({m, m.arm(), active, answers});
  const KtU32 n = m.joints();
  for (KtU32 i = 0; i < n; ++i) {
    query.ask({m, m.link(outboardFirst ? n - 1 - i : i), active, answers});
  }
  return answers.bits;
}

// However long the chain, a query of all links evaluates each joint a few times, whatever link is
// asked first; asked again it evaluates none. Queries share what they are answered from.
TEST_F(Caches, AJointIsEvaluatedAFewTimes) {
  constexpr int n = 36;
  for (const bool fixed : {true, false}) {
    const Mechanism m = countedMechanism(n, fixed);
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
