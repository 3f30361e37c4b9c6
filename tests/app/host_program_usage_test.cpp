#include <regex>
#include <sstream>

#include <gmock/gmock.h>

#include "host_program.h"

namespace trackedcam::app {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class HostProgramUsage : public testing::Test {
 protected:
  ProgramRun Run(const std::vector<std::string>& arguments) {
    return RunHostProgram(folder.Path(), arguments);
  }

  // Wrong usage: status 2 and one line on standard error only.
  void ExpectUsageError(const std::vector<std::string>& arguments, const std::string& message) {
    const ProgramRun run = Run(arguments);
    EXPECT_EQ(run.status, 2) << message;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.error, AllOf(StartsWith("trackedcam: "), HasSubstr(message)));
    EXPECT_EQ(run.error.find('\n'), run.error.size() - 1) << run.error;
  }

  // A command line without an error, but for what is added to it.
  std::vector<std::string> Calibrate(const std::vector<std::string>& added) {
    test::WriteFile(folder.File("data.csv"), "Time,Image\n1,a.jpg\n");
    std::vector<std::string> arguments = {
        "calibrate", "--sensor",     "36x20", "--chart-rotation", "1,2,3", "--chart-translation",
        "1,2,3",     "--log-folder", "log"};
    arguments.insert(arguments.end(), added.begin(), added.end());
    return arguments;
  }

  test::TemporaryFolder folder;
};

TEST_F(HostProgramUsage, RefusesEmptyPaths) {
  const std::string data = folder.File("data.csv");
  ExpectUsageError({"simulate", ""}, "FOLDER: the path is empty");
  ExpectUsageError(
      Calibrate({"--data", data, "--board", "9x6", "--square", "30mm", "--result", ""}),
      "--result: the path is empty");
}

// Neither can such a path look like another line of the output.
TEST_F(HostProgramUsage, RefusesPathsWithControlCharacters) {
  const std::string message = "the path has a line ending or another control character";
  const std::string name = folder.File("a\ntrackedcam: b");
  ExpectUsageError({"calibrate", "--data", name}, message);
  ExpectUsageError({"calibrate", "--config", name}, message);
  ExpectUsageError({"report", "--result", name, "--out", "page.html"}, message);
  ExpectUsageError({"simulate", name}, message);
  ExpectUsageError(Calibrate({"--data", folder.File("data.csv"), "--board", "9x6", "--square",
                              "30mm", "--result", name}),
                   message);
  ExpectUsageError(Calibrate({"--data", folder.File("data.csv"), "--board", "9x6", "--square",
                              "30mm", "--working-folder", name}),
                   message);
  EXPECT_FALSE(std::filesystem::exists(name));
}

// Every line fits a terminal of 80 columns, and every text begins at the same one.
TEST_F(HostProgramUsage, HelpHasTwoColumns) {
  for (const char* command :
       {"", "calibrate", "chart", "compare", "crosscheck", "export", "report", "simulate"}) {
    const ProgramRun run = *command == '\0' ? Run({"--help"}) : Run({command, "--help"});
    EXPECT_EQ(run.status, 0) << command;
    std::istringstream lines(run.out);
    for (std::string line;
         std::getline(lines, line) && line != "Examples:" && line != "Example:";) {
      EXPECT_LE(line.size(), 80U) << line;
      if (line.rfind("  ", 0) == 0) {
        ASSERT_GT(line.size(), 34U) << line;
        EXPECT_EQ(line[33], ' ') << line;
        EXPECT_NE(line[34], ' ') << line;
      }
    }
    for (std::string line; std::getline(lines, line);) {
      EXPECT_LE(line.size(), 80U) << line;
    }
  }
}

TEST_F(HostProgramUsage, HelpNamesTheCommands) {
  const ProgramRun run = Run({"--help"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.error, "");
  EXPECT_THAT(run.out, AllOf(HasSubstr("calibrate"), HasSubstr("simulate"), HasSubstr("export"),
                             HasSubstr("--config")));
}

TEST_F(HostProgramUsage, HelpOfACommandNamesItsOptions) {
  const ProgramRun calibrate = Run({"calibrate", "--help"});
  EXPECT_EQ(calibrate.status, 0);
  for (const char* option :
       {"--data", "--sensor", "--board", "--square", "--chart-rotation", "--chart-translation",
        "--invert-tracker-quaternions", "--expected-records", "--log-folder", "--result",
        "--export", "--truth", "--working-folder", "--verbose", "--config", "Exit status"}) {
    EXPECT_THAT(calibrate.out, HasSubstr(option));
  }
  const ProgramRun simulate = Run({"simulate", "--help"});
  EXPECT_EQ(simulate.status, 0);
  EXPECT_THAT(simulate.out, HasSubstr("--photographs N=20"));
}

TEST_F(HostProgramUsage, VersionIsShown) {
  const ProgramRun run = Run({"--version"});
  EXPECT_EQ(run.status, 0);
  // Sources from an archive have no commit.
  EXPECT_THAT(run.out, StartsWith("trackedcam " TRACKEDCAM_VERSION "\ncommit "));
  EXPECT_TRUE(std::regex_match(
      run.out, std::regex("trackedcam [0-9.]+\ncommit ([0-9a-f]{40}|unknown)\n"
                          "built with OpenCV 4\\.[0-9.]+, Eigen 3\\.[0-9.]+, Boost 1\\.[0-9.]+, "
                          "CLI11 [0-9.]+, nlohmann-json [0-9.]+(, cairo [0-9.]+)?\n")))
      << run.out;
}

TEST_F(HostProgramUsage, NeedsAKnownCommand) {
  ExpectUsageError({}, "a command is missing");
  ExpectUsageError({"calibarte"}, "calibarte");
  ExpectUsageError({"calibrate", "--sqare", "0.03"}, "--data is required");
}

TEST_F(HostProgramUsage, NeedsADataFile) {
  ExpectUsageError(Calibrate({"--data", "none.csv", "--board", "9x6", "--square", "0.03"}),
                   "--data: there is no file none.csv");
}

TEST_F(HostProgramUsage, NeedsRows) {
  test::WriteFile(folder.File("empty.csv"), "Time,Image\n");
  ExpectUsageError(Calibrate({"--data", "empty.csv", "--board", "9x6", "--square", "0.03"}),
                   "empty.csv has no rows");
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "log"));
}

