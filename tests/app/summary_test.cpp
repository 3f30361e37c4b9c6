#include "app/terminal/summary.h"

#include <cmath>
#include <iterator>
#include <memory>
#include <sstream>

#include <gmock/gmock.h>

#include "host/findings/finding_text.h"

namespace trackedcam::app {
namespace {

using host::CalibrationOutputs;
using host::Finding;
using host::Level;
using host::Mounting;
using host::Report;
using host::Severity;
using testing::HasSubstr;
using testing::Not;

void List(Report& report) {
  report.photographs = ListPhotographs(report.run.record);
  EnterRun(report.run, ToRun(report.photographs), report.photographs);
}

Report GoodReport() {
  Report report;
  report.inputs.data = "/shoot/tracker_data.csv";
  report.run.code = 0;
  report.run.record.isSuccessful = true;
  report.verdict.level = Level::kGood;
  report.verdict.message = report.verdict.summary = "Success.";
  report.verdict.advice = "Export it.";
  report.run.outputs = {{2000, 1000},
                        {0.9, 1.8},
                        {0.5, 0.49},
                        {-0.1, 0.05, 0, 0, 0},
                        {1, 0, 0, 0.01, 0, 1, 0, -0.02, 0, 0, 1, 0.03, 0, 0, 0, 1},
                        {58.1, 34.7},
                        {32.4}};
  report.run.record.photographs = {{"a.jpg", std::nullopt, std::nullopt},
                                   {"b.jpg", host::DropReason::kBoardNotFound, std::nullopt}};
  List(report);
  report.run.record.lensError = 0.25;
  report.run.record.reprojectionError = 1.5;
  report.run.record.spread = 0.00125;
  return report;
}

Report CheckedReport() {
  Report report = GoodReport();
  crosscheck::CrossCheck check;
  check.solved = true;
  check.photographs = 40;
  check.used = 32;
  check.t95 = 2;
  check.standardErrorCamTc.translationMm = {0.2, 0.5, 0.1};
  check.standardErrorCamTc.rotationDegrees = {0.01, 0.02, 0.045};
  check.library = crosscheck::Offset{18.46, 0.694, 1e-9};
  crosscheck::NominalMounting mounting;
  mounting.offMm = 27;
  mounting.offDegrees = 1.006;
  mounting.p = 0.02;
  check.nominalMounting = mounting;
  report.crossCheck = check;
  return report;
}

// As VerdictOf makes it: the text of the worst finding is the end of the message, and its advice
// that of the verdict.
Report DoubtfulReport() {
  Report report = CheckedReport();
  report.findings = {{Severity::kWarning, crosscheck::SquareSizeOff{1.01, 0.001, 0}, {}},
                     {Severity::kNote, crosscheck::TrackersNoisy{3, 0.3}, {}}};
  report.verdict = {Level::kDoubtful, "Doubtful, from 1 of 2. " + Text(report.findings[0]),
                    "Doubtful, from 1 of 2.", Advice(report.findings[0])};
  return report;
}

std::string SummaryOf(const Report& report, const CalibrationOutputs* truth = nullptr) {
  std::ostringstream out;
  PrintSummary(out, report, truth);
  return out.str();
}

std::string WarningOf(const Report& report) {
  std::ostringstream out;
  PrintWarning(out, report);
  return out.str();
}

// The values of the row with that label, without blanks.
std::vector<std::string> Row(const std::string& text, const std::string& label) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("  " + label + "  ", 0) == 0) {
      std::istringstream rest(line.substr(label.size() + 2));
      return {std::istream_iterator<std::string>(rest), {}};
    }
  }
  return {"no row " + label};
}

std::size_t CountOf(const std::string& part, const std::string& text) {
  std::size_t count = 0;
  for (std::size_t i = text.find(part); i != std::string::npos; i = text.find(part, i + 1)) {
    ++count;
  }
  return count;
}

using Texts = std::vector<std::string>;

