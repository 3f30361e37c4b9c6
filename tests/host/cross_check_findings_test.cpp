#include <gmock/gmock.h>

#include "host/findings/finding_text.h"
#include "host/verdict/cross_check_adapter.h"

namespace trackedcam::host {
namespace {

using crosscheck::WhyLeftOut;
using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> kPhotographs = {"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg"};

class CrossCheckFindings : public testing::Test {
 protected:
  CrossCheckFindings() { check.perPhotograph.resize(kPhotographs.size()); }

  Finding Converted(const crosscheck::FindingKind& kind) {
    check.findings = {{Severity::kError, kind}};
    return FindingsOf(check, kPhotographs).at(0);
  }

  crosscheck::CrossCheck check;
};

TEST_F(CrossCheckFindings, KeepTheirValuesAndSeverity) {
  const Finding finding = Converted(crosscheck::MountingOff{27, 1, 18, 0.7, 1e-9, 1e-8, {}});
  EXPECT_EQ(finding.severity, Severity::kError);
  EXPECT_EQ(std::get<crosscheck::MountingOff>(finding.kind).resultOffMm, 18);
  EXPECT_THAT(finding.photographs, IsEmpty());
}

TEST_F(CrossCheckFindings, NameThePhotographBeforeWhichATrackerMoved) {
  const Finding finding =
      Converted(crosscheck::TrackerMoved{crosscheck::Tracker::kChart, 2, 6, 0.5, 90});
  EXPECT_EQ(std::get<crosscheck::TrackerMoved>(finding.kind).before, 2U);
  EXPECT_THAT(finding.photographs, ElementsAre("c.jpg"));
}

TEST_F(CrossCheckFindings, NameBadPhotographsAndWhyTheyAreLeftOut) {
  check.perPhotograph[3].mm = 39.4;
  check.perPhotograph[3].degrees = 2.9;
  check.perPhotograph[0].whyLeftOut = WhyLeftOut::kFirstCornerAtOtherEnd;
  check.perPhotograph[4].whyLeftOut = WhyLeftOut::kFitsTrackersOf;
  check.perPhotograph[4].fitsTrackersOf = 2;
  const Finding finding = Converted(crosscheck::BadPhotographs{0.6, 39.4, 2.9, {3, 0, 4}});
  EXPECT_THAT(finding.photographs, ElementsAre("d.jpg", "a.jpg", "e.jpg"));
  const auto& bad = std::get<BadPhotographs>(finding.kind);
  EXPECT_EQ(bad.share, 0.6);
  ASSERT_EQ(bad.disagreements.size(), 3U);
  EXPECT_EQ(bad.disagreements[0].mm, 39.4);
  EXPECT_EQ(bad.disagreements[0].degrees, 2.9);
  EXPECT_FALSE(bad.disagreements[0].why);
  EXPECT_EQ(bad.disagreements[1].why, WhyLeftOut::kFirstCornerAtOtherEnd);
  EXPECT_EQ(bad.disagreements[2].fitsTrackersOf, "c.jpg");
}

TEST_F(CrossCheckFindings, GiveTheReasonOfEachPhotographThatIsLeftOut) {
  crosscheck::PerPhotograph& photograph = check.perPhotograph[4];
  EXPECT_EQ(ReasonText(photograph, kPhotographs), "");
  photograph.whyLeftOut = WhyLeftOut::kFitsTrackersOf;
  photograph.fitsTrackersOf = 2;
  EXPECT_THAT(ReasonText(photograph, kPhotographs), testing::EndsWith(" c.jpg"));
}

}  // namespace
}  // namespace trackedcam::host
