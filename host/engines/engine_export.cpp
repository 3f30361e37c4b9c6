#include "host/engines/engine_export.h"

#include <fstream>
#include <iterator>

#include "host/run/log_follower.h"
#include "host/text/json_file.h"

namespace trackedcam::host {
namespace {

std::string TextOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

EngineExport ExportToEngine(const Engine& engine, const CalibrationOutputs& calibration,
                            const std::filesystem::path& folder) {
  EngineExport engineExport;
  engineExport.engine = &engine;
  std::filesystem::create_directories(folder);
  engineExport.code = engine.convert(calibration, folder.u8string(), engineExport.figures);
  engineExport.log = FindLog(folder);
  engineExport.isGimbalLocked =
      TextOf(engineExport.log).find("Encountered Gimbal lock") != std::string::npos;
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

nlohmann::ordered_json EngineJson(const EngineExport& engineExport) {
  const Engine& engine = *engineExport.engine;
  const EngineFigures& figures = engineExport.figures;
  const std::string problem = ProblemOf(engineExport);
  return {
      {"code", engineExport.code},
      {"message", problem.empty() ? "No error" : problem},
      {"engine", engine.name},
      {"title", engine.title},
      {"hand", engine.hand},
      {"cameraAxes", engine.cameraAxes},
      {"trackerAxes", engine.trackerAxes},
      {"translationAxes", engine.translationAxes},
      {"translationCm", NumbersJson(figures.translationCm)},
      {"rotationDeg", NumbersJson(figures.rotationDeg)},
      {"quaternionXyzw", NumbersJson(figures.quaternionXyzw)},
      {"fovX", NumbersJson(figures.fovX)},
      {"lensCentre", NumbersJson(figures.lensCentre)},
      {"log", engineExport.log.u8string()},
  };
}

}  // namespace trackedcam::host
