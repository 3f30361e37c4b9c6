#include "simulator/write_recording.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "simulator/rendering.h"
#include "simulator/simulated_files.h"
#include "support/stage_test.h"

namespace trackedcam::simulator {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

RecordingOptions SmallRecording() {
  RecordingOptions options;
  options.seconds = 0.2;
  options.shoot.imageWidth = 320;
  options.shoot.imageHeight = 240;
  return options;
}

class WriteRecordingTest : public testing::Test {
 protected:
  std::string Read(const std::string& name) const { return test::ReadFile(folder.File(name)); }
  bool Exists(const std::string& name) const { return fs::exists(folder.Path() / name); }

  RecordingOptions options = SmallRecording();
  test::TemporaryFolder folder;
};

TEST_F(WriteRecordingTest, EachFrameIsThePictureThatWasRendered) {
  const Recording recording = SimulateRecording(options);
  ASSERT_EQ(recording.frames.size(), 5u);
  WriteRecording(recording, folder.Path());
  const FrameRenderer renderer(recording);
  for (int i = 0; i < 5; ++i) {
    const std::string bytes = Read("frames/00000" + std::to_string(i + 1) + ".jpg");
    const cv::Mat picture =
        cv::imdecode(std::vector<char>(bytes.begin(), bytes.end()), cv::IMREAD_GRAYSCALE);
    ASSERT_EQ(picture.size(), cv::Size(320, 240));
    EXPECT_LT(cv::norm(picture, renderer.Render(i), cv::NORM_L1) / (320.0 * 240), 1.5);
  }
  EXPECT_EQ(Read("frames/times.csv"),
            "frame,time\n1,1.000000000\n2,1.040000000\n3,1.080000000\n4,1.120000000\n"
            "5,1.160000000\n");
}

// In the axes of the tracking system, whose x, y, z are -x, -z, -y of the simulation.
TEST_F(WriteRecordingTest, ThePosesAreThoseOfTheStreams) {
  options.firstStamp = 1700000000;
  options.delayMs = 40;
  const Recording recording = SimulateRecording(options);
  WriteRecording(recording, folder.Path());
  std::ifstream file(folder.Path() / "chart_poses.txt");
  std::string line;
  std::getline(file, line);
  EXPECT_EQ(line, "# A simulated recording: t x y z qx qy qz qw");
  for (const RecordedPose& recorded : recording.chart) {
    ASSERT_TRUE(std::getline(file, line));
    std::istringstream numbers(line);
    double stamp, x, y, z, qx, qy, qz, qw;
    numbers >> stamp >> x >> y >> z >> qx >> qy >> qz >> qw;
    EXPECT_NEAR(stamp, recorded.stamp, 1e-6);
    EXPECT_LT((Eigen::Vector3d(x, y, z) - recorded.pose.translation()).norm(), 1e-10);
    const Eigen::Matrix3d axes = Eigen::Quaterniond(qw, qx, qy, qz).toRotationMatrix();
    EXPECT_LT((axes.col(0) + recorded.pose.linear().col(0)).norm(), 1e-9);
    EXPECT_LT((axes.col(1) + recorded.pose.linear().col(2)).norm(), 1e-9);
    EXPECT_LT((axes.col(2) + recorded.pose.linear().col(1)).norm(), 1e-9);
  }
  EXPECT_FALSE(std::getline(file, line));
}

TEST_F(WriteRecordingTest, TheTruthHasTheClocksAndEachFrame) {
  options.delayMs = 80;
  options.driftPpm = -20;
  options.firstStamp = 12;
  options.exposureSeconds = 0.004;
  options.readoutSeconds = 0.01;
  options.motion = Motion::kTripod;
  options.shoot.mountingErrorMm = 3;
  const Recording recording = SimulateRecording(options);
  WriteRecording(recording, folder.Path());
  const auto truth = nlohmann::json::parse(Read("truth.json"));
  EXPECT_EQ(truth.at("delayMs"), 80);
  EXPECT_EQ(truth.at("driftPpm"), -20);
  EXPECT_EQ(truth.at("firstStamp"), 12);
  EXPECT_EQ(truth.at("motion"), "tripod");
  EXPECT_EQ(truth.at("exposureMs"), 4);
  EXPECT_EQ(truth.at("readoutMs"), 10);
  EXPECT_EQ(truth.at("lensPixels").at("fx"), recording.lens.fx);
  ASSERT_EQ(truth.at("photographs").size(), 5u);
  for (std::size_t i = 0; i < 5; ++i) {
    const auto& frame = truth.at("photographs")[i];
    EXPECT_EQ(frame.at("photograph"), "frames/00000" + std::to_string(i + 1) + ".jpg");
    for (int row = 0; row < 4; ++row) {
      for (int col = 0; col < 4; ++col) {
        EXPECT_EQ(frame.at("transformCamChart")[static_cast<std::size_t>(4 * row + col)],
                  recording.frames[i].Transform_Cam_Chart(row, col));
        EXPECT_EQ(truth.at("transformCamTc")[static_cast<std::size_t>(4 * row + col)],
                  recording.Transform_Cam_Tc(row, col));
      }
    }
  }
}

TEST_F(WriteRecordingTest, AShorterFilmLeavesNoFrameOfALongerOne) {
  WriteRecording(SimulateRecording(options), folder.Path());
  test::WriteFile(folder.File("frames/000004.jpg"), "own picture");
  EXPECT_THAT(ChangedFiles(folder.Path()), ElementsAre("frames/000004.jpg"));
  options.seconds = 0.12;
  WriteRecording(SimulateRecording(options), folder.Path());
  EXPECT_TRUE(Exists("frames/000003.jpg"));
  EXPECT_TRUE(Exists("frames/000004.jpg"));
  EXPECT_FALSE(Exists("frames/000005.jpg"));
  fs::remove(folder.Path() / "frames" / "000004.jpg");
  EXPECT_THAT(ChangedFiles(folder.Path()), IsEmpty());
}

TEST_F(WriteRecordingTest, KnowsAnIncompleteRecording) {
  const auto stop = [](int /*done*/, int /*all*/) { throw std::runtime_error("stopped"); };
  EXPECT_THROW(WriteRecording(SimulateRecording(options), folder.Path(), stop), std::runtime_error);
  EXPECT_THAT(ChangedFiles(folder.Path()), IsEmpty());
  EXPECT_TRUE(Exists("camera_poses.txt"));
}

// Frames of a fast motion, and where a corner detector finds the corners in them.
class FrameTest : public testing::Test {
 protected:
  FrameTest() {
    options.seconds = 6;
    options.shoot.imageWidth = 960;
    options.shoot.imageHeight = 540;
    options.shoot.noiseGreyLevels = 0;
  }

