// The same shoot gives the same values through every interface, to the last bit.

#include <algorithm>
#include <array>
#include <cstdio>
#include <regex>
#include <thread>
#include <utility>

#include <gmock/gmock.h>

#include "simulated_shoot.h"
#include "support/host_float_environment.h"
#include "support/platform.h"
#include "support/working_folder.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam::c {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class CalibrateTest : public testing::Test {
 protected:
  test::TemporaryFolder folder;
  std::string log = folder.File("log");
};

// Removes what differs between runs: the times, and the commands that only the program suggests.
std::string OfAnyRun(std::string json) {
  for (const auto& [own, all] : {std::pair{"log_[-.0-9]+\\.txt", "log_TIME.txt"},
                                 std::pair{"\"time\": \"[^\"]*\"", "\"time\": \"\""},
                                 std::pair{"\"seconds\": \\{[^}]*\\}", "\"seconds\": {}"},
                                 std::pair{"\"commands\": \\[[^\\]]*\\]", "\"commands\": []"}}) {
    json = std::regex_replace(json, std::regex(own), all);
  }
  return json;
}

// Shows only where two long texts begin to differ.
void ExpectSame(const std::string& a, const std::string& b) {
  const auto differing = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  const std::size_t at = differing.first - a.begin();
  EXPECT_TRUE(a == b) << a.substr(at, 200) << "\nis not\n" << b.substr(at, 200);
}

TEST_F(CalibrateTest, ValuesAreThoseOfTheFiveFunctions) {
  const OwnedReport report = Calibrated(OpenedShoot(), SettingsFor(log));

  std::vector<double> imageSize, normFocal, normCenter, distortion, transformCamTc, fieldOfView,
      focalLengthMm;
  const simulator::Shoot& shoot = SimulatedShoot::Get().Truth();
  const auto list = [](const Eigen::Vector3d& v) { return std::vector<double>{v[0], v[1], v[2]}; };
  const test::WorkingFolder there(SimulatedShoot::Get().Folder());
  const int code = Calibration(SimulatedShoot::Get().DataFile(), 36, 20.25, 9, 6, 0.03,
                               list(shoot.nominalMounting.anglesDegrees),
                               list(shoot.nominalMounting.translationMetres), imageSize, normFocal,
                               normCenter, distortion, transformCamTc, fieldOfView, focalLengthMm,
                               folder.Path().u8string(), false, 24);

  std::int32_t readCode = -1;
  EXPECT_EQ(trackedcam_report_code(report.Get(), &readCode), TRACKEDCAM_OK);
  EXPECT_EQ(readCode, code);
  EXPECT_EQ(NumbersAt(report, "/imageSize"), imageSize);
  EXPECT_EQ(NumbersAt(report, "/normFocal"), normFocal);
  EXPECT_EQ(NumbersAt(report, "/normCenter"), normCenter);
  EXPECT_EQ(NumbersAt(report, "/distortion"), distortion);
  EXPECT_EQ(NumbersAt(report, "/transformCamTc"), transformCamTc);
  EXPECT_EQ(NumbersAt(report, "/fieldOfView"), fieldOfView);
  EXPECT_EQ(NumbersAt(report, "/focalLengthMm"), focalLengthMm);
  std::vector<double> transform(16);
  EXPECT_EQ(trackedcam_report_transform_cam_tc(report.Get(), transform.data()), TRACKEDCAM_OK);
  EXPECT_EQ(transform, transformCamTc);
}

