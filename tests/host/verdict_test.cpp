#include "host/verdict/verdict.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

#include "host/findings/finding_text.h"

namespace trackedcam::host {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

TEST(Verdict, HasAMessageAndAdviceForEveryDocumentedCode) {
  const std::string unknown = VerdictOf(1000).message;
  for (const int code : {0, 99, 1, 2, 15, 4, 5, 7, 8, 9, 10, 11, 12, 13, 6, 14, -1}) {
    EXPECT_NE(VerdictOf(code).message, unknown) << code;
    EXPECT_NE(VerdictOf(code).advice, "") << code;
  }
}

TEST(Verdict, IsUsableForSuccessAndWarningOnly) {
  EXPECT_TRUE(IsUsable(0));
  EXPECT_TRUE(IsUsable(99));
  for (const int code : {1, 2, 4, 5, 6, 7, 13, 14, 15, -1, 1000}) {
    EXPECT_FALSE(IsUsable(code)) << code;
  }
}

TEST(Verdict, OfATransformWithNanIsAFailure) {
  LibraryRun run;
  run.code = 0;
  run.outputs.transformCamTc.assign(16, 0.5);
  EXPECT_TRUE(IsUsable(run));
  for (const double number : {std::nan(""), std::numeric_limits<double>::infinity()}) {
    run.outputs.transformCamTc[5] = number;
    EXPECT_FALSE(IsUsable(run));
    EXPECT_EQ(VerdictOf(run, {}, {}).level, Level::kFailed);
    EXPECT_THAT(VerdictOf(run, {}, {}).message, HasSubstr("not a number"));
  }
  run.code = 4;
  EXPECT_EQ(VerdictOf(run, {}, {}).message, VerdictOf(4).message);
}

class VerdictOfFindings : public testing::Test {
 protected:
  VerdictOfFindings() {
    run.code = 0;
    run.outputs.transformCamTc.assign(16, 0.5);
    run.record.isSuccessful = true;
    run.record.photographs = {{"a", std::nullopt, std::nullopt},
                              {"b", DropReason::kOutlier, std::nullopt}};
  }

  PhotographList List() const {
    PhotographList list = ListPhotographs(run.record);
    EnterRun(run, ToRun(list), list);
    return list;
  }

  Verdict With(Severity severity) {
    finding.severity = severity;
    return VerdictOf(run, List(), {finding});
  }

