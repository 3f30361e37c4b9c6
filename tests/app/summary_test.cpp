#include "app/result/summary.h"

#include <cmath>
#include <limits>
#include <sstream>

#include <gmock/gmock.h>

#include "app/result/verdict.h"

namespace trackedcam::app {
namespace {

using testing::HasSubstr;
using testing::Not;

CalibrationReport GoodReport() {
  CalibrationReport report;
  report.outputs = {{2000, 1000},
                    {0.9, 1.8},
                    {0.5, 0.49},
                    {-0.1, 0.05, 0, 0, 0},
                    {1, 0, 0, 0.01, 0, 1, 0, -0.02, 0, 0, 1, 0.03, 0, 0, 0, 1},
                    {58.1, 34.7},
                    {32.4}};
  report.record.photographs = {{"a.jpg", std::nullopt}, {"b.jpg", DropReason::kBoardNotFound}};
  report.record.lensError = 0.25;
  report.record.reprojectionError = 1.5;
  report.record.spread = 0.00125;
  return report;
}

std::string SummaryOf(const CalibrationReport& report, const CalibrationOutputs* truth = nullptr) {
  std::ostringstream out;
  PrintSummary(out, report, truth);
  return out.str();
}

TEST(Summary, ShowsLensAndTransformInPixelsAndMillimetres) {
  const std::string summary = SummaryOf(GoodReport());
  EXPECT_THAT(summary, HasSubstr("  focal length fx, px                 1800.00\n"));
  EXPECT_THAT(summary, HasSubstr("  focal length fy, px                 1800.00\n"));
  EXPECT_THAT(summary, HasSubstr("  principal point cy, px               490.00\n"));
  EXPECT_THAT(summary, HasSubstr("  distortion k2                       0.05000\n"));
  EXPECT_THAT(summary, HasSubstr("  translation, mm                       10.00       -20.00"
                                 "        30.00\n"));
}

TEST(Summary, ShowsErrorsAndPhotographs) {
  const std::string summary = SummaryOf(GoodReport());
  EXPECT_THAT(summary, HasSubstr("  reprojection, mean, px                 1.50\n"));
  EXPECT_THAT(summary, HasSubstr("  spread of the translation, mm          1.25\n"));
  EXPECT_THAT(summary, HasSubstr("Photographs: 1 of 2 used\n  dropped b.jpg (board not found)\n"));
  EXPECT_THAT(summary, HasSubstr("Success"));
}

TEST(Summary, ShowsTheTruthBesideTheLens) {
  const CalibrationReport report = GoodReport();
  CalibrationOutputs truth = report.outputs;
  truth.focalLengthMm = {32.5};
  truth.transformCamTc[3] = 0.013;
  const std::string summary = SummaryOf(report, &truth);
  EXPECT_THAT(summary, HasSubstr("  focal length, mm                     32.400       32.500\n"));
  EXPECT_THAT(summary, HasSubstr("  off the truth                       3.00 mm    0.000 deg\n"));
  EXPECT_THAT(SummaryOf(report), Not(HasSubstr("truth")));
}

TEST(Summary, OfAFailureShowsWhatThereIs) {
  CalibrationReport report;
  report.code = 4;
  report.log = "/logs/log.txt";
  const std::string summary = SummaryOf(report);
  EXPECT_THAT(summary, Not(HasSubstr("Lens")));
  EXPECT_THAT(summary, Not(HasSubstr("Transform")));
  EXPECT_THAT(summary, HasSubstr("Failed, code 4: Fewer than 12 photographs can be used.\nNext: "));
  EXPECT_THAT(summary, HasSubstr("Log: /logs/log.txt\n"));
}

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
  CalibrationReport report = GoodReport();
  EXPECT_TRUE(IsUsable(report));
  EXPECT_EQ(VerdictOf(report).words, VerdictOf(0).words);
  for (const double number : {std::nan(""), std::numeric_limits<double>::infinity()}) {
    report.outputs.transformCamTc[5] = number;
    EXPECT_FALSE(IsUsable(report));
    EXPECT_EQ(VerdictOf(report).words, "The transform is not a number.");
  }
  report.code = 4;
  EXPECT_EQ(VerdictOf(report).words, VerdictOf(4).words);
}

}  // namespace
}  // namespace trackedcam::app
