// Wrong use of every function: a status, a sentence, and no output parameter set.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>
#include <thread>

#include <gmock/gmock.h>

#include "simulated_shoot.h"

namespace trackedcam::c {
namespace {

using testing::HasSubstr;

constexpr const char* kNotUtf8 = "a\xFF";

#define EXPECT_INVALID(call)                               \
  do {                                                     \
    EXPECT_EQ(call, TRACKEDCAM_INVALID_ARGUMENT) << #call; \
    EXPECT_STRNE(trackedcam_last_error(), "") << #call;    \
  } while (false)

template <class Handle>
Handle* NeverGiven() {
  return reinterpret_cast<Handle*>(std::uintptr_t{0x7FFFFFF0});
}

class WrongUse : public testing::Test {
 protected:
  test::TemporaryFolder folder;
  std::string log = folder.File("log");
  trackedcam_settings settings = SettingsFor(log);
  trackedcam_pose pose = {{0, 0, 0}, {1, 0, 0, 0}};
  OwnedShoot shoot = OpenedShoot();
};

TEST_F(WrongUse, ReturnsItsVersion) {
  EXPECT_STREQ(trackedcam_c_version(), TRACKEDCAM_VERSION);
}

TEST_F(WrongUse, NullMayBeFreed) {
  EXPECT_EQ(trackedcam_shoot_free(nullptr), TRACKEDCAM_OK);
  EXPECT_EQ(trackedcam_run_free(nullptr), TRACKEDCAM_OK);
  EXPECT_EQ(trackedcam_report_free(nullptr), TRACKEDCAM_OK);
}

TEST_F(WrongUse, OfShoots) {
  trackedcam_shoot* out = nullptr;
  EXPECT_INVALID(trackedcam_shoot_create(nullptr));
  EXPECT_INVALID(trackedcam_shoot_open(nullptr, &out));
  EXPECT_INVALID(trackedcam_shoot_open("", &out));
  EXPECT_INVALID(trackedcam_shoot_open(kNotUtf8, &out));
  EXPECT_INVALID(trackedcam_shoot_open("a", nullptr));
  EXPECT_EQ(out, nullptr);

  OwnedShoot rows;
  ASSERT_EQ(trackedcam_shoot_create(rows.Fill()), TRACKEDCAM_OK);
  EXPECT_INVALID(trackedcam_shoot_add(nullptr, 0, "a.jpg", &pose, &pose));
  EXPECT_INVALID(trackedcam_shoot_add(rows.Get(), 0, nullptr, &pose, &pose));
  EXPECT_INVALID(trackedcam_shoot_add(rows.Get(), 0, kNotUtf8, &pose, &pose));
  EXPECT_INVALID(trackedcam_shoot_add(rows.Get(), 0, "a.jpg", nullptr, &pose));
  EXPECT_INVALID(trackedcam_shoot_add(rows.Get(), 0, "a.jpg", &pose, nullptr));
  EXPECT_INVALID(trackedcam_shoot_add(shoot.Get(), 0, "a.jpg", &pose, &pose));
  EXPECT_THAT(trackedcam_last_error(), HasSubstr("data file"));
  EXPECT_EQ(trackedcam_shoot_add(rows.Get(), 0, "", &pose, &pose), TRACKEDCAM_BAD_INPUT);
  EXPECT_EQ(trackedcam_shoot_add(rows.Get(), 0, "a,b.jpg", &pose, &pose), TRACKEDCAM_BAD_INPUT);

  trackedcam_pose nowhere = pose;
  nowhere.position[1] = std::numeric_limits<double>::quiet_NaN();
  trackedcam_pose noRotation = pose;
  std::fill_n(noRotation.quaternion_wxyz, 4, 0.0);
  for (const trackedcam_pose* bad : {&nowhere, &noRotation}) {
    EXPECT_EQ(trackedcam_shoot_add(rows.Get(), 0, "a.jpg", bad, &pose), TRACKEDCAM_BAD_INPUT);
    EXPECT_EQ(trackedcam_shoot_add(rows.Get(), 0, "a.jpg", &pose, bad), TRACKEDCAM_BAD_INPUT);
    EXPECT_THAT(trackedcam_last_error(), HasSubstr("chart's tracker"));
  }
  EXPECT_EQ(trackedcam_shoot_add(rows.Get(), HUGE_VAL, "a.jpg", &pose, &pose),
            TRACKEDCAM_BAD_INPUT);

  trackedcam_report* report = nullptr;
  EXPECT_EQ(trackedcam_calibrate(rows.Get(), &settings, nullptr, nullptr, &report),
            TRACKEDCAM_BAD_INPUT);
  EXPECT_THAT(trackedcam_last_error(), HasSubstr("no photographs"));

  const std::string file = folder.File("rows.csv");
  EXPECT_INVALID(trackedcam_shoot_save(nullptr, file.c_str()));
  EXPECT_INVALID(trackedcam_shoot_save(rows.Get(), nullptr));
  EXPECT_INVALID(trackedcam_shoot_save(rows.Get(), ""));
  EXPECT_INVALID(trackedcam_shoot_save(shoot.Get(), file.c_str()));
  EXPECT_EQ(trackedcam_shoot_save(rows.Get(), file.c_str()), TRACKEDCAM_BAD_INPUT);  // no rows
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::u8path(file)));
}