TEST_F(HostProgramUsage, SaysWhyThereIsNoRow) {
  const std::string row = ",a.jpg,1,1,1,1,0,0,0,1,1,1,1,0,0,0\n";
  test::WriteFile(folder.File("times.csv"), "Time,Image\nT1" + row + "T2" + row);
  ExpectUsageError(Calibrate({"--data", "times.csv", "--board", "9x6", "--square", "0.03"}),
                   "The time begins with T in all 2 rows");
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "log"));
}

TEST_F(HostProgramUsage, NeedsMetresAndInnerCorners) {
  ExpectUsageError(Calibrate({"--data", "data.csv", "--board", "9x6", "--square", "30"}),
                   "--square: 30 is 30 metres");
  ExpectUsageError(Calibrate({"--data", "data.csv", "--board", "2x6", "--square", "0.03"}),
                   "at least 3 inner corners");
}

TEST_F(HostProgramUsage, NeedsWritableOutput) {
  test::WriteFile(folder.File("file"), "");
  ExpectUsageError(Calibrate({"--data", "data.csv", "--board", "9x6", "--square", "0.03",
                              "--result", folder.Path().u8string()}),
                   "is a folder, not a file");
  ExpectUsageError({"calibrate", "--data", "data.csv", "--sensor", "36x20", "--chart-rotation",
                    "1,2,3", "--chart-translation", "1,2,3", "--board", "9x6", "--square", "0.03",
                    "--log-folder", "file"},
                   "--log-folder: cannot create the folder");
}

TEST_F(HostProgramUsage, NeverOverwritesItsInput) {
  ExpectUsageError(Calibrate({"--data", "data.csv", "--board", "9x6", "--square", "0.03",
                              "--result", "data.csv"}),
                   "data.csv would be overwritten");
  EXPECT_TRUE(std::filesystem::exists(folder.Path() / "data.csv"));
}

TEST_F(HostProgramUsage, SimulateSeparatesShootsAndRecordings) {
  ExpectUsageError({"simulate", "film", "--fps", "10"}, "--fps requires --recording");
  ExpectUsageError({"simulate", "film", "--recording", "--outliers", "2"},
                   "--outliers excludes --recording");
  ExpectUsageError({"simulate", "film", "--recording", "--motion", "drone"},
                   "--motion: drone is not handheld or tripod");
  ExpectUsageError({"simulate", "film", "--recording", "--drop", "1"},
                   "droppedFraction must be from 0 to 0.95");
}

TEST_F(HostProgramUsage, SimulateNamesWhatCannotBe) {
  ExpectUsageError({"simulate", "shoot", "--photographs", "0"}, "photographs must be at least 1");
  ExpectUsageError({"simulate", "shoot", "--board", "9by6"}, "--board: 9by6 is not");
  ExpectUsageError({"simulate", "shoot", "--tangential", "0.001"},
                   "--tangential: 0.001 is not P1,P2, such as 0.001,-0.0005");
  ExpectUsageError({"simulate", "shoot", "--tangential", "0,0.5"}, "p2 must be from -0.02 to 0.02");
  ExpectUsageError({"simulate", "shoot", "--chart-bow-mm", "20"},
                   "chart.bowMetres must be from -0.0075 to 0.0075, not 0.02");
  ExpectUsageError({"simulate", "shoot", "--noise-correlation", "2"},
                   "noiseCorrelation must be from 0 to 1, not 2");
}

TEST_F(HostProgramUsage, NeedsARowThatTheLibraryCanBeGiven) {
  test::WriteFile(folder.File("bad.csv"), "1,\xFF.jpg,1,1,1,1,1,1,1,1,1,1,1,1,1,1\n");
  ExpectUsageError(Calibrate({"--data", "bad.csv", "--board", "9x6", "--square", "0.03"}),
                   "The path of the photograph is not UTF-8 in row 1");
}

}  // namespace
}  // namespace trackedcam::app
