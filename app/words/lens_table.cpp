#include "app/words/lens_table.h"

#include <array>

#include "app/words/table_row.h"
#include "host/text/number_text.h"

namespace trackedcam::app {
namespace {

using host::CalibrationOutputs;
using host::Fixed;

using List = std::vector<double> CalibrationOutputs::*;

struct Row {
  const char* label;
  List list;
  std::size_t index;
  int decimals;
  bool isShareOfSize;  // of the image's width or height, shown in pixels
};

constexpr std::array<Row, 11> kRows = {{
    {"image width, px", &CalibrationOutputs::imageSize, 0, 0, false},
    {"image height, px", &CalibrationOutputs::imageSize, 1, 0, false},
    {"focal length, mm", &CalibrationOutputs::focalLengthMm, 0, 3, false},
    {"focal length fx, px", &CalibrationOutputs::normFocal, 0, 2, true},
    {"focal length fy, px", &CalibrationOutputs::normFocal, 1, 2, true},
    {"principal point cx, px", &CalibrationOutputs::normCenter, 0, 2, true},
    {"principal point cy, px", &CalibrationOutputs::normCenter, 1, 2, true},
    {"distortion k1", &CalibrationOutputs::distortion, 0, 5, false},
    {"distortion k2", &CalibrationOutputs::distortion, 1, 5, false},
    {"horizontal field of view, deg", &CalibrationOutputs::fieldOfView, 0, 3, false},
    {"vertical field of view, deg", &CalibrationOutputs::fieldOfView, 1, 3, false},
}};

std::string TextOf(const Row& row, const CalibrationOutputs& outputs) {
  const double scale = row.isShareOfSize ? outputs.imageSize.at(row.index) : 1;
  return Fixed((outputs.*row.list).at(row.index) * scale, row.decimals);
}

}  // namespace

void PrintLens(std::ostream& out, const CalibrationOutputs& found,
               const CalibrationOutputs* truth) {
  out << "Lens\n";
  if (truth != nullptr) {
    PrintRow(out, "", {"found", "truth"});
  }
  for (const Row& row : kRows) {
    std::vector<std::string> figures = {TextOf(row, found)};
    if (truth != nullptr) {
      figures.push_back(TextOf(row, *truth));
    }
    PrintRow(out, row.label, figures);
  }
}

}  // namespace trackedcam::app
