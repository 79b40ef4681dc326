#include "ktManipulator/dynamics/KtCrbiAccelerationTool.h"

#include <algorithm>

#include "ktManipulator/model/KtAsker.h"
#include "ktManipulator/model/KtIndividualManipulator.h"

void KtCrbiAccelerationTool::acceleration(
    const KtStatedSystem& system, const KtIndividualManipulator& manipulator,
    const KtPositionState& position, const KtVelocityState& velocity,
    const KtManipulatorTorque& torque, const KtManipulatorExternalForce& external,
    KtAccelerationState& acceleration, KtManipulatorActiveState* activeState, bool recompute) {
  if (activeState == nullptr) prepareOwn(system, manipulator, position, velocity);
  this->acceleration(system, manipulator, torque, external, acceleration,
                     activeState != nullptr ? *activeState : own_, recompute);
}

void KtCrbiAccelerationTool::hybridTorqueAcceleration(
    const KtStatedSystem& system, const KtIndividualManipulator& manipulator,
    const KtPositionState& position, const KtVelocityState& velocity,
    const KtManipulatorExternalForce& external, const std::vector<bool>& selection,
    KtManipulatorTorque& torque, KtAccelerationState& acceleration,
    KtManipulatorActiveState* activeState, bool recompute) {
  if (activeState == nullptr) prepareOwn(system, manipulator, position, velocity);
  hybridTorqueAcceleration(system, manipulator, external, selection, torque, acceleration,
                           activeState != nullptr ? *activeState : own_, recompute);
}

void KtCrbiAccelerationTool::prepareOwn(const KtStatedSystem& system,
                                        const KtIndividualManipulator& manipulator,
                                        const KtPositionState& position,
                                        const KtVelocityState& velocity) {
  own_.setPositionState(position);
  own_.setVelocityState(velocity);
  const KtVector& gravity = system.environment().upGravityVector();
  const KtAccelerationState& held = own_.accelerationState();
  if (held.jointAccelerations().size() < velocity.jointVelocities().size() ||
      (held.generalAcceleration().linear() == KtVector() && !(gravity == KtVector()))) {
    KtAccelerationState fresh = KtAccelerationState::zeroCompatibleState(velocity);
    fresh.setGeneralAcceleration({gravity, KtVector()});
    own_.setAccelerationState(fresh);
  }
  manipulator.initializeActuatorStatesIfShort(own_);
  own_.invalidateAll();
}

void KtCrbiAccelerationTool::acceleration(const KtStatedSystem& system,
                                          const KtIndividualManipulator& manipulator,
                                          const KtManipulatorTorque& torque,
                                          const KtManipulatorExternalForce& external,
                                          KtAccelerationState& acceleration,
                                          KtManipulatorActiveState& activeState, bool recompute) {
  const KtU32 n = manipulator.jointDof();
  const Kt::detail::Asker asker(system, manipulator.manipulatorIndex());
  const bool fixed = manipulator.isFixedBase();
  calculateJointTorqueArray(manipulator, torque, external, activeState, asker);
  const KtU32 first = fixed ? 0 : 6;
  // A factor of another size serves nobody: it is rebuilt even where the caller would have it kept.
  if (recompute || factoredJoints_ != n || factoredBase_ == fixed) {
    calculateMassMatrix(manipulator, activeState, asker);
    factorMassMatrix(manipulator, activeState, asker);
  }
  rightSide_.resizeArray(n + first, 1);
  if (!fixed) {
    const KtGeneralForce force = baseForce(manipulator, torque, external, activeState, asker);
    for (KtU32 k = 0; k < 6; ++k) rightSide_[k][0] = force[k];
  }
  if (n > 0) std::copy_n(jointTorques_[0], n, rightSide_[first]);
  addConstraintForces(manipulator, activeState);
  solution_ = rightSide_;
  solve(solution_);
  if (!fixed) {
    KtGeneralMotion base;
    for (KtU32 k = 0; k < 6; ++k) base.setScalarValue(k, solution_[k][0]);
    base.transformBy(manipulator.dhFrameInSystem(activeState.positionCache()).orientation());
    acceleration.setGeneralAcceleration(base);
  }
  acceleration.resize(n);
  auto& joints = acceleration.jointAccelerations().elements();
  const double* found = solution_[first];
  for (KtU32 i = 0; i < n; ++i) joints[i] = found[i];
}

