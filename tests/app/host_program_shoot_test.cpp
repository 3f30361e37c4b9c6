#include <cmath>
#include <regex>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "host_program.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class HostProgramShoot : public testing::Test {
 protected:
  ProgramRun Run(const std::vector<std::string>& arguments) {
    return RunHostProgram(folder.Path(), arguments);
  }

  ProgramRun Simulate(std::vector<std::string> more = {}) {
    std::vector<std::string> arguments = {"simulate", "shoot",   "--photographs",
                                          "20",       "--image", "640x360"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Run(arguments);
  }

  ProgramRun Calibrate(std::vector<std::string> more = {}) {
    std::vector<std::string> arguments = {"calibrate", "--config", "shoot/shoot.toml"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Run(arguments);
  }

  Json Read(const std::string& name) const {
    return Json::parse(test::ReadFile(folder.File("shoot/" + name)));
  }

  // Of each photograph that is used, and of no other one.
  static void ExpectImages(const Json& result) {
    std::size_t used = 0;
    for (const Json& photograph : result["photographs"]) {
      const Json& image = photograph["reprojectedImage"];
      ASSERT_EQ(image.is_string(), photograph["state"] == "used") << photograph["name"];
      if (image.is_string()) {
        ++used;
        EXPECT_TRUE(fs::is_regular_file(fs::u8path(image.get<std::string>()))) << image;
      }
    }
    EXPECT_GT(used, 0U);
  }

  test::TemporaryFolder folder;
};

TEST_F(HostProgramShoot, SimulateNamesTheNextCommand) {
  const ProgramRun run = Simulate();
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.error, "");
  EXPECT_THAT(run.out, AllOf(HasSubstr("20 photographs"),
                             HasSubstr("trackedcam calibrate --config " +
                                       (fs::path("shoot") / "shoot.toml").u8string() + "\n")));
}

TEST_F(HostProgramShoot, SimulateMakesWhatTheCalibrationDoesNotModel) {
  const std::vector<std::string> chart = {"--print-stretch", "0.005", "--chart-bow-mm", "2"};
  const std::vector<std::string> lens = {"--tangential=0.001,-0.0005", "--k3", "0.25"};
  const std::vector<std::string> trackers = {"--noise-correlation",
                                             "0.5",
                                             "--tracker-scale",
                                             "1.005",
                                             "--volume-bend-mm",
                                             "3",
                                             "--pose-error-mm",
                                             "0.25",
                                             "--delay-ms",
                                             "20",
                                             "--exposure-ms",
                                             "5",
                                             "--tremor",
                                             "40",
                                             "--sag-mm",
                                             "1",
                                             "--pose-error-degrees",
                                             "0.125",
                                             "--loose-mm",
                                             "2",
                                             "--frozen-rows",
                                             "4",
                                             "--held-poses",
                                             "5",
                                             "--turntable",
                                             "--repeated-rows"};
  std::vector<std::string> all = chart;
  all.insert(all.end(), lens.begin(), lens.end());
  all.insert(all.end(), trackers.begin(), trackers.end());
  const ProgramRun run = Simulate(all);
  EXPECT_EQ(run.status, 0) << run.error;
  const Json truth = Read("truth.json");
  EXPECT_EQ(truth["flaws"], Json::parse(R"({
    "printStretch": 0.005, "chartBowMetres": 0.002, "noiseCorrelation": 0.5, "trackerScale": 1.005,
    "volumeBendMm": 3, "poseErrorMm": 0.25, "poseErrorDegrees": 0.125, "delayMs": 20, "exposureMs": 5,
    "tremorMmPerSecond": 40, "sagMm": 1,
    "looseMm": 2, "frozenRows": 4, "heldPoses": 5, "repeatedRows": true, "turntable": true})"));
  EXPECT_EQ(truth["frozen"].size(), 4U);
  // Of the default lens k1 and k2 remain.
  EXPECT_EQ(truth["distortion"], Json({-0.12, 0.05, 0.001, -0.0005, 0.25}));
}

TEST_F(HostProgramShoot, SimulateAddsToAStatedLens) {
  Simulate({"--k3", "0.5", "--lens", "600,601,320,180,-0.1,0.02"});
  const Json truth = Read("truth.json");
  EXPECT_EQ(truth["lensPixels"], Json({{"fx", 600}, {"fy", 601}, {"cx", 320}, {"cy", 180}}));
  EXPECT_EQ(truth["distortion"], Json({-0.1, 0.02, 0, 0, 0.5}));
}

