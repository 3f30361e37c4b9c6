#include "app/words/placement_summary.h"

#include "app/words/table_row.h"
#include "host/text/number_text.h"

namespace trackedcam::app {
namespace {

using host::EngineLens;

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

}  // namespace trackedcam::app
