#include "simulator/write_shoot.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>

#include "simulator/rendering.h"
#include "simulator/simulated_files.h"
#include "support/stage_test.h"

namespace trackedcam::simulator {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

class WriteShootTest : public testing::Test {
 protected:
  WriteShootTest() {
    options.photographs = 4;
    options.imageWidth = 320;
    options.imageHeight = 240;
  }

  std::string Read(const std::string& name) const { return test::ReadFile(folder.File(name)); }

  // Empty if the file is not an image.
  cv::Mat Picture(const Photograph& photograph) const {
    const std::string bytes = Read(photograph.path);
    return cv::imdecode(std::vector<char>(bytes.begin(), bytes.end()), cv::IMREAD_GRAYSCALE);
  }

  ShootOptions options;
  test::TemporaryFolder folder;
};

TEST_F(WriteShootTest, EveryPhotographIsThePictureThatWasRendered) {
  const Shoot shoot = SimulateShoot(options);
  WriteShoot(shoot, folder.Path());
  const PhotographRenderer renderer(shoot);
  for (int i = 0; i < options.photographs; ++i) {
    const cv::Mat picture = Picture(shoot.photographs[static_cast<std::size_t>(i)]);
    ASSERT_EQ(picture.size(), cv::Size(320, 240));
    const double pixels = 320.0 * 240.0;
    EXPECT_LT(cv::norm(picture, renderer.Render(i), cv::NORM_L1) / pixels, 1.5);
  }
}

TEST_F(WriteShootTest, UnusablePhotographsAreAsStated) {
  options.missing = 1;
  options.notAnImage = 1;
  const Shoot shoot = SimulateShoot(options);
  WriteShoot(SimulateShoot({}), folder.Path());
  WriteShoot(shoot, folder.Path());
  for (const Photograph& photograph : shoot.photographs) {
    const bool exists = fs::exists(folder.Path() / fs::u8path(photograph.path));
    EXPECT_EQ(exists, photograph.flaw != Flaw::kMissing);
    if (exists) {
      EXPECT_EQ(Picture(photograph).empty(), photograph.flaw == Flaw::kNotAnImage);
    }
  }
}

TEST_F(WriteShootTest, CreatesTheFolder) {
  const fs::path inner = folder.Path() / fs::u8path("dreh_köln") / "shoot";
  WriteShoot(SimulateShoot(options), inner);
  for (const char* name : {"tracker_data.csv", "truth.json", "shoot.toml", "photos/img_003.jpg"}) {
    EXPECT_TRUE(fs::is_regular_file(inner / name)) << name;
  }
}

TEST_F(WriteShootTest, NamesTheFilesThatAreNoLongerSimulated) {
  const Shoot shoot = SimulateShoot(options);
  WriteShoot(shoot, folder.Path());
  EXPECT_THAT(ChangedFiles(folder.Path()), IsEmpty());
  test::WriteFile(folder.File("tracker_data.csv"), TrackerDataText(shoot) + "own row\n");
  test::WriteFile(folder.File("photos/img_001.jpg"), "own picture");
  test::WriteFile(folder.File("photos/img_004.jpg"), Read("photos/img_000.jpg"));
  EXPECT_THAT(ChangedFiles(folder.Path()),
              ElementsAre("photos/img_001.jpg", "photos/img_004.jpg", "tracker_data.csv"));
  WriteShoot(shoot, folder.Path());
  EXPECT_THAT(ChangedFiles(folder.Path()), ElementsAre("photos/img_004.jpg"));
}

TEST_F(WriteShootTest, KnowsAnIncompleteShootAndTheOneBeforeIt) {
  WriteShoot(SimulateShoot(options), folder.Path());
  options.seed = 2;
  const auto stop = [](int /*done*/, int /*all*/) { throw std::runtime_error("stopped"); };
  EXPECT_THROW(WriteShoot(SimulateShoot(options), folder.Path(), stop), std::runtime_error);
  EXPECT_THAT(ChangedFiles(folder.Path()), IsEmpty());
  fs::remove(folder.Path() / "simulated.txt");
  EXPECT_THAT(ChangedFiles(folder.Path()), SizeIs(7));
}

TEST_F(WriteShootTest, KeepsTheOtherNamesOfAFile) {
  WriteShoot(SimulateShoot(options), folder.Path());
  const std::string before = Read("tracker_data.csv");
  fs::create_hard_link(folder.Path() / "tracker_data.csv", folder.Path() / "backup.csv");
  options.seed = 2;
  WriteShoot(SimulateShoot(options), folder.Path());
  EXPECT_NE(Read("tracker_data.csv"), before);
  EXPECT_EQ(Read("backup.csv"), before);
}

TEST_F(WriteShootTest, TheDataFileIsWrittenByteForByte) {
  options.windowsLineEnds = true;
  options.byteOrderMark = true;
  const Shoot shoot = SimulateShoot(options);
  WriteShoot(shoot, folder.Path());
  EXPECT_EQ(Read("tracker_data.csv"), TrackerDataText(shoot));
}

TEST_F(WriteShootTest, ReportsHowManyPhotographsAreDone) {
  std::vector<std::pair<int, int>> progress;
  WriteShoot(SimulateShoot(options), folder.Path(),
             [&](int done, int all) { progress.emplace_back(done, all); });
  EXPECT_THAT(progress, ElementsAre(Pair(1, 4), Pair(2, 4), Pair(3, 4), Pair(4, 4)));
}

TEST_F(WriteShootTest, SaysWhichFileCannotBeWritten) {
  fs::create_directory(folder.Path() / "truth.json");
  try {
    WriteShoot(SimulateShoot(options), folder.Path());
    FAIL() << "no exception";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("truth.json"));
  }
}

}  // namespace
}  // namespace trackedcam::simulator
