#include <gtest/gtest.h>

#include <cmath>

#include "ktManipulator/activestate/KtAttachedFrame.h"
#include "ktManipulator/ktManipulator.h"
#include "support/KtLogCapture.h"
#include "support/Random.h"

namespace {

using Transformation = KtCoordinateSystemTransformation;
using Attachment = sampling::Seeded;

TEST_F(Attachment, OneParentForEachDependent) {
  KtManipulatorAttachmentMap map;
  const Transformation first = sampling::randomTransformation();
  const Transformation second = sampling::randomTransformation();
  EXPECT_FALSE(map.attachManipulator(2, 2, "tip", first));
  EXPECT_EQ(map.size(), 0U);
  EXPECT_TRUE(map.attachManipulator(9, 2, "tip", first));
  EXPECT_FALSE(map.attachManipulator(9, 3, "base", second)) << "no replacement";
  EXPECT_TRUE(map.attachManipulator(4, 2, "ti", first));
  EXPECT_TRUE(map.attachManipulator(1, 2, "tip", second));
  EXPECT_TRUE(map.attachManipulator(0, 9, "tip", second));

  KtU32 parent = 0;
  KtString label;
  Transformation offset;
  EXPECT_TRUE(map.getDependentManipulatorInfo(9, parent, label, offset));
  EXPECT_FALSE(map.getDependentManipulatorInfo(2, parent, label, offset)) << "changes nothing";
  EXPECT_EQ(parent, 2U);
  EXPECT_EQ(label, "tip");
  EXPECT_EQ(offset, first);

  EXPECT_EQ(map.dependentManipulators(2), (std::vector<KtU32>{1, 4, 9}));
  std::vector<KtU32> dependents;
  KtXmlVectorType<Transformation> offsets;
  EXPECT_TRUE(map.getDependentManipulatorsAndOffsets(2, "tip", dependents, offsets));
  EXPECT_EQ(dependents, (std::vector<KtU32>{1, 9}));
  EXPECT_EQ(offsets.vectorContainer(), (std::vector<Transformation>{second, first}));
  EXPECT_FALSE(map.getDependentManipulatorsAndOffsets(2, "tipp", dependents, offsets));
  EXPECT_TRUE(dependents.empty());
  EXPECT_EQ(offsets.size(), 0U);

  EXPECT_TRUE(map.removeManipulatorAttachment(9));
  EXPECT_FALSE(map.removeManipulatorAttachment(9));
  EXPECT_TRUE(map.attachManipulator(9, 3, "base", second));
}

TEST_F(Attachment, AMissingLinkGivesZeroMotionAndNoPlace) {
  KtIndividualManipulator manipulator;
  KtManipulatorActiveState active;
  KtLinkAttachment attachment;
  attachment.setLinkIdentifier("no %s link");
  const Transformation before = sampling::randomTransformation();
  Transformation place = before;
  const KtLogCapture log;
  attachment.calculatePlacement(manipulator, active, place);
  EXPECT_EQ(place, before);
  ASSERT_EQ(log.messages().size(), 1U);
  EXPECT_EQ(log.messages()[0].type, Kt::Print::kError);
  EXPECT_EQ(log.messages()[0].text,
            "KtAttachment::calculateFramePlacement():  bad label on link attachment: no %s "
            "link.\n");

  std::vector<double> reals(10, 1.0);
  attachment.calculateVelocity(manipulator, active, reals, 2);
  EXPECT_EQ(reals, (std::vector<double>{1, 1, 0, 0, 0, 0, 0, 0})) << "cut to the right length";
  reals.assign(10, 1.0);
  attachment.calculateAcceleration(manipulator, active, reals, 2);
  EXPECT_EQ(reals, (std::vector<double>{1, 1, 0, 0, 0, 0, 0, 0, 1, 1})) << "never cut";
  reals.clear();
  attachment.calculateAcceleration(manipulator, active, reals, 1);
  EXPECT_EQ(reals, std::vector<double>(7, 0.0));
  EXPECT_EQ(log.messages().size(), 1U);
}

// A link whose DH frame moves by closed forms: p = (sin t, cos 2t, t^2), R = Rz(a) Rx(b) with
// a = 0.7 t + 0.3 t^2 and b = 0.4 sin t.
struct MovingLink {
  struct Clock {
    double t = 0.0;
    double& activePositionState() { return t; }
  };

