#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using trees::Mechanism;
using L = const KtManipulatorLink&;
using M = const Mechanism&;

// What a link of a mechanism, or its base, answers in an active state. A link that the state is too
// short for answers the shared dummy, with a message.
struct Query {
  const char* name;
  const KtXmlObject& (*ask)(L, Active&, M);
  const KtXmlObject* dummy;
  std::string message;
};

const KtXmlObject& jointAcceleration(L link, Active& active, M m) {
  static Real answer;
  answer = link.linkIndex() == ktBaseIndex
               ? 0.0
               : link.arbiJointAcceleration(m.external, m.torque, active, nullptr);
  return answer;
}

const Real kZero(0.0);
const std::string kPlain = "index out of range.\n", kIndexed = "index (4) out of range.\n";
const std::string kArticulation = "articulation states " + kIndexed;
const std::string kSizes =
    "link index 4 not in the range of the active state.\n"
    "This can be caused by the system and state not having the same size.\n";

using X = const KtXmlObject&;
const Query kQueries[] = {
    {"dhFrameInSystem",
     [](L l, Active& a, M) -> X { return l.dhFrameInSystem(a.activePositionState()); },
     &Link::m_theDummyTransformation, kPlain},
    {"primaryFrameInSystem",
     [](L l, Active& a, M) -> X { return l.primaryFrameInSystem(a.activePositionState()); },
     &Link::m_theDummyTransformation, "index 4 out of range 4.\n"},
    {"dhFrameVelocityInLocal", [](L l, Active& a, M) -> X { return l.dhFrameVelocityInLocal(a); },
     &Link::m_theDummyGeneralVelocity, kSizes},
    {"dhFrameVelocityInSystem", [](L l, Active& a, M) -> X { return l.dhFrameVelocityInSystem(a); },
     &Link::m_theDummyGeneralVelocity, kPlain},
    {"primaryFrameVelocityInSystem",
     [](L l, Active& a, M) -> X { return l.primaryFrameVelocityInSystem(a); },
     &Link::m_theDummyGeneralVelocity, "index 4  out of range 4.\n"},
    {"comVelocityInLocal", [](L l, Active& a, M) -> X { return l.comVelocityInLocal(a, nullptr); },
     &Link::m_theDummyGeneralVelocity, kSizes},
    {"dhFrameAccelerationInLocal",
     [](L l, Active& a, M) -> X { return l.dhFrameAccelerationInLocal(a); },
     &Link::m_theDummyGeneralAcceleration, kPlain},
    {"comAccelerationInLocal",
     [](L l, Active& a, M) -> X { return l.comAccelerationInLocal(a, nullptr); },
     &Link::m_theDummyGeneralAcceleration, kSizes},
    {"spatialMomentumInLocal",
     [](L l, Active& a, M) -> X { return l.spatialMomentumInLocal(a, nullptr); },
     &Link::m_theDummySpatialMomentum, kIndexed},
    {"spatialMomentumRateInLocal",
     [](L l, Active& a, M) -> X { return l.spatialMomentumRateInLocal(a, nullptr); },
     &Link::m_theDummySpatialMomentumRate, kIndexed},
    {"compositeSpatialMomentumInLocal",
     [](L l, Active& a, M) -> X { return l.compositeSpatialMomentumInLocal(a, nullptr); },
     &Link::m_theDummySpatialMomentum, kIndexed},
    {"compositeSpatialMomentumRateInLocal",
     [](L l, Active& a, M) -> X { return l.compositeSpatialMomentumRateInLocal(a, nullptr); },
     &Link::m_theDummySpatialMomentumRate, kIndexed},
    {"dhFrameForceInLocal",
     [](L l, Active& a, M m) -> X { return l.dhFrameForceInLocal(m.external, a, nullptr); },
     &Link::m_theDummyGeneralForce, "force " + kPlain},
    {"crbi", [](L l, Active& a, M) -> X { return l.crbi(a, nullptr); }, &Link::m_theDummyCrbi,
     kIndexed},
    {"arbd", [](L l, Active& a, M m) -> X { return l.arbd(m.external, m.torque, a, nullptr); },
     &Link::m_theDummyArbd, kIndexed},
    {"arbiSupplementalDhFrameAccelerationInLocal",
     [](L l, Active& a, M m) -> X {
       return l.arbiSupplementalDhFrameAccelerationInLocal(m.external, m.torque, a, nullptr);
     },
     &Link::m_theDummyGeneralAcceleration, kArticulation},
    {"arbiJointAcceleration", jointAcceleration, nullptr, kArticulation}};

// One active state goes through mechanisms of other sizes, copies as a whole, by parts and by
// files, and any order of setters and queries.
TEST(Caches, AnswerAsAFreshStateDoes) {
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
    const Query& query = kQueries[pick(std::size(kQueries))];
    const KtU32 at = pick(m->joints() + 1);
    const Link& link = at < m->joints() ? m->link(at) : m->arm();
    steps += query.name + (" of " + std::to_string(link.linkIndex()) + ", ");
    Active fresh;
    fresh.setPositionState(position);
    fresh.setVelocityState(velocity);
    fresh.setAccelerationState(acceleration);
    fresh.setActuatorState(active.actuatorState());
    // As files have it, every bit of a number shows.
    const std::string expected = KtXmlWriter::writeString(query.ask(link, fresh, *m));
    ASSERT_EQ(KtXmlWriter::writeString(query.ask(link, active, *m)), expected)
        << m->joints() << " joints: " << steps;
  }
  EXPECT_EQ(log.text(), "");
}

TEST(Caches, ALinkOutsideTheStateGetsAMessageAndTheSharedDummy) {
  const Mechanism m(trees::randomMechanismArm(5, true)),
      shorter(trees::randomMechanismArm(4, true));
  const Link& link = m.link(4);
  Active active = shorter.active();
  const Active before = active;
  KtLogCapture log;
  const auto expectDummy = [&](const Query& query, const std::string& message) {
    X answer = query.ask(link, active, m);
    EXPECT_TRUE(query.dummy != nullptr ? &answer == query.dummy : answer.equality(&kZero));
    EXPECT_EQ(log.errors(), std::string("KtManipulatorLink::") + query.name + "(): " + message);
    log.clear();
  };
  for (const Query& query : kQueries) expectDummy(query, query.message);
  EXPECT_EQ(active, before);
  const auto named = [](const std::string& name) {
    return *std::ranges::find(kQueries, name, &Query::name);
  };
  // One part that has an entry for the link doesn't help where another lacks it.
  active.activeForceState().resize(5);
  expectDummy(named("dhFrameForceInLocal"), "acc. " + kPlain);
  EXPECT_FALSE(active.activeForceState().linkForceStates()[4].localDhValid());
  active.activeVelocityState().resize(5);
  expectDummy(named("dhFrameVelocityInLocal"), kSizes);
  EXPECT_FALSE(active.activeVelocityState().linkVelocityStates()[4].localDhValid());
  active.activeAccelerationState().resize(5);
  link.dhFrameAccelerationInLocal(active);
  EXPECT_TRUE(log.contains("dhFrameInSystem(): " + kPlain));
}

}  // namespace
