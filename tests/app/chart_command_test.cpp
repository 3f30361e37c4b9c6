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
                             HasSubstr("trackedcam calibrate --board 9x6 --square 0.03 ")));

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

TEST_F(ChartCommand, NeedsAKnownPaperAndFormat) {
  ExpectError(Draw("30mm", "A9", "chart.pdf"), 2, "--paper: A9 is not one of A0, A1");
  ExpectError(Draw("30mm", "A3", "chart.png"), 2, "chart.png ends neither in .pdf nor in .svg");
  ExpectError(Draw("30mm", "A3", "chart"), 2, "ends neither in .pdf nor in .svg");
}

TEST_F(ChartCommand, NeedsAFileThatCanBeWritten) {
  std::filesystem::create_directory(folder.Path() / "folder.pdf");
  ExpectError(Draw("30mm", "A3", "folder.pdf"), 2, "folder.pdf is a folder, not a file");
  test::WriteFile(folder.File("file"), "");
  ExpectError(Draw("30mm", "A3", "file/chart.pdf"), 2, "--out: cannot create the folder");
  std::filesystem::create_symlink("/dev/full", folder.Path() / "full.pdf");
  ExpectError(Draw("30mm", "A3", "full.pdf"), 2, "full.pdf is no plain file");
}

}  // namespace
}  // namespace trackedcam::app
