#include "app/terminal/engine_summary.h"

#include <array>
#include <sstream>
#include <string>
#include <vector>

#include "app/terminal/output.h"

namespace trackedcam::app {
namespace {

using host::Axes;
using host::Engine;
using host::EngineExport;
using host::EngineLens;
using host::EngineValues;

void PrintNames(std::ostream& out, const std::string& label, const Axes& names) {
  PrintRow(out, label, {names.begin(), names.end()});
}

void PrintPair(std::ostream& out, const std::string& label, const std::array<double, 2>& values,
               int decimals) {
  PrintRow(out, label, {values[0], values[1]}, decimals);
}

void PrintParentAxes(std::ostream& out, const std::string& axes) {
  std::vector<std::string> names;
  std::istringstream list(axes);
  for (std::string name; std::getline(list, name, ',');) {
    names.push_back(name);
  }
  PrintRow(out, "axes of the parent, reported", names);
}

void PrintDistortion(std::ostream& out, const EngineLens& lens) {
  PrintRow(out, "", {"K1", "K2", "K3"});
  PrintRow(out, "distortion, radial", {lens.k1, lens.k2, lens.k3}, 6);
  PrintRow(out, "", {"P1", "P2"});
  PrintRow(out, "distortion, tangential", {lens.p1, lens.p2}, 6);
}

void PrintUnreal(std::ostream& out, const host::UnrealValues& values) {
  PrintParentAxes(out, values.parentAxes);
  PrintRow(out, "Location, cm", values.locationCm, 4);
  PrintRow(out, "", {"roll X", "pitch Y", "yaw Z"});
  PrintRow(out, "Rotation, deg", values.rotationDeg, 4);
  PrintRow(out, "", {"X", "Y", "Z", "W"});
  PrintRow(out, "the same as a quaternion", values.quaternionXyzw, 7);
  if (!values.lens) {
    return;
  }
  const EngineLens& lens = *values.lens;
  out << "  Lens File, Spherical, for " << lens.imageSize[0] << 'x' << lens.imageSize[1] << '\n';
  PrintPair(out, "filmback, mm", lens.filmbackMm, 4);
  PrintRow(out, "focal length by width, mm", {lens.focalLengthMm}, 4);
  PrintPair(out, "FxFy", lens.fxFy, 7);
  PrintPair(out, "image centre", lens.imageCenter, 7);
  PrintDistortion(out, lens);
  out << "  nodal offset                  the Location and Rotation above, if they are not the "
         "camera's own\n";
}

void PrintUnity(std::ostream& out, const host::UnityValues& values) {
  PrintParentAxes(out, values.parentAxes);
  PrintRow(out, "localPosition, m", values.localPosition, 6);
  PrintRow(out, "localEulerAngles, deg", values.localEulerAngles, 4);
  PrintRow(out, "", {"X", "Y", "Z", "W"});
  PrintRow(out, "localRotation", values.localRotationXyzw, 7);
  if (!values.lens) {
    return;
  }
  const EngineLens& lens = values.lens->values;
  out << "  Physical Camera, for " << lens.imageSize[0] << 'x' << lens.imageSize[1] << '\n';
  PrintPair(out, "sensorSize, mm", lens.filmbackMm, 4);
  PrintRow(out, "focalLength by width, mm", {lens.focalLengthMm}, 4);
  PrintPair(out, "lensShift", values.lens->lensShift, 7);
  PrintRow(out, "gateFit", {"None"});
  out << "  Brown-Conrady distortion, which Unity does not draw by itself\n";
  PrintDistortion(out, lens);
}

void PrintLibraryValues(std::ostream& out, const EngineExport& engineExport) {
  const Engine& engine = *engineExport.engine;
  const EngineValues& values = engineExport.values;
  PrintNames(out, "axes of the tracker, reported", engine.trackerAxes);
  if (engine.translationAxes != engine.trackerAxes) {
    PrintNames(out, "axes of the translation", engine.translationAxes);
  }
  if (engineExport.code != 0) {
    out << "  no values\n";
    return;
  }
  PrintRow(out, "translation, cm", values.translationCm, 4);
  if (!values.rotationDeg.empty()) {
    PrintNames(out, "", engine.rotationNames);
    PrintRow(out, "rotation, deg", values.rotationDeg, 4);
  }
  if (!values.quaternionXyzw.empty()) {
    PrintRow(out, "", {"X", "Y", "Z", "W"});
    PrintRow(out, "rotation, quaternion", values.quaternionXyzw, 7);
  }
  if (!values.fovX.empty()) {
    PrintRow(out, "horizontal field of view, deg", values.fovX, 4);
  }
  if (!values.lensCentre.empty()) {
    PrintRow(out, "", {"right", "up"});
    PrintRow(out, "lens centre, parts of image", values.lensCentre, 6);
  }
}

}  // namespace

void PrintEngineExport(std::ostream& out, const EngineExport& engineExport) {
  const Engine& engine = *engineExport.engine;
  out << engine.title << ", " << engine.handedness << '\n';
  PrintRow(out, "", {"X", "Y", "Z"});
  PrintNames(out, "axes at the camera", engine.cameraAxes);
  if (engineExport.values.unreal) {
    PrintUnreal(out, *engineExport.values.unreal);
  } else if (engineExport.values.unity) {
    PrintUnity(out, *engineExport.values.unity);
  } else {
    PrintLibraryValues(out, engineExport);
  }
}

void PrintProblem(std::ostream& out, const EngineExport& engineExport) {
  const std::string problem = host::ProblemOf(engineExport);
  if (!problem.empty()) {
    const int code = engineExport.code;
    out << "trackedcam: " << (code == 0 ? "warning" : "error " + std::to_string(code)) << ": "
        << problem << '\n';
  }
}

}  // namespace trackedcam::app
