#include "app/words/engine_summary.h"

#include <sstream>

#include "app/words/placement_summary.h"
#include "app/words/table_row.h"
#include "host/text/number_text.h"

namespace trackedcam::app {
namespace {

using host::Axes;
using host::Engine;
using host::EngineExport;
using host::EngineFigures;
using host::Fixed;

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

void PrintEngineExport(std::ostream& out, const EngineExport& engineExport) {
  const Engine& engine = *engineExport.engine;
  const EngineFigures& figures = engineExport.figures;
  out << engine.title << ", " << engine.hand << '\n';
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
