// Robots of a folder, which the environment variable KT_ROBOT_FILES names, and random ones, are
// imported, saved, read and evaluated. The answers are compared with those of the peers that are
// installed, which read the same URDF files. Ends with status 1 where a difference is too large.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "Evaluate.h"
#include "ImportUrdf.h"
#include "RobotPeers.h"
#include "ktManipulator/ktManipulator.h"

namespace {

namespace fs = std::filesystem;

constexpr double kTolerance = 1e-8;
bool allAgree = true;
std::mt19937_64 generator(20240517);

double uniform(double from = -1.0, double to = 1.0) {
  return std::uniform_real_distribution<double>(from, to)(generator);
}

std::string textOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void append(std::vector<double>& list, const Json& json) {
  if (json.is_number()) list.push_back(json.get<double>());
  for (const Json& value : json) {
    if (json.is_array()) append(list, value);
  }
}

// The answers in the form of the peers' ones.
RobotAnswers ownAnswers(const Json& own, bool freeBase) {
  RobotAnswers answers;
  auto& lists = answers.lists;
  append(lists["mass"], own["mass"]);
  append(lists["gravity"], own["gravityTorques"]);
  append(lists["mass matrix"], own["massMatrix"]);
  append(lists["inverse dynamics"], own["inverseDynamics"]["jointTorques"]);
  append(lists["forward dynamics"], own["forwardDynamics"]["jointAccelerations"]);
  append(lists["centre of mass"], own["centerOfMass"]);
  append(lists["energies"], {own["kineticEnergy"], own["potentialEnergy"]});
  if (freeBase) {
    append(lists["inverse dynamics"], own["inverseDynamics"]["baseForce"]);
    append(lists["forward dynamics"], own["forwardDynamics"]["baseAcceleration"]);
  }
  for (std::size_t i = 1; i < own["links"].size(); ++i) {
    const Json& link = own["links"][i];
    const auto r = link["primaryFrame"]["rotation"].get<std::vector<double>>();
    const KtOrientation turn(r[0], r[1], r[2], r[3]);
    append(lists["positions"], link["primaryFrame"]["translation"]);
    for (const KtVector& axis : {turn.xAxis(), turn.yAxis(), turn.zAxis()}) {
      append(lists["axes"], {axis.x, axis.y, axis.z});
    }
    append(lists["velocities"], link["velocity"]["linear"]);
    append(lists["velocities"], link["velocity"]["angular"]);
  }
  return answers;
}

// The largest difference, by the largest entry.
double differenceOf(const std::vector<double>& a, const std::vector<double>& b) {
  if (a.size() != b.size()) return INFINITY;
  double difference = 0.0, largest = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    difference = std::fmax(difference, std::abs(a[i] - b[i]));
    largest = std::fmax(largest, std::abs(b[i]));
  }
  return largest > 0.0 ? difference / largest : difference;
}

void compare(const char* peer, const RobotAnswers& answers, const RobotAnswers& own) {
  if (!answers.whyNot.empty()) {
    std::printf("  %s: not compared, %s\n", peer, answers.whyNot.c_str());
    return;
  }
  std::string worst;
  double largest = 0.0;
  for (const auto& [what, list] : answers.lists) {
    // A peer tells what pushes a free base; here that isn't gravity's part.
    std::vector<double> ours = own.lists.at(what), theirs = list;
    if (what == "gravity") theirs.resize(ours.size());
    const double difference = differenceOf(ours, theirs);
    if (worst.empty() || difference > largest) worst = what, largest = difference;
  }
  const bool agrees = largest < kTolerance;
  allAgree = allAgree && agrees;
  std::printf("  %s: %zu quantities, largest difference %.1e (%s)%s\n", peer, answers.lists.size(),
              largest, worst.c_str(), agrees ? "" : ", TOO LARGE");
}

