#include "crosscheck/verify.h"

#include <limits>
#include <stdexcept>

#include <gmock/gmock.h>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"
#include "crosscheck/kit/later_shoot.h"
#include "crosscheck/kit/shoot_flaws.h"

namespace trackedcam::crosscheck {
namespace {

using test::Between;
using test::DrawMove;
using test::LaterPhotographs;

constexpr double kPixels = 0.05;  // noise of a corner
constexpr std::uint64_t kSeed = 41;

simulator::ShootOptions Quiet(std::uint64_t seed = kSeed) {
  simulator::ShootOptions options = test::FortyPhotographs(seed);
  options.trackerNoiseMm = 0.1;
  options.trackerNoiseDegrees = 0.02;
  return options;
}

Calibration CalibrationFor(const simulator::ShootOptions& options) {
  const CrossCheck check = Check(test::MakeShoot(options, kPixels).observations);
  return check.calibration.value();
}

class VerifyTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { calibration_ = new Calibration(CalibrationFor(Quiet())); }
  static void TearDownTestSuite() {
    delete calibration_;
    calibration_ = nullptr;
  }

  static Verification VerifyAfter(const Between& between, const VerifyOptions& options = {}) {
    return Verify(*calibration_, LaterPhotographs(Quiet(), kPixels, between), options);
  }

