#include "support/Actuation.h"
#include "support/Testing.h"

namespace {

// The same sums as the plain ones over links. The root has no joint, no link is called "wrist", and
// joints beyond the state's length count as nothing.
TEST(SpringDamper, WeighJointsByTheirLinks) {
  const DrivenElbow driven;
  const std::array<std::pair<const char*, std::optional<KtU32>>, 4> joints = {
      {{"base", {}}, {"wrist", {}}, {"shoulder", 0}, {"elbow", 1}}};
  for (int trial = 0; trial < 200; ++trial) {
    KtXmlVectorType<KtXmlBasicType<std::string>> labels;
    KtSpringProperties::Reals weights, offsets, state;
    for (int i = 0; i < trial % 3; ++i) state.pushBack(uniform());
    double springSum = 0.0, damperSum = 0.0;
    std::string bad, damperBad;
    for (int i = 0; i < trial % 5; ++i) {
      const auto& [label, joint] = joints[static_cast<std::size_t>(uniform(0.0, 3.999))];
      const double weight = uniform(), offset = uniform();
      labels.pushBack(std::string(label));
      weights.pushBack(weight);
      offsets.pushBack(offset);
      if (joint && *joint < state.size()) {
        springSum += weight * (state[*joint] - offset);
        damperSum += weight * state[*joint];
      } else if (label == std::string("wrist")) {
        bad += "KtSpringProperties::torque()->bad label, wrist\n";
        damperBad += "KtDamperProperties::torque()->bad label, wrist\n";
      }
    }
    KtSpringProperties spring;
    spring.setSpringConstant(8.0);
    spring.setWeightingFactors(weights);
    spring.setSpringOffsets(offsets);
    spring.setAssociatedJoints(labels);
    KtDamperProperties damper;
    damper.setDamperConstant(4.0);
    damper.setWeightingFactors(weights);
    damper.setAssociatedJoints(labels);
    KtManipulatorActiveState active;
    KtPositionState position;
    position.setJointPositions(state);
    active.setPositionState(position);
    KtVelocityState velocity;
    velocity.setJointVelocities(state);
    active.setVelocityState(velocity);
    KtLogCapture log;
    EXPECT_NEAR(spring.torque(driven.manipulator, active), 8.0 * springSum, 1e-13);
    EXPECT_NEAR(damper.torque(driven.manipulator, active), 4.0 * damperSum, 1e-13);
    EXPECT_EQ(log.errors(), bad + damperBad);

    // Lists of different lengths.
    log.clear();
    weights.pushBack(1.0);
    offsets.pushBack(1.0);
    KtSpringProperties ragged = spring;
    ragged.setSpringOffsets(offsets);
    EXPECT_EQ(ragged.torque(driven.manipulator, active), 0.0);
    spring.setWeightingFactors(weights);
    damper.setWeightingFactors(weights);
    EXPECT_EQ(spring.torque(driven.manipulator, active), 0.0);
    EXPECT_EQ(damper.torque(driven.manipulator, active), 0.0);
    const std::string size = "KtManipulatorLink::springTorque:: spring data size mismatch.";
    EXPECT_EQ(log.errors(),
              size + size + "KtDamperProperties::torque:: damper data size mismatch.\n");
  }
}

}  // namespace
