#include <gmock/gmock.h>

#include "host_program.h"

namespace trackedcam::app {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class ChartCommand : public testing::Test {
 protected:
  ProgramRun Draw(const std::string& square, const std::string& paper, const std::string& out) {
    return RunHostProgram(folder.Path(), {"chart", "--board", "9x6", "--square", square, "--paper",
                                          paper, "--out", out});
  }

  void ExpectError(const ProgramRun& run, int status, const std::string& message) {
    EXPECT_EQ(run.status, status);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.error, HasSubstr(message));
    EXPECT_EQ(run.error.find('\n'), run.error.size() - 1) << run.error;
  }

  test::TemporaryFolder folder;
};

TEST_F(ChartCommand, SaysOnThePageHowToCalibrate) {
  const ProgramRun run = Draw("30mm", "a3", "new folder/chart.PDF");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.error, "");
  EXPECT_THAT(run.out, AllOf(HasSubstr("new folder/chart.PDF\n"),
                             HasSubstr("\n      --board 9x6 --square 0.03\n"),
                             HasSubstr("trackedcam chart --board 9x6 --square 0.03 "
                                       "--ruler-measured 300mm\n")));

  ASSERT_EQ(RunTool(folder.Path(), "pdftotext", {"new folder/chart.PDF", "text"}), 0);
  EXPECT_THAT(test::ReadFile(folder.File("text")),
              AllOf(HasSubstr("trackedcam calibrate --board 9x6 --square 0.03\n"),
                    HasSubstr("the board measures 300 × 210 mm."), HasSubstr("0 mm"),
                    HasSubstr("\n300\n")));
}

TEST_F(ChartCommand, TakesOptionsFromAConfigurationFile) {
  std::filesystem::create_directory(folder.Path() / "charts");
  test::WriteFile(folder.File("charts/chart.toml"),
                  "[chart]\nboard = \"9x6\"\nsquare = \"30mm\"\npaper = \"A3\"\n"
                  "out = \"chart.svg\"\n");
  const ProgramRun run = RunHostProgram(folder.Path(), {"chart", "--config", "charts/chart.toml"});
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_TRUE(std::filesystem::exists(folder.Path() / "charts/chart.svg"));
}

TEST_F(ChartCommand, NamesTheLargestSquareThatFits) {
  ExpectError(Draw("40mm", "A3", "chart.pdf"), 2,
              "--square: 40 mm is too large: the largest square with which 9x6 inner corners fit "
              "on A3 is 30 mm");
  EXPECT_EQ(Draw("30mm", "A3", "chart.pdf").status, 0);
}

TEST_F(ChartCommand, ComputesTheSquareOfAPrint) {
  const auto measure = [&](const std::string& ruler) {
    return RunHostProgram(
        folder.Path(), {"chart", "--board", "9x6", "--square", "30mm", "--ruler-measured", ruler});
  };
  // 30 mm * 299.2 / 300.
  const ProgramRun run = measure("299.2mm");
  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_THAT(run.out, HasSubstr("square is 29.92 mm. Calibrate with\n"
                                 "  --board 9x6 --square 0.02992\n"));
  EXPECT_THAT(measure("30cm").out, HasSubstr("--square 0.03\n"));
  ExpectError(measure("299.2"), 2, "299200 mm is not near the 300 mm of this chart's ruler");
  ExpectError(measure("wide"), 2, "--ruler-measured: wide is not a length, such as 299.2mm");
  ExpectError(RunHostProgram(folder.Path(), {"chart", "--board", "9x6", "--square", "30mm"}), 2,
              "--paper is required");
}

TEST_F(ChartCommand, NeedsAKnownPaperAndFormat) {
  ExpectError(Draw("30mm", "A9", "chart.pdf"), 2, "--paper: A9 is not one of A0, A1");
  ExpectError(Draw("30mm", "A3", "chart.png"), 2, "chart.png does not end in .pdf or .svg");
  ExpectError(Draw("30mm", "A3", "chart"), 2, "does not end in .pdf or .svg");
}

TEST_F(ChartCommand, NeedsAFileThatCanBeWritten) {
  std::filesystem::create_directory(folder.Path() / "folder.pdf");
  ExpectError(Draw("30mm", "A3", "folder.pdf"), 2, "folder.pdf: it is a folder, not a file");
  test::WriteFile(folder.File("file"), "");
  ExpectError(Draw("30mm", "A3", "file/chart.pdf"), 2, "--out: cannot create the folder");
  std::filesystem::create_symlink("/dev/full", folder.Path() / "full.pdf");
  ExpectError(Draw("30mm", "A3", "full.pdf"), 2, "full.pdf: it is a file of the system");
}

TEST_F(ChartCommand, ReplacesAChartAndNoOtherFile) {
  for (const char* name : {"chart.pdf", "chart.svg"}) {
    EXPECT_EQ(Draw("30mm", "A3", name).status, 0);
    EXPECT_EQ(Draw("25mm", "A3", name).status, 0) << name;
    const std::string foreign = std::string("foreign_") + name;
    const std::string content = name == std::string("chart.pdf") ? "%PDF-1.4 mine" : "<svg/>";
    test::WriteFile(folder.File(foreign), content);
    ExpectError(Draw("30mm", "A3", foreign), 2, "is not a chart of trackedcam");
    EXPECT_EQ(test::ReadFile(folder.File(foreign)), content);
  }
}

}  // namespace
}  // namespace trackedcam::app
