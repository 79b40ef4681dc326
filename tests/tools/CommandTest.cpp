// The tool as a user calls it: statuses, messages and files.
#include <sys/wait.h>

#include "Support.h"
#include "support/Testing.h"

namespace {

struct Outcome {
  int status = -1;
  std::string text;  // of both streams
};

Outcome run(const std::string& arguments) {
  Outcome outcome;
  FILE* pipe = popen(("exec 2>&1; " KTMANIP " " + arguments).c_str(), "r");
  if (pipe == nullptr) return outcome;
  char buffer[4096];
  while (const std::size_t n = fread(buffer, 1, sizeof buffer, pipe))
    outcome.text.append(buffer, n);
  outcome.status = WEXITSTATUS(pclose(pipe));
  return outcome;
}

std::string fileOf(const char* name, const char* text) {
  const std::string file = std::string(KT_TEST_OUTPUT) + '/' + name;
  std::ofstream(file) << text;
  return file;
}

TEST(Command, ImportsInspectsAndEvaluates) {
  const std::string urdf =
      fileOf("slide-test.urdf",
             "<robot name='r'>\n<link name='rail'/>\n<link name='cart'><inertial><mass value='4'/>"
             "<inertia ixx='1' iyy='1' izz='1' ixy='0' ixz='0' iyz='0'/></inertial></link>\n"
             "<joint name='j' type='prismatic'><parent link='rail'/><child link='cart'/>"
             "<axis xyz='0 0 1'/><limit lower='-1' upper='1' effort='9' velocity='2'/></joint>\n"
             "<gazebo/><transmission name='a'/>\n<transmission name='b'/></robot>");
  const std::string xml = std::string(KT_TEST_OUTPUT) + "/slide-test.xml";
  const std::string names = urdf + " -o " + xml;
  std::remove(xml.c_str());

  const Outcome strict = run("import --strict " + names);
  EXPECT_NE(strict.status, 0);
  EXPECT_FALSE(std::ifstream(xml).good());
  const Outcome import = run("import " + names);
  EXPECT_EQ(import.status, 0);
  const std::string first =
      urdf + ":5: not taken over: <gazebo>\n" + urdf + ":5: not taken over: <transmission> \"a\"";
  EXPECT_EQ(import.text, first + ", and 1 more of the kind up to line 6\n" + urdf +
                             ": --verbose lists each of them\n");
  EXPECT_EQ(run("import --verbose " + names).text,
            first + "\n" + urdf + ":6: not taken over: <transmission> \"b\"\n");

  const Outcome inspect = run("inspect --json " + xml);
  EXPECT_EQ(inspect.status, 0);
  const Json cart = Json::parse(inspect.text)["manipulators"][0]["links"][1];
  EXPECT_EQ(cart["joint"]["maxTorque"], 9.0);
  EXPECT_THAT(run("inspect " + xml).text, HasSubstr("rail: fixed base, 1 joint,"));

  const Outcome evaluate = run("evaluate --json --q=' -0.25' --gravity 0 0 -2 " + xml);
  EXPECT_EQ(evaluate.status, 0);
  const Json m = Json::parse(evaluate.text)["manipulators"][0];
  EXPECT_EQ(m["gravityTorques"], Json::array({-8.0}));
  EXPECT_EQ(m["q"], Json::array({-0.25}));
  EXPECT_EQ(run("evaluate " + xml).status, 0);

  const std::string end = std::string(KT_TEST_OUTPUT) + "/slide-end.xml";
  const Outcome simulate =
      run("simulate --duration 0.5 --step 0.001 --gravity 0 0 -2 --final " + end + " " + xml);
  EXPECT_EQ(simulate.status, 0);
  EXPECT_THAT(simulate.text, HasSubstr("500 steps, 0.5 s simulated"));
  EXPECT_THAT(simulate.text, HasSubstr("nothing was hit"));
  const Outcome moved = run("evaluate --json " + end);
  EXPECT_NEAR(Json::parse(moved.text)["manipulators"][0]["qd"][0].get<double>(), 1.0, 1e-12);
}

// Small faults put into a good file by hand.
TEST(Command, InspectNamesWhatIsDamaged) {
  const std::string good = textOf(KT_SOURCE_FOLDER "/examples/models/two-link-arm.xml");
  const struct {
    const char *original, *damage, *finding;
    int status;
  } cases[] = {
      {"<mass>4</mass>", "<mass> -4 </mass>", "is negative and counts as 0", 0},
      {"<childLinks count=\"1\">", "<childLinks count=\"3\">", "value -- 3, actual -- 1", 1},
      {"<identifier>forearm<", "<identifier>upper arm<", "2 links have the label \"upper arm\"", 0},
      {"<lowerLimit>-0.5<", "<lowerLimit>3<", "the lower limit 3.0 lies above the upper one", 0},
      {"<mass>4</mass>", "<mass>four</mass>", "damaged-test.xml:", 1},
  };
  for (const auto& [original, damage, finding, status] : cases) {
    std::string text = good;
    ASSERT_NE(text.find(original), std::string::npos) << original;
    text.replace(text.find(original), std::string(original).size(), damage);
    const Outcome outcome = run("inspect " + fileOf("damaged-test.xml", text.c_str()));
    EXPECT_EQ(outcome.status, status) << damage;
    EXPECT_THAT(outcome.text, HasSubstr(finding));
  }
}

TEST(Command, FailsWithAReason) {
  const std::string good = KT_SOURCE_FOLDER "/examples/models/two-link-arm.xml";
  const std::string bad = fileOf("bad-test.urdf", "<robot name='r'>\n<link/></robot>");
  const std::string torque = fileOf("bad-test.csv", "time,forearm\n0,1\n1,x\n");
  const std::string simulate = "simulate " + good + " --duration 1 --step ";
  const struct {
    std::string arguments, reason;
  } cases[] = {
      {"", "subcommand"},
      {"transmogrify", "not expected: transmogrify"},
      {"import " + bad, "--output"},
      {"import " + bad + " -o /dev/null", bad + ":2: <link> has no name"},
      {"import no-file.urdf -o /dev/null", "no-file.urdf: can't be read"},
      {"import " + bad + " -o " + bad, bad + ": would be written over"},
      {"inspect no-file.xml", "no-file.xml"},
      {"inspect " + good + " >/dev/full", "output can't be written"},
      {"inspect " + bad, bad + ":1"},
      {"evaluate " + good + " --q=1", "--q has 1 values, but two-link arm has 2 joints"},
      {"evaluate " + good + " --tau=1,two", "--tau: \"two\" is not a number"},
      {"evaluate " + good + " --manipulator 1", "counted from 0"},
      {"evaluate " + good + " --qd=1e200,0", "is not finite"},
      {"simulate " + good + " --step 1", "--duration"},
      {simulate + "0", good + ": a step of 0 s: it has to be more than 0"},
      {simulate + "1e-13", "more than 10^12 steps"},
      {"simulate " + good + " --step 1 --duration -1",
       "a duration of -1 s: it has to be 0 or more"},
      {simulate + "0.1 --method guess", "--method"},
      {simulate + "0.1 --torque no-file.csv", "no-file.csv: can't be read"},
      {simulate + "0.1 --torque " + torque, torque + ":3: \"x\" is not a number"},
      {simulate + "0.1 --csv /no-folder/a.csv", "/no-folder/a.csv: can't be written"},
      {simulate + "0.1 --csv /dev/full", "/dev/full: not everything could be written"},
      {simulate + "0.1 --csv " + good, good + ": would be written over"},
      {simulate + "0.1 --final /no-folder/a.xml", "/no-folder/a.xml: can't be written"},
      {simulate + "0.1 --final " + torque + " --torque " + torque, torque + ": would be written"},
      {simulate + "0.1 --final ./no-file --csv no-file", "can't take both --csv and --final"},
      {simulate + "0.1 --final /dev/full", "/dev/full: the document can't be written"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = run(c.arguments);
    EXPECT_NE(outcome.status, 0) << c.arguments;
    EXPECT_THAT(outcome.text, HasSubstr(c.reason)) << c.arguments;
  }
  for (const char* help :
       {"--help", "import --help", "inspect --help", "evaluate --help", "simulate --help"}) {
    EXPECT_EQ(run(help).status, 0) << help;
  }
}

}  // namespace
