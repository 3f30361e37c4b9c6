#include "host/engines/engine.h"

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

}  // namespace trackedcam::host
