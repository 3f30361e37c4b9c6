#include "host/verdict/verdict.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace trackedcam::host {
namespace {

TEST(Verdict, HasWordsAndAdviceForEveryDocumentedCode) {
  const std::string unknown = VerdictOf(1000).words;
  for (const int code : {0, 99, 1, 2, 15, 4, 5, 7, 8, 9, 10, 11, 12, 13, 6, 14, -1}) {
    EXPECT_NE(VerdictOf(code).words, unknown) << code;
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

TEST(Verdict, OfATransformThatIsNoNumberIsAFailure) {
  LibraryRun run;
  run.code = 0;
  run.outputs.transformCamTc.assign(16, 0.5);
  EXPECT_TRUE(IsUsable(run));
  for (const double number : {std::nan(""), std::numeric_limits<double>::infinity()}) {
    run.outputs.transformCamTc[5] = number;
    EXPECT_FALSE(IsUsable(run));
    EXPECT_EQ(VerdictOf(run, {}).words, "The transform is not a number.");
  }
  run.code = 4;
  EXPECT_EQ(VerdictOf(run, {}).words, VerdictOf(4).words);
}

class VerdictOfFindings : public testing::Test {
 protected:
  VerdictOfFindings() {
    run.code = 0;
    run.outputs.transformCamTc.assign(16, 0.5);
    run.record.photographs = {{"a", std::nullopt, std::nullopt},
                              {"b", DropReason::kOutlier, std::nullopt}};
  }

  Verdict With(Severity severity) {
    return VerdictOf(run,
                     {{"mountingOff", severity, "The mounting is off.", "Refine it.", {}, {}, ""}});
  }

  LibraryRun run;
};

TEST_F(VerdictOfFindings, SaysFromHowManyPhotographs) {
  const Verdict verdict = VerdictOf(run, {});
  EXPECT_EQ(verdict.level, Level::kGood);
  EXPECT_EQ(verdict.words, "Success: the calibration is good, from 1 of 2 photographs.");
  EXPECT_EQ(With(Severity::kNote).words, verdict.words);
}

TEST_F(VerdictOfFindings, IsNoSuccessWithAnError) {
  const Verdict verdict = With(Severity::kError);
  EXPECT_EQ(verdict.level, Level::kWrong);
  EXPECT_EQ(verdict.words,
            "Calibrated, but the result is wrong, from 1 of 2 photographs. The mounting is off.");
  EXPECT_EQ(verdict.advice, "Refine it.");
  EXPECT_EQ(verdict.nextStep, NextStep::kRefineMounting);
}

TEST_F(VerdictOfFindings, SaysWhatToDoubtWithAWarning) {
  const Verdict verdict = With(Severity::kWarning);
  EXPECT_EQ(verdict.level, Level::kDoubtful);
  EXPECT_EQ(verdict.words,
            "Calibrated, with a doubt, from 1 of 2 photographs. The mounting is off.");
}

TEST_F(VerdictOfFindings, OfAFailureGivesTheReason) {
  run.code = 13;
  run.outputs = {};
  const Verdict verdict = With(Severity::kError);
  EXPECT_EQ(verdict.level, Level::kFailed);
  EXPECT_EQ(verdict.words, std::string(VerdictOf(13).words) + " The mounting is off.");
  EXPECT_EQ(verdict.advice, "Refine it.");
  EXPECT_EQ(With(Severity::kWarning).advice, VerdictOf(13).advice);
}

TEST_F(VerdictOfFindings, OfAnExceptionTellsIt) {
  run.code = std::nullopt;
  run.exception = "bad conversion";
  EXPECT_EQ(VerdictOf(run, {}).words, "The library stopped: bad conversion.");
  EXPECT_EQ(VerdictOf(run, {}).level, Level::kFailed);
}

}  // namespace
}  // namespace trackedcam::host
