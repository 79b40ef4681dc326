#include <gtest/gtest.h>

#include "support/Actuation.h"
#include "support/KtLogCapture.h"

namespace {

struct Term {
  const char* link;
  double weight, offset;
};

KtSpringProperties spring(double constant, std::initializer_list<Term> terms) {
  KtSpringProperties::Reals weights, offsets;
  KtSpringProperties::Labels labels;
  for (const Term& term : terms) {
    labels.pushBack(std::string(term.link));
    weights.pushBack(term.weight);
    offsets.pushBack(term.offset);
  }
  KtSpringProperties result;
  result.setSpringConstant(constant);
  result.setWeightingFactors(weights);
  result.setSpringOffsets(offsets);
  result.setAssociatedJoints(labels);
  return result;
}

KtDamperProperties damperLike(const KtSpringProperties& spring) {
  KtDamperProperties result;
  result.setDamperConstant(spring.springConstant());
  result.setWeightingFactors(spring.weightingFactors());
  result.setAssociatedJoints(spring.associatedJoints());
  return result;
}

class SpringDamper : public testing::Test {
 protected:
  SpringDamper() {
    KtPositionState p;
    p.jointPositions().resize(2);
    p.jointPositions()[0] = 0.75;
    p.jointPositions()[1] = -0.25;
    driven.active.setPositionState(p);
    KtVelocityState v;
    v.setJointVelocities(p.jointPositions());
    driven.active.setVelocityState(v);
  }
  double torque(const KtSpringProperties& s) { return s.torque(driven.manipulator, driven.active); }
  double torque(const KtDamperProperties& d) { return d.torque(driven.manipulator, driven.active); }

  DrivenElbow driven;
  KtLogCapture log;
};

TEST_F(SpringDamper, WeighJointsByTheirLinks) {
  struct Row {
    KtSpringProperties spring;
    double springTorque, damperTorque;
  };
  for (const Row& row :
       {Row{{}, 0.0, 0.0}, Row{spring(8.0, {{"shoulder", 1.0, 0.5}}), 2.0, 6.0},
        Row{spring(8.0, {{"elbow", 2.0, 0.25}, {"shoulder", 1.0, 0.5}}), -6.0, 2.0},
        Row{spring(8.0, {{"elbow", 1.0, -1.25}, {"shoulder", -1.0, -0.25}}), 0.0, -8.0},
        // The root has no joint.
        Row{spring(8.0, {{"base", 1.0, 0.5}, {"elbow", 1.0, -0.5}}), 2.0, -2.0}}) {
    EXPECT_DOUBLE_EQ(torque(row.spring), row.springTorque);
    EXPECT_DOUBLE_EQ(torque(damperLike(row.spring)), row.damperTorque);
  }
  EXPECT_EQ(log.text(), "");
}

TEST_F(SpringDamper, WrongDataIsReported) {
  KtSpringProperties ragged =
      spring(8.0, {{"shoulder", 1.0, 0.5}, {"wrist", 1.0, 0.0}, {"elbow", 1.0, 0.25}});
  EXPECT_DOUBLE_EQ(torque(ragged), -2.0);
  EXPECT_DOUBLE_EQ(torque(damperLike(ragged)), 4.0);
  const KtSpringProperties::Reals offsets = ragged.springOffsets();
  ragged.setSpringOffsets(KtSpringProperties::Reals(2));
  EXPECT_EQ(torque(ragged), 0.0);
  ragged.setSpringOffsets(offsets);
  ragged.setWeightingFactors(KtSpringProperties::Reals(4, 1.0));
  EXPECT_EQ(torque(ragged), 0.0);
  EXPECT_EQ(torque(damperLike(ragged)), 0.0);
  const std::string size = "KtManipulatorLink::springTorque:: spring data size mismatch.";
  EXPECT_EQ(log.text(),
            "KtSpringProperties::torque()->bad label, wrist\n"
            "KtDamperProperties::torque()->bad label, wrist\n" +
                size + size + "KtDamperProperties::torque:: damper data size mismatch.\n");
  for (const auto& message : log.messages()) EXPECT_EQ(message.type, Kt::Print::kError);
}

// A joint beyond the state's length is not read.
TEST_F(SpringDamper, ShortStateCountsAsNothing) {
  KtPositionState shortState;
  shortState.jointPositions().resize(1);
  const KtSpringProperties both = spring(2.0, {{"shoulder", 1.0, -1.0}, {"elbow", 1.0, -1.0}});
  EXPECT_EQ(both.torque(driven.manipulator, shortState), 2.0);
  EXPECT_EQ(damperLike(both).torque(driven.manipulator, KtVelocityState()), 0.0);
}

}  // namespace