TEST_F(CalibrateTest, JsonTextIsThatOfTheProgram) {
  const fs::path shoot = SimulatedShoot::Get().Folder();
  const int status =
      test::RunProgram(fs::absolute(TRACKEDCAM_HOST_PROGRAM),
                       {"calibrate", "--config", SimulatedShoot::Get().ConfigFile(), "--log-folder",
                        log, "--result", folder.File("result.json"), "--export", "ue4,unreal"},
                       folder.Path(), folder.Path() / "out", folder.Path() / "error");
  ASSERT_EQ(status, 0) << test::ReadFile(folder.File("error"));
  fs::remove_all(fs::u8path(log));  // so that the folder of the run has the same name

  // Photographs keep their relative names only for a process that works in their folder.
  const test::WorkingFolder there(shoot);
  trackedcam_settings settings = SettingsFor(log);
  const OwnedReport report = Calibrated(OpenedShoot(), settings);
  EXPECT_EQ(trackedcam_report_export(report.Get(), "ue4", nullptr, nullptr), TRACKEDCAM_OK);
  EXPECT_EQ(trackedcam_report_export(report.Get(), "unreal", nullptr, nullptr), TRACKEDCAM_OK);
  const std::string program = test::ReadFile(folder.File("result.json"));
  EXPECT_GT(program.size(), 10000U);
  ExpectSame(OfAnyRun(JsonOf(report)), OfAnyRun(program));
}

TEST_F(CalibrateTest, RowsFromMemoryInUnrealsAxesAreThoseOfTheFile) {
  const OwnedReport fromFile = Calibrated(OpenedShoot(), SettingsFor(log));

  OwnedShoot shoot;
  ASSERT_EQ(trackedcam_shoot_create(shoot.Fill()), TRACKEDCAM_OK);
  // A component's X, Y, Z are the reported z, -x, y, in centimetres. The change of handedness
  // inverts the imaginary part.
  const auto component = [](const Eigen::Isometry3d& pose) {
    Eigen::Matrix3d reportedAxes;  // of a tracker, from those that the simulator solves in
    reportedAxes << -1, 0, 0, 0, 0, -1, 0, -1, 0;
    const Eigen::Vector3d p = 100 * pose.translation();
    const Eigen::Quaterniond q(Eigen::Matrix3d(pose.linear() * reportedAxes));
    return trackedcam_pose{{p.z(), -p.x(), p.y()}, {q.w(), -q.z(), q.x(), -q.y()}};
  };
  double time = 0;
  for (const simulator::Photograph& photograph : SimulatedShoot::Get().Truth().photographs) {
    const trackedcam_pose camera = component(photograph.trackedTc);
    const trackedcam_pose chart = component(photograph.trackedTr);
    ASSERT_EQ(trackedcam_shoot_add(shoot.Get(), time++, photograph.path.c_str(), &camera, &chart),
              TRACKEDCAM_OK);
  }
  trackedcam_settings settings = SettingsFor(log);
  settings.tracker_axes = TRACKEDCAM_AXES_UNREAL;
  const std::string workingFolder = SimulatedShoot::Get().Folder().u8string();
  settings.working_folder = workingFolder.c_str();
  const OwnedReport report = Calibrated(shoot, settings);
  const std::vector<double> expected = NumbersAt(fromFile, "/transformCamTc");
  const std::vector<double> found = NumbersAt(report, "/transformCamTc");
  ASSERT_EQ(found.size(), 16U);
  for (std::size_t i = 0; i < 16; ++i) {
    EXPECT_NEAR(found[i], expected[i], 1e-6);  // the file has twelve decimals
  }
  EXPECT_THAT(TextAt(report, "/inputs/data"), HasSubstr("shoot_001"));
  EXPECT_TRUE(fs::exists(fs::u8path(TextAt(report, "/inputs/data"))));
}

TEST_F(CalibrateTest, FindsTheMountingThatIsNotStated) {
  trackedcam_settings settings = SettingsFor(log);
  settings.mounting_is_stated = 0;
  const OwnedReport report = Calibrated(OpenedShoot(), settings);
  std::int32_t level = -1;
  EXPECT_EQ(trackedcam_report_level(report.Get(), &level), TRACKEDCAM_OK);
  EXPECT_LE(level, TRACKEDCAM_DOUBT);
  const simulator::Shoot& truth = SimulatedShoot::Get().Truth();
  const std::vector<double> found = NumbersAt(report, "/crossCheck/mounting/translationMetres");
  ASSERT_EQ(found.size(), 3U);
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(found[i], truth.trueMounting.translationMetres[i], 0.001);
  }
  std::size_t keys = 0;
  EXPECT_EQ(trackedcam_report_count(report.Get(), "/firstRun", &keys), TRACKEDCAM_OK);
}

