// Names that are not ASCII, and names with backslashes, from the data file to the reprojected
// images.

#include <gtest/gtest.h>

#include "shoots/calibrate_shoot.h"
#include "shoots/expected_log.h"
#include "simulator/write_shoot.h"
#include "support/image_file.h"

namespace trackedcam::test {
namespace {

namespace sim = simulator;
namespace fs = std::filesystem;

// Calibrates a shoot whose data file, photographs and log folder have names in several languages,
// and expects the reprojected images under these names in the log folder.
void ExpectImages(const std::string& photographs, const std::string& images) {
  sim::ShootOptions options = SmallShoot(14);
  sim::Shoot shoot = sim::SimulateShoot(options);
  for (std::size_t i = 0; i < shoot.photographs.size(); ++i) {
    shoot.photographs[i].path = photographs + std::to_string(i) + ".jpg";
  }
  const TemporaryFolder folder;
  fs::create_directories(fs::u8path(folder.File(photographs)).parent_path());
  sim::WriteShoot(shoot, folder.Path());
  fs::rename(folder.Path() / "tracker_data.csv", fs::u8path(folder.File("données_記録.csv")));
  fs::create_directories(fs::u8path(folder.File("log_é_結果/" + images)).parent_path());

  HostArguments arguments = ArgumentsFor(shoot, folder);
  arguments.dataPath = folder.File("données_記録.csv");
  arguments.logFolder = folder.File("log_é_結果");
  const Calibrated result = Calibrate(arguments);
  ASSERT_EQ(result.code, 0);
  const std::vector<std::size_t> removed = RemovedIndices(result.log);
  ASSERT_LT(removed.size(), shoot.photographs.size());
  for (std::size_t i = 0; i < shoot.photographs.size(); ++i) {
    if (std::find(removed.begin(), removed.end(), i) == removed.end()) {
      const std::string image = arguments.logFolder + "/" + images + std::to_string(i) + ".jpg";
      EXPECT_EQ(ReadImage(image).size(), cv::Size(960, 540)) << image;
    }
  }
}

TEST(Names, OfAnyLanguageAreReadAndWritten) {
  ExpectImages("撮影é_", "Reproject_撮影é_");
}

TEST(Names, WithForwardSlashesKeepTheirFolders) {
  ExpectImages("写真é/撮影_", "Reproject_写真é/撮影_");
}

TEST(Names, WithBackslashesDropTheirFolders) {
  ExpectImages("写真é\\撮影_", "Reproject_撮影_");
}

}  // namespace
}  // namespace trackedcam::test
