// Calls on several threads at once give the same results as one after the other.

#include <algorithm>
#include <filesystem>
#include <thread>

#include "shoots/calibrate_shoot.h"
#include "simulator/write_shoot.h"
#include "support/log_lines.h"
#include "support/platform.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam::test {
namespace {

namespace sim = simulator;
namespace fs = std::filesystem;

constexpr int kThreads = 8;
constexpr int kCallsOfEach = 3;

// The photographs have absolute paths, because threads share one working folder.
sim::Shoot ShootIn(const TemporaryFolder& folder) {
  sim::ShootOptions options = SmallShoot(13);
  options.imageWidth = 640;
  options.imageHeight = 360;
  options.missing = 1;
  options.trackerNoiseMm = 0.5;
  sim::Shoot shoot = sim::SimulateShoot(options);
  for (sim::Photograph& photograph : shoot.photographs) {
    photograph.path = folder.File(photograph.path);
  }
  sim::WriteShoot(shoot, folder.Path());
  return shoot;
}

std::vector<double> Exports(const Calibrated& calibrated, const std::string& logFolder) {
  std::vector<double> all;
  CamAxisToUE4(calibrated.transformCamTc, all, all, logFolder);
  CamAxisToUE5(calibrated.transformCamTc, all, all, logFolder);
  CamAxisToUE5_ExportxN(calibrated.transformCamTc, all, all, logFolder);
  CamAxisToAximmetry(calibrated.normFocal, calibrated.normCenter, calibrated.transformCamTc, all,
                     all, all, all, logFolder);
  return all;
}

struct Outcome {
  std::vector<double> values;
  std::vector<double> exports;
};

Outcome CalibrateAndExport(HostArguments arguments, const std::string& logFolder) {
  arguments.logFolder = logFolder;
  const Calibrated calibrated = CallCalibration(arguments);
  return {calibrated.AllValues(), Exports(calibrated, logFolder)};
}

class Threads : public testing::Test {
 protected:
  // Call i logs to logFolders[i].
  void RunAll(const std::vector<std::string>& logFolders) {
    std::vector<Outcome> outcomes(logFolders.size());
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
      threads.emplace_back([&, thread] {
        for (std::size_t call = thread; call < outcomes.size(); call += kThreads) {
          outcomes[call] = CalibrateAndExport(arguments, logFolders[call]);
        }
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    ASSERT_EQ(outcomes.size(), static_cast<std::size_t>(kThreads * kCallsOfEach));
    for (const Outcome& outcome : outcomes) {
      EXPECT_EQ(outcome.values, alone.values);
      EXPECT_EQ(outcome.exports, alone.exports);
    }
  }

  static std::vector<std::string> LinesIn(const fs::path& folder) {
    std::vector<std::string> lines;
    std::vector<fs::path> logs;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
      if (entry.path().extension() == ".txt") {
        logs.push_back(entry.path());
      }
    }
    std::sort(logs.begin(), logs.end());
    for (const fs::path& log : logs) {
      const std::vector<std::string> more = ReadLogLines(log.u8string());
      lines.insert(lines.end(), more.begin(), more.end());
    }
    return lines;
  }

  TemporaryFolder shootFolder;
  TemporaryFolder logFolder;
  HostArguments arguments = ArgumentsFor(ShootIn(shootFolder), shootFolder);
  Outcome alone = CalibrateAndExport(arguments, logFolder.Path().u8string());
};

TEST_F(Threads, GiveTheSameInSeparateFolders) {
  ASSERT_EQ(alone.values.size(), 1u + 2 + 2 + 2 + 5 + 16 + 2 + 1);
  const TemporaryFolder folders;
  std::vector<std::string> logFolders;
  for (int call = 0; call < kThreads * kCallsOfEach; ++call) {
    logFolders.push_back(folders.File(std::to_string(call)));
    fs::create_directory(fs::u8path(logFolders.back()));
  }
  RunAll(logFolders);
  const std::vector<std::string> expected = LinesIn(logFolder.Path());
  for (const std::string& folder : logFolders) {
    EXPECT_EQ(LinesIn(fs::u8path(folder)), expected);
  }
}

TEST_F(Threads, GiveTheSameInOneFolder) {
  const TemporaryFolder folder;
  RunAll(std::vector<std::string>(kThreads * kCallsOfEach, folder.Path().u8string()));
  if (test::kAppendsWholeLines) {  // no line is missing, whichever calls share a log
    EXPECT_EQ(LinesIn(folder.Path()).size(),
              LinesIn(logFolder.Path()).size() * kThreads * kCallsOfEach);
  }
}

}  // namespace
}  // namespace trackedcam::test