// The joints are eliminated first, which keeps the zeros of branches. With (I, D^T; D, H) the mass
// matrix partitioned as base and joints, H = G G^T (G lower triangular for a chain, upper for a
// tree) and Y = G^-1 D, what is left of the base is I - Y^T Y.
void KtCrbiAccelerationTool::factorMassMatrix(const KtIndividualManipulator& manipulator,
                                              KtManipulatorActiveState& activeState,
                                              const KtStatedSystemStruct* asker) {
  factoredJoints_ = massMatrix_.rows();
  factoredBase_ = !manipulator.isFixedBase();
  isBranched_ = Kt::detail::BranchFactor::isWorthIt(massMatrixTool_.parents());
  if (isBranched_) {
    branchFactor_.factor(massMatrix_, massMatrixTool_.parents());
  } else {
    massMatrix_.choleskyDecomposition(factor_);
  }
  if (!factoredBase_) return;
  Kt::detail::CompositeColumns::reportMissing(manipulator);
  manipulator.crbi(activeState, asker).getArray(baseFactor_);
  if (factoredJoints_ > 0) {
    massMatrixTool_.getCoupling(baseCoupling_);
    solveFirstHalf(baseCoupling_);
    baseCoupling_.overconstrainedNormal(part_);
    baseFactor_ -= part_;
  }
  baseFactor_.choleskyDecomposition(baseFactor_);
}

// Solves G y = b in place.
void KtCrbiAccelerationTool::solveFirstHalf(KtReArray& x) const {
  if (isBranched_) {
    branchFactor_.solveInwards(x);
  } else {
    factor_.forwardSubstitution(x, x);
  }
}

// Solves G^T x = y in place.
void KtCrbiAccelerationTool::solveSecondHalf(KtReArray& x) const {
  if (isBranched_) {
    branchFactor_.solveOutwards(x);
  } else {
    factor_.backwardSubstitution(x, x);
  }
}

// Solves in place for columns with the base first.
void KtCrbiAccelerationTool::solve(KtReArray& x) {
  if (!factoredBase_) {
    solveFirstHalf(x);
    solveSecondHalf(x);
    return;
  }
  const KtU32 columns = x.columns();
  const std::size_t joints = std::size_t{factoredJoints_} * columns;
  base_.resizeArray(6, columns);
  std::copy_n(x[0], std::size_t{6} * columns, base_[0]);
  if (factoredJoints_ > 0) {
    joints_.resizeArray(factoredJoints_, columns);
    std::copy_n(x[6], joints, joints_[0]);
    solveFirstHalf(joints_);
    baseCoupling_.leftTransposeTransform(joints_, part_);
    base_ -= part_;
  }
  baseFactor_.choleskyBackSubstitution(base_, base_);
  std::copy_n(base_[0], std::size_t{6} * columns, x[0]);
  if (factoredJoints_ == 0) return;
  baseCoupling_.transform(base_, part_);
  joints_ -= part_;
  solveSecondHalf(joints_);
  std::copy_n(joints_[0], joints, x[6]);
}

KtGeneralForce KtCrbiAccelerationTool::baseForce(const KtIndividualManipulator& manipulator,
                                                 const KtManipulatorTorque& torque,
                                                 const KtManipulatorExternalForce& external,
                                                 KtManipulatorActiveState& activeState,
                                                 const KtStatedSystemStruct* asker) const {
  return torque.generalForce() - manipulator.dhFrameForceInLocal(external, activeState, asker);
}

