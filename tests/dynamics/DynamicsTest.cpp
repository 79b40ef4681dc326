#include "support/Testing.h"
#include "support/Trees.h"

namespace {

using trees::Extras;
using trees::Mechanism;
using Acceleration = KtAccelerationState;
using List = std::vector<double>;

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

const List& listOf(const List& list) {
  return list;
}

List columnOf(const KtReArray& array, KtU32 j) {
  List list;
  for (KtU32 i = 0; i < array.rows(); ++i) list.push_back(array[i][j]);
  return list;
}

// Within a tolerance that is relative to the largest entry, which counts as 1 at least.
template <class A, class B>
void expectNear(const A& actual, const B& expected, double tolerance) {
  const List a = listOf(actual), b = listOf(expected);
  ASSERT_EQ(a.size(), b.size());
  double largest = 1.0;
  for (const double x : b) largest = std::max(largest, std::abs(x));
  for (std::size_t i = 0; i < a.size(); ++i) {
    EXPECT_NEAR(a[i], b[i], tolerance * largest) << "entry " << i;
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

// In a state that is given, or in the tool's own.
template <class Tool>
Acceleration answer(Tool& tool, const Mechanism& m, Active* active = nullptr) {
  Acceleration result;
  tool.acceleration(m.stated, m.arm(), m.position, m.velocity, m.torque, m.external, result, active,
                    true);
  return result;
}

// By articulated bodies or by the mass matrix.
template <class Tool>
Acceleration forward(const Mechanism& m, bool own) {
  Active active = m.active();
  Tool tool;
  return answer(tool, m, own ? nullptr : &active);
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

void bringToRest(Mechanism& m) {
  m.velocity = KtVelocityState();
  m.velocity.jointVelocities().resize(m.joints());
  m.external.setToZeros();
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

// Commands the motors to give these torques.
void drive(Mechanism& m, const List& torques, KtU32 from = 0) {
  for (KtU32 i = from; i < m.joints(); ++i) {
    m.torque.jointTorques()[i] = torques[i] / m.link(i).jointActuator().gearRatio();
  }
}

double localTorque(const Mechanism& m, KtU32 i) {
  Active active = m.active();
  return m.link(i).totalLocalTorque(active);
}

TEST(Dynamics, ForwardMethodsAgree) {
  const auto check = [](double tolerance, Mechanism& m) {
    for (const bool own : {false, true}) {
      expectNear(arbi(m, own), crbi(m, own), tolerance);
    }
    EXPECT_EQ(m.arm().isFixedBase(), arbi(m).generalAcceleration() == KtGeneralMotion());
  };
  forMechanisms({0, 1, 2, 3, 5, 8, 13, 21, 40, 60}, kExact, [&](Mechanism& m) { check(1e-9, m); });
  forMechanisms({2, 6, 12}, {.pivotedSliders = true, .fixedSliders = true, .screws = true},
                [&](Mechanism& m) { check(1e-6, m); });
}

// The three types differ by what the actuators lose.
TEST(Dynamics, InverseOfForwardGivesTheTorquesBack) {
  forMechanisms({0, 1, 4, 11, 30, 60}, kExact, [](Mechanism& m) {
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
      expectNear(torques.jointTorques(), expected, 1e-9);
      if (m.arm().isFixedBase()) continue;
      expectNear(listOf({}, torques.generalForce()), listOf({}, m.torque.generalForce()), 1e-9);
    }
  });
}

// Column by column, by inverse dynamics at rest without gravity, that of springs taken off.
TEST(Dynamics, MassMatricesAreWhatUnitAccelerationsTake) {
  forMechanisms({1, 3, 10, 40}, kExact, [](Mechanism& m) {
    const KtU32 n = m.joints();
    bringToRest(m);
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
        expectNear(torques, columnOf(system ? inSystem : inBase, j), 1e-10);
      }
      if (j < n || !m.arm().isFixedBase()) {
        KtVelocityState moving = m.velocity;
        if (j < n) moving.jointVelocities()[j] = 3.0;
        if (j >= n) moving.generalVelocity().setScalarValue(j - n, 3.0);
        active.setVelocityState(moving);
        tool.setIsFixedBase(!m.arm().isFixedBase());
        for (KtMassMatrixTool* each : {&tool, static_cast<KtMassMatrixTool*>(nullptr)}) {
          EXPECT_DOUBLE_EQ(m.arm().computeKineticEnergy(active, each, nullptr), 4.5 * inBase[j][j]);
        }
        EXPECT_EQ(tool.isFixedBase(), m.arm().isFixedBase());
      }
      for (KtU32 i = 0; j < n && i < n; ++i) {
        EXPECT_EQ(mass[i][j], inBase[i][j]);
        EXPECT_TRUE(mass[i][j] == 0.0 || carries(i, j) || carries(j, i));
      }
    }
  });
}

// At rest and without gravity, whatever the state was before.
TEST(Dynamics, NullSpaceTorqueIsWhatTheColumnsTakeAsAccelerations) {
  forMechanisms({1, 9}, kExact, [](Mechanism& m) {
    const KtU32 n = m.joints();
    Active active = m.active(m.acceleration(true));
    bringToRest(m);
    KtMassMatrixTool tool;
    tool.setManipulator(&m.arm());
    KtReArray columns(n, 2);
    for (KtU32 i = 0; i < n; ++i) columns[i][0] = uniform(), columns[i][1] = uniform();
    // Given columns, and those of the identity in their place.
    for (const KtU32 count : {2U, n, n + 6, 0U}) {
      const KtReArray given = count == 2 ? columns : KtReArray();
      tool.setIsFixedBase(count == n);
      tool.setDegreesOfConstraint(count == 0 ? 1 : 0);
      const KtReArray actual = tool.nullSpaceTorque(active, given);
      ASSERT_EQ(actual.columns(), count);
      for (KtU32 j = 0; j < count; ++j) {
        Acceleration column = Acceleration::zeroCompatibleState(m.velocity);
        for (KtU32 i = 0; i < n; ++i) {
          column.jointAccelerations()[i] = given.rows() > 0 ? given[i][j] : i == j ? 1.0 : 0.0;
        }
        List torques = columnOf(actual, j);
        torques.resize(n);
        expectNear(torques, inverse(m, column, false, kTotalTorqueOfLinks).jointTorques(), 1e-10);
      }
    }
  });
}

// What inverse dynamics finds at rest; and the gradient by differences.
TEST(Dynamics, GravityTorquesHoldTheMechanismAtRest) {
  EXPECT_EQ(KtGravitationalTorqueTool().gravityVector(), KtVector(0.0, 0.0, 9.8));
  for (const Extras& extras : {kDhOnly, Extras{.screws = true}}) {
    forMechanisms({1, 5, 14}, extras, [&](Mechanism& m) {
      const KtU32 n = m.joints();
      KtGravitationalTorqueTool tool;
      tool.setGravityVector(m.stated.environment().upGravityVector());
      tool.setManipulator(&m.arm());
      const auto torquesAt = [&](KtU32 moved, double step) {
        KtPositionState position = m.position;
        position.jointPositions()[moved].value() += step;
        tool.setPositionState(position);
        return columnOf(tool.gravitationalTorques(nullptr, nullptr), 0);
      };
      const List torques = torquesAt(0, 0.0);
      EXPECT_EQ(tool.gravitationalTorque(0, nullptr, nullptr), torques[0]);
      bringToRest(m);
      const Acceleration none = Acceleration::zeroCompatibleState(m.velocity);
      List holding = listOf(inverse(m, none, true, kTotalTorqueOfLinks).jointTorques());
      KtTotalTorqueTool own;
      own.setManipulator(&m.arm());
      own.setTotalTorqueType(kTotalTorqueOfLinks);
      own.setPositionState(m.position);
      own.setVelocityState(m.velocity);
      own.setBaseAccelerationFromGravityVector(m.stated.environment().upGravityVector());
      EXPECT_EQ(listOf(own.torques(m.external, nullptr, nullptr).jointTorques()), holding);
      for (KtU32 i = 0; i < n; ++i) holding[i] -= localTorque(m, i);
      expectNear(torques, holding, 1e-11);
      // The unit motion of a slider changes with its position, which the gradient leaves out.
      constexpr double kStep = 1e-5;
      for (KtU32 j = 0; !extras.pivotedSliders && j < n; ++j) {
        const List after = torquesAt(j, kStep);
        const List before = torquesAt(j, -kStep);
        torquesAt(j, 0.0);
        List actual, expected;
        for (KtU32 i = 0; i < n; ++i) {
          actual.push_back(tool.gravitationalTorqueGradient(i, nullptr, nullptr)[0][j]);
          expected.push_back((after[i] - before[i]) / (2 * kStep));
        }
        expectNear(actual, expected, 1e-8);
      }
    });
  }
}

TEST(Dynamics, HybridProblemIsConsistentWithBothOthers) {
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
      for (KtU32 i = 0; i < unknowns; ++i) {
        EXPECT_TRUE(known(i) ? listOf(driven.torque)[i] == listOf(m.torque)[i]
                             : listOf(found)[i] == listOf(wanted)[i]);
      }
      EXPECT_TRUE(!fixed || found.generalAcceleration() == KtGeneralMotion());
      // The base's stands in its own axes here, and in those of the system there.
      found.generalAcceleration().transformBy(axes);
      expectNear(arbi(driven), found, 1e-9);
      expectNear(inverse(m, found, true, kTotalTorqueWithFriction).jointTorques(), drivesOf(driven),
                 1e-9);
    }
  });
}

