#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using trees::Mechanism;
using L = const KtManipulatorLink&;
using M = const Mechanism&;

// What a link of a mechanism, or its base, answers in an active state, as files have it: every bit
// of a number shows there.
struct Query {
  const char* name;
  std::string (*ask)(L, Active&, M);
};

std::string text(const KtXmlObject& answer) {
  return KtXmlWriter::writeString(answer);
}

const Query kQueries[] = {
    {"dhFrame", [](L l, Active& a, M) { return text(l.dhFrameInSystem(a.activePositionState())); }},
    {"primaryFrame",
     [](L l, Active& a, M) { return text(l.primaryFrameInSystem(a.activePositionState())); }},
    {"localVelocity", [](L l, Active& a, M) { return text(l.dhFrameVelocityInLocal(a)); }},
    {"systemVelocity", [](L l, Active& a, M) { return text(l.dhFrameVelocityInSystem(a)); }},
    {"primaryVelocity", [](L l, Active& a, M) { return text(l.primaryFrameVelocityInSystem(a)); }},
    {"comVelocity", [](L l, Active& a, M) { return text(l.comVelocityInLocal(a, nullptr)); }},
    {"acceleration", [](L l, Active& a, M) { return text(l.dhFrameAccelerationInLocal(a)); }},
    {"comAcceleration",
     [](L l, Active& a, M) { return text(l.comAccelerationInLocal(a, nullptr)); }},
    {"momentum", [](L l, Active& a, M) { return text(l.spatialMomentumInLocal(a, nullptr)); }},
    {"rate", [](L l, Active& a, M) { return text(l.spatialMomentumRateInLocal(a, nullptr)); }},
    {"compositeMomentum",
     [](L l, Active& a, M) { return text(l.compositeSpatialMomentumInLocal(a, nullptr)); }},
    {"compositeRate",
     [](L l, Active& a, M) { return text(l.compositeSpatialMomentumRateInLocal(a, nullptr)); }},
    {"force",
     [](L l, Active& a, M m) { return text(l.dhFrameForceInLocal(m.external, a, nullptr)); }},
    {"crbi", [](L l, Active& a, M) { return text(l.crbi(a, nullptr)); }},
    {"arbd", [](L l, Active& a, M m) { return text(l.arbd(m.external, m.torque, a, nullptr)); }},
    {"supplement",
     [](L l, Active& a, M m) {
       return text(l.arbiSupplementalDhFrameAccelerationInLocal(m.external, m.torque, a, nullptr));
     }},
    {"jointAcceleration", [](L l, Active& a, M m) {
       if (l.linkIndex() == ktBaseIndex) return std::string();
       return text(
           KtXmlBasicType<double>(l.arbiJointAcceleration(m.external, m.torque, a, nullptr)));
     }}};

const KtManipulatorLink& randomLinkOf(const Mechanism& m) {
  const auto i = static_cast<KtU32>(uniform(0.0, m.joints() + 0.999));
  return i < m.joints() ? m.link(i) : static_cast<const KtManipulatorLink&>(m.arm());
}

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
    const KtManipulatorLink& link = randomLinkOf(*m);
    steps += query.name + (" of " + std::to_string(link.linkIndex()) + ", ");
    Active fresh;
    fresh.setPositionState(position);
    fresh.setVelocityState(velocity);
    fresh.setAccelerationState(acceleration);
    fresh.setActuatorState(active.actuatorState());
    const std::string expected = query.ask(link, fresh, *m);
    ASSERT_EQ(query.ask(link, active, *m), expected) << m->joints() << " joints: " << steps;
  }
  EXPECT_EQ(log.text(), "");
}

}  // namespace
