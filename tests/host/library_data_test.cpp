#include <gmock/gmock.h>

#include "host/run/library_run.h"
#include "support/stage_test.h"
#include "support/working_folder.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class LibraryDataTest : public testing::Test {
 protected:
  LibraryData Prepare(const std::vector<std::string>& photographs) {
    std::string content = "Time,photograph\n";
    for (const std::string& photograph : photographs) {
      content += "1," + photograph + ",2,3\n";
    }
    test::WriteFile(data.u8string(), content);
    rows = ReadDataFile(data);
    return Again();
  }

  LibraryData Again() { return PrepareData(data, rows, shoot, run); }

  // Where the library writes the reprojected image, with everything resolved.
  static bool IsBelow(const fs::path& folder, const fs::path& path) {
    const std::string inside = fs::weakly_canonical(path).generic_u8string();
    return inside.rfind(fs::weakly_canonical(folder).generic_u8string() + '/', 0) == 0;
  }

  test::TemporaryFolder folder;
  fs::path shoot = folder.Path() / "shoot";
  fs::path run = folder.Path() / "log" / "run_001";
  fs::path data = folder.Path() / "tracker_data.csv";
  std::vector<DataRow> rows;
  bool isReady = fs::create_directories(shoot) && fs::create_directories(run);
  test::WorkingFolder workingFolder{shoot};
};

TEST_F(LibraryDataTest, IsTheFileGivenWhereItServes) {
  const LibraryData prepared = Prepare({"photos/a.jpg", "../b.jpg", "/c/d.jpg", ""});
  EXPECT_EQ(prepared.file, data);
  EXPECT_THAT(prepared.photographs, ElementsAre("photos/a.jpg", "../b.jpg", "/c/d.jpg", ""));
}

TEST_F(LibraryDataTest, LeavesOutRows) {
  Prepare({"a.jpg", "b.jpg", "c.jpg"});
  rows.erase(rows.begin() + 1);
  const LibraryData prepared = Again();
  EXPECT_EQ(prepared.file, run / "tracker_data.csv");
  EXPECT_EQ(test::ReadText(prepared.file.u8string()),
            "Time,photograph,and both trackers\n1,a.jpg,2,3\n1,c.jpg,2,3\n");
}

TEST_F(LibraryDataTest, NamesPhotographsInFullWhereTheProcessWorksElsewhere) {
  const test::WorkingFolder elsewhere(folder.Path());
  const LibraryData prepared = Prepare({"a.jpg"});
  EXPECT_EQ(fs::u8path(prepared.photographs[0]), fs::weakly_canonical(shoot / "a.jpg"));
  EXPECT_THAT(test::ReadText(prepared.file.u8string()),
              HasSubstr("1," + prepared.photographs[0] + ",2,3\n"));
}

TEST_F(LibraryDataTest, KeepsEveryImageInTheFolderOfTheRun) {
  std::string up;
  for (int levels = 1; levels <= 8; ++levels) {
    up += "../";
    for (const std::string& name : std::vector<std::string>{
             up + "photos/a.jpg", "photos/" + up + "a.jpg", "x\\" + up + "a.jpg",
             "photos\\..\\..\\a.jpg", "/" + up + "a.jpg", "./" + up + "a.jpg"}) {
      const LibraryData prepared = Prepare({name});
      EXPECT_TRUE(IsBelow(run, ReprojectedImage(run, prepared.photographs[0]))) << name;
      // It still names the same photograph.
      EXPECT_EQ(fs::weakly_canonical(shoot / fs::u8path(prepared.photographs[0])),
                fs::weakly_canonical(shoot / fs::u8path(name)));
    }
  }
}

}  // namespace
}  // namespace trackedcam::host
