// Start, poll and wait.

#include <algorithm>
#include <chrono>
#include <thread>

#include <gmock/gmock.h>

#include "simulated_shoot.h"
#include "support/platform.h"

namespace trackedcam::c {
namespace {

namespace fs = std::filesystem;

OwnedRun Started(const OwnedShoot& shoot, const trackedcam_settings& settings) {
  OwnedRun run;
  EXPECT_EQ(trackedcam_start(shoot.Get(), &settings, run.Fill()), TRACKEDCAM_OK)
      << trackedcam_last_error();
  return run;
}

bool Waited(const OwnedRun& run, std::int32_t timeoutMs) {
  std::int32_t isDone = -1;
  EXPECT_EQ(trackedcam_run_wait(run.Get(), timeoutMs, &isDone), TRACKEDCAM_OK);
  EXPECT_TRUE(isDone == 0 || isDone == 1);
  return isDone == 1;
}

OwnedReport ReportOf(const OwnedRun& run) {
  OwnedReport report;
  EXPECT_EQ(trackedcam_run_report(run.Get(), report.Fill()), TRACKEDCAM_OK)
      << trackedcam_last_error();
  return report;
}

/// Whether the log in the folder of a run says that the calibration succeeded.
bool IsSuccessful(const fs::path& runFolder) {
  const fs::directory_iterator files(runFolder);
  return std::any_of(begin(files), end(files), [](const fs::directory_entry& file) {
    return file.path().extension() == ".txt" &&
           test::ReadText(file.path().u8string()).find("Calibration successful.") !=
               std::string::npos;
  });
}

class RunTest : public testing::Test {
 protected:
  test::TemporaryFolder folder;
  std::string log = folder.File("log");
};

TEST_F(RunTest, IsPolledUntilItsEnd) {
  const OwnedRun run = Started(OpenedShoot(), SettingsFor(log));  // the shoot is freed at once
  trackedcam_report* none = nullptr;
  EXPECT_EQ(trackedcam_run_report(run.Get(), &none), TRACKEDCAM_NOT_DONE);
  EXPECT_EQ(none, nullptr);
  EXPECT_FALSE(Waited(run, 0));
  std::int32_t isDone = 0;
  std::vector<std::string> stages;
  while (isDone == 0) {
    trackedcam_progress progress;
    ASSERT_EQ(trackedcam_run_poll(run.Get(), &isDone, &progress, sizeof progress), TRACKEDCAM_OK);
    stages.emplace_back(progress.stage);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_THAT(stages, testing::Contains("Finding the board"));
  EXPECT_TRUE(Waited(run, 0));
  EXPECT_TRUE(Waited(run, -1));
  const OwnedReport first = ReportOf(run);
  const OwnedReport second = ReportOf(run);
  EXPECT_NE(first.Get(), second.Get());
  EXPECT_EQ(JsonOf(first), JsonOf(second));
}

TEST_F(RunTest, ReportOutlivesTheRun) {
  OwnedReport report;
  {
    const OwnedRun run = Started(OpenedShoot(), SettingsFor(log));
    Waited(run, -1);
    ASSERT_EQ(trackedcam_run_report(run.Get(), report.Fill()), TRACKEDCAM_OK);
  }
  EXPECT_EQ(NumbersAt(report, "/transformCamTc").size(), 16U);
}

TEST_F(RunTest, ContinuesInTheBackgroundWhenItIsFreed) {
  { const OwnedRun run = Started(OpenedShoot(), SettingsFor(log)); }
  const fs::path run = fs::u8path(log) / "run_001";
  while (!fs::exists(run) || !IsSuccessful(run)) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

#ifdef TRACKEDCAM_EXIT_DURING_RUN
TEST_F(RunTest, EndsBeforeTheProcessDestroysWhatItNeeds) {
  for (const std::string milliseconds : {"0", "50", "200", "800"}) {
    const fs::path logs = folder.Path() / milliseconds;
    const int status =
        test::RunProgram(TRACKEDCAM_EXIT_DURING_RUN,
                         {SimulatedShoot::Get().DataFile(), logs.u8string(), milliseconds},
                         folder.Path(), folder.Path() / "out", folder.Path() / "error");
    EXPECT_EQ(status, 0) << test::ReadText(folder.File("error"));
    EXPECT_EQ(test::ReadText(folder.File("out")), "0 made\n");
    EXPECT_TRUE(IsSuccessful(logs / "run_002"));  // the mounting is not stated: two runs
  }
}

TEST_F(RunTest, DoesNotHoldUpAChildProcess) {
  const int status = test::RunProgram(
      TRACKEDCAM_EXIT_DURING_RUN, {SimulatedShoot::Get().DataFile(), log, "20", "fork"},
      folder.Path(), folder.Path() / "out", folder.Path() / "error");
  EXPECT_EQ(status, 0) << test::ReadText(folder.File("error"));
  EXPECT_THAT(test::ReadText(folder.File("out")), testing::StartsWith("child\n"));
}
#endif

TEST_F(RunTest, SeveralRunAtOnce) {
  const OwnedShoot shoot = OpenedShoot();
  const std::string logs[] = {folder.File("log a"), folder.File("log b"), log};
  const OwnedRun a = Started(shoot, SettingsFor(logs[0]));
  const OwnedRun b = Started(shoot, SettingsFor(logs[1]));
  const OwnedReport alone = Calibrated(shoot, SettingsFor(logs[2]));
  Waited(a, -1);
  Waited(b, -1);
  const std::vector<double> expected = NumbersAt(alone, "/transformCamTc");
  EXPECT_EQ(NumbersAt(ReportOf(a), "/transformCamTc"), expected);
  EXPECT_EQ(NumbersAt(ReportOf(b), "/transformCamTc"), expected);
}

TEST_F(RunTest, ReportsWhyItCouldNotStart) {
  OwnedShoot shoot;
  ASSERT_EQ(trackedcam_shoot_open(folder.File("missing.csv").c_str(), shoot.Fill()), TRACKEDCAM_OK);
  const OwnedRun run = Started(shoot, SettingsFor(log));
  EXPECT_TRUE(Waited(run, -1));
  trackedcam_report* none = nullptr;
  EXPECT_EQ(trackedcam_run_report(run.Get(), &none), TRACKEDCAM_BAD_INPUT);
  EXPECT_THAT(trackedcam_last_error(), testing::HasSubstr("missing.csv"));
}

}  // namespace
}  // namespace trackedcam::c
