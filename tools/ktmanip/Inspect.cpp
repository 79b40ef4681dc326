#include "Inspect.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>

#include "Commands.h"
#include "Numbers.h"
#include "ktManipulator/foundation/core/KtPrint.h"
#include "ktManipulator/foundation/xml/KtToken.h"
#include "ktManipulator/foundation/xml/KtXmlReader.h"
#include "ktManipulator/kinematics/KtDenavitHartenberg.h"

namespace {

// Beyond that a limit is none.
constexpr double kNoLimit = 1e+300;

Json limitOf(double value) {
  return std::abs(value) < kNoLimit ? Json(value) : Json(nullptr);
}

std::string jointKind(const KtManipulatorLink& link) {
  const KtLinkKinematics* model = link.linkKinematicsContainer().topElement();
  if (const auto* joint = dynamic_cast<const KtDenavitHartenberg*>(model)) {
    return joint->jointType() == KtDenavitHartenberg::kPrismatic ? "prismatic" : "rotational";
  }
  return model == nullptr ? "none" : model->token().text();
}

Json describeLink(const KtIndividualManipulator& manipulator, KtU32 place) {
  const KtManipulatorLink& link = linkAt(manipulator, place);
  const KtRigidBodyMassProperties& mass = link.massProperties(nullptr);
  KtVector center;
  mass.getCenterOfMass(center);
  Json result = {{"label", link.label()}, {"index", static_cast<long>(place) - 1}};
  if (place > 0) {
    const KtJointActuator& actuator = link.jointActuator();
    result["parent"] = link.parentLink()->label();
    result["joint"] = {{"kind", jointKind(link)},
                       {"lower", limitOf(actuator.lowerLimit())},
                       {"upper", limitOf(actuator.upperLimit())},
                       {"rate", limitOf(actuator.maxOutputRate())},
                       {"minTorque", limitOf(actuator.minOutputTorque())},
                       {"maxTorque", limitOf(actuator.maxOutputTorque())},
                       {"rotorInertia", actuator.effectiveInertia(0.0)}};
  }
  result["mass"] = mass.massValue();
  result["centerOfMass"] = jsonOf(center);
  result["shapes"] = link.numberOfShapes();
  result["carries"] = Json::array();
  for (const auto& [name, carried] : link.massPropertiesMap().mapContainer()) {
    result["carries"].push_back(name.value());
  }
  result["namedFrames"] = Json::array();
  for (const auto& [name, frame] : link.namedFrames().mapContainer()) {
    result["namedFrames"].push_back(name.value());
  }
  return result;
}

void warnAboutJoint(const KtManipulatorLink& link, double q, const std::string& where,
                    std::vector<std::string>& warnings) {
  const KtJointActuator& actuator = link.jointActuator();
  const auto number = [](double value) { return Json(value).dump(); };
  if (actuator.lowerLimit() > actuator.upperLimit()) {
    warnings.push_back(where + "the lower limit " + number(actuator.lowerLimit()) +
                       " lies above the upper one, " + number(actuator.upperLimit()));
  } else if (q < actuator.lowerLimit() || q > actuator.upperLimit()) {
    warnings.push_back(where + "the joint stands at " + number(q) + ", beyond its limits " +
                       number(actuator.lowerLimit()) + " and " + number(actuator.upperLimit()));
  }
  if (actuator.minTorque() > actuator.maxTorque()) {
    warnings.push_back(where + "the least torque " + number(actuator.minTorque()) +
                       " lies above the greatest one, " + number(actuator.maxTorque()));
  }
  if (!(actuator.maxOutputRate() > 0.0)) {
    warnings.push_back(where + "a greatest rate of " + number(actuator.maxOutputRate()) +
                       " holds the joint");
  }
}

void warnAboutInertia(const KtRigidBodyMassProperties& mass, bool moves, const std::string& where,
                      std::vector<std::string>& warnings) {
  KtVector center;
  mass.getCenterOfMass(center);
  KtRigidBodyMassProperties central = mass;
  central.transformBy(-center);
  // What is left of a point mass is rounding.
  const KtSecondMoment& about = central.secondMoment();
  double greatest = 0.0, greatestAtOrigin = 0.0;
  for (int i = 0; i < 6; ++i) {
    greatest = std::fmax(greatest, std::abs(about.values()[i]));
    greatestAtOrigin = std::fmax(greatestAtOrigin, std::abs(mass.secondMoment().values()[i]));
  }
  if (greatest <= 1e-14 * greatestAtOrigin) {
    if (moves) warnings.push_back(where + "the link has a mass and no inertia about its centre");
  } else if (!about.isValid()) {
    warnings.push_back(where +
                       "no body has this inertia about its centre of mass: a principal "
                       "moment is not positive, or greater than the sum of the others");
  }
}

void warnAboutMass(const KtManipulatorLink& link, bool moves, const std::string& where,
                   std::vector<std::string>& warnings) {
  // The least mass of valid properties stands for none.
  const auto hasMass = [](const KtRigidBodyMassProperties& mass) {
    return mass.massValue() > KtRigidBodyMassProperties::nullObject().massValue();
  };
  const KtRigidBodyMassProperties& whole = link.massProperties(nullptr);
  if (hasMass(whole)) {
    warnAboutInertia(whole, moves, where, warnings);
  } else if (moves) {
    warnings.push_back(where + "the link moves and has no mass");
  }
  // What is wrong with a part may not show in the whole.
  if (link.massPropertiesMap().size() == 0) return;
  if (hasMass(link.baseMassProperties())) {
    warnAboutInertia(link.baseMassProperties(), false, where + "by itself, ", warnings);
  }
  for (const auto& [name, part] : link.massPropertiesMap().mapContainer()) {
    if (hasMass(part)) warnAboutInertia(part, false, where + name.value() + ": ", warnings);
  }
}

void warnAboutLabels(const std::map<std::string, int>& labels, const std::string& where,
                     const char* of, std::vector<std::string>& warnings) {
  for (const auto& [label, count] : labels) {
    if (count > 1) {
      warnings.push_back(where + std::to_string(count) + ' ' + of + " have the label \"" + label +
                         '"');
    }
  }
}

void printTable(const Json& description) {
  const auto number = [](const Json& value) {
    char text[32];
    if (value.is_null()) return std::string("-");
    std::snprintf(text, sizeof text, "%.6g", value.get<double>());
    return std::string(text);
  };
  const auto text = [](const Json& value) { return value.get<std::string>(); };
  for (const Json& m : description["manipulators"]) {
    const auto count = [&m](const char* name, const char* one, const char* many) {
      return counted(m[name].get<std::uint64_t>(), one, many);
    };
    std::printf(
        "%s: %s base, %s, %s, %s\n", text(m["label"]).c_str(),
        m["fixedBase"].get<bool>() ? "fixed" : "free", count("joints", "joint", "joints").c_str(),
        count("degreesOfFreedom", "degree of freedom", "degrees of freedom").c_str(),
        count("equalityConstraints", "equality constraint", "equality constraints").c_str());
    std::printf("mass %s kg, centre of mass at (%s, %s, %s) m\n\n", number(m["mass"]).c_str(),
                number(m["centerOfMass"][0]).c_str(), number(m["centerOfMass"][1]).c_str(),
                number(m["centerOfMass"][2]).c_str());
    std::printf("%5s  %-32s %-10s %10s %10s %10s %10s %12s\n", "index", "link", "joint", "lower",
                "upper", "rate", "torque", "mass");
    std::map<std::string, int> depths;
    for (const Json& link : m["links"]) {
      const std::string label = text(link["label"]);
      const bool isBase = !link.contains("joint");
      const int depth = isBase ? 0 : depths[text(link["parent"])] + 1;
      depths[label] = depth;
      const Json joint = isBase ? Json{{"kind", ""}} : link["joint"];
      const auto limit = [&](const char* name) {
        return isBase ? std::string() : number(joint[name]);
      };
      std::printf("%5s  %-32s %-10s %10s %10s %10s %10s %12s\n",
                  isBase ? "base" : std::to_string(link["index"].get<long>()).c_str(),
                  (std::string(static_cast<std::size_t>(depth), ' ') + label).c_str(),
                  text(joint["kind"]).c_str(), limit("lower").c_str(), limit("upper").c_str(),
                  limit("rate").c_str(), limit("maxTorque").c_str(), number(link["mass"]).c_str());
    }
    std::printf("\n");
  }
  for (const Json& warning : description["warnings"]) {
    std::printf("warning: %s\n", text(warning).c_str());
  }
}

// Passes messages on to standard error while it lives, and counts those that tell of a fault.
class Errors {
 public:
  Errors() {
    Kt::Print::instance().setSink([this](Kt::Print::PrintType type, const std::string& text) {
      std::fputs(text.c_str(), stderr);
      if (type >= Kt::Print::kDiagnostic) ++count_;
    });
  }
  ~Errors() { Kt::Print::instance().setSink({}); }
  Errors(const Errors&) = delete;
  Errors& operator=(const Errors&) = delete;