  Transformation primary;

  const Transformation& primaryFrame() const { return primary; }
  Transformation dhFrameInSystem(double t) const {
    KtOrientation z;
    KtOrientation x;
    z.setFromAngleAxis(0.7 * t + 0.3 * t * t, {0.0, 0.0, 1.0});
    x.setFromAngleAxis(0.4 * std::sin(t), {1.0, 0.0, 0.0});
    return {{std::sin(t), std::cos(2.0 * t), t * t}, z * x};
  }
  Transformation primaryFrameInSystem(double t) const { return dhFrameInSystem(t) * primary; }
  KtGeneralMotion dhFrameVelocityInLocal(Clock& clock) const {
    const double t = clock.t;
    const double b = 0.4 * std::sin(t);
    const double da = 0.7 + 0.6 * t;
    return {toLocal(t, {std::cos(t), -2.0 * std::sin(2.0 * t), 2.0 * t}),
            {0.4 * std::cos(t), da * std::sin(b), da * std::cos(b)}};
  }
  KtGeneralMotion dhFrameAccelerationInLocal(Clock& clock) const {
    const double t = clock.t;
    const double b = 0.4 * std::sin(t);
    const double da = 0.7 + 0.6 * t;
    const double db = 0.4 * std::cos(t);
    return {toLocal(t, {-std::sin(t), -4.0 * std::cos(2.0 * t), 2.0}),
            {-0.4 * std::sin(t), 0.6 * std::sin(b) + da * db * std::cos(b),
             0.6 * std::cos(b) - da * db * std::sin(b)}};
  }
  KtGeneralMotion primaryFrameVelocityInSystem(Clock& clock) const {
    KtGeneralMotion motion = dhFrameVelocityInLocal(clock);
    motion.transformBy(primary.inverse());
    motion.transformBy(primaryFrameInSystem(clock.t).orientation());
    return motion;
  }

 private:
  KtVector toLocal(double t, const KtVector& v) const {
    return dhFrameInSystem(t).orientation().inverse() * v;
  }
};
static_assert(Kt::detail::AnswersFrames<MovingLink, MovingLink::Clock>);

TEST_F(Attachment, MotionIsTheDerivativeOfThePlacement) {
  const double h = 1e-4;
  for (int trial = 0; trial < 20; ++trial) {
    const MovingLink link{sampling::randomTransformation()};
    const Transformation frame = sampling::randomTransformation();
    const double t = sampling::uniform(-2.0, 2.0);
    MovingLink::Clock clocks[3] = {{t - h}, {t}, {t + h}};
    Transformation places[3];
    KtGeneralMotion velocities[3];
    for (int i = 0; i < 3; ++i) {
      places[i] = Kt::detail::attachedPlacement(link, clocks[i], frame);
      velocities[i] = Kt::detail::attachedVelocity(link, clocks[i], frame);
    }
    const KtVector linear = (places[2].translation() - places[0].translation()) * (0.5 / h);
    double angle = 0.0;
    KtVector axis;
    (places[2].orientation() * places[0].orientation().inverse()).getAngleAxis(angle, axis);
    EXPECT_TRUE(velocities[1].approxEq({linear, axis * (angle * 0.5 / h)}, 1e-6)) << t;

    const KtVector second =
        (places[2].translation() - places[1].translation() * 2.0 + places[0].translation()) *
        (1.0 / (h * h));
    const KtVector angular = (velocities[2].angular() - velocities[0].angular()) * (0.5 / h);
    EXPECT_TRUE(
        Kt::detail::attachedAcceleration(link, clocks[1], frame).approxEq({second, angular}, 1e-5))
        << t;
  }
}

}  // namespace
