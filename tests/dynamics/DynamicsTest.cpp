#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "ktManipulator/ktManipulator.h"
#include "support/Allocations.h"
#include "support/KtLogCapture.h"
#include "support/Trees.h"

namespace {

using namespace sampling;
using trees::Extras;
using trees::Mechanism;
using Active = KtManipulatorActiveState;
using Acceleration = KtAccelerationState;
using Arm = KtIndividualManipulator;
using List = std::vector<double>;
using Dynamics = Seeded;

constexpr Extras kExact{.pivotedSliders = true, .fixedSliders = true, .screws = false};
constexpr Extras kDhOnly{.pivotedSliders = false, .fixedSliders = false, .screws = false};

using Joints = KtPositionState::JointVector;

List listOf(const Joints& joints) {
  return {joints.vectorContainer().begin(), joints.vectorContainer().end()};
}

template <class Spatial>
List listOf(const Joints& joints, const Spatial& base) {
  List list = listOf(joints);
  for (unsigned k = 0; k < 6; ++k) list.push_back(base[k]);
  return list;
}

List listOf(const Acceleration& a) {
  return listOf(a.jointAccelerations(), a.generalAcceleration());
}

List listOf(const KtManipulatorTorque& t) {
  return listOf(t.jointTorques(), t.generalForce());
}

List columnOf(const KtReArray& array, KtU32 j) {
  List list;
  for (KtU32 i = 0; i < array.rows(); ++i) list.push_back(array[i][j]);
  return list;
}

// Within a tolerance that is relative to the largest entry, which counts as 1 at least.
void expectNear(const List& actual, const List& expected, double tolerance) {
  ASSERT_EQ(actual.size(), expected.size());
  double largest = 1.0;
  for (const double x : expected) largest = std::max(largest, std::abs(x));
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], expected[i], tolerance * largest) << "entry " << i;
  }
}

// Runs a check over random mechanisms with a fixed and with a free base.
void forMechanisms(std::initializer_list<int> sizes, const Extras& extras,
                   const std::function<void(Mechanism&)>& check) {
  for (const int links : sizes) {
    for (const bool fixed : {true, false}) {
      SCOPED_TRACE(std::to_string(links) + (fixed ? " links, fixed base" : " links, free base"));
      Mechanism mechanism(trees::randomMechanismArm(links, fixed, extras));
      const KtLogCapture log;
      check(mechanism);
      EXPECT_EQ(log.text(), "");
    }
  }
}

// By articulated bodies or by the mass matrix, in a state that is given, or in the tool's own.
template <class Tool>
Acceleration forward(const Mechanism& m, bool own) {
  Active active = m.active();
  Tool tool;
  Acceleration result;
  tool.acceleration(m.stated, m.arm(), m.position, m.velocity, m.torque, m.external, result,
                    own ? nullptr : &active, true);
  return result;
}
Acceleration arbi(const Mechanism& m, bool own = false) {
  return forward<KtArbiAccelerationTool>(m, own);
}
Acceleration crbi(const Mechanism& m, bool own = false) {
  return forward<KtCrbiAccelerationTool>(m, own);
}

KtManipulatorTorque inverse(const Mechanism& m, Acceleration acceleration, bool gravity,
                            KtTotalTorqueType type) {
  if (gravity) {
    acceleration.setGeneralAcceleration(
        acceleration.generalAcceleration() +
        KtGeneralMotion(m.stated.environment().upGravityVector(), KtVector()));
  }
  Active active = m.active(acceleration);
  KtTotalTorqueTool tool;
  tool.setManipulator(&m.arm());
  tool.setTotalTorqueType(type);
  return tool.torques(m.external, active, nullptr);
}

KtOrientation baseAxes(const Mechanism& m) {
  Active active = m.active();
  return m.arm().dhFrameInSystem(active.activePositionState()).orientation();
}

// The torques that the commands give at the joints without losses.
List drivesOf(const Mechanism& m) {
  List drives;
  for (KtU32 i = 0; i < m.joints(); ++i) {
    drives.push_back(m.torque.jointTorques()[i] * m.link(i).jointActuator().gearRatio());
  }
  return drives;
}

double localTorque(const Mechanism& m, KtU32 i) {
  Active active = m.active();
  return m.link(i).totalLocalTorque(active);
}

TEST_F(Dynamics, ForwardMethodsAgree) {
  const auto check = [](double tolerance, Mechanism& m) {
    for (const bool own : {false, true}) {
      expectNear(listOf(arbi(m, own)), listOf(crbi(m, own)), tolerance);
    }
    EXPECT_EQ(m.arm().isFixedBase(), arbi(m).generalAcceleration() == KtGeneralMotion());
  };
  forMechanisms({1, 2, 3, 5, 8, 13, 21, 40, 60}, kExact, [&](Mechanism& m) { check(1e-9, m); });
  forMechanisms({2, 6, 12}, {.pivotedSliders = true, .fixedSliders = true, .screws = true},
                [&](Mechanism& m) { check(1e-6, m); });
}

