// What `ktmanip evaluate` answers, against closed forms and the laws that its answers obey.
#include "Evaluate.h"
#include "ImportUrdf.h"
#include "support/Testing.h"

namespace {

// A bob of 2 kg, 0.5 m below a hinge about y that stands 1 m above the origin, with a rotor.
KtStatedSystem pendulum() {
  KtStatedSystem system =
      importUrdf(
          "<robot name='r'><link name='post'/><link name='rod'><inertial><origin xyz='0 0 -0.5'/>"
          "<mass value='2'/><inertia ixx='0.1' iyy='0.2' izz='0.15' ixy='0' ixz='0' iyz='0'/>"
          "</inertial></link><joint name='j' type='continuous'><parent link='post'/>"
          "<child link='rod'/><origin xyz='0 0 1'/><axis xyz='0 1 0'/>"
          "<dynamics damping='5' friction='3'/></joint></robot>",
          {})
          .system;
  KtIndividualManipulator arm = system.system().manipulators()[0];
  KtManipulatorLink& rod = *arm.linkByIdentifier("rod");
  KtJointActuator actuator = rod.jointActuator();
  actuator.setInertia(0.001);
  actuator.setGearRatio(10.0);
  rod.setJointActuator(actuator);
  KtStatedSystem result;
  result.setFromManipulator(arm);
  result.setEnvironment(system.environment());
  return result;
}

TEST(Evaluate, APendulumObeysItsClosedForms) {
  const KtStatedSystem system = pendulum();
  const double q = 0.3, qd = 1.7, qdd = 0.9, tau = 2.5, g = 9.81;
  EvaluateOptions options;
  options.q = {{q}};
  options.qd = {{qd}};
  options.qdd = {{qdd}};
  options.tau = {{tau}};
  Json result;
  std::string error;
  ASSERT_TRUE(evaluate(system, options, result, error)) << error;
  const Json& m = result["manipulators"][0];
  const double inertia = 0.2 + 2.0 * 0.25 + 0.1;  // body, Steiner, rotor behind the gear
  const double weight = 2.0 * g * 0.5 * std::sin(q);
  const auto near = [](const Json& json, double value) {
    EXPECT_NEAR(json.get<double>(), value, 1e-13);
  };
  near(m["massMatrix"][0][0], inertia);
  near(m["gravityTorques"][0], weight);
  near(m["inverseDynamics"]["jointTorques"][0], inertia * qdd + weight);
  near(m["forwardDynamics"]["jointAccelerations"][0], (tau - weight) / inertia);
  near(m["kineticEnergy"], 0.5 * inertia * qd * qd);
  near(m["potentialEnergy"], 2.0 * g * (1.0 - 0.5 * std::cos(q)));
  near(m["centerOfMass"][0], -0.5 * std::sin(q));
  // The base carries the weight and what moves the bob: m a, and its moment about the origin.
  const double c = std::cos(q), s = std::sin(q);
  const double ax = 0.5 * (qd * qd * s - qdd * c), az = 0.5 * (qd * qd * c + qdd * s);
  const Json& force = m["inverseDynamics"]["baseForce"];
  near(force[0], 2.0 * ax);
  near(force[2], 2.0 * (az + g));
  near(force[4], 0.2 * qdd + (1.0 - 0.5 * c) * 2.0 * ax + 0.5 * s * 2.0 * (az + g));
  const Json& rod = m["links"][1];
  EXPECT_EQ(m["links"][0]["label"], "post");
  EXPECT_EQ(m["joints"], Json::array({"rod"}));
  near(rod["velocity"]["angular"][1], qd);
  near(rod["primaryFrame"]["translation"][2], 1.0);
  near(rod["primaryFrame"]["rotation"][0], std::cos(0.5 * q));
  near(rod["primaryFrame"]["rotation"][1], 0.0);
  near(rod["primaryFrame"]["rotation"][2], std::sin(0.5 * q));
}

}  // namespace