TEST(Summary, ShowsLensAndTransformInPixelsAndMillimetres) {
  const std::string summary = SummaryOf(GoodReport());
  EXPECT_EQ(Row(summary, "focal length fx, px"), Texts({"1800.00"}));
  EXPECT_EQ(Row(summary, "focal length fy, px"), Texts({"1800.00"}));
  EXPECT_EQ(Row(summary, "principal point cy, px"), Texts({"490.00"}));
  EXPECT_EQ(Row(summary, "distortion k2"), Texts({"0.05000"}));
  EXPECT_EQ(Row(summary, "matrix, metres"),
            Texts({"1.000000", "0.000000", "0.000000", "0.010000"}));
  EXPECT_EQ(Row(summary, "translation, mm"), Texts({"10.00", "-20.00", "30.00"}));
}

TEST(Summary, ShowsErrorsWithTheirLimits) {
  const std::string summary = SummaryOf(GoodReport());
  EXPECT_THAT(summary, HasSubstr("                                        found  doubt above"
                                 "  fails above\n"));
  EXPECT_EQ(Row(summary, "lens, px"), Texts({"0.25", "1.50"}));
  EXPECT_EQ(Row(summary, "mean reprojection, px"), Texts({"1.50", "11.11", "16.67"}));
  EXPECT_EQ(Row(summary, "spread of translations, mm"), Texts({"1.25", "10.00", "15.00"}));
}

TEST(Summary, NamesUnusedPhotographsButNotThoseOfTheFilter) {
  Report report = GoodReport();
  report.run.record.photographs.push_back({"c.jpg", host::DropReason::kOutlier, std::nullopt});
  List(report);
  const std::string summary = SummaryOf(report);
  EXPECT_THAT(summary, HasSubstr("\nPhotographs: " + CountText(report.photographs) +
                                 " (about half is normal)\n"));
  EXPECT_THAT(summary, HasSubstr("b.jpg (board not found)\n"));
  EXPECT_THAT(summary, Not(HasSubstr("c.jpg")));
}

TEST(Summary, CallsHalfNormalOnlyWhereItIsHalf) {
  Report report = GoodReport();
  for (const std::size_t filtered : {0U, 3U, 10U}) {
    report.run.record.photographs.assign(5, {"a.jpg", std::nullopt, std::nullopt});
    for (std::size_t i = 0; i < filtered; ++i) {
      report.run.record.photographs.push_back({"c.jpg", host::DropReason::kOutlier, std::nullopt});
    }
    List(report);
    EXPECT_EQ(CountOf("about half is normal", SummaryOf(report)), filtered == 3 ? 1U : 0U);
  }
}

TEST(Summary, ShowsTheTruth) {
  const Report report = GoodReport();
  CalibrationOutputs truth = report.run.outputs;
  truth.focalLengthMm = {32.5};
  truth.transformCamTc[3] = 0.013;
  const std::string summary = SummaryOf(report, &truth);
  EXPECT_EQ(Row(summary, "focal length by height, mm"), Texts({"32.400", "32.500"}));
  EXPECT_EQ(Row(summary, "differs from the truth by"), Texts({"3.00", "mm", "0.000", "deg"}));
  EXPECT_THAT(SummaryOf(report), Not(HasSubstr("truth")));
}

TEST(Summary, ShowsTheCrossCheck) {
  const std::string summary = SummaryOf(CheckedReport());
  EXPECT_THAT(summary, HasSubstr(" 32 of 40 photographs\n"));
  EXPECT_EQ(Row(summary, "uncertainty of its transform"),
            Texts({"1.0", "mm", "0.09", "deg", "(95", "%)"}));
  EXPECT_EQ(Row(summary, "the result differs by"),
            Texts({"18.5", "mm", "0.69", "deg", "certain,", "but", "good", "enough"}));
  EXPECT_EQ(Row(summary, "the stated mounting differs by"),
            Texts({"27.0", "mm", "1.01", "deg", "likely", "(p", "=", "0.020)"}));
}

TEST(Summary, OfTooLittleRotationKnowsNothing) {
  Report report = CheckedReport();
  report.crossCheck->library->p = std::nan("");
  report.crossCheck->standardErrorCamTc.translationMm.setConstant(HUGE_VAL);
  report.crossCheck->standardErrorCamTc.rotationDegrees.setConstant(HUGE_VAL);
  const std::string summary = SummaryOf(report);
  EXPECT_EQ(Row(summary, "uncertainty of its transform"), Texts({"not", "determined"}));
  EXPECT_EQ(Row(summary, "the result differs by"), Texts({"cannot", "be", "checked"}));
}