// The three types differ by what the actuators lose.
TEST_F(Dynamics, InverseOfForwardGivesTheTorquesBack) {
  forMechanisms({1, 4, 11, 30, 60}, kExact, [](Mechanism& m) {
    const Acceleration accelerations = arbi(m);
    const List drives = drivesOf(m);
    List linear = drives, net = drives;
    for (KtU32 i = 0; i < m.joints(); ++i) {
      const auto& mechanics = *m.link(i).jointActuator().mechanicalComponentContainer().element();
      const double ratio = mechanics.gearRatio();
      const double rate = m.velocity.jointVelocities()[i];
      linear[i] -= std::copysign(0.7 * mechanics.staticCoulombFriction() * ratio, rate);
      net[i] = linear[i] - ratio * ratio * mechanics.frictionCoefficient() * rate;
    }
    for (const auto& [type, expected] :
         {std::pair(kTotalTorqueWithFriction, drives), std::pair(kTotalTorqueWithLinear, linear),
          std::pair(kTotalTorqueOfLinks, net)}) {
      SCOPED_TRACE(type);
      const KtManipulatorTorque torques = inverse(m, accelerations, true, type);
      expectNear(listOf(torques.jointTorques()), expected, 1e-9);
      if (m.arm().isFixedBase()) continue;
      expectNear(listOf({}, torques.generalForce()), listOf({}, m.torque.generalForce()), 1e-9);
    }
  });
}

// Column by column, by inverse dynamics at rest without gravity, that of springs taken off.
TEST_F(Dynamics, MassMatricesAreWhatUnitAccelerationsTake) {
  forMechanisms({1, 3, 10, 40}, kExact, [](Mechanism& m) {
    const KtU32 n = m.joints();
    m.velocity = KtVelocityState();
    m.velocity.jointVelocities().resize(n);
    m.external.setToZeros();
    const KtOrientation axes = baseAxes(m);
    KtMassMatrixTool tool;
    tool.setManipulator(&m.arm());
    Active active = m.active();
    const KtReArray mass = tool.massMatrix(active, nullptr);
    const KtReArray inBase = tool.extendedMassMatrixInBase(active, nullptr);
    const KtReArray inSystem = tool.extendedMassMatrixInSystem(active, nullptr);
    ASSERT_EQ(mass.rows(), n);
    ASSERT_EQ(inSystem.rows(), n + 6);
    EXPECT_EQ(mass, mass.transpose());
    EXPECT_EQ(inBase, inBase.transpose());
    const auto carries = [&](KtU32 i, KtU32 j) {
      const KtManipulatorLink* link = &m.link(j);
      while (link != nullptr && link != &m.link(i)) link = link->parentLink();
      return link != nullptr;
    };
    for (KtU32 j = 0; j < n + 6; ++j) {
      SCOPED_TRACE("column " + std::to_string(j));
      for (const bool system : {false, true}) {
        Acceleration unit = Acceleration::zeroCompatibleState(m.velocity);
        if (j < n) {
          unit.jointAccelerations()[j] = 1.0;
        } else {
          unit.generalAcceleration().setScalarValue(j - n, 1.0);
          if (!system) unit.generalAcceleration().transformBy(axes);
        }
        KtManipulatorTorque torques = inverse(m, unit, false, kTotalTorqueOfLinks);
        for (KtU32 i = 0; i < n; ++i) torques.jointTorques()[i].value() -= localTorque(m, i);
        if (j < n) {
          torques.jointTorques()[j].value() -= m.link(j).jointActuator().effectiveInertia(0.0);
        }
        if (system) torques.setGeneralForce(axes * torques.generalForce());
        expectNear(listOf(torques), columnOf(system ? inSystem : inBase, j), 1e-10);
      }
      for (KtU32 i = 0; j < n && i < n; ++i) {
        EXPECT_EQ(mass[i][j], inBase[i][j]);
        EXPECT_TRUE(mass[i][j] == 0.0 || carries(i, j) || carries(j, i));
      }
    }
  });
}

TEST_F(Dynamics, NullSpaceTorqueIsTheMassMatrixTimesTheColumns) {
  forMechanisms({1, 9}, kExact, [](Mechanism& m) {
    const KtU32 n = m.joints();
    KtMassMatrixTool tool;
    tool.setManipulator(&m.arm());
    Active active = m.active(m.acceleration(true));
    KtReArray mass = tool.massMatrix(active, nullptr);
    for (KtU32 i = 0; i < n; ++i) mass[i][i] += m.link(i).jointActuator().effectiveInertia(0.0);
    KtVelocityState& rest = m.velocity;
    rest = KtVelocityState();
    rest.jointVelocities().resize(n);
    KtReArray given(n, 2);
    for (KtU32 i = 0; i < n; ++i) given[i][0] = uniform(), given[i][1] = uniform();
    KtReArray identity;
    identity.setToIdentity(n, n);
    const auto check = [&](const KtReArray& actual, const KtReArray& columns) {
      const KtReArray expected = mass * columns;
      ASSERT_EQ(actual.columns(), columns.columns());
      ASSERT_GE(actual.rows(), n);
      for (KtU32 i = 0; i < n; ++i) {
        for (KtU32 j = 0; j < columns.columns(); ++j) {
          EXPECT_NEAR(actual[i][j], expected[i][j] + localTorque(m, i), 1e-9) << i << ", " << j;
        }
      }
    };
    check(tool.nullSpaceTorque(active, given), given);
    tool.setIsFixedBase(true);
    check(tool.nullSpaceTorque(active, KtReArray()), identity);
    tool.setIsFixedBase(false);
    identity.setToIdentity(n, n + 6);
    check(tool.nullSpaceTorque(active, KtReArray()), identity);
    tool.setDegreesOfConstraint(1);
    EXPECT_EQ(tool.nullSpaceTorque(active, KtReArray()).columns(), 0U);
  });
}

