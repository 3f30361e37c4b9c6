#include "app/engines/engine_export.h"

#include "app/run/captured_stdout.h"
#include "app/run/run_log_finder.h"

namespace trackedcam::app {

EngineExport ExportToEngine(const Engine& engine, const CalibrationOutputs& calibration,
                            const std::filesystem::path& logFolder, bool verbose) {
  EngineExport engineExport;
  engineExport.engine = &engine;
  const RunLogFinder logFinder(logFolder);
  std::string lines;
  {
    const CapturedStdout captured([&](std::string_view output) { lines += output; }, verbose);
    engineExport.code = engine.convert(calibration, logFolder.u8string(), engineExport.figures);
  }
  engineExport.isGimbalLocked = lines.find("Encountered Gimbal lock") != std::string::npos;
  engineExport.log = logFinder.Find();
  return engineExport;
}

std::string ProblemOf(const EngineExport& engineExport) {
  const std::string title = engineExport.engine->title;
  if (engineExport.isGimbalLocked) {
    const std::string lock =
        title + ": gimbal lock. The camera looks along the tracker's y axis, where ";
    return engineExport.code == 0
               ? lock +
                     "the angles about y and z cannot be told apart: the one about y is set to 0."
               : lock +
                     "roll and yaw cannot be told apart. Turn the tracker on the camera and "
                     "calibrate again, or use ue5 or ue5-xn, whose quaternions know no gimbal "
                     "lock.";
  }
  return engineExport.code == 0 ? ""
                                : title + ": the library refused the figures, code " +
                                      std::to_string(engineExport.code) + ". The log says why.";
}

}  // namespace trackedcam::app
