#include "app/commands/calibration_run.h"

#include <iostream>
#include <vector>

#include "app/platform.h"
#include "app/run/captured_stdout.h"
#include "app/run/progress_bar.h"
#include "app/run/reprojected_images.h"
#include "app/run/run_log_finder.h"
#include "app/run/run_progress.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam::app {
namespace {

int CallLibrary(const CalibrateOptions& options, int records, CalibrationOutputs& outputs) {
  const auto list = [](const auto& values) {
    return std::vector<double>(values.begin(), values.end());
  };
  return Calibration(options.data.u8string(), options.sensor[0], options.sensor[1],
                     options.board[0], options.board[1], options.square,
                     list(options.chartTrackerRotation), list(options.chartTrackerTranslation),
                     outputs.imageSize, outputs.normFocal, outputs.normCenter, outputs.distortion,
                     outputs.transformCamTc, outputs.fieldOfView, outputs.focalLengthMm,
                     options.logFolder.u8string(), options.invertTrackerQuaternions, records);
}

// The library's own lines show the progress as well, and a bar would cut into them.
RunProgress::Listener MakeListener(ProgressBar& bar, bool verbose) {
  if (verbose || !IsTerminal(stderr)) {
    return [](const Progress&) {};
  }
  return [&bar](const Progress& progress) { bar.Show(progress); };
}

}  // namespace

CalibrationReport RunCalibration(const CalibrateOptions& options, std::size_t rows) {
  CalibrationReport report;
  const RunLogFinder logFinder(options.logFolder);
  ProgressBar bar(std::cerr);
  RunProgress progress(rows, MakeListener(bar, options.verbose));
  {
    const CapturedStdout captured([&](std::string_view output) { progress.Consume(output); },
                                  options.verbose);
    const int records = options.expectedRecords.value_or(static_cast<int>(rows));
    report.code = CallLibrary(options, records, report.outputs);
  }
  report.record = progress.Record();
  report.log = logFinder.Find();
  if (!report.outputs.transformCamTc.empty()) {
    report.images = FindReprojectedImages(options.logFolder, UsedPhotographs(report.record));
  }
  return report;
}

}  // namespace trackedcam::app
