#include <algorithm>
#include <filesystem>
#include <sstream>

#include <gmock/gmock.h>

#include "app/terminal/next_commands.h"
#include "app/terminal/summary.h"
#include "host/findings/finding_text.h"

namespace trackedcam::app {
namespace {

using host::Level;
using host::Report;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string CommandLineOf(std::vector<const char*> words) {
  words.insert(words.begin(), "/usr/bin/trackedcam");
  return CommandLine(static_cast<int>(words.size()), words.data());
}

TEST(CommandLine, CanBePasted) {
  EXPECT_EQ(CommandLineOf({"calibrate", "--config", "shoot/shoot.toml"}),
            "trackedcam calibrate --config shoot/shoot.toml");
  EXPECT_EQ(CommandLineOf({"--data", "day 1/a&b.csv", "", "撮影.toml"}),
            "trackedcam --data \"day 1/a&b.csv\" \"\" 撮影.toml");
  EXPECT_EQ(CommandLineOf({"a\"b", "$HOME", "`x`"}),
            "trackedcam \"a\\\"b\" \"\\$HOME\" \"\\`x\\`\"");
}

const host::Engine* Named(std::string_view name) {
  return &*std::find_if(host::kEngines.begin(), host::kEngines.end(),
                        [&](const host::Engine& engine) { return engine.name == name; });
}

TEST(ExportCommands, AreOneForEachEngineThatPeopleUse) {
  const std::string lens = (std::filesystem::path("day 1") / "lens.ulens").u8string();
  EXPECT_THAT(
      ExportCommands("day 1/result.json", {}, ""),
      ElementsAre("trackedcam export unreal --result \"day 1/result.json\" --out \"" + lens + "\"",
                  "trackedcam export unity --result \"day 1/result.json\"",
                  "trackedcam export aximmetry --result \"day 1/result.json\""));
}

TEST(ExportCommands, HaveTheAxesThatTheUserGave) {
  EXPECT_THAT(ExportCommands("r.json", {}, "-z,x,y"),
              ElementsAre("trackedcam export unreal --result r.json --parent-axes=-z,x,y --out "
                          "lens.ulens",
                          "trackedcam export unity --result r.json --parent-axes=-z,x,y",
                          "trackedcam export aximmetry --result r.json"));
}

TEST(ExportCommands, LeaveOutWhatIsDone) {
  EXPECT_THAT(ExportCommands("r.json", {Named("unity")}, ""), testing::IsEmpty());
  EXPECT_THAT(ExportCommands("r.json", {Named("unity"), Named("unreal")}, ""),
              ElementsAre("trackedcam export unreal --result r.json --out lens.ulens"));
}

Report ReportAt(Level level, std::optional<int> code) {
  Report report;
  report.run.code = code;
  report.verdict.level = level;
  report.verdict.message = "Words.";
  return report;
}

std::string WarningOf(const Report& report) {
  std::ostringstream out;
  PrintWarning(out, report);
  return out.str();
}

TEST(Warning, IsOneLineByTheVerdict) {
  EXPECT_EQ(WarningOf(ReportAt(Level::kGood, 0)), "");
  EXPECT_EQ(WarningOf(ReportAt(Level::kDoubtful, 99)), "trackedcam: warning: Words.\n");
  EXPECT_EQ(WarningOf(ReportAt(Level::kWrong, 0)), "trackedcam: error: Words.\n");
  EXPECT_EQ(WarningOf(ReportAt(Level::kFailed, 13)), "trackedcam: error 13: Words.\n");
  EXPECT_EQ(WarningOf(ReportAt(Level::kFailed, 0)), "trackedcam: error: Words.\n");
  EXPECT_EQ(WarningOf(ReportAt(Level::kFailed, std::nullopt)), "trackedcam: error: Words.\n");
}

TEST(ExitStatus, FollowsTheVerdict) {
  EXPECT_EQ(ExitStatus(ReportAt(Level::kGood, 0)), 0);
  EXPECT_EQ(ExitStatus(ReportAt(Level::kDoubtful, 99)), 0);
  EXPECT_EQ(ExitStatus(ReportAt(Level::kFailed, 0)), 1);
  EXPECT_EQ(ExitStatus(ReportAt(Level::kWrong, 0)), 3);
}

class CrossCheckWords : public testing::Test {
 protected:
  CrossCheckWords() {
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
    report.findings = {
        {host::Severity::kError, host::BadPhotographs{0.1, {{39, 2.9, {}, ""}}}, {"a.jpg"}}};
  }