TEST_F(HostProgramShoot, IsCalibratedThroughItsConfigurationFile) {
  Simulate({"--missing", "1", "--without-chart", "1"});
  const ProgramRun run = Calibrate();
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_EQ(run.error, "");
  EXPECT_THAT(run.out,
              AllOf(HasSubstr("found        truth"), HasSubstr("\n  differs from the truth by "),
                    HasSubstr("(missing or not an image)"), HasSubstr("(board not found)"),
                    HasSubstr("\nResult: "), HasSubstr("\nTime: library ")));

  const Json result = Read("result.json");
  const Json truth = Read("truth.json");
  EXPECT_EQ(result["code"], 0);
  for (const char* part : {"library", "crossCheck", "page"}) {
    EXPECT_GT(result["seconds"][part], 0) << part;
  }
  EXPECT_EQ(result["imageSize"], truth["imageSize"]);
  EXPECT_NEAR(result["normFocal"][0], truth["normFocal"][0].get<double>(), 0.005);
  EXPECT_NEAR(result["normCenter"][1], truth["normCenter"][1].get<double>(), 0.005);
  for (const int i : {3, 7, 11}) {
    EXPECT_NEAR(result["transformCamTc"][i], truth["transformCamTc"][i].get<double>(), 0.002);
  }
  EXPECT_EQ(result["photographs"].size(), 20U);
  EXPECT_LT(result["reprojectionErrorPixels"], 1);
}

TEST_F(HostProgramShoot, LeavesALogAndImages) {
  Simulate();
  Calibrate();
  const Json result = Read("result.json");
  EXPECT_THAT(test::ReadFile(result["log"]),
              HasSubstr("Camera and Tracker Calibration successful."));
  ExpectImages(result);
}

TEST_F(HostProgramShoot, ShowsTheLinesOfTheLogWithVerbose) {
  Simulate();
  EXPECT_THAT(Calibrate().out, Not(HasSubstr("Camera Tracker Calibration start.")));
  EXPECT_THAT(Calibrate({"--verbose"}).out,
              AllOf(HasSubstr("\tCamera Tracker Calibration start.\n"), HasSubstr("str_line:"),
                    HasSubstr("\nNext: ")));
}

TEST_F(HostProgramShoot, CanBeMoved) {
  Simulate();
  fs::create_directory(folder.Path() / "archive");
  fs::rename(folder.Path() / "shoot", folder.Path() / "archive" / "shoot #2, day");
  const ProgramRun run = Run({"calibrate", "--config", "archive/shoot #2, day/shoot.toml"});
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_TRUE(fs::is_regular_file(folder.Path() / "archive" / "shoot #2, day" / "result.json"));
}

TEST_F(HostProgramShoot, TakesNamesOfAnyLanguage) {
  ASSERT_EQ(Run({"simulate", "撮影é", "--photographs", "20", "--image", "640x360"}).status, 0);
  const ProgramRun run = Run({"calibrate", "--config", "撮影é/shoot.toml", "--log-folder", "記録é",
                              "--result", "résultat_結果.json"});
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_THAT(run.out, HasSubstr("résultat_結果.json"));
  const Json result = Json::parse(test::ReadFile(folder.File("résultat_結果.json")));
  ExpectImages(result);
}

TEST_F(HostProgramShoot, HasPhotographsBelowTheWorkingFolder) {
  Simulate();
  fs::create_directory(folder.Path() / "elsewhere");
  fs::rename(folder.Path() / "shoot" / "photos", folder.Path() / "elsewhere" / "photos");
  EXPECT_EQ(Calibrate().status, 1);
  const Json result = Read("result.json");
  for (const Json& photograph : result["photographs"]) {
    EXPECT_EQ(photograph["state"], "notLoaded");
  }
  EXPECT_EQ(Calibrate({"--working-folder", "elsewhere"}).status, 0);
}

// The run's folder holds what the library was given.
TEST_F(HostProgramShoot, IsCalibratedAgainFromItsRunFolder) {
  Simulate({"--tracker-noise-mm", "0.2"});
  EXPECT_EQ(Calibrate().status, 0);
  const Json first = Read("result.json");
  const fs::path run = fs::u8path(first["log"].get<std::string>()).parent_path();
  fs::remove(folder.Path() / "shoot" / "tracker_data.csv");
  const ProgramRun again = Run({"calibrate", "--config", (run / "calibrate.toml").u8string(),
                                "--result", (run / "again.json").u8string()});
  EXPECT_EQ(again.status, 0) << again.error;
  const Json second = Json::parse(test::ReadFile((run / "again.json").u8string()));
  EXPECT_EQ(second["transformCamTc"], first["transformCamTc"]);
  EXPECT_EQ(second["normFocal"], first["normFocal"]);
}

