// Pairings of a simulated recording.

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "simulated_shoot.h"
#include "simulator/recording.h"
#include "simulator/write_recording.h"

namespace trackedcam::c {
namespace {

using Json = nlohmann::json;
using testing::HasSubstr;
using OwnedPairing = Owned<trackedcam_pairing, trackedcam_pairing_free>;

class PairHandleTest : public testing::Test {
 protected:
  PairHandleTest() {
    recording.shoot.imageWidth = 640;
    recording.shoot.imageHeight = 360;
    recording.seconds = 16;
    recording.framesPerSecond = 12.5;
    recording.delayMs = -40;
    simulator::WriteRecording(simulator::SimulateRecording(recording), folder.Path() / "film");
    EXPECT_EQ(trackedcam_pair_options_init(&options, sizeof options), TRACKEDCAM_OK);
    EXPECT_EQ(options.photographs, 40);
    options.board_columns = recording.shoot.chart.cols;
    options.board_rows = recording.shoot.chart.rows;
    options.square_m = recording.shoot.chart.squareMetres;
    options.camera_poses = camera.c_str();
    options.chart_poses = chart.c_str();
    options.frames = frames.c_str();
    options.times = times.c_str();
    options.out_folder = out.c_str();
  }

  trackedcam_status Pair() { return trackedcam_pair(&options, pairing.Fill()); }

  simulator::RecordingOptions recording;
  test::TemporaryFolder folder;
  std::string camera = folder.File("film/camera_poses.txt");
  std::string chart = folder.File("film/chart_poses.txt");
  std::string frames = folder.File("film/frames");
  std::string times = folder.File("film/frames/times.csv");
  std::string out = folder.File("shoot");
  trackedcam_pair_options options;
  OwnedPairing pairing;
};

TEST_F(PairHandleTest, WritesAShoot) {
  ASSERT_EQ(Pair(), TRACKEDCAM_OK) << trackedcam_last_error();
  const char* json = nullptr;
  ASSERT_EQ(trackedcam_pairing_json(pairing.Get(), &json), TRACKEDCAM_OK);
  EXPECT_NEAR(Json::parse(json)["delaySeconds"].get<double>(), -0.040, 0.002);
  EXPECT_EQ(Json::parse(json), Json::parse(test::ReadFile(folder.File("shoot/pairing.json"))));
  EXPECT_THAT(test::ReadFile(folder.File("shoot/tracker_data.csv")), HasSubstr("photos/"));
}

TEST_F(PairHandleTest, RefusesWhatItCannotPair) {
  const trackedcam_pair_options good = options;
  options.struct_size = 4;
  EXPECT_EQ(Pair(), TRACKEDCAM_INVALID_ARGUMENT);
  options = good;
  options.frames_per_second = 25;
  EXPECT_EQ(Pair(), TRACKEDCAM_INVALID_ARGUMENT);
  options = good;
  options.pose_unit = "miles";
  EXPECT_EQ(Pair(), TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_THAT(trackedcam_last_error(), HasSubstr("miles"));
  options = good;
  options.photographs = 3;
  EXPECT_EQ(Pair(), TRACKEDCAM_INVALID_ARGUMENT);
  options = good;
  options.camera_poses = times.c_str();
  EXPECT_EQ(Pair(), TRACKEDCAM_BAD_INPUT);
  options = good;
  options.board_columns = 2;
  EXPECT_EQ(Pair(), TRACKEDCAM_BAD_INPUT);
  options = good;
  options.out_folder = frames.c_str();
  EXPECT_EQ(Pair(), TRACKEDCAM_BAD_INPUT);
  EXPECT_THAT(trackedcam_last_error(), HasSubstr("not empty"));
  EXPECT_EQ(trackedcam_pair(nullptr, pairing.Fill()), TRACKEDCAM_INVALID_ARGUMENT);
  EXPECT_EQ(trackedcam_pairing_free(nullptr), TRACKEDCAM_OK);
}

}  // namespace
}  // namespace trackedcam::c
