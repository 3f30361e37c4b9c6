#include "host/run/library_run.h"

#include <gmock/gmock.h>

#include "simulator/shoot.h"
#include "simulator/write_shoot.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using testing::Each;

class LibraryRunTest : public testing::Test {
 protected:
  LibraryRunTest() {
    simulator::ShootOptions options;
    options.photographs = 14;
    options.imageWidth = 640;
    options.imageHeight = 360;
    options.missing = 1;
    simulator::WriteShoot(simulator::SimulateShoot(options), folder.Path() / "shoot",
                          [](int, int) {});
    fs::create_directory(run);
    inputs.data = folder.Path() / "shoot" / "tracker_data.csv";
    inputs.workingFolder = inputs.data.parent_path();
    inputs.sensorMm = {36, 20.25};
    inputs.board = {9, 6};
    inputs.squareMetres = 0.03;
  }

  LibraryRun Run() {
    return RunLibrary(inputs, ReadRows(ReadDataContent(inputs.data)), {}, run,
                      [this](const Progress& progress) { stages.push_back(progress.stage); });
  }

  test::TemporaryFolder folder;
  fs::path run = folder.Path() / "run";
  Inputs inputs;
  std::vector<std::string> stages;
};

TEST_F(LibraryRunTest, IsSeenFromOutside) {
  const LibraryRun seen = Run();
  ASSERT_TRUE(seen.code);
  EXPECT_EQ(seen.log.parent_path(), run);
  // The process works elsewhere, so the library was given absolute paths.
  ASSERT_EQ(seen.record.photographs.size(), 14U);
  EXPECT_EQ(seen.record.photographs[0].path, "photos/img_000.jpg");
  ASSERT_EQ(seen.images.size(), 14U);
  EXPECT_THAT(stages, testing::Contains("Solving the lens"));
  EXPECT_EQ(stages.front(), "Finding the board");
}

TEST_F(LibraryRunTest, KeepsItsRecordThroughAnException) {
  inputs.expectedRecords = -1;
  const LibraryRun seen = Run();
  EXPECT_FALSE(seen.code);
  EXPECT_NE(seen.exception, "");
  EXPECT_EQ(seen.record.photographs.size(), 14U);
  EXPECT_TRUE(seen.record.lensError);
  EXPECT_THAT(seen.images, Each(fs::path()));
}

}  // namespace
}  // namespace trackedcam::host