  // The frame in which the corners move most, of those with the whole chart.
  static int FastestFrame(const Recording& recording) {
    int fastest = 0;
    double most = 0;
    for (std::size_t i = 1; i < recording.frames.size(); ++i) {
      const double way =
          (recording.frames[i].corners[20] - recording.frames[i - 1].corners[20]).norm();
      if (recording.frames[i].isChartInside && way > most) {
        most = way;
        fastest = static_cast<int>(i);
      }
    }
    return fastest;
  }

  // Root mean square distance, pixels.
  static double DistanceToCorners(const cv::Mat& picture,
                                  const std::vector<Eigen::Vector2d>& corners) {
    std::vector<cv::Point2f> found;
    for (const Eigen::Vector2d& corner : corners) {
      found.emplace_back(static_cast<float>(corner.x()), static_cast<float>(corner.y()));
    }
    cv::cornerSubPix(picture, found, {6, 6}, {-1, -1},
                     {cv::TermCriteria::EPS | cv::TermCriteria::COUNT, 100, 1e-4});
    double squares = 0;
    for (std::size_t i = 0; i < corners.size(); ++i) {
      squares += (Eigen::Vector2d(found[i].x, found[i].y) - corners[i]).squaredNorm();
    }
    return std::sqrt(squares / static_cast<double>(corners.size()));
  }

  static double Contrast(const cv::Mat& picture) {
    cv::Mat edges;
    cv::Laplacian(picture, edges, CV_32F);
    return cv::norm(edges);
  }

  RecordingOptions options;
};

TEST_F(FrameTest, ALongExposureBlursAMotionAboutItsMiddle) {
  const Recording shortly = SimulateRecording(options);
  options.exposureSeconds = 0.03;
  const Recording longer = SimulateRecording(options);
  const int frame = FastestFrame(shortly);
  const auto index = static_cast<std::size_t>(frame);
  const cv::Mat sharp = FrameRenderer(shortly).Render(frame);
  const cv::Mat blurred = FrameRenderer(longer).Render(frame);
  EXPECT_LT(Contrast(blurred), 0.7 * Contrast(sharp));
  EXPECT_LT(DistanceToCorners(sharp, shortly.frames[index].corners), 0.1);
  EXPECT_LT(DistanceToCorners(blurred, shortly.frames[index].corners), 0.3);
}

TEST_F(FrameTest, ARollingShutterMovesTheCornersAsStated) {
  const Recording global = SimulateRecording(options);
  options.readoutSeconds = 0.03;
  const Recording rolling = SimulateRecording(options);
  const int frame = FastestFrame(rolling);
  const auto index = static_cast<std::size_t>(frame);
  const cv::Mat picture = FrameRenderer(rolling).Render(frame);
  EXPECT_LT(DistanceToCorners(picture, rolling.frames[index].corners), 0.25);
  EXPECT_GT(DistanceToCorners(picture, global.frames[index].corners), 1);
}

TEST_F(FrameTest, TheFramesOfAPauseAreAlike) {
  options.motion = Motion::kTripod;
  const Recording recording = SimulateRecording(options);
  const FrameRenderer renderer(recording);
  EXPECT_LT(cv::norm(renderer.Render(0), renderer.Render(0), cv::NORM_INF), 1);
  EXPECT_LT(cv::norm(renderer.Render(0), renderer.Render(1), cv::NORM_L1) / (960.0 * 540), 1);
}

}  // namespace
}  // namespace trackedcam::simulator