// Of all bodies, by their own motions.
double bodyEnergy(const Mechanism& m, const KtPositionState& position,
                  const KtVelocityState& velocity) {
  Active active;
  active.setPositionState(position);
  active.setVelocityState(velocity);
  double energy = 0.0;
  const auto addBody = [&](const KtManipulatorLink& link) {
    const auto& mass = link.massPropertiesInDHFrame();
    const KtGeneralMotion v = link.dhFrameVelocityInLocal(active);
    const KtGeneralForce momentum = mass.calculateForce(v);
    const auto& frame = link.dhFrameInSystem(active.activePositionState());
    energy += 0.5 * (v.linear().dot(momentum.force()) + v.angular().dot(momentum.moment())) +
              m.stated.environment().upGravityVector().dot(
                  frame.translation() * mass.mass() + frame.orientation() * mass.firstMoment());
  };
  addBody(m.arm());
  for (KtU32 i = 0; i < m.joints(); ++i) addBody(m.link(i));
  return energy;
}

TEST_F(Dynamics, GravityTorquesAreSlopesOfThePotentialEnergy) {
  const auto moved = [](const Mechanism& m, KtU32 i, double step) {
    KtPositionState position = m.position;
    position.jointPositions()[i].value() += step;
    return position;
  };
  constexpr double kStep = 1e-5;
  for (const Extras& extras : {kDhOnly, Extras{.screws = true}}) {
    const bool onlyDh = !extras.pivotedSliders;
    forMechanisms({1, 5, 14}, extras, [&](Mechanism& m) {
      KtGravitationalTorqueTool tool;
      EXPECT_EQ(tool.gravityVector(), KtVector(0.0, 0.0, 9.8));
      tool.setGravityVector(m.stated.environment().upGravityVector());
      tool.setManipulator(&m.arm());
      const auto torquesAt = [&](const KtPositionState& position) {
        tool.setPositionState(position);
        return columnOf(tool.gravitationalTorques(nullptr, nullptr), 0);
      };
      const List torques = torquesAt(m.position);
      KtVelocityState rest;
      rest.jointVelocities().resize(m.joints());
      List slopes;
      for (KtU32 i = 0; i < m.joints(); ++i) {
        slopes.push_back(
            (bodyEnergy(m, moved(m, i, kStep), rest) - bodyEnergy(m, moved(m, i, -kStep), rest)) /
            (2 * kStep));
      }
      expectNear(torques, slopes, onlyDh ? 1e-8 : 1e-6);
      EXPECT_EQ(tool.gravitationalTorque(0, nullptr, nullptr), torques[0]);
      // The unit motion of a slider changes with its position, which the gradient leaves out.
      for (KtU32 j = 0; onlyDh && j < m.joints(); ++j) {
        const List after = torquesAt(moved(m, j, kStep));
        const List before = torquesAt(moved(m, j, -kStep));
        tool.setPositionState(m.position);
        List actual, expected;
        for (KtU32 i = 0; i < m.joints(); ++i) {
          actual.push_back(tool.gravitationalTorqueGradient(i, nullptr, nullptr)[0][j]);
          expected.push_back((after[i] - before[i]) / (2 * kStep));
        }
        expectNear(actual, expected, 1e-8);
      }
    });
  }
}

// Of the rotors, and of the springs.
double jointEnergy(const Mechanism& m, const KtPositionState& position,
                   const KtVelocityState& velocity) {
  double energy = 0.0;
  for (KtU32 i = 0; i < m.joints(); ++i) {
    const double rate = velocity.jointVelocities()[i];
    energy += 0.5 * m.link(i).jointActuator().effectiveInertia(0.0) * rate * rate;
    const KtSpringProperties& spring = m.link(i).springProperties();
    if (spring.springOffsets().size() == 0) continue;
    const double length = position.jointPositions()[i] - spring.springOffsets()[0];
    energy += 0.5 * spring.springConstant() * length * length;
  }
  return energy;
}

