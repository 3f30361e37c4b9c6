// A simulated shoot and its settings, for the tests of the C interface.

#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/shoot.h"
#include "simulator/write_shoot.h"
#include "support/stage_test.h"
#include "trackedcam/trackedcam_c.h"

namespace trackedcam::c {

/// One shoot for all tests of a program, because painting it takes longer than calibrating it.
class SimulatedShoot {
 public:
  static const SimulatedShoot& Get() {
    static const SimulatedShoot shoot;
    return shoot;
  }

  const simulator::Shoot& Truth() const { return truth_; }
  std::string DataFile() const { return folder_.File("tracker_data.csv"); }
  std::string ConfigFile() const { return folder_.File("shoot.toml"); }
  const std::filesystem::path& Folder() const { return folder_.Path(); }

 private:
  SimulatedShoot() {
    simulator::ShootOptions options;
    options.photographs = 24;
    options.imageWidth = 640;
    options.imageHeight = 360;
    truth_ = simulator::SimulateShoot(options);
    simulator::WriteShoot(truth_, folder_.Path(), [](int, int) {});
  }

  test::TemporaryFolder folder_;
  simulator::Shoot truth_;
};

/// The true settings of the simulated shoot, with the mounting stated. The text must outlive them.
inline trackedcam_settings SettingsFor(const std::string& logFolder) {
  const simulator::Shoot& shoot = SimulatedShoot::Get().Truth();
  trackedcam_settings settings;
  if (trackedcam_settings_init(&settings, sizeof settings) != TRACKEDCAM_OK) {
    throw std::runtime_error(trackedcam_last_error());
  }
  settings.board_columns = shoot.options.chart.cols;
  settings.board_rows = shoot.options.chart.rows;
  settings.sensor_width_mm = shoot.options.sensorWidthMm;
  settings.sensor_height_mm = shoot.options.sensorHeightMm;
  settings.square_m = shoot.options.chart.squareMetres;
  settings.mounting_is_stated = 1;
  for (int i = 0; i < 3; ++i) {
    settings.chart_rotation_deg[i] = shoot.nominalMounting.anglesDegrees[i];
    settings.chart_translation_m[i] = shoot.nominalMounting.translationMetres[i];
  }
  settings.log_folder = logFolder.c_str();
  return settings;
}

/// Frees its handle; the test fails if that is already freed.
template <class Handle, trackedcam_status (*Free)(Handle*)>
class Owned {
 public:
  Owned() = default;
  Owned(Owned&& other) noexcept : handle_(other.handle_) { other.handle_ = nullptr; }
  Owned& operator=(Owned&&) = delete;
  ~Owned() { EXPECT_EQ(Free(handle_), TRACKEDCAM_OK) << trackedcam_last_error(); }

  Handle* Get() const { return handle_; }
  Handle** Fill() { return &handle_; }

 private:
  Handle* handle_ = nullptr;
};
using OwnedShoot = Owned<trackedcam_shoot, trackedcam_shoot_free>;
using OwnedRun = Owned<trackedcam_run, trackedcam_run_free>;
using OwnedReport = Owned<trackedcam_report, trackedcam_report_free>;

inline OwnedShoot OpenedShoot() {
  OwnedShoot shoot;
  EXPECT_EQ(trackedcam_shoot_open(SimulatedShoot::Get().DataFile().c_str(), shoot.Fill()),
            TRACKEDCAM_OK)
      << trackedcam_last_error();
  return shoot;
}

inline OwnedReport Calibrated(const OwnedShoot& shoot, const trackedcam_settings& settings) {
  OwnedReport report;
  EXPECT_EQ(trackedcam_calibrate(shoot.Get(), &settings, nullptr, nullptr, report.Fill()),
            TRACKEDCAM_OK)
      << trackedcam_last_error();
  return report;
}

inline std::vector<double> NumbersAt(const OwnedReport& report, const char* pointer) {
  std::size_t count = 0;
  trackedcam_report_numbers(report.Get(), pointer, nullptr, 0, &count);
  std::vector<double> numbers(count);
  EXPECT_EQ(trackedcam_report_numbers(report.Get(), pointer, numbers.data(), count, &count),
            TRACKEDCAM_OK)
      << trackedcam_last_error();
  return numbers;
}

inline std::string TextAt(const OwnedReport& report, const char* pointer) {
  const char* text = "";
  EXPECT_EQ(trackedcam_report_text(report.Get(), pointer, &text), TRACKEDCAM_OK)
      << trackedcam_last_error();
  return text;
}

inline std::string JsonOf(const OwnedReport& report) {
  const char* json = "";
  EXPECT_EQ(trackedcam_report_json(report.Get(), &json), TRACKEDCAM_OK) << trackedcam_last_error();
  return json;
}

}  // namespace trackedcam::c
