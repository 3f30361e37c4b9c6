#include "app/engines/engine_json.h"

#include "app/text/json_file.h"

namespace trackedcam::app {

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

}  // namespace trackedcam::app
