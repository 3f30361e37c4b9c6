#include "host/engines/engine.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "host/run/run_log.h"
#include "host/text/files.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam::host {
namespace {

int ToUE4(const HandOver& handOver, const std::string& logFolder, EngineFigures& figures) {
  return CamAxisToUE4(handOver.calibration.transformCamTc, figures.rotationDeg,
                      figures.translationCm, logFolder);
}

int ToUE5(const HandOver& handOver, const std::string& logFolder, EngineFigures& figures) {
  return CamAxisToUE5(handOver.calibration.transformCamTc, figures.quaternionXyzw,
                      figures.translationCm, logFolder);
}

int ToUE5xN(const HandOver& handOver, const std::string& logFolder, EngineFigures& figures) {
  return CamAxisToUE5_ExportxN(handOver.calibration.transformCamTc, figures.quaternionXyzw,
                               figures.translationCm, logFolder);
}

int ToAximmetry(const HandOver& handOver, const std::string& logFolder, EngineFigures& figures) {
  return CamAxisToAximmetry(handOver.calibration.normFocal, handOver.calibration.normCenter,
                            handOver.calibration.transformCamTc, figures.fovX, figures.lensCentre,
                            figures.rotationDeg, figures.translationCm, logFolder);
}

int ToUnrealFigures(const HandOver& handOver, const std::string& /*logFolder*/,
                    EngineFigures& figures) {
  figures.unreal = ToUnreal(handOver);
  return 0;
}

int ToUnityFigures(const HandOver& handOver, const std::string& /*logFolder*/,
                   EngineFigures& figures) {
  figures.unity = ToUnity(handOver);
  return 0;
}

std::string TextOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

EngineExport Compute(const Engine& engine, const HandOver& handOver) {
  constexpr int kWrongUse = -1;  // as of the library
  EngineExport engineExport;
  engineExport.engine = &engine;
  try {
    engineExport.code = engine.convert(handOver, "", engineExport.figures);
  } catch (const std::invalid_argument& error) {
    engineExport.code = kWrongUse;
    engineExport.refusal = error.what();
  }
  return engineExport;
}

bool LacksLens(const EngineFigures& figures) {
  return (figures.unreal && !figures.unreal->lens) || (figures.unity && !figures.unity->lens);
}

std::vector<std::string> Words(const std::string& axes) {
  std::vector<std::string> words;
  std::istringstream stream(axes);
  for (std::string word; std::getline(stream, word, ',');) {
    words.push_back(word);
  }
  return words;
}

nlohmann::ordered_json PlacementJson(const EngineExport& engineExport) {
  const EngineFigures& figures = engineExport.figures;
  const bool isUnreal = engineExport.engine->name == "unreal";
  return isUnreal ? UnrealJson(figures.unreal.value_or(UnrealFigures{}))
                  : UnityJson(figures.unity.value_or(UnityFigures{}));
}

}  // namespace

const std::array<Engine, 6> kEngines = {{
    {"ue4",
     "Unreal Engine 4",
     "left-handed",
     {"forward", "right", "up"},
     {"z", "-x", "y"},
     {"z", "-x", "y"},
     {"roll", "pitch", "yaw"},
     ToUE4,
     false},
    {"ue5",
     "Unreal Engine 5",
     "right-handed",
     {"right", "down", "forward"},
     {"-x", "-y", "z"},
     {"-x", "-y", "z"},
     {},
     ToUE5,
     false},
    {"ue5-xn",
     "Unreal Engine 5 (xN)",
     "right-handed",
     {"up", "forward", "left"},
     {"y", "z", "x"},
     {"y", "z", "x"},
     {},
     ToUE5xN,
     false},
    {"aximmetry",
     "Aximmetry",
     "left-handed",
     {"right", "up", "forward"},
     {"-x", "y", "z"},
     {"-x", "-y", "-z"},
     {"x", "y", "z"},
     ToAximmetry,
     false},
    {"unreal",
     "Unreal Engine, below a component",
     "left-handed",
     {"forward", "right", "up"},
     {"z", "-x", "y"},
     {"z", "-x", "y"},
     {"roll", "pitch", "yaw"},
     ToUnrealFigures,
     true},
    {"unity",
     "Unity, below a transform",
     "left-handed",
     {"right", "up", "forward"},
     {"-x", "y", "z"},
     {"-x", "y", "z"},
     {"x", "y", "z"},
     ToUnityFigures,
     true},
}};

EngineExport ExportToEngine(const Engine& engine, const HandOver& handOver,
                            const std::filesystem::path& folder) {
  if (engine.takesParentAxes) {
    return Compute(engine, handOver);
  }
  EngineExport engineExport;
  engineExport.engine = &engine;
  std::error_code error;
  std::filesystem::create_directories(folder, error);  // where that fails, there is no log
  engineExport.code = engine.convert(handOver, folder.u8string(), engineExport.figures);
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
  if (!engineExport.refusal.empty()) {
    return title + ": " + engineExport.refusal + '.';
  }
  if (LacksLens(engineExport.figures)) {
    return title +
           ": the result does not tell the lens in full (imageSize, distortion and the sensor in "
           "inputs.sensorMm), so the camera's place is handed over without it. Calibrate again.";
  }
  return engineExport.code == 0 ? ""
                                : title + ": the library refused the figures, code " +
                                      std::to_string(engineExport.code) + ". The log says why.";
}

nlohmann::ordered_json EngineJson(const EngineExport& engineExport) {
  const Engine& engine = *engineExport.engine;
  const EngineFigures& figures = engineExport.figures;
  const std::string problem = ProblemOf(engineExport);
  nlohmann::ordered_json json = {
      {"code", engineExport.code}, {"message", problem.empty() ? "No error" : problem},
      {"engine", engine.name},     {"title", engine.title},
      {"hand", engine.hand},       {"cameraAxes", engine.cameraAxes},
  };
  if (engine.takesParentAxes) {
    const nlohmann::ordered_json placement = PlacementJson(engineExport);
    json["trackerAxes"] = Words(placement.at("parentAxes"));
    json["translationAxes"] = json["trackerAxes"];
    json.update(placement);
    return json;
  }
  json.update(nlohmann::ordered_json{
      {"trackerAxes", engine.trackerAxes},
      {"translationAxes", engine.translationAxes},
      {"translationCm", NumbersJson(figures.translationCm)},
      {"rotationDeg", NumbersJson(figures.rotationDeg)},
      {"quaternionXyzw", NumbersJson(figures.quaternionXyzw)},
      {"fovX", NumbersJson(figures.fovX)},
      {"lensCentre", NumbersJson(figures.lensCentre)},
      {"log", engineExport.log.u8string()},
  });
  return json;
}

}  // namespace trackedcam::host
