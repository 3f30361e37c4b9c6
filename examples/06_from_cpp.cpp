// Calibrates the shoot whose tracker data file is the first argument, from C++ of any compiler;
// log, result file and report page go to the second. The chart has 9x6 inner corners and squares of
// 30 mm, the sensor 36 x 20.25 mm.

#include <cstdio>
#include <trackedcam/trackedcam.hpp>

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s TRACKER_DATA.csv LOG_FOLDER\n", argv[0]);
    return 2;
  }
  const std::filesystem::path data = argv[1];
  const std::filesystem::path logFolder = argv[2];
  // docs/other-languages.md begin
  try {
    trackedcam::Settings settings;
    settings.sensor_width_mm = 36;
    settings.sensor_height_mm = 20.25;
    settings.board_columns = 9;
    settings.board_rows = 6;
    settings.square_m = 0.03;
    settings.log_folder = logFolder;
    const trackedcam::Report report = trackedcam::Calibrate(trackedcam::Shoot(data), settings);
    std::printf("%s %s\n", report.Message().c_str(), report.Advice().c_str());
    if (const auto transformCamTc = report.TransformCamTc()) {  // row by row, metres
      const auto& t = *transformCamTc;
      std::printf("camera tracker at %.4f %.4f %.4f m\n", t[3], t[7], t[11]);
    }
    report.Save(logFolder / "result.json", logFolder / "report.html");
  } catch (const trackedcam::Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
  // docs/other-languages.md end
  return 0;
}