  int count() const noexcept { return count_; }

 private:
  int count_ = 0;
};

// A system doesn't show them: it has 0 where a file has a negative mass.
void warnAboutNegativeMasses(const std::string& file, Json& warnings) {
  KtXmlReader reader(file);
  for (unsigned event = reader.nextEvent(); event != KtXmlReader::kNone;
       event = reader.nextEvent()) {
    if (event != KtXmlReader::kStart || reader.currentToken().localName() != "mass") continue;
    const int line = reader.lineCount();
    std::string text, wrong;
    std::vector<double> values;
    if (reader.readText(text) && readNumbers(text, " \t\r\n", values, wrong) &&
        values.size() == 1 && values[0] < 0.0) {
      warnings.push_back("line " + std::to_string(line) + ": the mass " + textOf(values[0]) +
                         " is negative and counts as 0");
    }
  }
}

int run(const std::string& file, bool asJson) {
  KtStatedSystem system;
  // Also what can be repaired is damage, such as a list whose count is wrong.
  const Errors errors;
  if (!loadSystem(file, system)) return 1;
  const int status = errors.count() == 0 ? 0 : 1;
  Json description = describe(system);
  warnAboutNegativeMasses(file, description["warnings"]);
  if (asJson) {
    std::printf("%s\n", description.dump(2).c_str());
  } else {
    printTable(description);
  }
  return status;
}

}  // namespace