TEST_F(WrongUse, OfHandles) {
  OwnedReport report = Calibrated(shoot, settings);
  trackedcam_shoot* freedShoot = nullptr;
  ASSERT_EQ(trackedcam_shoot_create(&freedShoot), TRACKEDCAM_OK);
  ASSERT_EQ(trackedcam_shoot_free(freedShoot), TRACKEDCAM_OK);
  trackedcam_run* freedRun = nullptr;
  ASSERT_EQ(trackedcam_start(shoot.Get(), &settings, &freedRun), TRACKEDCAM_OK);
  std::int32_t number = 0;
  ASSERT_EQ(trackedcam_run_wait(freedRun, -1, &number), TRACKEDCAM_OK);
  trackedcam_report* freedReport = nullptr;
  ASSERT_EQ(trackedcam_run_report(freedRun, &freedReport), TRACKEDCAM_OK);
  ASSERT_EQ(trackedcam_run_free(freedRun), TRACKEDCAM_OK);
  ASSERT_EQ(trackedcam_report_free(freedReport), TRACKEDCAM_OK);

  trackedcam_shoot* const shoots[] = {nullptr, freedShoot, NeverGiven<trackedcam_shoot>(),
                                      reinterpret_cast<trackedcam_shoot*>(report.Get())};
  for (trackedcam_shoot* bad : shoots) {
    trackedcam_report* noReport = nullptr;
    trackedcam_run* noRun = nullptr;
    EXPECT_INVALID(trackedcam_shoot_add(bad, 0, "a.jpg", &pose, &pose));
    EXPECT_INVALID(trackedcam_calibrate(bad, &settings, nullptr, nullptr, &noReport));
    EXPECT_INVALID(trackedcam_start(bad, &settings, &noRun));
    if (bad != nullptr) {
      EXPECT_INVALID(trackedcam_shoot_free(bad));
    }
  }
  trackedcam_run* const runs[] = {nullptr, freedRun, NeverGiven<trackedcam_run>(),
                                  reinterpret_cast<trackedcam_run*>(report.Get())};
  for (trackedcam_run* bad : runs) {
    trackedcam_report* noReport = nullptr;
    trackedcam_progress progress;
    EXPECT_INVALID(trackedcam_run_poll(bad, &number, &progress, sizeof progress));
    EXPECT_INVALID(trackedcam_run_wait(bad, 0, &number));
    EXPECT_INVALID(trackedcam_run_report(bad, &noReport));
    if (bad != nullptr) {
      EXPECT_INVALID(trackedcam_run_free(bad));
    }
  }
  trackedcam_report* const reports[] = {nullptr, freedReport, NeverGiven<trackedcam_report>(),
                                        reinterpret_cast<trackedcam_report*>(shoot.Get())};
  trackedcam_export_options options;
  ASSERT_EQ(trackedcam_export_options_init(&options, sizeof options), TRACKEDCAM_OK);
  for (trackedcam_report* bad : reports) {
    const char* text = nullptr;
    std::size_t count = 0;
    double numbers[16];
    trackedcam_lens lens;
    EXPECT_INVALID(trackedcam_report_level(bad, &number));
    EXPECT_INVALID(trackedcam_report_code(bad, &number));
    EXPECT_INVALID(trackedcam_report_verdict(bad, &text, &text));
    EXPECT_INVALID(trackedcam_report_lens(bad, &lens, sizeof lens));
    EXPECT_INVALID(trackedcam_report_transform_cam_tc(bad, numbers));
    EXPECT_INVALID(trackedcam_report_json(bad, &text));
    EXPECT_INVALID(trackedcam_report_numbers(bad, "/code", numbers, 16, &count));
    EXPECT_INVALID(trackedcam_report_text(bad, "/message", &text));
    EXPECT_INVALID(trackedcam_report_count(bad, "/photographs", &count));
    EXPECT_INVALID(trackedcam_report_export(bad, "ue4", nullptr, &text));
    EXPECT_INVALID(trackedcam_report_export_with(bad, "ue4", &options, &text));
    EXPECT_INVALID(trackedcam_report_export_file(bad, "opencv", nullptr, "a"));
    EXPECT_INVALID(trackedcam_report_lens_file(bad, nullptr, "a", &text));
    EXPECT_INVALID(trackedcam_report_page(bad, nullptr, &text));
    EXPECT_INVALID(trackedcam_report_save(bad, nullptr, nullptr));
    if (bad != nullptr) {
      EXPECT_INVALID(trackedcam_report_free(bad));
    }
    EXPECT_EQ(text, nullptr);
  }
}