TEST(Summary, OfACrossCheckWithoutSolutionHasNoUncertainty) {
  Report report = CheckedReport();
  report.crossCheck->solved = false;
  EXPECT_THAT(SummaryOf(report), HasSubstr("  no solution\n"));
  EXPECT_THAT(SummaryOf(report), Not(HasSubstr("uncertainty")));
}

TEST(Summary, ShowsTheStatedAndTheFoundMounting) {
  Report report = CheckedReport();
  report.inputs.mounting = Mounting{{0, 0, -1}, {0.1, -0.05, 0.02}};
  report.crossCheck->mounting = Mounting{{0, 0, 1}, {0.11, -0.05, 0.02}};
  std::string summary = SummaryOf(report);
  EXPECT_THAT(summary, HasSubstr("after the axis fix\n"));
  EXPECT_EQ(Row(summary, "stated, deg"), Texts({"0.0000", "0.0000", "-1.0000"}));
  EXPECT_EQ(Row(summary, "stated, mm"), Texts({"100.00", "-50.00", "20.00"}));
  EXPECT_EQ(Row(summary, "found, deg"), Texts({"0.0000", "0.0000", "1.0000"}));
  EXPECT_EQ(Row(summary, "found, mm"), Texts({"110.00", "-50.00", "20.00"}));
  EXPECT_THAT(summary, Not(HasSubstr("--chart-rotation"))) << "a mounting is stated";

  // Reported x, y, z count as -x, -z, -y after the axis fix. Its matrix is a rotation of 90 degrees
  // about x after one of 180 about z.
  report.inputs.hasReportedMountingAxes = true;
  summary = SummaryOf(report);
  EXPECT_THAT(summary, HasSubstr("in reported axes\n"));
  EXPECT_EQ(Row(summary, "stated, deg"), Texts({"90.0000", "0.0000", "179.0000"}));
  EXPECT_EQ(Row(summary, "stated, mm"), Texts({"-100.00", "-20.00", "50.00"}));
  EXPECT_EQ(Row(summary, "found, deg"), Texts({"90.0000", "0.0000", "-179.0000"}));
  EXPECT_EQ(Row(summary, "found, mm"), Texts({"-110.00", "-20.00", "50.00"}));
}

TEST(Summary, OfALogHasTheMountingAsOptions) {
  Report report = CheckedReport();
  report.inputs.data.clear();
  report.crossCheck->mounting = Mounting{{12, -8.00004, 5}, {0.1, -0.05, 0.0200004}};
  report.crossCheck->standardErrorTrChart.translationMm = {0.1, 0.2, 0.3};
  EXPECT_THAT(SummaryOf(report), HasSubstr("\n  --chart-rotation=12.0000,-8.0000,5.0000 "
                                           "--chart-translation=0.100000,-0.050000,0.020000\n"));
  EXPECT_EQ(Row(SummaryOf(report), "uncertainty of the mounting"),
            Texts({"0.6", "mm", "0.00", "deg", "(95", "%)"}));

  report.crossCheck->mounting = Mounting{{0, 0, 1}, {0.1, -0.05, 0.02}};
  report.inputs.hasReportedMountingAxes = true;
  EXPECT_THAT(SummaryOf(report),
              HasSubstr("  --chart-rotation=90.0000,0.0000,-179.0000 --chart-translation="
                        "-0.100000,-0.020000,0.050000 --mounting-axes=reported\n"));
}

TEST(Summary, OfTwoRunsHasTheMountingThatTheSecondOneUsed) {
  Report report = CheckedReport();
  report.crossCheck->mounting = Mounting{{1, 2, 3}, {0, 0, 0}};
  report.inputs.mounting = Mounting{{4, 5, 6}, {0, 0, 0}};
  Report first = CheckedReport();
  first.mountingIsStated = false;
  report.firstRun = std::make_shared<const Report>(first);
  const std::string summary = SummaryOf(report);
  EXPECT_THAT(summary, HasSubstr("  --chart-rotation=4.0000,5.0000,6.0000 "));
  EXPECT_EQ(summary.rfind("First run, without a mounting\n", 0), 0U);
  EXPECT_EQ(CountOf("\nLens\n", summary), 1U);
  EXPECT_EQ(CountOf("\nCross-check: ", summary), 2U);
}