TEST_F(Dynamics, EnergyGrowsAtTheAppliedPower) {
  forMechanisms({1, 3, 8, 20}, {}, [](Mechanism& m) {
    Active active = m.active();
    const Acceleration a = arbi(m);
    const KtCoordinateSystemTransformation frame =
        m.arm().dhFrameInSystem(active.activePositionState());
    const auto energyAt = [&](double t) {
      KtPositionState position = m.position;
      KtVelocityState velocity = m.velocity;
      for (KtU32 i = 0; i < m.joints(); ++i) {
        const double rate = a.jointAccelerations()[i];
        position.jointPositions()[i].value() +=
            t * (velocity.jointVelocities()[i] + 0.5 * t * rate);
        velocity.jointVelocities()[i].value() += t * rate;
      }
      const KtGeneralMotion path =
          velocity.generalVelocity() * t + a.generalAcceleration() * (0.5 * t * t);
      KtOrientation turn;
      const double angle = path.angular().mag();
      if (angle > 0.0) turn.setFromAngleAxis(angle, path.angular() * (1.0 / angle));
      const KtCoordinateSystemTransformation moved(frame.translation() + path.linear(),
                                                   turn * frame.orientation());
      position.setCoordSysXForm(m.arm().coordSysXForm().inverse() * moved);
      velocity.setGeneralVelocity(velocity.generalVelocity() + a.generalAcceleration() * t);
      return bodyEnergy(m, position, velocity) + jointEnergy(m, position, velocity);
    };
    const auto slope = [&](double h) { return (energyAt(h) - energyAt(-h)) / (2.0 * h); };

    double power = 0.0;
    const auto add = [&](const KtManipulatorLink& link, const KtGeneralForce& force) {
      const KtGeneralMotion& v = link.dhFrameVelocityInLocal(active);
      power += v.linear().dot(force.force()) + v.angular().dot(force.moment());
    };
    add(m.arm(), m.external.baseForce() + m.torque.generalForce());
    const List drives = drivesOf(m);
    for (KtU32 i = 0; i < m.joints(); ++i) {
      add(m.link(i), m.external[i]);
      const auto& mechanics = *m.link(i).jointActuator().mechanicalComponentContainer().element();
      const double ratio = mechanics.gearRatio();
      const double rate = m.velocity.jointVelocities()[i];
      power += drives[i] * rate;
      power -= 0.7 * mechanics.staticCoulombFriction() * std::abs(ratio * rate);
      power -= (mechanics.frictionCoefficient() * ratio * ratio +
                m.link(i).damperProperties().damperConstant()) *
               rate * rate;
    }
    const double fine = slope(1e-4);
    const double coarse = slope(2e-4);  // the gap bounds the truncation
    const double scale = 1.0 + std::abs(energyAt(0.0)) + std::abs(power);
    EXPECT_NEAR(fine, power, std::abs(coarse - fine) + 1e-9 * scale);
    EXPECT_LT(std::abs(coarse - fine), 1e-3 * scale) << "the bound has to mean something";
  });
}

// With a rotated free base the energy is a value of its own, which mixes axes.
TEST_F(Dynamics, KineticEnergyIsTheSumOverTheLinks) {
  forMechanisms({1, 6, 20}, {}, [](Mechanism& m) {
    m.stated.setEnvironment(KtSystemEnvironment());
    m.position.setCoordSysXForm(m.arm().coordSysXForm().inverse());
    const double expected = bodyEnergy(m, m.position, m.velocity);
    Active active = m.active();
    KtMassMatrixTool tool;
    tool.setIsFixedBase(!m.arm().isFixedBase());
    EXPECT_NEAR(m.arm().computeKineticEnergy(active, nullptr, nullptr), expected,
                1e-11 * (1.0 + expected));
    EXPECT_EQ(m.arm().computeKineticEnergy(active, &tool, nullptr),
              m.arm().computeKineticEnergy(active, nullptr, nullptr));
    EXPECT_EQ(tool.isFixedBase(), m.arm().isFixedBase());
  });
}

TEST_F(Dynamics, HybridProblemIsConsistentWithBothOthers) {
  forMechanisms({1, 5, 20}, kExact, [](Mechanism& m) {
    const KtU32 n = m.joints();
    const bool fixed = m.arm().isFixedBase();
    const KtU32 unknowns = fixed ? n : n + 6;
    const KtOrientation axes = baseAxes(m);
    enum Kind { kAllSet, kAllClear, kMixed, kShort };
    for (const Kind kind : {kAllSet, kAllClear, kMixed, kShort}) {
      SCOPED_TRACE(kind);
      std::vector<bool> selection(unknowns, kind == kAllSet);
      for (KtU32 i = 0; kind >= kMixed && i < unknowns; ++i) selection[i] = uniform() < 0.0;
      if (kind == kShort) selection.resize(unknowns / 2);
      const auto known = [&](KtU32 i) { return i >= selection.size() || selection[i]; };

      Acceleration wanted;
      for (KtU32 i = 0; i < n; ++i) wanted.jointAccelerations().pushBack(uniform());
      wanted.setGeneralAcceleration(randomMotion());
      Acceleration found = wanted;
      Mechanism driven = m;
      Active active = m.active();
      KtCrbiAccelerationTool tool;
      tool.hybridTorqueAcceleration(m.stated, m.arm(), m.position, m.velocity, m.external,
                                    selection, driven.torque, found, &active, true);
      for (KtU32 i = 0; i < n; ++i) {
        if (known(i)) {
          EXPECT_EQ(driven.torque.jointTorques()[i], m.torque.jointTorques()[i]);
        } else {
          EXPECT_EQ(found.jointAccelerations()[i], wanted.jointAccelerations()[i]);
        }
      }
      for (KtU32 k = 0; k < 6 && !fixed; ++k) {
        if (known(n + k)) {
          EXPECT_EQ(driven.torque.generalForce()[k], m.torque.generalForce()[k]);
        } else {
          EXPECT_EQ(found.generalAcceleration()[k], wanted.generalAcceleration()[k]);
        }
      }
      EXPECT_TRUE(!fixed || found.generalAcceleration() == KtGeneralMotion());
      // The base's stands in its own axes here, and in those of the system there.
      found.generalAcceleration().transformBy(axes);
      expectNear(listOf(arbi(driven)), listOf(found), 1e-9);
      expectNear(listOf(inverse(m, found, true, kTotalTorqueWithFriction).jointTorques()),
                 drivesOf(driven), 1e-9);
    }
  });
}

