#include <gmock/gmock.h>

#include "host/input/inputs.h"
#include "host/result/result_file.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kTruth = R"({
  "imageSize": [1920, 1080], "normFocal": [0.9, 1.6], "normCenter": [0.5, 0.49],
  "distortion": [-0.1, 0.05, 0, 0, 0], "fieldOfView": [58.1, 34.7],
  "transformCamTc": [1, 0, 0, 0.01, 0, 1, 0, 0.02, 0, 0, 1, 0.03, 0, 0, 0, 1],
  "anything": "else"
})";

class TruthTest : public testing::Test {
 protected:
  CalibrationOutputs Read(const std::string& content, std::array<double, 2> sensor) {
    test::WriteFile(folder.File("truth.json"), content);
    return ReadTruth(folder.Path() / "truth.json", sensor);
  }

  test::TemporaryFolder folder;
};

TEST_F(TruthTest, IsReadAsOutputs) {
  const CalibrationOutputs truth = Read(kTruth, {36, 20.25});
  EXPECT_THAT(truth.imageSize, ElementsAre(1920, 1080));
  EXPECT_THAT(truth.normFocal, ElementsAre(0.9, 1.6));
  EXPECT_THAT(truth.normCenter, ElementsAre(0.5, 0.49));
  EXPECT_THAT(truth.distortion, ElementsAre(-0.1, 0.05, 0, 0, 0));
  EXPECT_THAT(truth.fieldOfView, ElementsAre(58.1, 34.7));
  EXPECT_EQ(truth.transformCamTc[11], 0.03);
}

TEST_F(TruthTest, HasTheFocalLengthByTheSmallerPixelPitch) {
  EXPECT_THAT(Read(kTruth, {36, 20.25}).focalLengthMm, ElementsAre(DoubleNear(32.4, 1e-12)));
  EXPECT_THAT(Read(kTruth, {36, 24}).focalLengthMm, ElementsAre(DoubleNear(32.4, 1e-12)));
  EXPECT_THAT(Read(kTruth, {40, 20}).focalLengthMm, ElementsAre(DoubleNear(32, 1e-12)));
}

TEST_F(TruthTest, MustBeWhole) {
  for (const char* content : {"", "[calibrate]", "{}", R"({"imageSize": [1920]})"}) {
    try {
      Read(content, {36, 20.25});
      FAIL() << content;
    } catch (const InputError& error) {
      EXPECT_THAT(error.what(), HasSubstr("truth.json is not the truth of a simulated shoot"));
    }
  }
}

}  // namespace
}  // namespace trackedcam::host
