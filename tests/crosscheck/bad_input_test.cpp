// Check() on what cannot be: it refuses or finds nothing, and never fails otherwise.

#include <cmath>
#include <limits>
#include <stdexcept>

#include <gmock/gmock.h>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"
#include "crosscheck/kit/reported.h"
#include "simulator/random.h"

namespace trackedcam::crosscheck {
namespace {

using test::Has;

const double kNan = std::nan("");
const double kInfinity = std::numeric_limits<double>::infinity();

Observations Sound() {
  simulator::ShootOptions options = test::FortyNoisy(7);
  options.photographs = 16;
  return test::MakeShoot(options).observations;
}

TEST(BadInputTest, ABoardALensOrAMountingThatCannotBeIsRefused) {
  const auto refused = [](auto spoil) {
    Observations observations = Sound();
    spoil(observations);
    EXPECT_THROW(Check(observations), std::invalid_argument);
  };
  refused([](Observations& o) { o.boardColumns = 1; });
  refused([](Observations& o) { o.boardRows = -3; });
  refused([](Observations& o) { o.boardRows = 5; });  // the corners are of six
  refused([](Observations& o) { o.square = 0; });
  refused([](Observations& o) { o.square = kNan; });
  refused([](Observations& o) { o.lens.width = 0; });
  refused([](Observations& o) { o.lens.fx = -1; });
  refused([](Observations& o) { o.lens.cy = kInfinity; });
  refused([](Observations& o) { o.lens.k2 = kNan; });
  refused([](Observations& o) { o.mounting->rotationDegrees[1] = kNan; });
  refused([](Observations& o) { o.mounting->translationMetres[2] = kInfinity; });
  refused([](Observations& o) { o.library = Eigen::Matrix4d::Zero(); });
  refused([](Observations& o) { o.library = 2 * Eigen::Matrix4d::Identity(); });
  refused([](Observations& o) { o.goodEnough.mm = 0; });
  refused([](Observations& o) { o.photographs[3].corners.pop_back(); });
  refused([](Observations& o) { o.photographs[3].corners.clear(); });
}

TEST(BadInputTest, PhotographsWithoutNumbersAreLeftOutAndNamed) {
  Observations observations = Sound();
  observations.photographs[1].camera.position.x() = kNan;
  observations.photographs[4].chart.quaternionWxyz.setZero();
  observations.photographs[6].chart.quaternionWxyz[2] = kInfinity;
  observations.photographs[9].corners[20].y() = kNan;
  observations.photographs[11].corners.assign(54, Eigen::Vector2d(500, 500));
  const CrossCheck check = Check(observations);
  ASSERT_TRUE(check.solved);
  EXPECT_EQ(check.used, 11U);
  EXPECT_EQ(check.perPhotograph[1].whyLeftOut, WhyLeftOut::kNotNumbers);
  EXPECT_EQ(check.perPhotograph[4].whyLeftOut, WhyLeftOut::kNotNumbers);
  EXPECT_EQ(check.perPhotograph[6].whyLeftOut, WhyLeftOut::kNotNumbers);
  EXPECT_EQ(check.perPhotograph[9].whyLeftOut, WhyLeftOut::kNoPose);
  EXPECT_THAT(test::Get<BadPhotographs>(check).photographs,
              testing::UnorderedElementsAre(1, 4, 6, 9, 11));
}

TEST(BadInputTest, OfTooFewPhotographsNothingIsSolved) {
  for (std::size_t count = 0; count < 3; ++count) {
    SCOPED_TRACE(std::to_string(count) + " photographs");
    Observations observations = Sound();
    observations.photographs.resize(count);
    const CrossCheck check = Check(observations);
    EXPECT_FALSE(check.solved);
    EXPECT_EQ(check.photographs, count);
    EXPECT_EQ(check.perPhotograph.size(), count);
    EXPECT_TRUE(Has<NoAgreement>(check));
  }
}

TEST(BadInputTest, AFewPhotographsDoNotFail) {
  for (std::size_t count = 3; count < 12; ++count) {
    SCOPED_TRACE(std::to_string(count) + " photographs");
    Observations observations = Sound();
    observations.photographs.resize(count);
    const CrossCheck check = Check(observations);
    EXPECT_EQ(check.perPhotograph.size(), count);
    if (check.solved) {
      EXPECT_TRUE(check.Transform_Cam_Tc.allFinite());
      EXPECT_TRUE(check.covarianceCamTcTwist.allFinite());
    }
  }
}

TEST(BadInputTest, PhotographsThatAreAllTheSameTellNothing) {
  Observations observations = Sound();
  observations.photographs.assign(20, observations.photographs.front());
  const CrossCheck check = Check(observations);
  EXPECT_FALSE(check.mounting);
  EXPECT_FALSE(check.findings.empty());
}

TEST(BadInputTest, TrackersThatStandStillDoNotFail) {
  Observations observations = Sound();
  for (Photograph& photograph : observations.photographs) {
    photograph.camera = observations.photographs.front().camera;
    photograph.chart = observations.photographs.front().chart;
  }
  const CrossCheck check = Check(observations);
  ASSERT_FALSE(check.findings.empty());
  EXPECT_EQ(check.findings.front().severity, Severity::kError);
}

TEST(BadInputTest, NoiseInPlaceOfTrackersIsNoAgreement) {
  Observations observations = Sound();
  simulator::Random random(2, simulator::Draw::kTrackers);
  for (Photograph& photograph : observations.photographs) {
    photograph.camera.position = random.NormalVector();
    photograph.camera.quaternionWxyz << random.Normal(), random.NormalVector();
  }
  EXPECT_TRUE(Has<NoAgreement>(Check(observations)));
}

TEST(BadInputTest, ALibrarysResultThatIsNoNumberIsNotCompared) {
  Observations observations = Sound();
  observations.library = Eigen::Matrix4d::Constant(kNan);
  const CrossCheck check = Check(observations);
  EXPECT_TRUE(check.solved);
  EXPECT_FALSE(check.library);
}

TEST(BadInputTest, QuaternionsOfAnyLengthAreTurns) {
  const CrossCheck plain = Check(Sound());
  Observations observations = Sound();
  for (Photograph& photograph : observations.photographs) {
    photograph.camera.quaternionWxyz *= -3;
    photograph.chart.quaternionWxyz *= 0.01;
  }
  const CrossCheck scaled = Check(observations);
  EXPECT_TRUE(scaled.Transform_Cam_Tc.isApprox(plain.Transform_Cam_Tc, 1e-9));
}

}  // namespace
}  // namespace trackedcam::crosscheck