TEST_F(Dynamics, WithoutRecomputingTheMatricesOfTheLastCallStand) {
  forMechanisms({6}, kExact, [](Mechanism& m) {
    KtCrbiAccelerationTool kept;
    const auto run = [&](KtCrbiAccelerationTool& tool, bool recompute) {
      Active active = m.active();
      Acceleration result;
      tool.acceleration(m.stated, m.arm(), m.torque, m.external, result, active, recompute);
      return listOf(result);
    };
    const auto runHybrid = [&](KtCrbiAccelerationTool& tool, bool recompute) {
      Active active = m.active();
      Acceleration result;
      KtManipulatorTorque torque = m.torque;
      tool.hybridTorqueAcceleration(m.stated, m.arm(), m.external, {true, false, true}, torque,
                                    result, active, recompute);
      List all = listOf(result);
      for (const double x : listOf(torque)) all.push_back(x);
      return all;
    };
    run(kept, true);
    runHybrid(kept, true);
    for (auto& rate : m.velocity.jointVelocities().vectorContainer()) rate = uniform();
    for (auto& torque : m.torque.jointTorques().vectorContainer()) torque = uniform();
    KtCrbiAccelerationTool fresh;
    EXPECT_EQ(run(kept, false), run(fresh, true));
    EXPECT_EQ(runHybrid(kept, false), runHybrid(fresh, true));
    for (auto& q : m.position.jointPositions().vectorContainer()) q.value() += 0.05;
    EXPECT_NE(run(kept, false), run(fresh, true));
    EXPECT_NE(runHybrid(kept, false), runHybrid(fresh, true));
    KtCrbiAccelerationTool none;
    EXPECT_EQ(run(none, false), run(fresh, true)) << "there are no matrices yet";
  });
}

// Rows whose derivatives don't vanish.
class TurningConstraint
    : public KtXmlPersistent<TurningConstraint, KtLinearStateEqualityConstraint> {
 public:
  const KtReArray& jacobianDerivative(const Arm&, const KtPositionState&,
                                      const KtVelocityState&) const override {
    return rates;
  }
  bool operator==(const TurningConstraint&) const = default;

  KtReArray rates;
};

// One row of each kind. Motions stand in the order of the unknowns, base first, with the base's
// acceleration in its own axes.
TEST_F(Dynamics, ConstraintsHoldAndDoNoWork) {
  forMechanisms({4, 12}, kExact, [](Mechanism& m) {
    const KtU32 n = m.joints();
    const KtU32 first = m.arm().isFixedBase() ? 0 : 6;
    const KtU32 unknowns = n + first;
    using Linear = KtLinearStateEqualityConstraint;
    KtReArray a(2, unknowns);
    Linear linear;
    TurningConstraint turning;
    turning.rates.resizeArray(1, unknowns);
    for (KtU32 r = 0; r < 2; ++r) {
      Linear::Rows joints(1, Linear::Row(n)), base(1, Linear::Row(6));
      for (KtU32 j = 0; j < unknowns; ++j) {
        (j < first ? base[0][j] : joints[0][j - first]) = a[r][j] = uniform();
        turning.rates[0][j] = uniform();
      }
      Linear& constraint = r == 0 ? linear : turning;
      constraint.setJointWeights(joints);
      constraint.setBaseWeights(base);
      constraint.setWeightedSums({1, 0.0});
    }
    KtStateEqualityConstraintVector constraints;
    constraints.pushBack(linear);
    constraints.pushBack(turning);
    Arm arm = m.arm();
    arm.setStateEqualityConstraints(constraints);
    Mechanism constrained = m;
    constrained.replaceArm(arm);

    const KtOrientation toBase = baseAxes(m).inverse();
    const auto inUnknowns = [&](const KtGeneralMotion& base, const auto& joints) {
      List list;
      for (KtU32 k = 0; k < first; ++k) list.push_back(base[k]);
      for (KtU32 i = 0; i < n; ++i) list.push_back(joints[i]);
      return list;
    };
    const auto solve = [&](const Mechanism& mechanism) {
      const Acceleration result = crbi(mechanism);
      return inUnknowns(toBase * result.generalAcceleration(), result.jointAccelerations());
    };
    const List held = solve(constrained);
    const List free = solve(m);
    const List z = inUnknowns(m.velocity.generalVelocity(), m.velocity.jointVelocities());
    double linearRow = 0.0, turningRow = 0.0;
    for (KtU32 j = 0; j < unknowns; ++j) {
      linearRow += a[0][j] * held[j];
      turningRow += a[1][j] * held[j] + turning.rates[0][j] * z[j];
    }
    EXPECT_NEAR(linearRow, 0.0, 1e-9);
    EXPECT_NEAR(turningRow, 0.0, 1e-9);

    // What the constraints' forces change has no work along any motion that they allow.
    KtMassMatrixTool tool;
    tool.setManipulator(&m.arm());
    Active active = m.active();
    const KtReArray mass = tool.extendedMassMatrixInBase(active, nullptr);
    const auto row = [&](KtU32 j) { return j < first ? n + j : j - first; };
    List force(unknowns);
    double largest = 0.0;
    for (KtU32 i = 0; i < unknowns; ++i) {
      for (KtU32 j = 0; j < unknowns; ++j) {
        force[i] += mass[row(i)][row(j)] * (held[j] - free[j]);
      }
      if (i >= first) {
        force[i] += m.link(i - first).jointActuator().effectiveInertia(0.0) * (held[i] - free[i]);
      }
      largest = std::max(largest, std::abs(force[i]));
    }
    EXPECT_GT(largest, 0.1);
    for (KtU32 j = 2; j < unknowns; ++j) {
      const double det = a[0][0] * a[1][1] - a[0][1] * a[1][0];
      const double y0 = (a[0][1] * a[1][j] - a[0][j] * a[1][1]) / det;
      const double y1 = (a[0][j] * a[1][0] - a[0][0] * a[1][j]) / det;
      EXPECT_NEAR(force[0] * y0 + force[1] * y1 + force[j], 0.0,
                  1e-9 * largest * (1.0 + std::abs(y0) + std::abs(y1)));
    }
  });
}