TEST(Dynamics, WithoutRecomputingTheMatricesOfTheLastCallStand) {
  forMechanisms({6}, kExact, [](Mechanism& m) {
    // The forward and the hybrid problem.
    const auto run = [&](KtCrbiAccelerationTool& tool, bool recompute) {
      Active active = m.active();
      Acceleration forward, hybrid;
      KtManipulatorTorque torque = m.torque;
      tool.acceleration(m.stated, m.arm(), torque, m.external, forward, active, recompute);
      tool.hybridTorqueAcceleration(m.stated, m.arm(), m.external, {true, false, true}, torque,
                                    hybrid, active, recompute);
      return std::array{listOf(forward), listOf(hybrid), listOf(torque)};
    };
    KtCrbiAccelerationTool kept, fresh, none;
    run(kept, true);
    for (auto& rate : m.velocity.jointVelocities().vectorContainer()) rate = uniform();
    for (auto& torque : m.torque.jointTorques().vectorContainer()) torque = uniform();
    EXPECT_EQ(run(kept, false), run(fresh, true));
    for (auto& q : m.position.jointPositions().vectorContainer()) q.value() += 0.05;
    const auto stale = run(kept, false), right = run(fresh, true);
    for (std::size_t k = 0; k < right.size(); ++k) EXPECT_NE(stale[k], right[k]) << k;
    EXPECT_EQ(run(none, false), right) << "there are no matrices yet";
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

// Motions stand in the order of the unknowns, base first, with the base's acceleration in its own
// axes.
TEST(Dynamics, ConstraintsHoldAndDoNoWork) {
  forMechanisms({4, 12}, kExact, [](Mechanism& m) {
    const KtU32 n = m.joints(), first = m.arm().isFixedBase() ? 0 : 6;
    const KtU32 unknowns = n + first;
    KtReArray a(2, unknowns);
    using Linear = KtLinearStateEqualityConstraint;
    Linear::Rows joints(2, Linear::Row(n)), base(2, Linear::Row(6));
    TurningConstraint turning;
    turning.rates.resizeArray(2, unknowns);
    for (KtU32 r = 0; r < 2; ++r) {
      for (KtU32 j = 0; j < unknowns; ++j) {
        (j < first ? base[r][j] : joints[r][j - first]) = a[r][j] = uniform();
        turning.rates[r][j] = uniform();
      }
    }
    turning.setJointWeights(joints);
    turning.setBaseWeights(base);
    turning.setWeightedSums({2, 0.0});
    KtStateEqualityConstraintVector constraints;
    constraints.pushBack(turning);
    Arm arm = m.arm();
    arm.setStateEqualityConstraints(constraints);
    Mechanism constrained = m;
    constrained.replaceArm(arm);

    const auto inUnknowns = [&](const KtGeneralMotion& baseMotion, const Joints& jointMotion) {
      List list = listOf(Joints(), baseMotion);
      list.resize(first);
      for (const double x : listOf(jointMotion)) list.push_back(x);
      return list;
    };
    const auto solve = [&](const Mechanism& mechanism) {
      const Acceleration result = crbi(mechanism);
      return inUnknowns(baseAxes(m).inverse() * result.generalAcceleration(),
                        result.jointAccelerations());
    };
    const List held = solve(constrained);
    const List z = inUnknowns(m.velocity.generalVelocity(), m.velocity.jointVelocities());
    List rest = a * held;
    for (KtU32 r = 0; r < 2; ++r) rest[r] += (turning.rates * z)[r];
    expectNear(rest, List(2), 1e-9);

    // What the constraints' forces change has no work along any motion that they allow.
    List change = solve(m);
    for (KtU32 j = 0; j < unknowns; ++j) change[j] = held[j] - change[j];
    KtMassMatrixTool tool;
    tool.setManipulator(&m.arm());
    Active active = m.active();
    const KtReArray mass = tool.extendedMassMatrixInBase(active, nullptr);
    const auto row = [&](KtU32 j) { return j < first ? n + j : j - first; };
    List force(unknowns);
    double most = 0.0;
    for (KtU32 i = 0; i < unknowns; ++i) {
      for (KtU32 j = 0; j < unknowns; ++j) force[i] += mass[row(i)][row(j)] * change[j];
      if (i >= first) {
        force[i] += m.link(i - first).jointActuator().effectiveInertia(0.0) * change[i];
      }
      most = std::max(most, std::abs(force[i]));
    }
    EXPECT_GT(most, 0.1);
    KtJacobianState allowed;
    allowed.setJacobian(a);
    const List work = allowed.nullSpace().transpose() * force;
    expectNear(work, List(work.size()), 1e-9 * most);
  });
}

TEST(Dynamics, ABaseLeftToItselfBearsNoForce) {
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
    drive(m, listOf(torques.jointTorques()));
    m.torque.setGeneralForce({});
    Acceleration found = arbi(m);
    found.generalAcceleration().setLinear(found.generalAcceleration().linear() +
                                          m.stated.environment().upGravityVector());
    expectNear(found, active.accelerationState(), 1e-9);
  });
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
      Tool fresh;
      EXPECT_EQ(listOf(answer(kept, m)), listOf(answer(fresh, m)));
    }
  });
}

