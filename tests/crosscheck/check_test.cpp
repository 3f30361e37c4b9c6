#include <gmock/gmock.h>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"
#include "support/transform_matchers.h"

namespace trackedcam::crosscheck {
namespace {

using test::FortyNoisy;
using test::FortyPhotographs;
using test::IsTransformNear;
using test::KnownShoot;
using test::MakeShoot;

std::vector<std::string> Said(const CrossCheck& check) {
  std::vector<std::string> said;
  for (const Finding& finding : check.findings) {
    said.emplace_back(Name(finding.id));
  }
  return said;
}

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
    EXPECT_THAT(Said(check), testing::IsEmpty());
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
    ASSERT_THAT(Said(check), testing::ElementsAre("mountingOff"));
    const Finding& finding = check.findings.front();
    EXPECT_EQ(finding.severity, Severity::kError);
    EXPECT_NEAR(finding.Number("offMm"), 27, 1.5);
    EXPECT_NEAR(finding.Number("offDegrees"), 1, 0.1);
    EXPECT_GT(finding.Number("resultOffMm"), 5);
  }
}

}  // namespace
}  // namespace trackedcam::crosscheck