TEST_F(Dynamics, ABaseLeftToItselfBearsNoForce) {
  forMechanisms({1, 7, 25}, kExact, [](Mechanism& m) {
    const Acceleration given = m.acceleration(true);
    Active active = m.active(given);
    KtTotalTorqueTool tool;
    tool.setManipulator(&m.arm());
    const KtManipulatorTorque torques = tool.torquesNoBaseForce(m.external, active, nullptr);
    expectNear(listOf(torques.jointTorques(), torques.generalForce()),
               listOf(torques.jointTorques(), KtGeneralForce()), 1e-11);
    EXPECT_EQ(active.accelerationState().jointAccelerations(), given.jointAccelerations());
    if (m.arm().isFixedBase()) return;
    for (KtU32 i = 0; i < m.joints(); ++i) {
      m.torque.jointTorques()[i] =
          torques.jointTorques()[i] / m.link(i).jointActuator().gearRatio();
    }
    m.torque.setGeneralForce({});
    Acceleration found = arbi(m);
    found.generalAcceleration().setLinear(found.generalAcceleration().linear() +
                                          m.stated.environment().upGravityVector());
    expectNear(listOf(found), listOf(active.accelerationState()), 1e-9);
  });
}

TEST_F(Dynamics, AFreeBodyFallsAgainstTheUpVector) {
  Mechanism m(trees::randomMechanismArm(0, false));
  m.external.setToZeros();
  m.velocity = KtVelocityState();
  m.torque = KtManipulatorTorque();
  const KtGeneralMotion fall(-m.stated.environment().upGravityVector(), KtVector());
  expectNear(listOf(arbi(m, true)), listOf(Joints(), fall), 1e-12);
  expectNear(listOf(crbi(m, true)), listOf(Joints(), fall), 1e-12);
}

// A tool that has answered before answers like a new one, on its own state: under other loads, in
// another state, and for another arm under the same gravity.
template <class Tool>
void expectNothingLeftBehind() {
  Tool kept;
  KtSystemEnvironment environment;
  environment.setUpGravityVector(randomVector());
  forMechanisms({5, 5, 9, 0, 5}, kExact, [&](Mechanism& m) {
    for (int change = 0; change < 4; ++change) {
      SCOPED_TRACE(change);
      const Mechanism other(m.arm());
      if (change == 1) m.torque = other.torque;
      if (change == 2) m.external = other.external;
      if (change == 3) m.velocity = other.velocity;
      m.stated.setEnvironment(environment);
      Acceleration result, expected;
      kept.acceleration(m.stated, m.arm(), m.position, m.velocity, m.torque, m.external, result,
                        nullptr, true);
      Tool().acceleration(m.stated, m.arm(), m.position, m.velocity, m.torque, m.external, expected,
                          nullptr, true);
      EXPECT_EQ(listOf(result), listOf(expected));
    }
  });
}

TEST_F(Dynamics, ToolsAnswerForWhatTheyAreGiven) {
  expectNothingLeftBehind<KtArbiAccelerationTool>();
  expectNothingLeftBehind<KtCrbiAccelerationTool>();
}

// So does one that computes matrices or torques.
TEST_F(Dynamics, ToolsForgetTheManipulatorBefore) {
  const Mechanism m(trees::randomMechanismArm(4, true));
  Arm heavier = m.arm();
  heavier.linkByIdentifier(m.link(3).label())
      ->setMassProperties(trees::randomLink("heavier").massProperties());
  KtMassMatrixTool kept;
  kept.setPositionState(m.position);
  for (const Arm* arm : {&m.arm(), &std::as_const(heavier)}) {
    KtMassMatrixTool fresh;
    fresh.setPositionState(m.position);
    fresh.setManipulator(arm);
    kept.setManipulator(arm);
    EXPECT_EQ(kept.massMatrix(nullptr, nullptr), fresh.massMatrix(nullptr, nullptr));
  }
}

// A manipulator on a link of another is a mass that the link carries.
TEST_F(Dynamics, AttachedManipulatorsAreLoads) {
  forMechanisms({5}, kExact, [](Mechanism& m) {
    const std::string label = m.link(3).label();
    const Arm load = trees::randomMechanismArm(0, true);
    const KtCoordinateSystemTransformation offset = randomTransformation();
    KtRigidBodyMassProperties mass = load.massProperties();
    mass.transformBy(offset);
    Arm arm = m.arm();
    arm.linkByIdentifier(label)->addMassProperties("load", mass);
    Mechanism loaded = m;
    loaded.replaceArm(arm);
    KtManipulatorAttachmentMap attachments;
    attachments.attachManipulator(1, 0, label, offset);
    Mechanism attached = m;
    attached.stated.addManipulator(load);
    attached.stated.setManipulatorAttachmentMap(attachments);
    expectNear(listOf(arbi(attached)), listOf(arbi(loaded)), 1e-9);
    expectNear(listOf(crbi(attached)), listOf(arbi(loaded)), 1e-9);
    EXPECT_NE(listOf(arbi(m)), listOf(arbi(loaded)));
  });
}