  Finding finding = {Severity::kNote, crosscheck::MountingOff{27, 1, 18, 0.7, 0, 0, {}}, {}};
  LibraryRun run;
};

TEST_F(VerdictOfFindings, SaysFromHowManyPhotographs) {
  const Verdict verdict = VerdictOf(run, List(), {});
  EXPECT_EQ(verdict.level, Level::kGood);
  EXPECT_THAT(verdict.message, HasSubstr(", from 1 of 2 photographs."));
  EXPECT_EQ(verdict.summary, verdict.message);
  EXPECT_EQ(With(Severity::kNote).message, verdict.message);
}

// A full disk cuts the log, and the run goes on.
TEST_F(VerdictOfFindings, InventsNoCountsIfTheLogIsIncomplete) {
  run.record.isSuccessful = false;
  run.record.photographs.resize(1);
  EXPECT_EQ(With(Severity::kWarning).summary.find("photograph"), std::string::npos);
  EXPECT_EQ(With(Severity::kWarning).summary.back(), '.');
}

TEST_F(VerdictOfFindings, AdvisesMorePhotographsWhereTooFewAreLeft) {
  finding.severity = Severity::kWarning;
  const Finding few = {Severity::kWarning, TooFewAgree{11, 15}, {}};
  const Verdict verdict = VerdictOf(run, List(), {finding, few});
  EXPECT_EQ(verdict.message, verdict.summary + ' ' + Text(finding));
  EXPECT_EQ(verdict.advice, Advice(few));
  EXPECT_EQ(verdict.option, "");
}

TEST_F(VerdictOfFindings, IsWrongWithAnError) {
  const Verdict verdict = With(Severity::kError);
  EXPECT_EQ(verdict.level, Level::kWrong);
  EXPECT_THAT(verdict.summary, EndsWith(" wrong, from 1 of 2 photographs."));
  EXPECT_EQ(verdict.message, verdict.summary + ' ' + Text(finding));
  EXPECT_EQ(verdict.advice, Advice(finding));
  EXPECT_EQ(verdict.option, "--refine-mounting");
}

TEST_F(VerdictOfFindings, IsDoubtfulWithAWarning) {
  const Verdict verdict = With(Severity::kWarning);
  EXPECT_EQ(verdict.level, Level::kDoubtful);
  EXPECT_THAT(verdict.summary, EndsWith(" doubtful, from 1 of 2 photographs."));
  EXPECT_EQ(verdict.message, verdict.summary + ' ' + Text(finding));
}

TEST_F(VerdictOfFindings, SaysThatAResultCannotBeChecked) {
  for (const FindingKind& kind :
       std::vector<FindingKind>{crosscheck::TooLittleRotation{11, 20, {}, 1},
                                NotCrossChecked{"It stopped."}, LogIncomplete{false}}) {
    finding.kind = kind;
    const Verdict verdict = With(Severity::kWarning);
    EXPECT_EQ(verdict.level, Level::kDoubtful);
    EXPECT_THAT(verdict.summary, HasSubstr(" cannot be checked, from 1 of 2 "));
  }
  for (const FindingKind& kind :
       std::vector<FindingKind>{crosscheck::TooLittleRotation{9, 20, {}, 1}, LogIncomplete{true}}) {
    finding.kind = kind;
    EXPECT_THAT(With(Severity::kWarning).summary, HasSubstr(" is doubtful, "));
  }
}

TEST_F(VerdictOfFindings, HasNoNextStepThatCannotHelp) {
  finding.kind = crosscheck::TrackersNoisy{3, 0.3};
  EXPECT_EQ(With(Severity::kError).option, "");
}

TEST_F(VerdictOfFindings, OfAFailureGivesTheReason) {
  run.code = 13;
  run.outputs = {};
  const Verdict verdict = With(Severity::kError);
  EXPECT_EQ(verdict.level, Level::kFailed);
  EXPECT_EQ(verdict.summary, VerdictOf(13).message);
  EXPECT_EQ(verdict.message, verdict.summary + ' ' + Text(finding));
  EXPECT_EQ(verdict.advice, Advice(finding));
  EXPECT_EQ(With(Severity::kWarning).message, VerdictOf(13).message);
  EXPECT_EQ(With(Severity::kWarning).advice, VerdictOf(13).advice);
}

TEST_F(VerdictOfFindings, OfAnExceptionHasItsText) {
  run.code = std::nullopt;
  run.exception = "bad conversion";
  run.stoppedAt = "row 7, photos/a.jpg";
  EXPECT_THAT(VerdictOf(run, List(), {}).message,
              HasSubstr(" at row 7, photos/a.jpg: bad conversion."));
  EXPECT_EQ(VerdictOf(run, List(), {}).level, Level::kFailed);
}

TEST_F(VerdictOfFindings, WithoutAMountingIsAFailure) {
  const Verdict verdict = VerdictWithoutMounting(run, {});
  EXPECT_EQ(verdict.level, Level::kFailed);
  EXPECT_EQ(verdict.message, verdict.summary);
  finding.severity = Severity::kWarning;
  const Verdict withFinding = VerdictWithoutMounting(run, {finding});
  EXPECT_EQ(withFinding.summary, verdict.summary);
  EXPECT_EQ(withFinding.message, verdict.summary + ' ' + Text(finding));
  EXPECT_EQ(withFinding.advice, Advice(finding));
  EXPECT_EQ(withFinding.option, "");
}

TEST_F(VerdictOfFindings, WithoutAMountingGivesTheLibrarysReason) {
  const std::string advice = VerdictWithoutMounting(run, {}).advice;
  for (const int code : {99, 6, 13, 14}) {  // the zeros for the mounting cause these
    run.code = code;
    EXPECT_EQ(VerdictWithoutMounting(run, {}).advice, advice) << code;
  }
  run.code = 4;
  EXPECT_THAT(VerdictWithoutMounting(run, {}).message, HasSubstr(' ' + VerdictOf(4).message));
  EXPECT_EQ(VerdictWithoutMounting(run, {}).advice, VerdictOf(4).advice);
}

}  // namespace
}  // namespace trackedcam::host