TEST(Summary, SaysEachThingOnce) {
  Report report = DoubtfulReport();
  report.verdict.commands = {"trackedcam calibrate --refine-mounting"};
  const std::string summary = SummaryOf(report);
  const Finding& squares = report.findings[0];
  const Finding& noise = report.findings[1];
  EXPECT_THAT(summary,
              HasSubstr("\nFindings\n"
                        "  warning: " +
                        Text(squares) + "\n  note: " + Text(noise) + "\n    " + Advice(noise) +
                        "\n\n"
                        "Doubtful, from 1 of 2.\n"
                        "Next: " +
                        Advice(squares) +
                        "\n"
                        "      trackedcam calibrate --refine-mounting\n"));
  for (const std::string& text : {Text(squares), Advice(squares), Text(noise), Advice(noise)}) {
    EXPECT_EQ(CountOf(text, summary), 1U) << text;
  }
}

TEST(Summary, OfAFailureShowsWhatThereIs) {
  Report report;
  report.run.code = 4;
  report.verdict.message = report.verdict.summary = "Too few photographs.";
  report.verdict.advice = "Photograph more.";
  report.run.log = "/logs/log.txt";
  EXPECT_EQ(SummaryOf(report),
            "\nFailed, code 4: Too few photographs.\n"
            "Next: Photograph more.\n"
            "Log: " +
                report.run.log.u8string() + "\n");
}

Report ReportAt(Level level, std::optional<int> code) {
  Report report;
  report.run.code = code;
  report.verdict.level = level;
  report.verdict.message = report.verdict.summary = "Message.";
  return report;
}

TEST(Warning, IsOneLineByTheVerdict) {
  EXPECT_EQ(WarningOf(ReportAt(Level::kGood, 0)), "");
  EXPECT_EQ(WarningOf(ReportAt(Level::kDoubtful, 99)), "trackedcam: warning: Message.\n");
  EXPECT_EQ(WarningOf(ReportAt(Level::kWrong, 0)), "trackedcam: error: Message.\n");
  EXPECT_EQ(WarningOf(ReportAt(Level::kFailed, 13)), "trackedcam: error 13: Message.\n");
  EXPECT_EQ(WarningOf(ReportAt(Level::kFailed, 0)), "trackedcam: error: Message.\n");
  EXPECT_EQ(WarningOf(ReportAt(Level::kFailed, std::nullopt)), "trackedcam: error: Message.\n");
}

TEST(Warning, IsTheFindingThatDecides) {
  Report report = DoubtfulReport();
  EXPECT_EQ(WarningOf(report), "trackedcam: warning: " + Text(report.findings[0]) + '\n');
  report.verdict.message = report.verdict.summary = "The board was not found.";
  EXPECT_EQ(WarningOf(report), "trackedcam: warning: The board was not found.\n");
}

TEST(Warning, NamesOutputsThatCouldNotBeWritten) {
  Report report = GoodReport();
  report.findings = {{Severity::kWarning, host::NotRefined{"The disk is full.", "Make room."}, {}}};
  const std::string line = "trackedcam: warning: " + Text(report.findings[0]) + '\n';
  EXPECT_EQ(WarningOf(report), line);
  report.verdict = {Level::kDoubtful, "Doubtful. " + Text(report.findings[0]), "Doubtful.", ""};
  EXPECT_EQ(WarningOf(report), line);
}

TEST(ExitStatus, FollowsTheVerdict) {
  EXPECT_EQ(ExitStatus(ReportAt(Level::kGood, 0)), 0);
  EXPECT_EQ(ExitStatus(ReportAt(Level::kDoubtful, 99)), 0);
  EXPECT_EQ(ExitStatus(ReportAt(Level::kFailed, 0)), 1);
  EXPECT_EQ(ExitStatus(ReportAt(Level::kWrong, 0)), 3);
}

}  // namespace
}  // namespace trackedcam::app