// Where gravity sets in later, the first tool stays with what it began with, and the second
// doesn't.
TEST(Dynamics, ToolsAnswerForWhatTheyAreGiven) {
  expectNothingLeftBehind<KtArbiAccelerationTool>();
  expectNothingLeftBehind<KtCrbiAccelerationTool>();
  Mechanism m(trees::randomMechanismArm(4, true));
  KtArbiAccelerationTool articulated;
  KtCrbiAccelerationTool composite;
  for (const double g : {0.0, 9.8}) {
    KtSystemEnvironment environment;
    environment.setUpGravityVector({0.0, 0.0, g});
    m.stated.setEnvironment(environment);
    EXPECT_EQ(listOf(answer(composite, m)), listOf(crbi(m, true)));
    EXPECT_EQ(listOf(answer(articulated, m)) == listOf(arbi(m, true)), g == 0.0);
  }

  // One that computes matrices forgets the manipulator before.
  Arm heavier = m.arm();
  heavier.linkByIdentifier(m.link(3).label())
      ->setMassProperties(trees::randomLink("heavier").massProperties());
  KtMassMatrixTool kept;
  for (const Arm* arm : {&m.arm(), &std::as_const(heavier)}) {
    KtMassMatrixTool fresh;
    for (KtMassMatrixTool* tool : {&kept, &fresh}) {
      tool->setPositionState(m.position);
      tool->setManipulator(arm);
    }
    EXPECT_EQ(kept.massMatrix(nullptr, nullptr), fresh.massMatrix(nullptr, nullptr));
  }
}