// A joint that moves nothing gets 0, and the others move as if it were not there.
TEST_F(Dynamics, AJointWithoutInertiaStaysAndDisturbsNothing) {
  forMechanisms({3, 9}, kExact, [](Mechanism& m) {
    Arm arm = m.arm();
    KtManipulatorLink leaf = trees::randomLink("leaf");
    leaf.setMassProperties(KtRigidBodyMassProperties());
    arm.addLinkToEndOfChain(leaf);
    Mechanism more = m;
    more.replaceArm(arm);
    const auto at = static_cast<std::ptrdiff_t>(arm.linkByIdentifier("leaf")->linkIndex());
    const auto insert = [&](auto& list, auto value) {
      list.vectorContainer().insert(list.vectorContainer().begin() + at, value);
    };
    insert(more.position.jointPositions(), 0.3);
    insert(more.velocity.jointVelocities(), 0.4);
    insert(more.torque.jointTorques(), 0.5);
    auto forces = m.external.linkForces();
    insert(forces, KtGeneralForce());
    more.external.setLinkForces(forces);
    Acceleration expected = arbi(m);
    insert(expected.jointAccelerations(), 0.0);
    expectNear(listOf(arbi(more)), listOf(expected), 1e-9);
  });
}

// A link without a joint is part of its parent, for both methods.
TEST_F(Dynamics, ALinkWithoutAJointIsFixedToItsParent) {
  forMechanisms({8}, kExact, [](Mechanism& m) {
    Arm arm = m.arm();
    KtManipulatorLink* welded = const_cast<KtManipulatorLink*>(arm.linkByIndex(3));
    welded->setLinkKinematicsContainer(KtLinkKinematicsContainer());
    welded->setJointActuator(KtJointActuator());
    welded->updateDHMassProperties();
    m.replaceArm(arm);
    m.velocity.jointVelocities()[3] = m.torque.jointTorques()[3] = 0.0;
    Acceleration other = crbi(m);
    EXPECT_EQ(arbi(m).jointAccelerations()[3], 0.0);
    other.jointAccelerations()[3] = 0.0;  // which its mass matrix doesn't determine
    expectNear(listOf(arbi(m)), listOf(other), 1e-8);
  });
}

// A joint that its motor doesn't reach is left to itself.
TEST_F(Dynamics, AGearRatioOfZeroPassesNoTorque) {
  forMechanisms({4}, kExact, [](Mechanism& m) {
    Arm arm = m.arm();
    Mechanism idle = m;
    arm.linkByIdentifier(m.link(2).label())->setJointActuator(KtJointActuator());
    idle.replaceArm(arm);
    idle.torque.jointTorques()[2] = 0.0;
    KtJointActuator loose;
    loose.setGearRatio(0.0);
    arm.linkByIdentifier(m.link(2).label())->setJointActuator(loose);
    m.replaceArm(arm);
    expectNear(listOf(arbi(m)), listOf(arbi(idle)), 1e-9);
    expectNear(listOf(crbi(m)), listOf(arbi(idle)), 1e-9);
  });
}

// Beyond the last torque the articulated bodies take a command of 0, and the mass matrix the
// torques that hold the joint as it moves.
TEST_F(Dynamics, TorquesMayBeMoreOrFewerThanJoints) {
  forMechanisms({6}, kExact, [](Mechanism& m) {
    Mechanism filled = m;
    const KtManipulatorTorque holding =
        inverse(m, Acceleration::zeroCompatibleState(m.velocity), true, kTotalTorqueWithFriction);
    for (const KtU32 count : {2U, 9U}) {
      SCOPED_TRACE(count);
      m.torque.jointTorques().resize(count);
      if (count > m.joints()) m.torque.jointTorques()[7] = 1e6;
      for (KtU32 i = 0; i < m.joints(); ++i) {
        filled.torque.jointTorques()[i] = i < count ? m.torque.jointTorques()[i].value() : 0.0;
      }
      EXPECT_EQ(listOf(arbi(m)), listOf(arbi(filled)));
      for (KtU32 i = count; i < m.joints(); ++i) {
        filled.torque.jointTorques()[i] =
            holding.jointTorques()[i] / m.link(i).jointActuator().gearRatio();
      }
      expectNear(listOf(crbi(m)), listOf(crbi(filled)), 1e-9);
    }
  });
}

// Derived mechanisms may leave links out of the table.
class ArmWithAHole : public Arm {
 public:
  explicit ArmWithAHole(const Arm& arm) : Arm(arm) { mapManipulator(); }
  using Arm::mapManipulator;
  bool mapManipulator(LinkTable& links, LabelTable& labels) override {
    const bool good = Arm::mapManipulator(links, labels);
    links[1] = nullptr;
    return good;
  }
};