TEST_F(CalibrateTest, TakesAMountingInReportedAxes) {
  const OwnedReport fixed = Calibrated(OpenedShoot(), SettingsFor(log));
  trackedcam_settings settings = SettingsFor(log);
  settings.mounting_axes = TRACKEDCAM_MOUNTING_REPORTED;
  const double x = settings.chart_translation_m[0];
  const double y = settings.chart_translation_m[1];
  const double z = settings.chart_translation_m[2];
  settings.chart_translation_m[0] = -x;
  settings.chart_translation_m[1] = -z;
  settings.chart_translation_m[2] = -y;
  const OwnedReport report = Calibrated(OpenedShoot(), settings);
  const std::vector<double> taken = NumbersAt(report, "/inputs/chartTranslationMetres");
  EXPECT_NEAR(taken[0], x, 1e-12);
  EXPECT_NEAR(taken[1], y, 1e-12);
  EXPECT_NEAR(taken[2], z, 1e-12);
}

struct Heard {
  std::thread::id thread;
  std::vector<std::string> stages;
};

void Hear(const trackedcam_progress* progress, void* user) {
  auto* const heard = static_cast<Heard*>(user);
  EXPECT_EQ(std::this_thread::get_id(), heard->thread);
  EXPECT_LE(progress->photographs_done, progress->photographs_in_all);
  if (heard->stages.empty() || heard->stages.back() != progress->stage) {
    heard->stages.push_back(progress->stage);
  }
}

TEST_F(CalibrateTest, ReportsProgressOnTheCallersThread) {
  const OwnedShoot shoot = OpenedShoot();
  const trackedcam_settings settings = SettingsFor(log);
  Heard heard = {std::this_thread::get_id(), {}};
  OwnedReport report;
  ASSERT_EQ(trackedcam_calibrate(shoot.Get(), &settings, Hear, &heard, report.Fill()),
            TRACKEDCAM_OK);
  EXPECT_THAT(heard.stages, testing::Contains("Finding the board"));
}

TEST_F(CalibrateTest, LeavesStandardOutputToTheHost) {
  const OwnedShoot shoot = OpenedShoot();
  trackedcam_settings settings = SettingsFor(log);
  testing::internal::CaptureStdout();
  OwnedRun run;
  ASSERT_EQ(trackedcam_start(shoot.Get(), &settings, run.Fill()), TRACKEDCAM_OK);
  std::int32_t isDone = 0;
  while (isDone == 0) {
    trackedcam_run_wait(run.Get(), 20, &isDone);
    std::printf(".");
    std::fflush(stdout);
  }
  OwnedReport report;
  ASSERT_EQ(trackedcam_run_report(run.Get(), report.Fill()), TRACKEDCAM_OK);
  EXPECT_EQ(trackedcam_report_export(report.Get(), "ue5", nullptr, nullptr), TRACKEDCAM_OK);
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_GT(out.size(), 1U);
  EXPECT_EQ(out, std::string(out.size(), '.'));
}

TEST_F(CalibrateTest, IsTheSameWhateverTheHostHasSet) {
  const OwnedShoot shoot = OpenedShoot();
  const OwnedReport plain = Calibrated(shoot, SettingsFor(log));
  const fs::path before = fs::current_path();
  for (const auto habit : {test::FloatHabit::kTrapsExceptions, test::FloatHabit::kRoundsUp}) {
    std::vector<double> transform, deviation;
    unsigned int settingsBefore = 0, settingsAfter = 0;
    {
      const test::HostFloatEnvironment host(habit);
      settingsBefore = test::HostFloatEnvironment::Settings();
      const OwnedReport report = Calibrated(shoot, SettingsFor(log));
      transform = NumbersAt(report, "/transformCamTc");
      deviation = NumbersAt(report, "/crossCheck/covarianceCamTcTwist");
      settingsAfter = test::HostFloatEnvironment::Settings();
    }
    EXPECT_EQ(settingsAfter, settingsBefore) << habit;
    EXPECT_EQ(transform, NumbersAt(plain, "/transformCamTc")) << habit;
    EXPECT_EQ(deviation, NumbersAt(plain, "/crossCheck/covarianceCamTcTwist")) << habit;
  }
  EXPECT_EQ(fs::current_path(), before);
}