  std::string Words() {
    std::ostringstream out;
    PrintCrossCheck(out, report, nullptr);
    return out.str();
  }

  Report report;
};

TEST_F(CrossCheckWords, SayHowFarTheResultIsOff) {
  EXPECT_EQ(Words(),
            "\nCross-check: mounting and transform solved together, 32 of 40 photographs\n"
            "  the transform is known to            1.0 mm     0.09 deg       (95 %)\n"
            "  the result above is off by          18.5 mm     0.69 deg      certain\n"
            "  the mounting used is off by         27.0 mm     1.01 deg       likely\n"
            "  " +
                Text(report.findings[0]) + '\n');
}

TEST_F(CrossCheckWords, SayWhenThereIsNoSolution) {
  report.crossCheck->solved = false;
  EXPECT_THAT(Words(), HasSubstr("  no solution\n"));
  EXPECT_THAT(Words(), Not(HasSubstr("known to")));
}

TEST_F(CrossCheckWords, GiveTheMountingToPassOn) {
  report.crossCheck->mounting = host::Mounting{{12, -8.00004, 5}, {0.1, -0.05, 0.0200004}};
  std::ostringstream out;
  PrintMountingFound(out, report);
  EXPECT_THAT(out.str(), HasSubstr("  --chart-rotation=12.0000,-8.0000,5.0000 "
                                   "--chart-translation=0.100000,-0.050000,0.020000\n"));
}

// Reported x, y, z count as -x, -z, -y after the axis fix. Its own matrix is a turn of 90 degrees
// about x after one of 180 about z.
TEST_F(CrossCheckWords, GiveTheMountingInTheAxesThatTheUserChose) {
  report.crossCheck->mounting = host::Mounting{{0, 0, 0}, {0.1, -0.05, 0.02}};
  report.inputs.hasReportedMountingAxes = true;
  std::ostringstream out;
  PrintMountingFound(out, report);
  EXPECT_THAT(out.str(), HasSubstr("  --chart-rotation=90.0000,0.0000,180.0000 --chart-translation="
                                   "-0.100000,-0.020000,0.050000 --mounting-axes=reported\n"));
}

TEST_F(CrossCheckWords, GiveTheMountingOfASecondRunAsItWasTaken) {
  report.crossCheck->mounting = host::Mounting{{1, 2, 3}, {0, 0, 0}};
  report.inputs.mounting = host::Mounting{{4, 5, 6}, {0, 0, 0}};
  report.firstRun = std::make_shared<const Report>();
  std::ostringstream out;
  PrintMountingFound(out, report);
  EXPECT_THAT(out.str(), HasSubstr("  --chart-rotation=4.0000,5.0000,6.0000 "));
}

TEST_F(CrossCheckWords, ShowStatedAndFoundMountingInBothAxes) {
  report.inputs.mounting = host::Mounting{{0, 0, 0}, {0.1, -0.05, 0.02}};
  report.crossCheck->mounting = host::Mounting{{0, 0, 1}, {0.11, -0.05, 0.02}};
  std::ostringstream out;
  PrintMountings(out, report);
  EXPECT_EQ(out.str(),
            "\nMounting of the chart's tracker, turned by Rx * Ry * Rz\n"
            "                                            X            Y            Z\n"
            "  stated, after axis fix, deg          0.0000       0.0000       0.0000\n"
            "  stated, after axis fix, mm           100.00       -50.00        20.00\n"
            "  stated, reported axes, deg          90.0000       0.0000     180.0000\n"
            "  stated, reported axes, mm           -100.00       -20.00        50.00\n"
            "  found, after axis fix, deg           0.0000       0.0000       1.0000\n"
            "  found, after axis fix, mm            110.00       -50.00        20.00\n"
            "  found, reported axes, deg           90.0000       0.0000    -179.0000\n"
            "  found, reported axes, mm            -110.00       -20.00        50.00\n");
}

}  // namespace
}  // namespace trackedcam::app
