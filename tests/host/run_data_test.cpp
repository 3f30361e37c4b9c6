#include <gmock/gmock.h>

#include "host/run/run_folder.h"
#include "support/stage_test.h"
#include "support/working_folder.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class RunDataTest : public testing::Test {
 protected:
  RunData Write(const std::vector<std::string>& photographs) {
    std::string content = "Time,photograph\n";
    for (const std::string& photograph : photographs) {
      content += "1," + photograph + ",2,3\n";
    }
    return WriteRunData(ReadRows(content), shoot, run);
  }

  // Everything resolved.
  static bool IsBelow(const fs::path& folder, const fs::path& path) {
    const std::string inside = fs::weakly_canonical(path).generic_u8string();
    return inside.rfind(fs::weakly_canonical(folder).generic_u8string() + '/', 0) == 0;
  }

  test::TemporaryFolder folder;
  fs::path shoot = folder.Path() / "shoot";
  fs::path run = folder.Path() / "log" / "run_001";
  bool isReady = fs::create_directories(shoot) && fs::create_directories(run);
  test::WorkingFolder workingFolder{shoot};
};

TEST_F(RunDataTest, HoldsTheRowsThatTheLibraryReads) {
  const RunData data = Write({"photos/a.jpg", "../b.jpg", "/c/d.jpg", ""});
  EXPECT_THAT(data.photographs, ElementsAre("photos/a.jpg", "../b.jpg", "/c/d.jpg", ""));
  EXPECT_EQ(data.file, run / "tracker_data.csv");
  EXPECT_EQ(test::ReadText(data.file.u8string()),
            "Time,photograph,and both trackers\n1,photos/a.jpg,2,3\n1,../b.jpg,2,3\n"
            "1,/c/d.jpg,2,3\n1,,2,3\n");
}

TEST_F(RunDataTest, NamesPhotographsInFullIfTheProcessWorksElsewhere) {
  const test::WorkingFolder elsewhere(folder.Path());
  const RunData data = Write({"a.jpg"});
  EXPECT_EQ(fs::u8path(data.photographs[0]), fs::weakly_canonical(shoot / "a.jpg"));
  EXPECT_THAT(test::ReadText(data.file.u8string()),
              HasSubstr("1," + data.photographs[0] + ",2,3\n"));
}

TEST_F(RunDataTest, RefusesAFolderThatNoRowCanName) {
  shoot = folder.Path() / "camera A, lens 35";
  fs::create_directories(shoot);
  EXPECT_THROW(Write({"a.jpg"}), InputError);
  const test::WorkingFolder there(shoot);
  EXPECT_THAT(Write({"a.jpg"}).photographs, ElementsAre("a.jpg"));
}

TEST_F(RunDataTest, KeepsEveryImageInTheRunFolder) {
  std::string up;
  for (int levels = 1; levels <= 8; ++levels) {
    up += "../";
    for (const std::string& name : std::vector<std::string>{
             up + "photos/a.jpg", "photos/" + up + "a.jpg", "x\\" + up + "a.jpg",
             "photos\\..\\..\\a.jpg", "/" + up + "a.jpg", "./" + up + "a.jpg"}) {
      const RunData data = Write({name});
      EXPECT_TRUE(IsBelow(run, data.images[0])) << name;
      // It still names the same photograph.
      EXPECT_EQ(fs::weakly_canonical(shoot / fs::u8path(data.photographs[0])),
                fs::weakly_canonical(shoot / fs::u8path(name)));
    }
  }
}

// The library takes what follows the last backslash, and creates no folder.
TEST_F(RunDataTest, KnowsWhereTheLibraryWritesTheImages) {
  const RunData data = Write({"photos/a.jpg", "/a/b/c.jpg", "D:\\shoot\\c.jpg", "x\\y/c.jpg"});
  EXPECT_THAT(data.images, ElementsAre(run / "Reproject_photos/a.jpg", run / "Reproject_/a/b/c.jpg",
                                       run / "Reproject_c.jpg", run / "Reproject_y/c.jpg"));
  EXPECT_TRUE(fs::is_directory(run / "Reproject_photos"));
  EXPECT_TRUE(fs::is_directory(run / "Reproject_" / "a" / "b"));
  EXPECT_FALSE(fs::exists(run / "Reproject_photos" / "a.jpg"));
}

TEST_F(RunDataTest, NamesAPhotographInFullIfTheFolderOfItsImageCannotBe) {
  test::WriteFile((run / "Reproject_photos").u8string(), "in the way");
  const RunData data = Write({"photos/a.jpg", "more/b.jpg"});
  EXPECT_EQ(fs::u8path(data.photographs[0]), fs::weakly_canonical(shoot / "photos" / "a.jpg"));
  EXPECT_TRUE(IsBelow(run, data.images[0]));
  EXPECT_TRUE(fs::is_directory(data.images[0].parent_path()));
  EXPECT_EQ(data.photographs[1], "more/b.jpg");
  EXPECT_EQ(data.images[1], run / "Reproject_more/b.jpg");
}

TEST_F(RunDataTest, DoesWithoutAnImageThatCannotBe) {
  for (const char* blocker : {"Reproject_photos", "Reproject_"}) {
    test::WriteFile((run / blocker).u8string(), "in the way");
  }
  const RunData data = Write({"photos/a.jpg"});
  // On Windows the whole path ends with a backslash and the name: the image needs no folder.
  EXPECT_EQ(data.images[0].empty(), fs::path::preferred_separator == '/');
}

TEST(RunConfig, HoldsWhatTheLibraryWasGiven) {
  const test::TemporaryFolder folder;
  Inputs inputs;
  inputs.workingFolder = "/takes/\"new\"\\1";
  inputs.sensorMm = {36, 20.25};
  inputs.board = {9, 6};
  inputs.squareMetres = 0.03;
  inputs.expectedRecords = 40;
  inputs.goodEnough = {1.5, 0.1};
  inputs.scaleUncertainty = 0.002;
  WriteRunConfig(inputs, Mounting{{12, -8, 5}, {0.1, -0.05, 0.02}}, folder.Path());
  EXPECT_EQ(test::ReadText(folder.File("calibrate.toml")),
            "# The options of this run: trackedcam calibrate --config calibrate.toml\n"
            "[calibrate]\n"
            "data = \"tracker_data.csv\"\n"
            "working-folder = \"/takes/\\\"new\\\"\\\\1\"\n"
            "log-folder = \"..\"\n"
            "sensor = \"36x20.25\"\n"
            "board = \"9x6\"\n"
            "square = 0.03\n"
            "chart-rotation = \"12,-8,5\"\n"
            "chart-translation = \"0.1,-0.05,0.02\"\n"
            "invert-tracker-quaternions = false\n"
            "good-enough = \"1.5mm,0.1deg\"\n"
            "scale-uncertainty = \"0.2%\"\n"
            "expected-records = 40\n");
}

}  // namespace
}  // namespace trackedcam::host
