// No command overwrites an input or a file of another kind.

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "host_program.h"

namespace trackedcam::app {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class HostProgramOverwrite : public testing::Test {
 protected:
  HostProgramOverwrite() {
    Run({"simulate", "shoot", "--photographs", "16", "--image", "640x360"});
  }

  ProgramRun Run(const std::vector<std::string>& arguments) const {
    return RunHostProgram(folder.Path(), arguments);
  }

  std::string Read(const std::string& name) const { return test::ReadFile(folder.File(name)); }

  // Status 2, and the file as it was.
  void ExpectRefused(const std::string& file, const std::vector<std::string>& arguments,
                     const std::string& reason) const {
    const std::string before = Read(file);
    const ProgramRun run = Run(arguments);
    EXPECT_EQ(run.status, 2) << file;
    EXPECT_THAT(run.error, HasSubstr(reason));
    EXPECT_EQ(Read(file), before) << file;
  }

  test::TemporaryFolder folder;
};

TEST_F(HostProgramOverwrite, CalibrateKeepsWhatItReads) {
  for (const char* option : {"--result", "--report"}) {
    for (const char* name :
         {"shoot.toml", "truth.json", "tracker_data.csv", "photos/img_007.jpg"}) {
      const std::string file = std::string("shoot/") + name;
      ExpectRefused(file, {"calibrate", "--config", "shoot/shoot.toml", option, file},
                    "would be overwritten");
    }
  }
  EXPECT_FALSE(fs::exists(folder.Path() / "shoot" / "log"));  // refused before the run
}

TEST_F(HostProgramOverwrite, CalibrateKeepsWhatIsNotItsOwn) {
  test::WriteFile(folder.File("notes.json"), "{\"notes\": []}");
  ExpectRefused("notes.json",
                {"calibrate", "--config", "shoot/shoot.toml", "--result", "notes.json"},
                "is not a result file of trackedcam");
  ExpectRefused("notes.json",
                {"calibrate", "--config", "shoot/shoot.toml", "--report", "notes.json"},
                "is not a report page of trackedcam");
}

TEST_F(HostProgramOverwrite, ResultAndPageAreTwoFiles) {
  const ProgramRun run =
      Run({"calibrate", "--config", "shoot/shoot.toml", "--result", "one", "--report", "./one"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.error, HasSubstr("--report"));
}

TEST_F(HostProgramOverwrite, WhatIsTheirOwnTheyReplace) {
  const std::vector<std::string> calibrate = {"calibrate", "--config",     "shoot/shoot.toml",
                                              "--result",  "r.json",       "--report",
                                              "page.html", "--log-folder", "shoot/log"};
  Run(calibrate);
  ASSERT_TRUE(fs::exists(folder.Path() / "r.json"));
  const std::string first = Read("r.json");
  Run(calibrate);
  EXPECT_THAT(first, HasSubstr("run_001"));
  EXPECT_THAT(Read("r.json"), HasSubstr("run_002"));

  const std::vector<std::string> report = {"report", "--result", "r.json", "--out", "page.html"};
  EXPECT_EQ(Run(report).status, 0);
  const std::vector<std::string> lens = {"export", "unreal", "--result",
                                         "r.json", "--out",  "a.ulens"};
  EXPECT_EQ(Run(lens).status, 0);
  EXPECT_EQ(Run(lens).status, 0) << "the second time over the first";
}

TEST_F(HostProgramOverwrite, AHyphenIsStandardOutput) {
  ProgramRun run = Run({"calibrate", "--config", "shoot/shoot.toml", "--result", "-"});
  EXPECT_THAT(run.error, HasSubstr("Result"));
  EXPECT_FALSE(fs::exists(folder.Path() / "-"));
  EXPECT_FALSE(fs::exists(folder.Path() / "shoot" / "-"));
  const std::string file = folder.File("shoot/log/run_001/result.json");
  EXPECT_EQ(test::ReadText(file), run.out);

  run = Run({"report", "--result", file, "--out", "-"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.out, StartsWith("<!doctype html>"));
  run = Run({"export", "unreal", "--result", file, "--out", "-", "--even-if-wrong"});
  EXPECT_EQ(nlohmann::json::parse(run.out)["metadata"]["type"], "LensFile");
  EXPECT_EQ(Run({"export", "stmap", "--result", file, "--out", "-"}).status, 2);
}

TEST_F(HostProgramOverwrite, ReportShowsPicturesOfTheShootOnly) {
  Run({"calibrate", "--config", "shoot/shoot.toml"});
  auto result = nlohmann::json::parse(Read("shoot/result.json"));
  fs::copy_file(folder.Path() / "shoot" / "photos" / "img_000.jpg", folder.Path() / "secret.jpg");
  result["photographs"][0]["reprojectedImage"] = nullptr;
  const auto write = [&](const std::string& picture) {
    result["photographs"][0]["path"] = picture;
    test::WriteFile(folder.File("shoot/changed.json"), result.dump());
    return Run({"report", "--result", "shoot/changed.json", "--out", "page.html"});
  };
  const ProgramRun own = write(folder.File("shoot/photos/img_001.jpg"));
  EXPECT_EQ(own.error, "");
  const std::size_t whole = Read("page.html").size();
  for (const std::string name : {"secret.jpg", "shoot/../secret.jpg"}) {
    const ProgramRun foreign = write(folder.File(name));
    EXPECT_EQ(foreign.status, 0);
    EXPECT_THAT(foreign.error, HasSubstr("pictures that the page does not show"));
    EXPECT_LT(Read("page.html").size(), whole - 1000) << name;
  }
}

TEST_F(HostProgramOverwrite, ReportAndExportKeepWhatIsNotTheirOwn) {
  Run({"calibrate", "--config", "shoot/shoot.toml"});
  ASSERT_TRUE(fs::exists(folder.Path() / "shoot" / "result.json"));
  const std::string result = "shoot/result.json";
  ExpectRefused(result, {"report", "--result", result, "--out", "shoot/../shoot/result.json"},
                "would be overwritten");
  ExpectRefused("shoot/truth.json", {"report", "--result", result, "--out", "shoot/truth.json"},
                "is not a report page of trackedcam");
  test::WriteFile(folder.File("mine.ulens"), "{\"metadata\": {\"type\": \"LensFile\"}}");
  ExpectRefused("mine.ulens", {"export", "unreal", "--result", result, "--out", "mine.ulens"},
                "is not a Lens File of trackedcam");
}

TEST_F(HostProgramOverwrite, SimulateReplacesASimulatedShootAlone) {
  EXPECT_EQ(Run({"simulate", "shoot", "--photographs", "12", "--image", "320x180"}).status, 0);
  Run({"calibrate", "--config", "shoot/shoot.toml"});
  EXPECT_EQ(Run({"simulate", "shoot", "--photographs", "12", "--image", "320x180"}).status, 0);

  test::WriteFile(folder.File("shoot/notes.txt"), "mine");
  const ProgramRun foreign = Run({"simulate", "shoot"});
  EXPECT_EQ(foreign.status, 2);
  EXPECT_THAT(foreign.error, AllOf(HasSubstr("notes.txt"), HasSubstr("--force")));
}

TEST_F(HostProgramOverwrite, SimulateKeepsWhatWasChanged) {
  const std::string own = Read("shoot/tracker_data.csv") + "own row\n";
  test::WriteFile(folder.File("shoot/tracker_data.csv"), own);
  ExpectRefused("shoot/tracker_data.csv", {"simulate", "shoot"},
                "has tracker_data.csv, not as it was simulated");
  EXPECT_EQ(
      Run({"simulate", "shoot", "--photographs", "12", "--image", "320x180", "--force"}).status, 0);
  EXPECT_NE(Read("shoot/tracker_data.csv"), own);
}

TEST_F(HostProgramOverwrite, SimulateKeepsARealShoot) {
  fs::create_directories(folder.Path() / "real" / "photos");
  test::WriteFile(folder.File("real/tracker_data.csv"), "Time,Image\n1,photos/img_000.jpg\n");
  test::WriteFile(folder.File("real/photos/img_000.jpg"), "real");
  ExpectRefused("real/photos/img_000.jpg", {"simulate", "real", "--photographs", "12"},
                "real has files that are not a simulated shoot");
  EXPECT_THAT(Read("real/tracker_data.csv"), HasSubstr("1,photos/img_000.jpg"));
  EXPECT_EQ(
      Run({"simulate", "real", "--photographs", "12", "--image", "320x180", "--force"}).status, 0);
  EXPECT_NE(Read("real/photos/img_000.jpg"), "real");
}

TEST_F(HostProgramOverwrite, SimulateReplacesASimulatedRecordingAlone) {
  const std::vector<std::string> film = {"simulate", "film",      "--recording", "--image",
                                         "320x180",  "--seconds", "0.2"};
  EXPECT_EQ(Run(film).status, 0);
  EXPECT_EQ(Run(film).status, 0);
  EXPECT_TRUE(fs::exists(folder.Path() / "film" / "frames" / "000005.jpg"));
  ExpectRefused("film/truth.json", {"simulate", "film", "--photographs", "12"},
                "film has files that are not a simulated shoot");
  ExpectRefused("shoot/truth.json", {"simulate", "shoot", "--recording"},
                "shoot has files that are not a simulated recording");

  test::WriteFile(folder.File("film/frames/000002.jpg"), "own picture");
  ExpectRefused("film/frames/000002.jpg", film, "has frames/000002.jpg, not as it was simulated");
  test::WriteFile(folder.File("film/frames/notes.txt"), "mine");
  ExpectRefused("film/frames/notes.txt", film,
                "has notes.txt, which is not part of a simulated recording");
  std::vector<std::string> force = film;
  force.push_back("--force");
  EXPECT_EQ(Run(force).status, 0);
  EXPECT_NE(Read("film/frames/000002.jpg"), "own picture");
  EXPECT_EQ(Read("film/frames/notes.txt"), "mine");
}

}  // namespace
}  // namespace trackedcam::app