TEST_F(HostProgramShoot, IsExportedToEngines) {
  Simulate();
  const ProgramRun run = Calibrate({"--export", "ue5,aximmetry"});
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_THAT(run.out, AllOf(HasSubstr("\nUnreal Engine 5, right-handed\n"),
                             HasSubstr("\nAximmetry, left-handed\n")));
  const Json exports = Read("result.json")["exports"];
  ASSERT_EQ(exports.size(), 2U);

  // The same values as from the command export.
  for (const auto& [engine, expected] : exports.items()) {
    const ProgramRun alone = Run({"export", engine, "--result", "shoot/result.json", "--json"});
    EXPECT_EQ(alone.status, 0) << alone.error;
    const Json values = Json::parse(alone.out);
    for (const char* key : {"translationCm", "rotationDeg", "quaternionXyzw", "fovX"}) {
      EXPECT_EQ(values[key], expected[key]) << key;
    }
    EXPECT_EQ(fs::u8path(values["log"].get<std::string>()).parent_path().parent_path().filename(),
              "shoot");
  }
  EXPECT_NEAR(exports["aximmetry"]["fovX"][0], Read("result.json")["fieldOfView"][0].get<double>(),
              1e-6);
}

TEST_F(HostProgramShoot, OfAFailedCalibrationIsNotExported) {
  Simulate({"--not-an-image", "9"});
  const ProgramRun run = Calibrate({"--export", "ue5"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.out, Not(HasSubstr("Unreal Engine 5")));
  EXPECT_EQ(Read("result.json")["exports"], Json::object());
  const ProgramRun alone = Run({"export", "ue5", "--result", "shoot/result.json"});
  EXPECT_EQ(alone.status, 1);
  EXPECT_THAT(alone.error, HasSubstr("is of a calibration that failed, code 4"));
  EXPECT_EQ(alone.out, "");
}

TEST_F(HostProgramShoot, FailsWithFewPhotographs) {
  Simulate({"--not-an-image", "9"});
  const ProgramRun run = Calibrate();
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.error.rfind("trackedcam: error 4: ", 0), 0U) << run.error;
  EXPECT_THAT(run.out, AllOf(HasSubstr("\nPhotographs: 11 of 20 used"),
                             HasSubstr("\nFailed, code 4: "), HasSubstr("\nNext: ")));
  const Json result = Read("result.json");
  EXPECT_EQ(result["code"], 4);
  EXPECT_EQ(result["message"], "Amount of valid images < 12.");
  EXPECT_EQ(result["normFocal"], Json::array());
}

TEST_F(HostProgramShoot, SaysWhenTheBoardIsGivenInSquares) {
  Simulate();
  const ProgramRun run = Calibrate({"--board", "10x7"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.error.rfind("trackedcam: error 4: ", 0), 0U) << run.error;
  EXPECT_EQ(Read("result.json")["code"], 4);
  EXPECT_EQ(Read("result.json")["findings"][0]["id"], "boardNowhere");
}

TEST_F(HostProgramShoot, FailsWhenNoRecordsAreExpected) {
  Simulate();
  const ProgramRun run = Calibrate({"--expected-records", "0"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.out, HasSubstr("\nFailed, code 7: "));
  EXPECT_EQ(Read("result.json")["code"], 7);
  EXPECT_EQ(Read("result.json")["transformCamTc"], Json::array());
}

TEST_F(HostProgramShoot, WarnsWhenANewShootIsRecommended) {
  Simulate({"--tracker-noise-mm", "4"});
  const ProgramRun run = Calibrate();
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.error.rfind("trackedcam: warning: ", 0), 0U) << run.error;
  EXPECT_EQ(Read("result.json")["findings"][0]["id"], "trackersNoisy");
  EXPECT_EQ(Read("result.json")["code"], 99);
  EXPECT_EQ(Read("result.json")["message"], "Recalibration is recommended.");
}

TEST_F(HostProgramShoot, WithoutAnyPoseDoesNotBegin) {
  Simulate();
  std::string data = test::ReadFile(folder.File("shoot/tracker_data.csv"));
  // The position of the camera's tracker along x, in each row.
  data = std::regex_replace(data, std::regex("(\n[^,\n]*,[^,\n]*),[^,\n]*"), "$1,nan");
  test::WriteFile(folder.File("shoot/tracker_data.csv"), data);
  const ProgramRun run = Calibrate({"--export", "ue5"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.error, HasSubstr("in all 20 rows"));
  EXPECT_THAT(run.out, Not(HasSubstr("Unreal Engine 5")));
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "shoot" / "result.json"));
}

}  // namespace
}  // namespace trackedcam::app