TEST_F(WrongUse, OfRuns) {
  OwnedRun run;
  ASSERT_EQ(trackedcam_start(shoot.Get(), &settings, run.Fill()), TRACKEDCAM_OK);
  std::int32_t isDone = -1;
  trackedcam_progress progress;
  EXPECT_INVALID(trackedcam_start(shoot.Get(), &settings, nullptr));
  EXPECT_INVALID(trackedcam_start(shoot.Get(), nullptr, run.Fill()));
  EXPECT_INVALID(trackedcam_run_poll(run.Get(), nullptr, &progress, sizeof progress));
  EXPECT_INVALID(trackedcam_run_poll(run.Get(), &isDone, &progress, sizeof progress - 1));
  EXPECT_INVALID(trackedcam_run_wait(run.Get(), 0, nullptr));
  EXPECT_INVALID(trackedcam_run_report(run.Get(), nullptr));
  EXPECT_EQ(isDone, -1);
  EXPECT_EQ(trackedcam_run_wait(run.Get(), -1, &isDone), TRACKEDCAM_OK);
}

TEST_F(WrongUse, OfReports) {
  const OwnedReport owned = Calibrated(shoot, settings);
  trackedcam_report* const report = owned.Get();
  const char* text = nullptr;
  std::size_t count = 99;
  double numbers[16];
  trackedcam_lens lens;
  EXPECT_INVALID(trackedcam_calibrate(shoot.Get(), &settings, nullptr, nullptr, nullptr));
  EXPECT_INVALID(trackedcam_report_level(report, nullptr));
  EXPECT_INVALID(trackedcam_report_code(report, nullptr));
  EXPECT_INVALID(trackedcam_report_verdict(report, nullptr, &text));
  EXPECT_INVALID(trackedcam_report_verdict(report, &text, nullptr));
  EXPECT_INVALID(trackedcam_report_lens(report, nullptr, sizeof lens));
  EXPECT_INVALID(trackedcam_report_lens(report, &lens, sizeof lens + 8));
  EXPECT_INVALID(trackedcam_report_transform_cam_tc(report, nullptr));
  EXPECT_INVALID(trackedcam_report_json(report, nullptr));
  EXPECT_INVALID(trackedcam_report_numbers(report, nullptr, numbers, 16, &count));
  EXPECT_INVALID(trackedcam_report_numbers(report, kNotUtf8, numbers, 16, &count));
  EXPECT_INVALID(trackedcam_report_numbers(report, "/transformCamTc", nullptr, 16, &count));
  EXPECT_INVALID(trackedcam_report_numbers(report, "/transformCamTc", numbers, 16, nullptr));
  EXPECT_INVALID(trackedcam_report_text(report, nullptr, &text));
  EXPECT_INVALID(trackedcam_report_text(report, "/message", nullptr));
  EXPECT_INVALID(trackedcam_report_count(report, nullptr, &count));
  EXPECT_INVALID(trackedcam_report_count(report, "/photographs", nullptr));
  EXPECT_INVALID(trackedcam_report_export(report, nullptr, nullptr, &text));
  EXPECT_INVALID(trackedcam_report_export(report, kNotUtf8, nullptr, &text));
  EXPECT_INVALID(trackedcam_report_export(report, "unreal", kNotUtf8, &text));
  trackedcam_export_options options;
  EXPECT_INVALID(trackedcam_export_options_init(nullptr, sizeof options));
  EXPECT_INVALID(trackedcam_export_options_init(&options, sizeof options - 1));
  ASSERT_EQ(trackedcam_export_options_init(&options, sizeof options), TRACKEDCAM_OK);
  EXPECT_INVALID(trackedcam_report_export_with(report, nullptr, &options, &text));
  EXPECT_INVALID(trackedcam_report_export_with(report, "unity", nullptr, &text));
  EXPECT_INVALID(trackedcam_report_export_file(report, nullptr, nullptr, "a"));
  EXPECT_INVALID(trackedcam_report_export_file(report, "opencv", nullptr, nullptr));
  EXPECT_INVALID(trackedcam_report_export_file(report, "opencv", nullptr, kNotUtf8));
  for (std::int32_t trackedcam_export_options::*flag :
       {&trackedcam_export_options::even_if_wrong, &trackedcam_export_options::nodal_offset,
        &trackedcam_export_options::reserved}) {
    trackedcam_export_options wrong = options;
    wrong.*flag = 2;
    EXPECT_INVALID(trackedcam_report_export_with(report, "unity", &wrong, &text));
  }
  options.struct_size -= 1;
  EXPECT_INVALID(trackedcam_report_export_with(report, "unity", &options, &text));
  EXPECT_INVALID(trackedcam_report_lens_file(report, nullptr, nullptr, &text));
  EXPECT_INVALID(trackedcam_report_lens_file(report, nullptr, kNotUtf8, &text));
  EXPECT_INVALID(trackedcam_report_lens_file(report, nullptr, "a", nullptr));
  EXPECT_INVALID(trackedcam_report_page(report, kNotUtf8, &text));
  EXPECT_INVALID(trackedcam_report_page(report, nullptr, nullptr));
  EXPECT_INVALID(trackedcam_report_save(report, folder.File("a.json").c_str(), kNotUtf8));
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "a.json"));
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(count, 99U);
}

