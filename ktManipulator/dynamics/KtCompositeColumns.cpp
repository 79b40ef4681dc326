#include "ktManipulator/dynamics/KtCompositeColumns.h"

#include "ktManipulator/activestate/KtManipulatorActiveState.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

namespace Kt::detail {

void CompositeColumns::compute(const KtIndividualManipulator& manipulator,
                               KtManipulatorActiveState& activeState,
                               const KtStatedSystemStruct* asker) {
  const auto& links = manipulator.links();
  const KtU32 n = static_cast<KtU32>(links.size());
  motions_.resizeArray(n, 6);
  forces_.resizeArray(6, n);
  frames_.resize(n);
  parents_.resize(n);
  auto& positions = activeState.positionCache();
  isDepthFirst_ = true;
  for (KtU32 i = 0; i < n; ++i) {
    const KtManipulatorLink* link = links[i];
    KtVector linear;
    KtVector angular;
    KtVector force;
    KtVector moment;
    parents_[i] = n;
    if (link != nullptr && link->mappedIndex() == i) {
      const KtRigidBodyMassProperties& body = link->crbi(activeState, asker);
      const KtU32 parent =
          link->inboardLink() != nullptr ? link->inboardLink()->mappedIndex() : ktBaseIndex;
      // A link has a higher index than its parent, unless the table is outdated.
      if (parent < i) parents_[i] = parent;
      const Frame* inboard = parent < i ? &frames_[parent] : nullptr;
      Frame& frame = frames_[i];
      const KtLinkPositionState& joint = link->placedJoint(positions);
      frame.p = joint.dhTransform().translation();
      frame.r = joint.dhRotation();
      if (inboard != nullptr) {
        frame.p = inboard->p + inboard->r * frame.p;
        frame.r = inboard->r * frame.r;
      }
      const KtVector& c = body.firstMomentValue();
      const JointMotion* motion = link->jointMotion();
      if (motion != nullptr && motion->turnsAboutZ) {
        const double* j = body.secondMomentValue().values();
        force = frame.r * KtVector(-c.y, c.x, 0.0);
        moment = frame.r * KtVector(j[4], j[5], j[2]);
        angular = {frame.r[2], frame.r[5], frame.r[8]};
      } else {
        if (motion != nullptr) {
          linear = motion->linear;
          angular = motion->angular;
        } else {
          const JointMotion unit = link->askedUnitMotion(positions);
          linear = unit.linear;
          angular = unit.angular;
        }
        force = frame.r * (linear * body.massValue() - c.cross(angular));
        moment = frame.r * (body.secondMomentValue() * angular + c.cross(linear));
        angular = frame.r * angular;
        linear = frame.r * linear;
      }
      moment += frame.p.cross(force);
      linear += frame.p.cross(angular);
    }
    double* motion = motions_[i];
    motion[0] = linear.x, motion[1] = linear.y, motion[2] = linear.z;
    motion[3] = angular.x, motion[4] = angular.y, motion[5] = angular.z;
    double* column = forces_[0] + i;
    column[0] = force.x, column[n] = force.y, column[2 * n] = force.z;
    column[3 * n] = moment.x, column[4 * n] = moment.y, column[5 * n] = moment.z;
  }
  carried_.assign(n, 1);
  for (KtU32 i = n; i-- > 0;) {
    if (parents_[i] < n) carried_[parents_[i]] += carried_[i];
  }
  expected_.resize(n + 1);
  for (KtU32 i = 0; i < n; ++i) expected_[i] = i + 1;
  expected_[n] = 0;
  for (KtU32 i = 0; i < n && isDepthFirst_; ++i) {
    isDepthFirst_ = expected_[parents_[i]] == i;
    expected_[parents_[i]] = i + carried_[i];
  }
}

void CompositeColumns::reportMissing(const KtIndividualManipulator& manipulator) {
  const auto& links = manipulator.links();
  for (std::size_t i = 0; i < links.size(); ++i) {
    if (links[i] != nullptr) continue;
    Print::instance().write(Print::kError, "KtMatrixDTool::matrixD() -> NULL link for index %d\n",
                            static_cast<int>(i));
  }
}

void CompositeColumns::getMassMatrix(KtReArray& mass) const {
  const KtU32 n = count();
  if (n == 0) return;
  const double* f = forces_[0];
  double* entries = mass[0];
  const double* motions = motions_[0];
  // With few joints, rows are too short for vector instructions.
  if (!isDepthFirst_ || n < 16) {
    for (std::size_t j = 0; j < n; ++j) {
      const double f0 = f[j], f1 = f[n + j], f2 = f[2 * n + j];
      const double f3 = f[3 * n + j], f4 = f[4 * n + j], f5 = f[5 * n + j];
      for (std::size_t i = j; i < n; i = parents_[i]) {
        const double* s = motions + 6 * i;
        entries[i * n + j] = entries[j * n + i] =
            ((s[0] * f0 + s[1] * f1) + (s[2] * f2 + s[3] * f3)) + (s[4] * f4 + s[5] * f5);
      }
    }
    return;
  }
  for (KtU32 i = 0; i < n; ++i) {
    const double* s = motions_[i];
    const double s0 = s[0], s1 = s[1], s2 = s[2], s3 = s[3], s4 = s[4], s5 = s[5];
    double* __restrict row = mass[i];
    const KtU32 end = i + carried_[i];
    for (KtU32 j = i; j < end; ++j) {
      row[j] = ((s0 * f[j] + s1 * f[n + j]) + (s2 * f[2 * n + j] + s3 * f[3 * n + j])) +
               (s4 * f[4 * n + j] + s5 * f[5 * n + j]);
    }
    for (KtU32 j = i + 1; j < end; ++j) mass[j][i] = row[j];
  }
}

}  // namespace Kt::detail