  static Calibration* calibration_;
};

Calibration* VerifyTest::calibration_ = nullptr;

TEST_F(VerifyTest, HoldsIfNothingChanged) {
  for (const int photographs : {3, 5, 12}) {
    SCOPED_TRACE(photographs);
    Between between;
    between.later = photographs;
    const Verification found = VerifyAfter(between);
    EXPECT_STREQ(Name(found.answer), "holds");
    EXPECT_EQ(found.used, static_cast<std::size_t>(photographs));
    EXPECT_GT(found.p, kCertain);
    EXPECT_FALSE(found.camera || found.chart || found.lens);
    for (const Verified& photograph : found.photographs) {
      EXPECT_LT(photograph.oldMm, 2);
      EXPECT_LT(photograph.oldPixels, 3);
      EXPECT_EQ(photograph.oldPixels, photograph.newPixels);
    }
  }
}

// Worked for one tracker from the noise alone: more photographs find smaller changes, and none
// smaller than the mean of their noise.
TEST_F(VerifyTest, SaysHowLargeAChangeItWouldHaveSeen) {
  Between three;
  three.later = 3;
  Between twelve;
  twelve.later = 12;
  const Detectable few = VerifyAfter(three).cameraDetectable;
  const Detectable many = VerifyAfter(twelve).cameraDetectable;
  EXPECT_GT(few.mm, many.mm);
  EXPECT_GT(few.degrees, many.degrees);
  EXPECT_LT(few.mm, 1.9);
  EXPECT_LT(few.degrees, 0.25);
  EXPECT_GT(many.mm, 0.1);
  EXPECT_GT(many.degrees, 0.02);
}

TEST_F(VerifyTest, FindsTheCamerasTracker) {
  Between between;
  between.cameraMove = DrawMove(1, 4, 0.5);
  const Verification found = VerifyAfter(between);
  ASSERT_STREQ(Name(found.answer), "cameraTrackerMoved");
  ASSERT_TRUE(found.camera);
  EXPECT_FALSE(found.chart || found.lens);
  EXPECT_NEAR(found.camera->mm.norm(), 4, 0.6);
  EXPECT_NEAR(found.camera->degrees.norm(), 0.5, 0.08);
  EXPECT_LT(found.camera->halfMm.maxCoeff(), 1);
  for (const Verified& photograph : found.photographs) {
    EXPECT_LT(photograph.newPixels, photograph.oldPixels);
  }
}

TEST_F(VerifyTest, FindsTheChartsTracker) {
  Between between;
  between.chartMove = DrawMove(2, 4, 0.5);
  const Verification found = VerifyAfter(between);
  ASSERT_STREQ(Name(found.answer), "chartTrackerMoved");
  ASSERT_TRUE(found.chart);
  EXPECT_FALSE(found.camera || found.lens);
  EXPECT_NEAR(found.chart->mm.norm(), 4, 0.6);
  EXPECT_NEAR(found.chart->degrees.norm(), 0.5, 0.08);
}

TEST_F(VerifyTest, FindsBothTrackers) {
  Between between;
  between.cameraMove = DrawMove(3, 10, 1);
  between.chartMove = DrawMove(4, 7, 2);
  const Verification found = VerifyAfter(between);
  ASSERT_STREQ(Name(found.answer), "bothTrackersMoved");
  EXPECT_NEAR(found.camera->mm.norm(), 10, 1);
  EXPECT_NEAR(found.chart->mm.norm(), 7, 1);
  EXPECT_NEAR(found.chart->degrees.norm(), 2, 0.1);
}

TEST_F(VerifyTest, FindsATrackerThatWasTurnedFar) {
  Between between;
  between.cameraMove = DrawMove(5, 100, 90);
  const Verification found = VerifyAfter(between);
  ASSERT_STREQ(Name(found.answer), "cameraTrackerMoved");
  EXPECT_NEAR(found.camera->mm.norm(), 100, 1);
  EXPECT_NEAR(found.camera->degrees.norm(), 90, 0.1);
}

TEST_F(VerifyTest, FindsAnotherFocus) {
  Between between;
  between.lens = [](simulator::Lens& lens) { lens.fx *= 1.01, lens.fy *= 1.01; };
  const Verification found = VerifyAfter(between);
  ASSERT_STREQ(Name(found.answer), "lensChanged");
  ASSERT_TRUE(found.lens && found.lens->hasFocal);
  EXPECT_NEAR(found.lens->focalPercent.change, 1, 0.2);
  EXPECT_STREQ(Name(found.lens->cause), "focus");
}

TEST_F(VerifyTest, FindsAZoom) {
  Between between;
  between.lens = [](simulator::Lens& lens) { lens.fx *= 1.2, lens.fy *= 1.2; };
  const Verification found = VerifyAfter(between);
  ASSERT_STREQ(Name(found.answer), "lensChanged");
  EXPECT_NEAR(found.lens->focalPercent.change, 20, 0.3);
  EXPECT_STREQ(Name(found.lens->cause), "zoom");
}

TEST_F(VerifyTest, FindsAShiftedPrincipalPoint) {
  Between between;
  between.lens = [](simulator::Lens& lens) { lens.cx += 8, lens.cy -= 6; };
  const Verification found = VerifyAfter(between);
  ASSERT_STREQ(Name(found.answer), "lensChanged");
  ASSERT_TRUE(found.lens && found.lens->hasCentre);
  EXPECT_NEAR(found.lens->cx.change, 8, 1);
  EXPECT_NEAR(found.lens->cy.change, -6, 1);
  EXPECT_STREQ(Name(found.lens->cause), "stabilisation");
}

TEST_F(VerifyTest, FindsAnotherDistortion) {
  Between between;
  between.lens = [](simulator::Lens& lens) { lens.k1 += 0.02; };
  const Verification found = VerifyAfter(between);
  ASSERT_STREQ(Name(found.answer), "lensChanged");
  EXPECT_TRUE(found.lens->hasDistortion);
}

TEST_F(VerifyTest, FindsADistortionThatTheCalibrationHasNoParametersFor) {
  Between between;
  between.later = 12;
  EXPECT_FALSE(VerifyAfter(between).lensModel);
  between.lens = [](simulator::Lens& lens) { lens.p1 = 0.002; };
  const Verification found = VerifyAfter(between);
  ASSERT_TRUE(found.lensModel);
  EXPECT_NEAR(found.lensModel->p1, 0.002, 0.0004);
  EXPECT_EQ(found.lensModel->k3, 0);
  EXPECT_GT(found.lensModel->pixels, 0.1);
}

TEST_F(VerifyTest, FindsLensAndTracker) {
  Between between;
  between.cameraMove = DrawMove(6, 10, 1);
  between.lens = [](simulator::Lens& lens) { lens.fx *= 1.02, lens.fy *= 1.02; };
  between.later = 8;
  const Verification found = VerifyAfter(between);
  ASSERT_STREQ(Name(found.answer), "lensAndTracker");
  EXPECT_TRUE(found.camera && found.lens);
  EXPECT_NEAR(found.lens->focalPercent.change, 2, 0.3);
}

// With the chart always in the same orientation, a shift of either tracker explains what is seen.
TEST_F(VerifyTest, CannotTellTheTrackersApartWithoutRotation) {
  Between between;
  between.turning = 0.01;
  between.cameraMove = DrawMove(7, 5, 0);
  const Verification found = VerifyAfter(between);
  EXPECT_STREQ(Name(found.answer), "unclear");
  EXPECT_THAT(found.candidates, testing::Contains(Answer::kCameraTrackerMoved));
  EXPECT_THAT(found.candidates, testing::Contains(Answer::kChartTrackerMoved));
  EXPECT_GT(found.diversity.amplification, kMostAmplification);
}

TEST_F(VerifyTest, NeedsThreePhotographs) {
  Between between;
  between.later = 2;
  EXPECT_STREQ(Name(VerifyAfter(between).answer), "tooFew");
  EXPECT_STREQ(Name(Verify(*calibration_, {}).answer), "tooFew");
  auto photographs = LaterPhotographs(Quiet(), kPixels, Between());
  for (std::size_t i = 0; i < 3; ++i) {
    photographs[i].camera.position.x() = std::numeric_limits<double>::quiet_NaN();
  }
  const Verification found = Verify(*calibration_, photographs);
  EXPECT_STREQ(Name(found.answer), "tooFew");
  EXPECT_EQ(found.usable, 2U);
  EXPECT_TRUE(std::isnan(found.photographs.front().oldPixels));
}

TEST_F(VerifyTest, LeavesOutAPhotographThatAloneContradicts) {
  auto photographs = LaterPhotographs(Quiet(), kPixels, Between());
  test::Displace(photographs[2].camera, DrawMove(8, 40, 3));
  const Verification found = Verify(*calibration_, photographs);
  EXPECT_STREQ(Name(found.answer), "holds");
  EXPECT_EQ(found.used, 4U);
  EXPECT_FALSE(found.photographs[2].used);
  EXPECT_NEAR(found.photographs[2].oldMm, 40, 5);
}

TEST_F(VerifyTest, HoldsWithNoisierTrackers) {
  Between between;
  between.noiseFactor = 4;
  between.later = 8;
  const Verification found = VerifyAfter(between);
  EXPECT_STREQ(Name(found.answer), "holds");
  EXPECT_NEAR(found.noiseFactor, 4, 1.5);
}

TEST_F(VerifyTest, RecognisesAnotherReading) {
  auto photographs = LaterPhotographs(Quiet(), kPixels, Between());
  for (Photograph& photograph : photographs) {
    for (TrackerPose* tracker : {&photograph.camera, &photograph.chart}) {
      tracker->quaternionWxyz.tail<3>() *= -1;
    }
  }
  EXPECT_STREQ(Name(Verify(*calibration_, photographs).answer), "unrelated");
}

TEST_F(VerifyTest, RecognisesSquaresOfAnotherSize) {
  auto photographs = LaterPhotographs(Quiet(), kPixels, Between());
  for (Photograph& photograph : photographs) {
    photograph.camera.position *= 1.2;
    photograph.chart.position *= 1.2;
  }
  EXPECT_STREQ(Name(Verify(*calibration_, photographs).answer), "unrelated");
}

TEST_F(VerifyTest, SolvesTheMountingOfAChartThatWasMountedAnew) {
  Between between;
  between.chartMove = DrawMove(9, 80, 120);
  VerifyOptions options;
  options.chartRemounted = true;
  const Verification found = VerifyAfter(between, options);
  EXPECT_STREQ(Name(found.answer), "holds");
  ASSERT_TRUE(found.chart);
  EXPECT_NEAR(found.chart->mm.norm(), 80, 1);
  EXPECT_NEAR(found.chart->degrees.norm(), 120, 0.1);

  between.cameraMove = DrawMove(10, 8, 1);
  const Verification moved = VerifyAfter(between, options);
  ASSERT_STREQ(Name(moved.answer), "cameraTrackerMoved");
  EXPECT_NEAR(moved.camera->mm.norm(), 8, 1);
}

TEST_F(VerifyTest, TakesAnotherBoardOnAChartThatWasMountedAnew) {
  simulator::ShootOptions later = Quiet();
  later.chart.cols -= 2;
  later.chart.squareMetres *= 1.25;
  VerifyOptions options;
  options.chartRemounted = true;
  options.otherBoard = Board{later.chart.cols, later.chart.rows, later.chart.squareMetres, {}};
  const auto photographs = LaterPhotographs(later, kPixels, Between());
  EXPECT_STREQ(Name(Verify(*calibration_, photographs, options).answer), "holds");
  EXPECT_THROW(Verify(*calibration_, photographs), std::invalid_argument);
}

// A short form of the study.
TEST_F(VerifyTest, RaisesNoFalseAlarms) {
  const int shoots = 30;
  for (int i = 0; i < shoots; ++i) {
    simulator::ShootOptions options = Quiet();
    Between between;
    between.later = i % 2 == 0 ? 3 : 5;
    between.draw = static_cast<std::uint64_t>(i);
    SCOPED_TRACE(i);
    EXPECT_STREQ(Name(Verify(*calibration_, LaterPhotographs(options, kPixels, between)).answer),
                 "holds");
  }
}

TEST(CalibrationTest, IsSoundOnlyIfComplete) {
  const Calibration good = CalibrationFor(Quiet(3));
  EXPECT_TRUE(IsSound(good));
  EXPECT_NEAR(std::sqrt(good.translationVariance), 1e-4, 3e-5);
  EXPECT_NEAR(std::sqrt(good.rotationVariance), 0.02 * kDegree, 0.005 * kDegree);
  Calibration cut = good;
  cut.covariance.conservativeResize(5, 5);
  EXPECT_FALSE(IsSound(cut));
  Calibration edited = good;
  edited.covariance(0, 0) *= -1;
  EXPECT_FALSE(IsSound(edited));
  edited = good;
  edited.covariance(0, 8) *= 1e3;
  EXPECT_FALSE(IsSound(edited));
  edited = good;
  edited.lens.fx = 0;
  EXPECT_FALSE(IsSound(edited));
}

}  // namespace
}  // namespace trackedcam::crosscheck
