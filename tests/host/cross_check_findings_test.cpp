#include "host/findings/cross_check_findings.h"

#include <gmock/gmock.h>

namespace trackedcam::host {
namespace {

using crosscheck::FindingId;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

const std::vector<std::string> kPhotographs = {"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg"};

crosscheck::CrossCheck CheckWith(const crosscheck::Finding& finding) {
  crosscheck::CrossCheck check;
  check.perPhotograph.resize(kPhotographs.size());
  check.findings = {finding};
  return check;
}

Finding Worded(const crosscheck::Finding& finding) {
  return FindingsOf(CheckWith(finding), kPhotographs).at(0);
}

TEST(CrossCheckFindings, SayByHowMuchTheMountingIsOff) {
  crosscheck::Finding finding;
  finding.id = FindingId::kMountingOff;
  finding.severity = Severity::kError;
  finding.numbers = {
      {"offMm", 27}, {"offDegrees", 1.006}, {"resultOffMm", 18.46}, {"resultOffDegrees", 0.69}};
  const Finding worded = Worded(finding);
  EXPECT_EQ(worded.id, "mountingOff");
  EXPECT_EQ(worded.severity, Severity::kError);
  EXPECT_EQ(worded.text,
            "The stated mounting of the chart's tracker is off by 27.0 mm and 1.01 deg, so the "
            "result is off by 18.5 mm and 0.69 deg.");
  EXPECT_EQ(worded.numbers, finding.numbers);
  finding.detail = "inverse";
  EXPECT_THAT(Worded(finding).text, EndsWith("Perhaps the inverse was given: the tracker on the "
                                             "chart instead of the chart on it."));
}

TEST(CrossCheckFindings, NameTheWorstPhotographsAndWhy) {
  crosscheck::Finding finding;
  finding.id = FindingId::kBadPhotographs;
  finding.photographs = {3, 0, 4, 1};
  crosscheck::CrossCheck check = CheckWith(finding);
  check.perPhotograph[3].mm = 39.4;
  check.perPhotograph[3].degrees = 2.9;
  check.perPhotograph[0].why = "firstCornerAtOtherEnd";
  check.perPhotograph[4].fitsTrackersOf = 2;
  const Finding worded = FindingsOf(check, kPhotographs).at(0);
  EXPECT_THAT(worded.photographs, ElementsAre("d.jpg", "a.jpg", "e.jpg", "b.jpg"));
  EXPECT_EQ(worded.text,
            "4 photographs contradict the others: d.jpg (39 mm, 2.9 deg), a.jpg (0 mm, 0.0 deg: "
            "the board was read from its other end), e.jpg (0 mm, 0.0 deg: fits the trackers of "
            "c.jpg) and 1 more.");
}

TEST(CrossCheckFindings, NameThePhotographBeforeWhichATrackerMoved) {
  crosscheck::Finding finding;
  finding.id = FindingId::kTrackerMoved;
  finding.numbers = {{"mm", 6}, {"degrees", 0.5}};
  finding.photographs = {2};
  finding.detail = "chart";
  EXPECT_EQ(Worded(finding).text,
            "The tracker on the chart moved on its mount before c.jpg, by 6.0 mm and 0.50 deg, and "
            "stayed there.");
}

TEST(CrossCheckFindings, SayWhichWayToTurnTheChart) {
  crosscheck::Finding finding;
  finding.id = FindingId::kTooLittleTurning;
  finding.numbers = {{"amplification", 11.2},
                     {"turnDegrees", 20},
                     {"axisX", 0.1},
                     {"axisY", 0.2},
                     {"axisZ", -0.9}};
  EXPECT_THAT(Worded(finding).text, HasSubstr("errors grow 11.2 times"));
  EXPECT_THAT(Worded(finding).advice,
              HasSubstr("turned more about the axis that points out of the chart, by 20 degrees"));
}

TEST(CrossCheckFindings, HaveWordsForEveryReading) {
  for (const char* reading :
       {"quaternionsInverted", "orderXyzw", "trackersExchanged", "rowsLate", "rowsEarly",
        "millimetres", "centimetres", "leftHanded", "mirroredX", "mirroredY", "mirroredZ"}) {
    crosscheck::Finding finding;
    finding.id = FindingId::kReading;
    finding.numbers = {{"times", 40}};
    finding.detail = reading;
    EXPECT_THAT(Worded(finding).text, testing::Not(HasSubstr("so: ."))) << reading;
  }
}

TEST(CrossCheckFindings, HaveTextAndAdviceOfAnyKind) {
  for (const FindingId id :
       {FindingId::kNoAgreement, FindingId::kReading, FindingId::kTooLittleTurning,
        FindingId::kTrackerMoved, FindingId::kMountingOff, FindingId::kBadPhotographs,
        FindingId::kSquareSize, FindingId::kHalvesDiffer, FindingId::kLensUncertain,
        FindingId::kTrackersNoisy, FindingId::kLibraryApart}) {
    crosscheck::Finding finding;
    finding.id = id;
    finding.photographs = {1};
    EXPECT_THAT(Worded(finding).text, EndsWith(".")) << Name(id);
    EXPECT_THAT(Worded(finding).advice, EndsWith(".")) << Name(id);
  }
}

}  // namespace
}  // namespace trackedcam::host
