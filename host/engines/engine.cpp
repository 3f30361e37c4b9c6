#include "host/engines/engine.h"

#include "trackedcam/trackedcam.h"

namespace trackedcam::host {
namespace {

int ToUE4(const CalibrationOutputs& calibration, const std::string& logFolder,
          EngineFigures& figures) {
  return CamAxisToUE4(calibration.transformCamTc, figures.rotationDeg, figures.translationCm,
                      logFolder);
}

int ToUE5(const CalibrationOutputs& calibration, const std::string& logFolder,
          EngineFigures& figures) {
  return CamAxisToUE5(calibration.transformCamTc, figures.quaternionXyzw, figures.translationCm,
                      logFolder);
}

int ToUE5xN(const CalibrationOutputs& calibration, const std::string& logFolder,
            EngineFigures& figures) {
  return CamAxisToUE5_ExportxN(calibration.transformCamTc, figures.quaternionXyzw,
                               figures.translationCm, logFolder);
}

int ToAximmetry(const CalibrationOutputs& calibration, const std::string& logFolder,
                EngineFigures& figures) {
  return CamAxisToAximmetry(calibration.normFocal, calibration.normCenter,
                            calibration.transformCamTc, figures.fovX, figures.lensCentre,
                            figures.rotationDeg, figures.translationCm, logFolder);
}

}  // namespace

const std::array<Engine, 4> kEngines = {{
    {"ue4",
     "Unreal Engine 4",
     "left-handed",
     {"forward", "right", "up"},
     {"z", "-x", "y"},
     {"z", "-x", "y"},
     {"roll", "pitch", "yaw"},
     ToUE4},
    {"ue5",
     "Unreal Engine 5",
     "right-handed",
     {"right", "down", "forward"},
     {"-x", "-y", "z"},
     {"-x", "-y", "z"},
     {},
     ToUE5},
    {"ue5-xn",
     "Unreal Engine 5 (xN)",
     "right-handed",
     {"up", "forward", "left"},
     {"y", "z", "x"},
     {"y", "z", "x"},
     {},
     ToUE5xN},
    {"aximmetry",
     "Aximmetry",
     "left-handed",
     {"right", "up", "forward"},
     {"-x", "y", "z"},
     {"-x", "-y", "-z"},
     {"x", "y", "z"},
     ToAximmetry},
}};

}  // namespace trackedcam::host
