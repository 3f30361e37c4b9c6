#include "host/engines/engine.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <nlohmann/json.hpp>

#include "host/run/run_log_reader.h"
#include "host/text/files.h"
#include "trackedcam/trackedcam.h"

namespace trackedcam::host {
namespace {

int ToUE4(const ExportInput& input, const std::string& logFolder, EngineValues& values) {
  return CamAxisToUE4(input.calibration.transformCamTc, values.rotationDeg, values.translationCm,
                      logFolder);
}

int ToUE5(const ExportInput& input, const std::string& logFolder, EngineValues& values) {
  return CamAxisToUE5(input.calibration.transformCamTc, values.quaternionXyzw, values.translationCm,
                      logFolder);
}

int ToUE5xN(const ExportInput& input, const std::string& logFolder, EngineValues& values) {
  return CamAxisToUE5_ExportxN(input.calibration.transformCamTc, values.quaternionXyzw,
                               values.translationCm, logFolder);
}

int ToAximmetry(const ExportInput& input, const std::string& logFolder, EngineValues& values) {
  return CamAxisToAximmetry(input.calibration.normFocal, input.calibration.normCenter,
                            input.calibration.transformCamTc, values.fovX, values.lensCentre,
                            values.rotationDeg, values.translationCm, logFolder);
}

int ExportToUnreal(const ExportInput& input, const std::string& /*logFolder*/,
                   EngineValues& values) {
  values.unreal = ToUnreal(input);
  return 0;
}

int ExportToUnity(const ExportInput& input, const std::string& /*logFolder*/,
                  EngineValues& values) {
  values.unity = ToUnity(input);
  return 0;
}

std::string TextOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void Compute(const ExportInput& input, EngineExport& engineExport) {
  constexpr int kWrongUse = -1;  // the library's code for invalid input
  try {
    engineExport.code = engineExport.engine->convert(input, "", engineExport.values);
  } catch (const std::invalid_argument& error) {
    engineExport.code = kWrongUse;
    engineExport.refusal = error.what();
  }
}

void CallLibrary(const ExportInput& input, const std::filesystem::path& folder,
                 EngineExport& engineExport) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);  // if this fails, there is no log
  engineExport.code = engineExport.engine->convert(input, folder.u8string(), engineExport.values);
  engineExport.log = FindLog(folder);
  engineExport.isGimbalLocked =
      TextOf(engineExport.log).find("Encountered Gimbal lock") != std::string::npos;
}

bool LacksLens(const EngineValues& values) {
  return (values.unreal && !values.unreal->lens) || (values.unity && !values.unity->lens);
}

std::vector<std::string> SplitAxes(const std::string& axes) {
  std::vector<std::string> names;
  std::istringstream list(axes);
  for (std::string name; std::getline(list, name, ',');) {
    names.push_back(name);
  }
  return names;
}

// All that a caller in memory must know.
std::string MessageOf(const EngineExport& engineExport) {
  const std::string problem = ProblemOf(engineExport);
  const std::string& doubt = engineExport.doubt;
  const std::string message = problem + (problem.empty() || doubt.empty() ? "" : " ") + doubt;
  return message.empty() ? "No error" : message;
}

nlohmann::ordered_json PlacementJson(const EngineExport& engineExport) {
  const EngineValues& values = engineExport.values;
  const bool isUnreal = engineExport.engine->name == "unreal";
  return isUnreal ? UnrealJson(values.unreal.value_or(UnrealValues{}))
                  : UnityJson(values.unity.value_or(UnityValues{}));
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
     ExportToUnreal,
     true},
    {"unity",
     "Unity, below a transform",
     "left-handed",
     {"right", "up", "forward"},
     {"-x", "y", "z"},
     {"-x", "y", "z"},
     {"x", "y", "z"},
     ExportToUnity,
     true},
}};

EngineExport ExportToEngine(const Engine& engine, const ExportInput& input,
                            const std::filesystem::path& folder) {
  EngineExport engineExport;
  engineExport.engine = &engine;
  engineExport.doubt = input.origin ? DoubtOf(*input.origin) : "";
  if (engine.takesParentAxes) {
    Compute(input, engineExport);
  } else {
    CallLibrary(input, folder, engineExport);
  }
  return engineExport;
}

std::string ProblemOf(const EngineExport& engineExport) {
  const std::string title = engineExport.engine->title;
  if (engineExport.isGimbalLocked) {
    const std::string lock =
        title + ": gimbal lock. The camera looks along the tracker's y axis, so ";
    return lock + (engineExport.code == 0
                       ? "the angles about y and z cannot be separated. The angle about y is set "
                         "to 0; the rotation is right."
                       : "roll and yaw cannot be separated. Export to unreal, ue5 or ue5-xn, or "
                         "rotate the tracker on the camera and calibrate again.");
  }
  if (!engineExport.refusal.empty()) {
    return title + ": " + engineExport.refusal + '.';
  }
  if (LacksLens(engineExport.values)) {
    return title +
           ": only the pose is exported, because the result file does not have the whole lens "
           "(imageSize, distortion and inputs.sensorMm). Calibrate again.";
  }
  return engineExport.code == 0
             ? ""
             : title + ": the library refused the values with code " +
                   std::to_string(engineExport.code) + ". Its log gives the reason.";
}

nlohmann::ordered_json EngineJson(const EngineExport& engineExport) {
  const Engine& engine = *engineExport.engine;
  const EngineValues& values = engineExport.values;
  nlohmann::ordered_json json = {
      {"code", engineExport.code}, {"message", MessageOf(engineExport)},
      {"engine", engine.name},     {"title", engine.title},
      {"hand", engine.handedness}, {"cameraAxes", engine.cameraAxes},
  };
  if (engine.takesParentAxes) {
    const nlohmann::ordered_json placement = PlacementJson(engineExport);
    json["trackerAxes"] = SplitAxes(placement.at("parentAxes"));
    json["translationAxes"] = json["trackerAxes"];
    json.update(placement);
    return json;
  }
  json.update(nlohmann::ordered_json{
      {"trackerAxes", engine.trackerAxes},
      {"translationAxes", engine.translationAxes},
      {"translationCm", NumbersJson(values.translationCm)},
      {"rotationDeg", NumbersJson(values.rotationDeg)},
      {"quaternionXyzw", NumbersJson(values.quaternionXyzw)},
      {"fovX", NumbersJson(values.fovX)},
      {"lensCentre", NumbersJson(values.lensCentre)},
      {"log", engineExport.log.u8string()},
  });
  return json;
}

}  // namespace trackedcam::host
