#include "app/terminal/engine_summary.h"

#include <sstream>

#include "app/terminal/output.h"
#include "host/text/text.h"

namespace trackedcam::app {
namespace {

using host::Axes;
using host::Engine;
using host::EngineExport;
using host::EngineFigures;
using host::EngineLens;
using host::Fixed;

void Print(std::ostream& out, const char* label, const std::vector<double>& figures, int decimals) {
  std::vector<std::string> texts;
  texts.reserve(figures.size());
  for (const double figure : figures) {
    texts.push_back(host::Fixed(figure, decimals));
  }
  PrintRow(out, label, texts);
}

void Print(std::ostream& out, const char* label, const std::array<double, 2>& figures,
           int decimals) {
  Print(out, label, std::vector<double>(figures.begin(), figures.end()), decimals);
}

void PrintDistortion(std::ostream& out, const EngineLens& lens) {
  PrintRow(out, "", {"K1", "K2", "K3"});
  Print(out, "distortion, radial", {lens.k1, lens.k2, lens.k3}, 6);
  PrintRow(out, "", {"P1", "P2"});
  Print(out, "distortion, tangential", std::vector<double>{lens.p1, lens.p2}, 6);
}

void PrintNames(std::ostream& out, const std::string& label, const Axes& names) {
  PrintRow(out, label, {names.begin(), names.end()});
}

void PrintFigures(std::ostream& out, const std::string& label, const std::vector<double>& figures,
                  int decimals) {
  std::vector<std::string> texts;
  texts.reserve(figures.size());
  for (const double figure : figures) {
    texts.push_back(Fixed(figure, decimals));
  }
  PrintRow(out, label, texts);
}

void PrintPlacement(std::ostream& out, const EngineExport& engineExport) {
  const EngineFigures& figures = engineExport.figures;
  std::vector<std::string> axes;
  std::istringstream words(figures.unreal ? figures.unreal->parentAxes : figures.unity->parentAxes);
  for (std::string word; std::getline(words, word, ',');) {
    axes.push_back(word);
  }
  PrintRow(out, "axes of the parent, reported", axes);
  if (figures.unreal) {
    PrintUnreal(out, *figures.unreal);
  } else {
    PrintUnity(out, *figures.unity);
  }
}

}  // namespace

void PrintUnreal(std::ostream& out, const host::UnrealFigures& figures) {
  Print(out, "Location, cm", figures.locationCm, 4);
  PrintRow(out, "", {"roll X", "pitch Y", "yaw Z"});
  Print(out, "Rotation, deg", figures.rotationDeg, 4);
  PrintRow(out, "", {"X", "Y", "Z", "W"});
  Print(out, "the same as a quaternion", figures.quaternionXyzw, 7);
  if (!figures.lens) {
    return;
  }
  const EngineLens& lens = *figures.lens;
  out << "  Lens File, Spherical, for " << lens.imageSize[0] << 'x' << lens.imageSize[1] << '\n';
  Print(out, "filmback, mm", lens.filmbackMm, 4);
  Print(out, "focal length, mm", std::vector<double>{lens.focalLengthMm}, 4);
  Print(out, "FxFy", lens.fxFy, 7);
  Print(out, "image centre", lens.imageCenter, 7);
  PrintDistortion(out, lens);
  out << "  nodal offset                  the Location and Rotation above, if they are not the "
         "camera's own\n";
}

void PrintUnity(std::ostream& out, const host::UnityFigures& figures) {
  Print(out, "localPosition, m", figures.localPosition, 6);
  Print(out, "localEulerAngles, deg", figures.localEulerAngles, 4);
  PrintRow(out, "", {"X", "Y", "Z", "W"});
  Print(out, "localRotation", figures.localRotationXyzw, 7);
  if (!figures.lens) {
    return;
  }
  const EngineLens& lens = figures.lens->figures;
  out << "  Physical Camera, for " << lens.imageSize[0] << 'x' << lens.imageSize[1] << '\n';
  Print(out, "sensorSize, mm", lens.filmbackMm, 4);
  Print(out, "focalLength, mm", std::vector<double>{lens.focalLengthMm}, 4);
  Print(out, "lensShift", figures.lens->lensShift, 7);
  PrintRow(out, "gateFit", {"None"});
  out << "  Brown-Conrady distortion, which Unity does not draw by itself\n";
  PrintDistortion(out, lens);
}

void PrintEngineExport(std::ostream& out, const EngineExport& engineExport) {
  const Engine& engine = *engineExport.engine;
  const EngineFigures& figures = engineExport.figures;
  out << engine.title << ", " << engine.handedness << '\n';
  PrintRow(out, "", {"X", "Y", "Z"});
  PrintNames(out, "axes at the camera", engine.cameraAxes);
  if (figures.unreal || figures.unity) {
    PrintPlacement(out, engineExport);
    return;
  }
  PrintNames(out, "axes of the tracker, reported", engine.trackerAxes);
  if (engine.translationAxes != engine.trackerAxes) {
    PrintNames(out, "the translation counts along", engine.translationAxes);
  }
  if (engineExport.code != 0) {
    out << "  no figures\n";
    return;
  }
  PrintFigures(out, "translation, cm", figures.translationCm, 4);
  if (!figures.rotationDeg.empty()) {
    PrintNames(out, "", engine.rotationNames);
    PrintFigures(out, "rotation, deg", figures.rotationDeg, 4);
  }
  if (!figures.quaternionXyzw.empty()) {
    PrintRow(out, "", {"X", "Y", "Z", "W"});
    PrintFigures(out, "rotation, quaternion", figures.quaternionXyzw, 7);
  }
  if (!figures.fovX.empty()) {
    PrintFigures(out, "horizontal field of view, deg", figures.fovX, 4);
  }
  if (!figures.lensCentre.empty()) {
    PrintRow(out, "", {"right", "up"});
    PrintFigures(out, "lens centre, parts of image", figures.lensCentre, 6);
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
