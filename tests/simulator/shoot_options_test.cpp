#include "simulator/shoot_options.h"

#include <cmath>
#include <functional>
#include <limits>
#include <stdexcept>

#include <gmock/gmock.h>

#include "simulator/shoot.h"

namespace trackedcam::simulator {
namespace {

using testing::HasSubstr;

struct Refusal {
  const char* named;  // what the error must name
  std::function<void(ShootOptions&)> change;
};

void PrintTo(const Refusal& refusal, std::ostream* out) {
  *out << refusal.named;
}

class RefusedOptionsTest : public testing::TestWithParam<Refusal> {};

TEST_P(RefusedOptionsTest, TheErrorSaysWhatToChange) {
  ShootOptions options;
  GetParam().change(options);
  try {
    SimulateShoot(options);
    FAIL() << "not refused: " << GetParam().named;
  } catch (const std::invalid_argument& error) {
    EXPECT_THAT(error.what(), HasSubstr(GetParam().named));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Counts, RefusedOptionsTest,
    testing::Values(Refusal{"photographs must be", [](auto& o) { o.photographs = 0; }},
                    Refusal{"missing must be", [](auto& o) { o.missing = -1; }},
                    Refusal{"notAnImage must be", [](auto& o) { o.notAnImage = -1; }},
                    Refusal{"withoutChart must be", [](auto& o) { o.withoutChart = -1; }},
                    Refusal{"outliers must be", [](auto& o) { o.outliers = -1; }},
                    Refusal{"heldPoses must be", [](auto& o) { o.heldPoses = 0; }},
                    Refusal{"raise photographs", [](auto& o) { o.missing = o.outliers = 11; }}));

INSTANTIATE_TEST_SUITE_P(
    Camera, RefusedOptionsTest,
    testing::Values(
        Refusal{"imageWidth", [](auto& o) { o.imageWidth = 0; }},
        Refusal{"imageHeight", [](auto& o) { o.imageHeight = -1080; }},
        Refusal{"fx must be", [](auto& o) { o.lens = Lens{0, 1, 0, 0, 0, 0}; }},
        Refusal{"fy must be", [](auto& o) { o.lens = Lens{1, -1, 0, 0, 0, 0}; }},
        Refusal{"k1, k2 and k3", [](auto& o) { o.lens = Lens{900, 900, 960, 540, -1, 0}; }},
        Refusal{"principal point nearer",
                [](auto& o) { o.lens = Lens{1000, 1000, -40000, 540, 0, 0}; }},
        Refusal{"k1, k2 and k3",
                [](auto& o) { o.lens = Lens{900, 900, 960, 540, 0, 0, 0, 0, -1}; }},
        Refusal{"p1 must be", [](auto& o) { o.lens = Lens{900, 900, 960, 540, 0, 0, 0.021}; }},
        Refusal{"p2 must be", [](auto& o) { o.lens = Lens{900, 900, 960, 540, 0, 0, 0, -0.021}; }},
        Refusal{"sensorWidthMm", [](auto& o) { o.sensorWidthMm = 0; }},
        Refusal{"sensorHeightMm", [](auto& o) { o.sensorHeightMm = 0; }},
        Refusal{"blurPixels", [](auto& o) { o.blurPixels = -1; }},
        Refusal{"noiseGreyLevels", [](auto& o) { o.noiseGreyLevels = std::nan(""); }},
        Refusal{"unevenLight", [](auto& o) { o.unevenLight = 1.5; }},
        Refusal{"jpegQuality", [](auto& o) { o.jpegQuality = 101; }}));

INSTANTIATE_TEST_SUITE_P(
    Chart, RefusedOptionsTest,
    testing::Values(Refusal{"chart.cols must be", [](auto& o) { o.chart.cols = 2; }},
                    Refusal{"chart.rows must be", [](auto& o) { o.chart.rows = 2; }},
                    Refusal{"must differ", [](auto& o) { o.chart.cols = o.chart.rows; }},
                    Refusal{"chart.squareMetres", [](auto& o) { o.chart.squareMetres = 0; }},
                    Refusal{"chart.stretch", [](auto& o) { o.chart.stretch = 0.11; }},
                    Refusal{"from -0.0075 to 0.0075", [](auto& o) { o.chart.bowMetres = 0.008; }}));

INSTANTIATE_TEST_SUITE_P(
    Trackers, RefusedOptionsTest,
    testing::Values(Refusal{"trackerNoiseMm", [](auto& o) { o.trackerNoiseMm = -1; }},
                    Refusal{"trackerNoiseDegrees",
                            [](auto& o) {
                              o.trackerNoiseDegrees = std::numeric_limits<double>::infinity();
                            }},
                    Refusal{"noiseCorrelation", [](auto& o) { o.noiseCorrelation = 1.01; }},
                    Refusal{"trackerScale", [](auto& o) { o.trackerScale = 0; }},
                    Refusal{"volumeBendMm", [](auto& o) { o.volumeBendMm = std::nan(""); }},
                    Refusal{"poseErrorMm", [](auto& o) { o.poseErrorMm = -1; }},
                    Refusal{"poseErrorDegrees", [](auto& o) { o.poseErrorDegrees = -1; }},
                    Refusal{"delayMs must be from 0 to 2500", [](auto& o) { o.delayMs = 2501; }},
                    Refusal{"exposureMs", [](auto& o) { o.exposureMs = -1; }},
                    Refusal{"tremorMmPerSecond", [](auto& o) { o.tremorMmPerSecond = -1; }},
                    Refusal{"sagMm", [](auto& o) { o.sagMm = -1; }},
                    Refusal{"looseMm", [](auto& o) { o.looseMm = -1; }},
                    Refusal{"frozenRows must be from 0 to 19", [](auto& o) { o.frozenRows = 20; }},
                    Refusal{"slipMm", [](auto& o) { o.slipMm = -1; }},
                    Refusal{"slipDegrees", [](auto& o) { o.slipDegrees = -1; }},
                    Refusal{"mountingErrorMm", [](auto& o) { o.mountingErrorMm = -1; }},
                    Refusal{"mountingErrorDegrees", [](auto& o) { o.mountingErrorDegrees = 90; }}));

TEST(ShootOptionsTest, EveryPhotographMayBeFlawed) {
  ShootOptions options;
  options.photographs = 4;
  options.missing = options.notAnImage = options.withoutChart = options.outliers = 1;
  EXPECT_NO_THROW(CheckOptions(options));
}

}  // namespace
}  // namespace trackedcam::simulator
