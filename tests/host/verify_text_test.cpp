#include "host/verify/verify_text.h"

#include <cmath>

#include <gmock/gmock.h>

#include "host/verify/verify.h"

namespace trackedcam::host {
namespace {

using crosscheck::Answer;
using crosscheck::Verification;
using testing::ElementsAre;
using testing::HasSubstr;

// In the tracker's axes after the axis fix.
crosscheck::MountMove Move() {
  return {{3, 0, 4}, {0.1, 0.2, 0.2}, {0.5, 0.6, 0.7}, {0.01, 0.02, 0.03}, {}};
}

Verification Found(Answer answer) {
  Verification found;
  found.answer = answer;
  found.usable = found.used = 5;
  return found;
}

// The reported x, y, z count as -x, -z, -y.
TEST(VerifyText, GivesMovesInReportedAxes) {
  const ReportedMove reported = InReportedAxes(Move());
  EXPECT_EQ(reported.mm, Eigen::Vector3d(-3, -4, 0));
  EXPECT_EQ(reported.degrees, Eigen::Vector3d(-0.1, -0.2, -0.2));
  EXPECT_EQ(reported.halfMm, Eigen::Vector3d(0.5, 0.7, 0.6));
  EXPECT_EQ(reported.halfDegrees, Eigen::Vector3d(0.01, 0.03, 0.02));
}

TEST(VerifyText, NamesTheTrackerAndTheSizeOfItsMove) {
  Verification found = Found(Answer::kCameraTrackerMoved);
  found.camera = Move();
  EXPECT_EQ(AnswerText(found),
            "The tracker on the camera has moved on its mount, by 5.0 mm and 0.30 deg.");
  EXPECT_THAT(Details(found),
              ElementsAre("The camera's tracker along its reported x, y, z: -3.0 ± 0.5, -4.0 ± "
                          "0.7, +0.0 ± 0.6 mm; about them: -0.10 ± 0.01, -0.20 ± 0.03, -0.20 ± "
                          "0.02 deg."));
}

TEST(VerifyText, SaysWhatWouldHaveBeenFound) {
  Verification found = Found(Answer::kHolds);
  found.cameraDetectable = {0.74, 0.091};
  found.chartDetectable = {std::nan(""), std::nan("")};
  found.focalDetectablePercent = 0.07;
  EXPECT_EQ(AnswerText(found), "The calibration still holds.");
  EXPECT_THAT(Details(found),
              ElementsAre("A move of the camera's tracker by 0.7 mm or 0.09 deg would have been "
                          "found with a probability of 95 %.",
                          "A change of the focal length by 0.07 % would have been found too."));
}

TEST(VerifyText, NamesWhatItCannotTellApart) {
  Verification found = Found(Answer::kUnclear);
  found.candidates = {Answer::kChartTrackerMoved, Answer::kCameraTrackerMoved};
  found.diversity.amplification = 20;
  found.diversity.rotationDegrees = 40;
  found.diversity.axisInChart = Eigen::Vector3d::UnitZ();
  EXPECT_THAT(AnswerText(found), HasSubstr("the chart's tracker or the camera's tracker"));
  EXPECT_THAT(AdviceText(found), HasSubstr("by 40 deg to either side"));
}

TEST(VerifyText, NamesThePhotographsThatAreLeftOut) {
  Verification found = Found(Answer::kHolds);
  found.used = 4;
  found.photographs.resize(5);
  for (std::size_t i = 0; i < 5; ++i) {
    found.photographs[i].name = "img_" + std::to_string(i);
    found.photographs[i].used = i != 3;
  }
  EXPECT_THAT(Details(found).back(), HasSubstr("img_3."));
}

TEST(VerifyText, EveryAnswerHasItsAdvice) {
  for (int answer = 0; answer <= static_cast<int>(Answer::kTooFew); ++answer) {
    Verification found = Found(static_cast<Answer>(answer));
    found.camera = found.chart = Move();
    found.lens = crosscheck::LensChange();
    EXPECT_FALSE(AnswerText(found).empty()) << answer;
    EXPECT_FALSE(AdviceText(found).empty()) << answer;
  }
}

TEST(VerifyText, TheStatusSaysWhetherItHolds) {
  EXPECT_EQ(StatusOf(Answer::kHolds), 0);
  EXPECT_EQ(StatusOf(Answer::kTooFew), 1);
  EXPECT_EQ(StatusOf(Answer::kUnclear), 3);
  EXPECT_EQ(StatusOf(Answer::kCameraTrackerMoved), 3);
  EXPECT_EQ(StatusOf(Answer::kUnrelated), 3);
}

}  // namespace
}  // namespace trackedcam::host