TEST_F(Dynamics, MissingLinksAndManipulatorsGiveZeros) {
  const Mechanism m(trees::randomMechanismArm(3, true));
  const ArmWithAHole holed(m.arm());
  KtMassMatrixTool masses;
  KtMatrixDTool coupling;
  KtGravitationalTorqueTool gravity;
  KtTotalTorqueTool total;
  Active active = m.active();
  const KtLogCapture log;
  // Before a manipulator is set, after it is taken away, and for an index out of range.
  const Arm* const noArm = nullptr;
  for (const Arm* arm : {noArm, &m.arm(), noArm}) {
    for (auto* tool :
         std::initializer_list<KtManipulatorTool*>{&masses, &coupling, &gravity, &total}) {
      tool->setManipulator(arm);
      EXPECT_EQ(tool->manipulator(), arm);
    }
    for (const KtU32 index : {3U, 1000U, ktBaseIndex, 0U}) {
      if (index == 0 && arm != nullptr) continue;
      EXPECT_EQ(gravity.gravitationalTorque(index, active, nullptr), 0.0);
      EXPECT_EQ(total.torque(index, m.external, active, nullptr), 0.0);
      gravity.gravitationalTorqueGradient(index, active, nullptr);
    }
    if (arm != nullptr) continue;
    EXPECT_EQ(masses.massMatrix(active, nullptr).rows(), 0U);
    EXPECT_EQ(masses.extendedMassMatrixInBase(active, nullptr).rows(), 0U);
    EXPECT_EQ(masses.extendedMassMatrixInSystem(nullptr, nullptr).rows(), 0U);
    masses.nullSpaceTorque(nullptr, KtReArray());
    EXPECT_EQ(coupling.matrixD(nullptr, nullptr).rows(), 0U);
    EXPECT_EQ(gravity.gravitationalTorques(active, nullptr).rows(), 0U);
    EXPECT_EQ(total.torques(m.external, active, nullptr), KtManipulatorTorque());
    EXPECT_EQ(total.torquesNoBaseForce(m.external, nullptr, nullptr), KtManipulatorTorque());
    EXPECT_EQ(total.generalForce(m.external, active, nullptr), KtGeneralForce());
  }
  EXPECT_EQ(log.text(), "");

  coupling.setManipulator(&holed);
  const KtReArray d = coupling.matrixD(active, nullptr);
  ASSERT_EQ(log.messages().size(), 1U);
  EXPECT_EQ(log.messages()[0].type, Kt::Print::kError);
  EXPECT_EQ(log.text(), "KtMatrixDTool::matrixD() -> NULL link for index 1\n");
  masses.setManipulator(&holed);
  const KtReArray h = masses.massMatrix(active, nullptr);
  for (KtU32 k = 0; k < 6; ++k) EXPECT_EQ(d[1][k], 0.0);
  masses.setManipulator(&m.arm());
  const KtReArray whole = masses.massMatrix(active, nullptr);
  EXPECT_EQ(h[1][1], 0.0);
  EXPECT_EQ(h[0][0], whole[0][0]);
  EXPECT_EQ(h[2][2], whole[2][2]);

  // A child that was never mapped has no column.
  gravity.setManipulator(&m.arm());
  const KtReArray slopes = gravity.gravitationalTorqueGradient(2, active, nullptr);
  Arm grown = m.arm();
  grown.linkByIdentifier(m.link(2).label())->addChild(KtManipulatorLink());
  gravity.setManipulator(&grown);
  Active more = m.active();
  expectNear(columnOf(gravity.gravitationalTorqueGradient(2, more, nullptr).transpose(), 0),
             columnOf(slopes.transpose(), 0), 1e-6);
}

// After the first at a size, a step asks for no memory.
TEST_F(Dynamics, StepsAskForNoMemory) {
  forMechanisms({12}, kExact, [](Mechanism& m) {
    const Mechanism other(m.arm());
    Active active = m.active();
    KtArbiAccelerationTool articulated;
    KtCrbiAccelerationTool composite;
    KtMassMatrixTool masses;
    KtTotalTorqueTool total;
    KtGravitationalTorqueTool gravity;
    Acceleration result, hybrid;
    KtManipulatorTorque torque = m.torque;
    const Acceleration accelerations = m.acceleration();
    const std::vector<bool> selection{true, false, false, true};
    const auto step = [&](const Mechanism& at) {
      active.setPositionState(at.position);
      active.setVelocityState(at.velocity);
      active.setAccelerationState(accelerations);
      for (KtU32 i = 0; i < m.joints(); ++i) {
        m.link(i).primaryFrameInSystem(active.activePositionState());
        m.link(i).dhFrameVelocityInSystem(active);
      }
      articulated.acceleration(m.stated, m.arm(), at.position, at.velocity, at.torque, at.external,
                               result, nullptr, true);
      composite.acceleration(m.stated, m.arm(), at.position, at.velocity, at.torque, at.external,
                             result, nullptr, true);
      composite.hybridTorqueAcceleration(m.stated, m.arm(), at.position, at.velocity, at.external,
                                         selection, torque, hybrid, nullptr, true);
      masses.setManipulator(&m.arm());
      masses.massMatrix(active, nullptr);
      masses.extendedMassMatrixInSystem(active, nullptr);
      gravity.setManipulator(&m.arm());
      gravity.gravitationalTorques(active, nullptr);
      gravity.gravitationalTorqueGradient(3, active, nullptr);
      total.setManipulator(&m.arm());
      total.torquesNoBaseForce(at.external, active, nullptr);
    };
    step(m);
    step(other);
    const Allocations allocations;
    for (int i = 0; i < 3; ++i) step(m), step(other);
    EXPECT_EQ(allocations.count(), 0U);
  });
}

}  // namespace