void check(const fs::path& file, bool freeBase) {
  std::printf("%s, %s base\n", file.filename().c_str(), freeBase ? "free" : "fixed");
  const ImportResult imported = importUrdf(textOf(file), {freeBase, ""});
  KtStatedSystem system;
  Json result;
  std::string error = "it can't be imported";
  bool good =
      imported.good && KtXmlReader::readString(KtXmlWriter::writeString(imported.system), system);
  if (good) {
    const KtIndividualManipulator& robot = system.system().manipulators()[0];
    RobotQuestion question{file, freeBase, {}, {}, {}, {}, {}};
    for (KtU32 i = 0; i < robot.jointDof(); ++i) {
      const KtJointActuator& actuator = robot.linkByIndex(i)->jointActuator();
      question.links.push_back(robot.linkByIndex(i)->label());
      question.q.push_back(
          uniform(std::fmax(actuator.lowerLimit(), -3.0), std::fmin(actuator.upperLimit(), 3.0)));
      question.qd.push_back(uniform());
      question.qdd.push_back(uniform());
      question.tau.push_back(uniform(-10.0, 10.0));
    }
    EvaluateOptions options;
    options.q = question.q;
    options.qd = question.qd;
    options.qdd = question.qdd;
    options.tau = question.tau;
    good = evaluate(system, options, result, error);
    if (good) {
      const RobotAnswers own = ownAnswers(result["manipulators"][0], freeBase);
#ifdef KT_BENCH_KDL
      compare("KDL", askKdl(question), own);
#endif
#ifdef KT_BENCH_MUJOCO
      compare("MuJoCo", askMujoco(question), own);
#endif
    }
  }
  if (good) return;
  std::printf("  %s\n", error.c_str());
  allAgree = false;
}

// A robot of links without order, on joints of all kinds with any place and axis.
std::string randomRobot(int links) {
  std::ostringstream text;
  text.precision(17);
  const auto numbers = [&text](const char* name, double size) {
    text << ' ' << name << "='" << uniform() * size << ' ' << uniform() * size << ' '
         << uniform() * size << "'";
  };
  const auto origin = [&] {
    text << "<origin";
    numbers("xyz", 0.5);
    numbers("rpy", 3.0);
    text << "/>";
  };
  const auto link = [&](int i) {
    text << "<link name='l" << i << "'><inertial>";
    origin();
    // A box, turned by the origin.
    const double x = uniform(0.1, 1.0), y = uniform(0.1, 1.0), z = uniform(0.1, 1.0),
                 m = uniform(0.5, 5.0);
    text << "<mass value='" << m << "'/><inertia ixx='" << m * (y + z) << "' iyy='" << m * (z + x)
         << "' izz='" << m * (x + y) << "' ixy='0' ixz='0' iyz='0'/></inertial></link>\n";
  };
  text << "<robot name='random'>\n";
  link(0);
  for (int i = 1; i < links; ++i) {
    link(i);
    const char* types[] = {"revolute", "continuous", "prismatic", "fixed"};
    const std::string type = types[static_cast<int>(uniform(0.0, 3.999))];
    text << "<joint name='j" << i << "' type='" << type << "'><child link='l" << i
         << "'/><parent link='l" << static_cast<int>(uniform(0.0, 0.999) * i) << "'/>";
    origin();
    text << "<axis";
    numbers("xyz", 2.0);
    text << "/>";
    if (type != "fixed") text << "<limit lower='-3' upper='3' effort='1' velocity='1'/>";
    text << "</joint>\n";
  }
  text << "</robot>\n";
  return text.str();
}

}  // namespace

int main() {
  std::vector<fs::path> files;
  const char* folder = std::getenv("KT_ROBOT_FILES");
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(folder != nullptr ? folder : "", none)) {
    if (entry.path().extension() == ".urdf") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  const fs::path random = fs::temp_directory_path() / "kt-random-robot.urdf";
  for (int links = 2; links < 14; ++links) {
    std::ofstream(random) << randomRobot(links);
    for (const bool freeBase : {false, true}) check(random, freeBase);
  }
  fs::remove(random);
  for (const fs::path& file : files) {
    for (const bool freeBase : {false, true}) check(file, freeBase);
  }
  return allAgree ? 0 : 1;
}