Json describe(const KtStatedSystem& system) {
  Json result = {{"manipulators", Json::array()}};
  const auto& manipulators = system.system().manipulators();
  for (KtU32 i = 0; i < manipulators.size(); ++i) {
    const KtIndividualManipulator& manipulator = manipulators[i];
    KtManipulatorActiveState active = activeStateOf(system, i);
    Json links = Json::array();
    for (KtU32 k = 0; k <= manipulator.jointDof(); ++k) {
      links.push_back(describeLink(manipulator, k));
    }
    result["manipulators"].push_back(
        {{"label", manipulator.label()},
         {"fixedBase", manipulator.isFixedBase()},
         {"joints", manipulator.jointDof()},
         {"degreesOfFreedom", manipulator.totalDof()},
         {"equalityConstraints", manipulator.stateEqualityConstraints().size()},
         {"mass", totalMass(manipulator)},
         {"centerOfMass", jsonOf(manipulator.getCenterOfMassInSystem(active))},
         {"links", links}});
  }
  result["warnings"] = warningsAbout(system);
  return result;
}

std::vector<std::string> warningsAbout(const KtStatedSystem& system) {
  std::vector<std::string> warnings;
  std::map<std::string, int> manipulatorLabels;
  const auto& manipulators = system.system().manipulators();
  for (KtU32 i = 0; i < manipulators.size(); ++i) {
    const KtIndividualManipulator& manipulator = manipulators[i];
    ++manipulatorLabels[manipulator.label()];
    std::map<std::string, int> labels;
    const auto& q = system.state().positionStates()[i].jointPositions();
    for (KtU32 k = 0; k <= manipulator.jointDof(); ++k) {
      const KtManipulatorLink& link = linkAt(manipulator, k);
      const std::string where = manipulator.label() + ", " + link.label() + ": ";
      ++labels[link.label()];
      warnAboutMass(link, k > 0 || !manipulator.isFixedBase(), where, warnings);
      if (k > 0) warnAboutJoint(link, q[k - 1], where, warnings);
    }
    warnAboutLabels(labels, manipulator.label() + ": ", "links", warnings);
  }
  warnAboutLabels(manipulatorLabels, "", "manipulators", warnings);
  return warnings;
}

void addInspect(CLI::App& app, int& status) {
  CLI::App* command = app.add_subcommand(
      "inspect", "Tells what a stated system is made of, and what looks wrong with it");
  struct Arguments {
    std::string file;
    bool json = false;
  };
  auto arguments = std::make_shared<Arguments>();
  command->add_option("system", arguments->file, "the file of the system")->required();
  command->add_flag("--json", arguments->json, "as a JSON object instead of a table");
  command->callback([arguments, &status] { status = run(arguments->file, arguments->json); });
}