TEST_F(WrongUse, OfSettings) {
  trackedcam_settings unset;
  EXPECT_INVALID(trackedcam_settings_init(nullptr, sizeof unset));
  EXPECT_INVALID(trackedcam_settings_init(&unset, sizeof unset - 8));
  EXPECT_INVALID(trackedcam_settings_init(&unset, sizeof unset + 8));
  EXPECT_THAT(trackedcam_last_error(), HasSubstr("different versions"));

  const auto statusOf = [&](void (*change)(trackedcam_settings&)) {
    trackedcam_settings changed = settings;
    change(changed);
    trackedcam_report* report = nullptr;
    const trackedcam_status status =
        trackedcam_calibrate(shoot.Get(), &changed, nullptr, nullptr, &report);
    EXPECT_EQ(report, nullptr);
    EXPECT_STRNE(trackedcam_last_error(), "");
    return status;
  };
  using Settings = trackedcam_settings;
  void (*const invalid[])(Settings&) = {
      [](Settings& s) { s.struct_size = 0; },
      [](Settings& s) { s.struct_size += 8; },
      [](Settings& s) { s.mounting_is_stated = 2; },
      [](Settings& s) { s.mounting_axes = -1; },
      [](Settings& s) { s.mounting_axes = 2; },
      [](Settings& s) { s.tracker_axes = 3; },
      [](Settings& s) { s.tracker_unit = 5; },
      [](Settings& s) { s.tracker_unit = std::numeric_limits<std::int32_t>::min(); },
      [](Settings& s) { s.invert_tracker_quaternions = 7; },
      [](Settings& s) { s.refine_mounting = -1; },
      [](Settings& s) { s.at_count = 1; },  // without at_m
      [](Settings& s) { s.at_count = -1; },
      [](Settings& s) { s.at_count = 101; },
      [](Settings& s) { s.quaternion_order = 2; },
      [](Settings& s) { s.log_folder = nullptr; },
      [](Settings& s) { s.log_folder = ""; },
      [](Settings& s) { s.log_folder = kNotUtf8; },
      [](Settings& s) { s.working_folder = kNotUtf8; },
  };
  for (const auto change : invalid) {
    EXPECT_EQ(statusOf(change), TRACKEDCAM_INVALID_ARGUMENT) << trackedcam_last_error();
  }
  static const double kNoDistance = 0;
  void (*const impossible[])(Settings&) = {
      [](Settings& s) {
        s.at_count = 1;
        s.at_m = &kNoDistance;
      },
      [](Settings& s) { s.board_columns = 0; },
      [](Settings& s) { s.board_rows = std::numeric_limits<std::int32_t>::max(); },
      [](Settings& s) { s.sensor_width_mm = std::numeric_limits<double>::quiet_NaN(); },
      [](Settings& s) { s.sensor_height_mm = -1; },
      [](Settings& s) { s.square_m = 30; },
      [](Settings& s) { s.chart_rotation_deg[1] = std::numeric_limits<double>::infinity(); },
      [](Settings& s) { s.chart_translation_m[2] = std::numeric_limits<double>::quiet_NaN(); },
      [](Settings& s) { s.expected_records = -2; },
      [](Settings& s) { s.good_enough_mm = 0; },
      [](Settings& s) { s.good_enough_deg = std::numeric_limits<double>::quiet_NaN(); },
  };
  for (const auto change : impossible) {
    EXPECT_EQ(statusOf(change), TRACKEDCAM_BAD_INPUT) << trackedcam_last_error();
  }
}