// A manipulator on a link of another is a mass that the link carries, and a joint that its motor
// doesn't reach is left to itself.
TEST(Dynamics, BothMethodsTakeAttachmentsAsMassesAndLooseGearsAsIdle) {
  const auto expectSame = [](const Mechanism& actual, const Mechanism& expected) {
    expectNear(arbi(actual), arbi(expected), 1e-9);
    expectNear(crbi(actual), arbi(expected), 1e-9);
  };
  forMechanisms({5, 8}, kExact, [&](Mechanism& m) {
    const std::string label = m.link(3).label();
    const Arm load = trees::randomMechanismArm(0, true);
    const T offset = randomTransformation();
    Mass mass = load.massProperties();
    mass.transformBy(offset);
    Arm arm = m.arm();
    arm.linkByIdentifier(label)->addMassProperties("load", mass);
    Mechanism loaded = m, attached = m, idle = m, loose = m;
    loaded.replaceArm(arm);
    KtManipulatorAttachmentMap attachments;
    attachments.attachManipulator(1, 0, label, offset);
    attached.stated.addManipulator(load);
    attached.stated.setManipulatorAttachmentMap(attachments);
    expectSame(attached, loaded);
    EXPECT_NE(listOf(arbi(m)), listOf(arbi(loaded)));

    arm = m.arm();
    KtJointActuator actuator;
    for (Mechanism* each : {&idle, &loose}) {
      each->torque.jointTorques()[2] = 0.0;
      arm.linkByIdentifier(m.link(2).label())->setJointActuator(actuator);
      each->replaceArm(arm);
      actuator.setGearRatio(0.0);
    }
    expectSame(loose, idle);
  });
}