TEST_F(CalibrateTest, LeavesOutPhotographs) {
  trackedcam_settings settings = SettingsFor(log);
  settings.exclude = "img_003, img_007.jpg";
  const OwnedReport report = Calibrated(OpenedShoot(), settings);
  EXPECT_EQ(TextAt(report, "/photographs/3/state"), "leftOutByUser");
  EXPECT_EQ(TextAt(report, "/photographs/7/state"), "leftOutByUser");
  EXPECT_NE(TextAt(report, "/photographs/4/state"), "leftOutByUser");
  EXPECT_THAT(TextAt(report, "/photographCounts/others"), HasSubstr("2 left out by the user"));

  const std::string logFile = TextAt(report, "/log");
  settings.exclude = "img_004";
  OwnedReport checked;
  ASSERT_EQ(trackedcam_crosscheck(logFile.c_str(), &settings, checked.Fill()), TRACKEDCAM_OK);
  EXPECT_EQ(TextAt(checked, "/photographs/3/state"), "leftOutByUser");
  settings.exclude = "img_003";  // the log does not have it
  EXPECT_EQ(trackedcam_crosscheck(logFile.c_str(), &settings, checked.Fill()),
            TRACKEDCAM_BAD_INPUT);
}

TEST_F(CalibrateTest, ChecksALogAsTheProgramDoes) {
  const OwnedReport report = Calibrated(OpenedShoot(), SettingsFor(log));
  const std::string logFile = TextAt(report, "/log");
  const trackedcam_settings settings = SettingsFor(log);
  OwnedReport checked;
  ASSERT_EQ(trackedcam_crosscheck(logFile.c_str(), &settings, checked.Fill()), TRACKEDCAM_OK)
      << trackedcam_last_error();
  const int status = test::RunProgram(
      fs::absolute(TRACKEDCAM_HOST_PROGRAM),
      {"crosscheck", "--json", "--log", logFile, "--config", SimulatedShoot::Get().ConfigFile()},
      folder.Path(), folder.Path() / "out", folder.Path() / "error");
  ASSERT_EQ(status, 0) << test::ReadFile(folder.File("error"));
  ExpectSame(OfAnyRun(JsonOf(checked)), OfAnyRun(test::ReadText(folder.File("out"))));
  EXPECT_EQ(trackedcam_report_export(checked.Get(), "ue4", nullptr, nullptr), TRACKEDCAM_NOT_FOUND);

  OwnedReport without;
  ASSERT_EQ(trackedcam_crosscheck(logFile.c_str(), nullptr, without.Fill()), TRACKEDCAM_OK);
  EXPECT_EQ(TextAt(without, "/log"), logFile);
}

TEST_F(CalibrateTest, StatesTheErrorInTheImageAtTheDistancesAskedFor) {
  const std::array<double, 2> at = {7.5, 3};
  trackedcam_settings settings = SettingsFor(log);
  settings.at_m = at.data();
  settings.at_count = 2;
  const OwnedReport report = Calibrated(OpenedShoot(), settings);
  OwnedReport checked;
  const std::string logFile = TextAt(report, "/log");
  ASSERT_EQ(trackedcam_crosscheck(logFile.c_str(), &settings, checked.Fill()), TRACKEDCAM_OK);
  for (trackedcam_report* const each : {report.Get(), checked.Get()}) {
    std::size_t count = 0;
    EXPECT_EQ(trackedcam_report_count(each, "/crossCheck/onScreen", &count), TRACKEDCAM_OK);
    EXPECT_EQ(count, 2U);
    for (const auto& [pointer, metres] :
         {std::pair("/crossCheck/onScreen/0/distanceMetres", 3.0),
          std::pair("/crossCheck/onScreen/1/distanceMetres", 7.5)}) {
      double value = 0;
      EXPECT_EQ(trackedcam_report_numbers(each, pointer, &value, 1, &count), TRACKEDCAM_OK);
      EXPECT_EQ(value, metres);
    }
  }
}

}  // namespace
}  // namespace trackedcam::c