TEST_F(WrongUse, InitialSettingsStartNoRun) {
  ASSERT_EQ(trackedcam_settings_init(&settings, sizeof settings), TRACKEDCAM_OK);
  trackedcam_run* run = nullptr;
  EXPECT_EQ(trackedcam_start(shoot.Get(), &settings, &run), TRACKEDCAM_INVALID_ARGUMENT);
  settings.log_folder = log.c_str();
  EXPECT_EQ(trackedcam_start(shoot.Get(), &settings, &run), TRACKEDCAM_BAD_INPUT);
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::u8path(log)));
}

TEST_F(WrongUse, OfTheCrossCheck) {
  trackedcam_report* report = nullptr;
  EXPECT_INVALID(trackedcam_crosscheck(nullptr, nullptr, &report));
  EXPECT_INVALID(trackedcam_crosscheck(kNotUtf8, nullptr, &report));
  EXPECT_INVALID(trackedcam_crosscheck("a", nullptr, nullptr));
  settings.struct_size = 1;
  EXPECT_INVALID(trackedcam_crosscheck("a", &settings, &report));
  EXPECT_EQ(trackedcam_crosscheck("missing.txt", nullptr, &report), TRACKEDCAM_BAD_INPUT);
  EXPECT_EQ(trackedcam_crosscheck("/dev/zero", nullptr, &report), TRACKEDCAM_BAD_INPUT);
  EXPECT_EQ(trackedcam_crosscheck(SimulatedShoot::Get().DataFile().c_str(), nullptr, &report),
            TRACKEDCAM_BAD_INPUT);
  EXPECT_THAT(trackedcam_last_error(), HasSubstr("is not the log of a calibration"));
  EXPECT_EQ(report, nullptr);
}

TEST_F(WrongUse, LastErrorIsThatOfTheThreadAndOfTheLastCall) {
  EXPECT_INVALID(trackedcam_shoot_create(nullptr));
  std::thread([] {
    EXPECT_STREQ(trackedcam_last_error(), "");
    EXPECT_EQ(trackedcam_run_free(nullptr), TRACKEDCAM_OK);
  }).join();
  EXPECT_STRNE(trackedcam_last_error(), "");
  EXPECT_EQ(trackedcam_run_free(nullptr), TRACKEDCAM_OK);
  EXPECT_STREQ(trackedcam_last_error(), "");
}

TEST_F(WrongUse, LastErrorEndsWithAWholeCharacter) {
  // Enough two-byte characters that the limit falls inside one, for each start of the sentence.
  for (const char* begin : {"", "a"}) {
    std::string name = begin;
    for (int i = 0; i < 1000; ++i) {
      name += "\xC3\xA4";
    }
    OwnedReport report = Calibrated(shoot, settings);
    const char* text = nullptr;
    EXPECT_EQ(trackedcam_report_text(report.Get(), ('/' + name).c_str(), &text),
              TRACKEDCAM_NOT_FOUND);
    const std::string error = trackedcam_last_error();
    EXPECT_GE(error.size(), 1022U);
    EXPECT_EQ(error.substr(error.size() - 2), "\xC3\xA4");
  }
}

void Throw(const trackedcam_progress* /*progress*/, void* /*user*/) {
  throw std::runtime_error("from the host");
}

TEST_F(WrongUse, CallbackThatThrowsEndsTheCallAndNotTheProcess) {
  trackedcam_report* report = nullptr;
  EXPECT_EQ(trackedcam_calibrate(shoot.Get(), &settings, Throw, nullptr, &report),
            TRACKEDCAM_FAILURE);
  EXPECT_STREQ(trackedcam_last_error(), "from the host");
  EXPECT_EQ(report, nullptr);
}

}  // namespace
}  // namespace trackedcam::c