// A joint that moves nothing gets 0, and passes on what acts on its link.
TEST(Dynamics, AJointWithoutInertiaStaysAndDisturbsNothing) {
  forMechanisms({3, 9}, kExact, [](Mechanism& source) {
    Arm arm = source.arm();
    KtManipulatorLink leaf = trees::randomLink("leaf");
    leaf.setMassProperties(KtRigidBodyMassProperties());
    arm.addLinkToEndOfChain(leaf);
    arm.setJointLimit("leaf", true, -1.0);
    arm.setJointLimit("leaf", false, 1.0);
    const Mechanism m(arm);
    const KtU32 at = arm.linkByIdentifier("leaf")->linkIndex();
    const Acceleration found = arbi(m);
    EXPECT_EQ(found.jointAccelerations()[at], 0.0);
    List drives = drivesOf(m);
    List torques = listOf(inverse(m, found, true, kTotalTorqueWithFriction).jointTorques());
    drives[at] = torques[at] = 0.0;
    expectNear(torques, drives, 1e-9);
  });
}

// For both methods.
TEST(Dynamics, ALinkWithoutAJointIsPartOfItsParent) {
  forMechanisms({8}, kExact, [](Mechanism& m) {
    Arm arm = m.arm();
    Link* welded = arm.linkByIdentifier(m.link(3).label());
    welded->setLinkKinematicsContainer(KtLinkKinematicsContainer());
    welded->setJointActuator(KtJointActuator());
    welded->updateDHMassProperties();
    m.replaceArm(arm);
    m.velocity.jointVelocities()[3] = m.torque.jointTorques()[3] = 0.0;
    Acceleration other = crbi(m);
    EXPECT_EQ(arbi(m).jointAccelerations()[3], 0.0);
    other.jointAccelerations()[3] = 0.0;  // which its mass matrix doesn't determine
    expectNear(arbi(m), other, 1e-8);
  });
}

// Beyond the last torque the articulated bodies take a command of 0, and the mass matrix the
// torques that hold the joint as it moves.
TEST(Dynamics, TorquesMayBeMoreOrFewerThanJoints) {
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
      drive(filled, listOf(holding.jointTorques()), count);
      expectNear(crbi(m), crbi(filled), 1e-9);
      // The hybrid problem without an unknown torque is the same, and gives a torque to each joint.
      Acceleration found;
      Active active = m.active();
      KtManipulatorTorque torque = m.torque;
      KtCrbiAccelerationTool().hybridTorqueAcceleration(m.stated, m.arm(), m.external, {}, torque,
                                                        found, active, true);
      found.generalAcceleration().transformBy(baseAxes(m));
      expectNear(found, crbi(m), 1e-9);
      EXPECT_EQ(torque.jointTorques().size(), std::max(count, m.joints()));
    }
  });
}