// The constraints require A z' + A' z = 0. The constraint forces A^T lambda correct the
// accelerations of the unconstrained mechanism accordingly.
void KtCrbiAccelerationTool::addConstraintForces(const KtIndividualManipulator& manipulator,
                                                 KtManipulatorActiveState& activeState) {
  const KtStateEqualityConstraintVector& constraints = manipulator.stateEqualityConstraints();
  const KtU32 count = constraints.size() > 0 ? constraints.doc() : 0;
  if (count == 0) return;
  const KtPositionState& position = activeState.positionState();
  const KtVelocityState& velocity = activeState.velocityState();
  const KtReArray& a = constraints.jacobian(manipulator, position);
  const KtReArray& aDot = constraints.jacobianDerivative(manipulator, position, velocity);
  const KtU32 unknowns = rightSide_.rows();
  if (a.rows() != count || a.columns() != unknowns || aDot.rows() != count ||
      aDot.columns() != unknowns)
    return;
  const KtU32 first = manipulator.isFixedBase() ? 0 : 6;
  unconstrained_ = rightSide_;
  solve(unconstrained_);
  violation_.setToZeros(count, 1);
  for (KtU32 j = 0; j < unknowns; ++j) {
    const double z = j < first ? velocity.generalVelocity()[j]
                               : activeState.velocityCache().jointVelocity(j - first);
    const double rate = unconstrained_[j][0];
    for (KtU32 r = 0; r < count; ++r) violation_[r][0] += a[r][j] * rate + aDot[r][j] * z;
  }
  a.transpose(constraintResponse_);
  solve(constraintResponse_);
  a.transform(constraintResponse_, constraintMatrix_);
  constraintMatrix_.choleskyDecomposition(constraintFactor_);
  constraintFactor_.choleskyBackSubstitution(violation_, multipliers_);
  a.leftTransposeTransform(multipliers_, constraintForces_);
  rightSide_ -= constraintForces_;
}

void KtCrbiAccelerationTool::hybridTorqueAcceleration(
    const KtStatedSystem& system, const KtIndividualManipulator& manipulator,
    const KtManipulatorExternalForce& external, const std::vector<bool>& selection,
    KtManipulatorTorque& torque, KtAccelerationState& acceleration,
    KtManipulatorActiveState& activeState, bool recompute) {
  const KtU32 n = manipulator.jointDof();
  const Kt::detail::Asker asker(system, manipulator.manipulatorIndex());
  const bool fixed = manipulator.isFixedBase();
  const KtU32 unknowns = fixed ? n : n + 6;
  calculateJointTorqueArray(manipulator, torque, external, activeState, asker);
  // Only now: a torque that the caller left out is not one of 0 behind an actuator.
  torque.jointTorques().resizeToAtLeast(n);
  acceleration.resize(n);
  // Matrices of another size, or divided by another selection, serve nobody: they are rebuilt even
  // where the caller would have them kept.
  bool changed = selection_.size() != unknowns || partitionedJoints_ != n;
  partitionedJoints_ = n;
  selection_.resize(unknowns);
  KtU32 selected = 0;
  for (KtU32 i = 0; i < unknowns; ++i) {
    const bool bit = i >= selection.size() || selection[i];
    changed = changed || bit != selection_[i];
    selection_[i] = bit;
    if (bit) ++selected;
  }
  if (recompute || changed) {
    if (fixed) {
      calculateMassMatrix(manipulator, activeState, asker);
    } else {
      calculateExtendedMassMatrixInBase(manipulator, activeState, asker);
    }
    partition(selected);
  }
  const KtGeneralForce force =
      fixed ? KtGeneralForce() : baseForce(manipulator, torque, external, activeState, asker);
  const auto rightSide = [&](KtU32 i) { return i < n ? jointTorques_[i][0] : force[i - n]; };
  b1_.resizeArray(selected, 1);
  a2_.resizeArray(unknowns - selected, 1);
  for (KtU32 i = 0, j = 0, k = 0; i < unknowns; ++i) {
    if (selection_[i]) {
      b1_[j++][0] = rightSide(i);
    } else {
      a2_[k++][0] = i < n ? acceleration.jointAccelerations()[i].value()
                          : acceleration.generalAcceleration()[i - n];
    }
  }
  const bool someKnown = selected < unknowns;
  if (someKnown) h22_.transform(a2_, t2_);
  if (selected > 0) {
    if (someKnown) {
      h12_.transform(a2_, product_);
      b1_ -= product_;
    }
    hybridFactor_.choleskyBackSubstitution(b1_, x1_);
    if (someKnown) {
      h21_.transform(x1_, product_);
      t2_ += product_;
    }
  }
  KtGeneralMotion base = fixed ? KtGeneralMotion() : acceleration.generalAcceleration();
  for (KtU32 i = 0, j = 0, k = 0; i < unknowns; ++i) {
    if (selection_[i]) {
      const double found = x1_[j++][0];
      if (i < n) {
        acceleration.jointAccelerations()[i] = found;
      } else {
        base.setScalarValue(i - n, found);
      }
      continue;
    }
    const double found = t2_[k++][0] - rightSide(i);
    if (i >= n) {
      torque.generalForce().setScalarValue(i - n, torque.generalForce()[i - n] + found);
      continue;
    }
    const KtManipulatorLink* link = manipulator.links()[i];
    const double ratio = link != nullptr ? link->actuator().gearRatio() : 0.0;
    if (ratio != 0.0) torque.jointTorques()[i].value() += found / ratio;
  }
  acceleration.setGeneralAcceleration(base);
}

