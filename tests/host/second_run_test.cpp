#include "host/second_run.h"

#include <gmock/gmock.h>

namespace trackedcam::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// Sixteen photographs with the board, of which the first some contradict the others.
Report FirstRun(std::size_t contradicting) {
  Report report;
  report.inputs.mounting = Mounting{{1, 2, 3}, {0.1, 0.2, 0.3}};
  report.inputs.refineMounting = true;
  report.inputs.expectedRecords = 16;
  report.run.code = 0;
  report.run.record.isSuccessful = true;
  for (int i = 0; i < 16; ++i) {
    report.run.record.photographs.push_back({std::to_string(i) + ".jpg", std::nullopt, RawData{}});
  }
  report.photographs = ListPhotographs(report.run.record);
  EnterRun(report.run, ToRun(report.photographs), report.photographs);
  crosscheck::CrossCheck& check = report.crossCheck.emplace();
  check.solved = true;
  check.photographs = 16;
  check.used = 16 - contradicting;
  check.mounting = Mounting{{4, 5, 6}, {0.4, 0.5, 0.6}};
  check.perPhotograph.resize(16);
  for (std::size_t i = contradicting; i < 16; ++i) {
    check.perPhotograph[i].used = true;
  }
  EnterCrossCheck(check, report.photographs);
  return report;
}

Finding ErrorOf(const FindingKind& kind) {
  return {Severity::kError, kind, {}};
}

TEST(SecondRun, IsWithTheMountingFoundAndWithoutWhatContradicts) {
  Report first = FirstRun(2);
  first.findings = {ErrorOf(crosscheck::MountingOff{})};
  EXPECT_TRUE(NeedsSecondRun(first));
  const Inputs inputs = InputsOfSecondRun(first);
  EXPECT_EQ(inputs.mounting->rotationDegrees[0], 4);
  EXPECT_FALSE(inputs.expectedRecords);
  PhotographList list = PhotographsOfSecondRun(first, ListPhotographs(first.run.record));
  EXPECT_EQ(list[1].state, PhotographState::kLeftOutByCrossCheck);
  EXPECT_EQ(list[1].reason, first.photographs[1].reason);
  EXPECT_THAT(ToRun(list), SizeIs(14));
}

TEST(SecondRun, IsNotNeededWithoutAReason) {
  Report first = FirstRun(0);
  EXPECT_FALSE(NeedsSecondRun(first));
  first.findings = {ErrorOf(crosscheck::TrackersNoisy{})};
  EXPECT_FALSE(NeedsSecondRun(first));
  first.findings = {ErrorOf(crosscheck::LibraryApart{})};
  EXPECT_TRUE(NeedsSecondRun(first));
  first.inputs.refineMounting = false;
  EXPECT_FALSE(NeedsSecondRun(first));
  first.inputs.mounting = std::nullopt;  // the first run was given zeros
  EXPECT_TRUE(NeedsSecondRun(first));
}

TEST(SecondRun, CannotBeWhereItWouldFindNothing) {
  Report first = FirstRun(5);
  first.findings = {ErrorOf(BadPhotographs{})};
  EXPECT_FALSE(CanRunAgain(first));
  ASSERT_TRUE(TooFewForSecondRun(first));
  EXPECT_EQ(TooFewForSecondRun(first)->agree, 11U);
  EXPECT_EQ(TooFewForSecondRun(first)->all, 16U);

  first = FirstRun(2);
  first.findings = {ErrorOf(crosscheck::MisreadRows{})};
  EXPECT_FALSE(CanRunAgain(first));
  EXPECT_FALSE(TooFewForSecondRun(first));
  first.findings.clear();
  first.crossCheck->mounting = std::nullopt;  // the stated one is kept
  EXPECT_TRUE(CanRunAgain(first));
  EXPECT_EQ(InputsOfSecondRun(first).mounting->rotationDegrees[0], 1);
  first.inputs.mounting = std::nullopt;
  EXPECT_FALSE(CanRunAgain(first));
  first.crossCheck = std::nullopt;
  EXPECT_FALSE(CanRunAgain(first));
}

TEST(SecondRun, KeepsErrorsOfTheShootButNotOfTheRun) {
  Report first = FirstRun(0);
  first.findings = {ErrorOf(crosscheck::TrackerMoved{}),
                    ErrorOf(crosscheck::MountingOff{}),
                    ErrorOf(crosscheck::LibraryApart{}),
                    ErrorOf(FewUsed{}),
                    {Severity::kWarning, crosscheck::SquareSizeOff{}, {}}};
  const std::vector<Finding> stay = FindingsThatStay(first);
  ASSERT_THAT(stay, SizeIs(1));
  EXPECT_TRUE(std::holds_alternative<crosscheck::TrackerMoved>(stay[0].kind));
  EXPECT_EQ(stay[0].severity, Severity::kError);
  EXPECT_THAT(FindingsThatStay(FirstRun(0)), IsEmpty());
}

TEST(MountingToPassOn, IsKnownAndOfAShootWithoutErrors) {
  Report report = FirstRun(0);
  EXPECT_EQ(MountingToPassOn(report)->rotationDegrees[0], 4);
  report.findings = {ErrorOf(crosscheck::MountingOff{})};  // of the stated one
  EXPECT_TRUE(MountingToPassOn(report));
  report.findings = {ErrorOf(crosscheck::TrackerMoved{})};
  EXPECT_FALSE(MountingToPassOn(report));
  report.findings.clear();
  report.crossCheck->t95 = 2;
  report.crossCheck->standardErrorTrChart.translationMm = {0, 1.01, 0};
  EXPECT_FALSE(MountingToPassOn(report));
  report.inputs.goodEnough.mm = 2.1;
  EXPECT_TRUE(MountingToPassOn(report));
  report.crossCheck->mounting = std::nullopt;
  EXPECT_FALSE(MountingToPassOn(report));
}

TEST(MountingToPassOn, OfTwoRunsIsThatOfTheSecond) {
  Report report = FirstRun(0);
  report.firstRun = std::make_shared<const Report>(report);
  EXPECT_EQ(MountingToPassOn(report)->rotationDegrees[0], 1);
}

TEST(SecondRun, NamesEveryPhotographThatItIsWithout) {
  Report first = FirstRun(2);
  first.crossCheck->perPhotograph[1].mm = 39;
  first.crossCheck->perPhotograph[1].whyLeftOut = crosscheck::WhyLeftOut::kFitsTrackersOf;
  first.crossCheck->perPhotograph[1].fitsTrackersOf = 5;
  first.findings = {{Severity::kWarning, BadPhotographs{}, {"1.jpg"}}};
  std::vector<Finding> stay = FindingsThatStay(first);
  ASSERT_THAT(stay, SizeIs(1));
  EXPECT_EQ(stay[0].severity, Severity::kNote);
  EXPECT_THAT(stay[0].photographs, ElementsAre("0.jpg", "1.jpg"));
  const auto& leftOut = std::get<LeftOutPhotographs>(stay[0].kind);
  ASSERT_THAT(leftOut.disagreements, SizeIs(2));
  EXPECT_EQ(leftOut.disagreements[1].mm, 39);
  EXPECT_EQ(leftOut.disagreements[1].fitsTrackersOf, "5.jpg");
  first.findings[0].severity = Severity::kError;  // too many of the shoot
  EXPECT_EQ(FindingsThatStay(first)[0].severity, Severity::kError);
}

}  // namespace
}  // namespace trackedcam::host
