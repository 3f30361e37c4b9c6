#include <gmock/gmock.h>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"
#include "crosscheck/kit/reported.h"
#include "support/transform_matchers.h"

namespace trackedcam::crosscheck {
namespace {

using test::FortyNoisy;
using test::FortyPhotographs;
using test::IsTransformNear;
using test::KnownShoot;
using test::MakeShoot;
using test::Reported;

TEST(CheckTest, FindsBothTransformsOfAPerfectShoot) {
  for (std::uint64_t seed = 1; seed <= 5; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const KnownShoot shoot = MakeShoot(FortyPhotographs(seed));
    const CrossCheck check = Check(shoot.observations);
    ASSERT_TRUE(check.solved);
    EXPECT_EQ(check.photographs, 40U);
    EXPECT_EQ(check.used, 40U);
    EXPECT_THAT(check.Transform_Cam_Tc,
                IsTransformNear(shoot.Transform_Cam_Tc.matrix(), 1e-7, 1e-5));
    EXPECT_THAT(check.Transform_Tr_Chart,
                IsTransformNear(shoot.Transform_Tr_Chart.matrix(), 1e-7, 1e-5));
    EXPECT_THAT(Reported(check), testing::IsEmpty());
  }
}

TEST(CheckTest, FindsAMountingThatIsStatedWrongly) {
  for (std::uint64_t seed = 1; seed <= 5; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    simulator::ShootOptions options = FortyNoisy(seed);
    options.mountingErrorMm = 27;
    options.mountingErrorDegrees = 1;
    KnownShoot shoot = MakeShoot(options, 0.05);
    shoot.observations.library = test::BelievingTheMounting(shoot).matrix();
    const CrossCheck check = Check(shoot.observations);
    ASSERT_TRUE(check.solved);
    EXPECT_THAT(check.Transform_Cam_Tc,
                IsTransformNear(shoot.Transform_Cam_Tc.matrix(), 2e-3, 0.1));
    ASSERT_THAT(Reported(check), testing::ElementsAre("mountingOff error"));
    const MountingOff& finding = test::Get<MountingOff>(check);
    EXPECT_NEAR(finding.offMm, 27, 1.5);
    EXPECT_NEAR(finding.offDegrees, 1, 0.1);
    EXPECT_GT(finding.resultOffMm, 5);
  }
}

}  // namespace
}  // namespace trackedcam::crosscheck
