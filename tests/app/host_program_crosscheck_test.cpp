// Whole runs of the program on shoots with a known truth, some of them spoiled.

#include <algorithm>
#include <cmath>
#include <functional>
#include <sstream>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "host/result/result_file.h"
#include "host_program.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class CrosscheckShoot : public testing::Test {
 protected:
  // Also over rows that the test has changed.
  void Simulate(std::vector<std::string> more) {
    std::vector<std::string> arguments = {"simulate", "shoot",   "--photographs", "40",
                                          "--image",  "640x360", "--force"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    ASSERT_EQ(RunHostProgram(folder.Path(), arguments).status, 0);
  }

  // With noise as good trackers have it.
  void SimulateNoisy(std::vector<std::string> more) {
    more.insert(more.end(), {"--tracker-noise-mm", "0.3", "--tracker-noise-degrees", "0.05"});
    Simulate(more);
  }

  ProgramRun Calibrate(std::vector<std::string> more = {}) {
    std::vector<std::string> arguments = {"calibrate", "--config", "shoot/shoot.toml",
                                          "--no-report"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunHostProgram(folder.Path(), arguments);
  }

  // Takes a line out of the configuration, or changes it.
  void Configure(const std::string& key, const std::string& line) {
    std::istringstream config(test::ReadFile(folder.File("shoot/shoot.toml")));
    std::string changed;
    for (std::string old; std::getline(config, old);) {
      changed += (old.rfind(key + " ", 0) == 0 ? line : old) + '\n';
    }
    test::WriteFile(folder.File("shoot/shoot.toml"), changed);
  }

  void LeaveOutTheMounting() {
    Configure("chart-rotation", "");
    Configure("chart-translation", "");
  }

  // Rewrites each row of the data file, split into its fields.
  using Fields = std::vector<std::string>;
  void ChangeRows(const std::function<void(Fields&)>& change) {
    std::istringstream data(test::ReadFile(folder.File("shoot/tracker_data.csv")));
    std::string changed;
    for (std::string line; std::getline(data, line);) {
      Fields fields;
      std::istringstream row(line);
      for (std::string field; std::getline(row, field, ',');) {
        fields.push_back(field);
      }
      if (line.front() != 'T') {
        change(fields);
      }
      for (std::size_t i = 0; i < fields.size(); ++i) {
        changed += (i == 0 ? "" : ",") + fields[i];
      }
      changed += '\n';
    }
    test::WriteFile(folder.File("shoot/tracker_data.csv"), changed);
  }

  Json Result() const { return Json::parse(test::ReadFile(folder.File("shoot/result.json"))); }

  host::TransformDifference OffTheTruth(const Json& result) const {
    const Json truth = Json::parse(test::ReadFile(folder.File("shoot/truth.json")));
    return host::Difference(result["transformCamTc"], truth["transformCamTc"]);
  }

  void ExpectCloseToTheTruth() {
    const auto off = OffTheTruth(Result());
    EXPECT_LT(off.millimetres, 1);
    EXPECT_LT(off.degrees, 0.1);
  }

  // A value of the finding with that id in the result; null if there is no such finding.
  Json ValueOf(const std::string& id, const std::string& name) const {
    const Json result = Result();
    for (const Json& finding : result["findings"]) {
      if (finding["id"] == id) {
        return finding.value(name, Json());
      }
    }
    return nullptr;
  }

  test::TemporaryFolder folder;
};

TEST_F(CrosscheckShoot, IsAgreedWithWhereAllIsWell) {
  SimulateNoisy({});
  const ProgramRun run = Calibrate();
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_EQ(run.error, "");
  EXPECT_THAT(run.out, AllOf(HasSubstr("\nCross-check: "), Not(HasSubstr("\nFindings\n"))));
  EXPECT_TRUE(Result()["firstRun"].is_null());
  EXPECT_EQ(Result()["verdict"]["level"], "good");
  EXPECT_THAT(run.out, HasSubstr("\n      trackedcam export unreal --result "));
  ExpectCloseToTheTruth();
}

TEST_F(CrosscheckShoot, IsNoSuccessWithAWrongMounting) {
  SimulateNoisy({"--mounting-error-mm", "27", "--mounting-error-degrees", "1"});
  const ProgramRun run = Calibrate();
  EXPECT_EQ(run.status, 3);
  EXPECT_EQ(run.error.rfind("trackedcam: error: ", 0), 0U) << run.error;
  EXPECT_EQ(run.error.find('\n'), run.error.size() - 1) << run.error;
  EXPECT_THAT(run.out,
              AllOf(HasSubstr("\nNext: "),
                    HasSubstr("\n      trackedcam calibrate --config shoot/shoot.toml --no-report "
                              "--refine-mounting\n")));
  // The library's own code says nothing of it.
  EXPECT_THAT(Result()["code"].get<int>(), testing::AnyOf(0, 99));
  EXPECT_EQ(Result()["verdict"]["level"], "wrong");
  EXPECT_NEAR(Result()["crossCheck"]["nominalMounting"]["offMm"], 27, 2);
  EXPECT_NEAR(Result()["crossCheck"]["nominalMounting"]["offDegrees"], 1, 0.1);
  EXPECT_NEAR(Result()["crossCheck"]["library"]["offMm"], OffTheTruth(Result()).millimetres, 1);
}

TEST_F(CrosscheckShoot, ExportsNoWrongResult) {
  SimulateNoisy({"--mounting-error-mm", "27", "--mounting-error-degrees", "1"});
  const ProgramRun refused = Calibrate({"--export", "unity"});
  EXPECT_EQ(refused.status, 3);
  EXPECT_THAT(refused.error, HasSubstr("trackedcam: error: The result is not exported. "));
  EXPECT_EQ(refused.out.find("localPosition"), std::string::npos);
  EXPECT_EQ(Result()["exports"], Json::object());
  const ProgramRun exported = Calibrate({"--export", "unity", "--even-if-wrong"});
  EXPECT_EQ(exported.status, 3);
  EXPECT_EQ(exported.error.find("not exported"), std::string::npos);
  EXPECT_THAT(exported.out, HasSubstr("localPosition"));
  EXPECT_EQ(Result()["exports"]["unity"]["code"], 0);
}

TEST_F(CrosscheckShoot, IsRefinedWhereAsked) {
  SimulateNoisy({"--mounting-error-mm", "27", "--mounting-error-degrees", "1"});
  const ProgramRun run = Calibrate({"--refine-mounting"});
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_THAT(run.out, AllOf(StartsWith("First run, with the stated mounting\n"),
                             HasSubstr("\nSecond run, "), HasSubstr("\n  --chart-rotation=")));
  const Json first = Result()["firstRun"];
  EXPECT_GT(OffTheTruth(first).millimetres, 15);
  EXPECT_EQ(first["verdict"]["level"], "wrong");
  ExpectCloseToTheTruth();
}

TEST_F(CrosscheckShoot, IsNotRefinedWithoutNeed) {
  SimulateNoisy({});
  EXPECT_EQ(Calibrate({"--refine-mounting"}).status, 0);
  EXPECT_TRUE(Result()["firstRun"].is_null());
}

TEST_F(CrosscheckShoot, NeedsNoMounting) {
  SimulateNoisy({});
  LeaveOutTheMounting();
  const ProgramRun run = Calibrate();
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_THAT(run.out, AllOf(StartsWith("First run, without a mounting\n"),
                             HasSubstr("\n  --chart-rotation=")));
  EXPECT_FALSE(Result()["mountingIsStated"]);
  EXPECT_TRUE(Result()["firstRun"]["inputs"]["chartRotationDegrees"].is_null());
  EXPECT_FALSE(Result()["inputs"]["chartRotationDegrees"].is_null());
  ExpectCloseToTheTruth();
}

TEST_F(CrosscheckShoot, IsRefinedWithoutThePhotographsOfASlip) {
  SimulateNoisy({"--mounting-error-mm", "27", "--mounting-error-degrees", "1", "--outliers", "4"});
  const ProgramRun run = Calibrate({"--refine-mounting"});
  EXPECT_EQ(run.status, 0) << run.error;
  const auto photographs = Result()["photographs"];
  EXPECT_EQ(photographs.size(), 40U);
  std::size_t leftOut = 0;
  for (const auto& photograph : photographs) {
    leftOut += photograph["state"] == "leftOutByCrossCheck" ? 1 : 0;
  }
  EXPECT_EQ(leftOut, 4U);
  EXPECT_EQ(Result()["firstRun"]["photographs"].size(), 40U);
  ExpectCloseToTheTruth();
}

// The command that the program prints leaves them out, next to those of the earlier call.
TEST_F(CrosscheckShoot, PrintsTheCommandWithoutThePhotographsOfASlip) {
  SimulateNoisy({"--outliers", "2"});
  EXPECT_NE(Calibrate({"--exclude", "img_000"}).status, 2);
  const std::string command = Result()["verdict"]["commands"].back();
  const std::string begin =
      "trackedcam calibrate --config shoot/shoot.toml --no-report --exclude=img_000,";
  ASSERT_THAT(command, StartsWith(begin));
  const ProgramRun run = Calibrate({command.substr(command.rfind(' ') + 1)});
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_THAT(run.out, AllOf(HasSubstr(" 3 left out by the user"),
                             HasSubstr("img_000.jpg (left out by the user)\n")));
  EXPECT_EQ(Result()["photographs"].size(), 40U);
  EXPECT_EQ(Result()["inputs"]["exclude"].size(), 3U);
  ExpectCloseToTheTruth();
}

TEST_F(CrosscheckShoot, RefusesToLeaveOutWhatIsNotThere) {
  Simulate({});
  const ProgramRun run = Calibrate({"--exclude", "img_999"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.error, HasSubstr("cannot leave out img_999"));
  EXPECT_FALSE(fs::exists(folder.Path() / "shoot" / "log"));
  EXPECT_EQ(Calibrate({"--exclude", "img_001, ,img_002"}).status, 2);
}

TEST_F(CrosscheckShoot, OfALogIsTheSame) {
  SimulateNoisy({"--mounting-error-mm", "27", "--mounting-error-degrees", "1"});
  Calibrate();
  const ProgramRun run = RunHostProgram(folder.Path(), {"crosscheck", "--log", Result()["log"],
                                                        "--config", "shoot/shoot.toml", "--json"});
  EXPECT_EQ(run.status, 3) << run.error;
  EXPECT_EQ(Json::parse(run.out)["crossCheck"], Result()["crossCheck"]);
  EXPECT_EQ(Json::parse(run.out)["verdict"]["level"], "wrong");

  const ProgramRun summary = RunHostProgram(
      folder.Path(), {"crosscheck", "--log", Result()["log"], "--config", "shoot/shoot.toml"});
  EXPECT_THAT(summary.out, AllOf(HasSubstr("\n  the stated mounting differs by "),
                                 HasSubstr("\n  --chart-rotation=")));
  const ProgramRun open = RunHostProgram(folder.Path(), {"crosscheck", "--log", Result()["log"]});
  EXPECT_EQ(open.status, 3);
  EXPECT_THAT(open.out, AllOf(HasSubstr("\n  the result differs by "),
                              Not(HasSubstr("the stated mounting differs by"))));
}

TEST_F(CrosscheckShoot, NeedsALog) {
  test::WriteFile(folder.File("log.txt"), "no log\n");
  const ProgramRun run = RunHostProgram(folder.Path(), {"crosscheck", "--log", "log.txt"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.error, HasSubstr("log.txt is not the log of a calibration"));
}

TEST_F(CrosscheckShoot, NamesTheReadingThatFits) {
  Simulate({});
  ChangeRows([](Fields& fields) {
    std::swap_ranges(fields.begin() + 2, fields.begin() + 9, fields.begin() + 9);
  });
  EXPECT_NE(Calibrate().status, 0);
  EXPECT_EQ(ValueOf("reading", "reading"), "trackersExchanged");
  EXPECT_EQ(Result()["verdict"]["commands"], Json::array());  // no option mends it
}

// The command that the program prints mends it.
TEST_F(CrosscheckShoot, PrintsTheOptionThatReadsTheRowsRightly) {
  const auto expectMended = [&](const std::string& reading, const std::string& option) {
    SCOPED_TRACE(reading);
    EXPECT_NE(Calibrate().status, 0);
    EXPECT_EQ(ValueOf("reading", "reading"), reading);
    EXPECT_EQ(Result()["verdict"]["commands"][0],
              "trackedcam calibrate --config shoot/shoot.toml --no-report " + option);
    const ProgramRun run = Calibrate({option});
    EXPECT_EQ(run.status, 0) << run.error;
    ExpectCloseToTheTruth();
  };
  const auto toXyzw = [](Fields& fields) {
    std::rotate(fields.begin() + 5, fields.begin() + 6, fields.begin() + 9);
    std::rotate(fields.begin() + 12, fields.begin() + 13, fields.begin() + 16);
  };
  SimulateNoisy({});
  ChangeRows(toXyzw);
  expectMended("orderXyzw", "--quaternion-order=xyzw");

  SimulateNoisy({"--inverted-quaternions"});
  Configure("invert-tracker-quaternions", "invert-tracker-quaternions = false");
  expectMended("quaternionsInverted", "--invert-tracker-quaternions");

  SimulateNoisy({});
  ChangeRows([](Fields& fields) {
    for (const std::size_t field : {2, 3, 4, 9, 10, 11}) {
      fields[field] = std::to_string(std::stod(fields[field]) / 0.0254);
    }
  });
  expectMended("inches", "--tracker-units=in");

  // A component of Unreal has X, Y, Z = z, -x, y of the reported axes, in centimetres.
  SimulateNoisy({});
  ChangeRows([&](Fields& fields) {
    for (const std::size_t first : {2, 9}) {
      const auto number = [&](std::size_t i) { return std::stod(fields[first + i]); };
      const std::vector<double> engine = {100 * number(2), -100 * number(0), 100 * number(1),
                                          number(3),       -number(6),       number(4),
                                          -number(5)};
      for (std::size_t i = 0; i < engine.size(); ++i) {
        fields[first + i] = std::to_string(engine[i]);
      }
    }
  });
  expectMended("engineCentimetres", "--tracker-axes=unreal");
  ChangeRows(toXyzw);
  const std::string option = "--tracker-axes=unreal";
  EXPECT_NE(Calibrate({option}).status, 0);
  EXPECT_EQ(ValueOf("reading", "reading"), "orderXyzw");
  EXPECT_EQ(Calibrate({option, "--quaternion-order=xyzw"}).status, 0);
  EXPECT_EQ(Result()["inputs"]["quaternionOrder"], "xyzw");
  EXPECT_EQ(Result()["inputs"]["trackerAxes"], "unreal");
  EXPECT_EQ(Result()["inputs"]["trackerUnits"], "cm");
  ExpectCloseToTheTruth();
}

TEST_F(CrosscheckShoot, NamesTheLikelyMistakeOfTheMounting) {
  Simulate({});
  const std::string config = test::ReadFile(folder.File("shoot/shoot.toml"));
  const std::string key = "chart-rotation = \"";
  const std::size_t begin = config.find(key) + key.size();
  const std::string angles = config.substr(begin, config.find('"', begin) - begin);
  // Another sign of the first angle.
  const std::string other = angles.front() == '-' ? angles.substr(1) : '-' + angles;
  Configure("chart-rotation", key + other + '"');
  EXPECT_NE(Calibrate().status, 0);
  EXPECT_EQ(ValueOf("mountingOff", "likelyMistake"), "angleSigns");
}

}  // namespace
}  // namespace trackedcam::app