// Divides the mass matrix by the selection, keeping the order within both parts.
void KtCrbiAccelerationTool::partition(KtU32 selected) {
  const KtU32 unknowns = massMatrix_.rows();
  h11_.resizeArray(selected, selected);
  h12_.resizeArray(selected, unknowns - selected);
  h22_.resizeArray(unknowns - selected, unknowns - selected);
  for (KtU32 i = 0, row1 = 0, row2 = 0; i < unknowns; ++i) {
    for (KtU32 j = 0, column1 = 0, column2 = 0; j < unknowns; ++j) {
      const double entry = massMatrix_[i][j];
      if (selection_[i] && selection_[j]) h11_[row1][column1] = entry;
      if (selection_[i] && !selection_[j]) h12_[row1][column2] = entry;
      if (!selection_[i] && !selection_[j]) h22_[row2][column2] = entry;
      ++(selection_[j] ? column1 : column2);
    }
    ++(selection_[i] ? row1 : row2);
  }
  h11_.choleskyDecomposition(hybridFactor_);
  h12_.transpose(h21_);
}

void KtCrbiAccelerationTool::calculateJointTorqueArray(const KtIndividualManipulator& manipulator,
                                                       const KtManipulatorTorque& torque,
                                                       const KtManipulatorExternalForce& external,
                                                       KtManipulatorActiveState& activeState,
                                                       const KtStatedSystemStruct* asker) {
  if (totalTorqueTool_.manipulator() != &manipulator) totalTorqueTool_.setManipulator(&manipulator);
  totalTorqueTool_.setTotalTorqueType(kTotalTorqueOfLinks);
  const auto& given = torque.jointTorques().elements();
  const auto& links = manipulator.links();
  jointTorques_.setToZeros(manipulator.jointDof(), 1);
  const std::size_t count = std::min(links.size(), given.size());
  if (count == 0) return;
  double* torques = jointTorques_[0];
  for (KtU32 i = 0; i < count; ++i) {
    const KtManipulatorLink* link = links[i];
    if (link == nullptr) continue;
    const double load = totalTorqueTool_.torque(i, external, activeState, asker);
    torques[i] =
        link->actuator().mechanicalComponentContainer().outputTorque(given[i], load, activeState) -
        load;
  }
}

bool KtCrbiAccelerationTool::calculateMassMatrix(const KtIndividualManipulator& manipulator,
                                                 KtManipulatorActiveState& activeState,
                                                 const KtStatedSystemStruct* asker) {
  if (massMatrixTool_.manipulator() != &manipulator) massMatrixTool_.setManipulator(&manipulator);
  massMatrix_ = massMatrixTool_.massMatrix(activeState, asker);
  addActuatorInertias(manipulator, activeState);
  return true;
}

bool KtCrbiAccelerationTool::calculateExtendedMassMatrixInBase(
    const KtIndividualManipulator& manipulator, KtManipulatorActiveState& activeState,
    const KtStatedSystemStruct* asker) {
  if (massMatrixTool_.manipulator() != &manipulator) massMatrixTool_.setManipulator(&manipulator);
  massMatrix_ = massMatrixTool_.extendedMassMatrixInBase(activeState, asker);
  addActuatorInertias(manipulator, activeState);
  return true;
}

void KtCrbiAccelerationTool::addActuatorInertias(const KtIndividualManipulator& manipulator,
                                                 KtManipulatorActiveState& activeState) {
  const auto& positions = activeState.positionCache();
  const auto& links = manipulator.links();
  const KtU32 joints = manipulator.jointDof();
  if (joints == 0) return;
  double* entry = massMatrix_[0];  // on the diagonal
  for (KtU32 i = 0; i < joints; ++i, entry += massMatrix_.columns() + 1) {
    const KtManipulatorLink* link = links[i];
    if (link == nullptr) continue;
    *entry += link->actuator().KtJointActuator::effectiveInertia(positions.jointPosition(i));
  }
}