TEST(Dynamics, MissingLinksAndManipulatorsGiveZeros) {
  const Mechanism m(trees::randomMechanismArm(3, true));
  KtMassMatrixTool masses;
  KtMatrixDTool coupling;
  KtGravitationalTorqueTool gravity;
  KtTotalTorqueTool total;
  Active active = m.active();
  const KtLogCapture log;
  const auto expectNoJoint = [&](KtU32 index) {
    EXPECT_EQ(gravity.gravitationalTorque(index, active, nullptr), 0.0);
    EXPECT_EQ(total.torque(index, m.external, active, nullptr), 0.0);
    gravity.gravitationalTorqueGradient(index, active, nullptr);
  };
  // Before a manipulator is set, after it is taken away, and for an index out of range.
  const Arm* const noArm = nullptr;
  for (const Arm* arm : {noArm, &m.arm(), noArm}) {
    for (auto* tool :
         std::initializer_list<KtManipulatorTool*>{&masses, &coupling, &gravity, &total}) {
      tool->setManipulator(arm);
    }
    for (const KtU32 index : {3U, 1000U, ktBaseIndex}) expectNoJoint(index);
    if (arm != nullptr) continue;
    expectNoJoint(0);
    EXPECT_EQ(masses.extendedMassMatrixInBase(active, nullptr).rows(), 0U);
    EXPECT_EQ(masses.extendedMassMatrixInSystem(nullptr, nullptr).rows(), 0U);
    masses.nullSpaceTorque(nullptr, KtReArray());
    EXPECT_EQ(coupling.matrixD(nullptr, nullptr).rows(), 0U);
    EXPECT_EQ(gravity.gravitationalTorques(active, nullptr).rows(), 0U);
    EXPECT_EQ(total.torquesNoBaseForce(m.external, active, nullptr), KtManipulatorTorque());
  }
  EXPECT_EQ(log.text(), "");

  trees::Holed holed;
  static_cast<Arm&>(holed) = m.arm();
  holed.mapManipulator();
  coupling.setManipulator(&holed);
  EXPECT_EQ(columnOf(coupling.matrixD(active, nullptr), 5)[3], 0.0);
  EXPECT_EQ(log.errors(), "KtMatrixDTool::matrixD() -> NULL link for index 3\n");
  masses.setManipulator(&holed);
  const KtReArray h = masses.massMatrix(active, nullptr);
  masses.setManipulator(&m.arm());
  const KtReArray whole = masses.massMatrix(active, nullptr);
  for (KtU32 i = 0; i < 4; ++i) EXPECT_EQ(h[i][i], i == 3 ? 0.0 : whole[i][i]);

  // A child that was never mapped has no column.
  Arm grown = m.arm();
  grown.linkByIdentifier(m.link(2).label())->addChild(KtManipulatorLink());
  gravity.setManipulator(&grown);
  Active more = m.active();
  EXPECT_EQ(gravity.gravitationalTorqueGradient(2, more, nullptr).columns(), 3U);
}

// After the first at a size, a step asks for no memory.
TEST(Dynamics, StepsAskForNoMemory) {
  forMechanisms({12}, kExact, [](Mechanism& m) {
    const Mechanism other(m.arm());
    Active active = m.active();
    KtArbiAccelerationTool articulated;
    KtCrbiAccelerationTool composite;
    KtMassMatrixTool masses;
    KtTotalTorqueTool total;
    KtGravitationalTorqueTool gravity;
    Acceleration result;
    KtManipulatorTorque torque = m.torque;
    const Acceleration accelerations = m.acceleration();
    const std::vector<bool> selection{true, false, false, true};
    const auto step = [&](const Mechanism& at) {
      active.setPositionState(at.position);
      active.setVelocityState(at.velocity);
      active.setAccelerationState(accelerations);
      articulated.acceleration(m.stated, m.arm(), at.position, at.velocity, at.torque, at.external,
                               result, nullptr, true);
      composite.acceleration(m.stated, m.arm(), at.position, at.velocity, at.torque, at.external,
                             result, nullptr, true);
      composite.hybridTorqueAcceleration(m.stated, m.arm(), at.position, at.velocity, at.external,
                                         selection, torque, result, nullptr, true);
      for (auto* tool : std::initializer_list<KtManipulatorTool*>{&masses, &gravity, &total}) {
        tool->setManipulator(&m.arm());
      }
      masses.extendedMassMatrixInSystem(active, nullptr);
      gravity.gravitationalTorques(active, nullptr);
      gravity.gravitationalTorqueGradient(3, active, nullptr);
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
