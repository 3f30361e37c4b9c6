#include "app/result/summary.h"

#include "app/result/lens_table.h"
#include "app/result/transform_difference.h"
#include "app/result/verdict.h"
#include "app/text/number_text.h"
#include "app/text/table_row.h"

namespace trackedcam::app {
namespace {

constexpr double kMillimetresPerMetre = 1000.0;

void PrintTransform(std::ostream& out, const std::vector<double>& transform,
                    const CalibrationOutputs* truth) {
  out << "\nTransform_Cam_Tc, from the camera's tracker to the camera\n";
  for (std::size_t row = 0; row < transform.size(); row += 4) {
    std::vector<std::string> figures;
    for (std::size_t i = row; i < row + 4; ++i) {
      figures.push_back(Fixed(transform.at(i), 6));
    }
    PrintRow(out, row == 0 ? "matrix, metres" : "", figures);
  }
  const auto millimetres = [&](std::size_t i) {
    return Fixed(transform.at(i) * kMillimetresPerMetre, 2);
  };
  PrintRow(out, "translation, mm", {millimetres(3), millimetres(7), millimetres(11)});
  if (truth != nullptr) {
    const auto difference = Difference(transform, truth->transformCamTc);
    PrintRow(out, "off the truth",
             {Fixed(difference.millimetres, 2) + " mm", Fixed(difference.degrees, 3) + " deg"});
  }
}

void PrintErrors(std::ostream& out, const RunRecord& record) {
  const auto print = [&](const char* label, std::optional<double> figure, double scale) {
    if (figure) {
      PrintRow(out, label, {Fixed(*figure * scale, 2)});
    }
  };
  out << "\nErrors\n";
  print("of the lens alone, px", record.lensError, 1);
  print("reprojection, mean, px", record.reprojectionError, 1);
  print("spread of the translation, mm", record.spread, kMillimetresPerMetre);
}

void PrintPhotographs(std::ostream& out, const RunRecord& record) {
  out << "\nPhotographs: " << UsedPhotographs(record).size() << " of " << record.photographs.size()
      << " used\n";
  for (const Photograph& photograph : record.photographs) {
    if (photograph.dropped) {
      out << "  dropped " << photograph.path << " (" << Describe(*photograph.dropped) << ")\n";
    }
  }
}

void PrintVerdict(std::ostream& out, const CalibrationReport& report) {
  const Verdict verdict = VerdictOf(report);
  out << '\n'
      << (IsUsable(report) ? "" : "Failed, code " + std::to_string(report.code) + ": ")
      << verdict.words << "\nNext: " << verdict.advice << '\n';
}

void PrintFiles(std::ostream& out, const CalibrationReport& report) {
  if (!report.log.empty()) {
    out << "Log: " << report.log.u8string() << '\n';
  }
  if (!report.images.empty()) {
    out << "Images: " << report.images.size() << ", such as " << report.images.front().u8string()
        << '\n';
  }
}

}  // namespace

void PrintSummary(std::ostream& out, const CalibrationReport& report,
                  const CalibrationOutputs* truth) {
  if (!report.outputs.focalLengthMm.empty()) {
    PrintLens(out, report.outputs, truth);
  }
  if (!report.outputs.transformCamTc.empty()) {
    PrintTransform(out, report.outputs.transformCamTc, truth);
  }
  if (report.record.lensError) {
    PrintErrors(out, report.record);
  }
  if (!report.record.photographs.empty()) {
    PrintPhotographs(out, report.record);
  }
  PrintVerdict(out, report);
  PrintFiles(out, report);
}

}  // namespace trackedcam::app
