#include "app/terminal/summary.h"

#include <sstream>

#include <gmock/gmock.h>

#include "host/findings/finding_text.h"

namespace trackedcam::app {
namespace {

using host::CalibrationOutputs;
using host::Report;
using testing::HasSubstr;
using testing::Not;

Report GoodReport() {
  Report report;
  report.run.code = 0;
  report.verdict.message = "Success: all is well.";
  report.run.outputs = {{2000, 1000},
                        {0.9, 1.8},
                        {0.5, 0.49},
                        {-0.1, 0.05, 0, 0, 0},
                        {1, 0, 0, 0.01, 0, 1, 0, -0.02, 0, 0, 1, 0.03, 0, 0, 0, 1},
                        {58.1, 34.7},
                        {32.4}};
  report.run.record.photographs = {{"a.jpg", std::nullopt, std::nullopt},
                                   {"b.jpg", host::DropReason::kBoardNotFound, std::nullopt}};
  report.run.record.lensError = 0.25;
  report.run.record.reprojectionError = 1.5;
  report.run.record.spread = 0.00125;
  return report;
}

std::string SummaryOf(const Report& report, const CalibrationOutputs* truth = nullptr) {
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
  EXPECT_THAT(
      summary,
      HasSubstr("                                       found  doubt above"
                "  fails above\n"
                "  of the lens alone, px                  0.25                      1.50\n"
                "  reprojection, mean, px                 1.50        11.11        16.67\n"
                "  spread of the translation, mm          1.25        10.00        15.00\n"));
  EXPECT_THAT(summary, HasSubstr("Photographs: 1 of 2 used\n  dropped b.jpg (board not found)\n"));
  EXPECT_THAT(summary, HasSubstr("Success"));
}

TEST(Summary, NamesNoPhotographThatTheFilterLeftOut) {
  Report report = GoodReport();
  report.run.record.photographs.push_back({"c.jpg", host::DropReason::kOutlier, std::nullopt});
  const std::string summary = SummaryOf(report);
  EXPECT_THAT(summary, HasSubstr("1 of 3 used; 1 left out by the filter (about half is normal)\n"));
  EXPECT_THAT(summary, Not(HasSubstr("c.jpg")));
}

TEST(Summary, ShowsFindingsAndCommands) {
  Report report = GoodReport();
  report.findings = {{host::Severity::kWarning, crosscheck::SquareSizeOff{1.02, 0.001, 1e-9}, {}}};
  report.verdict.commands = {"trackedcam calibrate --refine-mounting"};
  const std::string summary = SummaryOf(report);
  EXPECT_THAT(summary, HasSubstr("\nFindings\n  warning: " + Text(report.findings[0]) + "\n    " +
                                 Advice(report.findings[0]) + '\n'));
  EXPECT_THAT(summary, HasSubstr("\n      trackedcam calibrate --refine-mounting\n"));
}

TEST(Summary, ShowsTheTruthBesideTheLens) {
  const Report report = GoodReport();
  CalibrationOutputs truth = report.run.outputs;
  truth.focalLengthMm = {32.5};
  truth.transformCamTc[3] = 0.013;
  const std::string summary = SummaryOf(report, &truth);
  EXPECT_THAT(summary, HasSubstr("  focal length, mm                     32.400       32.500\n"));
  EXPECT_THAT(summary, HasSubstr("  off the truth                       3.00 mm    0.000 deg\n"));
  EXPECT_THAT(SummaryOf(report), Not(HasSubstr("truth")));
}

TEST(Summary, OfAFailureShowsWhatThereIs) {
  Report report;
  report.run.code = 4;
  report.verdict.message = "Fewer than 12 photographs can be used.";
  report.verdict.advice = "Photograph more.";
  report.run.log = "/logs/log.txt";
  const std::string summary = SummaryOf(report);
  EXPECT_THAT(summary, Not(HasSubstr("Lens")));
  EXPECT_THAT(summary, Not(HasSubstr("Transform")));
  EXPECT_THAT(summary, HasSubstr("Failed, code 4: Fewer than 12 photographs can be used.\n"
                                 "Next: Photograph more.\n"));
  EXPECT_THAT(summary, HasSubstr("Log: /logs/log.txt\n"));
}

}  // namespace
}  // namespace trackedcam::app
