// The same photographs in every format that the library reads on every system.

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>

#include "shoots/calibrate_shoot.h"
#include "shoots/expected_log.h"
#include "simulator/rendering.h"
#include "simulator/write_shoot.h"
#include "support/image_file.h"
#include "support/transform_matchers.h"

namespace trackedcam::test {
namespace {

namespace sim = simulator;
namespace fs = std::filesystem;

struct Format {
  const char* name;
  const char* extension;
  std::vector<int> parameters;  // of the encoder
  int depth;                    // of a channel
};

const Format kPng = {"PNG", ".png", {}, CV_8U};

// Lossless formats. Those of 16 bits lose nothing when the library converts them to 8 bits.
const std::vector<Format> kLossless = {
    {"BMP", ".bmp", {}, CV_8U},
    {"PNG of 16 bits", ".png", {}, CV_16U},
    {"WebP", ".webp", {cv::IMWRITE_WEBP_QUALITY, 101}, CV_8U},
    {"TIFF", ".tif", {cv::IMWRITE_TIFF_COMPRESSION, 1}, CV_8U},
    {"TIFF, LZW", ".tiff", {cv::IMWRITE_TIFF_COMPRESSION, 5}, CV_8U},
    {"TIFF, deflate", ".tif", {cv::IMWRITE_TIFF_COMPRESSION, 8}, CV_8U},
    {"TIFF of 16 bits", ".tif", {cv::IMWRITE_TIFF_COMPRESSION, 1}, CV_16U},
    {"TIFF of 16 bits, LZW", ".tif", {cv::IMWRITE_TIFF_COMPRESSION, 5}, CV_16U},
};

sim::Shoot FormatsShoot() {
  sim::ShootOptions options;
  options.photographs = 14;
  options.imageWidth = 640;
  options.imageHeight = 360;
  return sim::SimulateShoot(options);
}

std::vector<cv::Mat> Pictures(const sim::Shoot& shoot) {
  const sim::PhotographRenderer renderer(shoot);
  std::vector<cv::Mat> pictures(shoot.photographs.size());
  for (std::size_t i = 0; i < pictures.size(); ++i) {
    cv::cvtColor(renderer.Render(static_cast<int>(i)), pictures[i], cv::COLOR_GRAY2BGR);
  }
  return pictures;
}

Calibrated CalibrateAs(const Format& format, sim::Shoot shoot,
                       const std::vector<cv::Mat>& pictures) {
  const TemporaryFolder folder;
  for (std::size_t i = 0; i < pictures.size(); ++i) {
    shoot.photographs[i].path = std::to_string(i) + format.extension;
    cv::Mat picture;
    pictures[i].convertTo(picture, format.depth,
                          format.depth == CV_16U ? 257 : 1);  // white stays white
    std::vector<unsigned char> bytes;
    EXPECT_TRUE(cv::imencode(format.extension, picture, bytes, format.parameters));
    WriteFile(folder.File(shoot.photographs[i].path), {bytes.begin(), bytes.end()});
  }
  WriteFile(folder.File("tracker_data.csv"), sim::TrackerDataText(shoot));
  Calibrated result = Calibrate(ArgumentsFor(shoot, folder));
  // Reprojected images have the format of their photographs.
  std::size_t images = 0;
  for (const auto& file : fs::directory_iterator(folder.Path())) {
    const std::string name = file.path().filename().u8string();
    images += name.rfind("Reproject_", 0) == 0 && !ReadImage(folder.File(name)).empty() ? 1U : 0U;
  }
  EXPECT_EQ(images, pictures.size() - RemovedIndices(result.log).size());
  return result;
}

TEST(Formats, WithoutLossGiveTheSameValues) {
  const sim::Shoot shoot = FormatsShoot();
  SCOPED_TRACE("seed " + std::to_string(shoot.options.seed));
  const std::vector<cv::Mat> pictures = Pictures(shoot);
  const Calibrated png = CalibrateAs(kPng, shoot, pictures);
  ASSERT_EQ(png.code, 0);
  EXPECT_THAT(png.Transform_Cam_Tc(), IsTransformNear(shoot.Transform_Cam_Tc.matrix(), 0.002, 0.2));
  for (const Format& format : kLossless) {
    SCOPED_TRACE(format.name);
    const Calibrated result = CalibrateAs(format, shoot, pictures);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.imageSize, png.imageSize);
    EXPECT_EQ(result.normFocal, png.normFocal);
    EXPECT_EQ(result.normCenter, png.normCenter);
    EXPECT_EQ(result.distortion, png.distortion);
    EXPECT_EQ(result.transformCamTc, png.transformCamTc);
  }
}

TEST(Formats, WithLossComeNear) {
  const sim::Shoot shoot = FormatsShoot();
  SCOPED_TRACE("seed " + std::to_string(shoot.options.seed));
  const std::vector<cv::Mat> pictures = Pictures(shoot);
  const Calibrated png = CalibrateAs(kPng, shoot, pictures);
  const std::vector<Format> lossy = {{"JPEG", ".jpg", {cv::IMWRITE_JPEG_QUALITY, 95}, CV_8U},
                                     {"WebP", ".webp", {cv::IMWRITE_WEBP_QUALITY, 95}, CV_8U}};
  for (const Format& format : lossy) {
    SCOPED_TRACE(format.name);
    const Calibrated result = CalibrateAs(format, shoot, pictures);
    EXPECT_EQ(result.code, 0);
    ASSERT_EQ(result.normFocal.size(), 2u);
    EXPECT_NE(result.normFocal, png.normFocal);  // the format is lossy
    EXPECT_NEAR(result.normFocal[0], png.normFocal[0], 0.002 * png.normFocal[0]);
    EXPECT_NEAR(result.normFocal[1], png.normFocal[1], 0.002 * png.normFocal[1]);
    EXPECT_THAT(result.Transform_Cam_Tc(), IsTransformNear(png.Transform_Cam_Tc(), 0.0005, 0.05));
  }
}

}  // namespace
}  // namespace trackedcam::test
